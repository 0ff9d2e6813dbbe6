#include "widgethelpers.h"

#include <QStyle>
#include <QWidget>

void SetPropertyAndRestyle(QWidget *widget, const char *name, const QVariant &value)
{
    if (!widget || !name)
        return;
    widget->setProperty(name, value);
    QStyle *style = widget->style();
    style->unpolish(widget);
    style->polish(widget);
}
