#include "DocumentChecksum.h"

#include "storage/Catalogue.h"
#include "storage/ContentChecksum.h"
#include "storage/UntrustedSqlite.h"

#include <QHash>
#include <QScopeGuard>
#include <algorithm>
#include <sqlite3.h>

namespace DocumentChecksum {

namespace {

// The tables the sums cover: every table of the document but the sums themselves.
QStringList coveredTables(sqlite3 *db) {
    QStringList present;
    sqlite3_stmt *st = nullptr;
    if (sqlite3_prepare_v2(db, "SELECT name FROM main.sqlite_master WHERE type='table'", -1, &st, nullptr) !=
        SQLITE_OK)
        return present;
    QStringList names;
    while (sqlite3_step(st) == SQLITE_ROW)
        names << QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, 0))).toLower();
    sqlite3_finalize(st);
    for (const QString &t : tableNames(Db::Smeta))
        if (t.compare(kTable, Qt::CaseInsensitive) != 0 && names.contains(t.toLower()))
            present << t;
    return present;
}

} // namespace

QString write(sqlite3 *copy) {
    auto exec = [copy](const QString &sql) {
        return sqlite3_exec(copy, sql.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
    };
    auto failed = [copy] {
        return QStringLiteral("контрольные суммы документа не записаны: %1")
            .arg(QString::fromUtf8(sqlite3_errmsg(copy)));
    };
    const QStringList tables = coveredTables(copy);
    if (!exec(QStringLiteral("BEGIN IMMEDIATE")))
        return failed();
    auto rollback = qScopeGuard([&exec] { exec(QStringLiteral("ROLLBACK")); });
    if (!exec(QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (id INTEGER PRIMARY KEY, name TEXT, value TEXT)")
                  .arg(kTable)) ||
        !exec(QStringLiteral("DELETE FROM %1").arg(kTable)))
        return failed();
    sqlite3_stmt *st = nullptr;
    if (sqlite3_prepare_v2(
            copy,
            QStringLiteral("INSERT INTO %1 (name, value) VALUES (?, ?)").arg(kTable).toUtf8().constData(), -1,
            &st, nullptr) != SQLITE_OK)
        return failed();
    for (const QString &table : tables) {
        QString why;
        const QByteArray sum = ContentChecksum::ofTable(copy, QStringLiteral("main"), table, &why);
        if (sum.isEmpty()) {
            sqlite3_finalize(st);
            return QStringLiteral("контрольные суммы документа не записаны: %1").arg(why);
        }
        const QByteArray name = table.toUtf8();
        sqlite3_bind_text(st, 1, name.constData(), name.size(), SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 2, sum.constData(), sum.size(), SQLITE_TRANSIENT);
        const int rc = sqlite3_step(st);
        sqlite3_reset(st);
        if (rc != SQLITE_DONE) {
            sqlite3_finalize(st);
            return failed();
        }
    }
    sqlite3_finalize(st);
    if (!exec(QStringLiteral("COMMIT")))
        return failed();
    rollback.dismiss();
    return {};
}

QString rewrite(sqlite3 *file, const QString &table) {
    auto step = [file](const QString &sql, const QByteArray &sum, const QString &name) {
        sqlite3_stmt *st = nullptr;
        if (sqlite3_prepare_v2(file, sql.toUtf8().constData(), -1, &st, nullptr) != SQLITE_OK) {
            sqlite3_finalize(st);
            return -1;
        }
        const QByteArray nameBytes = name.toUtf8();
        sqlite3_bind_text(st, 1, sum.constData(), sum.size(), SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 2, nameBytes.constData(), nameBytes.size(), SQLITE_TRANSIENT);
        const int rc = sqlite3_step(st);
        sqlite3_finalize(st);
        return rc == SQLITE_DONE ? sqlite3_changes(file) : -1;
    };
    sqlite3_stmt *has = nullptr;
    const bool sealed =
        sqlite3_prepare_v2(file, "SELECT 1 FROM main.sqlite_master WHERE type='table' AND name='checksum'",
                           -1, &has, nullptr) == SQLITE_OK &&
        sqlite3_step(has) == SQLITE_ROW;
    sqlite3_finalize(has);
    if (!sealed)
        return {};
    QString why;
    const QByteArray sum = ContentChecksum::ofTable(file, QStringLiteral("main"), table, &why);
    if (sum.isEmpty())
        return QStringLiteral("контрольная сумма документа не записана: %1").arg(why);
    int changed = step(QStringLiteral("UPDATE %1 SET value=? WHERE name=?").arg(kTable), sum, table);
    if (changed == 0)
        changed = step(QStringLiteral("INSERT INTO %1 (value, name) VALUES (?, ?)").arg(kTable), sum, table);
    if (changed < 0)
        return QStringLiteral("контрольная сумма документа не записана: %1")
            .arg(QString::fromUtf8(sqlite3_errmsg(file)));
    return {};
}

bool verify(sqlite3 *db, const QString &schema, QStringList *damaged, QString *error) {
    damaged->clear();
    const QByteArray sql =
        QStringLiteral("SELECT name, value FROM \"%1\".%2 ORDER BY rowid").arg(schema, kTable).toUtf8();
    sqlite3_stmt *st = nullptr;
    if (sqlite3_prepare_v2(db, sql.constData(), -1, &st, nullptr) != SQLITE_OK) {
        sqlite3_finalize(st);
        // A document saved without sums has no such table; one whose table cannot be read had sums.
        const QByteArray has =
            QStringLiteral("SELECT 1 FROM \"%1\".sqlite_master WHERE name='%2'").arg(schema, kTable).toUtf8();
        if (sqlite3_prepare_v2(db, has.constData(), -1, &st, nullptr) == SQLITE_OK &&
            sqlite3_step(st) == SQLITE_ROW)
            damaged->append(kTable);
        sqlite3_finalize(st);
        return true;
    }
    QList<QPair<QString, QByteArray>> sums;
    int rc;
    while ((rc = sqlite3_step(st)) == SQLITE_ROW && sums.size() <= 1000) {
        const auto *name = reinterpret_cast<const char *>(sqlite3_column_text(st, 0));
        const auto *value = reinterpret_cast<const char *>(sqlite3_column_text(st, 1));
        sums.append({QString::fromUtf8(name ? name : ""), QByteArray(value ? value : "")});
    }
    sqlite3_finalize(st);
    if (rc != SQLITE_DONE && rc != SQLITE_ROW) {
        *error = UntrustedSqlite::failure(db, rc);
        return false;
    }
    const QStringList known = tableNames(Db::Smeta);
    for (const auto &[table, sum] : sums) {
        // A name that is not a document table was itself changed: its row is what is damaged.
        const bool isKnown = std::any_of(known.begin(), known.end(), [&table = table](const QString &k) {
            return k.compare(table, Qt::CaseInsensitive) == 0;
        });
        if (!isKnown) {
            if (!damaged->contains(kTable))
                damaged->append(kTable);
            continue;
        }
        QString why;
        const QByteArray actual = ContentChecksum::ofTable(db, schema, table, &why);
        if (actual.isEmpty() && sqlite3_errcode(db) == SQLITE_INTERRUPT) {
            *error = UntrustedSqlite::failure(db, SQLITE_INTERRUPT);
            return false;
        }
        if (actual != sum && !damaged->contains(table))
            damaged->append(table);
    }
    return true;
}

QString describe(const QString &table) {
    static const QHash<QString, QString> words = {
        {QStringLiteral("smeta"), QStringLiteral("строки сметы")},
        {QStringLiteral("materials"), QStringLiteral("материалы")},
        {QStringLiteral("koef"), QStringLiteral("коэффициенты")},
        {QStringLiteral("parametrs"), QStringLiteral("параметры документа (заказчик, номер, дата)")},
        {QStringLiteral("shema"), QStringLiteral("схема помещений")},
        {QStringLiteral("object"), QStringLiteral("данные объекта")},
        {QStringLiteral("customer"), QStringLiteral("данные заказчика")},
        {QStringLiteral("requisite"), QStringLiteral("реквизиты подрядчика")},
        {QStringLiteral("requisitezak"), QStringLiteral("реквизиты заказчика")},
        {QStringLiteral("ks2"), QStringLiteral("настройки акта")},
        {QStringLiteral("account"), QStringLiteral("данные счёта")},
        {QStringLiteral("financial"), QStringLiteral("финансовые параметры")},
        {QStringLiteral("cash"), QStringLiteral("платежи")},
        {QStringLiteral("mydoc"), QStringLiteral("запись в реестре документов")},
        {QStringLiteral("work"), QStringLiteral("список работ")},
        {QStringLiteral("afiles"), QStringLiteral("прикреплённые файлы")},
        {QStringLiteral("checksum"), QStringLiteral("сами контрольные суммы")},
    };
    const QString w = words.value(table.toLower());
    return w.isEmpty() ? table : QStringLiteral("%1 (%2)").arg(w, table);
}

} // namespace DocumentChecksum
