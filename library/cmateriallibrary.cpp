#include "cmateriallibrary.h"

#include <QHashFunctions>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <tuple>

namespace {

quint64 pairKey(quint32 tube, qint32 power)
{
    return (quint64(tube) << 32) | quint32(power);
}

CLibGroupKey materialKey(quint32 tube, qint32 power, const QString &name)
{
    return {tube, power, name, 0};
}

CLibGroupKey groupKey(const CLibKey &key)
{
    return {key.tube, key.power, key.material, key.craft};
}

// Thicknesses without duplicates (within the tolerance) and without values
// no map can order.
std::vector<double> cleanThicknesses(const std::vector<double> &thicknesses)
{
    std::vector<double> clean;
    for (double t : thicknesses) {
        if (!std::isfinite(t))
            continue;
        const bool known = std::any_of(clean.cbegin(), clean.cend(),
                                       [t](double other) { return SameThickness(t, other); });
        if (!known)
            clean.push_back(t);
    }
    return clean;
}

template<typename Map>
auto findThickness(Map &map, double thickness) -> decltype(map.begin())
{
    auto it = map.lower_bound(thickness - kThicknessTolerance);
    if (it != map.end() && it->first <= thickness + kThicknessTolerance)
        return it;
    return map.end();
}

bool keyLess(const CLibKey &a, const CLibKey &b)
{
    return std::tie(a.tube, a.power, a.material, a.craft, a.thickness)
        < std::tie(b.tube, b.power, b.material, b.craft, b.thickness);
}

} // namespace

size_t qHash(const CLibGroupKey &key, size_t seed) noexcept
{
    return qHashMulti(seed, key.tube, key.power, key.material, key.craft);
}

template<typename Set>
const Set *CMaterialLibrary::find(const SetIndex<Set> &index, const CLibKey &key)
{
    const auto group = index.constFind(groupKey(key));
    if (group == index.cend())
        return nullptr;
    const auto it = findThickness(*group, key.thickness);
    return it == group->end() ? nullptr : &it->second;
}

template<typename Set>
bool CMaterialLibrary::store(SetIndex<Set> &index, size_t &count, const Set &set, bool replace)
{
    if (!std::isfinite(set.key.thickness))
        return false;
    auto &group = index[groupKey(set.key)];
    const auto it = findThickness(group, set.key.thickness);
    if (it != group.end()) {
        if (replace)
            it->second = set;
        return true;
    }
    group.emplace(set.key.thickness, set);
    ++count;
    return true;
}

template<typename Set>
std::vector<Set> CMaterialLibrary::sorted(const SetIndex<Set> &index)
{
    std::vector<Set> sets;
    for (const auto &group : index) {
        for (const auto &entry : group)
            sets.push_back(entry.second);
    }
    std::sort(sets.begin(), sets.end(),
              [](const Set &a, const Set &b) { return keyLess(a.key, b.key); });
    return sets;
}

bool CMaterialLibrary::IsEmpty() const
{
    return m_tubes.empty() && m_materials.empty() && m_cutCount == 0 && m_sweepCount == 0
        && m_markCount == 0;
}

void CMaterialLibrary::Clear()
{
    *this = CMaterialLibrary();
}

const CLibTube *CMaterialLibrary::FindTube(quint32 type) const
{
    const auto it = std::find_if(m_tubes.cbegin(), m_tubes.cend(),
                                 [type](const CLibTube &t) { return t.type == type; });
    return it == m_tubes.cend() ? nullptr : &*it;
}

CLibTube *CMaterialLibrary::tube(quint32 type)
{
    return const_cast<CLibTube *>(std::as_const(*this).FindTube(type));
}

std::vector<CLibPower> CMaterialLibrary::Powers(quint32 type) const
{
    const CLibTube *t = FindTube(type);
    return t ? t->powers : std::vector<CLibPower>();
}

bool CMaterialLibrary::HasPower(quint32 type, qint32 power) const
{
    const CLibTube *t = FindTube(type);
    return t
        && std::any_of(t->powers.cbegin(), t->powers.cend(),
                       [power](const CLibPower &p) { return p.power == power; });
}

bool CMaterialLibrary::AddPower(quint32 type, qint32 power, bool custom)
{
    if (HasPower(type, power))
        return false;
    AppendTubePower(type, power, custom);
    return true;
}

void CMaterialLibrary::AddTube(quint32 type)
{
    if (!FindTube(type))
        m_tubes.push_back({type, {}});
}

void CMaterialLibrary::AppendTubePower(quint32 type, qint32 power, bool custom)
{
    CLibTube *t = tube(type);
    if (!t) {
        m_tubes.push_back({type, {}});
        t = &m_tubes.back();
    }
    t->powers.push_back({power, custom});
}

bool CMaterialLibrary::RemoveUserPower(quint32 type, qint32 power)
{
    CLibTube *t = tube(type);
    if (!t)
        return false;
    const auto it = std::find_if(t->powers.begin(), t->powers.end(), [power](const CLibPower &p) {
        return p.power == power && p.custom;
    });
    if (it == t->powers.end())
        return false;
    t->powers.erase(it);

    const auto [begin, end] = run(type, power);
    for (qsizetype i = begin; i < end; ++i)
        removeSetsOf(type, power, m_materials[size_t(i)].name);
    m_materials.erase(m_materials.begin() + begin, m_materials.begin() + end);
    rebuildMaterialIndex();
    return true;
}

std::pair<qsizetype, qsizetype> CMaterialLibrary::run(quint32 tube, qint32 power) const
{
    const auto it = m_runs.constFind(pairKey(tube, power));
    return it == m_runs.cend() ? std::pair<qsizetype, qsizetype>(0, 0) : *it;
}

std::vector<const CLibMaterial *> CMaterialLibrary::MaterialsOf(quint32 tube, qint32 power) const
{
    const auto [begin, end] = run(tube, power);
    std::vector<const CLibMaterial *> materials;
    materials.reserve(size_t(end - begin));
    for (qsizetype i = begin; i < end; ++i)
        materials.push_back(&m_materials[size_t(i)]);
    return materials;
}

QStringList CMaterialLibrary::MaterialNames(quint32 tube, qint32 power) const
{
    const auto [begin, end] = run(tube, power);
    QStringList names;
    names.reserve(end - begin);
    for (qsizetype i = begin; i < end; ++i)
        names.append(m_materials[size_t(i)].name);
    return names;
}

qsizetype CMaterialLibrary::MaterialIndex(quint32 tube, qint32 power, const QString &name) const
{
    return m_materialIndex.value(materialKey(tube, power, name), -1);
}

const CLibMaterial *CMaterialLibrary::FindMaterial(quint32 tube, qint32 power,
                                                   const QString &name) const
{
    const qsizetype index = MaterialIndex(tube, power, name);
    return index < 0 ? nullptr : &m_materials[size_t(index)];
}

bool CMaterialLibrary::AddMaterial(const CLibMaterial &material)
{
    if (MaterialIndex(material.tube, material.power, material.name) >= 0)
        return false;
    if (!HasPower(material.tube, material.power))
        AppendTubePower(material.tube, material.power, true);
    CLibMaterial added = material;
    added.thicknesses = cleanThicknesses(material.thicknesses);
    const auto [begin, end] = run(material.tube, material.power);
    const qsizetype at = end > begin ? end : qsizetype(m_materials.size());
    m_materials.insert(m_materials.begin() + at, std::move(added));
    rebuildMaterialIndex();
    return true;
}

bool CMaterialLibrary::RenameMaterial(quint32 tube, qint32 power, const QString &name,
                                      const QString &newName)
{
    const qsizetype index = MaterialIndex(tube, power, name);
    if (index < 0)
        return false;
    if (name == newName)
        return true;
    if (MaterialIndex(tube, power, newName) >= 0)
        return false;
    m_materials[size_t(index)].name = newName;
    m_materialIndex.remove(materialKey(tube, power, name));
    m_materialIndex.insert(materialKey(tube, power, newName), index);
    renameSets(tube, power, name, newName);
    return true;
}

bool CMaterialLibrary::SetMaterialIcon(quint32 tube, qint32 power, const QString &name,
                                       const QString &iconPath, const QString &iconBase64)
{
    const qsizetype index = MaterialIndex(tube, power, name);
    if (index < 0)
        return false;
    m_materials[size_t(index)].iconPath = iconPath;
    m_materials[size_t(index)].iconBase64 = iconBase64;
    return true;
}

bool CMaterialLibrary::RemoveMaterial(quint32 tube, qint32 power, const QString &name)
{
    const qsizetype index = MaterialIndex(tube, power, name);
    if (index < 0)
        return false;
    removeSetsOf(tube, power, name);
    m_materials.erase(m_materials.begin() + index);
    rebuildMaterialIndex();
    return true;
}

bool CMaterialLibrary::MoveMaterial(quint32 tube, qint32 power, int from, int to)
{
    const auto [begin, end] = run(tube, power);
    const qsizetype count = end - begin;
    if (from < 0 || to < 0 || from >= count || to >= count)
        return false;
    if (from == to)
        return true;
    const auto first = m_materials.begin() + begin;
    if (from < to)
        std::rotate(first + from, first + from + 1, first + to + 1);
    else
        std::rotate(first + to, first + from, first + from + 1);
    rebuildMaterialIndex();
    return true;
}

std::vector<double> CMaterialLibrary::Thicknesses(quint32 tube, qint32 power,
                                                  const QString &name) const
{
    const CLibMaterial *material = FindMaterial(tube, power, name);
    return material ? material->thicknesses : std::vector<double>();
}

bool CMaterialLibrary::AddThickness(quint32 tube, qint32 power, const QString &name,
                                    double thickness)
{
    const qsizetype index = MaterialIndex(tube, power, name);
    if (index < 0 || !std::isfinite(thickness))
        return false;
    std::vector<double> &list = m_materials[size_t(index)].thicknesses;
    const bool known = std::any_of(list.cbegin(), list.cend(), [thickness](double t) {
        return SameThickness(t, thickness);
    });
    if (known)
        return false;
    list.push_back(thickness);
    return true;
}

bool CMaterialLibrary::RemoveThickness(quint32 tube, qint32 power, const QString &name,
                                       double thickness)
{
    const qsizetype index = MaterialIndex(tube, power, name);
    if (index < 0)
        return false;
    std::vector<double> &list = m_materials[size_t(index)].thicknesses;
    const auto it = std::find_if(list.begin(), list.end(),
                                 [thickness](double t) { return SameThickness(t, thickness); });
    if (it == list.end())
        return false;
    list.erase(it);
    removeSetsOf(tube, power, name, &thickness);
    return true;
}

const CLibCutSet *CMaterialLibrary::FindCutSet(const CLibKey &key) const
{
    return IsCutCraft(key.craft) ? find(m_cutSets, key) : nullptr;
}

CLibCutSet *CMaterialLibrary::FindCutSet(const CLibKey &key)
{
    // A copy of the library shares the index until one of them writes.
    m_cutSets.detach();
    return const_cast<CLibCutSet *>(std::as_const(*this).FindCutSet(key));
}

const CLibSweepSet *CMaterialLibrary::FindSweepSet(const CLibKey &key) const
{
    return IsSweepCraft(key.craft) ? find(m_sweepSets, key) : nullptr;
}

CLibSweepSet *CMaterialLibrary::FindSweepSet(const CLibKey &key)
{
    m_sweepSets.detach();
    return const_cast<CLibSweepSet *>(std::as_const(*this).FindSweepSet(key));
}

const CLibMarkSet *CMaterialLibrary::FindMarkSet(const CLibKey &key) const
{
    return key.craft == LIB_CRAFT_MARK ? find(m_markSets, key) : nullptr;
}

bool CMaterialLibrary::HasSet(const CLibKey &key) const
{
    return FindCutSet(key) || FindSweepSet(key) || FindMarkSet(key);
}

bool CMaterialLibrary::SetCutSet(const CLibCutSet &set)
{
    return IsCutCraft(set.key.craft) && store(m_cutSets, m_cutCount, set, true);
}

bool CMaterialLibrary::SetSweepSet(const CLibSweepSet &set)
{
    return IsSweepCraft(set.key.craft) && store(m_sweepSets, m_sweepCount, set, true);
}

bool CMaterialLibrary::SetMarkSet(const CLibMarkSet &set)
{
    return set.key.craft == LIB_CRAFT_MARK && store(m_markSets, m_markCount, set, true);
}

bool CMaterialLibrary::InsertCutSetIfAbsent(const CLibCutSet &set)
{
    return IsCutCraft(set.key.craft) && store(m_cutSets, m_cutCount, set, false);
}

bool CMaterialLibrary::InsertSweepSetIfAbsent(const CLibSweepSet &set)
{
    return IsSweepCraft(set.key.craft) && store(m_sweepSets, m_sweepCount, set, false);
}

bool CMaterialLibrary::InsertMarkSetIfAbsent(const CLibMarkSet &set)
{
    return set.key.craft == LIB_CRAFT_MARK && store(m_markSets, m_markCount, set, false);
}

bool CMaterialLibrary::RemoveSet(const CLibKey &key)
{
    auto erase = [&key](auto &index, size_t &count) {
        const auto group = index.find(groupKey(key));
        if (group == index.end())
            return false;
        const auto it = findThickness(*group, key.thickness);
        if (it == group->end())
            return false;
        group->erase(it);
        --count;
        if (group->empty())
            index.erase(group);
        return true;
    };
    if (IsCutCraft(key.craft))
        return erase(m_cutSets, m_cutCount);
    if (IsSweepCraft(key.craft))
        return erase(m_sweepSets, m_sweepCount);
    if (key.craft == LIB_CRAFT_MARK)
        return erase(m_markSets, m_markCount);
    return false;
}

int CMaterialLibrary::CountSets(quint32 tube, qint32 power, quint32 craft) const
{
    auto count = [&](const auto &index) {
        int n = 0;
        const auto [begin, end] = run(tube, power);
        for (qsizetype i = begin; i < end; ++i) {
            const auto group = index.constFind({tube, power, m_materials[size_t(i)].name, craft});
            if (group != index.cend())
                n += int(group->size());
        }
        return n;
    };
    if (IsCutCraft(craft))
        return count(m_cutSets);
    if (IsSweepCraft(craft))
        return count(m_sweepSets);
    if (craft == LIB_CRAFT_MARK)
        return count(m_markSets);
    return 0;
}

std::vector<CLibCutSet> CMaterialLibrary::CutSets() const
{
    return sorted(m_cutSets);
}

std::vector<CLibSweepSet> CMaterialLibrary::SweepSets() const
{
    return sorted(m_sweepSets);
}

std::vector<CLibMarkSet> CMaterialLibrary::MarkSets() const
{
    return sorted(m_markSets);
}

int CMaterialLibrary::ClonePair(quint32 fromTube, qint32 fromPower, quint32 toTube,
                                qint32 toPower)
{
    if (fromTube == toTube && fromPower == toPower)
        return 0;
    const auto [toBegin, toEnd] = run(toTube, toPower);
    if (toEnd > toBegin)
        return 0;
    const auto [begin, end] = run(fromTube, fromPower);
    if (end == begin)
        return 0;
    if (!HasPower(toTube, toPower))
        AppendTubePower(toTube, toPower, true);

    std::vector<CLibMaterial> copies(m_materials.begin() + begin, m_materials.begin() + end);
    for (CLibMaterial &material : copies) {
        material.tube = toTube;
        material.power = toPower;
        for (quint32 craft = 0; craft < kLibCraftCount; ++craft) {
            const CLibGroupKey from{fromTube, fromPower, material.name, craft};
            const CLibGroupKey to{toTube, toPower, material.name, craft};
            auto copyGroup = [&](auto &index, size_t &count) {
                const auto group = index.constFind(from);
                if (group == index.cend())
                    return;
                auto copy = *group;
                for (auto &entry : copy) {
                    entry.second.key.tube = toTube;
                    entry.second.key.power = toPower;
                }
                // Stray sets under the target pair give way.
                const auto old = index.constFind(to);
                if (old != index.cend())
                    count -= old->size();
                count += copy.size();
                index.insert(to, std::move(copy));
            };
            copyGroup(m_cutSets, m_cutCount);
            copyGroup(m_sweepSets, m_sweepCount);
            copyGroup(m_markSets, m_markCount);
        }
    }
    const int copied = int(copies.size());
    m_materials.insert(m_materials.end(), std::make_move_iterator(copies.begin()),
                       std::make_move_iterator(copies.end()));
    rebuildMaterialIndex();
    return copied;
}

void CMaterialLibrary::AdoptMaterials(std::vector<CLibMaterial> materials)
{
    m_materials = std::move(materials);
    rebuildMaterialIndex();
}

void CMaterialLibrary::rebuildMaterialIndex()
{
    m_materialIndex.clear();
    m_runs.clear();
    m_materialIndex.reserve(qsizetype(m_materials.size()));
    for (size_t i = 0; i < m_materials.size(); ++i) {
        const CLibMaterial &m = m_materials[i];
        m_materialIndex.insert(materialKey(m.tube, m.power, m.name), qsizetype(i));
        auto &span = m_runs[pairKey(m.tube, m.power)];
        if (span.second == span.first)
            span = {qsizetype(i), qsizetype(i)};
        span.second = qsizetype(i) + 1;
    }
}

void CMaterialLibrary::removeSetsOf(quint32 tube, qint32 power, const QString &name,
                                    const double *thickness)
{
    for (quint32 craft = 0; craft < kLibCraftCount; ++craft) {
        if (thickness) {
            RemoveSet({tube, power, name, *thickness, craft});
            continue;
        }
        const CLibGroupKey key{tube, power, name, craft};
        auto drop = [&key](auto &index, size_t &count) {
            const auto group = index.find(key);
            if (group == index.end())
                return;
            count -= group->size();
            index.erase(group);
        };
        drop(m_cutSets, m_cutCount);
        drop(m_sweepSets, m_sweepCount);
        drop(m_markSets, m_markCount);
    }
}

void CMaterialLibrary::renameSets(quint32 tube, qint32 power, const QString &name,
                                  const QString &newName)
{
    for (quint32 craft = 0; craft < kLibCraftCount; ++craft) {
        const CLibGroupKey from{tube, power, name, craft};
        const CLibGroupKey to{tube, power, newName, craft};
        auto move = [&](auto &index, size_t &count) {
            auto group = index.take(from);
            if (group.empty())
                return;
            for (auto &entry : group)
                entry.second.key.material = newName;
            // Sets left under the new name by an earlier material give way.
            const auto old = index.constFind(to);
            if (old != index.cend())
                count -= old->size();
            index.insert(to, std::move(group));
        };
        move(m_cutSets, m_cutCount);
        move(m_sweepSets, m_sweepCount);
        move(m_markSets, m_markCount);
    }
}

bool operator==(const CMaterialLibrary &a, const CMaterialLibrary &b)
{
    return a.m_version == b.m_version && a.m_tubes == b.m_tubes
        && a.m_materials == b.m_materials && a.m_cutCount == b.m_cutCount
        && a.m_sweepCount == b.m_sweepCount && a.m_markCount == b.m_markCount
        && a.CutSets() == b.CutSets() && a.SweepSets() == b.SweepSets()
        && a.MarkSets() == b.MarkSets();
}
