#include "libmgr/dlglayeraddmaterials.h"
#include "libmgr/dlglayeraddthickness.h"
#include "libmgr/dlgone.h"
#include "libmgr/dlgtps.h"
#include "library/clayercontext.h"
#include "smalldialogfixtures.h"
#include "support/cmsgboxqss.h"
#include "support/settings.h"
#include "testenvironment.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolTip>
#include <QTreeWidget>

using smalldialogs::whenModal;

class tst_LibraryDialogs : public QObject
{
    Q_OBJECT

private slots:
    void powerInput_data();
    void powerInput();
    void changeSummary_data();
    void changeSummary();
    void addMaterialOk_data();
    void addMaterialOk();
    void addMaterialCrafts_data();
    void addMaterialCrafts();
    void addMaterialIcon();
    void addThickness_data();
    void addThickness();
};

namespace {

template <typename T> T *child(QWidget *dialog, const char *name)
{
    return dialog->findChild<T *>(QLatin1String(name));
}

// On the indicator: a short text leaves the middle of a wide box dead.
void clickBox(QCheckBox *box)
{
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(6, box->height() / 2));
}

} // namespace

void tst_LibraryDialogs::powerInput_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("value");

    QTest::newRow("typed power") << "250"
                                 << "pushButton_ok"
                                 << "250" << 1 << 250;
    QTest::newRow("empty field gives 0") << ""
                                         << "pushButton_ok"
                                         << "" << 1 << 0;
    QTest::newRow("four digits cannot be typed") << "1000"
                                                 << "pushButton_ok"
                                                 << "100" << 1 << 100;
    QTest::newRow("letters cannot be typed") << "4x5"
                                             << "pushButton_ok"
                                             << "45" << 1 << 45;
    QTest::newRow("below the range corrected") << "0"
                                               << "pushButton_ok"
                                               << "0" << 1 << 1;
    QTest::newRow("cancel keeps the preset") << "250"
                                             << "pushButton_cancel"
                                             << "250" << 0 << 80;
}

void tst_LibraryDialogs::powerInput()
{
    QFETCH(QString, typed);
    QFETCH(QString, button);
    QFETCH(QString, shown);
    QFETCH(int, result);
    QFETCH(int, value);
    TestEnvironment env;

    DlgOne dialog(80);
    auto *edit = child<QLineEdit>(&dialog, "lineEdit");
    QCOMPARE(edit->text(), QStringLiteral("80"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Laser power"));
    edit->clear();
    QTest::keyClicks(edit, typed);
    QCOMPARE(edit->text(), shown);
    dialog.findChild<QPushButton *>(button)->click();
    QCOMPARE(dialog.result(), result);
    QCOMPARE(dialog.Value(), value);
    QCOMPARE(env.logLines().last(), QStringLiteral("0|%1 was changed.").arg(button));
}

void tst_LibraryDialogs::changeSummary_data()
{
    QTest::addColumn<bool>("applyToLayers");
    QTest::addColumn<bool>("save");
    QTest::addColumn<QStringList>("headers");
    QTest::addColumn<QString>("label");

    const QStringList four{"Layer", "Parameter name", "Original", "Modified"};
    const QString apply = QStringLiteral("The parameters are modified as follows,and the new "
                                         "parameters will be used for processing:");
    const QString personal = QStringLiteral(
        "The temporary parameters of the current material will be saved as personalized "
        "parameters.\nPlease check and save the following changes:");
    QTest::newRow("apply to layers, saved") << true << true << four << apply;
    QTest::newRow("apply to layers, escaped") << true << false << four << apply;
    QTest::newRow("personal set, saved") << false << true << four.mid(1) << personal;
    QTest::newRow("personal set, escaped") << false << false << four.mid(1) << personal;
}

void tst_LibraryDialogs::changeSummary()
{
    QFETCH(bool, applyToLayers);
    QFETCH(bool, save);
    QFETCH(QStringList, headers);
    QFETCH(QString, label);
    TestEnvironment env;

    DlgTps dialog(nullptr, applyToLayers);
    auto *tree = child<QTreeWidget>(&dialog, "treeWidget");
    QStringList shownHeaders;
    for (int i = 0; i < tree->columnCount(); ++i)
        shownHeaders << tree->headerItem()->text(i);
    QCOMPARE(shownHeaders, headers);
    QCOMPARE(tree->header()->sectionResizeMode(0), QHeaderView::Stretch);
    QCOMPARE(child<QLabel>(&dialog, "label")->text(), label);
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Tips"));

    dialog.AddRow({"01 ", "Speed", "100", "100.5"});
    dialog.AddRow({"Air Assist", "Low"});
    QCOMPARE(dialog.RowCount(), 2);
    QCOMPARE(tree->topLevelItem(0)->text(3), QStringLiteral("100.5"));
    QCOMPARE(tree->topLevelItem(1)->text(1), QStringLiteral("Low"));

    whenModal<DlgTps>(&dialog, [save](DlgTps *shown) {
        if (save)
            shown->findChild<QPushButton *>(QStringLiteral("btnSave"))->click();
        else
            QTest::keyClick(shown, Qt::Key_Escape);
    });
    QCOMPARE(dialog.exec(), save ? 1 : 0);
}

void tst_LibraryDialogs::addMaterialOk_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("thickness");
    QTest::addColumn<QString>("tip");
    QTest::addColumn<double>("stored");

    QTest::newRow("both empty: only the name tip") << ""
                                                   << ""
                                                   << "The material name cannot be empty" << 0.0;
    QTest::newRow("empty thickness") << "Oak"
                                     << ""
                                     << "The material thickness cannot be empty" << 0.0;
    QTest::newRow("accepted") << "Oak"
                              << "4.5"
                              << "" << 4.5;
}

void tst_LibraryDialogs::addMaterialOk()
{
    QFETCH(QString, name);
    QFETCH(QString, thickness);
    QFETCH(QString, tip);
    QFETCH(double, stored);
    TestEnvironment env;

    DlgLayerAddMaterials dialog(true, 0);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(dialog.GetThickness(), 3.0);
    QCOMPARE(child<QLineEdit>(&dialog, "lineEdit_Thickness")->text(), QStringLiteral("3"));
    QTest::keyClicks(child<QLineEdit>(&dialog, "lineEdit_name"), name);
    auto *thicknessEdit = child<QLineEdit>(&dialog, "lineEdit_Thickness");
    thicknessEdit->clear();
    QTest::keyClicks(thicknessEdit, thickness);
    QToolTip::hideText();
    child<QPushButton>(&dialog, "pushButton_ok")->click();

    QCOMPARE(QToolTip::isVisible() ? QToolTip::text() : QString(), tip);
    QCOMPARE(dialog.isVisible(), !tip.isEmpty());
    QCOMPARE(dialog.result(), tip.isEmpty() ? 1 : 0);
    QCOMPARE(dialog.GetName(), name);
    QCOMPARE(dialog.GetThickness(), stored);
    QVERIFY(env.logLines().contains(QStringLiteral("0|pushButton_ok was clicked.")));
    QToolTip::hideText();
}

void tst_LibraryDialogs::addMaterialCrafts_data()
{
    QTest::addColumn<int>("tube");
    QTest::addColumn<bool>("thicknessEditable");
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<QString>("clicked");
    QTest::addColumn<QString>("crafts");

    QTest::newRow("glass: five crafts")
        << 0 << true << QStringList{"Cutting", "Scoring", "Shallow Engrave", "Deep Engrave", "Mark"}
        << "checkBox_trc"
        << "cut deep shallow vision";
    QTest::newRow("semiconductor: four, deep one is Fill")
        << 4 << false << QStringList{"Cutting", "Scoring", "Fill", "Mark"} << "checkBox_vision"
        << "cut trc deep";
}

void tst_LibraryDialogs::addMaterialCrafts()
{
    QFETCH(int, tube);
    QFETCH(bool, thicknessEditable);
    QFETCH(QStringList, shown);
    QFETCH(QString, clicked);
    QFETCH(QString, crafts);
    TestEnvironment env;

    DlgLayerAddMaterials dialog(thicknessEditable, tube);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QStringList texts;
    for (const char *name : {"checkBox_cut", "checkBox_trc", "checkBox_swpShallow",
                             "checkBox_swpDeep", "checkBox_vision"}) {
        if (auto *box = child<QCheckBox>(&dialog, name); box->isVisible())
            texts << box->text();
    }
    QCOMPARE(texts, shown);
    QCOMPARE(child<QLineEdit>(&dialog, "lineEdit_Thickness")->isEnabled(), thicknessEditable);
    clickBox(dialog.findChild<QCheckBox *>(clicked));

    QStringList result;
    if (dialog.IsCut())
        result << "cut";
    if (dialog.IsTrc())
        result << "trc";
    if (dialog.IsSwpDeep())
        result << "deep";
    if (dialog.IsSwpShallow())
        result << "shallow";
    if (dialog.IsVision())
        result << "vision";
    QCOMPARE(result.join(QLatin1Char(' ')), crafts);
    QVERIFY(env.logLines().contains(
        QStringLiteral("0|%1 was clicked.")
            .arg(clicked == "checkBox_vision" ? "checkBox_Vision" : clicked)));
}

void tst_LibraryDialogs::addMaterialIcon()
{
    TestEnvironment env;
    DlgLayerAddMaterials dialog(true, 0);
    dialog.SetName(QStringLiteral("Walnut"));
    QCOMPARE(dialog.GetIconPath(), env.resourceDir() + QStringLiteral("/Res/Icon/Plywood.jpg"));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto *button = child<QPushButton>(&dialog, "pushButton_icon");

    const QString picture = env.root() + QStringLiteral("/walnut.png");
    QImage image(10, 10, QImage::Format_RGB32);
    image.fill(Qt::darkYellow);
    QVERIFY(image.save(picture));
    QVERIFY(dialog.LoadIcon(picture));
    QCOMPARE(button->styleSheet(),
             QStringLiteral("QPushButton{border-image: url(%1)}").arg(picture));

    const QString text = env.root() + QStringLiteral("/notes.png");
    QVERIFY(env.writeFile(text, "not a picture"));
    QString message;
    whenModal<CMsgBoxQss>(&dialog, [&message](CMsgBoxQss *box) {
        message = box->windowTitle() + QLatin1Char('|') + box->text();
        box->button(QMessageBox::Ok)->click();
    });
    QVERIFY(!dialog.LoadIcon(text));
    QCOMPARE(message, QStringLiteral("Tips|Failed to open the image"));
    QCOMPARE(button->styleSheet(),
             QStringLiteral("QPushButton{border-image: url(%1)}").arg(picture));
    QCOMPARE(dialog.GetIconPath(), picture);
    QCOMPARE(dialog.GetName(), QStringLiteral("Walnut"));
}

void tst_LibraryDialogs::addThickness_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<double>("preset");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("stored");
    QTest::addColumn<QString>("label");

    QTest::newRow("inch: 25.4 mm shows 1, 2 stores 50.8") << 0 << 25.4 << "1"
                                                          << "2" << 50.8 << "Thickness (inch)";
    QTest::newRow("inch per minute") << 2 << 12.7 << "0.5"
                                     << "0.25" << 6.35 << "Thickness (inch)";
    QTest::newRow("mm: hundredths") << 1 << 3.456 << "3.46"
                                    << "4.2" << 4.2 << "Thickness (mm)";
    QTest::newRow("mm per minute") << 3 << 0.004 << "0"
                                   << "12.5" << 12.5 << "Thickness (mm)";
    QTest::newRow("empty stores 0") << 1 << 3.0 << "3"
                                    << "" << 0.0 << "Thickness (mm)";
}

void tst_LibraryDialogs::addThickness()
{
    QFETCH(int, unit);
    QFETCH(double, preset);
    QFETCH(QString, shown);
    QFETCH(QString, typed);
    QFETCH(double, stored);
    QFETCH(QString, label);
    TestEnvironment env;
    WriteIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), unit, CfgIniPath());
    g_LayerContext.m_unitMode = unit;

    DlgLayerAddThickness dialog;
    QCOMPARE(dialog.GetThickness(), 3.0);
    QCOMPARE(child<QLabel>(&dialog, "label_thickness")->text(), label);
    auto *edit = child<QLineEdit>(&dialog, "lineEdit_Thickness");
    dialog.SetThickness(preset);
    QCOMPARE(edit->text(), shown);
    QCOMPARE(dialog.GetThickness(), preset);
    edit->clear();
    QTest::keyClicks(edit, typed);
    QCOMPARE(dialog.GetThickness(), stored);

    dialog.SetSwpShallow(false);
    QVERIFY(!child<QCheckBox>(&dialog, "checkBox_swpShallow")->isChecked());
    clickBox(child<QCheckBox>(&dialog, "checkBox_cut"));
    QVERIFY(!dialog.IsCut() && dialog.IsTrc() && dialog.IsSwpDeep() && dialog.IsVision()
            && !dialog.IsSwpShallow());
    child<QPushButton>(&dialog, "pushButton_OK")->click();
    QCOMPARE(dialog.result(), 1);
    QCOMPARE(env.logLines().mid(env.logLines().size() - 2),
             (QStringList{"0|checkBox_cut was clicked.", "0|pushButton_OK was clicked."}));
}

QTEST_MAIN(tst_LibraryDialogs)
#include "tst_librarydialogs.moc"
