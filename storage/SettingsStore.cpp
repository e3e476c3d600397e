#include "SettingsStore.h"

#include <QAtomicInt>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace {
QAtomicInt g_count;
}

SettingsStore::SettingsStore(const QString &filePath)
    : m_path(filePath),
      m_connection(QStringLiteral("IniFile#") + QString::number(g_count.fetchAndAddRelaxed(1))) {
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    db.setDatabaseName(filePath);
    if (!db.open()) {
        m_error = db.lastError().text();
        return;
    }
    QSqlQuery q(db);
    if (!q.exec(
            QStringLiteral("CREATE TABLE IF NOT EXISTS settings (section TEXT NOT NULL, key TEXT NOT NULL, "
                           "value TEXT, PRIMARY KEY (section, key))"))) {
        m_error = q.lastError().text();
        db.close();
        return;
    }
    m_open = true;
}

SettingsStore::~SettingsStore() {
    {
        QSqlDatabase db = QSqlDatabase::database(m_connection, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(m_connection);
}

bool SettingsStore::contains(const QString &section, const QString &key) const {
    if (!m_open)
        return false;
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    q.prepare(QStringLiteral("SELECT 1 FROM settings WHERE section=? AND key=?"));
    q.addBindValue(section);
    q.addBindValue(key);
    return q.exec() && q.next();
}

QString SettingsStore::text(const QString &section, const QString &key, const QString &def) const {
    if (!m_open)
        return def;
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    q.prepare(QStringLiteral("SELECT value FROM settings WHERE section=? AND key=?"));
    q.addBindValue(section);
    q.addBindValue(key);
    if (q.exec() && q.next())
        return q.value(0).toString();
    return def;
}

int SettingsStore::integer(const QString &section, const QString &key, int def) const {
    bool ok = false;
    int v = text(section, key).trimmed().toInt(&ok);
    return ok ? v : def;
}

double SettingsStore::number(const QString &section, const QString &key, double def) const {
    QString t = text(section, key).trimmed();
    t.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    double v = t.toDouble(&ok);
    return ok ? v : def;
}

bool SettingsStore::flag(const QString &section, const QString &key, bool def) const {
    const QString t = text(section, key).trimmed().toLower();
    if (t == QLatin1String("1") || t == QLatin1String("true") || t == QLatin1String("-1"))
        return true;
    if (t == QLatin1String("0") || t == QLatin1String("false"))
        return false;
    return def;
}

QStringList SettingsStore::keys(const QString &section) const {
    QStringList out;
    if (!m_open)
        return out;
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    q.prepare(QStringLiteral("SELECT key FROM settings WHERE section=? ORDER BY key"));
    q.addBindValue(section);
    if (q.exec())
        while (q.next())
            out << q.value(0).toString();
    return out;
}

void SettingsStore::setText(const QString &section, const QString &key, const QString &value) {
    if (!m_open)
        return;
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    q.prepare(QStringLiteral("INSERT INTO settings (section, key, value) VALUES (?, ?, ?) "
                             "ON CONFLICT(section, key) DO UPDATE SET value=excluded.value"));
    q.addBindValue(section);
    q.addBindValue(key);
    q.addBindValue(value);
    q.exec();
}

void SettingsStore::setInteger(const QString &section, const QString &key, int value) {
    setText(section, key, QString::number(value));
}

void SettingsStore::setNumber(const QString &section, const QString &key, double value) {
    setText(section, key, QString::number(value, 'g', 15));
}

void SettingsStore::setFlag(const QString &section, const QString &key, bool value) {
    setText(section, key, value ? QStringLiteral("1") : QStringLiteral("0"));
}

void SettingsStore::remove(const QString &section, const QString &key) {
    if (!m_open)
        return;
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    q.prepare(QStringLiteral("DELETE FROM settings WHERE section=? AND key=?"));
    q.addBindValue(section);
    q.addBindValue(key);
    q.exec();
}
