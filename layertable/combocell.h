#pragma once

class QComboBox;
class QEvent;
class QObject;
class QWidget;

// The set-up and event handling the mode and air cells share.
namespace ComboCell {
// A centred combo (its popup a list view) in the Fusion style, the cell's
// focus proxy.
QComboBox *Create(QWidget *cell, const char *objectName);
// Press selects the cell's row; wheel turns scroll the table, never the combo.
// True when the event is consumed.
bool Filter(QWidget *cell, QObject *watched, QEvent *event);
} // namespace ComboCell
