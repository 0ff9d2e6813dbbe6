#include "csvgimporter.h"
#include "drawitemtext.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QTest>

namespace {

// The body inside an <svg> root; a document of its own when it starts with "<!" or "<svg".
QByteArray svg(const QByteArray &body, const char *rootAttributes = "")
{
    if (body.startsWith("<!") || body.startsWith("<svg"))
        return body;
    return "<?xml version=\"1.0\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" " + QByteArray(rootAttributes) + '>'
        + body + "</svg>\n";
}

} // namespace

class tst_SvgImporter : public QObject
{
    Q_OBJECT

private slots:
    void read_data();
    void read()
    {
        QFETCH(QByteArray, document);
        QFETCH(QString, expected);
        CSvgImporter importer;
        QBuffer earlier;
        QBuffer buffer(&document);
        earlier.setData(svg("<rect width=\"1\" height=\"1\"/>"));
        // What an earlier file gave does not survive a refusal.
        QVERIFY(earlier.open(QIODevice::ReadOnly) && importer.Read(&earlier) && buffer.open(QIODevice::ReadOnly));
        QElapsedTimer timer;
        timer.start();
        const bool read = importer.Read(&buffer);
        QVERIFY2(timer.elapsed() < 20000, "reading must not take long");
        if (!read) {
            QVERIFY2(expected.startsWith(QLatin1String("! ")) && importer.ErrorString().startsWith(expected.mid(2)) && importer.Items().empty(), qPrintable(importer.ErrorString()));
            return;
        }
        const std::vector<CDrawItem> &items = importer.Items();
        QCOMPARE(expected.startsWith(QLatin1Char('@')) && items.size() == 1 ? "@ " + BoundsText(items.front().Bounds()) : DrawItemsText(items), expected);
        QTEST(importer.SkippedCount(), "skipped");
    }
};

void tst_SvgImporter::read_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("expected"); // the shapes, "@ bounds" of the one shape in millimetres, or "! error"
    QTest::addColumn<int>("skipped");
    auto row = [](const char *name, const char *body, const char *shapes, int skipped = 0, const char *root = "") {
        QTest::newRow(name) << svg(body, root) << QString::fromUtf8(shapes) << skipped;
    };
    // One user unit is one millimetre.
    auto mm = [&](const char *name, const char *body, const char *bounds) {
        row(name, body, bounds, 0, R"s(width="100mm" height="100mm" viewBox="0 0 100 100")s");
    };
    auto bad = [](const char *name, const QByteArray &document, const char *error) { QTest::newRow(name) << document << "! " + QString::fromUtf8(error) << 0; };
    const char *const notWellFormed = "The SVG file is not well-formed";
    const char *const noColours = "The SVG file has no colours: no shape has a fill or a stroke.";
    QByteArray large = svg("<rect width=\"1\" height=\"1\"/>");
    large.insert(large.indexOf("<rect"), QByteArray(CSvgImporter::kMaxBytes, ' '));
    // clang-format off
    row("every kind in order", R"s(<rect width="1" height="1" stroke="#000001"/><circle r="1" stroke="#000002"/><line x2="1" stroke="#000003"/><path d="M0 0h1" stroke="#000004"/><image width="1" height="1"/>)s", "rect #000001; ellipse #000002; line #000003; path #000004; image #000000 fill");
    row("unpainted rect fills black", R"s(<rect width="3" height="4"/>)s", "rect #000000 fill");
    row("ellipse, polyline, polygon", R"s(<ellipse cx="5" cy="5" rx="2" ry="1" stroke="blue" fill="none"/><polyline points="0,0 5,5 10,0" fill="none" stroke="#abcdef"/><polygon points="0 0 5 5 10 0" fill="#fedcba"/>)s", "ellipse #0000ff; path #abcdef; path #fedcba fill");
    row("currentColor", R"s(<g color="#224466"><rect width="1" height="1" fill="none" stroke="currentColor"/></g>)s", "rect #224466");
    row("gradient: its fallback colour, else the stroke", R"s(<rect width="1" height="1" fill="url(#g) #00cafc"/><rect width="1" height="1" fill="url(#g)" stroke="#010101"/>)s", "rect #00cafc fill; rect #010101");
    row("the stroke is the colour, else the fill", R"s(<circle r="3" fill="#00ff00" stroke="#0000ff"/><circle r="3" fill="#00ff00" stroke="none"/>)s", "ellipse #0000ff; ellipse #00ff00 fill");
    row("style beats attributes; spaces, upper case, !important", R"s(<rect width="1" height="1" fill="#ff0000" style="fill:#00ff00"/><rect width="1" height="1" style=" fill : none ; stroke: #ABCDEF !important ;"/>)s", "rect #00ff00 fill; rect #abcdef");
    row("one-colour group stays a group", R"s(<g fill="none" stroke="#f5400f"><rect width="1" height="1"/><circle r="1"/></g>)s", "group #f5400f [rect #f5400f; ellipse #f5400f]");
    row("mixed-colour group comes in as its members", R"s(<g><rect width="1" height="1" fill="#0000aa"/><rect width="1" height="1" fill="#aa0000"/></g>)s", "rect #0000aa fill; rect #aa0000 fill");
    row("nested: a one-colour group inside a mixed one stays", R"s(<a href="#"><g fill="#ff0000"><rect width="1" height="1"/><circle r="1"/></g><rect width="1" height="1" fill="#0000ff"/></a>)s", "group #ff0000 [rect #ff0000 fill; ellipse #ff0000 fill]; rect #0000ff fill");
    row("nested: a mixed group inside a group splits both", R"s(<g fill="#ff0000"><g><rect width="1" height="1"/><rect width="1" height="1" fill="#00ff00"/></g><circle r="1"/></g>)s", "rect #ff0000 fill; rect #00ff00 fill; ellipse #ff0000 fill");
    row("nested one-colour groups", R"s(<g fill="#123456"><rect width="1" height="1"/><g><circle r="1"/><circle r="2"/></g></g>)s", "group #123456 [rect #123456 fill; group #123456 [ellipse #123456 fill; ellipse #123456 fill]]");
    row("a group of one shape is that shape", R"s(<g><g><rect width="1" height="1" fill="#010203"/></g></g>)s", "rect #010203 fill");
    row("image keeps its own paint", R"s(<image width="10" height="5" fill="#00cafc"/><image width="10" height="5" fill="none"/>)s", "image #00cafc fill; image #000000 fill");
    row("hidden elements and definitions are not drawn", R"s(<defs><rect width="1" height="1" fill="#ff0000"/></defs><rect width="1" height="1" fill="#00ff00" display="none"/><g style="display:none"><circle r="1" fill="#0000ff"/></g><clipPath><rect width="5" height="5"/></clipPath><circle r="1" fill="#010101"/>)s", "ellipse #010101 fill");
    row("text and use are left out and counted", R"s(<text x="1" y="1">Hello</text><use href="#a"/><circle r="1" stroke="#020202"/>)s", "ellipse #020202", 2);
    row("shapes without size are left out and counted", R"s(<rect width="0" height="5"/><circle r="-1"/><ellipse rx="1"/><rect width="50%" height="1"/><polyline points="1"/><path d=""/><line x1="1" y1="1" x2="2" y2="2" stroke="#000001"/>)s", "line #000001", 6);
    row("an unreadable transform leaves the shape out", R"s(<rect width="1" height="1" transform="spin(3)"/><rect width="1" height="1" fill="#0000ff"/>)s", "rect #0000ff fill", 1);
    row("a shape a thousand kilometres away is left out", R"s(<rect x="1e12" width="1" height="1"/><rect width="1" height="1" fill="#0000ff"/>)s", "rect #0000ff fill", 1);
    row("unpainted shapes beside painted ones are not counted", R"s(<rect width="1" height="1" fill="none"/><line x2="5"/><circle r="1" stroke="red"/>)s", "ellipse #ff0000");
    row("root without namespace, comments, doctype", R"s(<!DOCTYPE svg><!-- c --><svg><rect width="1" height="1" fill="teal"/></svg>)s", "rect #008080 fill");
    row("root paint is inherited", R"s(<svg fill="none" stroke="#4defa2"><rect width="1" height="1"/></svg>)s", "rect #4defa2");
    row("colours", R"s(<rect width="1" height="1" fill="#1a3"/><rect width="1" height="1" fill="#0B00ff"/><rect width="1" height="1" fill="#0b00ff80"/><rect width="1" height="1" fill="rgb(1, 2, 3)"/><rect width="1" height="1" fill="RGB(4,5,6)"/><rect width="1" height="1" fill="  navy "/><rect width="1" height="1" fill="DarkRed"/><rect width="1" height="1" fill="rgb(100%, 0%, 50%)"/><rect width="1" height="1" fill="rgb(300,-5,16)"/><rect width="1" height="1" fill="rgba(10,20,30,0.5)"/>)s", "rect #11aa33 fill; rect #0b00ff fill; rect #0b00ff fill; rect #010203 fill; rect #040506 fill; rect #000080 fill; rect #8b0000 fill; rect #ff0080 fill; rect #ff0010 fill; rect #0a141e fill");
    row("unreadable colours inherit", R"s(<g fill="#330000"><rect width="1" height="1" fill="#12"/><rect width="1" height="1" fill="#1234567"/><rect width="1" height="1" fill="#ggg"/><rect width="1" height="1" fill="rgb(1,2)"/><rect width="1" height="1" fill="rgb(1,2,3,4,5)"/><rect width="1" height="1" fill="rgb(1,2,3"/><rect width="1" height="1" fill="blurple"/><rect width="1" height="1" fill="red1"/><rect width="1" height="1" fill=""/></g>)s", "group #330000 [rect #330000 fill; rect #330000 fill; rect #330000 fill; rect #330000 fill; rect #330000 fill; rect #330000 fill; rect #330000 fill; rect #330000 fill; rect #330000 fill]");
    row("transparent colours paint nothing", R"s(<rect width="1" height="1" fill="#1a30"/><rect width="1" height="1" fill="rgb(1 2 3 / 0%)"/><rect width="1" height="1" fill="transparent"/><circle r="1" stroke="#1a3"/>)s", "ellipse #11aa33");
    row("pixels without viewBox are 96 per inch", R"s(<rect width="96" height="48"/>)s", "@ 0,0 25.4x12.7");
    row("viewBox onto a size in mm", R"s(<rect x="20" y="10" width="100" height="50"/>)s", "@ 10,5 50x25", 0, R"s(width="100mm" height="50mm" viewBox="0 0 200 100")s");
    row("viewBox with an origin", R"s(<rect x="10" y="10" width="10" height="10"/>)s", "@ 0,0 10x10", 0, R"s(width="100mm" height="100mm" viewBox="10 10 100 100")s");
    mm("rotate about a point", R"s(<rect x="10" y="10" width="10" height="2" transform="rotate(90 10 10)"/>)s", "@ 8,10 2x10");
    mm("group and shape transforms compose", R"s(<g transform="translate(10 20)"><g transform="scale(2)"><rect x="1" y="1" width="1" height="1" transform="translate(1)"/></g></g>)s", "@ 14,22 2x2");
    mm("relative path commands", R"s(<path d="m10 10 h20 v10 h-20 z m5 5 l1 1" stroke="red"/>)s", "@ 10,10 20x10");
    mm("numbers run together", R"s(<path d="M.5.5L-1-1l1.5e1,0" stroke="red"/>)s", "@ -1,-1 15x1.5");
    mm("arc, flags run together", R"s(<path d="M0 50a10 10 0 0020 0" stroke="red"/>)s", "@ 0,50 20x10");
    mm("smooth cubic reflects the control point", R"s(<path d="M0 0 C 0 10, 10 10, 10 0 S 20 -10, 20 0" stroke="red"/>)s", "@ 0,-7.5 20x15");
    mm("path data error keeps what came before", R"s(<path d="M0 0 L10 10 L 20" stroke="red"/>)s", "@ 0,0 10x10");
    bad("empty", QByteArray(), "The SVG file is empty.");
    bad("white space", " \n\t\n", "The SVG file is empty.");
    bad("another XML document", "<html><body><p>hello</p></body></html>", "The file is not an SVG drawing: its document element is <html>.");
    bad("declaration only", "<?xml version=\"1.0\"?>", "The file is not an SVG drawing: it has no document element.");
    bad("truncated before the end tag", svg(R"s(<rect width="10" height="10" fill="red"/>)s").chopped(7), notWellFormed);
    bad("entity expansion bomb", "<?xml version=\"1.0\"?><!DOCTYPE svg [<!ENTITY a \"aaaaaaaaaaaaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\"><!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\"><!ENTITY e \"&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;\"><!ENTITY f \"&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;\">]><svg><desc>&f;</desc></svg>", notWellFormed);
    bad("no colours", svg(R"s(<rect width="10" height="10" fill="none"/><line x2="10" y2="10"/><circle r="3" fill="none" stroke="none"/>)s"), noColours);
    bad("only transparent colours", svg(R"s(<rect width="10" height="10" fill="transparent" stroke="rgba(0,0,0,0)"/><circle r="3" fill="#0000" stroke="url(#g)"/>)s"), noColours);
    bad("no shapes", svg("<title>x</title><text>only words</text>"), "The SVG file has no shapes that can be imported.");
    bad("too many elements", "<svg>" + QByteArray("<g/>").repeated(CSvgImporter::kMaxElements) + "</svg>", "The SVG file has more than 200000 elements.");
    bad("nested too deep", svg(QByteArray("<g>").repeated(300)), "The SVG file nests its elements more than 256 levels deep.");
    bad("too large", large, "The SVG file is larger than 20 MB.");
    // clang-format on
}

QTEST_GUILESS_MAIN(tst_SvgImporter)
#include "tst_svgimporter.moc"
