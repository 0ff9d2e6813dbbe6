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
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QStatusBar>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>

#include <memory>

class tst_MainWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void paletteOfLayerColours();
    void missingPlugin();
    void dockHoldsPanelOrPlaceholder();
    void drawWithMouse_data();
    void drawWithMouse();
    void tinyDragDrawsNothing();
    void clickSelects();
    void rubberBandSelects();
    void dragMovesSelection();
    void deleteRemovesLayer();
    void groupTakesFirstColour();
    void paletteRecoloursSelection();
    void hostNotifications_data();
    void hostNotifications();
    void languageSwitch();
    void errorsInChinese_data();
    void errorsInChinese();
    void projectRoundTrip();
    void badProjectChangesNothing_data();
    void badProjectChangesNothing();
    void saveWhereNothingCanBeWritten();
    void importSvgAddsShapes();
    void badSvgChangesNothing_data();
    void badSvgChangesNothing();
    void openSvgReplacesDrawing();

    // With the plug-in's layer panel only.
    void panelFollowsCanvasSelection();
    void panelRowChoosesDrawingColour();
    void unitsReachPanel_data();
    void unitsReachPanel();
    void twoLasersReachPanel();

private:
    QAction *action(const char *name) const;
    QStringList layerColours() const;
    void setDrawing(std::vector<CDrawItem> items);
    QPoint at(const QPointF &mm) const;
    void drag(const QPointF &from, const QPointF &to, Qt::KeyboardModifiers modifiers = {});
    QTableWidget *panelTable() const;

    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<CMainWindow> m_window;
};

namespace {

const QString kPlugin = QStringLiteral(LAYERMGR_BUILD_BIN "/libLayerMgr.so");
const QString kSampleSvg = QStringLiteral(LAYERMGR_SOURCE_DIR "/resources/Samples/sample.svg");

// A blue outline rectangle and a filled orange ellipse beside it.
std::vector<CDrawItem> twoShapes()
{
    std::vector<CDrawItem> items;
    items.push_back(CDrawItem::Rect(QRectF(20, 20, 100, 80), 0x0B00FF));
    items.push_back(CDrawItem::Ellipse(QRectF(200, 40, 80, 60), 0xF48244, true));
    return items;
}

bool hasChinese(const QString &text)
{
    for (QChar c : text) {
        if (c.unicode() >= 0x4E00 && c.unicode() <= 0x9FFF)
            return true;
    }
    return false;
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

void tst_MainWindow::init()
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

void tst_MainWindow::cleanup()
{
    m_window.reset();
    CTranslator::GetInstance()->SetLanguage(QString());
    CTranslator::GetInstance()->SetResourceDir(QString());
    m_env.reset();
}

QAction *tst_MainWindow::action(const char *name) const
{
    auto *found = m_window->findChild<QAction *>(QLatin1String(name));
    if (!found)
        qFatal("no action %s", name);
    return found;
}

QStringList tst_MainWindow::layerColours() const
{
    QStringList colours;
    ILayerMgr *manager = m_window->Manager();
    for (quint32 i = 0; i < manager->GetLayerCount(); ++i)
        colours.append(QStringLiteral("%1").arg(manager->GetLayerAt(i)->COLOR, 6, 16, QLatin1Char('0')));
    return colours;
}

void tst_MainWindow::setDrawing(std::vector<CDrawItem> items)
{
    m_window->Drawing()->SetItems(std::move(items));
}

QPoint tst_MainWindow::at(const QPointF &mm) const
{
    return m_window->Canvas()->ToWidget(mm).toPoint();
}

void tst_MainWindow::drag(const QPointF &from, const QPointF &to, Qt::KeyboardModifiers modifiers)
{
    CCanvas *canvas = m_window->Canvas();
    QTest::mousePress(canvas, Qt::LeftButton, modifiers, at(from));
    QTest::mouseMove(canvas, at((from + to) / 2));
    QTest::mouseMove(canvas, at(to));
    QTest::mouseRelease(canvas, Qt::LeftButton, modifiers, at(to));
}

QTableWidget *tst_MainWindow::panelTable() const
{
    return m_window->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
}

void tst_MainWindow::paletteOfLayerColours()
{
    const QList<CColorPalette::Entry> &entries = m_window->Palette()->Entries();
    QCOMPARE(entries.size(), 38);
    QCOMPARE(entries.first().color, 0x000000u);
    QCOMPARE(entries.at(1).color, 0x0B00FFu);
    QCOMPARE(entries.at(5).color, 0x00CAFCu);
    QCOMPARE(entries.at(35).color, 0x227756u);
    QCOMPARE(entries.at(36).color, 0xCC8B17u);
    QCOMPARE(entries.at(37).color, 0xCC8B18u);
    QCOMPARE(m_window->Palette()->Swatch(0xF48244)->toolTip(), QStringLiteral("Layer 3 (#F48244)"));
    QCOMPARE(m_window->Palette()->Swatch(0x000000)->toolTip(), QStringLiteral("Black (#000000)"));
    QCOMPARE(m_window->Palette()->Swatch(0xCC8B18)->toolTip(), QStringLiteral("Special layer (#CC8B18)"));
    // New shapes start on layer 1.
    QCOMPARE(m_window->Canvas()->Color(), 0x0B00FFu);
}

void tst_MainWindow::missingPlugin()
{
    CMainWindow window;
    QString error;
    QVERIFY(!window.LoadPlugin(QStringLiteral("/nonexistent/libLayerMgr.so"), &error));
    QVERIFY2(error.contains(QStringLiteral("libLayerMgr.so")), qPrintable(error));
    // Without a plug-in the window still draws and saves nothing of layers.
    window.Drawing()->SetItems(twoShapes());
    QCOMPARE(window.Manager(), nullptr);
}

void tst_MainWindow::dockHoldsPanelOrPlaceholder()
{
    auto *dock = m_window->findChild<QDockWidget *>(QStringLiteral("dockWidget_layers"));
    QVERIFY(dock);
    QCOMPARE(dock->windowTitle(), QStringLiteral("Layers"));
    auto *placeholder = dock->findChild<QLabel *>(QStringLiteral("label_panelUnavailable"));
    if (m_window->Panel()) {
        QVERIFY(!placeholder);
        QVERIFY(panelTable());
        QVERIFY(panelTable()->isVisible());
    } else {
        QVERIFY(placeholder);
        QCOMPARE(placeholder->text(), QStringLiteral("Layer panel unavailable"));
        QVERIFY(placeholder->isVisible());
    }
}

void tst_MainWindow::drawWithMouse_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<uint>("colour");
    QTest::addColumn<QString>("shape");
    QTest::addColumn<QString>("bounds");

    QTest::newRow("rectangle, layer 3") << "action_toolRect" << 0xF48244u << "rect #f48244" << "50,60 100x80";
    QTest::newRow("ellipse, special colour") << "action_toolEllipse" << 0xCC8B17u << "ellipse #cc8b17"
                                             << "50,60 100x80";
    QTest::newRow("line, black") << "action_toolLine" << 0x000000u << "line #000000" << "50,60 100x80";
}

void tst_MainWindow::drawWithMouse()
{
    QFETCH(QString, tool);
    QFETCH(uint, colour);
    QFETCH(QString, shape);
    QFETCH(QString, bounds);

    setDrawing({});
    QCOMPARE(m_window->Manager()->GetLayerCount(), 0u);
    action(qPrintable(tool))->trigger();
    QTest::mouseClick(m_window->Palette()->Swatch(colour), Qt::LeftButton);
    drag(QPointF(150, 140), QPointF(50, 60));

    QCOMPARE(DrawItemsText(m_window->Drawing()->Items()), shape);
    // Pixels back to millimetres: within a pixel's worth.
    const QRectF drawn = m_window->Drawing()->ItemAt(0).Bounds();
    const qreal pixel = 1.0 / m_window->Canvas()->ViewTransform().m11();
    QVERIFY2(qAbs(drawn.left() - 50) < pixel && qAbs(drawn.width() - 100) < 2 * pixel,
             qPrintable(BoundsText(drawn) + QStringLiteral(" for ") + bounds));
    QCOMPARE(layerColours(), QStringList{QStringLiteral("%1").arg(colour, 6, 16, QLatin1Char('0'))});
    QVERIFY(m_window->IsModified());
    auto *counts = m_window->findChild<QLabel *>(QStringLiteral("label_counts"));
    QCOMPARE(counts->text(), QStringLiteral("1 shapes, 0 selected, 1 layers"));
}

void tst_MainWindow::tinyDragDrawsNothing()
{
    setDrawing({});
    action("action_toolRect")->trigger();
    CCanvas *canvas = m_window->Canvas();
    const QPoint p = at(QPointF(100, 100));
    QTest::mousePress(canvas, Qt::LeftButton, {}, p);
    QTest::mouseRelease(canvas, Qt::LeftButton, {}, p + QPoint(1, 1));
    QCOMPARE(m_window->Drawing()->Count(), 0);
    QCOMPARE(m_window->Manager()->GetLayerCount(), 0u);
}

void tst_MainWindow::clickSelects()
{
    setDrawing(twoShapes());
    CCanvas *canvas = m_window->Canvas();
    QTest::mouseClick(canvas, Qt::LeftButton, {}, at(QPointF(240, 70)));
    QCOMPARE(m_window->Drawing()->SelectedIndexes(), QList<int>{1});
    QVERIFY(m_window->Drawing()->ShapeList()->GetShape(1)->IsSelected());
    QTest::mouseClick(canvas, Qt::LeftButton, Qt::ShiftModifier, at(QPointF(20, 60)));
    QCOMPARE(m_window->Drawing()->SelectedIndexes(), (QList<int>{0, 1}));
    auto *counts = m_window->findChild<QLabel *>(QStringLiteral("label_counts"));
    QCOMPARE(counts->text(), QStringLiteral("2 shapes, 2 selected, 2 layers"));
    QTest::mouseClick(canvas, Qt::LeftButton, {}, at(QPointF(160, 200)));
    QCOMPARE(m_window->Drawing()->SelectedCount(), 0);
}

void tst_MainWindow::rubberBandSelects()
{
    setDrawing(twoShapes());
    drag(QPointF(190, 30), QPointF(300, 120));
    QCOMPARE(m_window->Drawing()->SelectedIndexes(), QList<int>{1});
    drag(QPointF(10, 10), QPointF(300, 120));
    QCOMPARE(m_window->Drawing()->SelectedIndexes(), (QList<int>{0, 1}));
}

void tst_MainWindow::dragMovesSelection()
{
    setDrawing(twoShapes());
    drag(QPointF(240, 70), QPointF(260, 100));
    const QRectF moved = m_window->Drawing()->ItemAt(1).Bounds();
    const qreal pixel = 1.0 / m_window->Canvas()->ViewTransform().m11();
    QVERIFY2(qAbs(moved.left() - 220) < 2 * pixel && qAbs(moved.top() - 70) < 2 * pixel,
             qPrintable(BoundsText(moved)));
    QCOMPARE(BoundsText(m_window->Drawing()->ItemAt(0).Bounds()), QStringLiteral("20,20 100x80"));
}

void tst_MainWindow::deleteRemovesLayer()
{
    setDrawing(twoShapes());
    QCOMPARE(layerColours().size(), 2);
    QTest::mouseClick(m_window->Canvas(), Qt::LeftButton, {}, at(QPointF(240, 70)));
    action("action_delete")->trigger();
    QCOMPARE(DrawItemsText(m_window->Drawing()->Items()), QStringLiteral("rect #0b00ff"));
    QCOMPARE(layerColours(), QStringList{QStringLiteral("0b00ff")});
}

void tst_MainWindow::groupTakesFirstColour()
{
    setDrawing(twoShapes());
    action("action_selectAll")->trigger();
    action("action_group")->trigger();
    QCOMPARE(DrawItemsText(m_window->Drawing()->Items()),
             QStringLiteral("group #0b00ff [rect #0b00ff; ellipse #f48244 fill]"));
    // The plug-in sees the group's own colour only.
    QCOMPARE(layerColours(), QStringList{QStringLiteral("0b00ff")});
    action("action_ungroup")->trigger();
    QCOMPARE(layerColours().size(), 2);
}

void tst_MainWindow::paletteRecoloursSelection()
{
    setDrawing(twoShapes());
    QTest::mouseClick(m_window->Canvas(), Qt::LeftButton, {}, at(QPointF(240, 70)));
    QTest::mouseClick(m_window->Palette()->Swatch(0x2431BD), Qt::LeftButton);
    QCOMPARE(DrawItemsText(m_window->Drawing()->Items()),
             QStringLiteral("rect #0b00ff; ellipse #2431bd fill"));
    const QStringList layers = layerColours();
    QCOMPARE(QSet<QString>(layers.cbegin(), layers.cend()), (QSet<QString>{QStringLiteral("0b00ff"), QStringLiteral("2431bd")}));
    QCOMPARE(m_window->statusBar()->currentMessage(), QStringLiteral("1 shapes moved to colour #2431bd"));
    QCOMPARE(m_window->Canvas()->Color(), 0x2431BDu);
}

void tst_MainWindow::hostNotifications_data()
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

void tst_MainWindow::hostNotifications()
{
    QFETCH(int, notification);
    QFETCH(int, code);
    QFETCH(QString, message);
    QFETCH(bool, modifies);

    m_window->ShowSampleDrawing();
    QVERIFY(!m_window->IsModified());
    // As the plug-in calls its host.
    ILayerHost *host = m_window->HostCallback();
    if (notification == 0)
        host->LayersChanged();
    else if (notification == 1)
        host->LayerEvent(code);
    else
        host->CurrentLayerChanged();
    host->RefreshView();
    QCOMPARE(m_window->statusBar()->currentMessage(), message);
    QCOMPARE(m_window->IsModified(), modifies);
}

void tst_MainWindow::languageSwitch()
{
    action("action_languageChs")->trigger();
    QStringList untranslated;
    const auto menus = m_window->menuBar()->findChildren<QMenu *>();
    QVERIFY(!menus.isEmpty());
    for (const QMenu *menu : menus) {
        if (!menu->objectName().startsWith(QLatin1String("menu_")))
            continue;
        if (!hasChinese(menu->title()))
            untranslated.append(menu->title());
        for (const QAction *a : menu->actions()) {
            if (a->isSeparator())
                continue;
            if (!hasChinese(a->text()))
                untranslated.append(a->text());
            if (!a->statusTip().isEmpty() && !hasChinese(a->statusTip()))
                untranslated.append(a->statusTip());
        }
    }
    for (const QString &text :
         {m_window->findChild<QDockWidget *>()->windowTitle(),
          m_window->findChild<QLabel *>(QStringLiteral("label_counts"))->text(),
          m_window->windowTitle(), m_window->Palette()->Swatch(0xF48244)->toolTip(),
          m_window->Palette()->Swatch(0)->toolTip(), m_window->Palette()->Swatch(0xCC8B17)->toolTip(),
          CHostCallback::LayersChangedText(), CHostCallback::LayerEventText(0),
          CHostCallback::LayerEventText(2), CHostCallback::LayerEventText(3),
          CHostCallback::LayerEventText(5), CHostCallback::CurrentLayerChangedText()}) {
        if (!hasChinese(text))
            untranslated.append(text);
    }
    if (auto *placeholder = m_window->findChild<QLabel *>(QStringLiteral("label_panelUnavailable"))) {
        if (!hasChinese(placeholder->text()))
            untranslated.append(placeholder->text());
    }
    QVERIFY2(untranslated.isEmpty(), qPrintable(untranslated.join(QStringLiteral(" | "))));
    QVERIFY(action("action_languageChs")->isChecked());

    action("action_languageEn")->trigger();
    QCOMPARE(m_window->findChild<QMenu *>(QStringLiteral("menu_file"))->title(), QStringLiteral("&File"));
    QCOMPARE(action("action_importSvg")->text(), QStringLiteral("&Import SVG…"));
    QCOMPARE(m_window->findChild<QDockWidget *>()->windowTitle(), QStringLiteral("Layers"));
}

void tst_MainWindow::errorsInChinese_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("malformed SVG") << "bad.svg" << QByteArray("<svg><g></svg>");
    QTest::newRow("SVG without colours") << "bad.svg" << QByteArray("<svg><line x2=\"4\"/></svg>");
    QTest::newRow("not a project") << "bad.lhp" << QByteArray("\x89LHPRJ");
    QTest::newRow("missing file") << "" << QByteArray();
}

void tst_MainWindow::errorsInChinese()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, bytes);

    action("action_languageChs")->trigger();
    const QString path = m_env->root() + QLatin1Char('/') + (file.isEmpty() ? QStringLiteral("none.svg") : file);
    if (!file.isEmpty())
        QVERIFY(writeFile(path, bytes));
    QString error;
    QVERIFY(!m_window->OpenDrawing(path, &error));
    QVERIFY2(hasChinese(error), qPrintable(error));
}

void tst_MainWindow::projectRoundTrip()
{
    m_window->ShowSampleDrawing();
    CLayerParam *blue = m_window->Manager()->GetLayerByColor(0x0B00FF);
    blue->WORK_TYPE = WORK_SCORING;
    blue->CUT.CUT_SPEED = 42;
    const std::vector<CDrawItem> items = m_window->Drawing()->Items();
    const QStringList order = layerColours();
    const QString path = m_env->root() + QStringLiteral("/drawing.lhp");
    QString error;
    QVERIFY2(m_window->SaveProject(path, &error), qPrintable(error));
    QVERIFY(!m_window->IsModified());
    QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("drawing.lhp")));
    QCOMPARE(m_window->statusBar()->currentMessage(), QStringLiteral("Saved drawing.lhp."));

    // Another drawing, with other parameters for the same colour.
    setDrawing(twoShapes());
    m_window->Manager()->GetLayerByColor(0x0B00FF)->CUT.CUT_SPEED = 7;
    m_window->Manager()->GetLayerByColor(0x0B00FF)->WORK_TYPE = WORK_CUTTING;

    QVERIFY2(m_window->OpenProject(path, &error), qPrintable(error));
    QCOMPARE(DrawItemsText(m_window->Drawing()->Items()), DrawItemsText(items));
    QVERIFY(m_window->Drawing()->Items() == items);
    QCOMPARE(layerColours(), order);
    blue = m_window->Manager()->GetLayerByColor(0x0B00FF);
    QCOMPARE(blue->WORK_TYPE, qint32(WORK_SCORING));
    QCOMPARE(blue->CUT.CUT_SPEED, 42.0);
    QCOMPARE(m_window->ProjectPath(), path);
    QVERIFY(!m_window->IsModified());
    QCOMPARE(m_window->statusBar()->currentMessage(), QStringLiteral("Opened drawing.lhp."));
}

void tst_MainWindow::badProjectChangesNothing_data()
{
    QTest::addColumn<QString>("damage");
    QTest::addColumn<QString>("error");

    QTest::newRow("missing file") << "missing" << "Cannot open";
    QTest::newRow("empty file") << "empty" << "bad.lhp: The file is not a project of this program.";
    QTest::newRow("an SVG file") << "svg" << "bad.lhp: The file is not a project of this program.";
    QTest::newRow("truncated") << "truncate" << "bad.lhp: The project file is truncated.";
    QTest::newRow("a byte changed") << "flip" << "bad.lhp: The project file is damaged.";
    QTest::newRow("layers with a repeated colour") << "repeat"
                                                   << "bad.lhp: The layers of the project cannot be read.";
}

void tst_MainWindow::badProjectChangesNothing()
{
    QFETCH(QString, damage);
    QFETCH(QString, error);

    // A saved project to damage.
    m_window->ShowSampleDrawing();
    const QString good = m_env->root() + QStringLiteral("/good.lhp");
    QString message;
    QVERIFY(m_window->SaveProject(good, &message));
    QFile goodFile(good);
    QVERIFY(goodFile.open(QIODevice::ReadOnly));
    QByteArray bytes = goodFile.readAll();

    const QString bad = m_env->root() + QStringLiteral("/bad.lhp");
    if (damage == QLatin1String("empty")) {
        QVERIFY(writeFile(bad, QByteArray()));
    } else if (damage == QLatin1String("svg")) {
        QVERIFY(writeFile(bad, "<svg><rect width=\"1\" height=\"1\"/></svg>"));
    } else if (damage == QLatin1String("truncate")) {
        QVERIFY(writeFile(bad, bytes.left(bytes.size() - 10)));
    } else if (damage == QLatin1String("flip")) {
        bytes[bytes.size() / 2] = char(bytes[bytes.size() / 2] ^ 0x40);
        QVERIFY(writeFile(bad, bytes));
    } else if (damage == QLatin1String("repeat")) {
        // A layer stream holding its first record twice.
        QBuffer stream;
        stream.open(QIODevice::WriteOnly);
        m_window->Manager()->SaveLayers(&stream);
        const QByteArray layers = stream.data();
        const int count = int(m_window->Manager()->GetLayerCount());
        const qsizetype record = (layers.size() - 8) / count;
        QByteArray twice = layers.left(4) + QByteArray("\x02\0\0\0", 4) + layers.mid(8, record)
            + layers.mid(8, record);
        CProjectFile project;
        project.m_items = m_window->Drawing()->Items();
        project.m_layers = twice;
        QFile file(bad);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(project.Write(&file));
    }

    // What the user has open when trying the bad file.
    setDrawing(twoShapes());
    m_window->Manager()->GetLayerByColor(0xF48244)->CUT.CUT_SPEED = 33;
    const std::vector<CDrawItem> items = m_window->Drawing()->Items();
    const QStringList colours = layerColours();
    const QString title = m_window->windowTitle();

    QVERIFY(!m_window->OpenProject(bad, &message));
    QVERIFY2(message.contains(error), qPrintable(message));
    QVERIFY(m_window->Drawing()->Items() == items);
    QCOMPARE(layerColours(), colours);
    QCOMPARE(m_window->Manager()->GetLayerByColor(0xF48244)->CUT.CUT_SPEED, 33.0);
    QCOMPARE(m_window->windowTitle(), title);
    QCOMPARE(m_window->ProjectPath(), good);
    // Opening a drawing takes the same way for projects.
    QVERIFY(!m_window->OpenDrawing(bad, &message) || damage == QLatin1String("svg"));
}

void tst_MainWindow::saveWhereNothingCanBeWritten()
{
    m_window->ShowSampleDrawing();
    QString error;
    QVERIFY(!m_window->SaveProject(QStringLiteral("/nonexistent-folder/drawing.lhp"), &error));
    QVERIFY2(error.startsWith(QStringLiteral("Cannot save /nonexistent-folder/drawing.lhp")), qPrintable(error));
    QVERIFY(m_window->ProjectPath().isEmpty());
}

void tst_MainWindow::importSvgAddsShapes()
{
    m_window->ShowSampleDrawing();
    QString error;
    QVERIFY2(m_window->ImportSvg(kSampleSvg, &error), qPrintable(error));
    QCOMPARE(m_window->Drawing()->Count(), 8 + 11);
    QList<int> imported;
    for (int i = 8; i < 19; ++i)
        imported.append(i);
    QCOMPARE(m_window->Drawing()->SelectedIndexes(), imported);
    QCOMPARE(m_window->statusBar()->currentMessage(),
             QStringLiteral("Imported 11 shapes from sample.svg. 1 elements were left out."));
    for (quint32 colour : {0xF5400Fu, 0xFFD700u, 0x336633u})
        QVERIFY(m_window->Manager()->GetLayerByColor(colour));
    QVERIFY(m_window->IsModified());
}

void tst_MainWindow::badSvgChangesNothing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");

    QTest::newRow("malformed") << QByteArray("<svg><rect width=\"1\" height=\"1\">") << "is not well-formed";
    QTest::newRow("no colours") << QByteArray("<svg><rect width=\"1\" height=\"1\" fill=\"none\"/></svg>")
                                << "has no colours";
    QTest::newRow("only text") << QByteArray("<svg><text>hi</text></svg>") << "has no shapes";
    QTest::newRow("not xml") << QByteArray("\x01\x02\x03 binary", 10) << "is not well-formed";
    QByteArray huge = "<svg>";
    huge += QByteArray(CSvgImporter::kMaxBytes, ' ');
    huge += "<rect width=\"1\" height=\"1\"/></svg>";
    QTest::newRow("huge") << huge << "is larger than 20 MB";
}

void tst_MainWindow::badSvgChangesNothing()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);

    const QString path = m_env->root() + QStringLiteral("/bad.svg");
    QVERIFY(writeFile(path, bytes));
    m_window->ShowSampleDrawing();
    const std::vector<CDrawItem> items = m_window->Drawing()->Items();
    const QStringList colours = layerColours();
    QString message;
    QVERIFY(!m_window->ImportSvg(path, &message));
    QVERIFY2(message.startsWith(QStringLiteral("bad.svg: ")) && message.contains(error), qPrintable(message));
    QVERIFY(!m_window->OpenDrawing(path, &message));
    QVERIFY2(message.contains(error), qPrintable(message));
    QVERIFY(m_window->Drawing()->Items() == items);
    QCOMPARE(layerColours(), colours);
    QVERIFY(!m_window->IsModified());
}

void tst_MainWindow::openSvgReplacesDrawing()
{
    m_window->ShowSampleDrawing();
    QString error;
    QVERIFY2(m_window->OpenDrawing(kSampleSvg, &error), qPrintable(error));
    QCOMPARE(m_window->Drawing()->Count(), 11);
    QSet<QString> used;
    for (const CDrawItem &item : m_window->Drawing()->Items())
        used.insert(QStringLiteral("%1").arg(item.Color(), 6, 16, QLatin1Char('0')));
    const QStringList colours = layerColours();
    QCOMPARE(QSet<QString>(colours.cbegin(), colours.cend()), used);
    QCOMPARE(colours.size(), used.size());
    QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("sample.svg")));
    QVERIFY(m_window->ProjectPath().isEmpty());
    QVERIFY(!m_window->IsModified());
}

void tst_MainWindow::panelFollowsCanvasSelection()
{
    if (!m_window->Panel())
        QSKIP("The plug-in of this build makes no layer panel.");
    setDrawing(twoShapes());
    QTest::mouseClick(m_window->Canvas(), Qt::LeftButton, {}, at(QPointF(240, 70)));
    QCOMPARE(m_window->Manager()->GetCurrentLayerColor(), 0xF48244u);
    QTest::mouseClick(m_window->Canvas(), Qt::LeftButton, {}, at(QPointF(20, 60)));
    QCOMPARE(m_window->Manager()->GetCurrentLayerColor(), 0x0B00FFu);
}

void tst_MainWindow::panelRowChoosesDrawingColour()
{
    if (!m_window->Panel())
        QSKIP("The plug-in of this build makes no layer panel.");
    m_window->ShowSampleDrawing();
    QTableWidget *table = panelTable();
    QVERIFY(table);
    const int row = 2;
    const quint32 colour = m_window->Manager()->GetLayerAt(row)->COLOR;
    QVERIFY(colour != m_window->Canvas()->Color());
    const QRect cell = table->visualRect(table->model()->index(row, 4));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell.center());
    QCOMPARE(m_window->statusBar()->currentMessage(), QStringLiteral("Current layer changed"));
    QCOMPARE(m_window->Palette()->CurrentColor(), colour);
    QCOMPARE(m_window->Canvas()->Color(), colour);
}

void tst_MainWindow::unitsReachPanel_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("speed");

    // A cutting speed of 10 mm/s.
    QTest::newRow("inch/s") << "action_unitInchPerSec" << "0.4";
    QTest::newRow("mm/s") << "action_unitMmPerSec" << "10.0";
    QTest::newRow("inch/min") << "action_unitInchPerMin" << "23.6";
    QTest::newRow("mm/min") << "action_unitMmPerMin" << "600.0";
}

void tst_MainWindow::unitsReachPanel()
{
    QFETCH(QString, unit);
    QFETCH(QString, speed);

    if (!m_window->Panel())
        QSKIP("The plug-in of this build makes no layer panel.");
    setDrawing(twoShapes());
    for (quint32 i = 0; i < m_window->Manager()->GetLayerCount(); ++i)
        m_window->Manager()->GetLayerAt(i)->CUT.CUT_SPEED = 10;
    action(qPrintable(unit))->trigger();
    QWidget *cell = panelTable()->cellWidget(0, 2);
    QVERIFY(cell);
    QCOMPARE(cell->toolTip(), speed);
    QVERIFY2(m_window->statusBar()->currentMessage().startsWith(QStringLiteral("Speeds in ")),
             qPrintable(m_window->statusBar()->currentMessage()));
}

void tst_MainWindow::twoLasersReachPanel()
{
    if (!m_window->Panel())
        QSKIP("The plug-in of this build makes no layer panel.");
    QTableWidget *table = panelTable();
    QCOMPARE(table->horizontalHeaderItem(4)->text(), QStringLiteral("Type"));
    action("action_twoLasers")->trigger();
    QCOMPARE(table->horizontalHeaderItem(4)->text(), QStringLiteral("Type⥮"));
    QVERIFY(m_window->TwoLasers());
    action("action_twoLasers")->trigger();
    QCOMPARE(table->horizontalHeaderItem(4)->text(), QStringLiteral("Type"));
}

QTEST_MAIN(tst_MainWindow)
#include "tst_mainwindow.moc"
