#include "CashColumns.h"

namespace CashCategory {

const std::array<QString, kCount> &fields() {
    static const std::array<QString, kCount> f = {"incoming",  "my_salary",      "material",
                                                  "transport", "salary_workers", "other"};
    return f;
}

const std::array<QString, kCount> &captions() {
    static const std::array<QString, kCount> c = {"Приход",    "Моя з/п",     "Материал",
                                                  "Транспорт", "З/п рабочим", "Прочее"};
    return c;
}

QStringList filterItems() {
    QStringList items{QStringLiteral("Все")};
    for (const QString &c : captions())
        items << c;
    return items;
}

} // namespace CashCategory

namespace CashCol {

QStringList titles() {
    QStringList t{QString(), QStringLiteral("Дата")};
    for (const QString &c : CashCategory::captions())
        t << c;
    t << QStringLiteral("Примечание") << QStringLiteral("Заказчики") << QStringLiteral("Объекты")
      << QStringLiteral("Id");
    return t;
}

QString field(int column) {
    if (column == Date)
        return QStringLiteral("date");
    if (isAmount(column))
        return CashCategory::fields()[category(column)];
    if (column == Note)
        return QStringLiteral("note");
    return {};
}

} // namespace CashCol

namespace TotalsCol {

QStringList titles() {
    QStringList t;
    for (const QString &c : CashCategory::captions())
        t << c;
    t << QStringLiteral("Расходы") << QStringLiteral("Остаток") << QStringLiteral("Доход")
      << QStringLiteral("Период (дн.)");
    return t;
}

} // namespace TotalsCol

namespace ChecksCol {

QStringList titles() {
    return {QString(),
            QStringLiteral("Дата"),
            QStringLiteral("Наименование"),
            QStringLiteral("Ед. изм."),
            QStringLiteral("Кол-во"),
            QStringLiteral("Цена"),
            QStringLiteral("Сумма"),
            QStringLiteral("id")};
}

QString field(int column) {
    switch (column) {
    case Date:
        return QStringLiteral("date");
    case Name:
        return QStringLiteral("name");
    case Unit:
        return QStringLiteral("edizm");
    case Quantity:
        return QStringLiteral("kolvo");
    case Price:
        return QStringLiteral("price");
    case Sum:
        return QStringLiteral("sum");
    default:
        return {};
    }
}

} // namespace ChecksCol
