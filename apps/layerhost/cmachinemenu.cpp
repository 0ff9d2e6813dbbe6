#include "cmachinemenu.h"

#include "hostwording.h"

#include "idevicesinfo.h"
#include "ilog.h"

#include <QActionGroup>
#include <QEvent>
#include <QInputDialog>

namespace {

// Tube types in code order, as the plug-in numbers them.
const char *const kTubeNames[] = {"Glass", "RF without burning", "RF with burning", "Fiber",
                                  "Semiconductor"};
const char *const kMaxPower = "MaxPower";
const char *const kCardType = "CurrentRdCardType";
const char *const kDualLaser = "IsDualLaser";

int intValue(const CDevicesInfoIns *devices, const char *name)
{
    QVariant value;
    devices->GetValue(QLatin1String(name), value);
    return value.toInt();
}

} // namespace

CMachineMenu::CMachineMenu(CDevicesInfoIns *devices, QWidget *parent)
    : QMenu(parent)
    , m_devices(devices)
{
    setObjectName(QStringLiteral("menu_machine"));

    m_twoLasers = newAction(this, QStringLiteral("action_twoLasers"), true);
    connect(m_twoLasers, &QAction::triggered, this, &CMachineMenu::SigSecondLaserToggled);
    addSeparator();

    m_connected = newAction(this, QStringLiteral("action_machineConnected"), true);
    connect(m_connected, &QAction::triggered, this, [this](bool connected) {
        m_devices->SetStatus(connected ? 0 : 1);
    });

    m_kindMenu = addMenu(QString());
    m_kindMenu->setObjectName(QStringLiteral("menu_machineKind"));
    m_kinds = new QActionGroup(this);
    for (int kind : {1, 2}) {
        QAction *action = newAction(m_kindMenu, QStringLiteral("action_machineKind%1").arg(kind), true);
        action->setData(kind);
        m_kinds->addAction(action);
        connect(action, &QAction::triggered, this, [this, kind] { m_devices->SetMachineKind(kind); });
    }

    m_maxPower = newAction(this, QStringLiteral("action_maxPower"));
    connect(m_maxPower, &QAction::triggered, this, [this] { askInt(kMaxPower, 0, 100000); });
    m_cardType = newAction(this, QStringLiteral("action_rdCardType"));
    connect(m_cardType, &QAction::triggered, this, [this] { askInt(kCardType, 0, 1000); });
    m_dualLaser = newAction(this, QStringLiteral("action_isDualLaser"), true);
    connect(m_dualLaser, &QAction::triggered, this, [this](bool dual) {
        m_devices->SetValue(QLatin1String(kDualLaser), dual);
    });
    addSeparator();
    createLaserMenu(0);
    createLaserMenu(1);

    // Whatever changed the service since, the menu shows what it holds.
    connect(this, &QMenu::aboutToShow, this, &CMachineMenu::Refresh);
    retranslate();
}

QAction *CMachineMenu::newAction(QMenu *menu, const QString &objectName, bool checkable)
{
    auto *action = menu->addAction(QString());
    action->setObjectName(objectName);
    action->setCheckable(checkable);
    connect(action, &QAction::triggered, this, [action] {
        ILog_WriteLogF(0, "%s was triggered.", qPrintable(action->objectName()));
    });
    return action;
}

void CMachineMenu::createLaserMenu(int index)
{
    LaserActions &laser = m_lasers[index];
    const QString prefix = QStringLiteral("action_laser%1").arg(index + 1);
    laser.menu = addMenu(QString());
    laser.menu->setObjectName(QStringLiteral("menu_laser%1").arg(index + 1));
    laser.tubes = new QActionGroup(this);
    for (int tube = 0; tube < int(std::size(kTubeNames)); ++tube) {
        QAction *action = newAction(laser.menu, prefix + QStringLiteral("Tube%1").arg(tube), true);
        action->setData(tube);
        laser.tubes->addAction(action);
        connect(action, &QAction::triggered, this, [this, index, tube] {
            LaserSourceInfo info = m_devices->GetLaser(index);
            info.tubeType = tube;
            m_devices->SetLaser(index, info);
        });
    }
    laser.menu->addSeparator();
    laser.power = newAction(laser.menu, prefix + QStringLiteral("Power"));
    connect(laser.power, &QAction::triggered, this, [this, index] {
        LaserSourceInfo info = m_devices->GetLaser(index);
        bool ok = false;
        const int power = QInputDialog::getInt(parentWidget(), Wording("Laser %1").arg(index + 1),
                                               Wording("Power in watts:"), info.power, 0, 100000,
                                               1, &ok);
        if (!ok)
            return;
        info.power = power;
        m_devices->SetLaser(index, info);
        Refresh();
    });
    laser.present = newAction(laser.menu, prefix + QStringLiteral("Present"), true);
    connect(laser.present, &QAction::triggered, this, [this, index](bool present) {
        if (index == 1) {
            // The second laser is the host's dual-laser switch.
            emit SigSecondLaserToggled(present);
            return;
        }
        LaserSourceInfo info = m_devices->GetLaser(index);
        info.present = present;
        m_devices->SetLaser(index, info);
    });
}

void CMachineMenu::askInt(const char *name, int minimum, int maximum)
{
    bool ok = false;
    const int value = QInputDialog::getInt(parentWidget(), Wording("Machine"),
                                           QLatin1String(name) + QLatin1Char(':'),
                                           intValue(m_devices, name), minimum, maximum, 1, &ok);
    if (!ok)
        return;
    m_devices->SetValue(QLatin1String(name), value);
    Refresh();
}

void CMachineMenu::Refresh()
{
    m_twoLasers->setChecked(m_devices->GetLaser(1).present);
    m_connected->setChecked(m_devices->GetStatus() == 0);
    for (QAction *action : m_kinds->actions())
        action->setChecked(action->data().toInt() == m_devices->GetMachineKind());
    m_maxPower->setText(Wording("MaxPower: %1…").arg(intValue(m_devices, kMaxPower)));
    m_cardType->setText(Wording("CurrentRdCardType: %1…").arg(intValue(m_devices, kCardType)));
    QVariant dual;
    m_devices->GetValue(QLatin1String(kDualLaser), dual);
    m_dualLaser->setChecked(dual.toBool());
    for (int index = 0; index < 2; ++index) {
        const LaserSourceInfo info = m_devices->GetLaser(index);
        for (QAction *action : m_lasers[index].tubes->actions())
            action->setChecked(action->data().toInt() == info.tubeType);
        m_lasers[index].power->setText(Wording("Power: %1 W…").arg(info.power));
        m_lasers[index].present->setChecked(info.present);
    }
}

void CMachineMenu::retranslate()
{
    setTitle(Wording("&Machine"));
    m_twoLasers->setText(Wording("Two lasers"));
    m_twoLasers->setStatusTip(Wording("The machine has two laser sources"));
    m_connected->setText(Wording("Connected"));
    m_connected->setStatusTip(Wording("A machine is connected and its configuration known"));
    m_kindMenu->setTitle(Wording("Machine kind"));
    m_kinds->actions().at(0)->setText(Wording("1: single-source desktop machine"));
    m_kinds->actions().at(1)->setText(Wording("2: controller-card machine"));
    m_dualLaser->setText(Wording(kDualLaser));
    for (int index = 0; index < 2; ++index) {
        const LaserActions &laser = m_lasers[index];
        laser.menu->setTitle(Wording("Laser %1").arg(index + 1));
        const QList<QAction *> tubes = laser.tubes->actions();
        for (int tube = 0; tube < int(tubes.size()); ++tube)
            tubes[tube]->setText(Wording(kTubeNames[tube]));
        laser.present->setText(Wording("Present"));
    }
    Refresh();
}

void CMachineMenu::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QMenu::changeEvent(event);
}
