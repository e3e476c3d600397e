#pragma once
// TFAccount: the payment invoice ("Счет на оплату") for the open estimate. It holds the widgets and
// forwards every edit to the invoice (InvoiceForm, InvoiceData); the services, their switch and the
// VAT follow the invoice's rules, the stored invoice lives in the document (table Account), and the
// output goes through the office engine (InvoiceExport).

#include "InvoiceData.h"
#include "InvoiceExport.h"
#include "InvoiceOpening.h"

#include <QDialog>
#include <QList>

class EstimateDocument;
class InvoiceServicesModel;
class OfficeService;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSpinBox;
class QTableView;
class SettingsStore;
class TFCustomPreview;

class TFAccount : public QDialog {
    Q_OBJECT
public:
    struct Context {
        EstimateDocument *document = nullptr; // with its data module
        SettingsStore *store = nullptr;       // Param: ToggleSwitch1, CheckBoxQR, AccountLongName
        InvoiceOpening::Options options;
        OfficeService *office = nullptr; // the engine session the program's documents share
    };

    TFAccount(const Context &context, QWidget *parent = nullptr);
    ~TFAccount() override;

    const Invoice &invoice() const { return m_invoice; }
    InvoiceExport &output() { return *m_export; }
    TFCustomPreview *preview() const;

    // Handlers.
    void spdSummaClick();
    void spdPodryadNameClick();
    void spdAddUslugClick();
    void spdDelUslugClick();
    void spdClearClick();
    void spdPrintClick();
    void spdPDFClick();
    void spdExcelClick();
    void spdBindClick();

signals:
    // A status line note (what was written where).
    void status(const QString &text);

private:
    void build();
    QWidget *buildInvoiceBox();
    QWidget *buildServicesBox();
    QWidget *buildVatBox();
    QWidget *buildDetailsBox();
    void fillParties();
    void fillSellerList();
    void refresh(bool servicesChanged);
    void showDetails();
    void ComboBoxPodryadChange();
    void ComboBoxZakazChange();
    void edSummaChange(const QString &text);
    void switchesChanged(); // ToggleSwitch1, CheckBoxWork, CheckBoxMat
    void vatChanged();      // CheckBoxNDS, SpinEditNDS, RadioGroupNDS
    void servicesEdited();
    void storeSwitch(const QString &name, bool on);
    // Rebuilds the stored invoice in the document; false (the user told) on failure.
    bool storeInvoice();
    void runOutput(InvoiceExport::Kind kind);
    void reportFailure(const QString &what, const QString &error);

    Context m_context;
    Invoice m_invoice;
    QList<Fields> m_contractors; // the register's contractors, in the list's order
    bool m_longNames = false;
    InvoiceServicesModel *m_model = nullptr;
    InvoiceExport *m_export = nullptr;

    QLineEdit *m_number = nullptr;
    QDateEdit *m_date = nullptr;
    QLineEdit *m_amount = nullptr;
    QLabel *m_words = nullptr;
    QComboBox *m_currency = nullptr;
    QComboBox *m_seller = nullptr;
    QPushButton *m_sellerName = nullptr;
    QCheckBox *m_sellerLegal = nullptr;
    QComboBox *m_buyer = nullptr;
    QCheckBox *m_buyerLegal = nullptr;
    QTableView *m_grid = nullptr;
    QCheckBox *m_oneLine = nullptr;
    QCheckBox *m_works = nullptr;
    QCheckBox *m_materials = nullptr;
    QLineEdit *m_total = nullptr;
    QCheckBox *m_vat = nullptr;
    QSpinBox *m_rate = nullptr;
    QRadioButton *m_vatAdded = nullptr;
    QRadioButton *m_vatIncluded = nullptr;
    QLabel *m_vatAmount = nullptr;
    QList<QLineEdit *> m_details; // in Invoice::details() order
    QCheckBox *m_qr = nullptr;
    QLabel *m_qrNote = nullptr;
};
