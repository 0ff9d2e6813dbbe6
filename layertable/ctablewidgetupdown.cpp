#include "ctablewidgetupdown.h"

#include <QDropEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>

namespace {
constexpr int kScrollIntervalMs = 100;
constexpr int kEdgeMargin = 30;
constexpr int kScrollStep = 5;
} // namespace

CTableWidgetUpDown::CTableWidgetUpDown(QWidget *parent)
    : QTableWidget(parent)
    , m_scrollTimer(new QTimer(this))
{
    setDragDropMode(QAbstractItemView::DragDrop);
    setDropIndicatorShown(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    connect(m_scrollTimer, &QTimer::timeout, this, &CTableWidgetUpDown::autoScroll);
    setProperty("state", QStringLiteral("Moved"));
}

bool CTableWidgetUpDown::IsAutoScrolling() const
{
    return m_scrollTimer->isActive();
}

void CTableWidgetUpDown::setState(const char *state)
{
    const QString value = QString::fromLatin1(state);
    if (property("state").toString() == value)
        return;
    setProperty("state", value);
    style()->unpolish(this);
    style()->polish(this);
}

bool CTableWidgetUpDown::IsPastEnd(const QPoint &pos) const
{
    // The hidden spare rows are always at the end.
    const int rows = rowCount();
    int visible = 0;
    while (visible < rows && !isRowHidden(visible))
        ++visible;
    if (visible == 0)
        return false;
    const QRect rect = visualRect(model()->index(visible - 1, 0));
    if (rect.isEmpty())
        return false;
    return pos.y() > rect.center().y();
}

void CTableWidgetUpDown::selectRowAt(const QPoint &pos)
{
    QTableWidgetItem *item = itemAt(pos);
    if (item && !item->isSelected()) {
        // During a drag only the timer scrolls: a new current row must not
        // pull itself into full view and jump the table.
        const bool scrolls = hasAutoScroll();
        setAutoScroll(false);
        clearSelection();
        selectRow(item->row());
        setAutoScroll(scrolls);
    }
}

void CTableWidgetUpDown::mousePressEvent(QMouseEvent *event)
{
    QTableWidgetItem *item = itemAt(event->position().toPoint());
    m_pressedItem = item ? QPersistentModelIndex(indexFromItem(item)) : QPersistentModelIndex();
    // A press on empty space keeps the selection as it is.
    if (item)
        QTableWidget::mousePressEvent(event);
}

void CTableWidgetUpDown::dragMoveEvent(QDragMoveEvent *event)
{
    m_dragPos = event->position().toPoint();
    // Accepted everywhere, so a drop below the rows still arrives.
    event->acceptProposedAction();
    if (!itemAt(m_dragPos))
        return;
    if (!m_scrollTimer->isActive())
        m_scrollTimer->start(kScrollIntervalMs);
    setState(IsPastEnd(m_dragPos) ? "MoveToEnd" : "Moving");
    selectRowAt(m_dragPos);
}

void CTableWidgetUpDown::dragLeaveEvent(QDragLeaveEvent *event)
{
    setState("Moved");
    m_scrollTimer->stop();
    event->accept();
}

void CTableWidgetUpDown::autoScroll()
{
    const QRect area = viewport()->rect();
    QScrollBar *bar = verticalScrollBar();
    if (m_dragPos.y() < area.top() + kEdgeMargin)
        bar->setValue(bar->value() - kScrollStep);
    else if (m_dragPos.y() > area.bottom() - kEdgeMargin)
        bar->setValue(bar->value() + kScrollStep);
    selectRowAt(m_dragPos);
}

void CTableWidgetUpDown::dropEvent(QDropEvent *event)
{
    setState("Moved");
    m_scrollTimer->stop();
    // A copy action: the drag source must not remove the rows it dragged.
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (!m_pressedItem.isValid())
        return;
    QScrollBar *bar = verticalScrollBar();
    const int scroll = bar->value();
    const int from = m_pressedItem.row();
    int to = currentRow();
    if (from < to && !IsPastEnd(m_dragPos))
        to = currentRow() - 1;
    if (to < 0)
        to = 0;
    emit MoveLayerSignal(from, to);
    clearSelection();
    selectRow(to);
    bar->setValue(scroll);
}
