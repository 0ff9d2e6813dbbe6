#pragma once

#include <QListWidget>

// A list whose five entries share one row evenly: after every resize, when it
// holds exactly five items, each gets a fifth of the width and the full height.
// Any other count keeps the items' own sizes.
class MyListWidget : public QListWidget
{
    Q_OBJECT

public:
    explicit MyListWidget(QWidget *parent = nullptr);

    static constexpr int kItemsPerRow = 5;

protected:
    void resizeEvent(QResizeEvent *event) override;
};
