#pragma once

#include <QListWidget>
#include <QPointer>

class QLabel;
class QTimer;

// The list of materials (or crafts) shown as one strip of equal cells.
//
// Row widgets named "MaterialListWidget_widget" get a picture preview: their
// what's-this text names the picture, either a file (absolute, or relative to
// the application resource directory) or the base64 text of an image file as
// the library stores it. The preview appears below the hovered item when the
// cursor stays in the list for a second.
//
// Rows are reordered by drag and drop; the last row is the "Custom material"
// entry, which neither moves nor accepts a drop.
class CMaterialListWidget : public QListWidget
{
    Q_OBJECT

public:
    explicit CMaterialListWidget(QWidget *parent = nullptr);

    void SetItemCountPerRow(int count);
    int ItemCountPerRow() const { return m_itemCountPerRow; }

    // The preview label (a tool-tip window owned by the list).
    QLabel *PreviewLabel() const { return m_preview; }

    static constexpr int kPreviewDelayMs = 1000;
    static constexpr int kPreviewSize = 120;

signals:
    // A drop asks to move the row from one position to another; the owner
    // reorders its data, the list has moved the row itself.
    void SortMaterialsRequested(int from, int to);
    // The preview of a row appeared (shown true) or went away (shown false).
    void ShowPreviewImage(int row, bool shown);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void applyItemSizes();
    void startPreview(QWidget *rowWidget);
    void previewTimeout();
    void hidePreview();

    int m_itemCountPerRow = 3;
    int m_previewRow = -1;
    bool m_relayingOut = false;
    QLabel *m_preview = nullptr;
    QTimer *m_previewTimer = nullptr;
};
