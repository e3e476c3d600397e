#pragma once
// The kinds of the files kept on the document store (the kinds tree TreeView2 and the grid's icons),
// and the statement that lists the files of an address and a kind. The store's table is named by the
// account key; values are bound, never pasted into the statement.

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>

struct FileKind {
    QString caption;        // "Сметы", "Таблицы", ...
    QStringList extensions; // lower case with the dot: ".xls", ".xlsx"
};

namespace ServerFileKinds {

// The kinds in the order of all().
enum Kind { Estimates, Sheets, Texts, Pdf, Archives, Databases, Pictures, Programs };

const QList<FileKind> &all();
// The index of the kind holding the extension (".PNG" is ".png"), or -1.
int kindOf(const QString &type);
bool isPicture(const QString &type);
// The type column of a file: its extension in lower case with the dot (".sim"), empty when it has none.
QString typeOf(const QString &fileName);

} // namespace ServerFileKinds

// Which rows the grid lists: everything, an address, a kind, or both.
struct FileFilter {
    bool byAddress = false;
    QString address;   // the stored form (double quotes as backticks)
    QStringList types; // the kind's extensions; empty for every kind
};

struct BoundStatement {
    QString sql;
    QVariantList values; // in the order of the statement's "?"
};

// "SELECT data,name,type,address FROM <table>" and " WHERE 1", " WHERE address=?", " WHERE type=?",
// " WHERE (type=? or type=?)", the last two joined with " and address=?" when an address is chosen too.
BoundStatement fileListStatement(const QString &table, const FileFilter &filter);
