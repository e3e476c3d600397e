#pragma once
// TCalcDocKolvo, host caption "Найдено совпадение": a rate that already stands in the section. Shows
// the row's position number and name; the user changes its quantity, or adds to it.

#include <QDialog>

class QLabel;
class QLineEdit;

class TCalcDocKolvo : public QDialog {
    Q_OBJECT
public:
    TCalcDocKolvo(const QString &number, const QString &name, const QString &quantity,
                  QWidget *parent = nullptr);

    // The accepted quantity: the quantity field plus the added field.
    QString quantity() const { return m_result; }

    QLineEdit *EditNumber = nullptr;   // position number (read only)
    QLineEdit *EditName = nullptr;     // name (read only)
    QLineEdit *EditKolvo = nullptr;    // the row's quantity
    QLineEdit *EditKolvoAdd = nullptr; // quantity to add
    QLabel *LabelProblem = nullptr;
    QLabel *LabelPrompt = nullptr; // what was found (the materials' dialog says it of a material)

    void accept() override;

private:
    QString m_result;
};
