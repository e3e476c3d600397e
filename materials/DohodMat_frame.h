#pragma once
// TDohodMat, host caption "Доход с продаж материалов": the materials taken from the warehouse into
// estimates (GridDohod: "Наименование", "Ед.изм.", "Кол-во", "Цена", "Сумма", "Дата", "Заказчик",
// "id"), by customer (ComboBoxZakaz), object (ComboBoxObject) and period (DateBegin, DateEnd with the
// button ButtonFilter), with their total. Delete (or ButtonDelete) removes the chosen record after
// "Удалить <name>?".

#include <QDialog>

class QComboBox;
class QDateEdit;
class QLabel;
class QPushButton;
class QTableView;
class SoldReport;

class TDohodMat : public QDialog {
    Q_OBJECT
public:
    TDohodMat(SoldReport &report, QWidget *parent = nullptr);

    // The customer and object to show first (the estimate's, or the cash book's); empty: every
    // write-off. The period starts as the current month.
    void open(const QString &customer, const QString &object, const QDate &today);

    // Handlers.
    void ComboBoxZakazSelect(int index);
    void ComboBoxObjectSelect(int index);
    void ButtonFilterClick();
    void ButtonAllClick();
    void ButtonDeleteClick();

    QComboBox *ComboBoxZakaz = nullptr;
    QComboBox *ComboBoxObject = nullptr;
    QDateEdit *DateBegin = nullptr;
    QDateEdit *DateEnd = nullptr;
    QPushButton *ButtonFilter = nullptr;
    QPushButton *ButtonAll = nullptr;
    QPushButton *ButtonDelete = nullptr;
    QTableView *GridDohod = nullptr;
    QLabel *LabelItogo = nullptr;

private:
    void fillObjects(const QStringList &objects);
    void showTotal();
    void warn(const QString &text);

    SoldReport &m_report;
};
