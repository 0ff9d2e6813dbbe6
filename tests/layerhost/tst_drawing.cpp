#include "cdrawing.h"
#include "drawitemtext.h"

#include "cshape.h"
#include "cshapegroup.h"
#include "cshapelist.h"

#include <QSignalSpy>
#include <QTest>

class tst_Drawing : public QObject
{
    Q_OBJECT

private slots:
    void shapeListMirrorsItems();
    void selectAt_data();
    void selectAt();
    void selectInRect_data();
    void selectInRect();
    void selectionSignalsOnlyOnChange();
    void deleteSelected();
    void groupSelected();
    void groupNeedsTwo();
    void ungroupSelected();
    void recolorSelected();
    void moveSelected();
    void addItemsSelection_data();
    void addItemsSelection();
};

namespace {

// Left to right: an outline rectangle, a filled ellipse, a line, an image.
std::vector<CDrawItem> fourShapes()
{
    std::vector<CDrawItem> items;
    items.push_back(CDrawItem::Rect(QRectF(0, 0, 20, 20), 0x0000AA));
    items.push_back(CDrawItem::Ellipse(QRectF(30, 0, 20, 20), 0x00AA00, true));
    items.push_back(CDrawItem::Line(QLineF(60, 10, 80, 10), 0xAA0000));
    items.push_back(CDrawItem::Image(QRectF(90, 0, 20, 20), 0x00CAFC));
    return items;
}

// What the plug-in is shown: "colour/kind", "*" when selected, members in brackets.
QString shapeText(const CShape *shape)
{
    QString text = QStringLiteral("%1/%2").arg(shape->GetColor(), 6, 16, QLatin1Char('0')).arg(shape->GetType());
    if (shape->IsSelected())
        text += QLatin1Char('*');
    if (shape->GetType() == SHAPE_GROUP) {
        const auto *group = static_cast<const CShapeGroup *>(shape);
        QStringList members;
        for (int i = 0; i < group->GetCount(); ++i)
            members.append(shapeText(group->GetShape(i)));
        text += QStringLiteral(" [") + members.join(QStringLiteral(", ")) + QLatin1Char(']');
    }
    return text;
}

QString shapesText(const CDrawing &drawing)
{
    QStringList texts;
    for (int i = 0; i < drawing.ShapeList()->GetCount(); ++i)
        texts.append(shapeText(drawing.ShapeList()->GetShape(i)));
    return texts.join(QStringLiteral("; "));
}

QString selectionText(const CDrawing &drawing)
{
    QStringList indexes;
    for (int i : drawing.SelectedIndexes())
        indexes.append(QString::number(i));
    return indexes.join(QLatin1Char(','));
}

} // namespace

void tst_Drawing::shapeListMirrorsItems()
{
    CDrawing drawing;
    std::vector<CDrawItem> items = fourShapes();
    QPainterPath glyph;
    glyph.addRect(0, 0, 1, 1);
    items.push_back(CDrawItem(DRAW_TEXT, 0x000000, glyph, true));
    std::vector<CDrawItem> members;
    members.push_back(CDrawItem::Rect(QRectF(0, 0, 1, 1), 0x2431BD));
    members.push_back(CDrawItem::Line(QLineF(0, 0, 1, 1), 0xF48244));
    items.push_back(CDrawItem::Group(std::move(members)));
    drawing.SetItems(std::move(items));
    QCOMPARE(shapesText(drawing), QStringLiteral("0000aa/1; 00aa00/1; aa0000/1; 00cafc/0; 000000/2; "
                                                 "2431bd/3 [2431bd/1, f48244/1]"));
    drawing.Clear();
    QCOMPARE(drawing.ShapeList()->GetCount(), 0);
}

void tst_Drawing::selectAt_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<bool>("extend");
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QString>("shapes");

    const QString none = QStringLiteral("0000aa/1; 00aa00/1; aa0000/1; 00cafc/0");
    // The second shape starts selected.
    QTest::newRow("outline of the rectangle") << QPointF(0.3, 10) << false << "0"
                                              << "0000aa/1*; 00aa00/1; aa0000/1; 00cafc/0";
    QTest::newRow("inside an outline is a miss") << QPointF(10, 10) << false << "" << none;
    QTest::newRow("inside a filled shape") << QPointF(40, 10) << false << "1"
                                           << "0000aa/1; 00aa00/1*; aa0000/1; 00cafc/0";
    QTest::newRow("near the line") << QPointF(70, 10.8) << false << "2"
                                   << "0000aa/1; 00aa00/1; aa0000/1*; 00cafc/0";
    QTest::newRow("beside the line") << QPointF(70, 13) << false << "" << none;
    QTest::newRow("inside the image") << QPointF(100, 10) << false << "3"
                                      << "0000aa/1; 00aa00/1; aa0000/1; 00cafc/0*";
    QTest::newRow("shift adds") << QPointF(100, 10) << true << "1,3"
                                << "0000aa/1; 00aa00/1*; aa0000/1; 00cafc/0*";
    QTest::newRow("shift on a selected shape takes it out") << QPointF(40, 10) << true << "" << none;
    QTest::newRow("shift on nothing keeps the selection") << QPointF(200, 200) << true << "1"
                                                          << "0000aa/1; 00aa00/1*; aa0000/1; 00cafc/0";
}

void tst_Drawing::selectAt()
{
    QFETCH(QPointF, point);
    QFETCH(bool, extend);
    QFETCH(QString, selected);
    QFETCH(QString, shapes);

    CDrawing drawing;
    drawing.SetItems(fourShapes());
    drawing.SelectAt(QPointF(40, 10), 1.0, false);
    drawing.SelectAt(point, 1.0, extend);
    QCOMPARE(selectionText(drawing), selected);
    QCOMPARE(shapesText(drawing), shapes);
}

void tst_Drawing::selectInRect_data()
{
    QTest::addColumn<QRectF>("band");
    QTest::addColumn<QString>("selected");

    QTest::newRow("around everything") << QRectF(-1, -1, 200, 30) << "0,1,2,3";
    QTest::newRow("drawn right to left") << QRectF(52, 21, -30, -22) << "1";
    QTest::newRow("a line lies inside a flat band") << QRectF(59, 9, 22, 2) << "2";
    QTest::newRow("half of a shape is not enough") << QRectF(-1, -1, 11, 30) << "";
    QTest::newRow("empty band") << QRectF(500, 500, 10, 10) << "";
}

void tst_Drawing::selectInRect()
{
    QFETCH(QRectF, band);
    QFETCH(QString, selected);

    CDrawing drawing;
    drawing.SetItems(fourShapes());
    drawing.SelectAt(QPointF(100, 10), 1.0, false);
    drawing.SelectInRect(band, false);
    QCOMPARE(selectionText(drawing), selected);
}

void tst_Drawing::selectionSignalsOnlyOnChange()
{
    CDrawing drawing;
    drawing.SetItems(fourShapes());
    QSignalSpy selection(&drawing, &CDrawing::SigSelectionChanged);
    QSignalSpy changed(&drawing, &CDrawing::SigChanged);
    drawing.SelectAt(QPointF(40, 10), 1.0, false);
    drawing.SelectAt(QPointF(40, 10), 1.0, false);
    QCOMPARE(selection.count(), 1);
    drawing.ClearSelection();
    drawing.ClearSelection();
    QCOMPARE(selection.count(), 2);
    drawing.SelectAll();
    QCOMPARE(selection.count(), 3);
    QCOMPARE(changed.count(), 0);
}

void tst_Drawing::deleteSelected()
{
    CDrawing drawing;
    drawing.SetItems(fourShapes());
    QSignalSpy changed(&drawing, &CDrawing::SigChanged);
    QCOMPARE(drawing.DeleteSelected(), 0);
    QCOMPARE(changed.count(), 0);
    drawing.SelectAt(QPointF(40, 10), 1.0, false);
    drawing.SelectAt(QPointF(70, 10), 1.0, true);
    QCOMPARE(drawing.DeleteSelected(), 2);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(shapesText(drawing), QStringLiteral("0000aa/1; 00cafc/0"));
    QCOMPARE(selectionText(drawing), QString());
}

void tst_Drawing::groupSelected()
{
    CDrawing drawing;
    drawing.SetItems(fourShapes());
    // Picked last to first: the group still follows drawing order.
    drawing.SelectAt(QPointF(100, 10), 1.0, false);
    drawing.SelectAt(QPointF(40, 10), 1.0, true);
    QSignalSpy changed(&drawing, &CDrawing::SigChanged);
    QVERIFY(drawing.GroupSelected());
    QCOMPARE(changed.count(), 1);
    QCOMPARE(DrawItemsText(drawing.Items()),
             QStringLiteral("rect #0000aa; group #00aa00 [ellipse #00aa00 fill; image #00cafc fill]; line #aa0000"));
    QCOMPARE(shapesText(drawing), QStringLiteral("0000aa/1; 00aa00/3* [00aa00/1, 00cafc/0]; aa0000/1"));
    QCOMPARE(selectionText(drawing), QStringLiteral("1"));
    // A click on any member picks the group.
    drawing.SelectAt(QPointF(100, 10), 1.0, false);
    QCOMPARE(selectionText(drawing), QStringLiteral("1"));
}

void tst_Drawing::groupNeedsTwo()
{
    CDrawing drawing;
    drawing.SetItems(fourShapes());
    drawing.SelectAt(QPointF(40, 10), 1.0, false);
    QSignalSpy changed(&drawing, &CDrawing::SigChanged);
    QVERIFY(!drawing.GroupSelected());
    QCOMPARE(changed.count(), 0);
    QCOMPARE(drawing.Count(), 4);
}

void tst_Drawing::ungroupSelected()
{
    CDrawing drawing;
    drawing.SetItems(fourShapes());
    drawing.SelectAt(QPointF(0.2, 10), 1.0, false);
    drawing.SelectAt(QPointF(40, 10), 1.0, true);
    QVERIFY(drawing.GroupSelected());
    drawing.SelectAt(QPointF(70, 10), 1.0, true);
    QCOMPARE(drawing.UngroupSelected(), 1);
    QCOMPARE(DrawItemsText(drawing.Items()),
             QStringLiteral("rect #0000aa; ellipse #00aa00 fill; line #aa0000; image #00cafc fill"));
    QCOMPARE(selectionText(drawing), QStringLiteral("0,1,2"));
    QCOMPARE(drawing.UngroupSelected(), 0);
}

void tst_Drawing::recolorSelected()
{
    CDrawing drawing;
    drawing.SetItems(fourShapes());
    drawing.SelectAt(QPointF(0.2, 10), 1.0, false);
    drawing.SelectAt(QPointF(70, 10), 1.0, true);
    drawing.GroupSelected();
    drawing.SelectAt(QPointF(100, 10), 1.0, true);
    QCOMPARE(drawing.RecolorSelected(0xF48244), 2);
    QCOMPARE(DrawItemsText(drawing.Items()),
             QStringLiteral("group #f48244 [rect #f48244; line #f48244]; ellipse #00aa00 fill; image #f48244 fill"));
    QCOMPARE(shapesText(drawing), QStringLiteral("f48244/3* [f48244/1, f48244/1]; 00aa00/1; f48244/0*"));
}

void tst_Drawing::moveSelected()
{
    CDrawing drawing;
    drawing.SetItems(fourShapes());
    drawing.SelectAt(QPointF(40, 10), 1.0, false);
    QSignalSpy changed(&drawing, &CDrawing::SigChanged);
    drawing.MoveSelected(QPointF(5, -2.5));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(BoundsText(drawing.ItemAt(1).Bounds()), QStringLiteral("35,-2.5 20x20"));
    QCOMPARE(BoundsText(drawing.ItemAt(0).Bounds()), QStringLiteral("0,0 20x20"));
    drawing.MoveSelected(QPointF());
    QCOMPARE(changed.count(), 1);
}

void tst_Drawing::addItemsSelection_data()
{
    QTest::addColumn<bool>("select");
    QTest::addColumn<QString>("selected");

    QTest::newRow("imported shapes are selected") << true << "4,5";
    QTest::newRow("drawn shapes are not") << false << "";
}

void tst_Drawing::addItemsSelection()
{
    QFETCH(bool, select);
    QFETCH(QString, selected);

    CDrawing drawing;
    drawing.SetItems(fourShapes());
    drawing.SelectAt(QPointF(40, 10), 1.0, false);
    std::vector<CDrawItem> more;
    more.push_back(CDrawItem::Rect(QRectF(0, 0, 1, 1), 0x111111));
    more.push_back(CDrawItem::Rect(QRectF(0, 0, 1, 1), 0x222222));
    drawing.AddItems(std::move(more), select);
    QCOMPARE(selectionText(drawing), selected);
    QCOMPARE(drawing.ShapeList()->GetCount(), 6);
    QCOMPARE(drawing.ShapeList()->GetShape(5)->IsSelected(), select);
}

QTEST_GUILESS_MAIN(tst_Drawing)
#include "tst_drawing.moc"
