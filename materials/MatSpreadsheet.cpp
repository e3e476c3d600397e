#include "MatSpreadsheet.h"

#include "storage/TextValues.h"

#include <QDir>
#include <QLocale>
#include <algorithm>

namespace MatSpreadsheet {

namespace {

bool fail(QString *error, const QString &text) {
    if (error)
        *error = text;
    return false;
}

// A first row that names the columns rather than a material.
bool isHeader(const QStringList &row) {
    const QString name = row.value(0).trimmed().toLower();
    const QString price = row.value(2).trimmed().toLower();
    if (!price.isEmpty() && TextValues::parsePrice(price))
        return false;
    return name.startsWith(QStringLiteral("наимен")) || name.startsWith(QStringLiteral("назван")) ||
           name == QStringLiteral("материал") || price.startsWith(QStringLiteral("цена"));
}

} // namespace

bool checkFile(const QString &path, QString *error) {
    return SheetFile::checkFile(path, error);
}

bool rowsFromCells(const SheetText::Grid &cells, std::vector<MatRow> &rows, QString *error) {
    rows.clear();
    int widest = 0;
    bool first = true;
    for (const QStringList &cellRow : cells) {
        int used = 0;
        for (int c = 0; c < cellRow.size(); ++c)
            if (!cellRow.at(c).trimmed().isEmpty())
                used = c + 1;
        if (used == 0)
            continue;
        widest = std::max(widest, std::max(used, static_cast<int>(cellRow.size())));
        if (first) {
            first = false;
            if (isHeader(cellRow))
                continue;
        }
        if (static_cast<int>(rows.size()) >= kMaxRows)
            return fail(error, QStringLiteral("В файле больше %1 строк: такой список не загружается.")
                                   .arg(QLocale(QLocale::Russian).toString(kMaxRows)));
        MatRow r;
        r.name = cellRow.value(0).trimmed();
        r.unit = cellRow.value(1).trimmed();
        r.price = SheetFile::cleanNumber(cellRow.value(2));
        rows.push_back(std::move(r));
    }
    if (widest == 0)
        return fail(error, QStringLiteral("В файле нет ни одной заполненной строки."));
    if (widest < 3)
        return fail(error, QStringLiteral(
                               "В файле не хватает столбцов: нужны три — наименование, единица измерения и "
                               "цена (столбцы A, B и C)."));
    const bool anyMaterial = std::any_of(rows.begin(), rows.end(),
                                         [](const MatRow &r) { return matRowKind(r) != MatRowKind::Empty; });
    if (!anyMaterial)
        return fail(error, QStringLiteral("В столбце A файла нет ни одного наименования материала."));
    return true;
}

bool readFile(OfficeEngine &engine, const QString &path, const QString &scratchDir, std::vector<MatRow> &rows,
              QString *error, const Progress &progress) {
    rows.clear();
    SheetText::Grid cells;
    if (!SheetFile::readCells(engine, path, scratchDir, cells, error, progress))
        return false;
    if (!rowsFromCells(cells, rows, error)) {
        if (error)
            *error = QStringLiteral("Файл %1: %2").arg(QDir::toNativeSeparators(path), *error);
        return false;
    }
    if (progress)
        progress(90);
    return true;
}

namespace {

SheetFile::Table listTable(const std::vector<MatRow> &rows, const QString &sheetName) {
    SheetFile::Table t;
    t.sheetName = sheetName;
    t.titles = {QStringLiteral("Наименование материала"), QStringLiteral("Ед. изм."), QStringLiteral("Цена")};
    t.number = {false, false, true};
    for (const MatRow &r : rows)
        if (matRowKind(r) != MatRowKind::Empty)
            t.rows.push_back({r.name, r.unit, r.price});
    return t;
}

} // namespace

QByteArray flatOds(const std::vector<MatRow> &rows, const QString &sheetName) {
    return SheetFile::flatOds(listTable(rows, sheetName));
}

bool writeFile(OfficeEngine &engine, const std::vector<MatRow> &rows, const QString &sheetName,
               const QString &path, const QString &scratchDir, QString *error, const Progress &progress) {
    return SheetFile::write(engine, listTable(rows, sheetName), path, scratchDir, error, progress);
}

} // namespace MatSpreadsheet
