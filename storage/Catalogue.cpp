#include "Catalogue.h"

#include <QRegularExpression>

// How a table is added: append a step to its database's list below (never edit a step that has
// shipped: files out there are already past it). The step says which subsystem owns what it makes;
// only that subsystem writes the table. A new column of an existing table is a NewColumn of a new
// step; a look-up on a column gets its index in the step that creates the table, or in a new step
// for a table that exists already.

namespace {

QString textColumns(const QStringList &names) {
    QStringList parts;
    for (const QString &n : names)
        parts << n + QStringLiteral(" TEXT");
    return parts.join(QStringLiteral(", "));
}

QString table(const QString &name, const QString &key, const QStringList &textCols) {
    return QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (%2 INTEGER PRIMARY KEY AUTOINCREMENT, %3)")
        .arg(name, key, textColumns(textCols));
}

// "CREATE INDEX IF NOT EXISTS price1_rec ON price1 (rec)": one name per table and columns.
QString index(const QString &tableName, const QStringList &columns) {
    return QStringLiteral("CREATE INDEX IF NOT EXISTS %1_%2 ON %1 (%3)")
        .arg(tableName, columns.join(QLatin1Char('_')), columns.join(QStringLiteral(", ")));
}

const QStringList kPriceColumns = {"edras", "nameras", "edizm", "rub",  "dol", "grn",
                                   "br",    "tenge",   "rec",   "link", "mat", "koef"};
const QStringList kResourceColumns = {"name", "edizm", "cena", "ras", "val", "koef", "norma"};
const QStringList kCustomerColumns = {"fio",  "email",  "phone",    "object",  "note",   "address",
                                      "fax",  "okpo",   "function", "numroom", "Region", "City",
                                      "Area", "Street", "House",    "Agent"};
const QStringList kObjectColumns = {"object", "fio", "namebuild", "addressbuild", "note"};
const QStringList kRequisiteColumns = {"id",         "name", "certificate", "pasport", "adres", "inn",
                                       "kpp",        "boss", "glavbuh",     "account", "bank",  "bik",
                                       "koraccount", "fax",  "okpo",        "note"};
const QStringList kKoefColumns = {"rows",        "checked",      "title",    "value",    "type",
                                  "actionn",     "radio",        "CheckBox", "SpinBox",  "ComboBox",
                                  "EditComment", "CornerButton", "comment",  "NumOrProc"};
const QStringList kSmetaColumns = {"numpos", "edras", "nameras",       "edizm",    "kolvo",   "price",
                                   "summa",  "idRas", "NamePrice",     "KoefBrig", "section", "machine",
                                   "mat",    "total", "laboriousness", "idwork"};

QString requisiteTable(const QString &name) {
    return table(name, "ik", kRequisiteColumns);
}

QString registerTable(const QString &name) {
    return QStringLiteral(
               "CREATE TABLE IF NOT EXISTS %1 (id INTEGER PRIMARY KEY AUTOINCREMENT, data DATE, "
               "date_compare INTEGER, dataend DATE, name TEXT, filename TEXT, client TEXT, object TEXT, "
               "summat TEXT, sumrab TEXT, allsum TEXT, contract TEXT, account TEXT, status INTEGER, "
               "act INTEGER, month TEXT, year TEXT)")
        .arg(name);
}

QString outputTable(const QString &name) {
    return QStringLiteral(
               "CREATE TABLE IF NOT EXISTS %1 (id INTEGER PRIMARY KEY AUTOINCREMENT, iddoc TEXT, "
               "data DATE, date_compare INTEGER, dataend DATE, number TEXT, name TEXT, filename TEXT, "
               "ext TEXT, summat TEXT, sumrab TEXT, allsum TEXT, status INTEGER, month TEXT, year TEXT)")
        .arg(name);
}

// The working estimate and every document file (a document is a copy of it).
QList<SchemaStep> smetaSteps() {
    return {
        {1,
         "estimate",
         {},
         {
             // Owners: the estimate writes Afiles, parametrs and smeta (EstimateStore), koef
             // (Coefficients), materials (MaterialsStore only), mydoc (Registration), work, and the
             // copies Object, Customer, Requisite, RequisiteZak (EstimateHeader); shema belongs to the
             // room schemes; ks2 to the act (the estimate writes its defaults), Account and financial to
             // the invoice, cash to the cash book.
             table("Afiles", "id", {"name", "type", "actionn", "shablon", "note"}),
             table("parametrs", "_id", {"name", "value", "note"}),
             table("koef", "id", kKoefColumns),
             QStringLiteral(
                 "CREATE TABLE IF NOT EXISTS materials (_id INTEGER PRIMARY KEY AUTOINCREMENT, edras TEXT, "
                 "namemat TEXT, edizm TEXT, kolvo TEXT, price TEXT, summa TEXT, note TEXT, reserve TEXT, "
                 "numpos INTEGER)"),
             table("smeta", "_id", kSmetaColumns),
             QStringLiteral(
                 "CREATE TABLE IF NOT EXISTS shema (number TEXT, name TEXT, stena TEXT, type TEXT, "
                 "width TEXT, height TEXT, otkos TEXT, sill TEXT, bblock TEXT)"),
             table("Object", "_id", kObjectColumns),
             table("Customer", "_id", kCustomerColumns),
             requisiteTable("Requisite"),
             requisiteTable("RequisiteZak"),
             table("ks2", "id", {"name", "value"}),
             table("Account", "id", {"name", "value", "note"}),
             table("financial", "id", {"name", "value", "note"}),
             table("cash", "id",
                   {"data", "prihod", "myzp", "material", "transport", "workzp", "prochee", "note"}),
             QStringLiteral(
                 "CREATE TABLE IF NOT EXISTS mydoc (id INTEGER PRIMARY KEY AUTOINCREMENT, iddoc INTEGER, "
                 "note TEXT)"),
             table("work", "_id", {"basename", "note"}),
         },
         // Documents of earlier versions hold these tables with fewer columns (a Customer without
         // numroom, a smeta without idwork, materials without numpos).
         true},
        // The rates' resources find their material by name on every quantity edit.
        {2, "estimate", {}, {index("materials", {"namemat"})}},
        // Acts by completed volumes (owner: the acts, documents/ActVolumes). actlist: one row per act
        // made, with its number, date, reporting period and totals; actvolume: the rows each act
        // closed (idact), keyed by the estimate row ("w" + idwork, "m" + the material's _id), with
        // what the act printed; rows of idact 0 hold the quantities typed for the next act.
        {3,
         "documents",
         {},
         {table("actlist", "id",
                {"number", "data", "date_compare", "periods", "periodpo", "year", "worksraw", "materialsraw",
                 "works", "materials", "vat", "grand"}),
          QStringLiteral(
              "CREATE TABLE IF NOT EXISTS actvolume (id INTEGER PRIMARY KEY AUTOINCREMENT, "
              "idact INTEGER, rowkey TEXT, kind TEXT, section TEXT, sectiontotal TEXT, subsection TEXT, "
              "subsectiontotal TEXT, numpos TEXT, edras TEXT, nameras TEXT, edizm TEXT, kolvo TEXT, "
              "price TEXT, summa TEXT)"),
          index("actlist", {"number"}), index("actvolume", {"idact"})}},
    };
}

QList<SchemaStep> priceSteps() {
    return {
        // Owner: the price base (PriceStore writes the lists, the resources are read by rate).
        {1,
         "pricebase",
         {},
         {table("price1", "id", kPriceColumns), table("price2", "id", kPriceColumns),
          table("brigade", "id", kPriceColumns), table("resurs1", "id", kResourceColumns),
          table("resurs2", "id", kResourceColumns), table("resurs_s", "id", kResourceColumns)},
         // Lists of earlier versions may lack a currency or the crew columns; a list is written back
         // into its table as it is.
         true},
        // Look-ups: a rate by its record number (crew prices, the crew sheet) and by name (live
        // search), the resources of a rate.
        {2,
         "pricebase",
         {},
         {index("price1", {"rec"}), index("price2", {"rec"}), index("price1", {"nameras"}),
          index("price2", {"nameras"}), index("resurs1", {"ras"}), index("resurs2", {"ras"}),
          index("resurs_s", {"ras"})}},
    };
}

QList<SchemaStep> cashSteps() {
    return {
        {1,
         "cashbook",
         {},
         {
             // Owners: the cash book writes cash and checks; the customers register writes customer,
             // Object and RequisiteZak, the contractors register Requisite.
             QStringLiteral(
                 "CREATE TABLE IF NOT EXISTS cash (_id INTEGER PRIMARY KEY AUTOINCREMENT, date TEXT, "
                 "incoming TEXT, my_salary TEXT, material TEXT, transport TEXT, salary_workers TEXT, "
                 "other TEXT, note TEXT, customer TEXT, object TEXT, month TEXT, year TEXT, "
                 "date_compare TEXT, cheki TEXT )"),
             QStringLiteral(
                 "CREATE TABLE IF NOT EXISTS checks (id INTEGER PRIMARY KEY AUTOINCREMENT, date TEXT, "
                 "name TEXT, edizm TEXT, kolvo TEXT, price TEXT, sum TEXT, val TEXT )"),
             table("customer", "_id", kCustomerColumns),
             table("Object", "_id", kObjectColumns),
             requisiteTable("RequisiteZak"),
             requisiteTable("Requisite"),
         }},
        // Customers registered before the apartment number was kept.
        {2, "customers", {{"customer", "numroom", "TEXT"}}, {}},
        {3,
         "customers",
         {},
         {index("customer", {"fio"}), index("Object", {"fio", "object"}),
          index("cash", {"customer", "object"}), index("checks", {"val"}), index("RequisiteZak", {"id"}),
          index("Requisite", {"id"})}},
        // The cash book filters its records by month and year and by period, and lists their years.
        {4, "cashbook", {}, {index("cash", {"date_compare"}), index("cash", {"year", "month"})}},
    };
}

QList<SchemaStep> peopleSteps() {
    return {
        {1,
         "customers",
         {},
         {
             // Owners: the customers register writes Customer, Object and Contractor; the estimate
             // writes NumDoc (Registration, on save) and LastDoc (RecentDocuments).
             table("Customer", "_id", kCustomerColumns),
             table("Object", "_id", kObjectColumns),
             QStringLiteral(
                 "CREATE TABLE IF NOT EXISTS NumDoc (id INTEGER PRIMARY KEY AUTOINCREMENT, Client TEXT, "
                 "Object TEXT, Smeta INTEGER, Act INTEGER)"),
             table("Contractor", "id", {"shotname", "longname", "phone"}),
             QStringLiteral(
                 "CREATE TABLE IF NOT EXISTS LastDoc (id INTEGER PRIMARY KEY AUTOINCREMENT, value TEXT)"),
         }},
        {2, "customers", {{"Customer", "numroom", "TEXT"}}, {}},
        {3,
         "customers",
         {},
         {index("Customer", {"fio"}), index("Object", {"fio", "object"}),
          index("NumDoc", {"Client", "Object"}), index("LastDoc", {"value"}),
          index("Contractor", {"shotname"})}},
    };
}

QList<SchemaStep> koefTempSteps() {
    // Owner: the estimate's coefficients (a saved set is a named group of coefficient lines).
    return {{1, "estimate", {}, {table("Koef", "id", QStringList{"nameset"} + kKoefColumns)}}};
}

QList<SchemaStep> myDocSteps() {
    return {
        // Owners: the register of documents and drafts is written by the estimate's Registration on
        // save (and by the register window); contract, account and act by their documents.
        {1,
         "documents",
         {},
         {registerTable("documents"), registerTable("drafts"),
          QStringLiteral(
              "CREATE TABLE IF NOT EXISTS contract (id INTEGER PRIMARY KEY AUTOINCREMENT, iddoc TEXT, "
              "data DATE, date_compare INTEGER, dataend DATE, number TEXT, name TEXT, "
              "filename TEXT, ext TEXT, avans TEXT, allsum TEXT, status INTEGER, month TEXT, "
              "year TEXT)"),
          outputTable("account"), outputTable("act")},
         // Registers of earlier versions hold these tables with fewer columns; they are completed here,
         // before step 2 indexes client and date_compare. (Completing only touches files still at
         // version 0, which so far could not pass step 2 at all.)
         true},
        // Look-ups: the register filters by customer and period, each output is found by its estimate.
        {2,
         "documents",
         {},
         {index("documents", {"client"}), index("documents", {"date_compare"}), index("drafts", {"client"}),
          index("drafts", {"date_compare"}), index("contract", {"iddoc"}), index("account", {"iddoc"}),
          index("act", {"iddoc"})}},
    };
}

QList<SchemaStep> matSteps() {
    const QString list =
        QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                       "namemat TEXT, edizm TEXT, price TEXT, nummat TEXT, idmat TEXT, "
                       "numpos INTEGER)");
    return {
        // Owner: the materials lists and the warehouse (storage).
        {1,
         "materials",
         {},
         {list.arg("list1"), list.arg("list2"), list.arg("list3"),
          QStringLiteral(
              "CREATE TABLE IF NOT EXISTS storage (id INTEGER PRIMARY KEY AUTOINCREMENT, data DATE, "
              "namemat TEXT, edizm TEXT, kolvo TEXT, price TEXT, summa TEXT, minlimit TEXT, "
              "client TEXT, sale TEXT, customer TEXT, object TEXT, month TEXT, year TEXT, "
              "date_compare TEXT, dataoffs DATE, note TEXT)")}},
        // The write-off report looks the warehouse up by customer and by object.
        {2, "materials", {}, {index("storage", {"customer"}), index("storage", {"object"})}},
        // The warehouse: stock rows are the rows without a write-off date; the report filters a
        // customer's write-offs by period.
        {3,
         "materials",
         {},
         {index("storage", {"dataoffs"}), index("storage", {"customer", "date_compare"})}},
    };
}

QList<SchemaStep> shemaSteps() {
    // Owner: the room schemes. A scheme is its walls and openings, one row each, grouped by name.
    return {{1,
             "calculators",
             {},
             {table("shemas", "id",
                    {"nameshema", "number", "name", "stena", "type", "width", "height", "otkos", "sill",
                     "bblock"})}}};
}

QList<SchemaStep> returnActionSteps() {
    return {
        // Owners: the estimate's UndoJournal writes ReturnAction, its RowClipboard PopupMenuEdit.
        // Both are emptied for every new document, never dropped.
        {1,
         "estimate",
         {},
         {QStringLiteral("CREATE TABLE IF NOT EXISTS ReturnAction (_id INTEGER PRIMARY KEY AUTOINCREMENT,"
                         "numpos TEXT,edras TEXT,nameras TEXT,edizm TEXT,kolvo TEXT,price TEXT,summa TEXT,"
                         "idRas TEXT,NamePrice TEXT,KoefBrig TEXT,_action TEXT,MouseDownRow TEXT,"
                         "MouseUpRow TEXT,hint TEXT)"),
          QStringLiteral("CREATE TABLE IF NOT EXISTS PopupMenuEdit (numpos TEXT, edras TEXT, nameras TEXT,"
                         "edizm TEXT, kolvo TEXT, price TEXT, summa TEXT, idRas TEXT, NamePrice TEXT, "
                         "KoefBrig TEXT)")}},
        // The journal's step number and the full cells of each row; dropping the undone steps
        // ("DELETE ... WHERE step > ?") and reading a step go through the index.
        {2,
         "estimate",
         {{"ReturnAction", "step", "INTEGER"}, {"ReturnAction", "cells", "TEXT"}},
         {index("ReturnAction", {"step"})}},
    };
}

QList<SchemaStep> mailSteps() {
    // Owner: the mail client.
    return {{1,
             "mail",
             {},
             {table("folders", "id", {"name", "note"}),
              table("messages", "id",
                    {"folder", "sender", "recipients", "subject", "body", "attachments", "data",
                     "date_compare", "seen"})}}};
}

} // namespace

QString connectionComponent(Db db) {
    switch (db) {
    case Db::Smeta:
        return QStringLiteral("FDConnectionSmeta");
    case Db::Price:
        return QStringLiteral("FDConnectionPrice");
    case Db::Cash:
        return QStringLiteral("FDConnectionCash");
    case Db::People:
        return QStringLiteral("FDConnectionPeople");
    case Db::KoefTemp:
        return QStringLiteral("FDConnectionKoefTemp");
    case Db::MyDoc:
        return QStringLiteral("FDConnectionMyDoc");
    case Db::Mat:
        return QStringLiteral("FDConnectionMat");
    case Db::Shema:
        return QStringLiteral("FDConnectionShema");
    case Db::ReturnAction:
        return QStringLiteral("FDConnectionReturnAction");
    case Db::Mail:
        return QStringLiteral("FDConnectionMail");
    }
    return {};
}

QString relativePath(Db db) {
    switch (db) {
    case Db::Smeta:
        return QStringLiteral("Sp/smeta.db");
    case Db::Price:
        return QStringLiteral("Sp/price.db");
    case Db::Cash:
        return QStringLiteral("Sp/cashbase.db");
    case Db::People:
        return QStringLiteral("Sp/peoplebase.db");
    case Db::KoefTemp:
        return QStringLiteral("Sp/coefficients.db");
    case Db::MyDoc:
        return QStringLiteral("Sp/mydoc.db");
    case Db::Mat:
        return QStringLiteral("Sp/listmat.db");
    case Db::Shema:
        return QStringLiteral("Sp/schema.db");
    case Db::ReturnAction:
        return QStringLiteral("Sp/actions.db");
    case Db::Mail:
        return QStringLiteral("Sp/mail.db");
    }
    return {};
}

const QList<SchemaStep> &schemaSteps(Db db) {
    static const QList<SchemaStep> smeta = smetaSteps(), price = priceSteps(), cash = cashSteps(),
                                   people = peopleSteps(), koefTemp = koefTempSteps(), myDoc = myDocSteps(),
                                   mat = matSteps(), shema = shemaSteps(), returnAction = returnActionSteps(),
                                   mail = mailSteps(), none;
    switch (db) {
    case Db::Smeta:
        return smeta;
    case Db::Price:
        return price;
    case Db::Cash:
        return cash;
    case Db::People:
        return people;
    case Db::KoefTemp:
        return koefTemp;
    case Db::MyDoc:
        return myDoc;
    case Db::Mat:
        return mat;
    case Db::Shema:
        return shema;
    case Db::ReturnAction:
        return returnAction;
    case Db::Mail:
        return mail;
    }
    return none;
}

QStringList tableNames(Db db) {
    static const QRegularExpression re(QStringLiteral("^CREATE TABLE IF NOT EXISTS (\\w+)"));
    QStringList names;
    for (const SchemaStep &step : schemaSteps(db))
        for (const QString &s : step.statements) {
            const QRegularExpressionMatch m = re.match(s);
            if (m.hasMatch())
                names << m.captured(1);
        }
    return names;
}

bool isShared(Db db) {
    return db != Db::Smeta;
}

bool isScratch(Db db) {
    return db == Db::Smeta || db == Db::ReturnAction;
}
