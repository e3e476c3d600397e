#pragma once
// The document store: the user's files kept on the program's MySQL server in a table of their own,
// named by the account key (FDConnectionServerFile / FDQueryServerFile). A row describes one upload:
// when, the file's name, type, own time, object address and uploader, and the file's bytes (empty for
// a picture, which lives on the file server). A row is told apart by name and upload time.
//
// One DocumentStore is one connection and belongs to the thread that opened it (see StoreThread).
// Every value is a bound parameter; the table's name is checked before it is used.

#include "ServerFileKinds.h"
#include "StoredFile.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>

class TransferControl;
class QSqlQuery;
struct st_mysql;
using MYSQL = st_mysql;

// Where the store is and whose table is used.
struct StoreAccess {
    QString host;
    int port = 3306;
    QString database;
    QString user;
    QString password;
    QString table;           // the account key
    int timeoutSeconds = 60; // no byte moves this long: the statement ends

    // What keeps the store from being used, in Russian; empty when it may be.
    QString problem() const;
    QString serverName() const;
    bool operator==(const StoreAccess &o) const {
        return host == o.host && port == o.port && database == o.database && user == o.user &&
               password == o.password && table == o.table && timeoutSeconds == o.timeoutSeconds;
    }
    bool operator!=(const StoreAccess &o) const { return !(*this == o); }
};

class DocumentStore {
public:
    struct Result {
        bool ok = false;
        bool cancelled = false;
        QString error; // in Russian, with the server's own reason
        explicit operator bool() const { return ok; }
    };

    DocumentStore();
    ~DocumentStore();
    DocumentStore(const DocumentStore &) = delete;
    DocumentStore &operator=(const DocumentStore &) = delete;

    // Connects, runs "USE" of the database and creates the account's table when it is missing.
    Result open(const StoreAccess &access);
    // Opens with `access` unless the connection is open with it already.
    Result use(const StoreAccess &access);
    void close();
    bool isOpen() const;
    const StoreAccess &access() const { return m_access; }

    // The object addresses of the rows, each once, in the order of the alphabet.
    Result addresses(QStringList *out);
    Result list(const FileFilter &filter, QList<StoredFile> *out);
    // Writes a row with the file's bytes (none for a picture). When the table holds the name with the
    // same upload time already, row->data moves on by a second. A cancelled or broken insert leaves no
    // row behind.
    Result insert(StoredFile *row, const QByteArray &bytes, TransferControl *control = nullptr);
    // The row and its bytes; an error unless every byte the row holds arrived.
    Result fetch(const QString &name, const QString &data, StoredFile *row, QByteArray *bytes,
                 TransferControl *control = nullptr);
    Result remove(const QString &name, const QString &data);
    Result removeAll();
    // How many rows describe the picture `name` of the folder of `address`: they share one file on
    // the file server.
    Result picturesSharing(const QString &name, const QString &address, int *count);

    static QString createStatement(const QString &table);
    // Loads the MySQL client library on the calling (main) thread, once: stores are opened on other
    // threads, and the library's start is not safe to run on two at once.
    static void prepareDriver();

private:
    bool ensureOpen(Result *result);
    // Prepares, binds and runs a statement; a connection lost while idle is opened again once.
    bool run(QSqlQuery *q, const QString &sql, const QVariantList &values, Result *result);
    bool execTransfer(QSqlQuery &q, TransferControl *control, int direction, Result *result);
    MYSQL *handle() const;
    int socket() const;
    bool fetchRow(const QString &name, const QString &data, qint64 expected, StoredFile *row,
                  QByteArray *bytes, TransferControl *control, Result *result);
    Result failure(const QString &text) const;

    QString m_connection;
    StoreAccess m_access;
    bool m_accessSet = false;
    qint64 m_maxPacket = 0;
};
