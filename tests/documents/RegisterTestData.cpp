#include "RegisterTestData.h"

#include "SqlRows.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlError>

namespace RegisterTestData {

qlonglong addRow(QSqlDatabase mydoc, Registration::List list, const QString &client, const QDate &date,
                 const QString &allsum, bool finished, const QString &name, const QString &fileName) {
    QSqlQuery q(mydoc);
    q.prepare(
        QStringLiteral("INSERT INTO %1 (data, date_compare, name, filename, client, object, summat, sumrab, "
                       "allsum, status, month, year) VALUES (?, ?, ?, ?, ?, 'Кухня', '10,00', '20,00', ?, ?, "
                       "?, ?)")
            .arg(Registration::tableOf(list)));
    q.addBindValue(TextValues::shortDate(date));
    q.addBindValue(TextValues::dateCompareSeconds(date).toLongLong());
    q.addBindValue(TextValues::nameToStored(name));
    q.addBindValue(fileName);
    q.addBindValue(TextValues::nameToStored(client));
    q.addBindValue(allsum);
    q.addBindValue(finished ? QVariant(1) : QVariant(QMetaType(QMetaType::Int)));
    q.addBindValue(TextValues::monthText(date));
    q.addBindValue(TextValues::yearText(date));
    EXPECT_TRUE(q.exec()) << q.lastError().text().toStdString();
    return q.lastInsertId().toLongLong();
}

qlonglong saveDocument(QSqlDatabase mydoc, const QString &path, bool draft, const QString &name,
                       const QString &client, const QString &content) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    DatabaseFile file(path);
    QSqlQuery q(file.db());
    EXPECT_TRUE(
        q.exec("CREATE TABLE mydoc (id INTEGER PRIMARY KEY AUTOINCREMENT, iddoc INTEGER, note TEXT)"));
    EXPECT_TRUE(q.exec("CREATE TABLE smeta (_id INTEGER PRIMARY KEY AUTOINCREMENT, nameras TEXT)"));
    q.prepare("INSERT INTO smeta (nameras) VALUES (?)");
    q.addBindValue(content);
    EXPECT_TRUE(q.exec());
    Registration::Entry e;
    e.date = QDate(2025, 3, 7);
    e.name = name;
    e.fileName = path;
    e.client = client;
    e.object = QStringLiteral("Кухня");
    e.summat = QStringLiteral("1000");
    e.sumrab = QStringLiteral("2000,5");
    e.allsum = QStringLiteral("3000,5");
    e.draft = draft;
    const Registration::Result r = Registration::registerOnSave(file.db(), mydoc, e);
    EXPECT_TRUE(r.ok) << r.error.toStdString();
    return r.id;
}

QString linkOf(const QString &path) {
    if (!QFileInfo::exists(path))
        return QStringLiteral("<no file>");
    DatabaseFile file(path);
    return file.rows("SELECT iddoc, note FROM mydoc").join(QLatin1Char(';'));
}

QString contentOf(const QString &path) {
    if (!QFileInfo::exists(path))
        return QStringLiteral("<no file>");
    DatabaseFile file(path);
    return file.rows("SELECT nameras FROM smeta").join(QLatin1Char(';'));
}

QList<qlonglong> ids(QSqlDatabase db, const QString &statement) {
    QList<qlonglong> out;
    QSqlQuery q(db);
    EXPECT_TRUE(q.exec(statement)) << statement.toStdString() << " " << q.lastError().text().toStdString();
    while (q.next())
        out << q.value(QStringLiteral("id")).toLongLong();
    return out;
}

} // namespace RegisterTestData
