#pragma once

#include <QPersistentModelIndex>
#include <QPoint>
#include <QTableWidget>

class QTimer;

// The table of layer rows. Rows are dragged to a new place; the table never
// moves items itself but reports the move, and scrolls by itself while a drag
// is near its top or bottom edge. The dynamic property "state" ("Moved",
// "Moving", "MoveToEnd") lets a style sheet draw the drag.
class CTableWidgetUpDown : public QTableWidget
{
    Q_OBJECT

public:
    explicit CTableWidgetUpDown(QWidget *parent = nullptr);

    // True when pos (viewport coordinates) lies below the middle of the last
    // visible row.
    bool IsPastEnd(const QPoint &pos) const;
    bool IsAutoScrolling() const;

signals:
    void MoveLayerSignal(int from, int to);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void autoScroll();
    void setState(const char *state);
    void selectRowAt(const QPoint &pos);

    // Kept as an index: the item itself may go while the press is remembered.
    QPersistentModelIndex m_pressedItem;
    QTimer *m_scrollTimer;
    QPoint m_dragPos;
};
