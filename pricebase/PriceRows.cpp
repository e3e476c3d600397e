#include "PriceRows.h"

#include <cstring>

RateRow::RateRow(const Cells &cells) {
    pack(cells);
}

void RateRow::pack(const Cells &cells) {
    QByteArray text;
    for (int c = 0; c < PriceCol::TextCount; ++c) {
        text += cells[static_cast<size_t>(c)].toUtf8();
        if (c < PriceCol::TextCount - 1)
            m_ends[static_cast<size_t>(c)] = static_cast<quint32>(text.size());
    }
    text.squeeze();
    m_text = std::move(text);
}

RateRow RateRow::fromUtf8(const std::array<QByteArrayView, PriceCol::TextCount> &cells) {
    RateRow row;
    qsizetype bytes = 0;
    for (const QByteArrayView &cell : cells)
        bytes += cell.size();
    if (bytes == 0)
        return row;
    QByteArray text(bytes, Qt::Uninitialized);
    char *out = text.data();
    for (int c = 0; c < PriceCol::TextCount; ++c) {
        const QByteArrayView cell = cells[static_cast<size_t>(c)];
        if (!cell.isEmpty())
            memcpy(out, cell.data(), static_cast<size_t>(cell.size()));
        out += cell.size();
        if (c < PriceCol::TextCount - 1)
            row.m_ends[static_cast<size_t>(c)] = static_cast<quint32>(out - text.constData());
    }
    row.m_text = std::move(text);
    return row;
}

QByteArrayView RateRow::utf8(int col) const {
    if (col < 0 || col >= PriceCol::TextCount)
        return {};
    return QByteArrayView(m_text).sliced(begin(col), end(col) - begin(col));
}

QString RateRow::operator[](int col) const {
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
    if (col < 0 || col >= PriceCol::TextCount)
        return;
    Cells c = cells();
    c[static_cast<size_t>(col)] = text;
    pack(c);
}

bool RateRow::isBlank() const {
    return QString::fromUtf8(m_text).trimmed().isEmpty();
}

QString RateRow::bound(int col) const {
    const QString c = (*this)[col];
    return c.isNull() ? QStringLiteral("") : c;
}

PriceRowKind priceRowKind(QByteArrayView edras, QByteArrayView edizm) {
    if (!edras.contains('-'))
        return PriceRowKind::Section;
    // "пв" in any letter case takes four bytes of UTF-8; only such a unit needs a closer look.
    if (edizm.size() != 4)
        return PriceRowKind::Rate;
    return priceRowKind(QStringLiteral("-"), QString::fromUtf8(edizm));
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
