#include "libmgr/dlglayerparampresets.h"
#include "libmgrwidgettest.h"
#include "testenvironment.h"

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>

namespace {

using Args = QVariantList;
using P = DlgLayerParamPresets;
const QString kMaterial = QStringLiteral("comboBox_Material");
const QString kThickness = QStringLiteral("comboBox_Thickness");

Args first(const QSignalSpy &spy)
{
    return spy.isEmpty() ? Args() : spy.at(0);
}

// A shown panel with three materials, three thicknesses and five crafts, each
// chooser ending in its custom entry; material 1 and thickness 1 current.
struct PanelFixture
{
    PanelFixture()
    {
        for (const char *name : {"Plywood", "Acrylic", "Leather", "Custom material"})
            panel.AddMaterial(QString::fromLatin1(name), QString());
        for (const char *name : {"1.0mm", "3.0mm", "5.0mm", "Custom Thickness"})
            panel.AddThickness(QString::fromLatin1(name));
        panel.SetCurrentMaterial(1);
        panel.SetCurrentThickness(1);
        panel.show();
        for (int craft = 0; craft < 5; ++craft)
            panel.AddCraft(QString::number(craft), craft);
    }
    // The chooser's request signal (mean) or its index signal.
    static QMetaMethod signal(const QString &combo, bool mean)
    {
        if (combo == kMaterial)
            return mean ? QMetaMethod::fromSignal(&P::SigMaterialMean)
                        : QMetaMethod::fromSignal(&P::SigMaterialIndxChanged);
        return mean ? QMetaMethod::fromSignal(&P::SigThicknessMean)
                    : QMetaMethod::fromSignal(&P::SigThicknessIndxChanged);
    }

    TestEnvironment env;
    P panel;
};

} // namespace

class tst_DlgLayerParamPresets : public QObject
{
    Q_OBJECT

private slots:
    // Picking a chooser's custom entry asks for an addition and keeps the
    // choice; with signals off the entry is simply taken.
    void customEntry_data()
    {
        QTest::addColumn<QString>("combo");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<int>("current");
        QTest::addColumn<Args>("mean");
        QTest::newRow("material") << kMaterial << true << 1 << Args{0, 1};
        QTest::newRow("thickness") << kThickness << true << 1 << Args{0, 1, QString()};
        QTest::newRow("thickness, signals off") << kThickness << false << 3 << Args{};
    }
    void customEntry()
    {
        QFETCH(QString, combo);
        QFETCH(bool, enabled);
        PanelFixture f;
        f.panel.SetSignalsEnabled(enabled ? 1 : 0);
        QSignalSpy changed(&f.panel, f.signal(combo, false));
        QSignalSpy mean(&f.panel, f.signal(combo, true));
        child<QComboBox>(&f.panel, combo)->setCurrentIndex(3);

        QTEST(child<QComboBox>(&f.panel, combo)->currentIndex(), "current");
        QTEST(combo == kMaterial ? f.panel.CurrentMaterial() : f.panel.CurrentThickness(),
              "current");
        QCOMPARE(changed.count(), 0);
        QTEST(first(mean), "mean");
        QCOMPARE(f.env.logLines().contains("0|" + combo + " was changed."), enabled);
    }

    void lasers()
    {
        TestEnvironment env;
        // A type that is no number is taken for glass.
        QVERIFY(env.writeFile(QStringLiteral("FactoryParam.ini"),
                              "[FACTORY_PARAM_LASER]\nLASER1_TYPE=3\nLASER2_TYPE=x"));
        const QList<int> tubes{LASER_TUBE_FIBER, LASER_TUBE_GLASS};
        P panel;
        panel.ShowLaserChoice(true, true);
        panel.show();
        QSignalSpy laser(&panel, &P::LaserChanged);
        QStringList texts;
        for (int i = 0; i < 2; ++i) {
            auto *button =
                child<QRadioButton>(&panel, "radioButton_laser" + QString::number(i + 1));
            texts << button->text();
            QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
            QCOMPARE(panel.IsFirstLaserChecked(), i == 0);
            QCOMPARE(laser.at(i), (Args{i + 1, QVariant::fromValue(ELASER_TUBE(tubes.at(i)))}));
        }
        QCOMPARE(texts, (QStringList{"Laser1-Fiber", "Laser2-Glass"}));
        QVERIFY(env.logLines().contains(QStringLiteral("0|radioButton_laser2 was clicked.")));
        panel.ShowLaserChoice(false, true); // hiding the choice falls back to the first laser
        QVERIFY(panel.IsFirstLaserChecked());
    }

    void schemesAndLanguage()
    {
        TestEnvironment env;
        P panel;
        auto *schemes = child<QListWidget>(&panel, QStringLiteral("listWidget_scheme"));
        QSignalSpy changed(&panel, &P::SigSchemeCurChaged);
        QCOMPARE(panel.CurrentScheme(), 2);
        panel.SetCurrentScheme(0);
        QCOMPARE(panel.CurrentScheme(), 0);
        QCOMPARE(changed.count(), 0);

        const auto texts = [&] {
            return QStringList{schemes->item(0)->text(), schemes->item(2)->text(),
                               child<QLabel>(&panel, QStringLiteral("label_6"))->text()};
        };
        QCOMPARE(inLanguage(QStringLiteral("Chs"), texts),
                 (QStringList{"推荐", "临时", "方案设置"}));
        QCOMPARE(schemes->item(2)->text(), QStringLiteral("Temporary"));
    }
};

QTEST_MAIN(tst_DlgLayerParamPresets)
#include "tst_dlglayerparampresets.moc"
