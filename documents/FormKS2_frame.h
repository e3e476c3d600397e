#pragma once
// TFormKS2: the act data of the open estimate (parties, site, contract, reporting period, signatories),
// kept in the document's table ks2, and the page "Объёмы акта" of the acts by completed volumes.
// Entering reads every field from the document; leaving writes every field back (and the quantities
// typed for the next act). The window leaves when it closes and whenever the user turns to another
// window, so that an act made or a document saved meanwhile finds the fields current.

#include <QMap>
#include <QWidget>

class ActVolumesModel;
class ActVolumesPage;
class EstimateDocument;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTabWidget;
class SettingsStore;

class TFormKS2 : public QWidget {
    Q_OBJECT
public:
    // store: the settings store (the contractor's e-mail); may be null.
    TFormKS2(EstimateDocument &document, SettingsStore *store, QWidget *parent = nullptr);

    // FormEnter: every field from ks2 (a document without it gets the defaults), the lists of customers,
    // objects and contractors, the volumes.
    void enter();
    // FormExit: every field into ks2 in the form's order, the typed volumes into the document; the
    // document counts as changed when a value changed. False with the user told why when the document
    // could not be written.
    bool leave();
    // The values as the fields hold them now, by field name.
    QMap<QString, QString> values() const;
    // Reads the registers' lists again (a customer or contractor was added or renamed).
    void reloadLists();
    // Rebuilds the volumes from the estimate (its rows may have changed), keeping what was typed.
    void refreshVolumes();

    // Handlers.
    void ComboBoxZakazChange();   // ReadBaseZakaz
    void ComboBoxPodryadChange(); // ReadBaseContractor
    void spdSdalClick();          // "Записать имя подрядчика"
    void spdPrinalClick();        // "Записать имя заказчика"
    void RadioButton1Click();     // which signatories row is shown
    void EditSumSmetChange();

    QTabWidget *PageControl = nullptr;
    QComboBox *ComboBoxZakaz = nullptr;
    QLineEdit *ZEditAddress = nullptr;
    QLineEdit *ZEditPhone = nullptr;
    QLineEdit *ZEditFax = nullptr;
    QComboBox *ComboBoxPodryad = nullptr;
    QLineEdit *PEditAddress = nullptr;
    QLineEdit *PEditPhone = nullptr;
    QLineEdit *PEditFax = nullptr;
    QComboBox *ComboBoxTypeWork = nullptr;
    QLineEdit *EditNameWork = nullptr;
    QLineEdit *AddressWork = nullptr;
    QComboBox *ComboBoxObject = nullptr;
    QLineEdit *EditNumDoc = nullptr;
    QDateEdit *DateEditContract = nullptr;
    QLineEdit *EditSumSmet = nullptr;
    QLineEdit *EditSummaWord = nullptr; // shows the field SummaWord
    QLineEdit *EditSdal = nullptr;
    QComboBox *EditDolSdal = nullptr;
    QLineEdit *EditPrinal = nullptr;
    QComboBox *EditDolPrinal = nullptr;
    QLineEdit *EditNumKv = nullptr;
    QDateEdit *DateEditPeriodS = nullptr;
    QDateEdit *DateEditPeriodPo = nullptr;
    QRadioButton *RadioButton1 = nullptr; // "Организации"
    QRadioButton *RadioButton2 = nullptr; // "Собственники"
    QPushButton *btnZakazAndObject = nullptr;
    QPushButton *btnPodryad = nullptr;
    QPushButton *btnWriteSdal = nullptr;
    QPushButton *btnWritePrinal = nullptr;
    QWidget *RowOrganizations = nullptr;   // the signatories' positions
    QWidget *RowOwners = nullptr;          // the apartment number
    ActVolumesPage *VolumesPage = nullptr; // the page "Объёмы акта"
    QPushButton *btnClose = nullptr;

    ActVolumesModel &volumes();

signals:
    // "Заказчики и объекты", "Данные подрядчика": the registers' windows.
    void customersRequested(const QString &customer, const QString &object);
    void contractorsRequested(const QString &shortName);

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void build();
    QWidget *buildDataPage();
    void showValues(const QMap<QString, QString> &values);
    void fillObjects(const QString &customer);

    EstimateDocument &m_doc;
    SettingsStore *m_store;
    QMap<QString, QString> m_read; // the fields as entering found them
    bool m_entered = false;
    bool m_showing = false; // fields are being set: no lookups
    bool m_leaving = false; // a message of leave() takes the focus: no second leave
};
