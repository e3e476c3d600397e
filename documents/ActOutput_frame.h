#pragma once
// TActOutput: what an act made from the main window needs: its number (the customer/object counter, or
// the date with numbering by date), its date, the expected end of the work (КС-2, КС-3), the format
// (XLS or PDF) and the folder. "Создать" accepts.

#include "ActProducer.h"

#include <QDialog>

class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

class TActOutput : public QDialog {
    Q_OBJECT
public:
    // dateNumbering: the number follows the date ("DDMMYYYY-1", or "YYYYMMDD-1" with yearFirst).
    TActOutput(const ActRequest &defaults, bool dateNumbering, bool yearFirst, QWidget *parent = nullptr);

    ActRequest request() const;

    void DateEditChange();
    void spdDirClick();

    QLineEdit *EditNumAkt = nullptr;
    QDateEdit *DateEdit = nullptr;
    QDateEdit *DateKS2End = nullptr;
    QRadioButton *RadioXls = nullptr;
    QRadioButton *RadioPdf = nullptr;
    QLineEdit *EditDir = nullptr;
    QPushButton *spdDir = nullptr;
    QPushButton *btnOk = nullptr;
    QPushButton *btnCancel = nullptr;

    void accept() override;

private:
    ActKind m_kind;
    bool m_dateNumbering;
    bool m_yearFirst;
};
