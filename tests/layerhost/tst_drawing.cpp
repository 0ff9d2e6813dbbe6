#include "cdrawing.h"
#include "drawitemtext.h"

#include "cshape.h"
#include "cshapegroup.h"
#include "cshapelist.h"

#include <QSignalSpy>
#include <QTest>

#include <functional>

namespace {

// Left to right: an outline rectangle, a filled ellipse, a line, an image.
std::vector<CDrawItem> fourShapes()
{
    return {CDrawItem::Rect(QRectF(0, 0, 20, 20), 0x0000AA),
            CDrawItem::Ellipse(QRectF(30, 0, 20, 20), 0x00AA00, true),
            CDrawItem::Line(QLineF(60, 10, 80, 10), 0xAA0000),
            CDrawItem::Image(QRectF(90, 0, 20, 20), 0x00CAFC)};
}

// What the plug-in is shown: "colour/kind", a group's members in brackets.
QString shapeText(const CShape *shape)
{
    const QString text = QStringLiteral("%1/%2").arg(shape->GetColor(), 6, 16, QLatin1Char('0')).arg(shape->GetType());
    if (shape->GetType() != SHAPE_GROUP)
        return text;
    const auto *group = static_cast<const CShapeGroup *>(shape);
    QStringList members;
    for (int i = 0; i < group->GetCount(); ++i)
        members.append(shapeText(group->GetShape(i)));
    return text + QStringLiteral(" [") + members.join(QStringLiteral(", ")) + QLatin1Char(']');
}

// The selected indexes; "mismatch" when the plug-in's shapes carry another selection.
QString selectionText(const CDrawing &drawing)
{
    QStringList selected;
    for (int i = 0; i < drawing.Count(); ++i) {
        if (drawing.IsSelected(i) != drawing.ShapeList()->GetShape(i)->IsSelected())
            return QStringLiteral("mismatch");
        if (drawing.IsSelected(i))
            selected.append(QString::number(i));
    }
    return selected.join(QLatin1Char(','));
}

using Edit = std::function<void(CDrawing &)>;

} // namespace

Q_DECLARE_METATYPE(Edit)

class tst_Drawing : public QObject
{
    Q_OBJECT

    CDrawing m_drawing;

    // "40 +70": picks at x = 40 mm, then x = 70 mm with Shift; y is 10 mm.
    void pick(const QString &picks)
    {
        for (const QString &p : picks.split(QLatin1Char(' '), Qt::SkipEmptyParts))
            m_drawing.SelectAt(QPointF(QStringView(p).mid(p.startsWith(QLatin1Char('+'))).toDouble(), 10), 1.0,
                               p.startsWith(QLatin1Char('+')));
    }

private slots:
    void init() { m_drawing.SetItems(fourShapes()); }

    void shapeListMirrorsItems()
    {
        std::vector<CDrawItem> items = fourShapes();
        items.push_back(CDrawItem(DRAW_TEXT, 0x000000, QPainterPath(QPointF(1, 1)), true));
        items.push_back(CDrawItem::Group({CDrawItem::Rect(QRectF(0, 0, 1, 1), 0x2431BD),
                                          CDrawItem::Line(QLineF(0, 0, 1, 1), 0xF48244)}));
        m_drawing.SetItems(std::move(items));
        QStringList shapes;
        for (int i = 0; i < m_drawing.ShapeList()->GetCount(); ++i)
            shapes.append(shapeText(m_drawing.ShapeList()->GetShape(i)));
        QCOMPARE(shapes.join(QStringLiteral("; ")),
                 QStringLiteral("0000aa/1; 00aa00/1; aa0000/1; 00cafc/0; 000000/2; 2431bd/3 [2431bd/1, f48244/1]"));
    }

    void edit_data()
    {
        QTest::addColumn<QString>("picks");
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<QString>("items"); // and the drawing's bounds
        QTest::addColumn<QString>("selected");
        QTest::addColumn<int>("changes");
        QTest::addColumn<int>("selections");
        // clang-format off
        const QString four = QStringLiteral("rect #0000aa; ellipse #00aa00 fill; line #aa0000; image #00cafc fill @ 0,0 110x20");
        const QString grouped = QStringLiteral("rect #0000aa; group #00aa00 [ellipse #00aa00 fill; image #00cafc fill]; line #aa0000 @ 0,0 110x20");
        const Edit none = [](CDrawing &) {};
        auto band = [](const QRectF &r) { return Edit([r](CDrawing &d) { d.SelectInRect(r, false); }); };
        QTest::newRow("outline of the rectangle") << "0.3" << none << four << "0" << 0 << 0;
        QTest::newRow("inside an outline is a miss") << "40 10" << none << four << "" << 0 << 0;
        QTest::newRow("near the end of the line") << "80.8" << none << four << "2" << 0 << 0;
        QTest::newRow("beside the line") << "40 82" << none << four << "" << 0 << 0;
        QTest::newRow("inside the image, shift adds") << "40 +100" << none << four << "1,3" << 0 << 0;
        QTest::newRow("shift on a selected shape takes it out") << "40 +100 +40" << none << four << "3" << 0 << 0;
        QTest::newRow("shift on nothing keeps the selection") << "40 +200" << none << four << "1" << 0 << 0;
        QTest::newRow("band around everything") << "100" << band(QRectF(-1, -1, 200, 30)) << four << "0,1,2,3" << 0 << 1;
        QTest::newRow("band drawn right to left") << "100" << band(QRectF(52, 21, -30, -22)) << four << "1" << 0 << 1;
        QTest::newRow("a line lies inside a flat band") << "" << band(QRectF(59, 9, 22, 2)) << four << "2" << 0 << 1;
        QTest::newRow("half of a shape is not enough") << "100" << band(QRectF(-1, -1, 11, 30)) << four << "" << 0 << 1;
        QTest::newRow("delete two") << "40 +70" << Edit([](CDrawing &d) { d.DeleteSelected(); }) << "rect #0000aa; image #00cafc fill @ 0,0 110x20" << "" << 1 << 1;
        QTest::newRow("group in drawing order") << "100 +40" << Edit([](CDrawing &d) { d.GroupSelected(); }) << grouped << "1" << 1 << 1;
        QTest::newRow("a click on a member picks the group") << "100 +40" << Edit([](CDrawing &d) { d.GroupSelected(); d.SelectAt(QPointF(100, 10), 1.0, false); }) << grouped << "1" << 1 << 1;
        QTest::newRow("one shape is no group") << "40" << Edit([](CDrawing &d) { d.GroupSelected(); }) << four << "1" << 0 << 0;
        QTest::newRow("ungroup gives the members back, selected") << "100 +40" << Edit([](CDrawing &d) { d.GroupSelected(); d.SelectAll(); d.UngroupSelected(); }) << "rect #0000aa; ellipse #00aa00 fill; image #00cafc fill; line #aa0000 @ 0,0 110x20" << "0,1,2,3" << 2 << 3;
        QTest::newRow("recolour a group and a shape") << "0.2 +70" << Edit([](CDrawing &d) { d.GroupSelected(); d.SelectAt(QPointF(100, 10), 1.0, true); d.RecolorSelected(0xF48244); }) << "group #f48244 [rect #f48244; line #f48244]; ellipse #00aa00 fill; image #f48244 fill @ 0,0 110x20" << "0,2" << 2 << 2;
        QTest::newRow("move") << "40" << Edit([](CDrawing &d) { d.MoveSelected(QPointF(5, -2.5)); }) << QString(four).replace("0,0 110x20", "0,-2.5 110x22.5") << "1" << 1 << 0;
        QTest::newRow("move by nothing") << "40" << Edit([](CDrawing &d) { d.MoveSelected(QPointF()); }) << four << "1" << 0 << 0;
        QTest::newRow("select all, clear twice") << "40" << Edit([](CDrawing &d) { d.SelectAll(); d.ClearSelection(); d.ClearSelection(); }) << four << "" << 0 << 2;
        QTest::newRow("drawn shapes are not selected") << "40" << Edit([](CDrawing &d) { d.AddItem(CDrawItem::Rect(QRectF(0, 0, 1, 1), 0x111111), false); }) << QString(four).replace(" @", "; rect #111111 @") << "" << 1 << 1;
        // clang-format on
    }

    void edit()
    {
        QFETCH(QString, picks);
        QFETCH(Edit, edit);
        pick(picks);
        QSignalSpy changed(&m_drawing, &CDrawing::SigChanged);
        QSignalSpy selection(&m_drawing, &CDrawing::SigSelectionChanged);
        edit(m_drawing);
        QTEST(QString(DrawItemsText(m_drawing.Items()) + QStringLiteral(" @ ") + BoundsText(m_drawing.Bounds())), "items");
        QTEST(selectionText(m_drawing), "selected");
        QTEST(int(changed.count()), "changes");
        QTEST(int(selection.count()), "selections");
    }
};

QTEST_GUILESS_MAIN(tst_Drawing)
#include "tst_drawing.moc"
