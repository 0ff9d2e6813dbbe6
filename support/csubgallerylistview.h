#pragma once

#include <QListView>
#include <QPoint>

// A list view that opens its context menu at the current item's top-right
// corner: a right-button press becomes RightMouseButtonPress with that point
// in global coordinates.
class CSubGalleryListView : public QListView
{
    Q_OBJECT

public:
    explicit CSubGalleryListView(QWidget *parent = nullptr);

    // Row of the last right-clicked item, -1 before the first.
    int RightClickedRow() const { return m_rightClickedRow; }

signals:
    void RightMouseButtonPress(QPoint globalPos);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int m_rightClickedRow = -1;
};
