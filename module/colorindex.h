#pragma once

#include <QtGlobal>

#include <vector>

// Colour to slot, open addressing with linear probing. The synchronisation
// looks up one colour per shape, a million times per edit: a flat table of
// a few hundred entries stays in the first-level cache where QHash's nodes
// would not.
class ColorIndex
{
public:
    struct Slot
    {
        quint32 color = 0;
        qint32 index = -1;
        bool used = false;
        bool selected = false;
    };

    explicit ColorIndex(size_t expected = 16);

    // The slot of the colour, or null.
    Slot *find(quint32 color);
    // The slot of the colour; a new one has index -1 until the caller sets it.
    // Slot references are valid until the next insert.
    Slot &insert(quint32 color, bool *inserted);
    size_t size() const { return m_size; }

private:
    size_t probe(quint32 color) const;
    void grow();

    std::vector<Slot> m_slots;
    size_t m_mask = 0;
    size_t m_size = 0;
};
