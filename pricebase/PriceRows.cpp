#include "PriceRows.h"

bool RateRow::isBlank() const {
    for (const QString &c : cells)
        if (!c.trimmed().isEmpty())
            return false;
    return true;
}

QString RateRow::bound(int col) const {
    const QString &c = (*this)[col];
    return c.isNull() ? QStringLiteral("") : c;
}

bool isSubsectionUnit(const QString &edizm) {
    return edizm.trimmed().toLower() == QStringLiteral("пв");
}

PriceRowKind priceRowKind(const QString &edras, const QString &edizm) {
    if (!edras.contains(QLatin1Char('-')))
        return PriceRowKind::Section;
    return edizm.toLower() == QStringLiteral("пв") ? PriceRowKind::Subsection : PriceRowKind::Rate;
}

void renumberRates(std::vector<RateRow> &rows) {
    int s = 0, p = 0, n = 0;
    for (RateRow &row : rows) {
        if (row[PriceCol::Name].trimmed().isEmpty())
            continue;
        const QString unit = row[PriceCol::Unit].trimmed();
        const QString price = row[PriceCol::Price].trimmed();
        if (unit.isEmpty() && price.isEmpty()) {
            ++s;
            p = 0;
            n = 0;
            row[PriceCol::Ras] = QString::number(s);
        } else if (isSubsectionUnit(unit) && price.isEmpty()) {
            ++p;
            n = 0;
            row[PriceCol::Ras] = QStringLiteral("%1-%2").arg(s).arg(p);
        } else {
            ++n;
            row[PriceCol::Ras] = p != 0 ? QStringLiteral("%1-%2-%3").arg(s).arg(p).arg(n)
                                        : QStringLiteral("%1-%2").arg(s).arg(n);
        }
    }
}

QString currencyColumn(int index) {
    static const QStringList columns = {"rub", "dol", "grn", "br", "tenge"};
    return index >= 0 && index < columns.size() ? columns.at(index) : columns.first();
}

QStringList currencyCaptions() {
    return {QStringLiteral("Рубль РФ"), QStringLiteral("Доллар США"), QStringLiteral("Гривна"),
            QStringLiteral("Белорусский рубль"), QStringLiteral("Тенге")};
}

void addToSectionIndex(SectionIndex &index, const RateRow &row) {
    const QString &number = row[PriceCol::Ras];
    const QString text = number + QLatin1Char(' ') + row[PriceCol::Name];
    switch (priceRowKind(row)) {
    case PriceRowKind::Section:
        // Blank rows (a row added in edit mode and left empty) open no section.
        if (number.trimmed().isEmpty() && row[PriceCol::Name].trimmed().isEmpty())
            return;
        index.push_back({number, text, {}});
        return;
    case PriceRowKind::Subsection:
        if (!index.empty())
            index.back().subsections.push_back({number, text});
        return;
    case PriceRowKind::Rate:
        return;
    }
}

QString sectionOfNumber(const QString &number) {
    const int dash = number.indexOf(QLatin1Char('-'));
    return (dash < 0 ? number : number.left(dash)).trimmed();
}
