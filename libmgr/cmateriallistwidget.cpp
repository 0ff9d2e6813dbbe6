#include "cmateriallistwidget.h"

#include "support/directories.h"

#include <QCursor>
#include <QDir>
#include <QDropEvent>
#include <QEnterEvent>
#include <QFileInfo>
#include <QLabel>
#include <QResizeEvent>
#include <QTimer>

namespace {

const QString kRowWidgetName = QStringLiteral("MaterialListWidget_widget");
const QString kListFont = QStringLiteral("Alibaba PuHuiTi 2.0 75 SemiBold");
// The preview sits just below the item, clear of the cursor.
const QPoint kPreviewOffset(0, 2);

QImage loadPicture(const QString &reference)
{
    if (reference.isEmpty())
        return {};
    const QString path = QDir(AppResourceDir()).filePath(reference);
    QImage picture;
    if (QFileInfo(path).isFile() && picture.load(path))
        return picture;
    picture.loadFromData(QByteArray::fromBase64(reference.toLatin1()));
    return picture;
}

} // namespace

CMaterialListWidget::CMaterialListWidget(QWidget *parent)
    : QListWidget(parent)
    , m_preview(new QLabel(this, Qt::ToolTip))
    , m_previewTimer(new QTimer(this))
{
    setFlow(QListView::TopToBottom);
    setLayoutMode(QListView::Batched);
    setWrapping(false);
    setSelectionMode(QAbstractItemView::SingleSelection);
    QFont listFont = font();
    listFont.setFamily(kListFont);
    setFont(listFont);
    setMouseTracking(true);
    setDragEnabled(false);
    setDropIndicatorShown(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAutoScroll(false);

    m_preview->setObjectName(QStringLiteral("label_preview"));
    m_preview->hide();
    m_previewTimer->setSingleShot(true);
    m_previewTimer->setInterval(kPreviewDelayMs);
    connect(m_previewTimer, &QTimer::timeout, this, &CMaterialListWidget::previewTimeout);

    // Row widgets are children of the viewport; they are watched as they come.
    viewport()->installEventFilter(this);
}

void CMaterialListWidget::SetItemCountPerRow(int count)
{
    m_itemCountPerRow = count;
    // A resize by one pixel and back lays the items out again at once. The
    // sizes are applied once it is back at its width (a shown widget of fixed
    // size does not resize at all); a hidden one gets them with its first
    // layout.
    m_relayingOut = true;
    resize(width() - 1, height() - 1);
    resize(width() + 1, height() + 1);
    m_relayingOut = false;
    if (isVisible())
        applyItemSizes();
}

void CMaterialListWidget::resizeEvent(QResizeEvent *event)
{
    QListWidget::resizeEvent(event);
    if (!m_relayingOut)
        applyItemSizes();
}

void CMaterialListWidget::applyItemSizes()
{
    if (m_itemCountPerRow < 1 || count() != m_itemCountPerRow)
        return;
    const QSize itemSize(width() / m_itemCountPerRow, height());
    for (int row = 0; row < count(); ++row)
        item(row)->setSizeHint(itemSize);
    setFixedWidth(width());
}

bool CMaterialListWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == viewport()) {
        if (event->type() == QEvent::ChildAdded || event->type() == QEvent::ChildPolished) {
            QObject *child = static_cast<QChildEvent *>(event)->child();
            if (child->isWidgetType())
                child->installEventFilter(this);
        }
        return QListWidget::eventFilter(watched, event);
    }
    if (watched->isWidgetType() && watched->objectName() == kRowWidgetName) {
        auto *rowWidget = static_cast<QWidget *>(watched);
        if (event->type() == QEvent::Enter) {
            const QPoint local = static_cast<QEnterEvent *>(event)->position().toPoint();
            m_previewRow = indexAt(rowWidget->mapTo(viewport(), local)).row();
            startPreview(rowWidget);
        } else if (event->type() == QEvent::Leave) {
            hidePreview();
        }
    }
    return QListWidget::eventFilter(watched, event);
}

void CMaterialListWidget::startPreview(QWidget *rowWidget)
{
    const QImage picture = loadPicture(rowWidget->whatsThis());
    QListWidgetItem *hovered = item(m_previewRow);
    if (picture.isNull() || !hovered) {
        hidePreview();
        return;
    }
    m_preview->setPixmap(QPixmap::fromImage(
        picture.scaled(kPreviewSize, kPreviewSize, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    m_preview->adjustSize();
    const QRect itemRect = visualItemRect(hovered);
    m_preview->move(viewport()->mapToGlobal(itemRect.bottomLeft()) + kPreviewOffset);
    m_previewTimer->start();
}

void CMaterialListWidget::previewTimeout()
{
    m_previewTimer->stop();
    if (viewport()->rect().contains(viewport()->mapFromGlobal(QCursor::pos()))) {
        m_preview->show();
        emit ShowPreviewImage(m_previewRow, true);
    } else {
        hidePreview();
    }
}

void CMaterialListWidget::hidePreview()
{
    m_previewTimer->stop();
    if (!m_preview->isVisible())
        return;
    m_preview->hide();
    emit ShowPreviewImage(m_previewRow, false);
}

void CMaterialListWidget::dragMoveEvent(QDragMoveEvent *event)
{
    hidePreview();
    QListWidget::dragMoveEvent(event);
}

void CMaterialListWidget::dropEvent(QDropEvent *event)
{
    const int from = currentRow();
    const int to = indexAt(event->position().toPoint()).row();
    const int last = count() - 1;
    // The custom entry neither moves nor takes a row's place.
    if (from < 0 || from >= last || to < 0 || to >= last) {
        event->ignore();
        return;
    }
    emit SortMaterialsRequested(from, to);
    QListWidgetItem *custom = item(last);
    QListWidget::dropEvent(event);
    // Taking the entry out would delete its row widget, so it is only put
    // back at the end when the drop got past it.
    if (row(custom) != count() - 1)
        addItem(takeItem(row(custom)));
}
