#include "layerstream.h"

#include <QIODevice>
#include <QtEndian>

#include <cstring>

namespace {

// Collects the whole stream in memory, sized up front: one write to the
// device instead of sixty small ones per layer.
class StreamWriter
{
public:
    explicit StreamWriter(qint64 size)
        : m_bytes(size, Qt::Uninitialized)
        , m_out(m_bytes.data())
    {
    }
    void int32(qint32 value)
    {
        qToLittleEndian(value, m_out);
        m_out += 4;
    }
    void boolean(bool value) { int32(value ? 1 : 0); }
    void byte(bool value) { *m_out++ = value ? 1 : 0; }
    void real(double value)
    {
        quint64 bits;
        std::memcpy(&bits, &value, sizeof bits);
        qToLittleEndian(bits, m_out);
        m_out += 8;
    }
    const QByteArray &bytes() const
    {
        Q_ASSERT(m_out == m_bytes.constData() + m_bytes.size());
        return m_bytes;
    }

private:
    QByteArray m_bytes;
    char *m_out;
};

// Reads raw little-endian values out of one record's bytes. A value that
// cannot be read whole leaves its target alone. Without bytes it only counts
// what a record of a version takes.
class StreamReader
{
public:
    StreamReader() = default;
    explicit StreamReader(const QByteArray &bytes)
        : m_data(bytes.constData())
        , m_size(bytes.size())
    {
    }
    qint64 counted() const { return m_pos; }

    void int32(qint32 &target)
    {
        char raw[4];
        if (fill(raw, sizeof raw))
            target = qFromLittleEndian<qint32>(raw);
    }
    void uint32(quint32 &target)
    {
        char raw[4];
        if (fill(raw, sizeof raw))
            target = qFromLittleEndian<quint32>(raw);
    }
    void boolean(bool &target)
    {
        char raw[4];
        if (fill(raw, sizeof raw))
            target = qFromLittleEndian<qint32>(raw) != 0;
    }
    void byte(bool &target)
    {
        char raw;
        if (fill(&raw, 1))
            target = raw != 0;
    }
    void real(double &target)
    {
        char raw[8];
        if (fill(raw, sizeof raw)) {
            const quint64 bits = qFromLittleEndian<quint64>(raw);
            std::memcpy(&target, &bits, sizeof target);
        }
    }
    void skip(qint64 bytes)
    {
        char raw[8];
        fill(raw, bytes);
    }

private:
    bool fill(char *raw, qint64 size)
    {
        if (!m_data) {
            m_pos += size;
            return false;
        }
        if (m_pos + size > m_size) {
            m_pos = m_size;
            return false;
        }
        std::memcpy(raw, m_data + m_pos, size_t(size));
        m_pos += size;
        return true;
    }

    const char *m_data = nullptr;
    qint64 m_size = 0;
    qint64 m_pos = 0;
};

void writeLaser(StreamWriter &out, const LaserParam &laser)
{
    out.boolean(laser.ENABLE);
    out.int32(laser.FREQ);
    out.real(laser.POWER_MIN);
    out.real(laser.POWER_MAX);
    out.int32(laser.PULSE_WIDTH);
}

void readLaser(StreamReader &in, LaserParam &laser, qint32 version)
{
    in.boolean(laser.ENABLE);
    in.int32(laser.FREQ);
    in.real(laser.POWER_MIN);
    in.real(laser.POWER_MAX);
    if (version >= 14)
        in.int32(laser.PULSE_WIDTH);
}

void writePen(StreamWriter &out, const PenParam &pen)
{
    out.byte(pen.ENABLE_PEN_UP_DOWN);
    out.byte(pen.ENABLE_PEN_DOWN);
    out.byte(pen.ENABLE_PEN_UP);
    out.real(pen.PEN_DOWN_HRIGHT);
    out.real(pen.PEN_UP_HRIGHT);
}

void readPen(StreamReader &in, PenParam &pen)
{
    in.byte(pen.ENABLE_PEN_UP_DOWN);
    in.byte(pen.ENABLE_PEN_DOWN);
    in.byte(pen.ENABLE_PEN_UP);
    in.real(pen.PEN_DOWN_HRIGHT);
    in.real(pen.PEN_UP_HRIGHT);
}

void readLayer(StreamReader &in, CLayerParam &layer, qint32 version)
{
    in.uint32(layer.COLOR);
    in.int32(layer.WORK_TYPE);
    in.boolean(layer.OUTPUT);
    in.boolean(layer.BLOW);
    if (version >= 5) {
        in.boolean(layer.FILL_LOCKED);
        if (layer.IsLineProcess())
            layer.FILL_LOCKED = false;
    }
    if (version <= 1) {
        // One speed for both processes in the oldest streams.
        double speed = layer.CUT.CUT_SPEED;
        in.real(speed);
        layer.CUT.CUT_SPEED = speed;
        layer.SWEEP.SWEEP_SPEED = speed;
    } else {
        in.real(layer.CUT.CUT_SPEED);
    }
    in.real(layer.CUT.CUT_JOINT_LEN);
    if (version < 3)
        in.skip(8);
    readLaser(in, layer.CUT.LASER1, version);
    readLaser(in, layer.CUT.LASER2, version);
    if (version >= 7) {
        in.boolean(layer.CUT.CUT_BRIDGES);
        in.real(layer.CUT.CUT_BRIDGES_LEN);
        in.real(layer.CUT.CUT_BRIDGES_SPACE);
    }
    if (version >= 2)
        in.real(layer.SWEEP.SWEEP_SPEED);
    in.int32(layer.SWEEP.SWEEP_TYPE);
    if (version >= 10)
        in.int32(layer.SWEEP.SWEEP_VERT_TYPE);
    if (version >= 1 && version <= 5)
        in.skip(4);
    else if (version == 0)
        in.skip(1);
    in.real(layer.SWEEP.SWEEP_INCLINE_LEN);
    if (version >= 9)
        in.byte(layer.SWEEP.SWEEP_IS3DRELIEF);
    in.int32(layer.SWEEP.SWEEP_DPI);
    readLaser(in, layer.SWEEP.LASER1, version);
    readLaser(in, layer.SWEEP.LASER2, version);
    if (version >= 8)
        in.int32(layer.SWEEP.CARVING_NUMBER);
    if (version >= 11) {
        readPen(in, layer.CUT.PEN);
        readPen(in, layer.SWEEP.PEN);
    }
    if (version >= 12) {
        in.byte(layer.CUT.CUT_COMPENSATE_ENABLE);
        in.byte(layer.CUT.CUT_COMPENSATE_OUTWARD);
        in.real(layer.CUT.CUT_COMPENSATE_SIZE);
        // Compensation is switched on per job, never by opening a document.
        layer.CUT.CUT_COMPENSATE_ENABLE = false;
    }
    if (version >= 13)
        in.int32(layer.AUX_INDEX);
}

qint64 recordSize(qint32 version)
{
    CLayerParam scratch;
    StreamReader measure;
    readLayer(measure, scratch, version);
    return measure.counted();
}

} // namespace

void WriteLayerStream(QIODevice *device, const LayerList &layers)
{
    StreamWriter out(8 + qint64(layers.size()) * recordSize(kLayerStreamVersion));
    out.int32(kLayerStreamVersion);
    out.int32(qint32(layers.size()));
    for (const auto &record : layers) {
        const CLayerParam &layer = *record;
        out.int32(qint32(layer.COLOR));
        out.int32(layer.WORK_TYPE);
        out.boolean(layer.OUTPUT);
        out.boolean(layer.BLOW);
        out.boolean(layer.FILL_LOCKED);
        out.real(layer.CUT.CUT_SPEED);
        out.real(layer.CUT.CUT_JOINT_LEN);
        writeLaser(out, layer.CUT.LASER1);
        writeLaser(out, layer.CUT.LASER2);
        out.boolean(layer.CUT.CUT_BRIDGES);
        out.real(layer.CUT.CUT_BRIDGES_LEN);
        out.real(layer.CUT.CUT_BRIDGES_SPACE);
        out.real(layer.SWEEP.SWEEP_SPEED);
        out.int32(layer.SWEEP.SWEEP_TYPE);
        out.int32(layer.SWEEP.SWEEP_VERT_TYPE);
        out.real(layer.SWEEP.SWEEP_INCLINE_LEN);
        out.byte(layer.SWEEP.SWEEP_IS3DRELIEF);
        out.int32(layer.SWEEP.SWEEP_DPI);
        writeLaser(out, layer.SWEEP.LASER1);
        writeLaser(out, layer.SWEEP.LASER2);
        out.int32(layer.SWEEP.CARVING_NUMBER);
        writePen(out, layer.CUT.PEN);
        writePen(out, layer.SWEEP.PEN);
        out.byte(layer.CUT.CUT_COMPENSATE_ENABLE);
        out.byte(layer.CUT.CUT_COMPENSATE_OUTWARD);
        out.real(layer.CUT.CUT_COMPENSATE_SIZE);
        out.int32(layer.AUX_INDEX);
    }
    device->write(out.bytes());
}

void ReadLayerStream(QIODevice *device, LayerList &layers)
{
    // An empty device is an empty document, not a version-0 one.
    qint32 version = kLayerStreamVersion;
    StreamReader(device->read(4)).int32(version);
    qint32 count = 21;
    if (version >= 4) {
        count = 0;
        StreamReader(device->read(4)).int32(count);
    }
    count = qBound(0, count, kMaxStreamLayers);

    // Records have a fixed size per version: read each one whole. Once the
    // device comes up short it is at its end, and every later value keeps its
    // default without asking the device again.
    const qint64 size = recordSize(version);
    bool ended = false;
    layers.reserve(layers.size() + size_t(count));
    for (qint32 i = 0; i < count; ++i) {
        const QByteArray bytes = ended ? QByteArray() : device->read(size);
        ended = ended || bytes.size() < size;
        auto layer = std::make_unique<CLayerParam>();
        StreamReader in(bytes);
        readLayer(in, *layer, version);
        layers.push_back(std::move(layer));
    }
}
