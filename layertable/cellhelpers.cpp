#include "cellhelpers.h"

#include <QCoreApplication>
#include <QTableView>
#include <QWheelEvent>
#include <QWidget>

namespace {
QTableView *enclosingView(QWidget *widget)
{
    for (QWidget *w = widget ? widget->parentWidget() : nullptr; w; w = w->parentWidget()) {
        if (auto *view = qobject_cast<QTableView *>(w))
            return view;
    }
    return nullptr;
}
} // namespace

void SelectRowOfCell(QWidget *cell)
{
    QTableView *view = enclosingView(cell);
    if (!view)
        return;
    const QPoint origin = cell->mapTo(view->viewport(), QPoint(0, 0));
    const QModelIndex index = view->indexAt(origin);
    if (!index.isValid())
        return;
    view->selectRow(index.row());
}

bool ScrollTableOfCell(QWidget *cell, QWheelEvent *event)
{
    QTableView *view = enclosingView(cell);
    if (!view || !event)
        return false;
    QWidget *viewport = view->viewport();
    const QPointF pos = cell->mapTo(viewport, event->position().toPoint());
    QWheelEvent forwarded(pos, viewport->mapToGlobal(pos), event->pixelDelta(),
                          event->angleDelta(), event->buttons(), event->modifiers(),
                          event->phase(), event->inverted(), event->source());
    QCoreApplication::sendEvent(viewport, &forwarded);
    return true;
}
