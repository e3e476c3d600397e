#pragma once
// TPodryadList: the contractor's own data ("Данные подрядчика"): names for estimates and for contracts,
// contacts and legal details of each contractor kept. Every operation is done by ContractorRegister.

#include "ContractorRegister.h"
#include "OptionFlags.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class RequisitesForm;
class SettingsStore;
class TModuleSQL;

class TPodryadList : public QWidget {
    Q_OBJECT
public:
    // options: the main window's option PodryadCheckBoxUridDan; store: the settings store (the e-mail and
    // the ticks of the legal details; may be null).
    TPodryadList(TModuleSQL &module, OptionFlags options, SettingsStore *store, QWidget *parent = nullptr);

    // Shows the contractor with this short name (the first one when it is unknown).
    void chooseContractor(const QString &shortName);
    QString shownId() const { return m_id; }

    void btnAddClick();
    void btnOkClick();
    void btnDelRowClick();
    void btnClearClick();
    void spdUridDanClick();
    void ComboBoxPodryadChange(int index);

    QComboBox *ComboBoxPodryad = nullptr;
    QPushButton *btnAdd = nullptr;
    QPushButton *btnDelRow = nullptr;
    QPushButton *btnClear = nullptr;
    QPushButton *btnOk = nullptr;
    QCheckBox *CheckBoxUridDan = nullptr;
    QLineEdit *EditShotName = nullptr;
    QLineEdit *EditLongName = nullptr;
    QLineEdit *EditPhone = nullptr;
    QLineEdit *EditEmail = nullptr;
    QLineEdit *EditAdress = nullptr;
    QLineEdit *EditFax = nullptr;
    RequisitesForm *requisites = nullptr; // the legal details, with the spdUridDan button
    QPlainTextEdit *MemoUridDan = nullptr;

signals:
    // The list of contractors changed: the main window refills its contractor combo.
    void contractorsChanged();

private:
    void build();
    void reload(const QString &selectId);
    void showContractor(const ContractorData &d);
    void markUnsaved();
    void markSaved();
    bool report(RegisterStatus status);
    Fields requisiteFields() const;

    ContractorRegister m_register;
    OptionFlags m_options;
    SettingsStore *m_store;
    QString m_id;
};
