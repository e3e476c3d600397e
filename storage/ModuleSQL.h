#pragma once
// The data module: one named SQLite connection per catalogue entry. Paths are set when the module is
// created; a connection opens on first use and then brings its file to the current version of the
// catalogue (Schema.h). Shared files are opened in write-ahead-log mode with a busy timeout.

#include "Catalogue.h"

#include <QHash>
#include <QObject>
#include <QSqlDatabase>
#include <QString>
#include <functional>

class TModuleSQL : public QObject {
    Q_OBJECT
public:
    explicit TModuleSQL(const QString &dataFolder, QObject *parent = nullptr);
    ~TModuleSQL() override;

    QString dataFolder() const { return m_dataFolder; }
    QString filePath(Db db) const;
    // Qt connection name of the catalogue entry (unique per module instance).
    QString connectionName(Db db) const;

    // The open connection; opened and completed with its tables on first call. When the file cannot
    // be opened or is not a database, an invalid (closed) handle is returned, failed(db) is true and
    // the failure is reported once through the failure handler. A damaged working estimate (scratch)
    // is made anew instead.
    QSqlDatabase database(Db db);
    bool isOpen(Db db) const;
    bool failed(Db db) const { return m_failures.contains(db); }
    QString failure(Db db) const { return m_failures.value(db); }

    // Closes the connection (the file may then be replaced); the next database() reopens it.
    void close(Db db);
    void closeAll();
    // Close and open again.
    QSqlDatabase reconnect(Db db);
    // Points a connection at another file (the cash book may live elsewhere).
    void setFilePath(Db db, const QString &path);

    // Called once per failed database with a Russian text naming the file.
    void setFailureHandler(std::function<void(Db, const QString &)> handler) {
        m_onFailure = std::move(handler);
    }

private:
    // Opens and upgrades the file; a failure is recorded and (report) told to the handler.
    QSqlDatabase open(Db db, bool report);

    QString m_dataFolder;
    QString m_instanceTag;
    QHash<Db, QString> m_paths;
    QHash<Db, QString> m_failures;
    std::function<void(Db, const QString &)> m_onFailure;
};

inline size_t qHash(Db db, size_t seed = 0) {
    return ::qHash(static_cast<int>(db), seed);
}
