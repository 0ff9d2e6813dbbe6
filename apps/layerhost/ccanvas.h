#pragma once

#include <QPointF>
#include <QTransform>
#include <QWidget>

#include <functional>

class CDrawing;
class CDrawItem;

enum ECANVAS_TOOL {
    TOOL_SELECT = 0,
    TOOL_RECT = 1,
    TOOL_ELLIPSE = 2,
    TOOL_LINE = 3,
};

// The drawing area: paints the drawing on a page, in millimetres scaled to
// fit, and lets the user draw rectangles, ellipses and lines in the current
// colour, select by click or rubber band, and move the selection by dragging.
class CCanvas : public QWidget
{
    Q_OBJECT

public:
    explicit CCanvas(CDrawing *drawing, QWidget *parent = nullptr);

    ECANVAS_TOOL Tool() const { return m_tool; }
    void SetTool(ECANVAS_TOOL tool);
    quint32 Color() const { return m_color; }
    void SetColor(quint32 color) { m_color = color & 0xFFFFFFu; }
    // Shapes of colours this answers false for (layers not output) are drawn faded.
    void SetOutputQuery(std::function<bool(quint32)> query);

    // The work area, in millimetres.
    static QRectF PageRect() { return QRectF(0, 0, 400, 300); }
    // Shows the whole drawing as large as the widget allows, the page when
    // the drawing is empty. Later edits only ever widen the view.
    void FitToDrawing();

    // Millimetres to widget pixels.
    QTransform ViewTransform() const { return m_view; }
    QPointF ToWidget(const QPointF &mm) const { return m_view.map(mm); }
    QPointF ToDrawing(const QPointF &pixel) const { return m_view.inverted().map(pixel); }

    QSize sizeHint() const override { return QSize(760, 560); }
    QSize minimumSizeHint() const override { return QSize(240, 180); }

signals:
    void SigCursorMoved(const QPointF &mm);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    enum class Drag { None, Creating, Moving, Banding };

    void updateView();
    void cancelDrag();
    qreal tolerance() const;
    bool draggedFarEnough() const;
    void paintPage(QPainter &painter) const;
    void paintItem(QPainter &painter, const CDrawItem &item, bool faded) const;
    void paintSelection(QPainter &painter, const QPointF &offset) const;
    void paintDragPreview(QPainter &painter) const;

    CDrawing *m_drawing;
    ECANVAS_TOOL m_tool = TOOL_SELECT;
    quint32 m_color = 0;
    std::function<bool(quint32)> m_isOutput;
    QRectF m_world = PageRect(); // millimetres
    QTransform m_view;
    Drag m_drag = Drag::None;
    bool m_extend = false;
    QPointF m_pressPixel;
    QPointF m_press;   // millimetres
    QPointF m_current; // millimetres
};
