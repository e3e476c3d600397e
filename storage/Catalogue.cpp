#include "Catalogue.h"

#include <QRegularExpression>

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

const QStringList kPriceColumns = {"edras", "nameras", "edizm", "rub", "dol", "grn",
                                   "br",    "tenge",   "rec",   "link", "mat", "koef"};
const QStringList kResourceColumns = {"name", "edizm", "cena", "ras", "val", "koef", "norma"};
const QStringList kCustomerColumns = {"fio", "email", "phone", "object", "note", "address", "fax", "okpo", "function",
                                      "numroom", "Region", "City", "Area", "Street", "House", "Agent"};
const QStringList kObjectColumns = {"object", "fio", "namebuild", "addressbuild", "note"};
const QStringList kRequisiteColumns = {"id",   "name",    "certificate", "pasport", "adres",      "inn",
                                       "kpp",  "boss",    "glavbuh",     "account", "bank",       "bik",
                                       "koraccount", "fax", "okpo",       "note"};
const QStringList kKoefColumns = {"rows",     "checked",  "title",    "value",       "type",
                                  "actionn",  "radio",    "CheckBox", "SpinBox",     "ComboBox",
                                  "EditComment", "CornerButton", "comment", "NumOrProc"};
const QStringList kSmetaColumns = {"numpos", "edras",   "nameras", "edizm",   "kolvo",   "price",
                                   "summa",  "idRas",   "NamePrice", "KoefBrig", "section", "machine",
                                   "mat",    "total",   "laboriousness", "idwork"};

QString requisiteTable(const QString &name) { return table(name, "ik", kRequisiteColumns); }

QString registerTable(const QString &name) {
    return QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (id INTEGER PRIMARY KEY AUTOINCREMENT, data DATE, "
                          "date_compare INTEGER, dataend DATE, name TEXT, filename TEXT, client TEXT, object TEXT, "
                          "summat TEXT, sumrab TEXT, allsum TEXT, contract TEXT, account TEXT, status INTEGER, "
                          "act INTEGER, month TEXT, year TEXT)")
        .arg(name);
}

QString outputTable(const QString &name) {
    return QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (id INTEGER PRIMARY KEY AUTOINCREMENT, iddoc TEXT, "
                          "data DATE, date_compare INTEGER, dataend DATE, number TEXT, name TEXT, filename TEXT, "
                          "ext TEXT, summat TEXT, sumrab TEXT, allsum TEXT, status INTEGER, month TEXT, year TEXT)")
        .arg(name);
}

} // namespace

QString connectionComponent(Db db) {
    switch (db) {
    case Db::Smeta: return QStringLiteral("FDConnectionSmeta");
    case Db::Price: return QStringLiteral("FDConnectionPrice");
    case Db::Cash: return QStringLiteral("FDConnectionCash");
    case Db::People: return QStringLiteral("FDConnectionPeople");
    case Db::KoefTemp: return QStringLiteral("FDConnectionKoefTemp");
    case Db::MyDoc: return QStringLiteral("FDConnectionMyDoc");
    case Db::Mat: return QStringLiteral("FDConnectionMat");
    case Db::Shema: return QStringLiteral("FDConnectionShema");
    case Db::ReturnAction: return QStringLiteral("FDConnectionReturnAction");
    case Db::Mail: return QStringLiteral("FDConnectionMail");
    }
    return {};
}

QString relativePath(Db db) {
    switch (db) {
    case Db::Smeta: return QStringLiteral("Sp/smeta.db");
    case Db::Price: return QStringLiteral("Sp/price.db");
    case Db::Cash: return QStringLiteral("Sp/cashbase.db");
    case Db::People: return QStringLiteral("Sp/peoplebase.db");
    case Db::KoefTemp: return QStringLiteral("Sp/coefficients.db");
    case Db::MyDoc: return QStringLiteral("Sp/mydoc.db");
    case Db::Mat: return QStringLiteral("Sp/listmat.db");
    case Db::Shema: return QStringLiteral("Sp/schema.db");
    case Db::ReturnAction: return QStringLiteral("Sp/actions.db");
    case Db::Mail: return QStringLiteral("Sp/mail.db");
    }
    return {};
}

QStringList createStatements(Db db) {
    switch (db) {
    case Db::Smeta:
        // The order of the working database; a document file is a copy of it, so opening an older
        // file through this connection adds whatever table it lacks.
        return {
            table("Afiles", "id", {"name", "type", "actionn", "shablon", "note"}),
            table("parametrs", "_id", {"name", "value", "note"}),
            table("koef", "id", kKoefColumns),
            QStringLiteral("CREATE TABLE IF NOT EXISTS materials (_id INTEGER PRIMARY KEY AUTOINCREMENT, edras TEXT, "
                           "namemat TEXT, edizm TEXT, kolvo TEXT, price TEXT, summa TEXT, note TEXT, reserve TEXT, "
                           "numpos INTEGER)"),
            table("smeta", "_id", kSmetaColumns),
            QStringLiteral("CREATE TABLE IF NOT EXISTS shema (number TEXT, name TEXT, stena TEXT, type TEXT, "
                           "width TEXT, height TEXT, otkos TEXT, sill TEXT, bblock TEXT)"),
            table("Object", "_id", kObjectColumns),
            table("Customer", "_id", kCustomerColumns),
            requisiteTable("Requisite"),
            requisiteTable("RequisiteZak"),
            table("ks2", "id", {"name", "value"}),
            table("Account", "id", {"name", "value", "note"}),
            table("financial", "id", {"name", "value", "note"}),
            table("cash", "id", {"data", "prihod", "myzp", "material", "transport", "workzp", "prochee", "note"}),
            QStringLiteral("CREATE TABLE IF NOT EXISTS mydoc (id INTEGER PRIMARY KEY AUTOINCREMENT, iddoc INTEGER, "
                           "note TEXT)"),
            table("work", "_id", {"basename", "note"}),
        };
    case Db::Price:
        return {table("price1", "id", kPriceColumns),    table("price2", "id", kPriceColumns),
                table("brigade", "id", kPriceColumns),   table("resurs1", "id", kResourceColumns),
                table("resurs2", "id", kResourceColumns), table("resurs_s", "id", kResourceColumns)};
    case Db::Cash:
        return {
            QStringLiteral("CREATE TABLE IF NOT EXISTS cash (_id INTEGER PRIMARY KEY AUTOINCREMENT, date TEXT, "
                           "incoming TEXT, my_salary TEXT, material TEXT, transport TEXT, salary_workers TEXT, "
                           "other TEXT, note TEXT, customer TEXT, object TEXT, month TEXT, year TEXT, "
                           "date_compare TEXT, cheki TEXT )"),
            QStringLiteral("CREATE TABLE IF NOT EXISTS checks (id INTEGER PRIMARY KEY AUTOINCREMENT, date TEXT, "
                           "name TEXT, edizm TEXT, kolvo TEXT, price TEXT, sum TEXT, val TEXT )"),
            table("customer", "_id", kCustomerColumns),
            table("Object", "_id", kObjectColumns),
            requisiteTable("RequisiteZak"),
            requisiteTable("Requisite"),
        };
    case Db::People:
        return {
            table("Customer", "_id", kCustomerColumns),
            table("Object", "_id", kObjectColumns),
            QStringLiteral("CREATE TABLE IF NOT EXISTS NumDoc (id INTEGER PRIMARY KEY AUTOINCREMENT, Client TEXT, "
                           "Object TEXT, Smeta INTEGER, Act INTEGER)"),
            table("Contractor", "id", {"shotname", "longname", "phone"}),
            QStringLiteral("CREATE TABLE IF NOT EXISTS LastDoc (id INTEGER PRIMARY KEY AUTOINCREMENT, value TEXT)"),
        };
    case Db::KoefTemp:
        // A saved coefficient set is a named group of coefficient lines.
        return {table("Koef", "id", QStringList{"nameset"} + kKoefColumns)};
    case Db::MyDoc:
        return {registerTable("documents"), registerTable("drafts"),
                QStringLiteral("CREATE TABLE IF NOT EXISTS contract (id INTEGER PRIMARY KEY AUTOINCREMENT, iddoc TEXT, "
                               "data DATE, date_compare INTEGER, dataend DATE, number TEXT, name TEXT, "
                               "filename TEXT, ext TEXT, avans TEXT, allsum TEXT, status INTEGER, month TEXT, "
                               "year TEXT)"),
                outputTable("account"), outputTable("act")};
    case Db::Mat: {
        const QString list = QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                                            "namemat TEXT, edizm TEXT, price TEXT, nummat TEXT, idmat TEXT, "
                                            "numpos INTEGER)");
        return {list.arg("list1"), list.arg("list2"), list.arg("list3"),
                QStringLiteral("CREATE TABLE IF NOT EXISTS storage (id INTEGER PRIMARY KEY AUTOINCREMENT, data DATE, "
                               "namemat TEXT, edizm TEXT, kolvo TEXT, price TEXT, summa TEXT, minlimit TEXT, "
                               "client TEXT, sale TEXT, customer TEXT, object TEXT, month TEXT, year TEXT, "
                               "date_compare TEXT, dataoffs DATE, note TEXT)")};
    }
    case Db::Shema:
        // A room scheme: its walls and openings, one row each, grouped by scheme name.
        return {table("shemas", "id", {"nameshema", "number", "name", "stena", "type", "width", "height", "otkos",
                                       "sill", "bblock"})};
    case Db::ReturnAction:
        return {QStringLiteral("CREATE TABLE IF NOT EXISTS ReturnAction (_id INTEGER PRIMARY KEY AUTOINCREMENT,"
                               "numpos TEXT,edras TEXT,nameras TEXT,edizm TEXT,kolvo TEXT,price TEXT,summa TEXT,"
                               "idRas TEXT,NamePrice TEXT,KoefBrig TEXT,_action TEXT,MouseDownRow TEXT,"
                               "MouseUpRow TEXT,hint TEXT)"),
                QStringLiteral("CREATE TABLE IF NOT EXISTS PopupMenuEdit (numpos TEXT, edras TEXT, nameras TEXT,"
                               "edizm TEXT, kolvo TEXT, price TEXT, summa TEXT, idRas TEXT, NamePrice TEXT, "
                               "KoefBrig TEXT)")};
    case Db::Mail:
        return {table("folders", "id", {"name", "note"}),
                table("messages", "id", {"folder", "sender", "recipients", "subject", "body", "attachments",
                                         "data", "date_compare", "seen"})};
    }
    return {};
}

QStringList tableNames(Db db) {
    static const QRegularExpression re(QStringLiteral("CREATE TABLE IF NOT EXISTS (\\w+)"));
    QStringList names;
    for (const QString &s : createStatements(db))
        names << re.match(s).captured(1);
    return names;
}
