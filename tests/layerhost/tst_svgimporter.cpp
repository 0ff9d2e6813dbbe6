#include "csvgimporter.h"
#include "drawitemtext.h"
#include "svgsyntax.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QTest>

namespace {

QByteArray svg(const char *body, const char *rootAttributes = "")
{
    return QByteArrayLiteral("<?xml version=\"1.0\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" ")
        + rootAttributes + QByteArrayLiteral(">") + body + QByteArrayLiteral("</svg>\n");
}

// One user unit is one millimetre.
QByteArray mmSvg(const char *body)
{
    return svg(body, "width=\"100mm\" height=\"100mm\" viewBox=\"0 0 100 100\"");
}

bool import(const QByteArray &bytes, CSvgImporter *importer)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return importer->Read(&buffer);
}

void shape(const char *name, const QByteArray &document, const char *shapes, int skipped = 0)
{
    QTest::newRow(name) << document << QString::fromUtf8(shapes) << skipped;
}

void docRow(const char *name, const QByteArray &document, const char *text)
{
    QTest::newRow(name) << document << QString::fromUtf8(text);
}

void colour(const char *name, const char *text, bool ok, uint rgb = 0, bool transparent = false)
{
    QTest::newRow(name) << QString::fromUtf8(text) << ok << rgb << transparent;
}

} // namespace

class tst_SvgImporter : public QObject
{
    Q_OBJECT

private slots:
    void shapes_data();
    void shapes();
    void geometry_data();
    void geometry();
    void refused_data();
    void refused();
    void failureDropsEarlierItems();
    void sampleFile();
    void colors_data();
    void colors();
};

void tst_SvgImporter::shapes_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("shapes");
    QTest::addColumn<int>("skipped");

    shape("rect with stroke", svg(R"svg(<rect width="3" height="4" fill="none" stroke="#ff0000"/>)svg"), "rect #ff0000");
    shape("unpainted rect fills black", svg(R"svg(<rect width="3" height="4"/>)svg"), "rect #000000 fill");
    shape("circle", svg(R"svg(<circle cx="5" cy="5" r="2" fill="#00ff00"/>)svg"), "ellipse #00ff00 fill");
    shape("ellipse", svg(R"svg(<ellipse cx="5" cy="5" rx="2" ry="1" stroke="blue" fill="none"/>)svg"), "ellipse #0000ff");
    shape("polyline", svg(R"svg(<polyline points="0,0 5,5 10,0" fill="none" stroke="#abcdef"/>)svg"), "path #abcdef");
    shape("polygon", svg(R"svg(<polygon points="0 0 5 5 10 0" fill="#fedcba"/>)svg"), "path #fedcba fill");
    shape("every kind in order",
          svg(R"svg(<rect width="1" height="1" stroke="#000001"/><circle r="1" stroke="#000002"/>)svg"
              R"svg(<line x2="1" stroke="#000003"/><path d="M0 0h1" stroke="#000004"/><image width="1" height="1"/>)svg"),
          "rect #000001; ellipse #000002; line #000003; path #000004; image #000000 fill");

    shape("currentColor",
          svg(R"svg(<g color="#224466"><rect width="1" height="1" fill="none" stroke="currentColor"/></g>)svg"), "rect #224466");
    shape("gradient with fallback colour", svg(R"svg(<rect width="1" height="1" fill="url(#g) #00cafc"/>)svg"),
          "rect #00cafc fill");
    shape("gradient fill, stroke colour", svg(R"svg(<rect width="1" height="1" fill="url(#g)" stroke="#010101"/>)svg"),
          "rect #010101");
    shape("fill and stroke: the stroke is the colour", svg(R"svg(<circle r="3" fill="#00ff00" stroke="#0000ff"/>)svg"),
          "ellipse #0000ff");
    shape("stroke none, fill", svg(R"svg(<circle r="3" fill="#00ff00" stroke="none"/>)svg"), "ellipse #00ff00 fill");
    shape("style attribute", svg(R"svg(<rect width="1" height="1" style="fill:none;stroke:#2431bd"/>)svg"), "rect #2431bd");
    shape("style attribute beats presentation attribute",
          svg(R"svg(<rect width="1" height="1" fill="#ff0000" style="fill:#00ff00"/>)svg"), "rect #00ff00 fill");
    shape("style with spaces, upper-case hex, !important",
          svg(R"svg(<rect width="1" height="1" style=" fill : none ; stroke: #ABCDEF !important ;"/>)svg"), "rect #abcdef");
    shape("unreadable colour inherits", svg(R"svg(<g fill="#330000"><rect width="1" height="1" fill="#zzz"/></g>)svg"),
          "rect #330000 fill");

    shape("paint inherited from a group",
          svg(R"svg(<g fill="none" stroke="#f5400f"><rect width="1" height="1"/><circle r="1"/></g>)svg"),
          "group #f5400f [rect #f5400f; ellipse #f5400f]");
    shape("a group takes its first member's colour",
          svg(R"svg(<g><rect width="1" height="1" fill="#0000aa"/><rect width="1" height="1" fill="#aa0000"/></g>)svg"),
          "group #0000aa [rect #0000aa fill; rect #aa0000 fill]");
    shape("nested groups",
          svg(R"svg(<g stroke="#000011" fill="none"><line x2="1"/>)svg"
              R"svg(<g stroke="#000022"><circle r="1"/><circle r="2" stroke="#000033"/></g></g>)svg"),
          "group #000011 [line #000011; group #000022 [ellipse #000022; ellipse #000033]]");
    shape("a group of one shape is that shape", svg(R"svg(<g><g><rect width="1" height="1" fill="#010203"/></g></g>)svg"),
          "rect #010203 fill");
    shape("an empty group is nothing",
          svg(R"svg(<g/><g><title>t</title></g><rect width="1" height="1" fill="#0000ff"/>)svg"), "rect #0000ff fill");
    shape("link as group",
          svg(R"svg(<a href="#"><rect width="1" height="1" fill="#111111"/><rect width="2" height="2" fill="#222222"/></a>)svg"),
          "group #111111 [rect #111111 fill; rect #222222 fill]");

    shape("image keeps its own paint", svg(R"svg(<image width="10" height="5" fill="#00cafc"/>)svg"), "image #00cafc fill");
    shape("image with fill none is still an image", svg(R"svg(<image width="10" height="5" fill="none"/>)svg"),
          "image #000000 fill");

    shape("hidden elements and definitions are not drawn",
          svg(R"svg(<defs><rect width="1" height="1" fill="#ff0000"/></defs>)svg"
              R"svg(<rect width="1" height="1" fill="#00ff00" display="none"/>)svg"
              R"svg(<g style="display:none"><circle r="1" fill="#0000ff"/></g>)svg"
              R"svg(<clipPath><rect width="5" height="5"/></clipPath><circle r="1" fill="#010101"/>)svg"),
          "ellipse #010101 fill");
    shape("text and use are left out and counted",
          svg(R"svg(<text x="1" y="1">Hello</text><use href="#a"/><circle r="1" stroke="#020202"/>)svg"), "ellipse #020202", 2);
    shape("shapes without size are left out and counted",
          svg(R"svg(<rect width="0" height="5"/><circle r="-1"/><ellipse rx="1"/><rect width="50%" height="1"/>)svg"
              R"svg(<polyline points="1"/><path d=""/><line x1="1" y1="1" x2="2" y2="2" stroke="#000001"/>)svg"),
          "line #000001", 6);
    shape("an unreadable transform leaves the shape out",
          svg(R"svg(<rect width="1" height="1" transform="spin(3)"/><rect width="1" height="1" fill="#0000ff"/>)svg"),
          "rect #0000ff fill", 1);
    shape("a shape a thousand kilometres away is left out",
          svg(R"svg(<rect x="1e12" width="1" height="1"/><rect width="1" height="1" fill="#0000ff"/>)svg"),
          "rect #0000ff fill", 1);
    shape("unpainted shapes beside painted ones are not counted",
          svg(R"svg(<rect width="1" height="1" fill="none"/><line x2="5"/><circle r="1" stroke="red"/>)svg"), "ellipse #ff0000");
    shape("root without namespace, comments, doctype",
          R"svg(<!DOCTYPE svg><!-- c --><svg><rect width="1" height="1" fill="teal"/></svg>)svg", "rect #008080 fill");
    shape("root paint is inherited", svg(R"svg(<rect width="1" height="1"/>)svg", "fill=\"none\" stroke=\"#4defa2\""),
          "rect #4defa2");
}

void tst_SvgImporter::shapes()
{
    QFETCH(QByteArray, document);
    CSvgImporter importer;
    QVERIFY2(import(document, &importer), qPrintable(importer.ErrorString()));
    QTEST(DrawItemsText(importer.Items()), "shapes");
    QTEST(importer.SkippedCount(), "skipped");
    QVERIFY(importer.ErrorString().isEmpty());
}

void tst_SvgImporter::geometry_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("bounds");

    docRow("pixels without viewBox are 96 per inch", svg(R"svg(<rect width="96" height="48"/>)svg"), "0,0 25.4x12.7");
    docRow("lengths with units", svg(R"svg(<rect x="1in" y="10mm" width="2cm" height="72pt"/>)svg"), "25.4,10 20x25.4");
    docRow("viewBox onto a size in mm",
           svg(R"svg(<rect x="20" y="10" width="100" height="50"/>)svg", R"svg(width="100mm" height="50mm" viewBox="0 0 200 100")svg"),
           "10,5 50x25");
    docRow("viewBox with an origin",
           svg(R"svg(<rect x="10" y="10" width="10" height="10"/>)svg", R"svg(width="100mm" height="100mm" viewBox="10 10 100 100")svg"),
           "0,0 10x10");
    docRow("viewBox without size is in pixels", svg(R"svg(<rect width="96" height="96"/>)svg", R"svg(viewBox="0 0 96 96")svg"),
           "0,0 25.4x25.4");
    docRow("translate", mmSvg(R"svg(<rect width="10" height="5" transform="translate(5 7)"/>)svg"), "5,7 10x5");
    docRow("scale", mmSvg(R"svg(<rect x="1" width="10" height="5" transform="scale(2,3)"/>)svg"), "2,0 20x15");
    docRow("rotate about a point", mmSvg(R"svg(<rect x="10" y="10" width="10" height="2" transform="rotate(90 10 10)"/>)svg"),
           "8,10 2x10");
    docRow("matrix", mmSvg(R"svg(<rect width="1" height="1" transform="matrix(2 0 0 3 4 5)"/>)svg"), "4,5 2x3");
    docRow("transforms apply right to left",
           mmSvg(R"svg(<rect width="1" height="1" transform="translate(10,0) scale(2)"/>)svg"), "10,0 2x2");
    docRow("group and shape transforms compose",
           mmSvg(R"svg(<g transform="translate(10 20)"><g transform="scale(2)">)svg"
                 R"svg(<rect x="1" y="1" width="1" height="1" transform="translate(1)"/></g></g>)svg"),
           "14,22 2x2");
    docRow("skewX", mmSvg(R"svg(<rect width="10" height="10" transform="skewX(45)"/>)svg"), "0,0 20x10");
    docRow("circle", mmSvg(R"svg(<circle cx="50" cy="40" r="10"/>)svg"), "40,30 20x20");
    docRow("rounded rect", mmSvg(R"svg(<rect x="1" y="2" width="30" height="20" rx="5"/>)svg"), "1,2 30x20");
    docRow("line", mmSvg(R"svg(<line x1="5" y1="30" x2="25" y2="10" stroke="red"/>)svg"), "5,10 20x20");
    docRow("polyline drops an odd coordinate", mmSvg(R"svg(<polyline points="0,0 10,10 20,0 99" stroke="red"/>)svg"),
           "0,0 20x10");
    docRow("relative path commands", mmSvg(R"svg(<path d="m10 10 h20 v10 h-20 z m5 5 l1 1" stroke="red"/>)svg"),
           "10,10 20x10");
    docRow("implicit line after move", mmSvg(R"svg(<path d="M0 0 10 5 20 0" stroke="red"/>)svg"), "0,0 20x5");
    docRow("numbers run together", mmSvg(R"svg(<path d="M.5.5L-1-1l1.5e1,0" stroke="red"/>)svg"), "-1,-1 15x1.5");
    docRow("arc, clockwise half circle", mmSvg(R"svg(<path d="M0 50 A 10 10 0 0 1 20 50" stroke="red"/>)svg"), "0,40 20x10");
    docRow("arc, flags run together", mmSvg(R"svg(<path d="M0 50a10 10 0 0020 0" stroke="red"/>)svg"), "0,50 20x10");
    docRow("arc radius too small is scaled up", mmSvg(R"svg(<path d="M0 50 A 1 1 0 0 1 20 50" stroke="red"/>)svg"),
           "0,40 20x10");
    docRow("arc without radius is a line", mmSvg(R"svg(<path d="M0 0 A 0 5 0 0 1 20 10" stroke="red"/>)svg"), "0,0 20x10");
    docRow("smooth cubic reflects the control point",
           mmSvg(R"svg(<path d="M0 0 C 0 10, 10 10, 10 0 S 20 -10, 20 0" stroke="red"/>)svg"), "0,-7.5 20x15");
    docRow("quadratic and smooth quadratic", mmSvg(R"svg(<path d="M0 0 Q 5 10 10 0 T 20 0" stroke="red"/>)svg"),
           "0,-5 20x10");
    docRow("path data error keeps what came before", mmSvg(R"svg(<path d="M0 0 L10 10 L 20" stroke="red"/>)svg"),
           "0,0 10x10");
    docRow("image", mmSvg(R"svg(<image x="5" y="6" width="30" height="20"/>)svg"), "5,6 30x20");
}

void tst_SvgImporter::geometry()
{
    QFETCH(QByteArray, document);
    CSvgImporter importer;
    QVERIFY2(import(document, &importer), qPrintable(importer.ErrorString()));
    QCOMPARE(importer.Items().size(), size_t(1));
    QTEST(BoundsText(importer.Items().front().Bounds()), "bounds");
}

void tst_SvgImporter::refused_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("error");
    const char *const notWellFormed = "is not well-formed";
    const char *const noRoot = "The file is not an SVG drawing: it has no document element.";
    const char *const noColours = "The SVG file has no colours: no shape has a fill or a stroke.";
    const char *const noShapes = "The SVG file has no shapes that can be imported.";

    docRow("empty", QByteArray(), "The SVG file is empty.");
    docRow("white space", " \n\t\n", "The SVG file is empty.");
    docRow("garbage", QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16), notWellFormed);
    docRow("plain text", "rect 0 0 10 10 red", notWellFormed);
    docRow("another XML document", "<html><body><p>hello</p></body></html>",
           "The file is not an SVG drawing: its document element is <html>.");
    docRow("declaration only", "<?xml version=\"1.0\"?>", noRoot);
    docRow("comment only", "<!-- nothing here -->", noRoot);
    docRow("cut inside the first tag", "<?xml version=\"1.0\"?>\n<svg width=", notWellFormed);
    const QByteArray whole = svg(R"svg(<rect width="10" height="10" fill="red"/><circle r="5" fill="blue"/>)svg");
    docRow("truncated", whole.left(whole.size() / 2), notWellFormed);
    docRow("truncated before the end tag", whole.left(whole.indexOf("</svg>")), notWellFormed);
    docRow("mismatched tags", "<svg><g><rect width=\"1\" height=\"1\"/></svg>", notWellFormed);
    docRow("unquoted attribute", "<svg><rect width=1 height=1/></svg>", notWellFormed);
    docRow("entity expansion bomb",
           "<?xml version=\"1.0\"?><!DOCTYPE svg [<!ENTITY a \"aaaaaaaaaaaaaaaaaaaa\">"
           "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">"
           "<!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\"><!ENTITY e \"&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;\">"
           "<!ENTITY f \"&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;\">]><svg><desc>&f;</desc></svg>",
           notWellFormed);
    docRow("no colours",
           svg(R"svg(<rect width="10" height="10" fill="none"/><line x2="10" y2="10"/><circle r="3" fill="none" stroke="none"/>)svg"),
           noColours);
    docRow("only transparent colours",
           svg(R"svg(<rect width="10" height="10" fill="transparent" stroke="rgba(0,0,0,0)"/>)svg"
               R"svg(<circle r="3" fill="#0000" stroke="url(#g)"/>)svg"),
           noColours);
    docRow("no shapes", svg(R"svg(<title>x</title><text>only words</text>)svg"), noShapes);
    docRow("empty svg", svg(""), noShapes);
    docRow("too many elements", "<svg>" + QByteArray("<g/>").repeated(CSvgImporter::kMaxElements) + "</svg>",
           "The SVG file has more than 200000 elements.");
    docRow("nested too deep", svg(QByteArray("<g>").repeated(300).constData()),
           "The SVG file nests its elements more than 256 levels deep.");
    QByteArray large = svg("<rect width=\"1\" height=\"1\"/>");
    large.insert(large.indexOf("<rect"), QByteArray(CSvgImporter::kMaxBytes, ' '));
    docRow("too large", large, "The SVG file is larger than 20 MB.");
}

void tst_SvgImporter::refused()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, error);
    CSvgImporter importer;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!import(document, &importer));
    QVERIFY2(importer.ErrorString().contains(error), qPrintable(importer.ErrorString()));
    QVERIFY(importer.Items().empty());
    QVERIFY2(timer.elapsed() < 20000, "a refusal must not take long");
}

void tst_SvgImporter::failureDropsEarlierItems()
{
    CSvgImporter importer;
    QVERIFY(import(svg(R"svg(<rect width="1" height="1"/>)svg"), &importer));
    QCOMPARE(importer.Items().size(), size_t(1));
    QVERIFY(!import(QByteArray("<svg><rect"), &importer));
    QVERIFY(importer.Items().empty());
    QCOMPARE(importer.SkippedCount(), 0);
}

void tst_SvgImporter::sampleFile()
{
    QFile file(QStringLiteral(LAYERMGR_SOURCE_DIR "/resources/Samples/sample.svg"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    CSvgImporter importer;
    QVERIFY2(importer.Read(&file), qPrintable(importer.ErrorString()));
    QCOMPARE(DrawItemsText(importer.Items()),
             QStringLiteral("rect #0b00ff; ellipse #0b00ff; ellipse #0b00ff; image #000000 fill; "
                            "ellipse #00cafc fill; path #2431bd fill; line #f48244; path #f48244; "
                            "group #f5400f [ellipse #f5400f; path #f5400f]; path #ffd700 fill; path #336633"));
    QCOMPARE(importer.SkippedCount(), 1);
    // 360 × 260 mm, drawn 10 mm in from the edges.
    QCOMPARE(BoundsText(CDrawItem::BoundsOf(importer.Items())), QStringLiteral("10,10 340x240"));
}

void tst_SvgImporter::colors_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<uint>("rgb");
    QTest::addColumn<bool>("transparent");
    colour("#rgb", "#1a3", true, 0x11AA33u);
    colour("#rgba transparent", "#1a30", true, 0x11AA33u, true);
    colour("#rrggbb", "#0B00ff", true, 0x0B00FFu);
    colour("#rrggbbaa", "#0b00ff80", true, 0x0B00FFu);
    colour("rgb spaces and slash", "rgb(1 2 3 / 0%)", true, 0x010203u, true);
    colour("rgb commas with spaces", "rgb(1, 2, 3)", true, 0x010203u);
    colour("RGB upper case", "RGB(4,5,6)", true, 0x040506u);
    colour("named", "  navy ", true, 0x000080u);
    colour("transparent", "transparent", true, 0u, true);
    colour("rgb() percentages", "rgb(100%, 0%, 50%)", true, 0xFF0080u);
    colour("rgb() out of range clamps", "rgb(300,-5,16)", true, 0xFF0010u);
    colour("rgba() half transparent keeps colour", "rgba(10,20,30,0.5)", true, 0x0A141Eu);
    colour("named colour, mixed case", "DarkRed", true, 0x8B0000u);
    for (const char *garbage : {"#12", "#1234567", "#ggg", "rgb(1,2)", "rgb(1,2,3,4,5)", "rgb(1,2,3", "blurple",
                                "red1", ""})
        colour(qPrintable(QStringLiteral("garbage '%1'").arg(QLatin1String(garbage))), garbage, false);
}

void tst_SvgImporter::colors()
{
    QFETCH(QString, text);
    QFETCH(bool, ok);
    quint32 parsed = 0xDEADBEEF;
    bool transparent = false;
    QCOMPARE(ParseSvgColor(text, &parsed, &transparent), ok);
    if (ok) {
        QTEST(parsed, "rgb");
        QTEST(transparent, "transparent");
    }
}

QTEST_GUILESS_MAIN(tst_SvgImporter)
#include "tst_svgimporter.moc"
