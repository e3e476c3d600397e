#pragma once
// Entering a saved estimate in the register of documents (mydoc.db, tables documents and drafts) and
// the link back from the document: its one-row table mydoc (iddoc = the register row, note "doc" or
// "draft"). Also the customer/object counter NumDoc of the people database.

#include <QDate>
#include <QSqlDatabase>
#include <QString>

namespace Registration {

inline const QString kDoc = QStringLiteral("doc");
inline const QString kDraft = QStringLiteral("draft");

// What the register keeps of a saved estimate (names as shown; they are stored with backticks).
struct Entry {
    QDate date;
    QString name;     // display name
    QString fileName; // full path of the document file
    QString client;
    QString object;
    QString summat; // materials
    QString sumrab; // works
    QString allsum; // grand total
    bool draft = false;
};

struct Result {
    bool ok = false;
    bool inserted = false; // a new register row (and mydoc row) was made by prepare
    QString table;         // "documents" or "drafts"
    qlonglong id = 0;      // the register row
    QString error;
};

// The link of the working database: its mydoc note ("doc", "draft" or empty when unregistered).
QString note(QSqlDatabase document);

// Registration on save, in two steps around the writing of the file. prepare, before the file is
// written: a document without a mydoc row gets its register row (drafts or documents by the draft
// flag) and the mydoc row that links to it, so that the file carries the link; a registered one only
// reads its link. complete, after the file was written: the register row of an already registered
// document is updated. When the file could not be written, undo takes back what prepare inserted,
// so that the register never names a file that was not written.
Result prepare(QSqlDatabase document, QSqlDatabase mydoc, const Entry &entry);
Result complete(QSqlDatabase mydoc, Result prepared, const Entry &entry);
void undo(QSqlDatabase document, QSqlDatabase mydoc, const Result &prepared);
// Both steps at once (the file is written by the caller afterwards).
Result registerOnSave(QSqlDatabase document, QSqlDatabase mydoc, const Entry &entry);

// The draft flag after opening a file: its mydoc note decides; an unregistered file is a draft when
// it lies in the drafts folder.
bool draftAfterOpen(const QString &note, bool inDraftsFolder);

// Amount text in the register's "0,00" form (empty or unreadable text counts as 0).
QString money(const QString &text);

// NumDoc bookkeeping: one record per customer and object (blanks normalised). A new pair is inserted
// with the estimate's number (1 when it has none); an existing pair only rises to a higher number.
// Nothing is done without both a customer and an object. False with the reason on failure.
bool countEstimate(QSqlDatabase people, const QString &customer, const QString &object, const QString &number,
                   QString *error = nullptr);
// The act counter of the pair (column Act) holds the number the next act takes: an act made with the
// number N raises it to N + 1 (a pair without a record gets one; an act whose number is not a whole
// number counts as act 0 and only makes sure the record exists). Same rules as above otherwise.
bool countAct(QSqlDatabase people, const QString &customer, const QString &object, const QString &number,
              QString *error = nullptr);
// The act counter of the pair; 0 when there is none.
qlonglong actCounter(QSqlDatabase people, const QString &customer, const QString &object);

// The register row the document is entered under (its mydoc row): id 0 and an empty note when the
// document was never saved.
struct Link {
    qlonglong id = 0;
    QString note; // kDoc or kDraft
};
Link link(QSqlDatabase document);

// ----- The register window's changes. The tables documents and drafts are written only here.

// The two lists of the register.
enum class List { Documents, Drafts };
QString tableOf(List list); // "documents" or "drafts"
QString noteOf(List list);  // the document file's mydoc note: "doc" or "draft"

// NFinish: the estimate is finished on `day` (status 1, dataend). False with the reason on failure.
bool finish(QSqlDatabase mydoc, qlonglong id, const QDate &day, QString *error = nullptr);

// What the dialog "Редактирование" changes. The finish date and status are kept for documents only;
// an estimate in work has no finish date and a NULL status, never 0.
struct Edit {
    QDate date;
    QString name; // as shown
    bool finished = false;
    QDate finishDate;
};
// NEdit / MEditDraft: date, name, month and year (date_compare stays as it was), then the finish
// date and status of a document. One transaction.
bool edit(QSqlDatabase mydoc, List list, qlonglong id, const Edit &values, QString *error = nullptr);

// NDelete / MDelDraft: the row only; the file and its contract, invoice and acts stay.
bool remove(QSqlDatabase mydoc, List list, qlonglong id, QString *error = nullptr);

// A move between the lists: the row goes into the other list under `newFileName` (its date,
// name, customer, object, amounts, month and year go with it) and leaves this one. Returns the new
// row's id, 0 on failure (nothing written). A file move holds its own transaction around this
// call and the renaming of the file.
qlonglong transfer(QSqlDatabase mydoc, List from, qlonglong id, const QString &newFileName,
                   QString *error = nullptr);

// The link inside a document file on disk, opened on a connection of its own: its mydoc table
// (made when the file lacks it) then holds the one row (iddoc = id, note). One transaction.
bool relinkFile(const QString &documentPath, qlonglong id, const QString &note, QString *error = nullptr);

} // namespace Registration
