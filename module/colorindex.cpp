#include "colorindex.h"

ColorIndex::ColorIndex(size_t expected)
{
    size_t capacity = 16;
    while (capacity < expected * 8)
        capacity *= 2;
    m_slots.resize(capacity);
    setCapacity(capacity);
}

void ColorIndex::setCapacity(size_t capacity)
{
    m_mask = capacity - 1;
    m_shift = 32;
    while (capacity > 1) {
        capacity >>= 1;
        --m_shift;
    }
}

ColorIndex::Slot &ColorIndex::claim(quint32 color, bool *inserted)
{
    Slot *slot = &lookup(color);
    const bool fresh = !slot->used;
    if (fresh) {
        // Kept at most an eighth full: nearly every probe ends at its first slot.
        if ((m_size + 1) * 8 > m_slots.size()) {
            grow();
            slot = &lookup(color);
        }
        *slot = Slot{color, -1, 0, true, false};
        ++m_size;
    }
    if (inserted)
        *inserted = fresh;
    return *slot;
}

void ColorIndex::grow()
{
    std::vector<Slot> old = std::move(m_slots);
    m_slots.assign(old.size() * 2, Slot{});
    setCapacity(m_slots.size());
    for (const Slot &slot : old) {
        if (slot.used)
            lookup(slot.color) = slot;
    }
}
