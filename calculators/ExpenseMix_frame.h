#pragma once
// The mix calculator: the modal dialog "FExpenseMix" ("Расчёт строительных смесей") with the frame
// TExpenseMix: the pages "Базовый" (the grid AdvStringGrid1 over a MixTable) and "Пользователь".
// "В смету" hands the bags of the chosen row to whoever listens (the calculators part puts them into
// the estimate's materials).

#include <QDialog>
#include <QStyledItemDelegate>
#include <QWidget>

class MixTable;
class QPushButton;
class QTableView;
class QTabWidget;

// The editors of the grid: drop-down lists where the table names items, a line edit turning "." into
// "," as it is typed elsewhere. A choice in a list counts the bags at once.
class MixDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
};

class TExpenseMix : public QWidget {
    Q_OBJECT
public:
    explicit TExpenseMix(QWidget *parent = nullptr);
    MixTable *table() const { return m_table; }
    QTableView *grid() const { return m_grid; }
    // The grid's width and height with its header: the dialog is sized to it.
    QSize gridSize() const;

    // "В смету": the chosen row's mix and bags; a row without a count is refused with a message.
    void ButtonToEstimateClick();

signals:
    void addToEstimate(const QString &name, const QString &bags);

private:
    MixTable *m_table;
    QTabWidget *m_pages;
    QTableView *m_grid;
    QPushButton *m_toEstimate;
};

class FExpenseMix : public QDialog {
    Q_OBJECT
public:
    explicit FExpenseMix(QWidget *parent = nullptr);
    TExpenseMix *frame() const { return m_frame; }

private:
    TExpenseMix *m_frame;
};
