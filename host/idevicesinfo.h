#pragma once

#include "hostsdk_global.h"

#include <QHash>
#include <QString>
#include <QVariant>

// What the host knows of the connected machine.
struct LaserSourceInfo
{
    int tubeType = 0;  // ELASER_TUBE code
    int power = 80;    // rated power in watts
    bool present = false;
};

class HOSTSDK_EXPORT IDevicesInfo
{
public:
    virtual ~IDevicesInfo();

    // 0 when a machine is connected and its configuration known.
    virtual int GetStatus() const = 0;
    // Machine kind: 1 a single-source desktop machine, 2 a controller-card
    // machine; others are the host's.
    virtual int GetMachineKind() const = 0;
    // Named values such as "MaxPower", "CurrentRdCardType", "IsDualLaser".
    // False when the name is unknown; value is then left alone.
    virtual bool GetValue(const QString &name, QVariant &value) const = 0;
    // Laser source index 0 is the first.
    virtual int GetLaserCount() const = 0;
    virtual LaserSourceInfo GetLaser(int index) const = 0;
};

// A device service whose answers are set by hand: the demo host's machine
// and the tests' one.
class HOSTSDK_EXPORT CDevicesInfoIns : public IDevicesInfo
{
public:
    int GetStatus() const override { return m_status; }
    int GetMachineKind() const override { return m_machineKind; }
    bool GetValue(const QString &name, QVariant &value) const override;
    int GetLaserCount() const override { return 2; }
    LaserSourceInfo GetLaser(int index) const override;

    void SetStatus(int status) { m_status = status; }
    void SetMachineKind(int kind) { m_machineKind = kind; }
    void SetValue(const QString &name, const QVariant &value) { m_values.insert(name, value); }
    void SetLaser(int index, const LaserSourceInfo &info);

private:
    int m_status = 1;
    int m_machineKind = 0;
    QHash<QString, QVariant> m_values;
    LaserSourceInfo m_lasers[2] = {{0, 80, true}, {0, 80, false}};
};
