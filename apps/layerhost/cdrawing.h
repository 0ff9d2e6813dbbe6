#pragma once

#include "cdrawitem.h"

#include <QList>
#include <QObject>

#include <memory>
#include <vector>

class CShapeList;

// The host's document: drawing items in drawing order, which of them are
// selected, and the CShapeList the plug-in is given, kept in step with both.
class CDrawing : public QObject
{
    Q_OBJECT

public:
    explicit CDrawing(QObject *parent = nullptr);
    ~CDrawing() override;

    int Count() const { return int(m_items.size()); }
    const std::vector<CDrawItem> &Items() const { return m_items; }
    const CDrawItem &ItemAt(int index) const { return m_items[size_t(index)]; }
    bool IsSelected(int index) const;
    QList<int> SelectedIndexes() const;
    int SelectedCount() const { return int(SelectedIndexes().size()); }
    QRectF Bounds() const;
    // The plug-in's view of the drawing: one top-level shape per item.
    CShapeList *ShapeList() const { return m_shapes.get(); }

    // Replaces everything; nothing is selected afterwards.
    void SetItems(std::vector<CDrawItem> items);
    void Clear() { SetItems({}); }
    // Appends the items and selects just them, or, without select, nothing.
    void AddItems(std::vector<CDrawItem> items, bool select = true);
    void AddItem(CDrawItem item, bool select = true);
    int DeleteSelected();
    // Two or more selected items become one group where the first of them was.
    bool GroupSelected();
    // Selected groups give their members back, selected; returns the groups undone.
    int UngroupSelected();
    int RecolorSelected(quint32 color);
    void MoveSelected(const QPointF &offset);

    // The topmost item at the point, or -1.
    int HitItem(const QPointF &point, qreal tolerance) const;
    // extend: toggle the item in the selection rather than select only it.
    // A miss without extend clears the selection.
    int SelectAt(const QPointF &point, qreal tolerance, bool extend);
    // Selects the items lying wholly inside the rectangle.
    int SelectInRect(const QRectF &rect, bool extend);
    void SelectAll();
    void ClearSelection();

signals:
    // Items were added, removed, grouped, recoloured or moved.
    void SigChanged();
    void SigSelectionChanged();

private:
    struct ShapeListRelease
    {
        void operator()(CShapeList *list) const;
    };

    void rebuildShapes();
    void syncSelection();
    void setSelection(std::vector<bool> selection);

    std::vector<CDrawItem> m_items;
    std::vector<bool> m_selected;
    std::unique_ptr<CShapeList, ShapeListRelease> m_shapes;
};
