#include "ccanvas.h"
#include "ccolorpalette.h"
#include "cdrawing.h"
#include "chostcallback.h"
#include "cmainwindow.h"
#include "cprojectfile.h"
#include "drawitemtext.h"
#include "testenvironment.h"

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

// A blue outline rectangle and a filled orange ellipse beside it.
std::vector<CDrawItem> twoShapes()
{
    return {CDrawItem::Rect(QRectF(20, 20, 100, 80), 0x0B00FF),
            CDrawItem::Ellipse(QRectF(200, 40, 80, 60), 0xF48244, true)};
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
    ILayerMgr *manager() const { return m_window->Manager(); }
    QStringList layerColours() const
    {
        QStringList colours;
        for (quint32 i = 0; i < manager()->GetLayerCount(); ++i)
            colours.append(hex(manager()->GetLayerAt(i)->COLOR));
        return colours;
    }
    QString status() const { return m_window->statusBar()->currentMessage(); }
    QString counts() const { return m_window->findChild<QLabel *>(QStringLiteral("label_counts"))->text(); }
    QPoint at(const QPointF &mm) const { return m_window->Canvas()->ToWidget(mm).toPoint(); }
    // Within two pixels of the canvas.
    bool near(const QPointF &a, const QPointF &b) const { return (a - b).manhattanLength() * m_window->Canvas()->ViewTransform().m11() < 3; }
    void click(const QPointF &mm, Qt::KeyboardModifiers keys = {}) { QTest::mouseClick(m_window->Canvas(), Qt::LeftButton, keys, at(mm)); }
    void drag(const QPointF &from, const QPointF &to)
    {
        QTest::mousePress(m_window->Canvas(), Qt::LeftButton, {}, at(from));
        QTest::mouseMove(m_window->Canvas(), at((from + to) / 2));
        QTest::mouseMove(m_window->Canvas(), at(to));
        QTest::mouseRelease(m_window->Canvas(), Qt::LeftButton, {}, at(to));
    }
    QTableWidget *table() const { return m_window->findChild<QTableWidget *>(QStringLiteral("tableWidget")); }
    QString path(const QString &name) const { return name.startsWith(QLatin1Char('/')) ? name : m_env->root() + QLatin1Char('/') + name; }

private slots:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        CTranslator::GetInstance()->SetResourceDir(QStringLiteral(LAYERMGR_BUILD_BIN "/../Resources"));
        CTranslator::GetInstance()->SetLanguage(QStringLiteral("En"));
        m_window = std::make_unique<CMainWindow>();
        QString error;
        QVERIFY2(m_window->LoadPlugin(kPlugin, &error), qPrintable(error));
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
        // Without the plug-in the window still takes a drawing.
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
        action(tool)->trigger();
        QTest::mouseClick(m_window->Palette()->Swatch(colour), Qt::LeftButton);
        // A drag of a pixel draws nothing.
        QTest::mousePress(m_window->Canvas(), Qt::LeftButton, {}, at(QPointF(100, 100)));
        QTest::mouseRelease(m_window->Canvas(), Qt::LeftButton, {}, at(QPointF(100, 100)) + QPoint(1, 1));
        drag(QPointF(150, 140), QPointF(50, 60));
        QCOMPARE(DrawItemsText(m_window->Drawing()->Items()), QString(tool).remove(QStringLiteral("action_tool")).toLower() + " #" + hex(colour));
        const QRectF drawn = m_window->Drawing()->ItemAt(0).Bounds();
        QVERIFY2(near(drawn.topLeft(), QPointF(50, 60)) && near(drawn.bottomRight(), QPointF(150, 140)), qPrintable(BoundsText(drawn)));
        QCOMPARE(layerColours(), QStringList{hex(colour)});
    }

    void mouseSelectsMovesAndRecolours()
    {
        m_window->Drawing()->SetItems(twoShapes());
        click(QPointF(240, 70));
        click(QPointF(20, 60), Qt::ShiftModifier);
        QCOMPARE(counts(), QStringLiteral("2 shapes, 2 selected, 2 layers"));
        drag(QPointF(190, 30), QPointF(300, 120));
        QCOMPARE(m_window->Drawing()->SelectedIndexes(), QList<int>{1});
        click(QPointF(160, 200));
        drag(QPointF(240, 70), QPointF(260, 100));
        const QRectF moved = m_window->Drawing()->ItemAt(1).Bounds();
        QVERIFY2(near(moved.topLeft(), QPointF(220, 70)), qPrintable(BoundsText(moved)));
        click(QPointF(160, 200));
        click(QPointF(240, 85));
        QTest::mouseClick(m_window->Palette()->Swatch(0x2431BD), Qt::LeftButton);
        QCOMPARE(DrawItemsText(m_window->Drawing()->Items()), QStringLiteral("rect #0b00ff; ellipse #2431bd fill"));
        QCOMPARE(layerColours().size(), 2);
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
        texts.removeIf([](const QString &text) { return std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() >= 0x4E00 && c.unicode() <= 0x9FFF; }); });
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

    // Each row starts from the sample drawing saved as good.lhp, then edited:
    // its blue layer cut at 42 mm/s in the file, at 7 now.
    void files_data()
    {
        QTest::addColumn<QString>("step");     // "open FILE", "import FILE" or "save FILE"
        QTest::addColumn<QByteArray>("bytes"); // FILE's content when not empty; "truncate" and "repeat" damage good.lhp
        QTest::addColumn<QString>("outcome");  // the status, or a part of the error
        QTest::addColumn<QString>("title");    // the start of the window title
        QTest::addColumn<QString>("project");
        QTest::addColumn<bool>("modified");
        QTest::addColumn<QString>("counts");
        QTest::addColumn<QString>("blueSpeed");
        const QByteArray small = R"s(<svg width="100mm" height="100mm" viewBox="0 0 100 100"><rect x="2" y="3" width="20" height="10" fill="red"/><circle cx="20" cy="13" r="2" stroke="blue"/><text>left out</text></svg>)s";
        const QString edited = QStringLiteral("2 shapes, 0 selected, 2 layers");
        auto refused = [&](const char *name, const char *step, const QByteArray &bytes, const char *error) {
            QTest::newRow(name) << step << bytes << error << "good.lhp" << "good.lhp" << true << edited << "7";
        };
        // clang-format off
        QTest::newRow("open the project") << "open good.lhp" << QByteArray() << "Opened good.lhp." << "good.lhp" << "good.lhp" << false << "8 shapes, 0 selected, 7 layers" << "42";
        QTest::newRow("save as") << "save new.lhp" << QByteArray() << "Saved new.lhp." << "new.lhp" << "new.lhp" << false << edited << "7";
        QTest::newRow("open an SVG") << "open small.svg" << small << "Opened small.svg." << "small.svg" << "" << false << edited << "none";
        QTest::newRow("import an SVG") << "import small.svg" << small << "Imported 2 shapes from small.svg. 1 elements were left out." << "good.lhp" << "good.lhp" << true << "4 shapes, 2 selected, 4 layers" << "7";
        refused("save into no folder", "save /nonexistent-folder/new.lhp", {}, "Cannot save /nonexistent-folder/new.lhp");
        refused("missing file", "open missing.lhp", {}, "Cannot open");
        refused("truncated project", "open bad.lhp", "truncate", "bad.lhp: The project file is truncated.");
        refused("layers with a repeated colour", "open bad.lhp", "repeat", "bad.lhp: The layers of the project cannot be read.");
        refused("malformed SVG opened", "open bad.svg", "<svg><rect width=\"1\" height=\"1\">", "bad.svg: The SVG file is not well-formed");
        refused("malformed SVG imported", "import bad.svg", "<svg><rect width=\"1\" height=\"1\">", "bad.svg: The SVG file is not well-formed");
        // clang-format on
    }

    void files()
    {
        QFETCH(QString, step);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, outcome);
        m_window->ShowSampleDrawing();
        manager()->GetLayerByColor(0x0B00FF)->CUT.CUT_SPEED = 42;
        const QStringList order = layerColours();
        QString error;
        QVERIFY(m_window->SaveProject(path("good.lhp"), &error));
        const QString file = path(step.section(QLatin1Char(' '), 1));
        if (bytes == "truncate") {
            bytes = m_env->readFile(path("good.lhp")).chopped(10);
        } else if (bytes == "repeat") {
            // A layer stream holding its first record twice.
            QBuffer stream;
            stream.open(QIODevice::WriteOnly);
            manager()->SaveLayers(&stream);
            const QByteArray layers = stream.data();
            const qsizetype record = (layers.size() - 8) / qsizetype(manager()->GetLayerCount());
            CProjectFile project;
            project.m_items = m_window->Drawing()->Items();
            project.m_layers = layers.left(4) + QByteArray("\x02\0\0\0", 4) + layers.mid(8, record) + layers.mid(8, record);
            QBuffer out;
            QVERIFY(out.open(QIODevice::WriteOnly) && project.Write(&out));
            bytes = out.data();
        }
        QVERIFY(bytes.isEmpty() || m_env->writeFile(file, bytes));
        m_window->Drawing()->SetItems(twoShapes());
        manager()->GetLayerByColor(0x0B00FF)->CUT.CUT_SPEED = 7;
        const std::vector<CDrawItem> before = m_window->Drawing()->Items();

        const bool ok = step.startsWith(QLatin1String("save")) ? m_window->SaveProject(file, &error)
            : step.startsWith(QLatin1String("import"))         ? m_window->ImportSvg(file, &error)
                                                               : m_window->OpenDrawing(file, &error);
        if (ok)
            QCOMPARE(status(), outcome);
        else
            QVERIFY2(error.contains(outcome) && m_window->Drawing()->Items() == before, qPrintable(error));
        QFETCH(QString, title);
        QFETCH(QString, project);
        QVERIFY2(m_window->windowTitle().startsWith(title), qPrintable(m_window->windowTitle()));
        QCOMPARE(m_window->ProjectPath(), project.isEmpty() ? project : path(project));
        QTEST(m_window->IsModified(), "modified");
        QTEST(counts(), "counts");
        const CLayerParam *blue = manager()->GetLayerByColor(0x0B00FF);
        QTEST(blue ? QString::number(blue->CUT.CUT_SPEED) : QStringLiteral("none"), "blueSpeed");
        // The layers are the drawing's colours; a project brings its own order.
        QSet<QString> used;
        for (const CDrawItem &item : m_window->Drawing()->Items())
            used.insert(hex(item.Color()));
        const QStringList layers = layerColours();
        QCOMPARE(QSet<QString>(layers.cbegin(), layers.cend()), used);
        if (ok && step == QLatin1String("open good.lhp"))
            QCOMPARE(layers, order);
        // What was opened or imported fills the view.
        const QRectF shown = m_window->Canvas()->ViewTransform().mapRect(m_window->Drawing()->Bounds());
        const QRectF canvas = m_window->Canvas()->rect();
        if (ok && !step.startsWith(QLatin1String("save")))
            QVERIFY2(canvas.contains(shown) && (shown.width() > 0.9 * canvas.width() || shown.height() > 0.9 * canvas.height()),
                     qPrintable(BoundsText(shown) + QStringLiteral(" in ") + BoundsText(canvas)));
    }

    void panelFollowsHost()
    {
        m_window->Drawing()->SetItems(twoShapes());
        manager()->GetLayerAt(0)->CUT.CUT_SPEED = 10;
        action(QStringLiteral("action_unitMmPerMin"))->trigger();
        QCOMPARE(table()->cellWidget(0, 2)->toolTip(), QStringLiteral("600.0"));
        QCOMPARE(status(), QStringLiteral("Speeds in mm/min"));
        // The panel's current layer is the canvas's colour, both ways.
        click(QPointF(240, 70));
        QCOMPARE(manager()->GetCurrentLayerColor(), 0xF48244u);
        const quint32 colour = manager()->GetLayerAt(0)->COLOR;
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
    }
};

QTEST_MAIN(tst_MainWindow)
#include "tst_mainwindow.moc"
