#pragma once
// The catalogue of local databases: every file lives in the data folder's Sp sub-folder and is
// opened by one named connection of TModuleSQL.

#include <QString>
#include <QStringList>
#include <array>

enum class Db {
    Smeta,        // Sp/smeta.db: the working copy of the open estimate
    Price,        // Sp/price.db: price lists and resources
    Cash,         // Sp/cashbase.db: cash book, customers and requisites
    People,       // Sp/peoplebase.db: customers, objects, contractors, counters, recent files
    KoefTemp,     // Sp/coefficients.db: saved coefficient sets
    MyDoc,        // Sp/mydoc.db: register of documents
    Mat,          // Sp/listmat.db: materials lists and warehouse
    Shema,        // Sp/schema.db: room schemes
    ReturnAction, // Sp/actions.db: undo journal and clipboard of the estimate grid
    Mail,         // Sp/mail.db: mail store
};

constexpr std::array<Db, 10> kAllDatabases = {Db::Smeta, Db::Price,  Db::Cash,  Db::People,       Db::KoefTemp,
                                              Db::MyDoc, Db::Mat,    Db::Shema, Db::ReturnAction, Db::Mail};

// Component name of the connection, e.g. "FDConnectionSmeta".
QString connectionComponent(Db db);
// File name below the data folder, e.g. "Sp/smeta.db".
QString relativePath(Db db);
// The "CREATE TABLE IF NOT EXISTS" statements run after every connect, in order.
QStringList createStatements(Db db);
// Names of the tables those statements create, in the same order.
QStringList tableNames(Db db);
