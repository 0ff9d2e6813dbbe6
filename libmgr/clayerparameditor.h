#pragma once

#include "module/clayerparam.h"

#include <QWidget>

#include <memory>

class CParamFields;
class QAbstractButton;
class QComboBox;
class QLabel;

// What the line and the fill editor share: a scratch layer that holds the
// values on display (both lasers, also the one not shown), the laser choice,
// the parameter lock, read-only switching, saving and translation.
class CLayerParamEditor : public QWidget
{
    Q_OBJECT

public:
    ~CLayerParamEditor() override;

    void SetTubeType(int tube);
    int TubeType() const;
    // Which laser's block is shown; the second only on a two-laser machine.
    void SetFirstLaser(bool first);
    void SetDualLaser(bool dual);
    int CurrentLaser() const { return m_laser; }
    bool IsDualLaser() const { return m_dual; }
    void SetEditable(bool editable);
    bool IsEditable() const { return m_editable; }
    bool IsLocked() const { return m_locked; }

signals:
    // Every user edit of a value; loads stay silent.
    void DataChange();
    // The user asks to keep the shown values as personal parameters.
    void SigSaveUserPar();

protected:
    explicit CLayerParamEditor(QWidget *parent = nullptr);

    // After the form is built: finds the shared widgets, makes the field
    // table in the unit mode of the moment and reads the lock.
    void setUpCommon();
    // After the fields are added: wordings, state and the first values.
    void finishSetUp();

    CParamFields &fields() const { return *m_fields; }
    // The rows both forms have, found by object name and bound to `block`:
    // speed, the two powers (`secondPower` names the lower one's field), air,
    // passes, the laser switch and its timing; then the focus group.
    template <typename Block, typename Speed, typename Passes>
    void addLaserFields(Block CLayerParam::*block, Speed Block::*speed, double speedLimit,
                        const char *secondPower, Passes Block::*passes);
    template <typename Block> void addFocusFields(Block CLayerParam::*block);
    // The values behind the fields; change before finishSetUp only.
    CLayerParam &scratchLayer() { return m_layer; }
    // The scratch layer with the fields on display written into it.
    CLayerParam currentLayer() const;
    void showLayer(const CLayerParam &layer);

    void changeEvent(QEvent *event) override;
    virtual void retranslate() {}

private slots:
    void on_comboBox_laser_activated(int index);
    void on_checkBox_lock_clicked(bool checked);
    void on_pushButton_save_clicked();

private:
    void selectLaser(int laser);
    void applyState();
    void updateLaserTexts();

    std::unique_ptr<CParamFields> m_fields;
    CLayerParam m_layer;
    QComboBox *m_laserCombo = nullptr;
    QLabel *m_tubeLabel = nullptr;
    QAbstractButton *m_laserEnable = nullptr;
    QAbstractButton *m_lock = nullptr;
    QAbstractButton *m_save = nullptr;
    int m_laser = 1;
    bool m_wantFirst = true;
    bool m_dual = false;
    bool m_editable = true;
    bool m_locked = false;
    // -1: the type configured for the shown laser.
    int m_tube = -1;
};
