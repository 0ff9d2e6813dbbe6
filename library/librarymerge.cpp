#include "librarymerge.h"

#include "crunningoptions.h"
#include "ctranslator.h"

#include <QSet>

#include <algorithm>
#include <type_traits>

namespace {

QString wording(const char *english)
{
    return CTranslator::GetInstance()->GetWording(QString::fromLatin1(english));
}

QString maybeWording(const char *english, bool translate)
{
    return translate ? wording(english) : QString::fromLatin1(english);
}

// Field accessors: a member of the set, or a member of one of its members.
template<auto Member>
struct Direct
{
    template<typename Set>
    static auto &get(Set &set)
    {
        return set.*Member;
    }
};

template<auto Outer, auto Inner>
struct Nested
{
    template<typename Set>
    static auto &get(Set &set)
    {
        return (set.*Outer).*Inner;
    }
};

QString valueText(ELibFieldFormat format, double value, bool translate)
{
    return LibFieldText(format, value, translate);
}

QString valueText(ELibFieldFormat format, const QString &value, bool translate)
{
    return LibFieldText(format, value, translate);
}

template<typename Set, typename Field>
bool sameField(const Set &a, const Set &b)
{
    return Field::get(a) == Field::get(b);
}

template<typename Set, typename Field>
void copyField(Set &to, const Set &from)
{
    Field::get(to) = Field::get(from);
}

template<typename Set, typename Field>
QString fieldText(const Set &set, ELibFieldFormat format, bool translate)
{
    return valueText(format, Field::get(set), translate);
}

template<typename Set, typename Field>
CLibSetField<Set> row(const char *caption, int laser = 0,
                      ELibFieldFormat format = ELibFieldFormat::Number, bool summary = true)
{
    return {caption,
            laser,
            summary,
            format,
            &sameField<Set, Field>,
            &copyField<Set, Field>,
            &fieldText<Set, Field>};
}

template<typename Set, auto Laser, auto Member>
CLibSetField<Set> laserRow(const char *caption, int laser,
                           ELibFieldFormat format = ELibFieldFormat::Number, bool summary = true)
{
    return row<Set, Nested<Laser, Member>>(caption, laser, format, summary);
}

constexpr auto kNumber = ELibFieldFormat::Number;
constexpr auto kOnOff = ELibFieldFormat::OnOff;
constexpr bool kNotInSummary = false;

// The first block of laser fields: powers, as the change summary opens with.
template<typename Set, auto Laser>
void appendPowers(std::vector<CLibSetField<Set>> &rows, int n)
{
    rows.push_back(laserRow<Set, Laser, &CLibLaser::power>("Max Power", n));
    if constexpr (std::is_same_v<Set, CLibCutSet>) {
        rows.push_back(laserRow<Set, Laser, &CLibLaser::turnPower>("Corner Power", n));
    } else {
        // The only minimum a sweep set keeps is the first laser's ramp start.
        if (n == 1)
            rows.push_back(row<Set, Direct<&CLibSweepSet::minPower>>("Min Power", 1));
        rows.push_back(laserRow<Set, Laser, &CLibLaser::turnPower>("Corner Power", n, kNumber,
                                                                    kNotInSummary));
    }
}

// The second block: delays and dwell; a sweep set's summary shows the delays only.
template<typename Set, auto Laser>
void appendTiming(std::vector<CLibSetField<Set>> &rows, int n)
{
    constexpr bool cut = std::is_same_v<Set, CLibCutSet>;
    rows.push_back(laserRow<Set, Laser, &CLibLaser::jumpDelay>("Jump Delay", n));
    rows.push_back(laserRow<Set, Laser, &CLibLaser::cornerDelay>("Corner Delay", n));
    rows.push_back(laserRow<Set, Laser, &CLibLaser::dwellMode>("Use laser dwell mode", n, kOnOff,
                                                                cut));
    rows.push_back(laserRow<Set, Laser, &CLibLaser::dwellOn>("Laser ON", n, kOnOff, cut));
    // The second laser's two captions are in title case; users know them so.
    rows.push_back(laserRow<Set, Laser, &CLibLaser::startDwellTime>(
        n == 1 ? "Start dwell time" : "Start Dwell Time", n, kNumber, cut));
    rows.push_back(laserRow<Set, Laser, &CLibLaser::endDwellTime>(
        n == 1 ? "End dwell time" : "End Dwell Time", n, kNumber, cut));
    rows.push_back(laserRow<Set, Laser, &CLibLaser::dwellPower>("Laser Power", n, kNumber, cut));
    rows.push_back(laserRow<Set, Laser, &CLibLaser::startDwell>("Start Dwell", n, kOnOff,
                                                                 kNotInSummary));
    rows.push_back(laserRow<Set, Laser, &CLibLaser::endDwell>("End Dwell", n, kOnOff,
                                                               kNotInSummary));
    rows.push_back(laserRow<Set, Laser, &CLibLaser::frequency>("Frequency", n, kNumber,
                                                                kNotInSummary));
    rows.push_back(laserRow<Set, Laser, &CLibLaser::pulseWidth>("Pulse Width", n, kNumber,
                                                                 kNotInSummary));
}

template<typename Set>
void appendPen(std::vector<CLibSetField<Set>> &rows)
{
    rows.push_back(row<Set, Nested<&Set::pen, &CLibPen::enableUpDown>>("Enable Dynamic Focus", 0,
                                                                        kOnOff));
    rows.push_back(row<Set, Nested<&Set::pen, &CLibPen::downHeight>>("Processing Focus"));
    rows.push_back(row<Set, Nested<&Set::pen, &CLibPen::upHeight>>("Safety Focus"));
    rows.push_back(row<Set, Nested<&Set::pen, &CLibPen::enableDown>>("Pen Down", 0, kOnOff,
                                                                      kNotInSummary));
    rows.push_back(row<Set, Nested<&Set::pen, &CLibPen::enableUp>>("Pen Up", 0, kOnOff,
                                                                    kNotInSummary));
}

std::vector<CLibSetField<CLibCutSet>> cutFields()
{
    using S = CLibCutSet;
    std::vector<CLibSetField<S>> rows;
    rows.push_back(row<S, Direct<&S::speed>>("Speed"));
    rows.push_back(row<S, Direct<&S::blowing>>("Air Assist", 0, ELibFieldFormat::Air));
    rows.push_back(row<S, Direct<&S::sealLength>>("Seal length"));
    // "Processing Times": a cut set keeps no pass count.
    appendPowers<S, &S::laser1>(rows, 1);
    appendPowers<S, &S::laser2>(rows, 2);
    appendTiming<S, &S::laser1>(rows, 1);
    appendTiming<S, &S::laser2>(rows, 2);
    rows.push_back(row<S, Direct<&S::bridges>>("Use Tabs", 0, kOnOff));
    rows.push_back(row<S, Direct<&S::bridgesLength>>("Nozzle Size"));
    rows.push_back(row<S, Direct<&S::bridgesSpace>>("Nozzle Distance"));
    rows.push_back(row<S, Direct<&S::useGuideLine>>("Using Cutting Leads", 0, kOnOff));
    rows.push_back(row<S, Direct<&S::guideInLen>>("Lead-In"));
    rows.push_back(row<S, Direct<&S::guideOutLen>>("Lead-Out"));
    rows.push_back(row<S, Direct<&S::guideType>>("Lead Type", 0, kNumber, kNotInSummary));
    rows.push_back(row<S, Direct<&S::guideIn>>("Lead-In Type", 0, kNumber, kNotInSummary));
    rows.push_back(row<S, Direct<&S::guideOut>>("Lead-Out Type", 0, kNumber, kNotInSummary));
    appendPen<S>(rows);
    rows.push_back(row<S, Direct<&S::useCompensate>>("Use laser compensation", 0, kOnOff));
    rows.push_back(row<S, Direct<&S::compensateSize>>("Compensation size"));
    rows.push_back(row<S, Direct<&S::compensateOutward>>("Compensate Outward", 0, kOnOff,
                                                         kNotInSummary));
    rows.push_back(row<S, Direct<&S::note>>(kLibNoteCaption, 0, ELibFieldFormat::Text,
                                            kNotInSummary));
    return rows;
}

std::vector<CLibSetField<CLibSweepSet>> sweepFields()
{
    using S = CLibSweepSet;
    std::vector<CLibSetField<S>> rows;
    rows.push_back(row<S, Direct<&S::speed>>("Speed"));
    appendPowers<S, &S::laser1>(rows, 1);
    appendPowers<S, &S::laser2>(rows, 2);
    appendTiming<S, &S::laser1>(rows, 1);
    appendTiming<S, &S::laser2>(rows, 2);
    rows.push_back(row<S, Direct<&S::blowing>>("Air Assist", 0, ELibFieldFormat::Air));
    rows.push_back(row<S, Direct<&S::carvingNumber>>("Processing Times"));
    appendPen<S>(rows);
    rows.push_back(row<S, Direct<&S::isRamp>>("Slope pattern", 0, kOnOff));
    rows.push_back(row<S, Direct<&S::rampLength>>("Ramp Length"));
    rows.push_back(row<S, Direct<&S::maxPower>>("Ramp Max Power", 0, kNumber, kNotInSummary));
    rows.push_back(row<S, Direct<&S::is3DRelief>>("3D Relief", 0, kOnOff));
    rows.push_back(row<S, Direct<&S::mode>>("Mode", 0, ELibFieldFormat::SweepMode));
    // The scan direction is the layer's, not the set's: no row here.
    rows.push_back(row<S, Direct<&S::offsetEngraving>>("Offset engraving", 0, kOnOff));
    rows.push_back(
        row<S, Direct<&S::offsetType>>("Engraving direction", 0, ELibFieldFormat::OffsetType));
    rows.push_back(row<S, Direct<&S::offsetDistance>>("Offset Distance", 0, kNumber,
                                                      kNotInSummary));
    rows.push_back(row<S, Direct<&S::dpi>>("Resolution", 0, ELibFieldFormat::Resolution));
    rows.push_back(row<S, Direct<&S::note>>(kLibNoteCaption, 0, ELibFieldFormat::Text,
                                            kNotInSummary));
    return rows;
}

enum class EPlace { Power, Material, Thickness, Set };

// Visits the places of two libraries in one order: the first library's
// tubes, powers, materials and thicknesses in its order, then what only the
// second has, in the second's order; each thickness with every craft.
// `onlySecond` tells a place the first library lacks.
template<typename Visit>
void walkPlaces(const CMaterialLibrary &first, const CMaterialLibrary &second, Visit &&visit)
{
    std::vector<quint32> tubes;
    QSet<quint32> seenTubes;
    for (const auto *library : {&first, &second}) {
        for (const CLibTube &tube : library->Tubes()) {
            if (!seenTubes.contains(tube.type)) {
                seenTubes.insert(tube.type);
                tubes.push_back(tube.type);
            }
        }
    }
    for (const quint32 tube : tubes) {
        std::vector<qint32> powers;
        QSet<qint32> seenPowers;
        for (const auto *library : {&first, &second}) {
            if (const CLibTube *t = library->FindTube(tube)) {
                for (const CLibPower &p : t->powers) {
                    if (!seenPowers.contains(p.power)) {
                        seenPowers.insert(p.power);
                        powers.push_back(p.power);
                    }
                }
            }
        }
        for (const qint32 power : powers) {
            CLibKey key{tube, power, QString(), 0.0, 0};
            visit(EPlace::Power, key, !first.HasPower(tube, power));
            QStringList names = first.MaterialNames(tube, power);
            for (const QString &name : second.MaterialNames(tube, power)) {
                if (first.MaterialIndex(tube, power, name) < 0)
                    names.append(name);
            }
            for (const QString &name : std::as_const(names)) {
                key.material = name;
                key.thickness = 0.0;
                key.craft = 0;
                const CLibMaterial *a = first.FindMaterial(tube, power, name);
                const CLibMaterial *b = second.FindMaterial(tube, power, name);
                visit(EPlace::Material, key, a == nullptr);
                std::vector<double> thicknesses = a ? a->thicknesses : std::vector<double>();
                const size_t own = thicknesses.size();
                if (b) {
                    for (const double t : b->thicknesses) {
                        const auto end = thicknesses.cbegin() + qsizetype(own);
                        if (std::none_of(thicknesses.cbegin(), end,
                                         [t](double o) { return SameThickness(o, t); }))
                            thicknesses.push_back(t);
                    }
                }
                for (size_t i = 0; i < thicknesses.size(); ++i) {
                    key.thickness = thicknesses[i];
                    key.craft = 0;
                    visit(EPlace::Thickness, key, i >= own);
                    for (quint32 craft = 0; craft < kLibCraftCount; ++craft) {
                        key.craft = craft;
                        visit(EPlace::Set, key, i >= own);
                    }
                }
            }
        }
    }
}

// The sets two libraries file under one key, whichever kind the craft is.
struct SetPair
{
    const CLibCutSet *cutA = nullptr;
    const CLibCutSet *cutB = nullptr;
    const CLibSweepSet *sweepA = nullptr;
    const CLibSweepSet *sweepB = nullptr;
    const CLibMarkSet *markA = nullptr;
    const CLibMarkSet *markB = nullptr;

    SetPair(const CMaterialLibrary &a, const CMaterialLibrary &b, const CLibKey &key)
    {
        if (IsCutCraft(key.craft)) {
            cutA = a.FindCutSet(key);
            cutB = b.FindCutSet(key);
        } else if (IsSweepCraft(key.craft)) {
            sweepA = a.FindSweepSet(key);
            sweepB = b.FindSweepSet(key);
        } else {
            markA = a.FindMarkSet(key);
            markB = b.FindMarkSet(key);
        }
    }
    bool hasA() const { return cutA || sweepA || markA; }
    bool hasB() const { return cutB || sweepB || markB; }
    bool same() const
    {
        if (cutA)
            return SameSetFields(*cutA, *cutB);
        if (sweepA)
            return SameSetFields(*sweepA, *sweepB);
        return SameSetFields(*markA, *markB);
    }

    // Calls report(field index, caption, old text, new text) for every field
    // that differs; both sets must be there.
    template<typename Report>
    void forEachDifference(bool translate, Report &&report) const
    {
        auto compare = [&](const auto &fields, const auto &a, const auto &b) {
            for (size_t i = 0; i < fields.size(); ++i) {
                const auto &field = fields[i];
                if (!field.same(a, b))
                    report(int(i), field.Caption(true, translate), field.Text(a, translate),
                           field.Text(b, translate));
            }
        };
        if (cutA) {
            compare(CutSetFields(), *cutA, *cutB);
        } else if (sweepA) {
            compare(SweepSetFields(), *sweepA, *sweepB);
        } else if (markA->note != markB->note) {
            report(0, maybeWording(kLibNoteCaption, translate), markA->note, markB->note);
        }
    }
};

// Brings the place of `key` from `from` into `to`: power (as a user power),
// material with its picture, thickness after the material's own.
void bringPlace(CMaterialLibrary &to, const CMaterialLibrary &from, const CLibKey &key,
                EPlace place)
{
    if (!to.HasPower(key.tube, key.power))
        to.AddPower(key.tube, key.power, true);
    if (place == EPlace::Power)
        return;
    if (to.MaterialIndex(key.tube, key.power, key.material) < 0) {
        const CLibMaterial *source = from.FindMaterial(key.tube, key.power, key.material);
        CLibMaterial material = source ? *source : CLibMaterial();
        material.name = key.material;
        material.tube = key.tube;
        material.power = key.power;
        material.thicknesses.clear();
        to.AddMaterial(material);
    }
    if (place != EPlace::Material)
        to.AddThickness(key.tube, key.power, key.material, key.thickness);
}

} // namespace

template<typename Set>
QString CLibSetField<Set>::Caption(bool laserSuffix, bool translate) const
{
    QString text = maybeWording(caption, translate);
    if (laser > 0 && laserSuffix)
        text += QLatin1Char('-') + maybeWording("Laser", translate) + QString::number(laser);
    return text;
}

template struct CLibSetField<CLibCutSet>;
template struct CLibSetField<CLibSweepSet>;

const std::vector<CLibSetField<CLibCutSet>> &CutSetFields()
{
    static const std::vector<CLibSetField<CLibCutSet>> fields = cutFields();
    return fields;
}

const std::vector<CLibSetField<CLibSweepSet>> &SweepSetFields()
{
    static const std::vector<CLibSetField<CLibSweepSet>> fields = sweepFields();
    return fields;
}

QString LibNumberText(double value)
{
    return QString::number(value, 'g', 6);
}

QString LibFieldText(ELibFieldFormat format, double value, bool translate)
{
    static const char *const kResolutions[] = {
        "50",  "70",  "100",  "150",  "200",  "250",  "300",  "350",  "400",  "500",
        "600", "800", "1000", "1500", "2000", "2500", "3000", "3500", "4000",
    };
    constexpr double count = double(sizeof(kResolutions) / sizeof(kResolutions[0]));
    switch (format) {
    case ELibFieldFormat::OnOff:
        // "Close" is the program's own word for off.
        return maybeWording(value != 0 ? "On" : "Close", translate);
    case ELibFieldFormat::Air:
        return maybeWording(value != 0 ? "High" : "Low", translate);
    case ELibFieldFormat::SweepMode:
        return maybeWording(value != 0 ? "HoriZontal one-way" : "HoriZontal bidirectional",
                            translate);
    case ELibFieldFormat::OffsetType:
        return maybeWording(value != 0 ? "Outside in" : "Inside out", translate);
    case ELibFieldFormat::Resolution:
        return QString::fromLatin1(value >= 0 && value < count ? kResolutions[int(value)] : "9999");
    case ELibFieldFormat::Number:
    case ELibFieldFormat::Text:
        break;
    }
    return LibNumberText(value);
}

QString LibFieldText(ELibFieldFormat, const QString &value, bool)
{
    return value;
}

bool SameSetFields(const CLibCutSet &a, const CLibCutSet &b)
{
    return a.note == b.note && SameParameters(a, b);
}

bool SameSetFields(const CLibSweepSet &a, const CLibSweepSet &b)
{
    return a.note == b.note && SameParameters(a, b);
}

bool SameSetFields(const CLibMarkSet &a, const CLibMarkSet &b)
{
    return a.note == b.note;
}

QString MergeCraftText(quint32 craft)
{
    // The names the layer table and the library manager show, not the file's.
    static const char *const kTexts[kLibCraftCount] = {"Cutting", "Scoring", "Shallow Engrave",
                                                       "Deep Engrave", "Mark"};
    return craft < kLibCraftCount
        ? CTranslator::GetInstance()->GetWording(QLatin1String(kTexts[craft]))
        : QString();
}

CLibraryMerge::CLibraryMerge(const CMaterialLibrary &factory, const CMaterialLibrary &user,
                             const CMaterialLibrary &incoming)
    : m_user(user)
    , m_incoming(incoming)
{
    auto add = [this](ELibMergeKind kind, const CLibKey &key, const char *caption,
                      const QString &newText) {
        CLibMergeRow row;
        row.kind = kind;
        row.key = key;
        row.caption = wording(caption);
        row.newText = newText;
        m_rows.push_back(std::move(row));
    };
    walkPlaces(user, incoming, [&](EPlace place, const CLibKey &key, bool onlyIncoming) {
        switch (place) {
        case EPlace::Power:
            if (onlyIncoming)
                add(ELibMergeKind::NewPower, key, "Power", QString::number(key.power));
            return;
        case EPlace::Material:
            if (onlyIncoming)
                add(ELibMergeKind::NewMaterial, key, "Material", key.material);
            return;
        case EPlace::Thickness:
            if (onlyIncoming)
                add(ELibMergeKind::NewThickness, key, "Thickness", LibNumberText(key.thickness));
            return;
        case EPlace::Set:
            break;
        }
        const SetPair sets(user, incoming, key);
        if (!sets.hasB())
            return;
        if (!sets.hasA()) {
            add(ELibMergeKind::NewSet, key, "Parameters", MergeCraftText(key.craft));
            return;
        }
        if (sets.same())
            return;
        // The user never touched a set that still equals the factory's.
        const SetPair baseline(user, factory, key);
        const bool conflict = !baseline.hasB() || !baseline.same();
        sets.forEachDifference(true, [&](int field, const QString &caption,
                                         const QString &oldText, const QString &newText) {
            CLibMergeRow row;
            row.key = key;
            row.caption = caption;
            row.oldText = oldText;
            row.newText = newText;
            row.conflict = conflict;
            row.accepted = !conflict;
            row.field = field;
            m_rows.push_back(std::move(row));
        });
    });
}

int CLibraryMerge::ConflictCount() const
{
    return int(std::count_if(m_rows.cbegin(), m_rows.cend(),
                             [](const CLibMergeRow &row) { return row.conflict; }));
}

CMaterialLibrary CLibraryMerge::Apply() const
{
    CMaterialLibrary result = m_user;
    for (const CLibMergeRow &row : m_rows) {
        if (!row.accepted)
            continue;
        const CLibKey &key = row.key;
        switch (row.kind) {
        case ELibMergeKind::NewPower:
            bringPlace(result, m_incoming, key, EPlace::Power);
            break;
        case ELibMergeKind::NewMaterial:
            bringPlace(result, m_incoming, key, EPlace::Material);
            break;
        case ELibMergeKind::NewThickness:
            bringPlace(result, m_incoming, key, EPlace::Thickness);
            break;
        case ELibMergeKind::NewSet:
            bringPlace(result, m_incoming, key, EPlace::Thickness);
            if (const CLibCutSet *cut = m_incoming.FindCutSet(key)) {
                CLibCutSet set = *cut;
                set.key = key;
                result.SetCutSet(set);
            } else if (const CLibSweepSet *sweep = m_incoming.FindSweepSet(key)) {
                CLibSweepSet set = *sweep;
                set.key = key;
                result.SetSweepSet(set);
            } else if (const CLibMarkSet *mark = m_incoming.FindMarkSet(key)) {
                CLibMarkSet set = *mark;
                set.key = key;
                result.SetMarkSet(set);
            }
            break;
        case ELibMergeKind::Field:
            if (CLibCutSet *to = result.FindCutSet(key)) {
                const CLibCutSet *from = m_incoming.FindCutSet(key);
                if (from && row.field >= 0 && size_t(row.field) < CutSetFields().size())
                    CutSetFields()[size_t(row.field)].copy(*to, *from);
            } else if (CLibSweepSet *to = result.FindSweepSet(key)) {
                const CLibSweepSet *from = m_incoming.FindSweepSet(key);
                if (from && row.field >= 0 && size_t(row.field) < SweepSetFields().size())
                    SweepSetFields()[size_t(row.field)].copy(*to, *from);
            } else if (const CLibMarkSet *to = result.FindMarkSet(key)) {
                // A mark set is only read through a const look-up: store a copy.
                if (const CLibMarkSet *from = m_incoming.FindMarkSet(key)) {
                    CLibMarkSet set = *to;
                    set.note = from->note;
                    result.SetMarkSet(set);
                }
            }
            break;
        }
    }
    return result;
}

std::vector<CLibDiffEntry> DiffLibraries(const CMaterialLibrary &a, const CMaterialLibrary &b)
{
    std::vector<CLibDiffEntry> entries;
    walkPlaces(a, b, [&](EPlace place, const CLibKey &key, bool) {
        if (place != EPlace::Set)
            return;
        const SetPair sets(a, b, key);
        if (!sets.hasA() && !sets.hasB())
            return;
        if (!sets.hasA() || !sets.hasB()) {
            entries.push_back({sets.hasA() ? CLibDiffEntry::Removed : CLibDiffEntry::Added, key,
                               QString(), QString(), QString()});
            return;
        }
        sets.forEachDifference(false, [&](int, const QString &caption, const QString &oldText,
                                          const QString &newText) {
            entries.push_back({CLibDiffEntry::Changed, key, caption, oldText, newText});
        });
    });
    return entries;
}
