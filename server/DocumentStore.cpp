#include "DocumentStore.h"

#include "ServerPicture.h"
#include "TransferControl.h"
#include "storage/TextValues.h"

#include <QAtomicInt>
#include <QCollator>
#include <QLocale>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <mysql.h>

#include <cstring>

namespace {

QAtomicInt g_connections;

const QString kCancelled = QStringLiteral("Передача отменена.");
// The client's errors of a connection that is gone: the server went away, the connection broke during
// a statement, or it was lost while the statement was read.
const QSet<QString> kLostConnection = {QStringLiteral("2006"), QStringLiteral("2013"),
                                       QStringLiteral("2055")};
// The largest value of a mediumblob column.
constexpr qint64 kMediumBlob = 16777215;
// Room for the statement and the other values beside the file in one packet.
constexpr qint64 kPacketRoom = 64 * 1024;

QString reasonOf(const QSqlError &e) {
    const QString own = e.databaseText().trimmed();
    return own.isEmpty() ? e.text().trimmed() : own;
}

bool isLost(const QSqlError &e) {
    return kLostConnection.contains(e.nativeErrorCode());
}

} // namespace

// ----- StoreAccess

QString StoreAccess::problem() const {
    if (host.trimmed().isEmpty())
        return QStringLiteral("Сервер файлов не настроен: укажите его в меню «Настройки» → «Сервер MySQL…».");
    if (!TextValues::isSafeTableName(database))
        return QStringLiteral("Имя базы файлов «%1» не годится: допустимы латинские буквы, цифры и знак "
                              "подчёркивания.")
            .arg(database);
    if (table.isEmpty())
        return QStringLiteral("Не указан ключ учётной записи: укажите его в меню «Настройки» → «Файловый "
                              "сервер…».");
    if (!TextValues::isSafeTableName(table) || table.size() > 64)
        return QStringLiteral("Ключ учётной записи «%1» не годится для имени таблицы: допустимы латинские "
                              "буквы, цифры и знак подчёркивания (до 64 знаков).")
            .arg(table);
    return {};
}

QString StoreAccess::serverName() const {
    return host.trimmed() + QLatin1Char(':') + QString::number(port);
}

// ----- DocumentStore

DocumentStore::DocumentStore()
    : m_connection(QStringLiteral("FDConnectionServerFile#%1").arg(g_connections.fetchAndAddRelaxed(1))) {}

DocumentStore::~DocumentStore() {
    close();
}

void DocumentStore::prepareDriver() {
    // The driver's first instance starts the client library; this one stays for the program's life,
    // so that the library is neither started nor ended on another thread.
    static const bool prepared = [] {
        QSqlDatabase::addDatabase(QStringLiteral("QMYSQL"), QStringLiteral("ServerFileDriver"));
        return true;
    }();
    Q_UNUSED(prepared);
}

QString DocumentStore::createStatement(const QString &table) {
    // The columns of a stored file; InnoDB so that an insert cut off half-way leaves nothing, utf8mb4 for
    // Cyrillic names.
    return QStringLiteral("CREATE TABLE IF NOT EXISTS ") + table +
           QStringLiteral(
               " (data tinytext NOT NULL, name tinytext NOT NULL, type tinytext NOT NULL, datefile "
               "tinytext NOT NULL, address tinytext NOT NULL, user tinytext NOT NULL,  file "
               "mediumblob NOT NULL) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4;");
}

DocumentStore::Result DocumentStore::failure(const QString &text) const {
    Result r;
    r.error = text;
    return r;
}

DocumentStore::Result DocumentStore::open(const StoreAccess &access) {
    close();
    m_access = access;
    m_accessSet = true;
    if (const QString p = access.problem(); !p.isEmpty())
        return failure(p);
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QMYSQL")))
        return failure(QStringLiteral("Драйвер MySQL (QMYSQL) не установлен."));
    QString reason;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QMYSQL"), m_connection);
        db.setHostName(access.host.trimmed());
        db.setPort(access.port);
        db.setUserName(access.user);
        db.setPassword(access.password);
        const int t = qMax(1, access.timeoutSeconds);
        db.setConnectOptions(QStringLiteral("MYSQL_OPT_CONNECT_TIMEOUT=%1;MYSQL_OPT_READ_TIMEOUT=%2;"
                                            "MYSQL_OPT_WRITE_TIMEOUT=%2")
                                 .arg(qMin(t, 15))
                                 .arg(t));
        if (!db.open()) {
            reason = reasonOf(db.lastError());
        } else {
            QSqlQuery q(db);
            if (!q.exec(QStringLiteral("SET NAMES utf8mb4")) ||
                !q.exec(QStringLiteral("USE ") + access.database + QStringLiteral(";")) ||
                !q.exec(createStatement(access.table)))
                reason = reasonOf(q.lastError());
            else if (q.exec(QStringLiteral("SELECT @@max_allowed_packet")) && q.next())
                m_maxPacket = q.value(0).toLongLong();
        }
    }
    if (!reason.isEmpty()) {
        close();
        return failure(QStringLiteral("Не удалось подключиться к серверу файлов %1: %2")
                           .arg(access.serverName(), reason));
    }
    Result r;
    r.ok = true;
    return r;
}

DocumentStore::Result DocumentStore::use(const StoreAccess &access) {
    if (m_accessSet && access == m_access && isOpen()) {
        Result r;
        r.ok = true;
        return r;
    }
    return open(access);
}

void DocumentStore::close() {
    if (!QSqlDatabase::contains(m_connection))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_connection, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(m_connection);
}

bool DocumentStore::isOpen() const {
    return QSqlDatabase::contains(m_connection) && QSqlDatabase::database(m_connection, false).isOpen();
}

bool DocumentStore::ensureOpen(Result *result) {
    if (isOpen())
        return true;
    if (!m_accessSet) {
        *result = failure(QStringLiteral("Сервер файлов не настроен."));
        return false;
    }
    *result = open(m_access);
    return result->ok;
}

MYSQL *DocumentStore::handle() const {
    const QVariant h = QSqlDatabase::database(m_connection, false).driver()->handle();
    // The driver names the handle by the client library's struct.
    if (!h.isValid() || (qstrcmp(h.typeName(), "MYSQL*") != 0 && qstrcmp(h.typeName(), "st_mysql*") != 0))
        return nullptr;
    return *static_cast<MYSQL *const *>(h.data());
}

int DocumentStore::socket() const {
    MYSQL *mysql = handle();
    return mysql ? static_cast<int>(mysql_get_socket(mysql)) : -1;
}

bool DocumentStore::fetchRow(const QString &name, const QString &data, qint64 expected, StoredFile *row,
                             QByteArray *bytes, TransferControl *control, Result *result) {
    // The client library's own statement: the file's bytes arrive straight in their buffer, without
    // the copies of the driver's rows (six times faster for a large file).
    MYSQL *mysql = handle();
    if (!mysql) {
        *result = failure(QStringLiteral("Нет подключения к серверу файлов."));
        return false;
    }
    const QByteArray sql = (QStringLiteral("SELECT data,name,type,datefile,address,user,file FROM ") +
                            m_access.table + QStringLiteral(" WHERE name=? and data=?"))
                               .toUtf8();
    QByteArray keys[2] = {name.toUtf8(), data.toUtf8()};
    unsigned long keyLengths[2] = {static_cast<unsigned long>(keys[0].size()),
                                   static_cast<unsigned long>(keys[1].size())};
    MYSQL_BIND params[2];
    std::memset(params, 0, sizeof params);
    for (int i = 0; i < 2; ++i) {
        params[i].buffer_type = MYSQL_TYPE_STRING;
        params[i].buffer = keys[i].data();
        params[i].buffer_length = keyLengths[i];
        params[i].length = &keyLengths[i];
    }
    // tinytext holds up to 255 bytes; one byte more of the file's buffer tells a file that grew.
    constexpr int kTexts = 6;
    QByteArray texts[kTexts];
    unsigned long lengths[kTexts + 1] = {};
    my_bool nulls[kTexts + 1] = {};
    MYSQL_BIND columns[kTexts + 1];
    std::memset(columns, 0, sizeof columns);
    for (int i = 0; i < kTexts; ++i) {
        texts[i].resize(1024);
        columns[i].buffer_type = MYSQL_TYPE_STRING;
        columns[i].buffer = texts[i].data();
        columns[i].buffer_length = static_cast<unsigned long>(texts[i].size());
        columns[i].length = &lengths[i];
        columns[i].is_null = &nulls[i];
    }
    bytes->resize(expected + 1);
    columns[kTexts].buffer_type = MYSQL_TYPE_BLOB;
    columns[kTexts].buffer = bytes->data();
    columns[kTexts].buffer_length = static_cast<unsigned long>(bytes->size());
    columns[kTexts].length = &lengths[kTexts];
    columns[kTexts].is_null = &nulls[kTexts];

    MYSQL_STMT *st = mysql_stmt_init(mysql);
    int rc = st ? mysql_stmt_prepare(st, sql.constData(), static_cast<unsigned long>(sql.size())) : 1;
    if (rc == 0)
        rc = mysql_stmt_bind_param(st, params) || mysql_stmt_bind_result(st, columns) ? 1 : 0;
    bool watched = false;
    if (rc == 0) {
        watched = !control || control->watch(socket(), TransferControl::Direction::Receive);
        if (!watched)
            rc = 1;
    }
    if (rc == 0)
        rc = mysql_stmt_execute(st);
    if (rc == 0)
        rc = mysql_stmt_fetch(st);
    if (watched && control)
        control->unwatch();
    // A broken connection may be told by the connection rather than by the statement.
    const bool byStatement = st && mysql_stmt_errno(st) != 0;
    const unsigned error = byStatement ? mysql_stmt_errno(st) : mysql_errno(mysql);
    const QString reason = QString::fromUtf8(byStatement ? mysql_stmt_error(st) : mysql_error(mysql));
    if (st)
        mysql_stmt_close(st); // reads what is left of the answer
    const QString shown = TextValues::nameFromStored(name);
    const bool cancelled = control && control->isCancelled();
    const bool lost = kLostConnection.contains(QString::number(error));
    if (rc == 0 && !cancelled) {
        auto text = [&](int i) {
            return QString::fromUtf8(texts[i].constData(), static_cast<int>(lengths[i]));
        };
        row->data = text(0);
        row->name = text(1);
        row->type = text(2);
        row->datefile = text(3);
        row->address = text(4);
        row->user = text(5);
        bytes->resize(static_cast<qsizetype>(lengths[kTexts]));
        return true;
    }
    bytes->clear();
    if (cancelled || lost)
        close(); // the connection is gone: the next statement opens a new one
    if (cancelled) {
        *result = failure(kCancelled);
        result->cancelled = true;
    } else if (rc == MYSQL_NO_DATA) {
        *result = failure(QStringLiteral("Файла «%1» от %2 на сервере больше нет.").arg(shown, data));
    } else if (rc == MYSQL_DATA_TRUNCATED) {
        *result =
            failure(QStringLiteral("Файл «%1» изменился на сервере во время загрузки; загрузите его ещё раз.")
                        .arg(shown));
    } else if (lost) {
        *result = failure(
            QStringLiteral("Связь с сервером файлов %1 прервалась: %2").arg(m_access.serverName(), reason));
    } else {
        *result = failure(
            QStringLiteral("Сервер файлов %1 не выполнил запрос: %2").arg(m_access.serverName(), reason));
    }
    return false;
}

bool DocumentStore::run(QSqlQuery *q, const QString &sql, const QVariantList &values, Result *result) {
    // A connection the server closed while it was idle is opened again once.
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (!ensureOpen(result))
            return false;
        *q = QSqlQuery(QSqlDatabase::database(m_connection, false));
        q->setForwardOnly(true);
        q->prepare(sql);
        for (const QVariant &v : values)
            q->addBindValue(v);
        if (q->exec())
            return true;
        const QSqlError e = q->lastError();
        if (!isLost(e)) {
            *result = failure(QStringLiteral("Сервер файлов %1 не выполнил запрос: %2")
                                  .arg(m_access.serverName(), reasonOf(e)));
            return false;
        }
        *q = QSqlQuery();
        close();
        *result = failure(QStringLiteral("Связь с сервером файлов %1 прервалась: %2")
                              .arg(m_access.serverName(), reasonOf(e)));
    }
    return false;
}

bool DocumentStore::execTransfer(QSqlQuery &q, TransferControl *control, int direction, Result *result) {
    if (control && !control->watch(socket(), static_cast<TransferControl::Direction>(direction))) {
        *result = failure(kCancelled);
        result->cancelled = true;
        return false;
    }
    const bool ok = q.exec();
    if (control)
        control->unwatch();
    if (ok)
        return true;
    const QSqlError e = q.lastError();
    const bool cancelled = control && control->isCancelled();
    if (cancelled || isLost(e)) {
        q = QSqlQuery();
        close(); // the connection is gone: the next statement opens a new one
    }
    if (cancelled) {
        *result = failure(kCancelled);
        result->cancelled = true;
    } else if (isLost(e)) {
        *result = failure(QStringLiteral("Связь с сервером файлов %1 прервалась: %2")
                              .arg(m_access.serverName(), reasonOf(e)));
    } else {
        *result = failure(QStringLiteral("Сервер файлов %1 не выполнил запрос: %2")
                              .arg(m_access.serverName(), reasonOf(e)));
    }
    return false;
}

DocumentStore::Result DocumentStore::addresses(QStringList *out) {
    out->clear();
    Result r;
    QSqlQuery q;
    if (!run(&q, QStringLiteral("SELECT address FROM ") + m_access.table + QStringLiteral(" WHERE 1"), {},
             &r))
        return r;
    QSet<QString> seen;
    while (q.next()) {
        const QString a = q.value(0).toString();
        if (!seen.contains(a)) {
            seen.insert(a);
            out->append(a);
        }
    }
    QCollator order(QLocale(QLocale::Russian, QLocale::Russia));
    std::sort(out->begin(), out->end(), order);
    r.ok = true;
    return r;
}

DocumentStore::Result DocumentStore::list(const FileFilter &filter, QList<StoredFile> *out) {
    out->clear();
    Result r;
    const BoundStatement s = fileListStatement(m_access.table, filter);
    QSqlQuery q;
    if (!run(&q, s.sql, s.values, &r))
        return r;
    while (q.next()) {
        StoredFile f;
        f.data = q.value(0).toString();
        f.name = q.value(1).toString();
        f.type = q.value(2).toString();
        f.address = q.value(3).toString();
        out->append(f);
    }
    r.ok = true;
    return r;
}

DocumentStore::Result DocumentStore::insert(StoredFile *row, const QByteArray &bytes,
                                            TransferControl *control) {
    Result r;
    // The columns are tinytext: 255 bytes each.
    const QList<QPair<QString, QString>> texts = {{QStringLiteral("Имя файла"), row->name},
                                                  {QStringLiteral("Адрес объекта"), row->address},
                                                  {QStringLiteral("Пользователь"), row->user}};
    for (const auto &t : texts)
        if (t.second.toUtf8().size() > 255)
            return failure(QStringLiteral("%1 длиннее 255 байт и не помещается на сервер: «%2».")
                               .arg(t.first, t.second));
    if (!ensureOpen(&r))
        return r;
    if (m_maxPacket > 0 && bytes.size() + kPacketRoom > m_maxPacket)
        return failure(
            QStringLiteral("Сервер файлов %1 принимает файлы не больше %2 байт (max_allowed_packet), "
                           "а файл занимает %3 байт.")
                .arg(m_access.serverName())
                .arg(qMax<qint64>(0, m_maxPacket - kPacketRoom))
                .arg(bytes.size()));
    // The name with the same upload time identifies one row only.
    for (int attempt = 0;; ++attempt) {
        QSqlQuery q;
        if (!run(&q,
                 QStringLiteral("SELECT COUNT(*) FROM ") + m_access.table +
                     QStringLiteral(" WHERE name=? and data=?"),
                 {row->name, row->data}, &r))
            return r;
        if (!q.next() || q.value(0).toInt() == 0 || attempt > 100)
            break;
        const QDateTime t = StoredFiles::parseTime(row->data);
        row->data = StoredFiles::timeText((t.isValid() ? t : QDateTime::currentDateTime()).addSecs(1));
    }
    auto db = [this] { return QSqlDatabase::database(m_connection, false); };
    if (!db().transaction()) {
        const QSqlError e = db().lastError();
        if (isLost(e))
            close();
        return failure(
            QStringLiteral("Сервер файлов %1 не начал запись: %2").arg(m_access.serverName(), reasonOf(e)));
    }
    QSqlQuery q(db());
    q.prepare(QStringLiteral("INSERT INTO ") + m_access.table +
              QStringLiteral(" (data, name, type, datefile, user, address, file) values (?,?,?,?,?,?,?);"));
    // Every column is NOT NULL: an empty value is bound as an empty text.
    for (const QString *v : {&row->data, &row->name, &row->type, &row->datefile, &row->user, &row->address})
        q.addBindValue(v->isNull() ? QString(QLatin1String("")) : *v);
    // A picture's row holds no bytes; the column takes an empty value, not NULL.
    q.addBindValue(bytes.isEmpty() ? QByteArray("") : bytes);
    if (control)
        control->setTotal(bytes.size());
    if (!execTransfer(q, control, static_cast<int>(TransferControl::Direction::Send), &r)) {
        if (isOpen())
            db().rollback();
        return r;
    }
    q.finish();
    // Cancelled after the bytes arrived but before they were kept: the server forgets them.
    if (control && control->isCancelled()) {
        db().rollback();
        r = failure(kCancelled);
        r.cancelled = true;
        return r;
    }
    if (!db().commit()) {
        const QSqlError e = db().lastError();
        q = QSqlQuery();
        if (isLost(e))
            close();
        return failure(
            QStringLiteral("Сервер файлов %1 не сохранил файл: %2").arg(m_access.serverName(), reasonOf(e)));
    }
    if (control)
        control->setDone(bytes.size());
    r.ok = true;
    return r;
}

DocumentStore::Result DocumentStore::fetch(const QString &name, const QString &data, StoredFile *row,
                                           QByteArray *bytes, TransferControl *control) {
    bytes->clear();
    Result r;
    QSqlQuery size;
    if (!run(&size,
             QStringLiteral("SELECT LENGTH(file) FROM ") + m_access.table +
                 QStringLiteral(" WHERE name=? and data=?"),
             {name, data}, &r))
        return r;
    if (!size.next())
        return failure(QStringLiteral("Файла «%1» от %2 на сервере больше нет.")
                           .arg(TextValues::nameFromStored(name), data));
    const qint64 expected = size.value(0).toLongLong();
    size.finish();
    // The column holds at most 16 MiB; a server that says more is not believed.
    if (expected < 0 || expected > kMediumBlob)
        return failure(
            QStringLiteral("Сервер файлов %1 назвал размер файла «%2» %3 байт; такой файл не загружается.")
                .arg(m_access.serverName(), TextValues::nameFromStored(name))
                .arg(expected));
    if (control)
        control->setTotal(expected);
    if (!fetchRow(name, data, expected, row, bytes, control, &r))
        return r;
    if (bytes->size() != expected) {
        const qint64 got = bytes->size();
        bytes->clear();
        return failure(QStringLiteral("Файл «%1» пришёл с сервера не целиком (%2 байт из %3).")
                           .arg(TextValues::nameFromStored(name))
                           .arg(got)
                           .arg(expected));
    }
    if (control && control->isCancelled()) {
        bytes->clear();
        r = failure(kCancelled);
        r.cancelled = true;
        return r;
    }
    if (control)
        control->setDone(expected);
    r.ok = true;
    return r;
}

DocumentStore::Result DocumentStore::remove(const QString &name, const QString &data) {
    Result r;
    QSqlQuery q;
    if (!run(&q, QStringLiteral("DELETE FROM ") + m_access.table + QStringLiteral(" WHERE name=? and data=?"),
             {name, data}, &r))
        return r;
    r.ok = true;
    return r;
}

DocumentStore::Result DocumentStore::removeAll() {
    Result r;
    QSqlQuery q;
    if (!run(&q, QStringLiteral("DELETE FROM ") + m_access.table + QStringLiteral(" WHERE 1"), {}, &r))
        return r;
    r.ok = true;
    return r;
}

DocumentStore::Result DocumentStore::picturesSharing(const QString &name, const QString &address,
                                                     int *count) {
    *count = 0;
    Result r;
    QSqlQuery q;
    if (!run(&q, QStringLiteral("SELECT address FROM ") + m_access.table + QStringLiteral(" WHERE name=?"),
             {name}, &r))
        return r;
    const QString folder = ServerPicture::folderOf(address);
    while (q.next())
        if (ServerPicture::folderOf(q.value(0).toString()) == folder)
            ++*count;
    r.ok = true;
    return r;
}
