#include "csubgallerylistview.h"

#include <QEvent>
#include <QMouseEvent>

CSubGalleryListView::CSubGalleryListView(QWidget *parent)
    : QListView(parent)
{
    installEventFilter(this);
    viewport()->installEventFilter(this);
}

bool CSubGalleryListView::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonDblClick:
        setCurrentIndex(QModelIndex());
        return true;
    case QEvent::MouseButtonPress:
        if (static_cast<QMouseEvent *>(event)->button() == Qt::RightButton) {
            // The press is consumed before the view sees it, so the item
            // under the cursor does not become current: the menu refers to
            // the item that was current before.
            const QModelIndex current = currentIndex();
            m_rightClickedRow = current.row();
            const QRect rect = visualRect(current);
            emit RightMouseButtonPress(viewport()->mapToGlobal(rect.topRight()));
            setCurrentIndex(QModelIndex());
            return true;
        }
        break;
    default:
        break;
    }
    return QListView::eventFilter(watched, event);
}
