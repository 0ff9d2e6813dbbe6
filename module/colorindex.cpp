#include "colorindex.h"

ColorIndex::ColorIndex(size_t expected)
{
    size_t capacity = 16;
    while (capacity < expected * 2)
        capacity *= 2;
    m_slots.resize(capacity);
    m_mask = capacity - 1;
}

size_t ColorIndex::probe(quint32 color) const
{
    size_t i = size_t((color * 0x9E3779B1u) >> 7) & m_mask;
    while (m_slots[i].used && m_slots[i].color != color)
        i = (i + 1) & m_mask;
    return i;
}

ColorIndex::Slot *ColorIndex::find(quint32 color)
{
    Slot &slot = m_slots[probe(color)];
    return slot.used ? &slot : nullptr;
}

ColorIndex::Slot &ColorIndex::insert(quint32 color, bool *inserted)
{
    size_t i = probe(color);
    const bool fresh = !m_slots[i].used;
    if (fresh) {
        if ((m_size + 1) * 2 > m_slots.size()) {
            grow();
            i = probe(color);
        }
        m_slots[i] = Slot{color, -1, true, false};
        ++m_size;
    }
    if (inserted)
        *inserted = fresh;
    return m_slots[i];
}

void ColorIndex::grow()
{
    std::vector<Slot> old = std::move(m_slots);
    m_slots.assign(old.size() * 2, Slot{});
    m_mask = m_slots.size() - 1;
    for (const Slot &slot : old) {
        if (slot.used)
            m_slots[probe(slot.color)] = slot;
    }
}
