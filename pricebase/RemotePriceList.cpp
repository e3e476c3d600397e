#include "RemotePriceList.h"

#include "storage/SettingsStore.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QAtomicInt>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace {

const QString kSection = QStringLiteral("Server");
QAtomicInt g_connections;

// The columns of a rate in the order PriceStore::rowCells reads them.
const QString kSelectRows =
    QStringLiteral("SELECT id, Rascenka, Name, Edizm, Price, rec, link, mat, koef FROM ");

// Columns of the remote layout are tinytext: 255 bytes.
constexpr int kTinyText = 255;

bool fail(QString *error, const QString &text) {
    if (error)
        *error = text;
    return false;
}

QString reasonOf(const QSqlError &e) {
    const QString own = e.databaseText().trimmed();
    return own.isEmpty() ? e.text().trimmed() : own;
}

} // namespace

ServerSettings ServerSettings::load(const SettingsStore &store) {
    ServerSettings s;
    s.host = store.text(kSection, QStringLiteral("Host"));
    s.port = store.integer(kSection, QStringLiteral("Port"), 3306);
    s.database = store.text(kSection, QStringLiteral("Database"));
    s.user = store.text(kSection, QStringLiteral("User"));
    s.password = store.text(kSection, QStringLiteral("Password"));
    s.table = store.text(kSection, QStringLiteral("Table"), QStringLiteral("price_virn"));
    s.filesDatabase = store.text(kSection, QStringLiteral("FilesDatabase"));
    return s;
}

void ServerSettings::save(SettingsStore &store) const {
    store.setText(kSection, QStringLiteral("Host"), host);
    store.setInteger(kSection, QStringLiteral("Port"), port);
    store.setText(kSection, QStringLiteral("Database"), database);
    store.setText(kSection, QStringLiteral("User"), user);
    store.setText(kSection, QStringLiteral("Password"), password);
    store.setText(kSection, QStringLiteral("Table"), table);
    store.setText(kSection, QStringLiteral("FilesDatabase"), filesDatabase.trimmed());
}

QString ServerSettings::problem() const {
    if (host.trimmed().isEmpty())
        return QStringLiteral("Не указан адрес сервера.");
    if (port <= 0 || port > 65535)
        return QStringLiteral("Порт сервера должен быть числом от 1 до 65535.");
    if (!TextValues::isSafeTableName(database))
        return QStringLiteral(
            "Имя базы данных может содержать только латинские буквы, цифры и знак подчёркивания.");
    if (!TextValues::isSafeTableName(table))
        return QStringLiteral("Имя таблицы расценок может содержать только латинские буквы, цифры и знак "
                              "подчёркивания.");
    if (!filesDatabase.trimmed().isEmpty() && !TextValues::isSafeTableName(filesDatabase.trimmed()))
        return QStringLiteral("Имя базы файлов может содержать только латинские буквы, цифры и знак "
                              "подчёркивания.");
    return {};
}

RemotePriceList::RemotePriceList()
    : m_connection(QStringLiteral("FDConnectionServer#%1").arg(g_connections.fetchAndAddRelaxed(1))) {}

RemotePriceList::~RemotePriceList() {
    disconnect();
}

QString RemotePriceList::createStatement(const QString &table) {
    return QStringLiteral("CREATE TABLE IF NOT EXISTS ") + table +
           QStringLiteral(" (id bigint(20) AUTO_INCREMENT NOT NULL PRIMARY KEY, Rascenka tinytext NOT NULL, "
                          "Name tinytext NOT NULL, Edizm tinytext NOT NULL, Price tinytext NOT NULL, "
                          "rec tinytext NOT NULL, link tinytext NOT NULL, mat tinytext NOT NULL, "
                          "koef tinytext NOT NULL) DEFAULT CHARSET=utf8mb4");
}

bool RemotePriceList::connectTo(const ServerSettings &settings, QString *error) {
    disconnect();
    if (const QString p = settings.problem(); !p.isEmpty())
        return fail(error, p);
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QMYSQL")))
        return fail(error, QStringLiteral("Драйвер MySQL (QMYSQL) не установлен."));
    QString reason;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QMYSQL"), m_connection);
        db.setHostName(settings.host.trimmed());
        db.setPort(settings.port);
        db.setUserName(settings.user);
        db.setPassword(settings.password);
        db.setConnectOptions(QStringLiteral("MYSQL_OPT_CONNECT_TIMEOUT=5;MYSQL_OPT_READ_TIMEOUT=60;"
                                            "MYSQL_OPT_WRITE_TIMEOUT=60"));
        if (!db.open()) {
            reason = reasonOf(db.lastError());
        } else {
            QSqlQuery q(db);
            if (!q.exec(QStringLiteral("SET NAMES utf8mb4")) ||
                !q.exec(QStringLiteral("USE ") + settings.database + QStringLiteral(";")) ||
                !q.exec(createStatement(settings.table)))
                reason = reasonOf(q.lastError());
        }
    }
    if (!reason.isEmpty()) {
        QSqlDatabase::removeDatabase(m_connection);
        return fail(error, reason);
    }
    m_settings = settings;
    return true;
}

void RemotePriceList::disconnect() {
    if (!QSqlDatabase::contains(m_connection))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_connection, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(m_connection);
}

bool RemotePriceList::isConnected() const {
    return QSqlDatabase::contains(m_connection) && QSqlDatabase::database(m_connection, false).isOpen();
}

bool RemotePriceList::readList(const QString &likePattern, PriceListData &out, QString *error) {
    out.rows.clear();
    out.sections.clear();
    if (!isConnected())
        return fail(error, QStringLiteral("Нет подключения к серверу."));
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    q.setForwardOnly(true);
    const QString head = kSelectRows + m_settings.table + QStringLiteral(" WHERE ");
    if (likePattern.isEmpty()) {
        q.prepare(head + QStringLiteral("1"));
    } else {
        q.prepare(head + QStringLiteral("Rascenka LIKE ?"));
        q.addBindValue(likePattern);
    }
    if (!q.exec())
        return fail(error, reasonOf(q.lastError()));
    PriceStore::readRows(q, true, out);
    return true;
}

bool RemotePriceList::writeList(const RateTable &rows, QString *error) {
    if (!isConnected())
        return fail(error, QStringLiteral("Нет подключения к серверу."));
    const int columns[] = {PriceCol::Ras, PriceCol::Name, PriceCol::Unit, PriceCol::Price,
                           PriceCol::Rec, PriceCol::Link, PriceCol::Koef};
    for (const RateRow &row : rows) {
        for (int c : columns) {
            if (row[c].toUtf8().size() > kTinyText)
                return fail(error,
                            QStringLiteral("Расценка %1 «%2»: текст длиннее %3 байт не помещается в таблицу "
                                           "сервера. Список на сервере не изменён.")
                                .arg(row[PriceCol::Ras], row[PriceCol::Name].left(80))
                                .arg(kTinyText));
        }
    }
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("DROP TABLE ") + m_settings.table + QStringLiteral(";")) ||
        !q.exec(createStatement(m_settings.table)))
        return fail(error, reasonOf(q.lastError()));
    Transaction t(db);
    if (!t.active())
        return fail(error, t.error());
    // Every column of the layout is NOT NULL without a default, so rec, link, mat and koef are written
    // too (rec keeps the rates' resources attached).
    q.prepare(
        QStringLiteral("INSERT INTO ") + m_settings.table +
        QStringLiteral(" (Rascenka, Name, Edizm, Price, rec, link, mat, koef) values (?,?,?,?,?,?,'',?)"));
    for (const RateRow &row : rows) {
        if (row.isBlank())
            continue;
        for (int c : columns)
            q.addBindValue(row.bound(c));
        if (!q.exec())
            return fail(error, reasonOf(q.lastError()));
    }
    if (!t.commit())
        return fail(error, t.error());
    return true;
}

bool RemotePriceList::findRateByName(const QString &name, RateRow &out, QString *error) {
    if (!isConnected())
        return fail(error, QStringLiteral("Нет подключения к серверу."));
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    q.setForwardOnly(true);
    q.prepare(kSelectRows + m_settings.table + QStringLiteral(" WHERE Name=?"));
    q.addBindValue(name);
    if (!q.exec())
        return fail(error, reasonOf(q.lastError()));
    if (!q.next())
        return false;
    out = RateRow(PriceStore::rowCells(q, true));
    return true;
}
