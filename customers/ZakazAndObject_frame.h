#pragma once
// TZakazAndObject: the register of customers and their objects ("Заказчики и объекты"). The window
// shows the lists and the chosen customer's fields; every operation is done by CustomerRegister.

#include "CustomerRegister.h"
#include "OptionFlags.h"

#include <QWidget>

class QCheckBox;
class QLabel;
class QLineEdit;
class QListView;
class QPlainTextEdit;
class QPushButton;
class QStandardItemModel;
class QToolButton;
class RequisitesForm;
class SettingsStore;
class TModuleSQL;

class TZakazAndObject : public QWidget {
    Q_OBJECT
public:
    // options: the main window's address options (CheckBoxRegion ... CheckBoxDetailAddress); store: the
    // settings store that keeps the ticks of the legal details (may be null).
    TZakazAndObject(TModuleSQL &module, OptionFlags options, SettingsStore *store, QWidget *parent = nullptr);

    // Shows the customer (and its object) as chosen, e.g. the main window's current ones.
    void chooseCustomer(const QString &customer, const QString &object = QString());
    QString chosenCustomer() const;
    QString chosenObject() const;

    // Operations (the controls' handlers).
    void spdAddCustomerClick();
    void spdAddObjectClick();
    void spdEditObjectClick();
    void spdDelObjectClick();
    void spdDelZakazClick();
    void spdClearClick();
    void btnAllObjectClick();
    void spdAddressClick();
    void spdUridDanClick();
    void btnOKClick();
    void ListBoxZakazClick(const QString &customer);
    void ListBoxObjectClick(const QString &object);

    // Components.
    QListView *ListBoxZakaz = nullptr;
    QListView *ListBoxObject = nullptr;
    QToolButton *spdAddCustomer = nullptr;
    QToolButton *spdDelZakaz = nullptr;
    QToolButton *spdClear = nullptr;
    QToolButton *spdAddObject = nullptr;
    QToolButton *spdEditObject = nullptr;
    QToolButton *spdDelObject = nullptr;
    QPushButton *btnAllObject = nullptr;
    QToolButton *spdAddress = nullptr;
    QPushButton *btnOK = nullptr;
    QLineEdit *EditID = nullptr;
    QLineEdit *EditFIO = nullptr;
    QLineEdit *EditEmail = nullptr;
    QLineEdit *EditPhone = nullptr;
    QLineEdit *EditFax = nullptr;
    QLineEdit *EditAdress = nullptr;
    QLineEdit *EditAgent = nullptr;
    QLineEdit *EditRegion = nullptr;
    QLineEdit *EditArea = nullptr;
    QLineEdit *EditCity = nullptr;
    QLineEdit *EditStreet = nullptr;
    QLineEdit *EditHouse = nullptr;
    QLineEdit *EditApartment = nullptr;
    QCheckBox *CheckBoxRegion = nullptr;
    QCheckBox *CheckBoxArea = nullptr;
    QCheckBox *CheckBoxCity = nullptr;
    QCheckBox *CheckBoxStreet = nullptr;
    QCheckBox *CheckBoxHouse = nullptr;
    QCheckBox *CheckBoxApartment = nullptr;
    QCheckBox *CheckBoxDetailAddress = nullptr;
    // The legal details with the spdUridDan button; its OGRN field (EditOKPO) is the customer's okpo.
    RequisitesForm *requisites = nullptr;
    QPlainTextEdit *Memo1 = nullptr;
    QLineEdit *EditNoteObect = nullptr;
    QLabel *LabelObjects = nullptr;

signals:
    // The register changed: the main window rewrites its customer and object lists.
    void registerChanged();

private:
    void build();
    QWidget *buildCustomerPage();
    QWidget *buildAddressPage();
    void reloadCustomers(const QString &select);
    void showObjects(const QString &select);
    void clearFields();
    void addObjectTo(const QString &customer);
    // Tells the user why an operation did nothing; true when it succeeded.
    bool report(RegisterStatus status, const QString &duplicateText);
    Fields customerFields() const;
    CustomerRegister::Address address() const;
    void bindOption(QCheckBox *box, const QString &key);

    CustomerRegister m_register;
    OptionFlags m_options;
    SettingsStore *m_store;
    QStandardItemModel *m_customers;
    QStandardItemModel *m_objects;
    QString m_customer; // the chosen customer as loaded (its name before any edit)
    bool m_allObjects = false;
};
