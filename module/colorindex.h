#pragma once

#include <QtGlobal>

#include <vector>

// Colour to slot, open addressing with linear probing. The synchronisation
// looks up one colour per shape, a million times per edit: a flat table of
// a few hundred entries stays in the first-level cache where QHash's nodes
// would not, and the probe is inline.
class ColorIndex
{
public:
    struct Slot
    {
        quint32 color = 0;
        qint32 index = -1;
        quint32 hits = 0;
        bool used = false;
        bool selected = false;
    };

    explicit ColorIndex(size_t expected = 16);

    // The slot the colour has or would take: check `used`. Valid until the
    // next claim().
    Slot &lookup(quint32 color)
    {
        // Fibonacci hashing: the top bits of the product are the well mixed ones.
        size_t i = size_t((color * 0x9E3779B1u) >> m_shift);
        while (m_slots[i].used && m_slots[i].color != color)
            i = (i + 1) & m_mask;
        return m_slots[i];
    }
    // The slot of the colour, or null.
    Slot *find(quint32 color)
    {
        Slot &slot = lookup(color);
        return slot.used ? &slot : nullptr;
    }
    // The colour's slot, made when missing (index -1 until the caller sets
    // it); inserted tells which. Other slot references become invalid.
    Slot &claim(quint32 color, bool *inserted = nullptr);
    size_t size() const { return m_size; }

private:
    void grow();
    void setCapacity(size_t capacity);

    std::vector<Slot> m_slots;
    size_t m_mask = 0;
    int m_shift = 28;
    size_t m_size = 0;
};
