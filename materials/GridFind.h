#pragma once
// The record tools of the materials windows' grids: "Первая запись", "Последняя запись" and "Поиск"
// (a name asked for; the next row after the current one whose name, in the first column, holds it in
// any letter case, round to the start).

class QTableView;

// Row `row` made current and scrolled into the middle; nothing for a row that is not there.
void goToGridRow(QTableView *grid, int row);
void goToFirstRow(QTableView *grid);
void goToLastRow(QTableView *grid);
void findInGrid(QTableView *grid);
