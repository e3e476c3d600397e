#include "GridFind.h"

#include "ui/Dialogs.h"

#include <QTableView>

void goToGridRow(QTableView *grid, int row) {
    if (row < 0 || row >= grid->model()->rowCount())
        return;
    const QModelIndex cell = grid->model()->index(row, 0);
    grid->setCurrentIndex(cell);
    grid->scrollTo(cell, QAbstractItemView::PositionAtCenter);
}

void goToFirstRow(QTableView *grid) {
    goToGridRow(grid, 0);
}

void goToLastRow(QTableView *grid) {
    goToGridRow(grid, grid->model()->rowCount() - 1);
}

void findInGrid(QTableView *grid) {
    QString text;
    if (!dialogs().input(QStringLiteral("Поиск"), QStringLiteral("Найти материал:"), &text) ||
        text.trimmed().isEmpty())
        return;
    const QString word = text.trimmed();
    const QAbstractItemModel *model = grid->model();
    const int n = model->rowCount();
    const int from = grid->currentIndex().isValid() ? grid->currentIndex().row() : -1;
    for (int k = 1; k <= n; ++k) {
        const int r = (from + k) % n;
        if (model->index(r, 0).data(Qt::DisplayRole).toString().contains(word, Qt::CaseInsensitive)) {
            goToGridRow(grid, r);
            return;
        }
    }
    dialogs().tell(Captions::info, QStringLiteral("Материал «%1» не найден").arg(word));
}
