#pragma once
// Filling a spreadsheet template (".xls", ".xlsx", ".ods").
//
// A template names what it receives in square brackets:
// - a named item: a cell holding "[edNumber]" receives the value of the item edNumber; a cell that is
//   nothing but the placeholder receives the value with its type (numbers become numbers), a cell
//   with more text around the placeholder receives the text with the value put in;
// - a row block: a row whose cells hold placeholders of the form "[kind.column]" ("[строки.сумма]")
//   is a template row of that kind for a list; adjacent template rows of one list form its block.
//   The block is replaced by one row per item of the list, each a copy of the template row of the
//   item's kind (formatting and merged cells included), with the rows below moved down. A kind with
//   no template row of its own falls back along the list's fallback chain.
// A named item without data leaves its placeholder in the sheet (unless its row is an optional one,
// see SheetData::dropRowsWithout); after filling, any placeholder whose data was given and is still
// there is an error.

#include "office/SheetText.h"
#include "office/TemplateFile.h"
#include "storage/Money.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>

class OfficeEngine;

struct SheetValue {
    bool isNumber = false;
    double number = 0;
    QString text; // the text itself, or how a number reads inside a longer text

    static SheetValue ofText(const QString &t) { return {false, 0, t}; }
    // shown: the number as it reads inside a longer cell text ("12 345,67").
    static SheetValue ofNumber(double v, const QString &shown);
    // An amount: a number cell of the sheet, "12 345,67" inside a longer text.
    static SheetValue ofMoney(const Money &amount);
};

struct SheetRow {
    QString kind;                     // "строки", "раздел", …
    QHash<QString, SheetValue> cells; // column name -> value
};

struct SheetList {
    QStringList kinds;                // the kinds this list's template rows may have
    QHash<QString, QString> fallback; // kind -> kind used when the template has no row of it
    QStringList headingKinds;         // kinds of rows that title the rows under them (a section)
    QVector<SheetRow> rows;
};

struct SheetData {
    QHash<QString, SheetValue> values; // named items
    QVector<SheetList> lists;
    // Named items whose rows are left out of the document when the item has no data or an empty text
    // (optional lines, such as a second and third service of an invoice).
    QStringList dropRowsWithout;
    // Pictures: item name -> picture file. The cell holding "[name]" is emptied and the picture put
    // with its top left corner there, in the size its file gives; with an empty file name the cell is
    // only emptied (a picture left out). A template without the cell gets no picture.
    QHash<QString, QString> images;
    // A PDF among the outputs is laid out by the engine with what belongs together kept on a page:
    // no page ends with the table's head or a row of a heading kind, and the closing block (from the
    // first row of the list `closingList` down to the last row) is not split (PageFlow).
    bool keepTogether = false;
    int closingList = -1;
};

namespace SheetTemplate {

// The placeholder names in a cell text: "[a] и [b.c]" -> {"a", "b.c"}.
QStringList placeholders(const QString &text);

struct Block {
    int list = -1;    // index into SheetData::lists
    int firstRow = 0; // template rows, from 0
    int lastRow = 0;
    QHash<QString, int> rowOf; // kind -> template row
};

struct Layout {
    QVector<Block> blocks; // top to bottom
    QStringList named;     // named items the template holds
    int width = 0;         // columns in use
};

// Rows (from 0) to leave out: those holding an item of data.dropRowsWithout that has no data or an
// empty text.
QVector<int> rowsToDrop(const SheetText::Grid &grid, const SheetData &data);

// Finds the row blocks and named items of a template sheet for the given data.
Layout analyse(const SheetText::Grid &grid, const SheetData &data);

// The placeholders still in a filled sheet that should have been filled: named items with data, and
// any row-block placeholder. A cell that holds exactly a text that was entered into the sheet is a
// value, not a field of the template, whatever it looks like ("ООО [заказчик]"): `written` gives those
// texts (only the ones with a bracket matter).
QStringList unfilled(const SheetText::Grid &filled, const SheetData &data, const QSet<QString> &written = {});

// Rows (from 0) of the filled sheet that must not end a printed page, and the first row of the closing
// block (-1: none): the table's head (the rows right above the first block, up to the empty row over
// them, three at most), the rows of heading kinds, the first row of data.closingList.
struct KeptRows {
    QVector<int> headings;
    int closingFirst = -1;
};
KeptRows keptRows(const SheetText::Grid &grid, const Layout &layout, const SheetData &data);

using Progress = std::function<void(int percent)>;

// The time a whole document of `rows` list rows may take in the engine: two minutes for the engine's
// start and the template, and a little per row (100 000 rows get about 9 minutes; never past an hour).
int timeBudgetMs(qint64 rows);

// Loads the template, fills it, checks that nothing given was left unfilled and saves the outputs.
// False with a Russian message (the template is checked first; nothing is written on failure before
// saving). The whole document has the engine's budget the caller set, else timeBudgetMs of its rows.
bool fill(OfficeEngine &engine, const QString &templatePath, const SheetData &data,
          const QVector<TemplateFile::Output> &outputs, QString *error, const Progress &progress = {});

} // namespace SheetTemplate
