#pragma once

#include "cmateriallibrary.h"

#include <QList>
#include <QStringList>

#include <vector>

// How a field's value reads in a summary.
enum class ELibFieldFormat {
    Number,     // 'g' 6
    OnOff,      // "On" / "Close"
    Air,        // "Low" / "High"
    SweepMode,  // "HoriZontal bidirectional" / "HoriZontal one-way"
    OffsetType, // "Inside out" / "Outside in"
    Resolution, // the resolution list's texts
    Text,       // as it is
};

// One field of a cut or sweep set as the summaries show it: caption (English,
// translated when shown), the laser it belongs to (0 none, 1, 2) and its value
// text. The table covers every field operator== compares except the key, so
// two sets differ exactly when some field row differs. The change summary
// lists the rows marked `summary`, in table order.
template<typename Set>
struct CLibSetField
{
    const char *caption;
    int laser;
    bool summary;
    ELibFieldFormat format;
    bool (*same)(const Set &a, const Set &b);
    void (*copy)(Set &to, const Set &from);
    QString (*text)(const Set &set, ELibFieldFormat format, bool translate);

    // laserSuffix adds "-Laser1"/"-Laser2" to per-laser fields.
    QString Caption(bool laserSuffix = true, bool translate = true) const;
    QString Text(const Set &set, bool translate = true) const
    {
        return text(set, format, translate);
    }
};

const std::vector<CLibSetField<CLibCutSet>> &CutSetFields();
const std::vector<CLibSetField<CLibSweepSet>> &SweepSetFields();
// Caption of a mark set's only field.
constexpr const char kLibNoteCaption[] = "Note";

// Value texts, translated unless asked otherwise.
QString LibNumberText(double value);
QString LibFieldText(ELibFieldFormat format, double value, bool translate = true);
QString LibFieldText(ELibFieldFormat format, const QString &value, bool translate = true);

// All fields but the key equal, the note included.
bool SameSetFields(const CLibCutSet &a, const CLibCutSet &b);
bool SameSetFields(const CLibSweepSet &a, const CLibSweepSet &b);
bool SameSetFields(const CLibMarkSet &a, const CLibMarkSet &b);

enum class ELibMergeKind {
    NewPower,     // a tube power the user library lacks (becomes a user power)
    NewMaterial,  // a material the user library lacks (with its picture)
    NewThickness, // a thickness the user's material lacks
    NewSet,       // a whole parameter set the user library lacks
    Field,        // one field of a set both have
};

struct CLibMergeRow
{
    ELibMergeKind kind = ELibMergeKind::Field;
    // Where: key.material/thickness/craft are those the row is about; for
    // NewPower only tube and power count, for NewMaterial also material, for
    // NewThickness also thickness.
    CLibKey key;
    // Translated texts as the summary shows them: the field caption of the
    // change summary (with "-Laser1"/"-Laser2" for per-laser fields), or a
    // short caption for New* rows; value texts as the change summary formats
    // them (numbers 'g' 6, "On"/"Close", resolution texts).
    QString caption;
    QString oldText;
    QString newText;
    // The user had changed this set from the factory one and the file differs.
    bool conflict = false;
    // Applied by Apply(); starts as !conflict. The dialog toggles it.
    bool accepted = true;
    // Internal: which field of the set (for Field rows).
    int field = -1;
};

// Material, thickness and craft texts for a summary's first columns.
// The translated process name users know from the layer table; empty for an
// unknown craft.
QString MergeCraftText(quint32 craft);

class CLibraryMerge
{
public:
    // Compares; nothing is changed. Work grows with the sets of the three
    // libraries (hash look-ups), never their product.
    CLibraryMerge(const CMaterialLibrary &factory, const CMaterialLibrary &user,
                  const CMaterialLibrary &incoming);

    // In a stable order: user library tube/power/material order, then new
    // ones in file order; within a set, the change summary's field order.
    std::vector<CLibMergeRow> &Rows() { return m_rows; }
    const std::vector<CLibMergeRow> &Rows() const { return m_rows; }
    bool IsEmpty() const { return m_rows.empty(); }
    int ConflictCount() const;

    // The user library with every accepted row applied (a Field row copies one
    // field; a NewSet row also brings its power/material/thickness when those
    // rows were not accepted or not there). Never removes anything.
    CMaterialLibrary Apply() const;

private:
    CMaterialLibrary m_user;
    CMaterialLibrary m_incoming;
    std::vector<CLibMergeRow> m_rows;
};

// Differences between two libraries for `layermgr-lib diff`: added, removed and
// changed sets (changed ones field by field), in a stable order.
struct CLibDiffEntry
{
    enum Kind { Added, Removed, Changed } kind;
    CLibKey key;
    QString caption; // Changed only: the field caption (English, untranslated)
    QString oldText;
    QString newText;
};
std::vector<CLibDiffEntry> DiffLibraries(const CMaterialLibrary &a, const CMaterialLibrary &b);
