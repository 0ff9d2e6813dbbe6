#include "ccanvas.h"
#include "ccolorpalette.h"
#include "cdrawing.h"
#include "chostcallback.h"
#include "cmainwindow.h"
#include "cprojectfile.h"
#include "csvgimporter.h"
#include "drawitemtext.h"
#include "testenvironment.h"

#include "cshape.h"
#include "cshapelist.h"
#include "ctranslator.h"
#include "ilayermgr.h"

#include <QAction>
#include <QBuffer>
#include <QDockWidget>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QStatusBar>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>

#include <algorithm>
#include <memory>

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
    return std::any_of(text.cbegin(), text.cend(),
                       [](QChar c) { return c.unicode() >= 0x4E00 && c.unicode() <= 0x9FFF; });
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QString hex(quint32 colour) { return QStringLiteral("%1").arg(colour, 6, 16, QLatin1Char('0')); }

} // namespace

class tst_MainWindow : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<CMainWindow> m_window;

    QAction *action(const char *name) const
    {
        auto *found = m_window->findChild<QAction *>(QLatin1String(name));
        if (!found)
            qFatal("no action %s", name);
        return found;
    }
    QStringList layerColours() const
    {
        QStringList colours;
        ILayerMgr *manager = m_window->Manager();
        for (quint32 i = 0; i < manager->GetLayerCount(); ++i)
            colours.append(hex(manager->GetLayerAt(i)->COLOR));
        return colours;
    }
    QString items() const { return DrawItemsText(m_window->Drawing()->Items()); }
    QString status() const { return m_window->statusBar()->currentMessage(); }
    QString counts() const { return m_window->findChild<QLabel *>(QStringLiteral("label_counts"))->text(); }
    QPoint at(const QPointF &mm) const { return m_window->Canvas()->ToWidget(mm).toPoint(); }
    qreal pixel() const { return 1.0 / m_window->Canvas()->ViewTransform().m11(); }
    void click(const QPointF &mm, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(m_window->Canvas(), Qt::LeftButton, modifiers, at(mm));
    }
    void drag(const QPointF &from, const QPointF &to)
    {
        CCanvas *canvas = m_window->Canvas();
        QTest::mousePress(canvas, Qt::LeftButton, {}, at(from));
        QTest::mouseMove(canvas, at((from + to) / 2));
        QTest::mouseMove(canvas, at(to));
        QTest::mouseRelease(canvas, Qt::LeftButton, {}, at(to));
    }
    QTableWidget *panelTable() const
    {
        return m_window->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
    }
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

    void paletteAndDock()
    {
        const QList<CColorPalette::Entry> &entries = m_window->Palette()->Entries();
        QCOMPARE(entries.size(), 38);
        const QList<quint32> expected{0x000000, 0x0B00FF, 0x00CAFC, 0x227756, 0xCC8B17, 0xCC8B18};
        const QList<quint32> seen{entries.at(0).color, entries.at(1).color, entries.at(5).color,
                                  entries.at(35).color, entries.at(36).color, entries.at(37).color};
        QCOMPARE(seen, expected);
        QCOMPARE(m_window->Palette()->Swatch(0xF48244)->toolTip(), QStringLiteral("Layer 3 (#F48244)"));
        QCOMPARE(m_window->Palette()->Swatch(0x000000)->toolTip(), QStringLiteral("Black (#000000)"));
        QCOMPARE(m_window->Palette()->Swatch(0xCC8B18)->toolTip(), QStringLiteral("Special layer (#CC8B18)"));
        QCOMPARE(m_window->Canvas()->Color(), 0x0B00FFu);

        auto *dock = m_window->findChild<QDockWidget *>(QStringLiteral("dockWidget_layers"));
        QVERIFY(dock);
        QCOMPARE(dock->windowTitle(), QStringLiteral("Layers"));
        auto *placeholder = dock->findChild<QLabel *>(QStringLiteral("label_panelUnavailable"));
        if (m_window->Panel()) {
            QVERIFY(!placeholder);
            QVERIFY(panelTable() && panelTable()->isVisible());
        } else {
            QVERIFY(placeholder && placeholder->isVisible());
            QCOMPARE(placeholder->text(), QStringLiteral("Layer panel unavailable"));
        }
    }

    void missingPlugin()
    {
        CMainWindow window;
        QString error;
        QVERIFY(!window.LoadPlugin(QStringLiteral("/nonexistent/libLayerMgr.so"), &error));
        QVERIFY2(error.contains(QStringLiteral("libLayerMgr.so")), qPrintable(error));
        window.Drawing()->SetItems(twoShapes());
        QCOMPARE(window.Manager(), nullptr);
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
        action(qPrintable(tool))->trigger();
        QTest::mouseClick(m_window->Palette()->Swatch(colour), Qt::LeftButton);
        // A drag of a pixel draws nothing.
        QTest::mousePress(m_window->Canvas(), Qt::LeftButton, {}, at(QPointF(100, 100)));
        QTest::mouseRelease(m_window->Canvas(), Qt::LeftButton, {}, at(QPointF(100, 100)) + QPoint(1, 1));
        QCOMPARE(m_window->Drawing()->Count(), 0);
        QCOMPARE(m_window->Manager()->GetLayerCount(), 0u);

        drag(QPointF(150, 140), QPointF(50, 60));
        QCOMPARE(items(), QString(tool).remove(QStringLiteral("action_tool")).toLower() + " #" + hex(colour));
        const QRectF drawn = m_window->Drawing()->ItemAt(0).Bounds();
        QVERIFY2(qAbs(drawn.left() - 50) < pixel() && qAbs(drawn.width() - 100) < 2 * pixel(),
                 qPrintable(BoundsText(drawn)));
        QCOMPARE(layerColours(), QStringList{hex(colour)});
        QVERIFY(m_window->IsModified());
        QCOMPARE(counts(), QStringLiteral("1 shapes, 0 selected, 1 layers"));
    }

    void mouseSelectsAndMoves()
    {
        m_window->Drawing()->SetItems(twoShapes());
        click(QPointF(240, 70));
        QCOMPARE(m_window->Drawing()->SelectedIndexes(), QList<int>{1});
        QVERIFY(m_window->Drawing()->ShapeList()->GetShape(1)->IsSelected());
        click(QPointF(20, 60), Qt::ShiftModifier);
        QCOMPARE(m_window->Drawing()->SelectedIndexes(), (QList<int>{0, 1}));
        QCOMPARE(counts(), QStringLiteral("2 shapes, 2 selected, 2 layers"));
        click(QPointF(160, 200));
        QCOMPARE(m_window->Drawing()->SelectedCount(), 0);

        drag(QPointF(190, 30), QPointF(300, 120));
        QCOMPARE(m_window->Drawing()->SelectedIndexes(), QList<int>{1});
        drag(QPointF(10, 10), QPointF(300, 120));
        QCOMPARE(m_window->Drawing()->SelectedIndexes(), (QList<int>{0, 1}));

        click(QPointF(160, 200));
        drag(QPointF(240, 70), QPointF(260, 100));
        const QRectF moved = m_window->Drawing()->ItemAt(1).Bounds();
        QVERIFY2(qAbs(moved.left() - 220) < 2 * pixel() && qAbs(moved.top() - 70) < 2 * pixel(),
                 qPrintable(BoundsText(moved)));
        QCOMPARE(BoundsText(m_window->Drawing()->ItemAt(0).Bounds()), QStringLiteral("20,20 100x80"));
    }

    void editsFollowLayers()
    {
        m_window->Drawing()->SetItems(twoShapes());
        action("action_selectAll")->trigger();
        action("action_group")->trigger();
        QCOMPARE(items(), QStringLiteral("group #0b00ff [rect #0b00ff; ellipse #f48244 fill]"));
        QCOMPARE(layerColours(), QStringList{"0b00ff"});
        action("action_ungroup")->trigger();
        QCOMPARE(layerColours().size(), 2);

        m_window->Drawing()->SetItems(twoShapes());
        click(QPointF(240, 70));
        QTest::mouseClick(m_window->Palette()->Swatch(0x2431BD), Qt::LeftButton);
        QCOMPARE(items(), QStringLiteral("rect #0b00ff; ellipse #2431bd fill"));
        const QStringList layers = layerColours();
        QCOMPARE(QSet<QString>(layers.cbegin(), layers.cend()), (QSet<QString>{"0b00ff", "2431bd"}));
        QCOMPARE(status(), QStringLiteral("1 shapes moved to colour #2431bd"));
        QCOMPARE(m_window->Canvas()->Color(), 0x2431BDu);

        action("action_delete")->trigger();
        QCOMPARE(items(), QStringLiteral("rect #0b00ff"));
        QCOMPARE(layerColours(), QStringList{"0b00ff"});
    }

    void hostNotifications_data()
    {
        QTest::addColumn<int>("notification");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("modifies");
        QTest::newRow("layers changed") << 0 << 0 << "Layer parameters changed" << true;
        QTest::newRow("laser selection") << 1 << 0 << "Laser source of the layers changed" << true;
        QTest::newRow("work type") << 1 << 2 << "Work type of a layer changed" << true;
        QTest::newRow("layers moved") << 1 << 3 << "Layers moved" << true;
        QTest::newRow("unknown event") << 1 << 9 << "Layer event 9" << true;
        QTest::newRow("current layer") << 2 << 0 << "Current layer changed" << false;
    }

    void hostNotifications()
    {
        QFETCH(int, notification);
        QFETCH(int, code);
        m_window->ShowSampleDrawing();
        QVERIFY(!m_window->IsModified());
        ILayerHost *host = m_window->HostCallback();
        if (notification == 0)
            host->LayersChanged();
        else if (notification == 1)
            host->LayerEvent(code);
        else
            host->CurrentLayerChanged();
        host->RefreshView();
        QTEST(status(), "message");
        QTEST(m_window->IsModified(), "modifies");
    }

    void languageSwitch()
    {
        action("action_languageChs")->trigger();
        QStringList texts{m_window->findChild<QDockWidget *>()->windowTitle(), counts(),
                          m_window->windowTitle(), m_window->Palette()->Swatch(0xF48244)->toolTip(),
                          m_window->Palette()->Swatch(0)->toolTip(),
                          m_window->Palette()->Swatch(0xCC8B17)->toolTip(),
                          CHostCallback::LayersChangedText(), CHostCallback::LayerEventText(0),
                          CHostCallback::LayerEventText(2), CHostCallback::LayerEventText(3),
                          CHostCallback::LayerEventText(5), CHostCallback::CurrentLayerChangedText()};
        const auto menus = m_window->menuBar()->findChildren<QMenu *>();
        QVERIFY(!menus.isEmpty());
        for (const QMenu *menu : menus) {
            if (!menu->objectName().startsWith(QLatin1String("menu_")))
                continue;
            texts << menu->title();
            for (const QAction *a : menu->actions()) {
                if (!a->isSeparator())
                    texts << a->text() << a->statusTip();
            }
        }
        if (auto *placeholder = m_window->findChild<QLabel *>(QStringLiteral("label_panelUnavailable")))
            texts << placeholder->text();
        texts.removeAll(QString());
        texts.removeIf(hasChinese);
        QVERIFY2(texts.isEmpty(), qPrintable(texts.join(QStringLiteral(" | "))));
        QVERIFY(action("action_languageChs")->isChecked());

        // Errors of files that cannot be opened come in the chosen language.
        const QList<QPair<QString, QByteArray>> bad{{"bad.svg", "<svg><g></svg>"},
                                                    {"nocolour.svg", "<svg><line x2=\"4\"/></svg>"},
                                                    {"bad.lhp", "\x89LHPRJ"},
                                                    {"none.svg", QByteArray()}};
        for (const auto &[name, bytes] : bad) {
            if (!bytes.isEmpty())
                QVERIFY(writeFile(path(name), bytes));
            QString error;
            QVERIFY(!m_window->OpenDrawing(path(name), &error));
            QVERIFY2(hasChinese(error), qPrintable(name + ": " + error));
        }

        action("action_languageEn")->trigger();
        QCOMPARE(m_window->findChild<QMenu *>(QStringLiteral("menu_file"))->title(), QStringLiteral("&File"));
        QCOMPARE(action("action_importSvg")->text(), QStringLiteral("&Import SVG…"));
        QCOMPARE(m_window->findChild<QDockWidget *>()->windowTitle(), QStringLiteral("Layers"));
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
        QVERIFY(!m_window->IsModified());
        QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("drawing.lhp")));
        QCOMPARE(status(), QStringLiteral("Saved drawing.lhp."));

        m_window->Drawing()->SetItems(twoShapes());
        m_window->Manager()->GetLayerByColor(0x0B00FF)->CUT.CUT_SPEED = 7;
        m_window->Manager()->GetLayerByColor(0x0B00FF)->WORK_TYPE = WORK_CUTTING;

        QVERIFY2(m_window->OpenProject(path("drawing.lhp"), &error), qPrintable(error));
        QCOMPARE(items(), DrawItemsText(saved));
        QVERIFY(m_window->Drawing()->Items() == saved);
        QCOMPARE(layerColours(), order);
        blue = m_window->Manager()->GetLayerByColor(0x0B00FF);
        QCOMPARE(blue->WORK_TYPE, qint32(WORK_SCORING));
        QCOMPARE(blue->CUT.CUT_SPEED, 42.0);
        QCOMPARE(m_window->ProjectPath(), path("drawing.lhp"));
        QVERIFY(!m_window->IsModified());
        QCOMPARE(status(), QStringLiteral("Opened drawing.lhp."));

        QVERIFY(!m_window->SaveProject(QStringLiteral("/nonexistent-folder/drawing.lhp"), &error));
        QVERIFY2(error.startsWith(QStringLiteral("Cannot save /nonexistent-folder/drawing.lhp")), qPrintable(error));
        QCOMPARE(m_window->ProjectPath(), path("drawing.lhp"));
    }

    void badProjectChangesNothing_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<QString>("error");
        const QString notProject = QStringLiteral("bad.lhp: The file is not a project of this program.");
        QTest::newRow("missing file") << "missing" << "Cannot open";
        QTest::newRow("empty file") << "empty" << notProject;
        QTest::newRow("an SVG file") << "svg" << notProject;
        QTest::newRow("truncated") << "truncate" << "bad.lhp: The project file is truncated.";
        QTest::newRow("a byte changed") << "flip" << "bad.lhp: The project file is damaged.";
        QTest::newRow("layers with a repeated colour") << "repeat" << "bad.lhp: The layers of the project cannot be read.";
    }

    void badProjectChangesNothing()
    {
        QFETCH(QString, damage);
        QFETCH(QString, error);
        m_window->ShowSampleDrawing();
        QString message;
        QVERIFY(m_window->SaveProject(path("good.lhp"), &message));
        QFile goodFile(path("good.lhp"));
        QVERIFY(goodFile.open(QIODevice::ReadOnly));
        QByteArray bytes = goodFile.readAll();
        if (damage == QLatin1String("empty"))
            bytes.clear();
        else if (damage == QLatin1String("svg"))
            bytes = "<svg><rect width=\"1\" height=\"1\"/></svg>";
        else if (damage == QLatin1String("truncate"))
            bytes.chop(10);
        else if (damage == QLatin1String("flip"))
            bytes[bytes.size() / 2] = char(bytes[bytes.size() / 2] ^ 0x40);
        else if (damage == QLatin1String("repeat")) {
            // A layer stream holding its first record twice.
            QBuffer stream;
            stream.open(QIODevice::WriteOnly);
            m_window->Manager()->SaveLayers(&stream);
            const QByteArray layers = stream.data();
            const qsizetype record = (layers.size() - 8) / qsizetype(m_window->Manager()->GetLayerCount());
            CProjectFile project;
            project.m_items = m_window->Drawing()->Items();
            project.m_layers = layers.left(4) + QByteArray("\x02\0\0\0", 4) + layers.mid(8, record)
                + layers.mid(8, record);
            QBuffer out;
            out.open(QIODevice::WriteOnly);
            QVERIFY(project.Write(&out));
            bytes = out.data();
        }
        if (damage != QLatin1String("missing"))
            QVERIFY(writeFile(path("bad.lhp"), bytes));

        m_window->Drawing()->SetItems(twoShapes());
        m_window->Manager()->GetLayerByColor(0xF48244)->CUT.CUT_SPEED = 33;
        const std::vector<CDrawItem> before = m_window->Drawing()->Items();
        const QStringList colours = layerColours();
        const QString title = m_window->windowTitle();

        QVERIFY(!m_window->OpenProject(path("bad.lhp"), &message));
        QVERIFY2(message.contains(error), qPrintable(message));
        QVERIFY(m_window->Drawing()->Items() == before);
        QCOMPARE(layerColours(), colours);
        QCOMPARE(m_window->Manager()->GetLayerByColor(0xF48244)->CUT.CUT_SPEED, 33.0);
        QCOMPARE(m_window->windowTitle(), title);
        QCOMPARE(m_window->ProjectPath(), path("good.lhp"));
        QVERIFY(!m_window->OpenDrawing(path("bad.lhp"), &message) || damage == QLatin1String("svg"));
    }

    void importAndOpenSvg()
    {
        m_window->ShowSampleDrawing();
        QString error;
        QVERIFY2(m_window->ImportSvg(kSampleSvg, &error), qPrintable(error));
        QCOMPARE(m_window->Drawing()->Count(), 8 + 11);
        QList<int> imported;
        for (int i = 8; i < 19; ++i)
            imported.append(i);
        QCOMPARE(m_window->Drawing()->SelectedIndexes(), imported);
        QCOMPARE(status(), QStringLiteral("Imported 11 shapes from sample.svg. 1 elements were left out."));
        for (quint32 colour : {0xF5400Fu, 0xFFD700u, 0x336633u})
            QVERIFY(m_window->Manager()->GetLayerByColor(colour));
        QVERIFY(m_window->IsModified());

        QVERIFY2(m_window->OpenDrawing(kSampleSvg, &error), qPrintable(error));
        QCOMPARE(m_window->Drawing()->Count(), 11);
        QSet<QString> used;
        for (const CDrawItem &item : m_window->Drawing()->Items())
            used.insert(hex(item.Color()));
        const QStringList colours = layerColours();
        QCOMPARE(QSet<QString>(colours.cbegin(), colours.cend()), used);
        QCOMPARE(colours.size(), used.size());
        QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("sample.svg")));
        QVERIFY(m_window->ProjectPath().isEmpty());
        QVERIFY(!m_window->IsModified());
    }

    void badSvgChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("error");
        QTest::newRow("malformed") << QByteArray("<svg><rect width=\"1\" height=\"1\">") << "is not well-formed";
        QTest::newRow("no colours") << QByteArray("<svg><rect width=\"1\" height=\"1\" fill=\"none\"/></svg>")
                                    << "has no colours";
        QTest::newRow("only text") << QByteArray("<svg><text>hi</text></svg>") << "has no shapes";
        QTest::newRow("not xml") << QByteArray("\x01\x02\x03 binary", 10) << "is not well-formed";
        QTest::newRow("huge") << "<svg>" + QByteArray(CSvgImporter::kMaxBytes, ' ') + "<rect width=\"1\" height=\"1\"/></svg>"
                              << "is larger than 20 MB";
    }

    void badSvgChangesNothing()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, error);
        QVERIFY(writeFile(path("bad.svg"), bytes));
        m_window->ShowSampleDrawing();
        const std::vector<CDrawItem> before = m_window->Drawing()->Items();
        const QStringList colours = layerColours();
        QString message;
        QVERIFY(!m_window->ImportSvg(path("bad.svg"), &message));
        QVERIFY2(message.startsWith(QStringLiteral("bad.svg: ")) && message.contains(error), qPrintable(message));
        QVERIFY(!m_window->OpenDrawing(path("bad.svg"), &message));
        QVERIFY2(message.contains(error), qPrintable(message));
        QVERIFY(m_window->Drawing()->Items() == before);
        QCOMPARE(layerColours(), colours);
        QVERIFY(!m_window->IsModified());
    }

    // With the plug-in's layer panel only.
    void panelAndCanvasShareCurrentLayer()
    {
        if (!m_window->Panel())
            QSKIP("The plug-in of this build makes no layer panel.");
        m_window->Drawing()->SetItems(twoShapes());
        click(QPointF(240, 70));
        QCOMPARE(m_window->Manager()->GetCurrentLayerColor(), 0xF48244u);
        click(QPointF(20, 60));
        QCOMPARE(m_window->Manager()->GetCurrentLayerColor(), 0x0B00FFu);

        m_window->ShowSampleDrawing();
        QTableWidget *table = panelTable();
        const quint32 colour = m_window->Manager()->GetLayerAt(2)->COLOR;
        QVERIFY(colour != m_window->Canvas()->Color());
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {},
                          table->visualRect(table->model()->index(2, 4)).center());
        QCOMPARE(status(), QStringLiteral("Current layer changed"));
        QCOMPARE(m_window->Palette()->CurrentColor(), colour);
        QCOMPARE(m_window->Canvas()->Color(), colour);
    }

    void unitsReachPanel_data()
    {
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("speed");
        // A cutting speed of 10 mm/s.
        QTest::newRow("inch/s") << "action_unitInchPerSec" << "0.4";
        QTest::newRow("mm/s") << "action_unitMmPerSec" << "10.0";
        QTest::newRow("inch/min") << "action_unitInchPerMin" << "23.6";
        QTest::newRow("mm/min") << "action_unitMmPerMin" << "600.0";
    }

    void unitsReachPanel()
    {
        QFETCH(QString, unit);
        if (!m_window->Panel())
            QSKIP("The plug-in of this build makes no layer panel.");
        m_window->Drawing()->SetItems(twoShapes());
        for (quint32 i = 0; i < m_window->Manager()->GetLayerCount(); ++i)
            m_window->Manager()->GetLayerAt(i)->CUT.CUT_SPEED = 10;
        action(qPrintable(unit))->trigger();
        QWidget *cell = panelTable()->cellWidget(0, 2);
        QVERIFY(cell);
        QTEST(cell->toolTip(), "speed");
        QVERIFY2(status().startsWith(QStringLiteral("Speeds in ")), qPrintable(status()));
    }

    void twoLasersReachPanel()
    {
        if (!m_window->Panel())
            QSKIP("The plug-in of this build makes no layer panel.");
        QCOMPARE(panelTable()->horizontalHeaderItem(4)->text(), QStringLiteral("Type"));
        action("action_twoLasers")->trigger();
        QCOMPARE(panelTable()->horizontalHeaderItem(4)->text(), QStringLiteral("Type⥮"));
        QVERIFY(m_window->TwoLasers());
        action("action_twoLasers")->trigger();
        QCOMPARE(panelTable()->horizontalHeaderItem(4)->text(), QStringLiteral("Type"));
    }
};

QTEST_MAIN(tst_MainWindow)
#include "tst_mainwindow.moc"
