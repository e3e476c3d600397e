#include "RegisterRows.h"

#include "storage/TextValues.h"

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringDecoder>
#include <QVariant>
#include <sqlite3.h>

// ----- Totals

namespace {

// The SQLite connection under a Qt one; null when it is not open.
sqlite3 *sqliteHandle(QSqlDatabase db) {
    const QVariant handle = db.isOpen() ? db.driver()->handle() : QVariant();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(handle.constData());
}

// The form the register writes, "1234,50" (up to twelve digits, up to two decimals, a sign), read
// straight into kopecks; any other text goes through the program's number rule (Money::parse).
std::optional<qint64> storedKopecks(QByteArrayView text) {
    qsizetype i = 0;
    const bool negative = !text.isEmpty() && text[0] == '-';
    if (negative)
        ++i;
    qint64 whole = 0;
    int digits = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i, ++digits)
        whole = whole * 10 + (text[i] - '0');
    if (digits == 0 || digits > 12)
        return std::nullopt;
    qint64 cents = 0;
    if (i < text.size()) {
        if (text[i] != ',' || text.size() - i - 1 < 1 || text.size() - i - 1 > 2)
            return std::nullopt;
        for (qsizetype j = i + 1; j < text.size(); ++j) {
            if (text[j] < '0' || text[j] > '9')
                return std::nullopt;
            cents = cents * 10 + (text[j] - '0');
        }
        if (text.size() - i - 1 == 1)
            cents *= 10;
    }
    const qint64 kopecks = whole * 100 + cents;
    return negative ? -kopecks : kopecks;
}

bool blank(QByteArrayView text) {
    for (char c : text)
        if (c != ' ' && c != '\t' && c != '\r' && c != '\n')
            return false;
    return true;
}

} // namespace

void RegisterTotals::add(QByteArrayView summat, QByteArrayView sumrab, QByteArrayView allsum) {
    bool unread = false;
    auto sum = [&unread](MoneyResult &total, QByteArrayView text) {
        if (blank(text))
            return;
        MoneyResult value = Money();
        if (const auto k = storedKopecks(text)) {
            const auto m = Money::fromKopecks(*k);
            value = m ? MoneyResult(*m) : Money::parse(QString::fromUtf8(text));
        } else {
            value = Money::parse(QString::fromUtf8(text));
        }
        if (value)
            total += value;
        else
            unread = true;
    };
    sum(materials, summat);
    sum(works, sumrab);
    sum(all, allsum);
    if (unread)
        ++unreadable;
}

// ----- Pages

QStringView RegisterPage::text(int row, Text which) const {
    const Row &r = m_rows[static_cast<size_t>(row)];
    return QStringView(m_text.data() + r.start[which],
                       static_cast<qsizetype>(r.start[which + 1] - r.start[which]));
}

RegisterRow RegisterPage::row(int i) const {
    RegisterRow r;
    r.id = id(i);
    r.finished = finished(i);
    r.data = text(i, Data).toString();
    r.dataend = text(i, DataEnd).toString();
    r.name = text(i, Name).toString();
    r.fileName = text(i, FileName).toString();
    r.allsum = text(i, AllSum).toString();
    return r;
}

int RegisterPage::indexOf(qlonglong id) const {
    for (size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows[i].id == id)
            return static_cast<int>(i);
    return -1;
}

// Steps a statement with the SQLite interface of the Qt connection: only the shown columns are
// converted, each straight into the page's buffer.
class RegisterPageReader {
public:
    explicit RegisterPageReader(RegisterPage *page) : m_page(page) {}

    bool read(QSqlDatabase db, const QString &statement, QString *error) {
        *m_page = RegisterPage();
        sqlite3 *sql = sqliteHandle(db);
        if (!sql)
            return fail(error, QStringLiteral("база данных не открыта"));
        sqlite3_stmt *st = nullptr;
        const QByteArray text = statement.toUtf8();
        if (sqlite3_prepare_v2(sql, text.constData(), static_cast<int>(text.size()), &st, nullptr) !=
            SQLITE_OK)
            return fail(error, QString::fromUtf8(sqlite3_errmsg(sql)));
        columns(st);
        int rc;
        while ((rc = sqlite3_step(st)) == SQLITE_ROW)
            addRow(st);
        sqlite3_finalize(st);
        if (rc != SQLITE_DONE) {
            *m_page = RegisterPage();
            return fail(error, QString::fromUtf8(sqlite3_errstr(rc)));
        }
        m_page->m_text.shrink_to_fit();
        return true;
    }

private:
    enum Column { Id, Status, Summat, Sumrab, ColumnCount };

    static bool fail(QString *error, const QString &why) {
        if (error)
            *error = why;
        return false;
    }

    // Positions by name: an older file may order the columns differently or lack one.
    void columns(sqlite3_stmt *st) {
        static const char *const texts[RegisterPage::TextCount] = {"data", "dataend", "name", "filename",
                                                                   "allsum"};
        static const char *const others[ColumnCount] = {"id", "status", "summat", "sumrab"};
        std::fill(std::begin(m_text), std::end(m_text), -1);
        std::fill(std::begin(m_other), std::end(m_other), -1);
        for (int c = 0; c < sqlite3_column_count(st); ++c) {
            const char *name = sqlite3_column_name(st, c);
            for (int t = 0; t < RegisterPage::TextCount; ++t)
                if (qstricmp(name, texts[t]) == 0 && m_text[t] < 0)
                    m_text[t] = c;
            for (int o = 0; o < ColumnCount; ++o)
                if (qstricmp(name, others[o]) == 0 && m_other[o] < 0)
                    m_other[o] = c;
        }
    }

    static QByteArrayView bytes(sqlite3_stmt *st, int column) {
        if (column < 0)
            return {};
        const auto *p = reinterpret_cast<const char *>(sqlite3_column_text(st, column));
        return p ? QByteArrayView(p, sqlite3_column_bytes(st, column)) : QByteArrayView();
    }

    void append(QByteArrayView utf8, bool name) {
        std::vector<char16_t> &buffer = m_page->m_text;
        const size_t used = buffer.size();
        // UTF-16 never takes more units than UTF-8 takes bytes.
        buffer.resize(used + static_cast<size_t>(utf8.size()));
        QChar *begin = reinterpret_cast<QChar *>(buffer.data() + used);
        QChar *end = m_decoder.appendToBuffer(begin, utf8);
        if (name)
            std::replace(begin, end, QChar(u'`'), QChar(u'"'));
        buffer.resize(used + static_cast<size_t>(end - begin));
    }

    void addRow(sqlite3_stmt *st) {
        RegisterPage::Row row;
        row.id = m_other[Id] >= 0 ? sqlite3_column_int64(st, m_other[Id]) : 0;
        if (m_other[Status] >= 0 && sqlite3_column_type(st, m_other[Status]) != SQLITE_NULL)
            row.finished = sqlite3_column_int64(st, m_other[Status]) > 0;
        for (int t = 0; t < RegisterPage::TextCount; ++t) {
            row.start[t] = static_cast<quint32>(m_page->m_text.size());
            append(bytes(st, m_text[t]), t == RegisterPage::Name);
        }
        row.start[RegisterPage::TextCount] = static_cast<quint32>(m_page->m_text.size());
        m_page->m_totals.add(bytes(st, m_other[Summat]), bytes(st, m_other[Sumrab]),
                             bytes(st, m_text[RegisterPage::AllSum]));
        m_page->m_rows.push_back(row);
    }

    RegisterPage *m_page;
    QStringDecoder m_decoder{QStringDecoder::Utf8, QStringConverter::Flag::Stateless};
    int m_text[RegisterPage::TextCount] = {};
    int m_other[ColumnCount] = {};
};

namespace RegisterRows {

namespace {

bool failed(const QSqlQuery &q, QString *error) {
    if (error)
        *error = q.lastError().text().trimmed();
    return false;
}

QString text(const QSqlQuery &q, const QSqlRecord &r, const char *column) {
    const int i = r.indexOf(QLatin1String(column));
    return i < 0 ? QString() : q.value(i).toString();
}

} // namespace

bool read(QSqlDatabase mydoc, const QString &statement, RegisterPage *page, QString *error) {
    return RegisterPageReader(page).read(mydoc, statement, error);
}

Version version(QSqlDatabase mydoc) {
    Version v;
    sqlite3 *sql = sqliteHandle(mydoc);
    if (!sql)
        return v;
    sqlite3_stmt *st = nullptr;
    if (sqlite3_prepare_v2(sql, "PRAGMA data_version", -1, &st, nullptr) == SQLITE_OK &&
        sqlite3_step(st) == SQLITE_ROW)
        v.others = sqlite3_column_int64(st, 0);
    sqlite3_finalize(st);
    v.ours = sqlite3_total_changes64(sql);
    return v;
}

bool readOne(QSqlDatabase mydoc, Registration::List list, qlonglong id, RegisterRow *row, QString *error) {
    QSqlQuery q(mydoc);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE id=?").arg(Registration::tableOf(list)));
    q.addBindValue(id);
    if (!q.exec())
        return failed(q, error);
    if (!q.next()) {
        if (error)
            *error = QStringLiteral("запись не найдена: её удалили в другой копии программы");
        return false;
    }
    const QSqlRecord r = q.record();
    using TextValues::nameFromStored;
    row->id = id;
    row->data = text(q, r, "data");
    row->dataend = text(q, r, "dataend");
    row->name = nameFromStored(text(q, r, "name"));
    row->fileName = text(q, r, "filename");
    row->client = nameFromStored(text(q, r, "client"));
    row->object = nameFromStored(text(q, r, "object"));
    row->summat = text(q, r, "summat");
    row->sumrab = text(q, r, "sumrab");
    row->allsum = text(q, r, "allsum");
    row->month = text(q, r, "month");
    row->year = text(q, r, "year");
    const int status = r.indexOf(QStringLiteral("status"));
    row->finished = status >= 0 && !q.value(status).isNull() && q.value(status).toLongLong() > 0;
    return true;
}

QStringList years(QSqlDatabase mydoc, Registration::List list) {
    QStringList out;
    QSqlQuery q(mydoc);
    q.setForwardOnly(true);
    if (q.exec(QStringLiteral("SELECT DISTINCT year FROM %1 WHERE year<>'' ORDER BY year")
                   .arg(Registration::tableOf(list))))
        while (q.next())
            out << q.value(0).toString();
    return out;
}

bool readOutputs(QSqlDatabase mydoc, const QString &table, qlonglong iddoc, std::vector<OutputFileRow> *rows,
                 QString *error) {
    rows->clear();
    if (!TextValues::isSafeTableName(table)) {
        if (error)
            *error = QStringLiteral("нет таблицы %1").arg(table);
        return false;
    }
    QSqlQuery q(mydoc);
    q.setForwardOnly(true);
    // iddoc is kept as text.
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE iddoc=?").arg(table));
    q.addBindValue(QString::number(iddoc));
    if (!q.exec())
        return failed(q, error);
    const QSqlRecord r = q.record();
    while (q.next())
        rows->push_back({text(q, r, "id"), text(q, r, "data"), TextValues::nameFromStored(text(q, r, "name")),
                         text(q, r, "ext"), text(q, r, "filename")});
    return true;
}

} // namespace RegisterRows
