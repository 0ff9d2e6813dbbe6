#include "ccanvas.h"
#include "ccolorpalette.h"
#include "cdrawing.h"
#include "chostcallback.h"
#include "cmainwindow.h"
#include "cprojectfile.h"
#include "drawitemtext.h"
#include "testenvironment.h"

#include "cshape.h"
#include "cshapelist.h"
#include "ctranslator.h"
#include "idevicesinfo.h"
#include "ilayermgr.h"

#include <QBuffer>
#include <QComboBox>
#include <QDockWidget>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <QStyleOptionComboBox>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolButton>

namespace {

const QString kPlugin = QStringLiteral(LAYERMGR_BUILD_BIN "/libLayerMgr.so");
const QString kSampleSvg = QStringLiteral(LAYERMGR_SOURCE_DIR "/resources/Samples/sample.svg");

// A blue outline rectangle and a filled orange ellipse beside it.
std::vector<CDrawItem> twoShapes()
{
    return {CDrawItem::Rect(QRectF(20, 20, 100, 80), 0x0B00FF),
            CDrawItem::Ellipse(QRectF(200, 40, 80, 60), 0xF48244, true)};
}

bool hasChinese(const QString &text)
{
    return std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() >= 0x4E00 && c.unicode() <= 0x9FFF; });
}

QString hex(quint32 colour) { return QStringLiteral("%1").arg(colour, 6, 16, QLatin1Char('0')); }

// What the plug-in learns of the machine.
QString machineText(const IDevicesInfo *devices)
{
    QString text = QStringLiteral("status=%1 kind=%2").arg(devices->GetStatus()).arg(devices->GetMachineKind());
    for (const char *name : {"MaxPower", "CurrentRdCardType", "IsDualLaser"}) {
        QVariant value;
        devices->GetValue(QLatin1String(name), value);
        text += QStringLiteral(" %1=%2").arg(QLatin1String(name), value.toString());
    }
    for (int i = 0; i < devices->GetLaserCount(); ++i) {
        const LaserSourceInfo laser = devices->GetLaser(i);
        text += QStringLiteral(" %1:%2,%3,%4").arg(i + 1).arg(laser.tubeType).arg(laser.power).arg(laser.present ? "on" : "off");
    }
    return text;
}

} // namespace

class tst_MainWindow : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<CMainWindow> m_window;

    QAction *action(const QString &name) const { return m_window->findChild<QAction *>(name); }
    QStringList layerColours() const
    {
        QStringList colours;
        for (quint32 i = 0; i < m_window->Manager()->GetLayerCount(); ++i)
            colours.append(hex(m_window->Manager()->GetLayerAt(i)->COLOR));
        return colours;
    }
    QString items() const { return DrawItemsText(m_window->Drawing()->Items()); }
    QString status() const { return m_window->statusBar()->currentMessage(); }
    QString counts() const { return m_window->findChild<QLabel *>(QStringLiteral("label_counts"))->text(); }
    QPoint at(const QPointF &mm) const { return m_window->Canvas()->ToWidget(mm).toPoint(); }
    qreal pixel() const { return 1.0 / m_window->Canvas()->ViewTransform().m11(); }
    void click(const QPointF &mm, Qt::KeyboardModifiers keys = {}) { QTest::mouseClick(m_window->Canvas(), Qt::LeftButton, keys, at(mm)); }
    void drag(const QPointF &from, const QPointF &to)
    {
        QTest::mousePress(m_window->Canvas(), Qt::LeftButton, {}, at(from));
        QTest::mouseMove(m_window->Canvas(), at((from + to) / 2));
        QTest::mouseMove(m_window->Canvas(), at(to));
        QTest::mouseRelease(m_window->Canvas(), Qt::LeftButton, {}, at(to));
    }
    QTableWidget *table() const { return m_window->findChild<QTableWidget *>(QStringLiteral("tableWidget")); }
    QString path(const QString &name) const { return m_env->root() + QLatin1Char('/') + name; }

private slots:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        CTranslator::GetInstance()->SetResourceDir(QStringLiteral(LAYERMGR_BUILD_BIN "/../Resources"));
        CTranslator::GetInstance()->SetLanguage(QStringLiteral("En"));
        m_window = std::make_unique<CMainWindow>();
        QString error;
        QVERIFY2(m_window->LoadPlugin(kPlugin, &error), qPrintable(error));
        QVERIFY2(m_window->Panel(), "the plug-in makes a layer panel");
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    void cleanup()
    {
        m_window.reset();
        CTranslator::GetInstance()->SetLanguage(QString());
        CTranslator::GetInstance()->SetResourceDir(QString());
        m_env.reset();
    }

    void paletteAndMissingPlugin()
    {
        const QList<CColorPalette::Entry> &entries = m_window->Palette()->Entries();
        QCOMPARE(entries.size(), 38);
        QCOMPARE((QList<quint32>{entries.at(0).color, entries.at(1).color, entries.at(35).color, entries.at(37).color}), (QList<quint32>{0x000000, 0x0B00FF, 0x227756, 0xCC8B18}));
        const QStringList tips{m_window->Palette()->Swatch(0xF48244)->toolTip(), m_window->Palette()->Swatch(0)->toolTip(), m_window->Palette()->Swatch(0xCC8B18)->toolTip()};
        QCOMPARE(tips, (QStringList{"Layer 3 (#F48244)", "Black (#000000)", "Special layer (#CC8B18)"}));
        QCOMPARE(m_window->Canvas()->Color(), 0x0B00FFu);
        CMainWindow window;
        QString error;
        QVERIFY(!window.LoadPlugin(QStringLiteral("/nonexistent/libLayerMgr.so"), &error) && error.contains(QStringLiteral("libLayerMgr.so")));
        window.Drawing()->SetItems(twoShapes());
    }

    void drawWithMouse_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<uint>("colour");
        QTest::newRow("rect") << "action_toolRect" << 0xF48244u;
        QTest::newRow("ellipse") << "action_toolEllipse" << 0xCC8B17u;
        QTest::newRow("line") << "action_toolLine" << 0x000000u;
    }

    void drawWithMouse()
    {
        QFETCH(QString, tool);
        QFETCH(uint, colour);
        m_window->Drawing()->SetItems({});
        action(tool)->trigger();
        QTest::mouseClick(m_window->Palette()->Swatch(colour), Qt::LeftButton);
        // A drag of a pixel draws nothing.
        QTest::mousePress(m_window->Canvas(), Qt::LeftButton, {}, at(QPointF(100, 100)));
        QTest::mouseRelease(m_window->Canvas(), Qt::LeftButton, {}, at(QPointF(100, 100)) + QPoint(1, 1));
        QCOMPARE(m_window->Manager()->GetLayerCount(), 0u);
        drag(QPointF(150, 140), QPointF(50, 60));
        QCOMPARE(items(), QString(tool).remove(QStringLiteral("action_tool")).toLower() + " #" + hex(colour));
        const QRectF drawn = m_window->Drawing()->ItemAt(0).Bounds();
        QVERIFY2(qAbs(drawn.left() - 50) < pixel() && qAbs(drawn.width() - 100) < 2 * pixel(), qPrintable(BoundsText(drawn)));
        QCOMPARE(layerColours(), QStringList{hex(colour)});
        QVERIFY(m_window->IsModified());
        QCOMPARE(counts(), QStringLiteral("1 shapes, 0 selected, 1 layers"));
    }

    void mouseSelectsMovesAndEdits()
    {
        m_window->Drawing()->SetItems(twoShapes());
        click(QPointF(240, 70));
        click(QPointF(20, 60), Qt::ShiftModifier);
        QCOMPARE(m_window->Drawing()->SelectedIndexes(), (QList<int>{0, 1}));
        QVERIFY(m_window->Drawing()->ShapeList()->GetShape(1)->IsSelected());
        QCOMPARE(counts(), QStringLiteral("2 shapes, 2 selected, 2 layers"));
        drag(QPointF(190, 30), QPointF(300, 120));
        QCOMPARE(m_window->Drawing()->SelectedIndexes(), QList<int>{1});
        click(QPointF(160, 200));
        drag(QPointF(240, 70), QPointF(260, 100));
        const QRectF moved = m_window->Drawing()->ItemAt(1).Bounds();
        QVERIFY2(qAbs(moved.left() - 220) < 2 * pixel() && qAbs(moved.top() - 70) < 2 * pixel(), qPrintable(BoundsText(moved)));

        action(QStringLiteral("action_selectAll"))->trigger();
        action(QStringLiteral("action_group"))->trigger();
        QCOMPARE(layerColours(), QStringList{"0b00ff"});
        action(QStringLiteral("action_ungroup"))->trigger();
        click(QPointF(160, 200));
        click(QPointF(240, 85));
        QTest::mouseClick(m_window->Palette()->Swatch(0x2431BD), Qt::LeftButton);
        QCOMPARE(items(), QStringLiteral("rect #0b00ff; ellipse #2431bd fill"));
        const QStringList layers = layerColours();
        QCOMPARE(QSet<QString>(layers.cbegin(), layers.cend()), (QSet<QString>{"0b00ff", "2431bd"}));
        QCOMPARE(status(), QStringLiteral("1 shapes moved to colour #2431bd"));
        action(QStringLiteral("action_delete"))->trigger();
        QCOMPARE(layerColours(), QStringList{"0b00ff"});
    }

    void hostNotifications_data()
    {
        QTest::addColumn<int>("code"); // -1 layers changed, -2 current layer, else a layer event
        QTest::addColumn<QString>("message");
        for (const auto &[code, message] : std::initializer_list<std::pair<int, const char *>>{
                 {-1, "Layer parameters changed"}, {0, "Laser source of the layers changed"}, {2, "Work type of a layer changed"},
                 {3, "Layers moved"}, {9, "Layer event 9"}, {-2, "Current layer changed"}})
            QTest::newRow(message) << code << QString::fromLatin1(message);
    }

    void hostNotifications()
    {
        QFETCH(int, code);
        m_window->ShowSampleDrawing();
        ILayerHost *host = m_window->HostCallback();
        code == -1 ? host->LayersChanged() : code == -2 ? host->CurrentLayerChanged() : host->LayerEvent(code);
        host->RefreshView();
        QTEST(status(), "message");
        QCOMPARE(m_window->IsModified(), code != -2);
    }

    void languageSwitch()
    {
        action(QStringLiteral("action_languageChs"))->trigger();
        QStringList texts{m_window->findChild<QDockWidget *>()->windowTitle(), counts(), m_window->windowTitle(),
                          m_window->Palette()->Swatch(0xF48244)->toolTip(), m_window->Palette()->Swatch(0)->toolTip(),
                          CHostCallback::LayersChangedText(), CHostCallback::LayerEventText(3), CHostCallback::LayerEventText(5)};
        for (const QMenu *menu : m_window->findChildren<QMenu *>()) {
            if (!menu->objectName().startsWith(QLatin1String("menu_")))
                continue;
            texts << menu->title();
            for (const QAction *a : menu->actions())
                texts << a->text() << a->statusTip();
        }
        // Errors of files that cannot be opened come in the chosen language.
        for (const QByteArray &bytes : {QByteArray("<svg><g></svg>"), QByteArray("<svg><line x2=\"4\"/></svg>"), QByteArray("\x89LHPRJ")}) {
            QVERIFY(m_env->writeFile(path(QStringLiteral("bad")), bytes));
            QString error;
            QVERIFY(!m_window->OpenDrawing(path(QStringLiteral("bad")), &error));
            texts << error;
        }
        texts.removeAll(QString());
        texts.removeIf(hasChinese);
        QVERIFY2(texts.isEmpty(), qPrintable(texts.join(QStringLiteral(" | "))));
        action(QStringLiteral("action_languageEn"))->trigger();
        QCOMPARE(action(QStringLiteral("action_importSvg"))->text(), QStringLiteral("&Import SVG…"));
        QCOMPARE(action(QStringLiteral("action_maxPower"))->text(), QStringLiteral("MaxPower: 20…"));
    }

    // At the window's first size every text of the panel shows in full.
    void panelTextsWhole()
    {
        QStringList cut;
        for (const QString language : {"En", "Chs"}) {
            m_window->SetLanguage(language);
            m_window->ShowSampleDrawing();
            QCoreApplication::processEvents();
            for (QComboBox *combo : table()->viewport()->findChildren<QComboBox *>()) {
            QStyleOptionComboBox option;
            option.initFrom(combo);
            const QRect field = combo->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, combo);
            if (combo->isVisible() && (field.width() < combo->fontMetrics().horizontalAdvance(combo->currentText())
                                       || !combo->parentWidget()->rect().contains(combo->geometry())))
                cut << combo->currentText();
            }
        }
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join(QStringLiteral(" | "))));
        QVERIFY(table()->findChildren<QComboBox *>().size() > 10);
    }

    void projectRoundTrip()
    {
        m_window->ShowSampleDrawing();
        CLayerParam *blue = m_window->Manager()->GetLayerByColor(0x0B00FF);
        blue->WORK_TYPE = WORK_SCORING;
        blue->CUT.CUT_SPEED = 42;
        const std::vector<CDrawItem> saved = m_window->Drawing()->Items();
        const QStringList order = layerColours();
        QString error;
        QVERIFY2(m_window->SaveProject(path("drawing.lhp"), &error), qPrintable(error));
        QVERIFY(!m_window->IsModified() && m_window->windowTitle().startsWith(QStringLiteral("drawing.lhp")));
        QCOMPARE(status(), QStringLiteral("Saved drawing.lhp."));
        m_window->Drawing()->SetItems(twoShapes());
        m_window->Manager()->GetLayerByColor(0x0B00FF)->CUT.CUT_SPEED = 7;
        QVERIFY2(m_window->OpenDrawing(path("drawing.lhp"), &error), qPrintable(error));
        QVERIFY(m_window->Drawing()->Items() == saved);
        QCOMPARE(layerColours(), order);
        QCOMPARE(m_window->Manager()->GetLayerByColor(0x0B00FF)->WORK_TYPE, qint32(WORK_SCORING));
        QCOMPARE(m_window->Manager()->GetLayerByColor(0x0B00FF)->CUT.CUT_SPEED, 42.0);
        QCOMPARE(m_window->ProjectPath(), path("drawing.lhp"));
        QCOMPARE(status(), QStringLiteral("Opened drawing.lhp."));
        QVERIFY(!m_window->SaveProject(QStringLiteral("/nonexistent-folder/drawing.lhp"), &error));
        QVERIFY2(error.startsWith(QStringLiteral("Cannot save /nonexistent-folder/drawing.lhp")), qPrintable(error));
        QCOMPARE(m_window->ProjectPath(), path("drawing.lhp"));
    }

    void badFileChangesNothing_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<QString>("error");
        QTest::newRow("missing file") << "missing" << "Cannot open";
        QTest::newRow("truncated project") << "truncate" << "bad.lhp: The project file is truncated.";
        QTest::newRow("layers with a repeated colour") << "repeat" << "bad.lhp: The layers of the project cannot be read.";
        QTest::newRow("malformed SVG") << "<svg><rect width=\"1\" height=\"1\">" << "bad.lhp: The SVG file is not well-formed";
        QTest::newRow("SVG without colours") << "<svg><rect width=\"1\" height=\"1\" fill=\"none\"/></svg>" << "has no colours";
    }

    void badFileChangesNothing()
    {
        QFETCH(QString, damage);
        QFETCH(QString, error);
        m_window->ShowSampleDrawing();
        QString message;
        QVERIFY(m_window->SaveProject(path("good.lhp"), &message));
        QByteArray bytes = damage.startsWith(QLatin1Char('<')) ? damage.toUtf8() : m_env->readFile(path("good.lhp")).chopped(10);
        if (damage == QLatin1String("repeat")) {
            // A layer stream holding its first record twice.
            QBuffer stream;
            stream.open(QIODevice::WriteOnly);
            m_window->Manager()->SaveLayers(&stream);
            const QByteArray layers = stream.data();
            const qsizetype record = (layers.size() - 8) / qsizetype(m_window->Manager()->GetLayerCount());
            CProjectFile project;
            project.m_items = m_window->Drawing()->Items();
            project.m_layers = layers.left(4) + QByteArray("\x02\0\0\0", 4) + layers.mid(8, record) + layers.mid(8, record);
            QBuffer out;
            QVERIFY(out.open(QIODevice::WriteOnly) && project.Write(&out));
            bytes = out.data();
        }
        QVERIFY(damage == QLatin1String("missing") || m_env->writeFile(path("bad.lhp"), bytes));
        m_window->Drawing()->SetItems(twoShapes());
        m_window->Manager()->GetLayerByColor(0xF48244)->CUT.CUT_SPEED = 33;
        const std::vector<CDrawItem> before = m_window->Drawing()->Items();
        const QStringList colours = layerColours();
        const QString title = m_window->windowTitle();
        QVERIFY(!m_window->OpenDrawing(path("bad.lhp"), &message));
        QVERIFY2(message.contains(error), qPrintable(message));
        QVERIFY(!damage.startsWith(QLatin1Char('<')) || !m_window->ImportSvg(path("bad.lhp"), &message));
        QVERIFY(m_window->Drawing()->Items() == before);
        QCOMPARE(layerColours(), colours);
        QCOMPARE(m_window->Manager()->GetLayerByColor(0xF48244)->CUT.CUT_SPEED, 33.0);
        QCOMPARE(m_window->windowTitle(), title);
        QCOMPARE(m_window->ProjectPath(), path("good.lhp"));
    }

    void importAndOpenSvg()
    {
        m_window->ShowSampleDrawing();
        QString error;
        QVERIFY2(m_window->ImportSvg(kSampleSvg, &error), qPrintable(error));
        QCOMPARE(m_window->Drawing()->SelectedIndexes().size(), 11);
        QCOMPARE(m_window->Drawing()->SelectedIndexes().first(), 8);
        QCOMPARE(status(), QStringLiteral("Imported 11 shapes from sample.svg. 1 elements were left out."));
        for (quint32 colour : {0xF5400Fu, 0xFFD700u, 0x336633u})
            QVERIFY(m_window->Manager()->GetLayerByColor(colour));
        QVERIFY(m_window->IsModified());
        QVERIFY2(m_window->OpenDrawing(kSampleSvg, &error), qPrintable(error));
        QSet<QString> used;
        for (const CDrawItem &item : m_window->Drawing()->Items())
            used.insert(hex(item.Color()));
        const QStringList layers = layerColours();
        QCOMPARE(QSet<QString>(layers.cbegin(), layers.cend()), used);
        QCOMPARE(layers.size(), used.size());
        QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("sample.svg")) && m_window->ProjectPath().isEmpty());
        QVERIFY(!m_window->IsModified());
    }

    // A drawing that is opened or imported fills the view, wherever it lies.
    void fitsView_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("open SVG") << "open";
        QTest::newRow("import SVG") << "import";
        QTest::newRow("open project") << "project";
    }

    void fitsView()
    {
        QFETCH(QString, how);
        QVERIFY(m_env->writeFile(path("small.svg"), R"s(<svg width="100mm" height="100mm" viewBox="0 0 100 100"><rect x="2" y="3" width="20" height="10" fill="red"/><circle cx="20" cy="13" r="2" stroke="blue"/></svg>)s"));
        QString error;
        if (how == QLatin1String("project")) {
            QVERIFY(m_window->OpenDrawing(path("small.svg"), &error) && m_window->SaveProject(path("small.lhp"), &error));
            m_window->ShowSampleDrawing();
        }
        m_window->Drawing()->Clear();
        const bool ok = how == QLatin1String("import") ? m_window->ImportSvg(path("small.svg"), &error)
                                                       : m_window->OpenDrawing(path(how == QLatin1String("open") ? "small.svg" : "small.lhp"), &error);
        QVERIFY2(ok, qPrintable(error));
        const QRectF shown = m_window->Canvas()->ViewTransform().mapRect(m_window->Drawing()->Bounds());
        const QRectF canvas = m_window->Canvas()->rect();
        QVERIFY2(canvas.contains(shown) && (shown.width() > 0.9 * canvas.width() || shown.height() > 0.9 * canvas.height()),
                 qPrintable(BoundsText(shown) + QStringLiteral(" in ") + BoundsText(canvas)));
    }

    void panelFollowsHost_data()
    {
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("speed"); // of a cutting speed of 10 mm/s
        QTest::newRow("inch/s") << "action_unitInchPerSec" << "0.4";
        QTest::newRow("mm/s") << "action_unitMmPerSec" << "10.0";
        QTest::newRow("inch/min") << "action_unitInchPerMin" << "23.6";
        QTest::newRow("mm/min") << "action_unitMmPerMin" << "600.0";
    }

    void panelFollowsHost()
    {
        QFETCH(QString, unit);
        m_window->Drawing()->SetItems(twoShapes());
        for (quint32 i = 0; i < m_window->Manager()->GetLayerCount(); ++i)
            m_window->Manager()->GetLayerAt(i)->CUT.CUT_SPEED = 10;
        action(unit)->trigger();
        QTEST(table()->cellWidget(0, 2)->toolTip(), "speed");
        QVERIFY2(status().startsWith(QStringLiteral("Speeds in ")), qPrintable(status()));
        // The panel's current layer is the canvas's colour, both ways.
        click(QPointF(240, 70));
        QCOMPARE(m_window->Manager()->GetCurrentLayerColor(), 0xF48244u);
        const quint32 colour = m_window->Manager()->GetLayerAt(0)->COLOR;
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, table()->visualRect(table()->model()->index(0, 4)).center());
        QCOMPARE(status(), QStringLiteral("Current layer changed"));
        QCOMPARE(m_window->Canvas()->Color(), colour);
    }

    void machine_data()
    {
        QTest::addColumn<QStringList>("actions"); // "name=N" answers its input dialog with N
        QTest::addColumn<QString>("machine");
        QTest::addColumn<QString>("typeHeader");
        // clang-format off
        QTest::newRow("not connected at first") << QStringList() << "status=1 kind=1 MaxPower=20 CurrentRdCardType=8 IsDualLaser=false 1:0,80,on 2:0,80,off" << "Type";
        QTest::newRow("connected controller-card machine") << QStringList{"action_machineConnected", "action_machineKind2", "action_rdCardType=7"} << "status=0 kind=2 MaxPower=20 CurrentRdCardType=7 IsDualLaser=false 1:0,80,on 2:0,80,off" << "Type";
        QTest::newRow("desktop machine of 1000") << QStringList{"action_machineConnected", "action_maxPower=1000", "action_isDualLaser"} << "status=0 kind=1 MaxPower=1000 CurrentRdCardType=8 IsDualLaser=true 1:0,80,on 2:0,80,off" << "Type";
        QTest::newRow("tubes and powers") << QStringList{"action_laser1Tube3", "action_laser1Power=30", "action_laser2Tube4", "action_laser1Present"} << "status=1 kind=1 MaxPower=20 CurrentRdCardType=8 IsDualLaser=false 1:3,30,off 2:4,80,off" << "Type";
        QTest::newRow("two lasers is the second laser") << QStringList{"action_twoLasers"} << "status=1 kind=1 MaxPower=20 CurrentRdCardType=8 IsDualLaser=false 1:0,80,on 2:0,80,on" << "Type⥮";
        QTest::newRow("second laser off through two lasers") << QStringList{"action_laser2Present", "action_twoLasers"} << "status=1 kind=1 MaxPower=20 CurrentRdCardType=8 IsDualLaser=false 1:0,80,on 2:0,80,off" << "Type";
        // clang-format on
    }

    void machine()
    {
        QFETCH(QStringList, actions);
        for (const QString &entry : actions) {
            const QStringList parts = entry.split(QLatin1Char('='));
            if (parts.size() == 2) {
                QTimer::singleShot(0, this, [&parts] {
                    auto *dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
                    QVERIFY(dialog);
                    dialog->setIntValue(parts[1].toInt());
                    dialog->accept();
                });
            }
            action(parts[0])->trigger();
        }
        // What the plug-in is handed, and what the menu shows.
        const IDevicesInfo *devices = static_cast<ILayerHost *>(m_window->HostCallback())->DevicesInfo();
        QVERIFY(devices);
        QTEST(machineText(devices), "machine");
        QTEST(table()->horizontalHeaderItem(4)->text(), "typeHeader");
        QCOMPARE(action(QStringLiteral("action_twoLasers"))->isChecked(), m_window->TwoLasers());
        QCOMPARE(action(QStringLiteral("action_laser2Present"))->isChecked(), m_window->TwoLasers());
        CDevicesInfoIns set;
        set.SetValue(QStringLiteral("MaxPower"), 60);
        set.SetLaser(1, {3, 30, true});
        m_window->SetMachine(set);
        QCOMPARE(action(QStringLiteral("action_maxPower"))->text(), QStringLiteral("MaxPower: 60…"));
        QVERIFY(action(QStringLiteral("action_twoLasers"))->isChecked() && action(QStringLiteral("action_laser2Tube3"))->isChecked());
        QCOMPARE(table()->horizontalHeaderItem(4)->text(), QStringLiteral("Type⥮"));
    }
};

QTEST_MAIN(tst_MainWindow)
#include "tst_mainwindow.moc"
