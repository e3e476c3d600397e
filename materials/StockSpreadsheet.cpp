#include "StockSpreadsheet.h"

#include "estimate/RowAmount.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QLocale>
#include <array>
#include <optional>

namespace StockSpreadsheet {

namespace {

enum class Col { Name, Unit, Qty, Price, Markup, Sale, Sum, Min, Date, None };

const std::vector<Col> kWarehouse = {Col::Name, Col::Unit, Col::Qty, Col::Price,
                                     Col::Sale, Col::Sum,  Col::Min, Col::Date};
const std::vector<Col> kShop = {Col::Name,   Col::Unit, Col::Qty, Col::Price,
                                Col::Markup, Col::Sale, Col::Date};

const std::vector<Col> &layout(StockMode mode) {
    return mode == StockMode::Shop ? kShop : kWarehouse;
}

QString title(Col c, StockMode mode) {
    switch (c) {
    case Col::Name:
        return QStringLiteral("Наименование материала");
    case Col::Unit:
        return QStringLiteral("Ед. изм.");
    case Col::Qty:
        return QStringLiteral("Кол-во");
    case Col::Price:
        return mode == StockMode::Shop ? QStringLiteral("Цена закупки") : QStringLiteral("Цена");
    case Col::Markup:
        return QStringLiteral("Наценка");
    case Col::Sale:
        return QStringLiteral("Цена продажи");
    case Col::Sum:
        return QStringLiteral("Сумма");
    case Col::Min:
        return QStringLiteral("Мин. остаток");
    case Col::Date:
        return QStringLiteral("Дата");
    case Col::None:
        break;
    }
    return {};
}

// What a title cell names, by the start of its words ("Цена закупки, руб." is the price).
Col columnOfTitle(const QString &text) {
    const QString t = text.trimmed().toLower();
    if (t.isEmpty())
        return Col::None;
    if (t.startsWith(QStringLiteral("наимен")) || t.startsWith(QStringLiteral("назван")) ||
        t == QStringLiteral("материал"))
        return Col::Name;
    if (t.startsWith(QStringLiteral("ед")))
        return Col::Unit;
    if (t.startsWith(QStringLiteral("кол")))
        return Col::Qty;
    if (t.contains(QStringLiteral("продаж")))
        return Col::Sale;
    if (t.startsWith(QStringLiteral("цена")))
        return Col::Price;
    if (t.startsWith(QStringLiteral("наценк")))
        return Col::Markup;
    if (t.startsWith(QStringLiteral("сумм")))
        return Col::Sum;
    if (t.startsWith(QStringLiteral("мин")))
        return Col::Min;
    if (t.startsWith(QStringLiteral("дата")))
        return Col::Date;
    return Col::None;
}

// The columns named by a title row, or nullopt when the row is a material.
std::optional<std::vector<Col>> titleRow(const QStringList &row) {
    std::vector<Col> cols;
    int known = 0;
    for (const QString &cell : row) {
        const Col c = columnOfTitle(cell);
        // A column named twice keeps its first place.
        const bool repeated = c != Col::None && std::find(cols.begin(), cols.end(), c) != cols.end();
        cols.push_back(repeated ? Col::None : c);
        known += c != Col::None && !repeated;
    }
    if (known < 2 || std::find(cols.begin(), cols.end(), Col::Name) == cols.end())
        return std::nullopt;
    return cols;
}

bool isNumberColumn(Col c) {
    return c == Col::Qty || c == Col::Price || c == Col::Markup || c == Col::Sale || c == Col::Sum ||
           c == Col::Min;
}

QString what(Col c, StockMode mode) {
    return c == Col::Qty ? QStringLiteral("количество") : QStringLiteral("«%1»").arg(title(c, mode));
}

QString dateText(const QString &cell, const QDate &today) {
    const QString t = cell.trimmed();
    if (t.isEmpty())
        return TextValues::shortDate(today);
    QDate d = TextValues::parseShortDate(t);
    if (!d.isValid())
        d = QDate::fromString(t, Qt::ISODate);
    if (!d.isValid())
        d = QDate::fromString(t, QStringLiteral("dd.MM.yy")).addYears(100);
    return d.isValid() ? TextValues::shortDate(d) : t;
}

QString sum(const QString &a, const QString &b) {
    const auto x = TextValues::parseAmount(a), y = TextValues::parseAmount(b);
    const auto s = x && y ? x->plus(*y) : std::nullopt;
    return s ? TextValues::formatPrice(*s) : QString();
}

QString difference(const QString &a, const QString &b) {
    const auto y = TextValues::parseAmount(b);
    return y ? sum(a, y->negated().text()) : QString();
}

bool fail(QString *error, const QString &text) {
    if (error)
        *error = text;
    return false;
}

} // namespace

QString exportFileName(StockMode mode) {
    return mode == StockMode::Shop ? QStringLiteral("Склад материалов (магазин).xlsx")
                                   : QStringLiteral("Склад материалов (склад).xlsx");
}

QStringList titles(StockMode mode) {
    QStringList t;
    for (Col c : layout(mode))
        t << title(c, mode);
    return t;
}

bool itemsFromCells(const SheetText::Grid &cells, StockMode mode, const QDate &today,
                    std::vector<StockItem> &items, QString *error) {
    items.clear();
    std::vector<Col> cols = layout(mode);
    bool first = true;
    for (int r = 0; r < cells.size(); ++r) {
        const QStringList &row = cells.at(r);
        const bool blank =
            std::all_of(row.begin(), row.end(), [](const QString &c) { return c.trimmed().isEmpty(); });
        if (blank)
            continue;
        if (first) {
            first = false;
            if (auto named = titleRow(row)) {
                cols = *named;
                continue;
            }
        }
        std::array<QString, static_cast<size_t>(Col::None)> v;
        for (int c = 0; c < row.size() && c < static_cast<int>(cols.size()); ++c) {
            const Col col = cols[static_cast<size_t>(c)];
            if (col == Col::None)
                continue;
            QString text = isNumberColumn(col) ? SheetFile::cleanNumber(row.at(c)) : row.at(c).trimmed();
            if (isNumberColumn(col) && !text.isEmpty()) {
                const auto n = TextValues::parseAmount(text);
                if (!n || (n->isNegative() && col != Col::Markup))
                    return fail(error, QStringLiteral("Строка %1: %2 «%3» — не число.")
                                           .arg(r + 1)
                                           .arg(what(col, mode), text));
            }
            v[static_cast<size_t>(col)] = text;
        }
        auto at = [&v](Col c) -> QString & { return v[static_cast<size_t>(c)]; };
        if (at(Col::Name).isEmpty())
            continue;
        if (static_cast<int>(items.size()) >= kMaxRows)
            return fail(error, QStringLiteral("В файле больше %1 строк: такой склад не загружается.")
                                   .arg(QLocale(QLocale::Russian).toString(kMaxRows)));
        StockItem s;
        s.name = at(Col::Name);
        s.unit = at(Col::Unit);
        s.quantity = at(Col::Qty);
        s.price = at(Col::Price);
        s.sale = at(Col::Sale);
        s.minlimit = at(Col::Min);
        s.date = dateText(at(Col::Date), today);
        s.sum = at(Col::Sum);
        if (mode == StockMode::Warehouse && s.sum.isEmpty())
            s.sum = RowAmount::of(s.quantity, s.price, QString()).amountText();
        if (s.sale.isEmpty() && !at(Col::Markup).isEmpty())
            s.sale = sum(s.price, at(Col::Markup));
        items.push_back(std::move(s));
    }
    if (items.empty())
        return fail(error,
                    QStringLiteral("В файле нет ни одного материала: наименования должны быть в первом "
                                   "столбце или в столбце «Наименование материала»."));
    return true;
}

SheetFile::Table table(const std::vector<StockItem> &items, StockMode mode) {
    SheetFile::Table t;
    t.sheetName = mode == StockMode::Shop ? QStringLiteral("Магазин") : QStringLiteral("Склад");
    t.font = kFont;
    t.titles = titles(mode);
    for (Col c : layout(mode)) {
        t.number.push_back(isNumberColumn(c));
        t.widthsCm.push_back(c == Col::Name ? 9.0 : c == Col::Unit ? 2.0 : c == Col::Date ? 2.8 : 2.6);
    }
    for (const StockItem &s : items) {
        QStringList row;
        for (Col c : layout(mode)) {
            switch (c) {
            case Col::Name:
                row << s.name;
                break;
            case Col::Unit:
                row << s.unit;
                break;
            case Col::Qty:
                row << s.quantity;
                break;
            case Col::Price:
                row << s.price;
                break;
            case Col::Markup:
                row << (s.sale.trimmed().isEmpty() ? QString() : difference(s.sale, s.price));
                break;
            case Col::Sale:
                row << s.sale;
                break;
            case Col::Sum:
                row << s.sum;
                break;
            case Col::Min:
                row << s.minlimit;
                break;
            case Col::Date:
                row << s.date;
                break;
            case Col::None:
                break;
            }
        }
        t.rows.push_back(row);
    }
    return t;
}

bool readFile(OfficeEngine &engine, const QString &path, const QString &scratchDir, StockMode mode,
              const QDate &today, std::vector<StockItem> &items, QString *error,
              const SheetFile::Progress &progress) {
    items.clear();
    SheetText::Grid cells;
    if (!SheetFile::readCells(engine, path, scratchDir, cells, error, progress))
        return false;
    if (!itemsFromCells(cells, mode, today, items, error)) {
        if (error)
            *error = QStringLiteral("Файл %1: %2").arg(QDir::toNativeSeparators(path), *error);
        return false;
    }
    if (progress)
        progress(90);
    return true;
}

bool writeFile(OfficeEngine &engine, const std::vector<StockItem> &items, StockMode mode, const QString &path,
               const QString &scratchDir, QString *error, const SheetFile::Progress &progress) {
    return SheetFile::write(engine, table(items, mode), path, scratchDir, error, progress);
}

} // namespace StockSpreadsheet
