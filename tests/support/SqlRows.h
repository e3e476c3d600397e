#pragma once
// Reading back what a test wrote into SQLite: the rows of a query as text, and a connection of its own
// to a database file (a saved document, an autosave copy) that is removed with it.

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <gtest/gtest.h>

// Every row of the query, its cells joined by '|'. A query that fails is a test failure.
inline QStringList queryRows(QSqlDatabase db, const QString &sql) {
    QStringList out;
    QSqlQuery q(db);
    EXPECT_TRUE(q.exec(sql)) << sql.toStdString();
    while (q.next()) {
        QStringList cells;
        for (int i = 0; i < q.record().count(); ++i)
            cells << q.value(i).toString();
        out << cells.join(QLatin1Char('|'));
    }
    return out;
}

class DatabaseFile {
public:
    explicit DatabaseFile(const QString &path) : m_name(QStringLiteral("test-file-%1").arg(++s_count)) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(path);
        EXPECT_TRUE(db.open()) << path.toStdString();
    }
    ~DatabaseFile() {
        QSqlDatabase::database(m_name, false).close();
        QSqlDatabase::removeDatabase(m_name);
    }
    DatabaseFile(const DatabaseFile &) = delete;
    DatabaseFile &operator=(const DatabaseFile &) = delete;

    QSqlDatabase db() const { return QSqlDatabase::database(m_name, false); }
    QStringList rows(const QString &sql) const { return queryRows(db(), sql); }

private:
    static inline int s_count = 0;
    QString m_name;
};
