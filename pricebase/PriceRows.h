#pragma once
// Rows of a price list as the rate grid shows them, the row kinds that the rate numbers encode, the
// renumbering rule and the section index (tree and combo) built from a list.

#include <QByteArray>
#include <QByteArrayView>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <array>
#include <vector>

// Columns of the rate grid StringGridRas.
namespace PriceCol {
enum : int {
    Ras = 0,   // "№ рас." edras
    Name = 1,  // "Наименование работ" nameras
    Unit = 2,  // "Ед. изм." edizm
    Price = 3, // "Цена" in the chosen currency
    Rec = 4,   // "rec"
    Koef = 5,  // "koef" crew coefficient (price list 1)
    Id = 6,    // "id / Сумма"
    Link = 7,  // "Для бриг." crew price
    Store = 8, // "id склад"
    Check = 9, // "checkbox"
    Count = 10,
    TextCount = 9 // columns held as text; the tick box is a flag
};
}

// One row of the rate grid: nine text cells and the tick. A list holds 100,000 rows, so a row keeps
// its cells in one UTF-8 text (as SQLite gives them: read without decoding, one allocation a row) with
// the ends of the cells; a cell becomes a QString when it is asked for (the rows on screen, the row
// inserted into the estimate).
class RateRow {
public:
    using Cells = std::array<QString, PriceCol::TextCount>;

    RateRow() = default;
    explicit RateRow(const Cells &cells);
    // The cells as UTF-8, as SQLite gives them, kept as they come.
    static RateRow fromUtf8(const std::array<QByteArrayView, PriceCol::TextCount> &cells);

    QString operator[](int col) const;
    // A cell as UTF-8, without a copy, valid while the row is not changed.
    QByteArrayView utf8(int col) const;
    QString name() const { return (*this)[PriceCol::Name]; }
    // The row's text (shared, not copied) and where its name lies in it: live search keeps the names of
    // a list this way.
    const QByteArray &text() const { return m_text; }
    QPair<quint32, quint32> nameSpan() const { return {begin(PriceCol::Name), end(PriceCol::Name)}; }
    void set(int col, const QString &text);
    Cells cells() const;
    bool isBlank() const;
    // The cell as a value to bind: an empty cell is written as '' (never NULL), as every text column
    // of a price list holds text.
    QString bound(int col) const;

    bool checked = false;

private:
    void pack(const Cells &cells);
    quint32 begin(int col) const { return col == 0 ? 0 : m_ends[static_cast<size_t>(col - 1)]; }
    // The last cell ends with the text: one end fewer to keep.
    quint32 end(int col) const {
        return col < PriceCol::TextCount - 1 ? m_ends[static_cast<size_t>(col)]
                                             : static_cast<quint32>(m_text.size());
    }

    QByteArray m_text; // UTF-8, the cells in column order
    std::array<quint32, PriceCol::TextCount - 1> m_ends{};
};

enum class PriceRowKind { Section, Subsection, Rate };

// Section title: no "-" in the number; subsection title: a "-" and the unit "пв" in any letter case;
// everything else is a rate.
PriceRowKind priceRowKind(QStringView edras, QStringView edizm);
inline PriceRowKind priceRowKind(const QString &edras, const QString &edizm) {
    return priceRowKind(QStringView(edras), QStringView(edizm));
}
// The same for the texts as UTF-8 (a list being read).
PriceRowKind priceRowKind(QByteArrayView edras, QByteArrayView edizm);
inline PriceRowKind priceRowKind(const RateRow &row) {
    return priceRowKind(row[PriceCol::Ras], row[PriceCol::Unit]);
}
// The subsection unit, compared after lower-casing (and trimming for renumbering).
bool isSubsectionUnit(const QString &edizm);

// Currency index of EditValuta (0..4) -> price column of the local tables.
QString currencyColumn(int index);
QStringList currencyCaptions();

// The section tree ListBox1 and the combo ComboBox2, built on every full read.
struct SubsectionEntry {
    QString number; // "S-P"
    QString text;   // number, a blank, the title
};
struct SectionEntry {
    QString number; // "S"
    QString text;
    std::vector<SubsectionEntry> subsections;
};
using SectionIndex = std::vector<SectionEntry>;
// First entry of both the tree and the combo.
inline const QString kAllSections = QStringLiteral("   Все");

// Adds a row to the index the way a full read does: a section opens a node, a subsection becomes a
// child of the most recent section.
void addToSectionIndex(SectionIndex &index, const RateRow &row);

// The section part S and subsection part P of a number "S-P..." (empty when absent).
QString sectionOfNumber(const QString &number);
