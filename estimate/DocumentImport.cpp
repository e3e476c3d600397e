#include "DocumentImport.h"

#include "DocumentCheck.h"
#include "DocumentChecksum.h"
#include "OldFormat.h"
#include "storage/Catalogue.h"
#include "storage/Schema.h"
#include "storage/UntrustedSqlite.h"

#include <QAtomicInt>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <sqlite3.h>

namespace DocumentImport {

namespace {

QAtomicInt g_connections;
const QString kSource = QStringLiteral("src");

// A private Qt connection to the new working database, removed when it goes out of scope.
class Connection {
public:
    explicit Connection(const QString &path)
        : m_name(QStringLiteral("DocumentImport#%1").arg(g_connections.fetchAndAddRelaxed(1))) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(path);
        // The new working database is flushed to disk once, whole, before it replaces the old one:
        // the steps that make it need no flush of their own.
        if (db.open())
            Schema::scratchConnection(db);
    }
    ~Connection() {
        {
            QSqlDatabase db = QSqlDatabase::database(m_name, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(m_name);
    }
    QSqlDatabase db() const { return QSqlDatabase::database(m_name, false); }

private:
    QString m_name;
};

// Why the connection's last statement failed, in Russian (the budget first: it is what stopped it).
QString sqlFailure(sqlite3 *h, const UntrustedSqlite::Budget &budget) {
    return UntrustedSqlite::failure(h, budget.spent() ? SQLITE_INTERRUPT : sqlite3_extended_errcode(h),
                                    &budget);
}

QString quickCheck(sqlite3 *h, const UntrustedSqlite::Budget &budget) {
    sqlite3_stmt *st = nullptr;
    int rc = sqlite3_prepare_v2(h, "PRAGMA src.quick_check", -1, &st, nullptr);
    QString why;
    if (rc == SQLITE_OK && (rc = sqlite3_step(st)) == SQLITE_ROW) {
        const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(st, 0));
        const QString result = QString::fromUtf8(text ? text : "");
        if (result != QLatin1String("ok"))
            why = QStringLiteral("файл повреждён (%1)").arg(result.left(200));
    } else {
        why = UntrustedSqlite::failure(h, rc, &budget);
    }
    sqlite3_finalize(st);
    return why;
}

QString read(QSqlDatabase db, const QString &source, QStringList *warnings, bool *tooLarge) {
    sqlite3 *h = UntrustedSqlite::handle(db);
    if (!h)
        return db.lastError().text().trimmed();
    UntrustedSqlite::restrict(h);
    // The new database is made by the program's own steps before anything of the file is read.
    if (const QString why = Schema::upgrade(db, Db::Smeta); !why.isEmpty())
        return why;
    UntrustedSqlite::Budget budget(h, kBudgetMs);
    QSqlQuery q(db);
    q.prepare(QStringLiteral("ATTACH DATABASE ? AS %1").arg(kSource));
    q.addBindValue(source);
    if (!q.exec())
        return sqlFailure(h, budget);
    auto detach = qScopeGuard([&db] { QSqlQuery(db).exec(QStringLiteral("DETACH DATABASE src")); });

    // The layout first: it reads only the file's table list, and SQLite's own check would compute a
    // generated column.
    if (QString why = DocumentCheck::layout(h, kSource); !why.isEmpty())
        return budget.spent() ? UntrustedSqlite::failure(h, SQLITE_INTERRUPT, &budget) : why;
    if (QString why = quickCheck(h, budget); !why.isEmpty())
        return why;
    if (QString why = DocumentCheck::rowCounts(h, kSource); !why.isEmpty()) {
        *tooLarge = !budget.spent();
        return budget.spent() ? UntrustedSqlite::failure(h, SQLITE_INTERRUPT, &budget) : why;
    }

    QStringList damaged;
    QString why;
    if (!DocumentChecksum::verify(h, kSource, &damaged, &why))
        return budget.spent() ? UntrustedSqlite::failure(h, SQLITE_INTERRUPT, &budget) : why;
    if (!damaged.isEmpty()) {
        QStringList described;
        for (const QString &t : damaged)
            described << DocumentChecksum::describe(t);
        warnings->append(
            QStringLiteral("Содержимое документа не совпадает с тем, что было записано при его "
                           "сохранении: файл изменён другой программой или повреждён. Проверьте эти "
                           "данные: %1.")
                .arg(described.join(QStringLiteral(", "))));
    }

    QList<DocumentCheck::LongCell> cells;
    if (!DocumentCheck::longCells(h, kSource, &cells, &why)) {
        *tooLarge = !budget.spent();
        return budget.spent() ? UntrustedSqlite::failure(h, SQLITE_INTERRUPT, &budget) : why;
    }
    if (!cells.isEmpty())
        warnings->append(DocumentCheck::cutWarning(cells));

    // The lengths were just checked: only a document with longer cells has them cut in the copy.
    why = OldFormat::rebuild(db, kSource, cells.isEmpty() ? 0 : DocumentCheck::kMaxCellChars);
    if (!why.isEmpty())
        return budget.spent() ? UntrustedSqlite::failure(h, SQLITE_INTERRUPT, &budget) : why;
    return {};
}

} // namespace

QString run(const QString &source, const QString &target, QStringList *warnings, bool *tooLarge) {
    QString why;
    bool large = false;
    {
        Connection c(target);
        why = c.db().isOpen() ? read(c.db(), source, warnings, &large) : c.db().lastError().text().trimmed();
    }
    if (tooLarge)
        *tooLarge = large;
    if (!why.isEmpty())
        for (const char *suffix : {"", "-journal", "-wal", "-shm"})
            QFile::remove(target + QLatin1String(suffix));
    return why;
}

} // namespace DocumentImport
