#pragma once
// Many text rows read or written through the SQLite C interface of a Qt connection. Qt's query wraps
// every value in a QVariant and has SQLite convert every text to and from UTF-16; for a price list
// of 100,000 rows read or written whole that wrapping costs more than SQLite itself. Here values are
// bound and read as UTF-8, converted once by the caller, and the statement is reused row after row.
// Everything else goes through QSqlQuery.

#include <QByteArrayView>
#include <QSqlDatabase>
#include <QString>
#include <QStringView>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

class SqliteRows {
public:
    // The SQLite handle of a Qt connection (null for another driver or a closed connection).
    static sqlite3 *handle(const QSqlDatabase &db);

    // Prepares sql on the connection; ok() tells whether it could be.
    SqliteRows(const QSqlDatabase &db, const QString &sql);
    ~SqliteRows();
    SqliteRows(const SqliteRows &) = delete;
    SqliteRows &operator=(const SqliteRows &) = delete;

    bool ok() const { return m_stmt != nullptr && m_error.isEmpty(); }
    QString error() const { return m_error; }

    // Reading: next() steps to the next row (false at the end or on an error, then error() says why).
    bool next();
    int columnCount() const;
    // The index of the result column of that name (case-insensitive), -1 when there is none.
    int column(const QString &name) const;
    // The column's text as UTF-8, valid until the next step (empty for NULL).
    QByteArrayView utf8(int column) const;
    // The column's text; a column index of -1 reads as empty.
    QString text(int column) const { return column < 0 ? QString() : QString::fromUtf8(utf8(column)); }

    // Writing: binds the values of one row (columns from 0), runs the statement and makes it ready for
    // the next row. False with error() when SQLite refused the row.
    void bind(int column, QStringView text);
    // A value that is UTF-8 already; the bytes must stay as they are until run().
    void bindUtf8(int column, QByteArrayView text);
    bool run();

private:
    sqlite3 *m_db = nullptr;
    sqlite3_stmt *m_stmt = nullptr;
    QString m_error;
    std::vector<QByteArray> m_bound; // the UTF-8 of the bound values, kept until the row is run
};
