#pragma once
// TPackage ("Пакет документов"): the contract, the invoice and the acts of the open estimate made in one
// go into one folder, each with its number, dates and format, and entered in the register. "Создать"
// makes them one after another behind the progress window "Пакет документов", off the window's thread;
// the progress can be cancelled between two documents. The making is PackageRun's; the window holds
// the fields and reports.

#include "PackageJob.h"

#include <QDialog>
#include <QPointer>
#include <QProgressDialog>
#include <functional>

class EstimateDocument;
class OfficeService;
class PackageRun;
class QCheckBox;
class QDateEdit;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

class TPackage : public QDialog {
    Q_OBJECT
public:
    struct Context {
        EstimateDocument *document = nullptr;
        OfficeService *office = nullptr;
        PackageSettings settings;
        PackageNumbering numbering;
        // Before the package is made: the estimate saved (asking the user), its act data and grids
        // written into the working database. False stops (the user was told why).
        std::function<bool()> settle;
    };

    TPackage(const Context &context, const PackageRequest &initial, QWidget *parent = nullptr);

    // The package as the fields give it.
    PackageRequest request() const;
    bool running() const;

    // Handlers.
    void DateEditChange();
    void spdDirClick();
    void btnAllPdfClick();
    void btnCreateClick();

    // Components.
    QDateEdit *DateEdit = nullptr;
    QLineEdit *EditDir = nullptr;
    QPushButton *spdDir = nullptr;
    QGroupBox *GroupContract = nullptr;
    QCheckBox *CheckBoxContract = nullptr;
    QLineEdit *EditNumContract = nullptr;
    QDateEdit *DateContractEnd = nullptr;
    QRadioButton *RadioContractDoc = nullptr;
    QRadioButton *RadioContractPdf = nullptr;
    QGroupBox *GroupAccount = nullptr;
    QCheckBox *CheckBoxAccount = nullptr;
    QLineEdit *EditNumAccount = nullptr;
    QRadioButton *RadioAccountXls = nullptr;
    QRadioButton *RadioAccountPdf = nullptr;
    QGroupBox *GroupAct = nullptr;
    QCheckBox *CheckBoxKS2 = nullptr;
    QCheckBox *CheckBoxKS3 = nullptr;
    QCheckBox *CheckBoxAct = nullptr;
    QDateEdit *DateKS2End = nullptr;
    QLineEdit *EditNumAktWord = nullptr;
    QLineEdit *EditNumAkt = nullptr;
    QRadioButton *RadioActXls = nullptr;
    QRadioButton *RadioActPdf = nullptr;
    QPushButton *btnAllPdf = nullptr;
    QPushButton *btnCreate = nullptr;
    QPushButton *btnCancel = nullptr;
    // While the package is made.
    QProgressDialog *progress() const { return m_progress; }

signals:
    // The package was made (as far as it went): every document with what became of it.
    void packageMade(const QVector<PackageItem> &items);

protected:
    void reject() override;

private:
    QGroupBox *buildContract();
    QGroupBox *buildAccount();
    QGroupBox *buildActs();
    void enableGroups();
    void finished();

    Context m_context;
    QPointer<PackageRun> m_run;
    QPointer<QProgressDialog> m_progress;
};
