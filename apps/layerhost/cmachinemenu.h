#pragma once

#include <QMenu>

class CDevicesInfoIns;
class QActionGroup;

// The Machine menu: what the host's device service tells the plug-in about
// the connected machine, set by hand. Every change goes straight into the
// service; Refresh() shows what the service holds.
class CMachineMenu : public QMenu
{
    Q_OBJECT

public:
    CMachineMenu(CDevicesInfoIns *devices, QWidget *parent = nullptr);

    void Refresh();

signals:
    // The second laser was switched on or off: the host's dual-laser flag.
    void SigSecondLaserToggled(bool present);

protected:
    void changeEvent(QEvent *event) override;

private:
    struct LaserActions
    {
        QMenu *menu = nullptr;
        QActionGroup *tubes = nullptr;
        QAction *power = nullptr;
        QAction *present = nullptr;
    };

    QAction *newAction(QMenu *menu, const QString &objectName, bool checkable = false);
    void createLaserMenu(int index);
    void askInt(const char *name, int minimum, int maximum);
    void retranslate();

    CDevicesInfoIns *m_devices;
    QAction *m_twoLasers = nullptr;
    QAction *m_connected = nullptr;
    QActionGroup *m_kinds = nullptr;
    QAction *m_maxPower = nullptr;
    QAction *m_cardType = nullptr;
    QAction *m_dualLaser = nullptr;
    QMenu *m_kindMenu = nullptr;
    LaserActions m_lasers[2];
};
