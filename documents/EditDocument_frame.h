#pragma once
// TEditDocument ("Редактирование"): the date, name and, for a document, the status and finish date of
// one register row. The window only shows and returns the values; the register writes them.

#include "estimate/Registration.h"

#include <QDialog>

class QDateEdit;
class QGroupBox;
class QLineEdit;
class QRadioButton;

class TEditDocument : public QDialog {
    Q_OBJECT
public:
    // withStatus: a document (status and finish date); a draft has only date and name.
    explicit TEditDocument(bool withStatus, QWidget *parent = nullptr);

    void setValues(const Registration::Edit &values);
    Registration::Edit values() const;

    void accept() override;

    QDateEdit *DateEdit = nullptr;
    QLineEdit *EditName = nullptr;
    QGroupBox *GroupStatus = nullptr;
    QRadioButton *RadioInWork = nullptr;
    QRadioButton *RadioFinished = nullptr;
    QDateEdit *DateFinish = nullptr;

private:
    bool m_withStatus = false;
};
