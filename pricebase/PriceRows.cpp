#include "PriceRows.h"

#include <QHashFunctions>
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

RecIndex::RecIndex(const std::vector<RateRow> &rows) {
    if (rows.empty() || rows.size() >= kFree)
        return;
    // At most two thirds full: a miss ends after a few slots.
    size_t size = 16;
    while (size < rows.size() + rows.size() / 2)
        size *= 2;
    m_slots.assign(size, kFree);
    const size_t mask = size - 1;
    for (size_t i = 0; i < rows.size(); ++i) {
        const QByteArrayView rec = rows[i].utf8(PriceCol::Rec);
        for (size_t s = qHash(rec) & mask;; s = (s + 1) & mask) {
            if (m_slots[s] == kFree) {
                m_slots[s] = static_cast<quint32>(i);
                break;
            }
            if (rows[m_slots[s]].utf8(PriceCol::Rec) == rec)
                break; // an earlier row of that number answers for it
        }
    }
}

int RecIndex::find(const std::vector<RateRow> &rows, QByteArrayView rec) const {
    if (m_slots.empty())
        return -1;
    const size_t mask = m_slots.size() - 1;
    for (size_t s = qHash(rec) & mask; m_slots[s] != kFree; s = (s + 1) & mask) {
        const quint32 row = m_slots[s];
        if (row < rows.size() && rows[row].utf8(PriceCol::Rec) == rec)
            return static_cast<int>(row);
    }
    return -1;
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
