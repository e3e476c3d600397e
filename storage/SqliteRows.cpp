#include "SqliteRows.h"

#include <QSqlDriver>
#include <QStringEncoder>
#include <QVariant>
#include <sqlite3.h>

sqlite3 *SqliteRows::handle(const QSqlDatabase &db) {
    if (!db.isOpen() || !db.driver())
        return nullptr;
    const QVariant h = db.driver()->handle();
    if (h.isValid() && qstrcmp(h.typeName(), "sqlite3*") == 0)
        return *static_cast<sqlite3 *const *>(h.data());
    return nullptr;
}

SqliteRows::SqliteRows(const QSqlDatabase &db, const QString &sql) : m_db(handle(db)) {
    if (!m_db) {
        m_error = QStringLiteral("база данных не открыта");
        return;
    }
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(m_db, text.constData(), static_cast<int>(text.size()), &m_stmt, nullptr) !=
        SQLITE_OK) {
        m_error = QString::fromUtf8(sqlite3_errmsg(m_db));
        sqlite3_finalize(m_stmt);
        m_stmt = nullptr;
        return;
    }
    m_bound.resize(static_cast<size_t>(sqlite3_bind_parameter_count(m_stmt)));
}

SqliteRows::~SqliteRows() {
    sqlite3_finalize(m_stmt);
}

bool SqliteRows::next() {
    if (!ok())
        return false;
    const int rc = sqlite3_step(m_stmt);
    if (rc == SQLITE_ROW)
        return true;
    if (rc != SQLITE_DONE)
        m_error = QString::fromUtf8(sqlite3_errmsg(m_db));
    return false;
}

int SqliteRows::columnCount() const {
    return m_stmt ? sqlite3_column_count(m_stmt) : 0;
}

int SqliteRows::column(const QString &name) const {
    for (int c = 0; c < columnCount(); ++c)
        if (name.compare(QString::fromUtf8(sqlite3_column_name(m_stmt, c)), Qt::CaseInsensitive) == 0)
            return c;
    return -1;
}

QByteArrayView SqliteRows::utf8(int column) const {
    const auto *p = reinterpret_cast<const char *>(sqlite3_column_text(m_stmt, column));
    return p ? QByteArrayView(p, sqlite3_column_bytes(m_stmt, column)) : QByteArrayView();
}

void SqliteRows::bind(int column, QStringView text) {
    if (!m_stmt || column < 0 || column >= static_cast<int>(m_bound.size()))
        return;
    // The buffer of the column keeps its room from row to row: no allocation per value.
    QByteArray &buffer = m_bound[static_cast<size_t>(column)];
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    buffer.resize(encoder.requiredSpace(text.size()));
    char *end = encoder.appendToBuffer(buffer.data(), text);
    buffer.truncate(end - buffer.constData());
    // A text is never bound as NULL: an empty value is the empty text.
    sqlite3_bind_text(m_stmt, column + 1, buffer.constData(), static_cast<int>(buffer.size()), SQLITE_STATIC);
}

void SqliteRows::bindUtf8(int column, QByteArrayView text) {
    if (!m_stmt || column < 0 || column >= static_cast<int>(m_bound.size()))
        return;
    // Never NULL: an empty value is the empty text.
    sqlite3_bind_text(m_stmt, column + 1, text.isEmpty() ? "" : text.data(), static_cast<int>(text.size()),
                      SQLITE_STATIC);
}

bool SqliteRows::run() {
    if (!ok())
        return false;
    const int rc = sqlite3_step(m_stmt);
    sqlite3_reset(m_stmt);
    if (rc == SQLITE_DONE || rc == SQLITE_ROW)
        return true;
    m_error = QString::fromUtf8(sqlite3_errmsg(m_db));
    return false;
}
