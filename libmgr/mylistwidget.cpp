#include "mylistwidget.h"

#include <QResizeEvent>

MyListWidget::MyListWidget(QWidget *parent)
    : QListWidget(parent)
{}

void MyListWidget::resizeEvent(QResizeEvent *event)
{
    QListWidget::resizeEvent(event);
    if (count() != kItemsPerRow)
        return;
    const QSize itemSize(width() / kItemsPerRow, height());
    for (int row = 0; row < count(); ++row)
        item(row)->setSizeHint(itemSize);
}
