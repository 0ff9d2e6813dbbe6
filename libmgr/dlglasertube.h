#pragma once

#include "support/basedialog.h"

#include <memory>

namespace Ui {
class DlgLaserTube;
}
class CLibraryStore;

// Chooses the laser source type and rated power the library shows, and
// keeps the list of powers per type: powers the user added can be deleted.
class DlgLaserTube : public BaseDialog
{
    Q_OBJECT

public:
    // Item data of the two combo boxes: values only, never pointers into the
    // library, whose lists move when a power is added.
    enum EITEM_ROLE {
        ROLE_POWER = Qt::UserRole,
        ROLE_TUBE = Qt::UserRole + 1,      // on tube items: the library's type, when it has one
        ROLE_DELETABLE = Qt::UserRole + 1, // on power items
    };

    // The store is not owned and must outlive the dialog.
    explicit DlgLaserTube(CLibraryStore *store, QWidget *parent = nullptr);
    ~DlgLaserTube() override;

    void SetPower(int power);
    void SetType(int type);
    int GetPower() const { return m_power; }
    int GetType() const { return m_type; }

protected:
    void changeEvent(QEvent *event) override;

private slots:
    void on_comboBox_tube_currentIndexChanged(int index);
    void on_comboBox_power_currentIndexChanged(int index);
    void on_pushButton_add_clicked();
    void on_pushButton_del_clicked();
    void on_pushButton_addTubePower_clicked();
    void on_pushButton_ok_clicked();

private:
    void retranslate();
    void fillTubes();
    void fillPowers(int wantedPower);
    void powerChanged(int index);
    void updateDeleteButton();
    // The library's type of the selected tube item; -1 when it has none.
    int selectedTubeType() const;
    int rfType() const;

    std::unique_ptr<Ui::DlgLaserTube> ui;
    CLibraryStore *m_store = nullptr;
    int m_power = 0;
    int m_type = 0;
};
