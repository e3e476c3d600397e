#pragma once
// The catalogue of local databases: every file lives in the data folder's Sp sub-folder and is
// opened by one named connection of TModuleSQL. Each database has numbered upgrade steps; the number
// of the last one is the database's current version (see Schema.h for how they run).

#include <QList>
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

constexpr std::array<Db, 10> kAllDatabases = {Db::Smeta, Db::Price, Db::Cash,  Db::People,       Db::KoefTemp,
                                              Db::MyDoc, Db::Mat,   Db::Shema, Db::ReturnAction, Db::Mail};

// A column that a step adds to a table made before the column existed.
struct NewColumn {
    QString table;
    QString column;
    QString type;
};

// One upgrade step. It runs once per file, in the transaction of the upgrade: first its columns
// (each added only when the table lacks it: files of the version before the step may have it from
// older programs), then its statements in order, then, when completeColumns is set, every table that
// its CREATE TABLE statements name and that existed already gains the columns it lacks (older files
// hold the same tables with fewer columns).
struct SchemaStep {
    int number = 0;
    QString owner; // the subsystem (folder) that writes what the step makes
    QList<NewColumn> columns;
    QStringList statements;
    bool completeColumns = false;
};

// Component name of the connection, e.g. "FDConnectionSmeta".
QString connectionComponent(Db db);
// File name below the data folder, e.g. "Sp/smeta.db".
QString relativePath(Db db);
// The upgrade steps of db, numbered 1, 2, ... without gaps.
const QList<SchemaStep> &schemaSteps(Db db);
// Names of the tables the steps create, in the order they are created.
QStringList tableNames(Db db);
// A file that two running programs may write at once: every database but the working estimate, which
// belongs to one program. Such files are kept in write-ahead-log mode.
bool isShared(Db db);
// Kept for one session only: the working estimate (replaced by every open, copied durably by a save)
// and the undo journal (emptied for every document). Their commits do not wait for the disk.
bool isScratch(Db db);
