#include "combocell.h"

#include "cellhelpers.h"

#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QPointer>
#include <QStyle>
#include <QStyleFactory>
#include <QWheelEvent>

namespace ComboCell {

// One style object for every combo of every table: a layer list of thousands
// must not carry thousands of styles.
QStyle *SharedStyle()
{
    static QPointer<QStyle> style;
    if (!style) {
        style = QStyleFactory::create(QStringLiteral("Fusion"));
        if (style)
            style->setParent(qApp);
    }
    return style;
}

QComboBox *Create(QWidget *cell, const char *objectName)
{
    auto *combo = new QComboBox(cell);
    combo->setObjectName(QString::fromLatin1(objectName));
    // The combo's own view is already a list view; replacing it would cost a
    // widget destruction per cell. Inside a table the combo inherits the
    // style as it is made: setting it on the combo itself would build its
    // popup at once and wrap the style sheet around the style once per cell.
    if (!cell->parentWidget()) {
        if (QStyle *style = SharedStyle())
            combo->setStyle(style);
    }
    // The cell is the combo's room: "High" must not be cut to "Hi".
    combo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto *layout = new QHBoxLayout(cell);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addStretch();
    layout->addWidget(combo, 1);
    layout->addStretch();
    cell->setFocusProxy(combo);
    combo->installEventFilter(cell);
    return combo;
}

bool Filter(QWidget *cell, QObject *watched, QEvent *event)
{
    auto *combo = qobject_cast<QComboBox *>(watched);
    if (!combo)
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        SelectRowOfCell(cell);
        return false;
    case QEvent::Wheel:
        ScrollTableOfCell(combo, static_cast<QWheelEvent *>(event));
        return true;
    default:
        return false;
    }
}

} // namespace ComboCell
