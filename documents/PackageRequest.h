#pragma once
// The document package: a contract, an invoice and the three acts of one estimate made in one go into
// one folder. What the user asks for (the documents ticked, their numbers, dates and formats) and how
// the package window fills it at first: the numbers the contract and the invoice windows would take (the
// estimate's number), the act number from the customer/object counter, and, with numbering by date,
// the numbers made from the package's date.

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QVector>

class EstimateDocument;
class MainSettings;
class SettingsStore;

// The documents of a package, in the order they are made.
enum class PackageDoc { Contract, Invoice, Ks2, Ks3, Act };

namespace PackageDocs {
// "Договор", "Счёт", "Акт КС-2", "Акт КС-3", "Акт".
QString caption(PackageDoc doc);
// What the progress window shows while the document is made: "Создаётся... Договор".
QString progressText(PackageDoc doc);
} // namespace PackageDocs

struct PackageRequest {
    QDate date;     // "Дата пакета": the date of every document
    QString folder; // "Папка"

    bool contract = true;
    QString contractNumber;
    QDate contractEnd; // "Предположительная дата окончания" of the contract
    bool contractPdf = false;

    bool invoice = true;
    QString invoiceNumber;
    bool invoicePdf = false;

    bool ks2 = true;
    bool ks3 = true;
    bool act = true;
    QString actNumber;     // EditNumAkt
    QString actNumberWord; // EditNumAktWord: the act's text number, put before the number
    QDate actsEnd; // "Предположительная дата окончания" of КС-2 and КС-3
    bool actsPdf = false;

    // The ticked documents in the order of making.
    QVector<PackageDoc> ticked() const;
    // The act's number as its files and rows carry it: text number + "-" + number, or either alone.
    QString actFullNumber() const;
    // "Все PDF".
    void allPdf();
};

// The main window's numbering by date: the toggle spdDateNumericSmetaWord and the order of the digits
// (RadioButtonFormat1 on, the default: "DDMMYYYY"; off: "YYYYMMDD").
struct PackageNumbering {
    bool byDate = false;
    bool yearFirst = false;
    static PackageNumbering read(const MainSettings *settings, const SettingsStore *store);
};

// The numbers a package date gives with numbering by date.
struct PackageDateNumbers {
    QString contract; // the date followed by "-1"
    QString invoice;  // the same
    QString actWord;  // the bare date
};
PackageDateNumbers numbersFromDate(const QDate &date, bool yearFirst);

namespace PackageDefaults {

// The package of the estimate as the window first shows it, for the date given: every document ticked
// in its default format (DOC, XLS), the folder of the estimate's file, the end dates on the package's
// date, the contract and invoice numbers of the estimate (from the date with numbering by date), the
// act number from the counter NumDoc.Act of the estimate's customer and object (people: the people
// database, may be closed) and, with numbering by date, the date as the act's text number.
PackageRequest make(const EstimateDocument &document, QSqlDatabase people, const PackageNumbering &numbering,
                    const QDate &date);

// The package date changed: with numbering by date the numbers follow it.
void applyDate(PackageRequest *request, const PackageNumbering &numbering, const QDate &date);

} // namespace PackageDefaults
