#pragma once

class QWheelEvent;
class QWidget;

// Cell widgets sit on the table's viewport, so a press on their control
// never reaches the table: they select their row themselves.
void SelectRowOfCell(QWidget *cell);

// A wheel turn over a cell control scrolls the table instead of changing the
// control's value. False when the widget is not inside a table.
bool ScrollTableOfCell(QWidget *cell, QWheelEvent *event);
