#pragma once

#include "hostsdk_global.h"

#include <memory>
#include <vector>

class CShape;

// The drawing's top-level shapes, in drawing order. The list owns them.
class HOSTSDK_EXPORT CShapeList
{
public:
    static CShapeList *New();
    void Release();

    CShapeList();
    ~CShapeList();
    CShapeList(const CShapeList &) = delete;
    CShapeList &operator=(const CShapeList &) = delete;

    int GetCount() const { return int(m_shapes.size()); }
    CShape *GetShape(int index) const
    {
        return index >= 0 && index < GetCount() ? m_shapes[size_t(index)].get() : nullptr;
    }
    // Takes ownership.
    void AddTail(CShape *shape);
    // Takes the shape out without deleting it; returns it, or null.
    CShape *TakeAt(int index);
    void RemoveAll();
    void Reserve(int count);

private:
    std::vector<std::unique_ptr<CShape>> m_shapes;
};
