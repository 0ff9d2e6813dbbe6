#include "ccanvas.h"
#include "ccolorpalette.h"
#include "cdrawing.h"
#include "chostcallback.h"
#include "cmainwindow.h"
#include "cprojectfile.h"
#include "drawitemtext.h"
#include "testenvironment.h"

#include "ctranslator.h"
#include "ilayermgr.h"

#include <QBuffer>
#include <QFile>
#include <QLabel>
#include <QStatusBar>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>

namespace {

// A blue outline rectangle and a filled orange ellipse beside it.
std::vector<CDrawItem> twoShapes()
{
    return {CDrawItem::Rect(QRectF(20, 20, 100, 80), 0x0B00FF),
            CDrawItem::Ellipse(QRectF(200, 40, 80, 60), 0xF48244, true)};
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
            colours.append(QString::number(manager()->GetLayerAt(i)->COLOR, 16));
        return colours;
    }
    QString status() const { return m_window->statusBar()->currentMessage(); }
    QString counts() const { return m_window->findChild<QLabel *>(QStringLiteral("label_counts"))->text(); }
    QPoint at(const QPointF &mm) const { return m_window->Canvas()->ToWidget(mm).toPoint(); }
    void click(const QPointF &mm, Qt::KeyboardModifiers keys = {}) { QTest::mouseClick(m_window->Canvas(), Qt::LeftButton, keys, at(mm)); }
    QString path(const QString &name) const { return name.startsWith(QLatin1Char('/')) ? name : m_env->root() + QLatin1Char('/') + name; }

private slots:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        CTranslator::GetInstance()->SetResourceDir(QStringLiteral(LAYERMGR_BUILD_BIN "/../Resources"));
        CTranslator::GetInstance()->SetLanguage(QStringLiteral("En"));
        m_window = std::make_unique<CMainWindow>();
        QString error;
        QVERIFY2(m_window->LoadPlugin(QStringLiteral(LAYERMGR_BUILD_BIN "/libLayerMgr.so"), &error), qPrintable(error));
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

    void mouseSelectsMovesAndRecolours()
    {
        m_window->Drawing()->SetItems(twoShapes());
        click(QPointF(240, 70));
        click(QPointF(20, 60), Qt::ShiftModifier);
        QCOMPARE(counts(), QStringLiteral("2 shapes, 2 selected, 2 layers"));
        click(QPointF(20, 60), Qt::ShiftModifier);
        QTest::mouseClick(m_window->Palette()->Swatch(0x2431BD), Qt::LeftButton);
        QCOMPARE(DrawItemsText(m_window->Drawing()->Items()), QStringLiteral("rect #0b00ff; ellipse #2431bd fill"));
        QCOMPARE(status(), QStringLiteral("1 shapes moved to colour #2431bd"));
        action(QStringLiteral("action_delete"))->trigger();
        QCOMPARE(layerColours(), QStringList{"b00ff"});
    }

    void hostNotifications_data()
    {
        QTest::addColumn<int>("code"); // -1 layers changed, -2 current layer, else a layer event
        QTest::addColumn<QString>("message");
        QTest::newRow("parameters") << -1 << "Layer parameters changed";
        QTest::newRow("layers moved") << 3 << "Layers moved";
        QTest::newRow("other event") << 9 << "Layer event 9";
        QTest::newRow("current layer") << -2 << "Current layer changed";
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

    // Each row starts from the sample drawing saved as good.lhp, its blue layer cut at 42 mm/s,
    // then shows two shapes with that layer at 7.
    void files_data()
    {
        QTest::addColumn<QString>("step");     // "open FILE", "import FILE" or "save FILE"
        QTest::addColumn<QByteArray>("bytes"); // FILE's content when not empty; "repeat" damages good.lhp
        QTest::addColumn<QString>("outcome");  // the status, or a part of the error
        QTest::addColumn<QString>("project");  // also the start of the window title
        QTest::addColumn<bool>("modified");
        QTest::addColumn<QString>("counts");
        QTest::addColumn<QString>("blueSpeed");
        const QByteArray small = R"s(<svg width="100mm" height="100mm" viewBox="0 0 100 100"><rect x="2" y="3" width="20" height="10" fill="red"/><circle cx="20" cy="13" r="2" stroke="blue"/><text>left out</text></svg>)s";
        const QString edited = QStringLiteral("2 shapes, 0 selected, 2 layers");
        auto refused = [&](const char *name, const char *step, const QByteArray &bytes, const char *error) {
            QTest::newRow(name) << step << bytes << error << "good.lhp" << true << edited << "7";
        };
        // clang-format off
        QTest::newRow("open the project") << "open good.lhp" << QByteArray() << "Opened good.lhp." << "good.lhp" << false << "8 shapes, 0 selected, 7 layers" << "42";
        QTest::newRow("save as") << "save new.lhp" << QByteArray() << "Saved new.lhp." << "new.lhp" << false << edited << "7";
        QTest::newRow("open an SVG") << "open small.svg" << small << "Opened small.svg." << "" << false << edited << "none";
        QTest::newRow("import an SVG") << "import small.svg" << small << "Imported 2 shapes from small.svg. 1 elements were left out." << "good.lhp" << true << "4 shapes, 2 selected, 4 layers" << "7";
        refused("save into no folder", "save /nonexistent-folder/new.lhp", {}, "Cannot save /nonexistent-folder/new.lhp");
        refused("missing file", "open missing.lhp", {}, "Cannot open");
        refused("layers with a repeated colour", "open bad.lhp", "repeat", "bad.lhp: The layers of the project cannot be read.");
        refused("malformed SVG imported", "import bad.svg", "<svg><rect width=\"1\" height=\"1\">", "bad.svg: The SVG file is not well-formed");
        // clang-format on
    }

    void files()
    {
        QFETCH(QString, step);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, outcome);
        QFETCH(QString, project);
        m_window->ShowSampleDrawing();
        manager()->GetLayerByColor(0x0B00FF)->CUT.CUT_SPEED = 42;
        const QStringList order = layerColours();
        QString error;
        QVERIFY(m_window->SaveProject(path("good.lhp"), &error));
        const QString file = path(step.section(QLatin1Char(' '), 1));
        if (bytes == "repeat") {
            // A layer stream holding its first record twice.
            CProjectFile bad;
            QFile good(path("good.lhp"));
            QVERIFY(good.open(QIODevice::ReadOnly) && bad.Read(&good));
            const QByteArray record = bad.m_layers.mid(8, (bad.m_layers.size() - 8) / qsizetype(manager()->GetLayerCount()));
            bad.m_layers = bad.m_layers.left(4) + QByteArray("\x02\0\0\0", 4) + record + record;
            QBuffer out(&bytes);
            QVERIFY(out.open(QIODevice::WriteOnly) && bad.Write(&out));
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
        const QString title = project.isEmpty() ? file.section(QLatin1Char('/'), -1) : project;
        QVERIFY2(m_window->windowTitle().startsWith(title), qPrintable(m_window->windowTitle()));
        QCOMPARE(m_window->ProjectPath(), project.isEmpty() ? project : path(project));
        QTEST(m_window->IsModified(), "modified");
        QTEST(counts(), "counts");
        const CLayerParam *blue = manager()->GetLayerByColor(0x0B00FF);
        QTEST(blue ? QString::number(blue->CUT.CUT_SPEED) : QStringLiteral("none"), "blueSpeed");
        // A project brings its layers' order.
        if (ok && step == QLatin1String("open good.lhp"))
            QCOMPARE(layerColours(), order);
    }

    void panelFollowsHost()
    {
        m_window->Drawing()->SetItems(twoShapes());
        action(QStringLiteral("action_unitMmPerMin"))->trigger();
        QCOMPARE(status(), QStringLiteral("Speeds in mm/min"));
        // The panel's current layer is the canvas's colour, both ways.
        click(QPointF(240, 70));
        QCOMPARE(manager()->GetCurrentLayerColor(), 0xF48244u);
        const quint32 colour = manager()->GetLayerAt(0)->COLOR;
        auto *table = m_window->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(table->model()->index(0, 4)).center());
        QCOMPARE(status(), QStringLiteral("Current layer changed"));
        QCOMPARE(m_window->Canvas()->Color(), colour);
    }
};

QTEST_MAIN(tst_MainWindow)
#include "tst_mainwindow.moc"
