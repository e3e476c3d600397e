#include "ModuleSQL.h"

#include "Schema.h"

#include <QAtomicInt>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>

namespace {
QAtomicInt g_instances;
}

TModuleSQL::TModuleSQL(const QString &dataFolder, QObject *parent)
    : QObject(parent), m_dataFolder(QDir::cleanPath(dataFolder)),
      m_instanceTag(QString::number(g_instances.fetchAndAddRelaxed(1))) {
    setObjectName(QStringLiteral("ModuleSQL"));
    for (Db db : kAllDatabases)
        m_paths.insert(db, QDir(m_dataFolder).filePath(relativePath(db)));
}

TModuleSQL::~TModuleSQL() {
    closeAll();
}

QString TModuleSQL::filePath(Db db) const {
    return m_paths.value(db);
}

QString TModuleSQL::connectionName(Db db) const {
    return connectionComponent(db) + QLatin1Char('#') + m_instanceTag;
}

bool TModuleSQL::isOpen(Db db) const {
    return QSqlDatabase::contains(connectionName(db)) &&
           QSqlDatabase::database(connectionName(db), false).isOpen();
}

QSqlDatabase TModuleSQL::database(Db db) {
    // The working estimate is scratch (replaced by every open, written without waiting for the disk):
    // one that a power cut left damaged is made again rather than leave the estimate unusable.
    const bool scratch = isScratch(db) && !isShared(db) && QFileInfo::exists(filePath(db));
    {
        QSqlDatabase con = open(db, !scratch);
        if (con.isOpen() || !scratch)
            return con;
    }
    const QString path = filePath(db);
    close(db);
    for (const char *suffix : {"", "-journal", "-wal", "-shm"})
        QFile::remove(path + QLatin1String(suffix));
    return open(db, true);
}

QSqlDatabase TModuleSQL::open(Db db, bool report) {
    const QString name = connectionName(db);
    if (QSqlDatabase::contains(name)) {
        QSqlDatabase existing = QSqlDatabase::database(name, false);
        if (existing.isOpen())
            return existing;
    }
    QSqlDatabase con = QSqlDatabase::contains(name)
                           ? QSqlDatabase::database(name, false)
                           : QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    const QString path = filePath(db);
    QDir().mkpath(QFileInfo(path).absolutePath());
    con.setDatabaseName(path);
    // Another program may be writing the same file: wait for it rather than fail at once.
    con.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(Schema::kBusyTimeoutMs));
    QString reason;
    if (!con.open()) {
        reason = con.lastError().text();
    } else {
        QSqlQuery probe(con);
        // A file that is not SQLite opens fine and fails on its first read.
        if (!probe.exec(QStringLiteral("PRAGMA schema_version")) || !probe.next()) {
            reason = probe.lastError().text();
        } else {
            probe.finish();
            // A file where the log cannot be kept (a file system without shared memory) still works,
            // one writer at a time.
            if (isShared(db))
                Schema::shareConnection(con);
            if (isScratch(db))
                Schema::scratchConnection(con);
            reason = Schema::upgrade(con, db);
        }
    }
    if (!reason.isEmpty()) {
        con.close();
        if (report && !m_failures.contains(db)) {
            QString text = QStringLiteral("Не удалось открыть базу данных «%1»: %2. Эта часть программы "
                                          "недоступна, остальное работает.")
                               .arg(QDir::toNativeSeparators(path), reason.trimmed());
            m_failures.insert(db, text);
            if (m_onFailure)
                m_onFailure(db, text);
        }
        return con;
    }
    m_failures.remove(db);
    return con;
}

void TModuleSQL::close(Db db) {
    const QString name = connectionName(db);
    if (QSqlDatabase::contains(name)) {
        {
            QSqlDatabase con = QSqlDatabase::database(name, false);
            con.close();
        }
        QSqlDatabase::removeDatabase(name);
    }
}

void TModuleSQL::closeAll() {
    for (Db db : kAllDatabases)
        close(db);
}

QSqlDatabase TModuleSQL::reconnect(Db db) {
    close(db);
    m_failures.remove(db);
    return database(db);
}

void TModuleSQL::setFilePath(Db db, const QString &path) {
    close(db);
    m_failures.remove(db);
    m_paths.insert(db, path);
}
