// The library reader. One walker reads a document into stages, whatever
// parsed it: Qt's QJsonObject, or the direct reader that goes through the
// bytes once without building a document first. The stages are then filed
// into the library in the order a QJsonObject gives its keys, so both paths
// make the same library of the same document.
#include "libraryreader_p.h"

#include "crunningoptions.h"
#include "librarydocument.h"
#include "librarykeys_p.h"

#include "support/units.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QSet>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace {

using namespace LibraryKeys;

enum ELaserKey {
    K_JumpDelay, K_CornerDelay, K_DwellMode, K_DwellOn, K_StartDwell, K_EndDwell,
    K_StartDwellTime, K_EndDwellTime, K_DwellPower, K_LaserKeys,
};

// Every key the reader acts on. Objects are read by walking their members
// once and dispatching on the key, never by looking keys up one by one.
enum EKey {
    // Keys of the cut and sweep blocks.
    K_Blowing, K_Speed, K_Power, K_TurnPower, K_Frequency1, K_PulseWidth1, K_SealLength,
    K_Bridges, K_BridgesSpace, K_BridgesLength, K_UseGuideLine, K_Power2, K_TurnPower2,
    K_Frequency2, K_PulseWidth2, K_GuideLine, K_PenAction, K_Compensate, K_Note, K_Dpi, K_Mode,
    K_RampLength, K_Is3DRelief, K_OffsetEngraving, K_OffsetType, K_OffsetDistance, K_IsRamp,
    K_MinPower, K_MaxPower, K_CarvingNumber,
    // Per laser: K_Laser + which * K_LaserKeys + the ELaserKey.
    K_Laser,
    K_BlockEnd = K_Laser + 2 * K_LaserKeys,
    // The rest of the document.
    K_Version = K_BlockEnd, K_Type, K_Custom, K_Material, K_Id, K_IconPath, K_IconData,
    K_Thickness, K_GuideType, K_GuideIn, K_GuideInLen, K_GuideOut, K_GuideOutLen, K_PenUpDown,
    K_PenDown, K_PenUp, K_PenDownHeight, K_PenUpHeight, K_UseCompensate, K_CompensateOutward,
    K_CompensateSize,
    // Craft names: K_Craft + the craft.
    K_Craft,
    K_Count = K_Craft + kLibCraftCount,
};

std::vector<std::pair<QLatin1String, int>> namedKeys()
{
    std::vector<std::pair<QLatin1String, int>> keys = {
        {kBlowing, K_Blowing}, {kSpeed, K_Speed}, {kPower, K_Power},
        {kTurnPower, K_TurnPower}, {kFrequency1, K_Frequency1}, {kPulseWidth1, K_PulseWidth1},
        {kSealLength, K_SealLength}, {kBridges, K_Bridges}, {kBridgesSpace, K_BridgesSpace},
        {kBridgesLength, K_BridgesLength}, {kUseGuideLine, K_UseGuideLine},
        {kPower2, K_Power2}, {kTurnPower2, K_TurnPower2}, {kFrequency2, K_Frequency2},
        {kPulseWidth2, K_PulseWidth2}, {kGuideLine, K_GuideLine}, {kPenAction, K_PenAction},
        {kCompensate, K_Compensate}, {kNote, K_Note}, {kDpi, K_Dpi}, {kMode, K_Mode},
        {kRampLength, K_RampLength}, {kIs3DRelief, K_Is3DRelief},
        {kOffsetEngraving, K_OffsetEngraving}, {kOffsetType, K_OffsetType},
        {kOffsetDistance, K_OffsetDistance}, {kIsRamp, K_IsRamp}, {kMinPower, K_MinPower},
        {kMaxPower, K_MaxPower}, {kCarvingNumber, K_CarvingNumber},
        {kVersion, K_Version}, {kType, K_Type}, {kCustom, K_Custom}, {kMaterial, K_Material},
        {kId, K_Id}, {kIconPath, K_IconPath}, {kIconData, K_IconData},
        {kThickness, K_Thickness}, {kGuideType, K_GuideType}, {kGuideIn, K_GuideIn},
        {kGuideInLen, K_GuideInLen}, {kGuideOut, K_GuideOut}, {kGuideOutLen, K_GuideOutLen},
        {kPenUpDown, K_PenUpDown}, {kPenDown, K_PenDown}, {kPenUp, K_PenUp},
        {kPenDownHeight, K_PenDownHeight}, {kPenUpHeight, K_PenUpHeight},
        {kUseCompensate, K_UseCompensate}, {kCompensateOutward, K_CompensateOutward},
        {kCompensateSize, K_CompensateSize},
    };
    for (int which = 0; which < 2; ++which) {
        const LaserKeys &k = kLaserKeys[which];
        const int base = K_Laser + which * K_LaserKeys;
        keys.insert(keys.end(), {{k.jumpDelay, base + K_JumpDelay},
                                 {k.cornerDelay, base + K_CornerDelay},
                                 {k.dwellMode, base + K_DwellMode},
                                 {k.dwellOn, base + K_DwellOn},
                                 {k.startDwell, base + K_StartDwell},
                                 {k.endDwell, base + K_EndDwell},
                                 {k.startDwellTime, base + K_StartDwellTime},
                                 {k.endDwellTime, base + K_EndDwellTime},
                                 {k.dwellPower, base + K_DwellPower}});
    }
    for (quint32 craft = 0; craft < kLibCraftCount; ++craft)
        keys.emplace_back(kCraftKeys[craft], int(K_Craft + craft));
    return keys;
}

// Key to EKey, from a QString or from the bytes of a plain ASCII key.
class KeyTable
{
public:
    KeyTable()
    {
        for (const auto &[name, id] : namedKeys()) {
            m_strings.insert(name, id);
            size_t slot = hash(name.data(), name.size()) % kSlots;
            while (m_slots[slot].second >= 0)
                slot = (slot + 1) % kSlots;
            m_slots[slot] = {std::string_view(name.data(), size_t(name.size())), id};
        }
    }

    int find(const QString &key) const { return m_strings.value(key, -1); }

    int find(const char *data, qsizetype size) const
    {
        const std::string_view key(data, size_t(size));
        for (size_t slot = hash(data, size) % kSlots;; slot = (slot + 1) % kSlots) {
            const auto &[name, id] = m_slots[slot];
            if (id < 0 || name == key)
                return id;
        }
    }

private:
    static constexpr size_t kSlots = 256;

    static size_t hash(const char *data, qsizetype size)
    {
        quint32 h = 2166136261u;
        for (qsizetype i = 0; i < size; ++i)
            h = (h ^ uchar(data[i])) * 16777619u;
        return h;
    }

    QHash<QString, int> m_strings;
    std::array<std::pair<std::string_view, int>, kSlots> m_slots = [] {
        std::array<std::pair<std::string_view, int>, kSlots> empty;
        empty.fill({std::string_view(), -1});
        return empty;
    }();
};

const KeyTable &keyTable()
{
    static const KeyTable table;
    return table;
}

// Known keys met in one object. Only the direct reader can meet one twice.
class SeenKeys
{
public:
    bool first(int id)
    {
        quint64 &word = m_words[id / 64];
        const quint64 bit = quint64(1) << (id % 64);
        if (word & bit)
            return false;
        word |= bit;
        return true;
    }

private:
    quint64 m_words[(K_Count + 63) / 64] = {};
};

// What the document says, before it is filed in key order.
struct ThicknessStage
{
    QString key;
    bool isObject = false;
    std::optional<CLibCutSet> cuts[2];     // Cutting, Tracing
    std::optional<CLibSweepSet> sweeps[2]; // Shallow Carving, Deep Carving
    bool mark = false;
};

struct MaterialStage
{
    QString key;
    bool isObject = false;
    qint64 id = 0;
    QString iconPath;
    QString iconBase64;
    std::vector<ThicknessStage> thicknesses;
};

struct EntryStage
{
    qint32 power = 80;
    bool custom = false;
    std::vector<MaterialStage> materials;
};

struct TubeStage
{
    QString key;
    std::vector<EntryStage> entries;
};

struct DocumentStage
{
    bool hasType = false;
    QJsonValue version = QJsonValue(QJsonValue::Undefined);
    std::vector<TubeStage> tubes;
};

// A positive whole number that fits an int, else 0.
qint64 usableId(const QJsonValue &value)
{
    if (!value.isDouble())
        return 0;
    const double id = value.toDouble();
    if (!(id >= 1.0 && id <= double(std::numeric_limits<qint32>::max())) || id != std::floor(id))
        return 0;
    return qint64(id);
}

// Qt's documents: keys come sorted and unique.
class QtJson
{
public:
    using Key = QString;
    using Value = QJsonValue;
    static constexpr bool kOrderedKeys = true;

    template<typename Fn>
    bool members(const QJsonValue &value, Fn &&fn) const
    {
        const QJsonObject object = value.toObject();
        for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
            QJsonValue member = it.value();
            if (!fn(it.key(), member))
                return false;
        }
        return true;
    }

    template<typename Fn>
    bool elements(const QJsonValue &value, Fn &&fn) const
    {
        const QJsonArray array = value.toArray();
        for (QJsonValue element : array) {
            if (!fn(element))
                return false;
        }
        return true;
    }

    int keyId(const QString &key) const { return keyTable().find(key); }
    QString text(const QString &key) const { return key; }
    const QJsonValue &scalar(const QJsonValue &value) const { return value; }
    QString string(const QJsonValue &value) const { return value.toString(); }
    bool isObject(const QJsonValue &value) const { return value.isObject(); }

    bool isNonEmpty(const QJsonValue &value) const
    {
        switch (value.type()) {
        case QJsonValue::Null:
        case QJsonValue::Undefined:
            return false;
        case QJsonValue::Object:
            return !value.toObject().isEmpty();
        case QJsonValue::Array:
            return !value.toArray().isEmpty();
        case QJsonValue::String:
            return !value.toString().isEmpty();
        default:
            return true;
        }
    }

    bool version(const QJsonValue &value, QJsonValue &out) const
    {
        out = value;
        return true;
    }
};

// The bytes of a document, read once, front to back. Containers are entered
// by the walker when it wants them and skipped (still checked) when not.
// Anything outside plain JSON makes the reader decline, so that what it
// accepts Qt's parser accepts too, with the same values.
class DirectJson
{
public:
    struct Key
    {
        const char *data = nullptr;
        qsizetype size = 0;
        bool ascii = true;
    };

    struct Value
    {
        enum Kind : quint8 { Null, False, True, Integer, Double, String, Object, Array };
        Kind kind = Null;
        bool ascii = true;
        bool entered = false;
        qint64 integer = 0;
        double number = 0.0;
        // A string's content, or where a container starts.
        const char *data = nullptr;
        qsizetype size = 0;
    };

    static constexpr bool kOrderedKeys = false;

    DirectJson(const char *begin, const char *end) : m_p(begin), m_end(end) {}

    bool root(Value &value)
    {
        space();
        if (m_p >= m_end || *m_p != '{')
            return false;
        value.kind = Value::Object;
        value.data = m_p;
        return true;
    }

    bool atEnd()
    {
        space();
        return m_p == m_end;
    }

    template<typename Fn>
    bool members(Value &value, Fn &&fn)
    {
        return items(value, Value::Object, '}', [&] {
            Key key;
            if (*m_p != '"' || !scanString(key.data, key.size, key.ascii))
                return false;
            space();
            if (m_p >= m_end || *m_p != ':')
                return false;
            ++m_p;
            Value member;
            return scanValue(member) && fn(std::as_const(key), member) && finish(member);
        });
    }

    template<typename Fn>
    bool elements(Value &value, Fn &&fn)
    {
        return items(value, Value::Array, ']', [&] {
            Value element;
            return scanValue(element) && fn(element) && finish(element);
        });
    }

    int keyId(const Key &key) const
    {
        return key.ascii ? keyTable().find(key.data, key.size) : -1;
    }

    QString text(const Key &key) const { return decode(key.data, key.size, key.ascii); }

    // The value as Qt's parser gives it, for its conversions; strings and
    // containers only by type.
    QJsonValue scalar(const Value &value) const
    {
        switch (value.kind) {
        case Value::Null: return QJsonValue(QJsonValue::Null);
        case Value::False: return QJsonValue(false);
        case Value::True: return QJsonValue(true);
        case Value::Integer: return QJsonValue(value.integer);
        case Value::Double: return QJsonValue(value.number);
        case Value::String: return QJsonValue(QJsonValue::String);
        case Value::Object: return QJsonValue(QJsonValue::Object);
        case Value::Array: return QJsonValue(QJsonValue::Array);
        }
        return QJsonValue();
    }

    QString string(const Value &value) const
    {
        return value.kind == Value::String ? decode(value.data, value.size, value.ascii)
                                           : QString();
    }

    bool isObject(const Value &value) const { return value.kind == Value::Object; }

    bool isNonEmpty(const Value &value) const
    {
        switch (value.kind) {
        case Value::Null:
            return false;
        case Value::String:
            return value.size > 0;
        case Value::Object:
        case Value::Array: {
            const char *p = value.data + 1;
            while (p < m_end && isSpace(*p))
                ++p;
            return p < m_end && *p != (value.kind == Value::Object ? '}' : ']');
        }
        default:
            return true;
        }
    }

    // Whole numbers, strings, booleans and null; other versions are left to
    // Qt, whose value is written back as it was.
    bool version(const Value &value, QJsonValue &out) const
    {
        switch (value.kind) {
        case Value::Double:
        case Value::Object:
        case Value::Array:
            return false;
        case Value::String:
            out = QJsonValue(string(value));
            return true;
        default:
            out = scalar(value);
            return true;
        }
    }

private:
    // Far deeper than any library; deeper documents are left to Qt's limit.
    static constexpr int kMaxDepth = 64;

    static bool isSpace(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }
    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    static QString decode(const char *data, qsizetype size, bool ascii)
    {
        return ascii ? QString::fromLatin1(data, size) : QString::fromUtf8(data, size);
    }

    void space()
    {
        while (m_p < m_end && isSpace(*m_p))
            ++m_p;
    }

    // The items of an object or an array, `item` reading one of them.
    template<typename Item>
    bool items(Value &value, typename Value::Kind kind, char close, Item &&item)
    {
        if (value.kind != kind)
            return true;
        if (!enter(value))
            return false;
        if (*m_p == close)
            return leaveContainer();
        for (;;) {
            if (!item())
                return false;
            space();
            if (m_p >= m_end)
                return false;
            if (*m_p == close)
                return leaveContainer();
            if (*m_p != ',')
                return false;
            ++m_p;
            space();
            if (m_p >= m_end)
                return false;
        }
    }

    bool enter(Value &value)
    {
        // A container is entered once, right where the walker met it.
        if (value.entered || m_p != value.data || ++m_depth > kMaxDepth)
            return false;
        value.entered = true;
        ++m_p;
        space();
        return m_p < m_end;
    }

    bool leaveContainer()
    {
        ++m_p;
        --m_depth;
        return true;
    }

    // A container the walker did not want is still read through, so that
    // what is declined does not depend on what the walker wanted.
    bool finish(Value &value)
    {
        if (value.entered)
            return true;
        const auto skipMember = [](const Key &, Value &) { return true; };
        const auto skipElement = [](Value &) { return true; };
        if (value.kind == Value::Object)
            return members(value, skipMember);
        if (value.kind == Value::Array)
            return elements(value, skipElement);
        return true;
    }

    bool scanValue(Value &value)
    {
        space();
        if (m_p >= m_end)
            return false;
        switch (*m_p) {
        case '{':
            value.kind = Value::Object;
            value.data = m_p;
            return true;
        case '[':
            value.kind = Value::Array;
            value.data = m_p;
            return true;
        case '"':
            value.kind = Value::String;
            return scanString(value.data, value.size, value.ascii);
        case 't':
            value.kind = Value::True;
            return literal("true");
        case 'f':
            value.kind = Value::False;
            return literal("false");
        case 'n':
            value.kind = Value::Null;
            return literal("null");
        default:
            return scanNumber(value);
        }
    }

    bool literal(std::string_view word)
    {
        if (m_end - m_p < qsizetype(word.size())
            || std::memcmp(m_p, word.data(), word.size()) != 0) {
            return false;
        }
        m_p += word.size();
        return true;
    }

    // Bytes a string's fast loop stops at: the closing quote, escapes,
    // control characters and the start of a multi-byte character.
    static const std::array<bool, 256> &stops()
    {
        static const std::array<bool, 256> table = [] {
            std::array<bool, 256> t{};
            for (int c = 0; c < 256; ++c)
                t[size_t(c)] = c < 0x20 || c == '"' || c == '\\' || c >= 0x80;
            return t;
        }();
        return table;
    }

    bool scanString(const char *&data, qsizetype &size, bool &ascii)
    {
        const std::array<bool, 256> &stop = stops();
        const char *start = ++m_p;
        ascii = true;
        for (;;) {
            while (m_p < m_end && !stop[uchar(*m_p)])
                ++m_p;
            if (m_p >= m_end)
                return false;
            const uchar c = uchar(*m_p);
            if (c == '"')
                break;
            // Escapes and raw control characters are left to Qt.
            if (c < 0x80 || !skipUtf8())
                return false;
            ascii = false;
        }
        data = start;
        size = m_p - start;
        ++m_p;
        return true;
    }

    // One well-formed UTF-8 character; non-characters are left to Qt.
    bool skipUtf8()
    {
        const auto *s = reinterpret_cast<const uchar *>(m_p);
        const uchar lead = s[0];
        int trail = 0;
        char32_t c = 0;
        char32_t least = 0;
        if (lead >= 0xc2 && lead <= 0xdf) {
            trail = 1;
            c = lead & 0x1f;
            least = 0x80;
        } else if (lead >= 0xe0 && lead <= 0xef) {
            trail = 2;
            c = lead & 0x0f;
            least = 0x800;
        } else if (lead >= 0xf0 && lead <= 0xf4) {
            trail = 3;
            c = lead & 0x07;
            least = 0x10000;
        } else {
            return false;
        }
        if (m_end - m_p <= trail)
            return false;
        for (int i = 1; i <= trail; ++i) {
            if ((s[i] & 0xc0) != 0x80)
                return false;
            c = (c << 6) | (s[i] & 0x3f);
        }
        if (c < least || c > 0x10ffff || (c >= 0xd800 && c <= 0xdfff))
            return false;
        if ((c & 0xfffe) == 0xfffe || (c >= 0xfdd0 && c <= 0xfdef))
            return false;
        m_p += trail + 1;
        return true;
    }

    // Whole numbers of up to 18 digits and decimal fractions; exponents and
    // longer numbers are left to Qt.
    bool scanNumber(Value &value)
    {
        static constexpr double kPowersOf10[] = {
            1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
            1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22,
        };
        const char *start = m_p;
        const bool negative = *m_p == '-';
        if (negative)
            ++m_p;
        quint64 mantissa = 0;
        int digits = 0;
        if (m_p < m_end && *m_p == '0') {
            ++m_p;
        } else {
            while (m_p < m_end && isDigit(*m_p)) {
                if (++digits > 18)
                    return false;
                mantissa = mantissa * 10 + quint64(*m_p++ - '0');
            }
            if (digits == 0)
                return false;
        }
        if (m_p < m_end && (*m_p == 'e' || *m_p == 'E'))
            return false;
        if (m_p >= m_end || *m_p != '.') {
            value.kind = Value::Integer;
            value.integer = negative ? -qint64(mantissa) : qint64(mantissa);
            return true;
        }
        ++m_p;
        int fraction = 0;
        bool exact = true;
        while (m_p < m_end && isDigit(*m_p)) {
            if (digits + fraction < 19)
                mantissa = mantissa * 10 + quint64(*m_p - '0');
            else
                exact = false;
            if (++fraction > 64)
                return false;
            ++m_p;
        }
        if (fraction == 0 || (m_p < m_end && (*m_p == 'e' || *m_p == 'E')))
            return false;
        double number = 0.0;
        // Both exact in a double: the quotient is correctly rounded.
        if (exact && mantissa <= (quint64(1) << 53) && fraction <= 22) {
            number = double(mantissa) / kPowersOf10[fraction];
            if (negative)
                number = -number;
        } else {
            const auto result = std::from_chars(start, m_p, number);
            if (result.ec != std::errc() || result.ptr != m_p || !std::isfinite(number))
                return false;
        }
        value.kind = Value::Double;
        value.number = number;
        return true;
    }

    const char *m_p;
    const char *m_end;
    int m_depth = 0;
};

// Keys of the direct reader come in file order: sorted here as a
// QJsonObject sorts them. Keys outside the Basic Multilingual Plane, whose
// order differs between UTF-8 and UTF-16, and duplicates are declined.
template<typename Stage>
bool sortByKey(std::vector<Stage> &stages)
{
    for (const Stage &stage : stages) {
        for (QChar c : stage.key) {
            if (c.isSurrogate())
                return false;
        }
    }
    const auto less = [](const Stage &a, const Stage &b) { return a.key < b.key; };
    const auto notLess = [&less](const Stage &a, const Stage &b) { return !less(a, b); };
    if (std::adjacent_find(stages.begin(), stages.end(), notLess) == stages.end())
        return true;
    std::sort(stages.begin(), stages.end(), less);
    return std::adjacent_find(stages.begin(), stages.end(), notLess) == stages.end();
}

template<typename J>
class StageReader
{
public:
    using Key = typename J::Key;
    using Value = typename J::Value;

    explicit StageReader(J &json) : j(json) {}

    // False when the direct reader declines the document.
    bool document(Value &root, DocumentStage &doc)
    {
        return knownMembers(root, K_Version, K_Type, [&](int id, Value &v) {
            if (id == K_Version)
                return j.version(v, doc.version);
            doc.hasType = j.isObject(v);
            return tubes(v, doc.tubes);
        });
    }

private:
    template<typename Stage>
    bool ordered(std::vector<Stage> &stages)
    {
        if constexpr (J::kOrderedKeys)
            return true;
        else
            return sortByKey(stages);
    }

    // Members whose keys fall in [first, last], each read once: a key met
    // twice makes the direct reader decline.
    template<typename Fn>
    bool knownMembers(Value &v, int first, int last, Fn &&fn)
    {
        SeenKeys seen;
        return j.members(v, [&](const Key &key, Value &x) {
            const int id = j.keyId(key);
            if (id < first || id > last)
                return true;
            return seen.first(id) && fn(id, x);
        });
    }

    // Members filed in key order: each staged under its key, objects read
    // by `read`.
    template<typename Stage, typename Read>
    bool keyedMembers(Value &v, std::vector<Stage> &out, Read &&read)
    {
        const bool ok = j.members(v, [&](const Key &key, Value &x) {
            Stage stage;
            stage.key = j.text(key);
            stage.isObject = j.isObject(x);
            const bool done = !stage.isObject || read(x, stage);
            out.push_back(std::move(stage));
            return done;
        });
        return ok && ordered(out);
    }

    bool tubes(Value &v, std::vector<TubeStage> &out)
    {
        const bool ok = j.members(v, [&](const Key &key, Value &entries) {
            TubeStage tube;
            tube.key = j.text(key);
            const bool read = j.elements(entries, [&](Value &e) {
                if (!j.isObject(e))
                    return true;
                tube.entries.emplace_back();
                return entry(e, tube.entries.back());
            });
            out.push_back(std::move(tube));
            return read;
        });
        return ok && ordered(out);
    }

    bool entry(Value &v, EntryStage &e)
    {
        // "Power" is a block key too: the keys between it and "Material" are
        // passed over.
        return knownMembers(v, K_Power, K_Material, [&](int id, Value &x) {
            switch (id) {
            case K_Power: e.power = j.scalar(x).toInt(80); return true;
            case K_Custom: e.custom = j.scalar(x).toBool(false); return true;
            case K_Material:
                return keyedMembers(x, e.materials, [this](Value &m, MaterialStage &stage) {
                    return material(m, stage);
                });
            default: return true;
            }
        });
    }

    bool material(Value &v, MaterialStage &m)
    {
        return knownMembers(v, K_Id, K_Thickness, [&](int id, Value &x) {
            switch (id) {
            case K_Id: m.id = usableId(j.scalar(x)); return true;
            case K_IconPath: m.iconPath = j.string(x); return true;
            case K_IconData: m.iconBase64 = j.string(x); return true;
            default:
                return keyedMembers(x, m.thicknesses, [this](Value &t, ThicknessStage &stage) {
                    return crafts(t, stage);
                });
            }
        });
    }

    bool crafts(Value &v, ThicknessStage &t)
    {
        return knownMembers(v, K_Craft, K_Count - 1, [&](int id, Value &x) {
            const quint32 craft = quint32(id - K_Craft);
            if (craft == LIB_CRAFT_MARK) {
                t.mark = j.isNonEmpty(x);
                return true;
            }
            if (!j.isObject(x))
                return true;
            if (IsCutCraft(craft)) {
                CLibCutSet set;
                set.key.craft = craft;
                const bool read = cut(x, set, craft == LIB_CRAFT_CUTTING);
                t.cuts[craft == LIB_CRAFT_CUTTING ? 0 : 1] = std::move(set);
                return read;
            }
            CLibSweepSet set;
            set.key.craft = craft;
            const bool read = sweep(x, set, craft == LIB_CRAFT_DEEP);
            t.sweeps[craft == LIB_CRAFT_SHALLOW ? 0 : 1] = std::move(set);
            return read;
        });
    }

    // Delays of either block, dwell of cut blocks. False when the key is none.
    bool laserMember(int id, const Value &v, CLibLaser *lasers, bool dwell)
    {
        if (id < K_Laser || id >= K_BlockEnd)
            return false;
        CLibLaser &laser = lasers[(id - K_Laser) / K_LaserKeys];
        decltype(auto) s = j.scalar(v);
        switch ((id - K_Laser) % K_LaserKeys) {
        case K_JumpDelay: laser.jumpDelay = s.toInt(0); return true;
        case K_CornerDelay: laser.cornerDelay = s.toInt(0); return true;
        default: break;
        }
        if (!dwell)
            return true;
        switch ((id - K_Laser) % K_LaserKeys) {
        case K_DwellMode: laser.dwellMode = s.toBool(false); break;
        case K_DwellOn: laser.dwellOn = s.toBool(false); break;
        case K_StartDwell: laser.startDwell = s.toBool(false); break;
        case K_EndDwell: laser.endDwell = s.toBool(false); break;
        case K_StartDwellTime: laser.startDwellTime = s.toInt(0); break;
        case K_EndDwellTime: laser.endDwellTime = s.toInt(0); break;
        case K_DwellPower: laser.dwellPower = s.toDouble(0.0); break;
        default: break;
        }
        return true;
    }

    // The members both kinds of block have; `own` reads the others.
    template<typename Set, typename Own>
    bool block(Value &v, Set &set, bool dwell, Own &&own)
    {
        CLibLaser lasers[2] = {set.laser1, set.laser2};
        const bool ok = knownMembers(v, 0, K_BlockEnd - 1, [&](int id, Value &x) {
            if (laserMember(id, x, lasers, dwell))
                return true;
            decltype(auto) s = j.scalar(x);
            switch (id) {
            case K_Blowing: set.blowing = s.toBool(false); return true;
            case K_Power: lasers[0].power = s.toDouble(0.0); return true;
            case K_Frequency1: lasers[0].frequency = TruncateToInt(s.toDouble(4000.0)); return true;
            case K_PulseWidth1: lasers[0].pulseWidth = TruncateToInt(s.toDouble(500.0)); return true;
            case K_Power2: lasers[1].power = s.toDouble(20.0); return true;
            case K_Frequency2: lasers[1].frequency = TruncateToInt(s.toDouble(4000.0)); return true;
            case K_PulseWidth2: lasers[1].pulseWidth = TruncateToInt(s.toDouble(500.0)); return true;
            case K_PenAction: return pen(x, set.pen);
            case K_Note: set.note = j.string(x); return true;
            default: return own(id, x, static_cast<const QJsonValue &>(s), lasers);
            }
        });
        set.laser1 = lasers[0];
        set.laser2 = lasers[1];
        return ok;
    }

    bool cut(Value &v, CLibCutSet &set, bool cutting)
    {
        return block(v, set, true, [&](int id, Value &x, const QJsonValue &s, CLibLaser *lasers) {
            switch (id) {
            // Whole numbers only: 12.5 reads as 0, as it always has.
            case K_Speed: set.speed = s.toInt(0); return true;
            case K_TurnPower: lasers[0].turnPower = s.toDouble(0.0); return true;
            case K_SealLength: set.sealLength = s.toInt(0); return true;
            case K_TurnPower2: lasers[1].turnPower = s.toDouble(20.0); return true;
            default: break;
            }
            if (!cutting)
                return true;
            // Read for "Cutting" only; a "Tracing" block keeps the defaults.
            switch (id) {
            case K_Bridges: set.bridges = s.toBool(false); return true;
            case K_BridgesSpace: set.bridgesSpace = s.toDouble(0.0); return true;
            case K_BridgesLength: set.bridgesLength = s.toDouble(0.0); return true;
            case K_UseGuideLine: set.useGuideLine = s.toBool(false); return true;
            case K_GuideLine: return guide(x, set);
            case K_Compensate: return compensate(x, set);
            default: return true;
            }
        });
    }

    bool sweep(Value &v, CLibSweepSet &set, bool deep)
    {
        return block(v, set, false, [&](int id, Value &x, const QJsonValue &s, CLibLaser *) {
            switch (id) {
            case K_Speed: set.speed = s.toDouble(0.0); return true;
            case K_Dpi: set.dpi = s.toInt(0); return true;
            // Written as a number, read by name: a number reads as 0.
            case K_Mode: set.mode = SweepModeIndex(j.string(x)); return true;
            case K_RampLength: set.rampLength = s.toDouble(0.0); return true;
            case K_Is3DRelief: set.is3DRelief = s.toBool(false); return true;
            case K_OffsetEngraving: set.offsetEngraving = s.toBool(false); return true;
            case K_OffsetType: set.offsetType = s.toInt(0); return true;
            case K_OffsetDistance: set.offsetDistance = s.toDouble(0.1); return true;
            default: break;
            }
            if (!deep)
                return true;
            switch (id) {
            case K_IsRamp: set.isRamp = s.toBool(false); return true;
            case K_MinPower: set.minPower = s.toDouble(0.0); return true;
            case K_MaxPower: set.maxPower = s.toDouble(0.0); return true;
            case K_CarvingNumber: set.carvingNumber = s.toInt(0); return true;
            default: return true;
            }
        });
    }

    // The nested objects: present but not an object, they give all defaults.
    bool pen(Value &v, CLibPen &pen)
    {
        pen = CLibPen();
        return knownMembers(v, K_PenUpDown, K_PenUpHeight, [&](int id, Value &x) {
            decltype(auto) s = j.scalar(x);
            switch (id) {
            case K_PenUpDown: pen.enableUpDown = s.toBool(false); break;
            case K_PenDown: pen.enableDown = s.toBool(true); break;
            case K_PenUp: pen.enableUp = s.toBool(true); break;
            case K_PenDownHeight: pen.downHeight = s.toDouble(3.0); break;
            default: pen.upHeight = s.toDouble(3.0); break;
            }
            return true;
        });
    }

    bool guide(Value &v, CLibCutSet &set)
    {
        set.guideType = 0;
        set.guideIn = 0;
        set.guideInLen = 0.0;
        set.guideOut = 0;
        set.guideOutLen = 0.0;
        return knownMembers(v, K_GuideType, K_GuideOutLen, [&](int id, Value &x) {
            decltype(auto) s = j.scalar(x);
            switch (id) {
            case K_GuideType: set.guideType = s.toInt(0); break;
            case K_GuideIn: set.guideIn = s.toInt(0); break;
            case K_GuideInLen: set.guideInLen = s.toDouble(0.0); break;
            case K_GuideOut: set.guideOut = s.toInt(0); break;
            default: set.guideOutLen = s.toDouble(0.0); break;
            }
            return true;
        });
    }

    bool compensate(Value &v, CLibCutSet &set)
    {
        set.useCompensate = false;
        set.compensateOutward = true;
        set.compensateSize = 0.25;
        return knownMembers(v, K_UseCompensate, K_CompensateSize, [&](int id, Value &x) {
            decltype(auto) s = j.scalar(x);
            switch (id) {
            case K_UseCompensate: set.useCompensate = s.toBool(false); break;
            case K_CompensateOutward: set.compensateOutward = s.toBool(true); break;
            default: set.compensateSize = s.toDouble(0.25); break;
            }
            return true;
        });
    }

    J &j;
};

void fileSets(ThicknessStage &t, CLibKey key, CMaterialLibrary &library)
{
    for (std::optional<CLibCutSet> &set : t.cuts) {
        if (!set)
            continue;
        key.craft = set->key.craft;
        set->key = key;
        library.InsertCutSetIfAbsent(*set);
    }
    for (std::optional<CLibSweepSet> &set : t.sweeps) {
        if (!set)
            continue;
        key.craft = set->key.craft;
        set->key = key;
        library.InsertSweepSetIfAbsent(*set);
    }
    if (t.mark) {
        key.craft = LIB_CRAFT_MARK;
        library.InsertMarkSetIfAbsent({key, QString()});
    }
}

void fileMaterials(std::vector<MaterialStage> &stages, quint32 tube, qint32 power,
                   std::vector<CLibMaterial> &run, QSet<QString> &names,
                   CMaterialLibrary &library)
{
    std::vector<MaterialStage *> pending;
    pending.reserve(stages.size());
    for (MaterialStage &m : stages) {
        if (m.isObject)
            pending.push_back(&m);
    }
    // Ascending id; ties and materials without one keep the key order.
    std::stable_sort(pending.begin(), pending.end(),
                     [](const MaterialStage *a, const MaterialStage *b) {
                         if ((a->id == 0) != (b->id == 0))
                             return b->id == 0;
                         return a->id < b->id;
                     });

    for (MaterialStage *p : pending) {
        // A second material of the same name under the same tube and power
        // (a duplicated power entry) gives way to the first.
        if (names.contains(p->key))
            continue;
        names.insert(p->key);
        CLibMaterial material;
        material.name = p->key;
        material.tube = tube;
        material.power = power;
        material.iconPath = std::move(p->iconPath);
        material.iconBase64 = std::move(p->iconBase64);

        std::set<double> seen;
        for (ThicknessStage &t : p->thicknesses) {
            bool ok = false;
            const double thickness = t.key.toDouble(&ok);
            if (!ok || !std::isfinite(thickness))
                continue;
            const auto near = seen.lower_bound(thickness - kThicknessTolerance);
            if (near == seen.end() || *near > thickness + kThicknessTolerance) {
                seen.insert(thickness);
                material.thicknesses.push_back(thickness);
            }
            if (t.isObject)
                fileSets(t, {tube, power, p->key, thickness, 0}, library);
        }
        run.push_back(std::move(material));
    }
}

bool fileDocument(DocumentStage &doc, CMaterialLibrary &library)
{
    library.Clear();
    if (!doc.hasType)
        return false;
    library.SetVersion(doc.version.isUndefined() ? QJsonValue(0) : doc.version);

    // Materials are gathered per tube/power pair so that each pair's run
    // stays together even when a file names the same pair twice.
    std::vector<std::vector<CLibMaterial>> runs;
    QHash<quint64, size_t> runOf;
    QHash<quint64, QSet<QString>> namesOf;
    for (TubeStage &t : doc.tubes) {
        const quint32 tube = TubeTypeIndex(t.key);
        library.AddTube(tube);
        for (EntryStage &entry : t.entries) {
            const quint64 pair = (quint64(tube) << 32) | quint32(entry.power);
            auto found = runOf.constFind(pair);
            if (found == runOf.cend()) {
                library.AppendTubePower(tube, entry.power, entry.custom);
                found = runOf.insert(pair, runs.size());
                runs.emplace_back();
            }
            fileMaterials(entry.materials, tube, entry.power, runs[*found], namesOf[pair],
                          library);
        }
    }

    size_t total = 0;
    for (const auto &run : runs)
        total += run.size();
    std::vector<CLibMaterial> materials;
    materials.reserve(total);
    for (auto &run : runs) {
        for (CLibMaterial &material : run)
            materials.push_back(std::move(material));
    }
    library.AdoptMaterials(std::move(materials));
    return true;
}

} // namespace

bool ReadMaterialLibrary(const QJsonObject &root, CMaterialLibrary &library)
{
    QtJson json;
    StageReader<QtJson> reader(json);
    QJsonValue value(root);
    DocumentStage doc;
    reader.document(value, doc);
    return fileDocument(doc, library);
}

bool ReadMaterialLibraryDirect(const QByteArray &bytes, CMaterialLibrary &library)
{
    library.Clear();
    DirectJson json(bytes.constData(), bytes.constData() + bytes.size());
    StageReader<DirectJson> reader(json);
    DirectJson::Value root;
    DocumentStage doc;
    if (!json.root(root) || !reader.document(root, doc) || !json.atEnd() || !doc.hasType)
        return false;
    return fileDocument(doc, library);
}
