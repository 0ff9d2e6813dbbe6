#pragma once

#include <QVariant>

class QWidget;

// Sets a dynamic property and has the widget's style re-read it, so that
// style sheet selectors on the property ([state="error"]) take effect at once.
void SetPropertyAndRestyle(QWidget *widget, const char *name, const QVariant &value);
