#pragma once
// The cash book's fixed layout: the six categories of a movement in their one order (filter, grid
// columns, totals, reports), the columns of the record grid and of the receipt grid, and the columns of
// the tables cash and checks.

#include <QString>
#include <QStringList>
#include <array>

namespace CashCategory {
constexpr int kCount = 6;
// The first category is income, the other five are expenses.
constexpr int kIncoming = 0;
// Column of the table cash of category i: incoming, my_salary, material, transport, salary_workers, other.
const std::array<QString, kCount> &fields();
// "Приход", "Моя з/п", "Материал", "Транспорт", "З/п рабочим", "Прочее".
const std::array<QString, kCount> &captions();
// The category filter FiltrCategory: "Все" and the six captions; index 0 is no category.
QStringList filterItems();
} // namespace CashCategory

// Columns of GridRashod.
namespace CashCol {
enum : int {
    Marker = 0, // the record has receipt lines
    Date = 1,
    FirstAmount = 2, // the six categories, 2 to 7
    LastAmount = 7,
    Note = 8,
    Customer = 9,
    Object = 10,
    Id = 11,
    Count = 12
};
QStringList titles();
// The field of table cash a grid column writes (1 date, 2..7 amounts, 8 note); empty for the others.
QString field(int column);
inline bool isAmount(int column) {
    return column >= FirstAmount && column <= LastAmount;
}
inline int category(int column) {
    return column - FirstAmount;
}
} // namespace CashCol

// Columns of the totals grid StrGridItigo: the six sums, "Расходы", "Остаток", "Доход", "Период (дн.)".
namespace TotalsCol {
enum : int { Expenses = 6, Remainder = 7, Income = 8, Days = 9, Count = 10 };
QStringList titles();
} // namespace TotalsCol

// Columns of GridCheki.
namespace ChecksCol {
enum : int { Marker = 0, Date = 1, Name = 2, Unit = 3, Quantity = 4, Price = 5, Sum = 6, Id = 7, Count = 8 };
QStringList titles();
// The field of table checks a grid column writes (date, name, edizm, kolvo, price, sum); empty otherwise.
QString field(int column);
inline bool isNumber(int column) {
    return column == Quantity || column == Price || column == Sum;
}
} // namespace ChecksCol
