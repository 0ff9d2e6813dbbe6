#pragma once

class QComboBox;
class QEvent;
class QObject;
class QStyle;
class QWidget;

// The set-up and event handling the mode and air cells share.
namespace ComboCell {
// A centred combo (its popup a list view) in the Fusion style, the cell's
// focus proxy. A cell made inside a table takes the style the table gives
// all its cells; a cell on its own gets it for its combo.
QComboBox *Create(QWidget *cell, const char *objectName);
// The one Fusion style object shared by every table's cells.
QStyle *SharedStyle();
// Press selects the cell's row; wheel turns scroll the table, never the combo.
// True when the event is consumed.
bool Filter(QWidget *cell, QObject *watched, QEvent *event);
} // namespace ComboCell
