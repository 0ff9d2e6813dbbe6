#include "ccanvas.h"

#include "cdrawing.h"
#include "ilog.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QtMath>

namespace {

constexpr int kMarginPixels = 18;
constexpr qreal kPickPixels = 5.0;
constexpr qreal kDragPixels = 3.0;
const QColor kSelectionColor(0x1E, 0x78, 0xD7);

QColor shapeColor(quint32 rgb, bool faded)
{
    QColor color = QColor::fromRgb(rgb);
    if (faded)
        color.setAlpha(70);
    return color;
}

QPen shapePen(const QColor &color, bool faded)
{
    QPen pen(color, 1.6);
    pen.setCosmetic(true);
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCapStyle(Qt::RoundCap);
    if (faded)
        pen.setStyle(Qt::DashLine);
    return pen;
}

} // namespace

CCanvas::CCanvas(CDrawing *drawing, QWidget *parent)
    : QWidget(parent)
    , m_drawing(drawing)
{
    setObjectName(QStringLiteral("widget_canvas"));
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    connect(m_drawing, &CDrawing::SigChanged, this, [this] {
        updateView();
        update();
    });
    connect(m_drawing, &CDrawing::SigSelectionChanged, this, qOverload<>(&QWidget::update));
    updateView();
}

void CCanvas::SetTool(ECANVAS_TOOL tool)
{
    cancelDrag();
    m_tool = tool;
    setCursor(tool == TOOL_SELECT ? Qt::ArrowCursor : Qt::CrossCursor);
}

void CCanvas::SetOutputQuery(std::function<bool(quint32)> query)
{
    m_isOutput = std::move(query);
    update();
}

void CCanvas::FitToDrawing()
{
    m_world = PageRect();
    if (!m_drawing->Items().empty()) {
        // A lone straight line has no height; give it some to scale by.
        const QRectF bounds = m_drawing->Bounds();
        const QPointF centre = bounds.center();
        m_world = bounds;
        m_world.setWidth(qMax(bounds.width(), 1.0));
        m_world.setHeight(qMax(bounds.height(), 1.0));
        m_world.moveCenter(centre);
    }
    updateView();
    update();
}

void CCanvas::updateView()
{
    // What was fitted, and whatever has since been drawn or moved beyond it,
    // scaled to fit and centred.
    QRectF world = m_world;
    if (!m_drawing->Items().empty())
        world = world.united(m_drawing->Bounds());
    const qreal w = qMax(1, width() - 2 * kMarginPixels);
    const qreal h = qMax(1, height() - 2 * kMarginPixels);
    const qreal scale = qMin(w / world.width(), h / world.height());
    const qreal dx = (width() - world.width() * scale) / 2 - world.left() * scale;
    const qreal dy = (height() - world.height() * scale) / 2 - world.top() * scale;
    m_view = QTransform(scale, 0, 0, scale, dx, dy);
}

qreal CCanvas::tolerance() const
{
    return kPickPixels / qMax(m_view.m11(), 1e-9);
}

bool CCanvas::draggedFarEnough() const
{
    const QPointF moved = ToWidget(m_current) - m_pressPixel;
    return qMax(qAbs(moved.x()), qAbs(moved.y())) >= kDragPixels;
}

void CCanvas::cancelDrag()
{
    if (m_drag != Drag::None) {
        m_drag = Drag::None;
        update();
    }
}

void CCanvas::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    updateView();
}

void CCanvas::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_pressPixel = event->position();
    m_press = m_current = ToDrawing(event->position());
    m_extend = event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier);
    ILog_WriteLogF(1, "canvas pressed at %.2f, %.2f mm", m_press.x(), m_press.y());
    if (m_tool != TOOL_SELECT) {
        m_drag = Drag::Creating;
        return;
    }
    const int hit = m_drawing->HitItem(m_press, tolerance());
    if (hit >= 0 && m_extend) {
        m_drawing->SelectAt(m_press, tolerance(), true);
    } else if (hit >= 0) {
        if (!m_drawing->IsSelected(hit))
            m_drawing->SelectAt(m_press, tolerance(), false);
        m_drag = Drag::Moving;
    } else {
        if (!m_extend)
            m_drawing->ClearSelection();
        m_drag = Drag::Banding;
    }
}

void CCanvas::mouseMoveEvent(QMouseEvent *event)
{
    m_current = ToDrawing(event->position());
    emit SigCursorMoved(m_current);
    if (m_drag != Drag::None)
        update();
}

void CCanvas::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || m_drag == Drag::None) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    m_current = ToDrawing(event->position());
    const Drag drag = m_drag;
    m_drag = Drag::None;
    const bool far = draggedFarEnough();
    const QRectF rect = QRectF(m_press, m_current).normalized();
    switch (drag) {
    case Drag::Creating:
        // Not selected: choosing the next shape's colour must not recolour this one.
        if (!far)
            break;
        if (m_tool == TOOL_RECT)
            m_drawing->AddItem(CDrawItem::Rect(rect, m_color), false);
        else if (m_tool == TOOL_ELLIPSE)
            m_drawing->AddItem(CDrawItem::Ellipse(rect, m_color), false);
        else
            m_drawing->AddItem(CDrawItem::Line(QLineF(m_press, m_current), m_color), false);
        break;
    case Drag::Moving:
        if (far)
            m_drawing->MoveSelected(m_current - m_press);
        break;
    case Drag::Banding:
        if (far)
            m_drawing->SelectInRect(rect, m_extend);
        break;
    case Drag::None:
        break;
    }
    update();
}

void CCanvas::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && m_drag != Drag::None) {
        cancelDrag();
        return;
    }
    QWidget::keyPressEvent(event);
}

void CCanvas::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0xE4, 0xE7, 0xEB));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(m_view);
    paintPage(painter);

    const bool moving = m_drag == Drag::Moving && draggedFarEnough();
    const QPointF offset = moving ? m_current - m_press : QPointF();
    const auto &items = m_drawing->Items();
    for (int i = 0; i < int(items.size()); ++i) {
        const bool shifted = moving && m_drawing->IsSelected(i);
        if (shifted)
            painter.translate(offset);
        const CDrawItem &item = items[size_t(i)];
        paintItem(painter, item, m_isOutput && !m_isOutput(item.Color()));
        if (shifted)
            painter.translate(-offset);
    }
    paintSelection(painter, offset);
    paintDragPreview(painter);
}

void CCanvas::paintPage(QPainter &painter) const
{
    const QRectF page = PageRect();
    const qreal pixel = 1.0 / qMax(m_view.m11(), 1e-9);
    painter.fillRect(page.translated(2 * pixel, 2 * pixel), QColor(0, 0, 0, 40));
    painter.fillRect(page, Qt::white);
    // A 10 mm grid while its lines stay apart, every fifth line darker.
    if (m_view.m11() * 10 >= 6) {
        QPen minor(QColor(0xEE, 0xF0, 0xF3), 0);
        QPen major(QColor(0xD8, 0xDC, 0xE2), 0);
        for (int x = 10; x < page.width(); x += 10) {
            painter.setPen(x % 50 ? minor : major);
            painter.drawLine(QPointF(x, page.top()), QPointF(x, page.bottom()));
        }
        for (int y = 10; y < page.height(); y += 10) {
            painter.setPen(y % 50 ? minor : major);
            painter.drawLine(QPointF(page.left(), y), QPointF(page.right(), y));
        }
    }
    painter.setPen(QPen(QColor(0xB0, 0xB6, 0xBE), 0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(page);
}

void CCanvas::paintItem(QPainter &painter, const CDrawItem &item, bool faded) const
{
    if (item.IsGroup()) {
        for (const CDrawItem &member : item.Members())
            paintItem(painter, member, faded);
        return;
    }
    const QColor color = shapeColor(item.Color(), faded);
    const QPainterPath &path = item.Path();
    if (item.Kind() == DRAW_IMAGE) {
        // A stand-in for the picture: a tinted frame with a landscape in it.
        QColor tint = color;
        tint.setAlpha(faded ? 20 : 45);
        painter.setPen(shapePen(color, faded));
        painter.setBrush(tint);
        painter.drawPath(path);
        const QRectF b = path.boundingRect();
        const qreal s = qMin(b.width(), b.height());
        const QPointF c = b.center();
        QPainterPath hills;
        hills.moveTo(c + QPointF(-0.35 * s, 0.25 * s));
        hills.lineTo(c + QPointF(-0.1 * s, -0.08 * s));
        hills.lineTo(c + QPointF(0.05 * s, 0.1 * s));
        hills.lineTo(c + QPointF(0.18 * s, -0.02 * s));
        hills.lineTo(c + QPointF(0.35 * s, 0.25 * s));
        hills.closeSubpath();
        tint.setAlpha(faded ? 40 : 110);
        painter.setBrush(tint);
        painter.drawPath(hills);
        painter.drawEllipse(c + QPointF(0.2 * s, -0.22 * s), 0.07 * s, 0.07 * s);
        return;
    }
    painter.setPen(shapePen(color, faded));
    if (item.Kind() == DRAW_TEXT) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
    } else if (item.IsFilled()) {
        QColor fill = color;
        fill.setAlpha(faded ? 25 : 90);
        painter.setBrush(fill);
    } else {
        painter.setBrush(Qt::NoBrush);
    }
    painter.drawPath(path);
}

void CCanvas::paintSelection(QPainter &painter, const QPointF &offset) const
{
    const qreal pixel = 1.0 / qMax(m_view.m11(), 1e-9);
    QPen dashed(kSelectionColor, 1.0, Qt::DashLine);
    dashed.setCosmetic(true);
    for (int index : m_drawing->SelectedIndexes()) {
        const QRectF b = m_drawing->ItemAt(index).Bounds().translated(offset).adjusted(
            -3 * pixel, -3 * pixel, 3 * pixel, 3 * pixel);
        painter.setPen(dashed);
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(b);
        QPen solid(kSelectionColor, 1.0);
        solid.setCosmetic(true);
        painter.setPen(solid);
        painter.setBrush(Qt::white);
        const QSizeF handle(6 * pixel, 6 * pixel);
        for (const QPointF &corner : {b.topLeft(), b.topRight(), b.bottomLeft(), b.bottomRight()})
            painter.drawRect(QRectF(corner - QPointF(3 * pixel, 3 * pixel), handle));
    }
}

void CCanvas::paintDragPreview(QPainter &painter) const
{
    if ((m_drag != Drag::Creating && m_drag != Drag::Banding) || !draggedFarEnough())
        return;
    const QRectF rect = QRectF(m_press, m_current).normalized();
    if (m_drag == Drag::Banding) {
        QPen pen(kSelectionColor, 1.0);
        pen.setCosmetic(true);
        painter.setPen(pen);
        QColor fill = kSelectionColor;
        fill.setAlpha(40);
        painter.setBrush(fill);
        painter.drawRect(rect);
        return;
    }
    QPen pen = shapePen(QColor::fromRgb(m_color), false);
    pen.setStyle(Qt::DashLine);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    if (m_tool == TOOL_RECT)
        painter.drawRect(rect);
    else if (m_tool == TOOL_ELLIPSE)
        painter.drawEllipse(rect);
    else
        painter.drawLine(m_press, m_current);
}
