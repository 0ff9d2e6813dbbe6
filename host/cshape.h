#pragma once

#include "hostsdk_global.h"

// Kinds answered by CShape::GetType(). Kind 0 is a bitmap image, whose layer
// must be filled; kind 3 is a group whose members are shapes of their own.
enum ESHAPE_KIND {
    SHAPE_IMAGE = 0,
    SHAPE_PATH = 1,
    SHAPE_TEXT = 2,
    SHAPE_GROUP = 3,
};

class HOSTSDK_EXPORT CShape
{
public:
    explicit CShape(quint32 color = 0, int type = SHAPE_PATH);
    virtual ~CShape();

    CShape(const CShape &) = delete;
    CShape &operator=(const CShape &) = delete;

    // 24-bit colour, top byte zero.
    quint32 GetColor() const { return m_color; }
    void SetColor(quint32 color) { m_color = color & 0xFFFFFFu; }

    virtual int GetType() const;
    virtual bool IsSelected() const;
    void SetSelected(bool selected) { m_selected = selected; }

private:
    quint32 m_color;
    int m_type;
    bool m_selected = false;
};
