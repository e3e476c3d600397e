#pragma once
// The materials lists of listmat.db: three sheets "Лист 1" to "Лист 3" over the tables list1 to
// list3 (namemat, edizm, price, nummat, idmat, numpos), read in list order (numpos, then id), and what
// the rows of a list are: materials, group titles and subgroup titles.

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <vector>

// One row of a sheet as the list grid shows it.
struct MatRow {
    QString id;
    QString name;   // namemat
    QString unit;   // edizm
    QString price;  // a price text as typed
    QString nummat; // the material's number in its supplier's list (the grid's "резерв")
    QString idmat;
    // Typed in the grid's "Кол-во" before the material is put into the estimate; not stored.
    QString quantity;
    bool checked = false;
};

// A group title has a name and neither a unit nor a price; a subgroup title has the unit "пв" (in any
// letter case, as in the price lists); a row without a name is empty. Titles and empty rows are never
// put into an estimate.
enum class MatRowKind { Material, Group, Subgroup, Empty };
MatRowKind matRowKind(const MatRow &row);

// The groups of a list with their subgroups, as indices into the rows. Subgroups that stand before
// the first group title belong to a group without a title (row -1).
struct MatSubgroup {
    QString title;
    int row = 0;
};
struct MatGroup {
    QString title;
    int row = -1;
    std::vector<MatSubgroup> subgroups;
};
std::vector<MatGroup> matGroups(const std::vector<MatRow> &rows);
// The rows [first, last] of the group or subgroup whose title stands at `titleRow`: up to the next
// title of the same or a higher level.
void titleRange(const std::vector<MatRow> &rows, int titleRow, int *first, int *last);

namespace MatListStore {

constexpr int kSheets = 3;
// "list1", "list2", "list3" for sheets 0..2; empty for any other.
QString table(int sheet);
QString sheetCaption(int sheet);

// ReadSqlMat: "SELECT … FROM <table> WHERE 1" in list order, or with a filter word the rows whose
// name holds it in exactly that letter case ("namemat LIKE '%word%'", which SQLite folds for Latin
// letters, narrowed by a case-exact instr()).
bool read(QSqlDatabase db, const QString &table, const QString &word, std::vector<MatRow> &out,
          QString *error = nullptr);
// The first material of that name (live search), false when there is none.
bool findByName(QSqlDatabase db, const QString &table, const QString &name, MatRow &out,
                QString *error = nullptr);

// Columns the list grid edits.
bool isEditableColumn(const QString &column);
bool setCell(QSqlDatabase db, const QString &table, const QString &id, const QString &column,
             const QString &value, QString *error = nullptr);
// An empty row before the row with id `beforeId` (at the end when empty); its id.
QString insertRow(QSqlDatabase db, const QString &table, const QString &beforeId, QString *error = nullptr);
bool removeRows(QSqlDatabase db, const QString &table, const QStringList &ids, QString *error = nullptr);
// "Удалить список материалов": the sheet emptied.
bool clearSheet(QSqlDatabase db, const QString &table, QString *error = nullptr);
// The sheet replaced by these rows in their order, all or nothing (an import).
bool replaceSheet(QSqlDatabase db, const QString &table, const std::vector<MatRow> &rows,
                  QString *error = nullptr);

} // namespace MatListStore
