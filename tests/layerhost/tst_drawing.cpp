#include "cdrawing.h"
#include "drawitemtext.h"

#include "cshape.h"
#include "cshapegroup.h"
#include "cshapelist.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

// Left to right: an outline rectangle, a filled ellipse, a line, an image.
std::vector<CDrawItem> fourShapes()
{
    return {CDrawItem::Rect(QRectF(0, 0, 20, 20), 0x0000AA),
            CDrawItem::Ellipse(QRectF(30, 0, 20, 20), 0x00AA00, true),
            CDrawItem::Line(QLineF(60, 10, 80, 10), 0xAA0000),
            CDrawItem::Image(QRectF(90, 0, 20, 20), 0x00CAFC)};
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

class tst_Drawing : public QObject
{
    Q_OBJECT

    std::unique_ptr<CDrawing> m_drawing;
    void pick(qreal x, bool extend = false) { m_drawing->SelectAt(QPointF(x, 10), 1.0, extend); }
    QString items() const { return DrawItemsText(m_drawing->Items()); }

private slots:
    void init()
    {
        m_drawing = std::make_unique<CDrawing>();
        m_drawing->SetItems(fourShapes());
    }

    void shapeListMirrorsItems()
    {
        std::vector<CDrawItem> items = fourShapes();
        QPainterPath glyph;
        glyph.addRect(0, 0, 1, 1);
        items.push_back(CDrawItem(DRAW_TEXT, 0x000000, glyph, true));
        items.push_back(CDrawItem::Group({CDrawItem::Rect(QRectF(0, 0, 1, 1), 0x2431BD),
                                          CDrawItem::Line(QLineF(0, 0, 1, 1), 0xF48244)}));
        m_drawing->SetItems(std::move(items));
        QCOMPARE(shapesText(*m_drawing), QStringLiteral("0000aa/1; 00aa00/1; aa0000/1; 00cafc/0; 000000/2; "
                                                        "2431bd/3 [2431bd/1, f48244/1]"));
        m_drawing->Clear();
        QCOMPARE(m_drawing->ShapeList()->GetCount(), 0);
    }

    void selectAt_data()
    {
        QTest::addColumn<QPointF>("point");
        QTest::addColumn<bool>("extend");
        QTest::addColumn<QString>("selected");
        // The second shape starts selected.
        QTest::newRow("outline of the rectangle") << QPointF(0.3, 10) << false << "0";
        QTest::newRow("inside an outline is a miss") << QPointF(10, 10) << false << "";
        QTest::newRow("inside a filled shape") << QPointF(40, 10) << false << "1";
        QTest::newRow("near the line") << QPointF(70, 10.8) << false << "2";
        QTest::newRow("beside the line") << QPointF(70, 13) << false << "";
        QTest::newRow("inside the image") << QPointF(100, 10) << false << "3";
        QTest::newRow("shift adds") << QPointF(100, 10) << true << "1,3";
        QTest::newRow("shift on a selected shape takes it out") << QPointF(40, 10) << true << "";
        QTest::newRow("shift on nothing keeps the selection") << QPointF(200, 200) << true << "1";
    }

    void selectAt()
    {
        QFETCH(QPointF, point);
        QFETCH(bool, extend);
        QFETCH(QString, selected);
        pick(40);
        m_drawing->SelectAt(point, 1.0, extend);
        QCOMPARE(selectionText(*m_drawing), selected);
        // The plug-in's shapes carry the same selection.
        QStringList shapes{"0000aa/1", "00aa00/1", "aa0000/1", "00cafc/0"};
        for (const QString &index : selected.split(QLatin1Char(','), Qt::SkipEmptyParts))
            shapes[index.toInt()] += QLatin1Char('*');
        QCOMPARE(shapesText(*m_drawing), shapes.join(QStringLiteral("; ")));
    }

    void selectInRect_data()
    {
        QTest::addColumn<QRectF>("band");
        QTest::addColumn<QString>("selected");
        QTest::newRow("around everything") << QRectF(-1, -1, 200, 30) << "0,1,2,3";
        QTest::newRow("drawn right to left") << QRectF(52, 21, -30, -22) << "1";
        QTest::newRow("a line lies inside a flat band") << QRectF(59, 9, 22, 2) << "2";
        QTest::newRow("half of a shape is not enough") << QRectF(-1, -1, 11, 30) << "";
        QTest::newRow("empty band") << QRectF(500, 500, 10, 10) << "";
    }

    void selectInRect()
    {
        QFETCH(QRectF, band);
        pick(100);
        m_drawing->SelectInRect(band, false);
        QTEST(selectionText(*m_drawing), "selected");
    }

    void signalsOnlyOnChange()
    {
        QSignalSpy selection(m_drawing.get(), &CDrawing::SigSelectionChanged);
        QSignalSpy changed(m_drawing.get(), &CDrawing::SigChanged);
        QCOMPARE(m_drawing->DeleteSelected(), 0);
        QVERIFY(!m_drawing->GroupSelected());
        pick(40);
        pick(40);
        QCOMPARE(selection.count(), 1);
        QVERIFY(!m_drawing->GroupSelected());
        QCOMPARE(m_drawing->Count(), 4);
        m_drawing->MoveSelected(QPointF());
        m_drawing->ClearSelection();
        m_drawing->ClearSelection();
        QCOMPARE(selection.count(), 2);
        m_drawing->SelectAll();
        QCOMPARE(selection.count(), 3);
        QCOMPARE(changed.count(), 0);
    }

    void deleteSelected()
    {
        QSignalSpy changed(m_drawing.get(), &CDrawing::SigChanged);
        pick(40);
        pick(70, true);
        QCOMPARE(m_drawing->DeleteSelected(), 2);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(shapesText(*m_drawing), QStringLiteral("0000aa/1; 00cafc/0"));
        QCOMPARE(selectionText(*m_drawing), QString());
    }

    void groupAndUngroup()
    {
        // Picked last to first: the group still follows drawing order.
        pick(100);
        pick(40, true);
        QSignalSpy changed(m_drawing.get(), &CDrawing::SigChanged);
        QVERIFY(m_drawing->GroupSelected());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(items(), QStringLiteral("rect #0000aa; group #00aa00 [ellipse #00aa00 fill; image #00cafc fill]; "
                                         "line #aa0000"));
        QCOMPARE(shapesText(*m_drawing), QStringLiteral("0000aa/1; 00aa00/3* [00aa00/1, 00cafc/0]; aa0000/1"));
        QCOMPARE(selectionText(*m_drawing), QStringLiteral("1"));
        // A click on any member picks the group.
        pick(100);
        QCOMPARE(selectionText(*m_drawing), QStringLiteral("1"));

        pick(0.2, true);
        pick(70, true);
        QCOMPARE(m_drawing->UngroupSelected(), 1);
        QCOMPARE(items(), QStringLiteral("rect #0000aa; ellipse #00aa00 fill; image #00cafc fill; line #aa0000"));
        QCOMPARE(selectionText(*m_drawing), QStringLiteral("0,1,2,3"));
        QCOMPARE(m_drawing->UngroupSelected(), 0);
    }

    void recolorSelected()
    {
        pick(0.2);
        pick(70, true);
        m_drawing->GroupSelected();
        pick(100, true);
        QCOMPARE(m_drawing->RecolorSelected(0xF48244), 2);
        QCOMPARE(items(), QStringLiteral("group #f48244 [rect #f48244; line #f48244]; ellipse #00aa00 fill; "
                                         "image #f48244 fill"));
        QCOMPARE(shapesText(*m_drawing), QStringLiteral("f48244/3* [f48244/1, f48244/1]; 00aa00/1; f48244/0*"));
    }

    void moveSelected()
    {
        pick(40);
        QSignalSpy changed(m_drawing.get(), &CDrawing::SigChanged);
        m_drawing->MoveSelected(QPointF(5, -2.5));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(BoundsText(m_drawing->ItemAt(1).Bounds()), QStringLiteral("35,-2.5 20x20"));
        QCOMPARE(BoundsText(m_drawing->ItemAt(0).Bounds()), QStringLiteral("0,0 20x20"));
        m_drawing->MoveSelected(QPointF());
        QCOMPARE(changed.count(), 1);
    }

    void addItemsSelection_data()
    {
        QTest::addColumn<bool>("select");
        QTest::addColumn<QString>("selected");
        QTest::newRow("imported shapes are selected") << true << "4,5";
        QTest::newRow("drawn shapes are not") << false << "";
    }

    void addItemsSelection()
    {
        QFETCH(bool, select);
        pick(40);
        m_drawing->AddItems({CDrawItem::Rect(QRectF(0, 0, 1, 1), 0x111111), CDrawItem::Rect(QRectF(0, 0, 1, 1), 0x222222)},
                            select);
        QTEST(selectionText(*m_drawing), "selected");
        QCOMPARE(m_drawing->ShapeList()->GetCount(), 6);
        QCOMPARE(m_drawing->ShapeList()->GetShape(5)->IsSelected(), select);
    }
};

QTEST_GUILESS_MAIN(tst_Drawing)
#include "tst_drawing.moc"
