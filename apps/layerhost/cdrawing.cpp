#include "cdrawing.h"

#include "cshape.h"
#include "cshapelist.h"

void CDrawing::ShapeListRelease::operator()(CShapeList *list) const
{
    if (list)
        list->Release();
}

CDrawing::CDrawing(QObject *parent)
    : QObject(parent)
    , m_shapes(CShapeList::New())
{
}

CDrawing::~CDrawing() = default;

bool CDrawing::IsSelected(int index) const
{
    return index >= 0 && index < Count() && m_selected[size_t(index)];
}

QList<int> CDrawing::SelectedIndexes() const
{
    QList<int> indexes;
    for (int i = 0; i < Count(); ++i) {
        if (m_selected[size_t(i)])
            indexes.append(i);
    }
    return indexes;
}

QRectF CDrawing::Bounds() const
{
    return CDrawItem::BoundsOf(m_items);
}

void CDrawing::SetItems(std::vector<CDrawItem> items)
{
    m_items = std::move(items);
    m_selected.assign(m_items.size(), false);
    rebuildShapes();
    emit SigChanged();
    emit SigSelectionChanged();
}

void CDrawing::AddItems(std::vector<CDrawItem> items, bool select)
{
    if (items.empty())
        return;
    m_selected.assign(m_items.size(), false);
    for (CDrawItem &item : items) {
        m_items.push_back(std::move(item));
        m_selected.push_back(select);
    }
    rebuildShapes();
    emit SigChanged();
    emit SigSelectionChanged();
}

void CDrawing::AddItem(CDrawItem item, bool select)
{
    std::vector<CDrawItem> items;
    items.push_back(std::move(item));
    AddItems(std::move(items), select);
}

int CDrawing::DeleteSelected()
{
    std::vector<CDrawItem> kept;
    for (int i = 0; i < Count(); ++i) {
        if (!m_selected[size_t(i)])
            kept.push_back(std::move(m_items[size_t(i)]));
    }
    const int removed = Count() - int(kept.size());
    if (removed == 0)
        return 0;
    SetItems(std::move(kept));
    return removed;
}

bool CDrawing::GroupSelected()
{
    const QList<int> indexes = SelectedIndexes();
    if (indexes.size() < 2)
        return false;
    std::vector<CDrawItem> members;
    std::vector<CDrawItem> items;
    for (int i = 0; i < Count(); ++i) {
        if (m_selected[size_t(i)])
            members.push_back(std::move(m_items[size_t(i)]));
        else
            items.push_back(std::move(m_items[size_t(i)]));
    }
    const int at = indexes.first();
    items.insert(items.begin() + at, CDrawItem::Group(std::move(members)));
    m_items = std::move(items);
    m_selected.assign(m_items.size(), false);
    m_selected[size_t(at)] = true;
    rebuildShapes();
    emit SigChanged();
    emit SigSelectionChanged();
    return true;
}

int CDrawing::UngroupSelected()
{
    int undone = 0;
    std::vector<CDrawItem> items;
    std::vector<bool> selected;
    for (int i = 0; i < Count(); ++i) {
        CDrawItem &item = m_items[size_t(i)];
        if (m_selected[size_t(i)] && item.IsGroup()) {
            ++undone;
            for (const CDrawItem &member : item.Members()) {
                items.push_back(member);
                selected.push_back(true);
            }
        } else {
            items.push_back(std::move(item));
            selected.push_back(m_selected[size_t(i)]);
        }
    }
    if (undone == 0)
        return 0;
    m_items = std::move(items);
    m_selected = std::move(selected);
    rebuildShapes();
    emit SigChanged();
    emit SigSelectionChanged();
    return undone;
}

int CDrawing::RecolorSelected(quint32 color)
{
    int changed = 0;
    for (int i = 0; i < Count(); ++i) {
        if (m_selected[size_t(i)]) {
            m_items[size_t(i)].SetColor(color);
            ++changed;
        }
    }
    if (changed) {
        rebuildShapes();
        emit SigChanged();
    }
    return changed;
}

void CDrawing::MoveSelected(const QPointF &offset)
{
    if (SelectedCount() == 0 || offset.isNull())
        return;
    for (int i = 0; i < Count(); ++i) {
        if (m_selected[size_t(i)])
            m_items[size_t(i)].Translate(offset);
    }
    emit SigChanged();
}

int CDrawing::HitItem(const QPointF &point, qreal tolerance) const
{
    for (int i = Count() - 1; i >= 0; --i) {
        if (m_items[size_t(i)].HitTest(point, tolerance))
            return i;
    }
    return -1;
}

int CDrawing::SelectAt(const QPointF &point, qreal tolerance, bool extend)
{
    const int hit = HitItem(point, tolerance);
    std::vector<bool> selection = extend ? m_selected : std::vector<bool>(m_items.size(), false);
    if (hit >= 0)
        selection[size_t(hit)] = extend ? !selection[size_t(hit)] : true;
    setSelection(std::move(selection));
    return hit;
}

int CDrawing::SelectInRect(const QRectF &rect, bool extend)
{
    const QRectF band = rect.normalized();
    std::vector<bool> selection = extend ? m_selected : std::vector<bool>(m_items.size(), false);
    int found = 0;
    for (int i = 0; i < Count(); ++i) {
        const QRectF b = m_items[size_t(i)].Bounds();
        // Compared edge by edge: a straight line's bounds have no width or height.
        if (b.left() >= band.left() && b.right() <= band.right() && b.top() >= band.top()
            && b.bottom() <= band.bottom()) {
            selection[size_t(i)] = true;
            ++found;
        }
    }
    setSelection(std::move(selection));
    return found;
}

void CDrawing::SelectAll()
{
    setSelection(std::vector<bool>(m_items.size(), true));
}

void CDrawing::ClearSelection()
{
    setSelection(std::vector<bool>(m_items.size(), false));
}

void CDrawing::setSelection(std::vector<bool> selection)
{
    if (selection == m_selected)
        return;
    m_selected = std::move(selection);
    syncSelection();
    emit SigSelectionChanged();
}

void CDrawing::rebuildShapes()
{
    m_shapes->RemoveAll();
    m_shapes->Reserve(Count());
    for (const CDrawItem &item : m_items)
        m_shapes->AddTail(item.ToShape().release());
    syncSelection();
}

void CDrawing::syncSelection()
{
    for (int i = 0; i < Count(); ++i)
        m_shapes->GetShape(i)->SetSelected(m_selected[size_t(i)]);
}
