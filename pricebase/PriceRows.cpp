#include "PriceRows.h"

RateRow::RateRow(const Cells &cells) {
    pack(cells);
}

void RateRow::pack(const Cells &cells) {
    m_name = cells[PriceCol::Name];
    qsizetype total = 0;
    for (int c = 0; c < PriceCol::TextCount; ++c)
        if (c != PriceCol::Name)
            total += cells[static_cast<size_t>(c)].size();
    QString packed;
    packed.reserve(total);
    for (int c = 0; c < PriceCol::TextCount; ++c) {
        if (c == PriceCol::Name)
            continue;
        packed += cells[static_cast<size_t>(c)];
        m_ends[static_cast<size_t>(slot(c))] = static_cast<quint32>(packed.size());
    }
    m_packed = std::move(packed);
}

QString RateRow::operator[](int col) const {
    if (col == PriceCol::Name)
        return m_name;
    if (col < 0 || col >= PriceCol::TextCount)
        return {};
    const int i = slot(col);
    const quint32 begin = i == 0 ? 0 : m_ends[static_cast<size_t>(i - 1)];
    const quint32 end = m_ends[static_cast<size_t>(i)];
    if (end == begin)
        return {};
    return m_packed.mid(begin, end - begin);
}

RateRow::Cells RateRow::cells() const {
    Cells c;
    for (int i = 0; i < PriceCol::TextCount; ++i)
        c[static_cast<size_t>(i)] = (*this)[i];
    return c;
}

void RateRow::set(int col, const QString &text) {
    if (col == PriceCol::Name) {
        m_name = text;
        return;
    }
    if (col < 0 || col >= PriceCol::TextCount)
        return;
    Cells c = cells();
    c[static_cast<size_t>(col)] = text;
    pack(c);
}

bool RateRow::isBlank() const {
    return m_name.trimmed().isEmpty() && m_packed.trimmed().isEmpty();
}

QString RateRow::bound(int col) const {
    const QString c = (*this)[col];
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
            row.set(PriceCol::Ras, QString::number(s));
        } else if (isSubsectionUnit(unit) && price.isEmpty()) {
            ++p;
            n = 0;
            row.set(PriceCol::Ras, QStringLiteral("%1-%2").arg(s).arg(p));
        } else {
            ++n;
            row.set(PriceCol::Ras, p != 0 ? QStringLiteral("%1-%2-%3").arg(s).arg(p).arg(n)
                                          : QStringLiteral("%1-%2").arg(s).arg(n));
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
