#pragma once

#include "libraryrecords.h"

#include <QHash>
#include <QJsonValue>
#include <QStringList>

#include <map>
#include <vector>

// Tube type, power, material name and craft: what a parameter set is filed
// under apart from its thickness.
struct CLibGroupKey
{
    quint32 tube = 0;
    qint32 power = 0;
    QString material;
    quint32 craft = 0;

    friend bool operator==(const CLibGroupKey &a, const CLibGroupKey &b)
    {
        return a.tube == b.tube && a.power == b.power && a.craft == b.craft
            && a.material == b.material;
    }
};
size_t qHash(const CLibGroupKey &key, size_t seed = 0) noexcept;

// One material library: tube entries with their powers, materials in order,
// and the parameter sets. Sets are indexed by tube, power, material and craft,
// with the thickness matched within kThicknessTolerance, so a look-up never
// walks the whole library.
//
// Materials of one tube and power always form one contiguous run of
// Materials(); pointers handed out stay valid until the library changes.
class CMaterialLibrary
{
public:
    // The document's "Version", kept as found so that it is written back
    // unchanged.
    QJsonValue Version() const { return m_version; }
    void SetVersion(const QJsonValue &version) { m_version = version; }

    bool IsEmpty() const;
    void Clear();

    // Tube types and their powers, in document order.
    const std::vector<CLibTube> &Tubes() const { return m_tubes; }
    const CLibTube *FindTube(quint32 type) const;
    std::vector<CLibPower> Powers(quint32 type) const;
    bool HasPower(quint32 type, qint32 power) const;
    // A tube entry without powers, unless the type has one already.
    void AddTube(quint32 type);
    // Appends a power (and the tube entry when missing); false when the tube
    // already has that power.
    bool AddPower(quint32 type, qint32 power, bool custom);
    // Removes a power the user added, with its materials and parameter sets;
    // false for powers that came with the library.
    bool RemoveUserPower(quint32 type, qint32 power);

    const std::vector<CLibMaterial> &Materials() const { return m_materials; }
    std::vector<const CLibMaterial *> MaterialsOf(quint32 tube, qint32 power) const;
    QStringList MaterialNames(quint32 tube, qint32 power) const;
    const CLibMaterial *FindMaterial(quint32 tube, qint32 power, const QString &name) const;
    // Index of the material in Materials(), or -1.
    qsizetype MaterialIndex(quint32 tube, qint32 power, const QString &name) const;
    // Appends at the end of its tube/power run, adding the power entry (as a
    // user power) when the tube has none. False when the name is taken.
    bool AddMaterial(const CLibMaterial &material);
    // Renames the material and files its parameter sets under the new name;
    // false when there is no such material or the new name is taken.
    bool RenameMaterial(quint32 tube, qint32 power, const QString &name, const QString &newName);
    bool SetMaterialIcon(quint32 tube, qint32 power, const QString &name, const QString &iconPath,
                         const QString &iconBase64);
    // Removes the material and every parameter set filed under it.
    bool RemoveMaterial(quint32 tube, qint32 power, const QString &name);
    // Rows count within the materials of the tube and power, as a list shows
    // them: the material at row `from` is taken out and inserted at row `to`.
    bool MoveMaterial(quint32 tube, qint32 power, int from, int to);

    std::vector<double> Thicknesses(quint32 tube, qint32 power, const QString &name) const;
    // Appends a thickness; false when the material is missing or already has
    // it (within kThicknessTolerance).
    bool AddThickness(quint32 tube, qint32 power, const QString &name, double thickness);
    // Removes the thickness and its parameter sets.
    bool RemoveThickness(quint32 tube, qint32 power, const QString &name, double thickness);

    // Look-ups by key; null when there is none or the craft is of the other
    // kind. The pointers stay valid until the library changes.
    const CLibCutSet *FindCutSet(const CLibKey &key) const;
    CLibCutSet *FindCutSet(const CLibKey &key);
    const CLibSweepSet *FindSweepSet(const CLibKey &key) const;
    CLibSweepSet *FindSweepSet(const CLibKey &key);
    const CLibMarkSet *FindMarkSet(const CLibKey &key) const;
    bool HasSet(const CLibKey &key) const;

    // Add or replace by the set's key; false when its craft is of another kind.
    bool SetCutSet(const CLibCutSet &set);
    bool SetSweepSet(const CLibSweepSet &set);
    bool SetMarkSet(const CLibMarkSet &set);
    // As above, but a set already filed under the key is kept (readers: the
    // first of two equal keys wins).
    bool InsertCutSetIfAbsent(const CLibCutSet &set);
    bool InsertSweepSetIfAbsent(const CLibSweepSet &set);
    bool InsertMarkSetIfAbsent(const CLibMarkSet &set);
    bool RemoveSet(const CLibKey &key);

    size_t CutSetCount() const { return m_cutCount; }
    size_t SweepSetCount() const { return m_sweepCount; }
    size_t MarkSetCount() const { return m_markCount; }
    // Parameter sets of one craft under a tube and power.
    int CountSets(quint32 tube, qint32 power, quint32 craft) const;
    // Every set, ordered by tube, power, material, craft and thickness.
    std::vector<CLibCutSet> CutSets() const;
    std::vector<CLibSweepSet> SweepSets() const;
    std::vector<CLibMarkSet> MarkSets() const;

    // Copies the materials and parameter sets of one tube/power pair to
    // another that has no material yet (adding its power entry as a user
    // power when missing). Returns the number of materials copied: 0 when the
    // target already has materials, the pairs are equal or the source is empty.
    int ClonePair(quint32 fromTube, qint32 fromPower, quint32 toTube, qint32 toPower);

    // Readers fill a library in one go: materials are given per tube/power
    // run and must be unique and their thickness lists free of duplicates.
    void AppendTubePower(quint32 type, qint32 power, bool custom);
    void AdoptMaterials(std::vector<CLibMaterial> materials);

    friend bool operator==(const CMaterialLibrary &a, const CMaterialLibrary &b);
    friend bool operator!=(const CMaterialLibrary &a, const CMaterialLibrary &b)
    {
        return !(a == b);
    }

private:
    template<typename Set>
    using SetIndex = QHash<CLibGroupKey, std::map<double, Set>>;

    template<typename Set>
    static const Set *find(const SetIndex<Set> &index, const CLibKey &key);
    template<typename Set>
    static bool store(SetIndex<Set> &index, size_t &count, const Set &set, bool replace);
    template<typename Set>
    static std::vector<Set> sorted(const SetIndex<Set> &index);

    CLibTube *tube(quint32 type);
    void rebuildMaterialIndex();
    void removeSetsOf(quint32 tube, qint32 power, const QString &name,
                      const double *thickness = nullptr);
    void renameSets(quint32 tube, qint32 power, const QString &name, const QString &newName);
    // [begin, end) of the tube/power run in m_materials; empty when none.
    std::pair<qsizetype, qsizetype> run(quint32 tube, qint32 power) const;

    QJsonValue m_version = 0;
    std::vector<CLibTube> m_tubes;
    std::vector<CLibMaterial> m_materials;
    // Material key (craft 0) to position in m_materials.
    QHash<CLibGroupKey, qsizetype> m_materialIndex;
    QHash<quint64, std::pair<qsizetype, qsizetype>> m_runs;
    SetIndex<CLibCutSet> m_cutSets;
    SetIndex<CLibSweepSet> m_sweepSets;
    SetIndex<CLibMarkSet> m_markSets;
    size_t m_cutCount = 0;
    size_t m_sweepCount = 0;
    size_t m_markCount = 0;
};
