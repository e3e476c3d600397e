#include "PriceRows.h"

#include <cstring>

RateRow::RateRow(const Cells &cells) {
    pack(cells);
}

void RateRow::pack(const Cells &cells) {
    m_name = cells[PriceCol::Name];
    QByteArray packed;
    for (int c = 0; c < PriceCol::TextCount; ++c) {
        if (c == PriceCol::Name)
            continue;
        packed += cells[static_cast<size_t>(c)].toUtf8();
        if (slot(c) < kPacked - 1)
            m_ends[static_cast<size_t>(slot(c))] = static_cast<quint32>(packed.size());
    }
    packed.squeeze();
    m_packed = std::move(packed);
}

RateRow RateRow::fromUtf8(const std::array<QByteArrayView, PriceCol::TextCount> &cells) {
    RateRow row;
    row.m_name = QString::fromUtf8(cells[PriceCol::Name]);
    // fromUtf8 keeps room for as many units as the text has bytes: twice what a Cyrillic name needs.
    row.m_name.squeeze();
    qsizetype bytes = 0;
    for (int c = 0; c < PriceCol::TextCount; ++c)
        if (c != PriceCol::Name)
            bytes += cells[static_cast<size_t>(c)].size();
    if (bytes == 0)
        return row;
    QByteArray packed(bytes, Qt::Uninitialized);
    char *out = packed.data();
    for (int c = 0; c < PriceCol::TextCount; ++c) {
        if (c == PriceCol::Name)
            continue;
        const QByteArrayView cell = cells[static_cast<size_t>(c)];
        if (!cell.isEmpty())
            memcpy(out, cell.data(), static_cast<size_t>(cell.size()));
        out += cell.size();
        if (slot(c) < kPacked - 1)
            row.m_ends[static_cast<size_t>(slot(c))] = static_cast<quint32>(out - packed.constData());
    }
    row.m_packed = std::move(packed);
    return row;
}

QByteArrayView RateRow::utf8(int col) const {
    if (col == PriceCol::Name || col < 0 || col >= PriceCol::TextCount)
        return {};
    const int i = slot(col);
    const quint32 begin = i == 0 ? 0 : end(i - 1);
    return QByteArrayView(m_packed).sliced(begin, end(i) - begin);
}

QString RateRow::operator[](int col) const {
    if (col == PriceCol::Name)
        return m_name;
    const QByteArrayView cell = utf8(col);
    return cell.isEmpty() ? QString() : QString::fromUtf8(cell);
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
    return m_name.trimmed().isEmpty() && QString::fromUtf8(m_packed).trimmed().isEmpty();
}

QString RateRow::bound(int col) const {
    const QString c = (*this)[col];
    return c.isNull() ? QStringLiteral("") : c;
}

bool isSubsectionUnit(const QString &edizm) {
    return edizm.trimmed().toLower() == QStringLiteral("пв");
}

PriceRowKind priceRowKind(QStringView edras, QStringView edizm) {
    if (!edras.contains(QLatin1Char('-')))
        return PriceRowKind::Section;
    return edizm.size() == 2 && edizm.compare(u"пв", Qt::CaseInsensitive) == 0 ? PriceRowKind::Subsection
                                                                               : PriceRowKind::Rate;
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
    const QString number = row[PriceCol::Ras];
    const PriceRowKind kind = priceRowKind(number, row[PriceCol::Unit]);
    if (kind == PriceRowKind::Rate)
        return;
    const QString text = number + QLatin1Char(' ') + row[PriceCol::Name];
    switch (kind) {
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
