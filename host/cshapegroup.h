#pragma once

#include "cshape.h"

#include <memory>
#include <vector>

// A group of shapes (kind 3). It has a colour of its own, which the host
// gives it; it owns its members.
class HOSTSDK_EXPORT CShapeGroup : public CShape
{
public:
    explicit CShapeGroup(quint32 color = 0);
    ~CShapeGroup() override;

    int GetCount() const;
    CShape *GetShape(int index) const;
    // Takes ownership.
    void AddShape(CShape *shape);

private:
    std::vector<std::unique_ptr<CShape>> m_members;
};
