#pragma once
// Rows of a price list as the rate grid shows them, the row kinds that the rate numbers encode, the
// renumbering rule and the section index (tree and combo) built from a list.

#include <QByteArray>
#include <QByteArrayView>
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

// One row of the rate grid: nine text cells and the tick. A list holds 100,000 rows, so the cells
// are kept compactly: the name on its own (live search shares it), the other eight (numbers, codes,
// units: mostly digits) packed into one UTF-8 text with their end offsets.
class RateRow {
public:
    using Cells = std::array<QString, PriceCol::TextCount>;

    RateRow() = default;
    explicit RateRow(const Cells &cells);
    // The cells as UTF-8, as SQLite gives them: the name decoded, the others kept as they come.
    static RateRow fromUtf8(const std::array<QByteArrayView, PriceCol::TextCount> &cells);

    QString operator[](int col) const;
    // A cell other than the name as UTF-8, without a copy, valid while the row is not changed.
    QByteArrayView utf8(int col) const;
    const QString &name() const { return m_name; }
    void set(int col, const QString &text);
    Cells cells() const;
    bool isBlank() const;
    // The cell as a value to bind: an empty cell is written as '' (never NULL), as every text column
    // of a price list holds text.
    QString bound(int col) const;

    bool checked = false;

private:
    static constexpr int kPacked = PriceCol::TextCount - 1;
    // Index of a column other than the name among the packed ones.
    static int slot(int col) { return col < PriceCol::Name ? col : col - 1; }
    void pack(const Cells &cells);

    QString m_name;
    QByteArray m_packed; // UTF-8
    // Ends of the packed cells but the last (which ends with the text): 8 bytes less a row.
    std::array<quint32, kPacked - 1> m_ends{};
    quint32 end(int slot) const {
        return slot < kPacked - 1 ? m_ends[static_cast<size_t>(slot)] : static_cast<quint32>(m_packed.size());
    }
};

enum class PriceRowKind { Section, Subsection, Rate };

// Section title: no "-" in the number; subsection title: a "-" and the unit "пв" in any letter case;
// everything else is a rate.
PriceRowKind priceRowKind(QStringView edras, QStringView edizm);
inline PriceRowKind priceRowKind(const QString &edras, const QString &edizm) {
    return priceRowKind(QStringView(edras), QStringView(edizm));
}
inline PriceRowKind priceRowKind(const RateRow &row) {
    return priceRowKind(row[PriceCol::Ras], row[PriceCol::Unit]);
}
// The subsection unit, compared after lower-casing (and trimming for renumbering).
bool isSubsectionUnit(const QString &edizm);

// PereschetNomeraRascenok: numbers sections S, subsections S-P and rates S-N or S-P-N in row order;
// rows with an empty name keep their number.
void renumberRates(std::vector<RateRow> &rows);

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
