#include "PriceTestData.h"
#include "SqlRows.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <gtest/gtest.h>

PriceFixture::PriceFixture() {
    ensureApplication();
    module = std::make_unique<TModuleSQL>(folder.path());
    EXPECT_TRUE(price().isOpen());
    EXPECT_TRUE(smeta().isOpen());
}

void PriceFixture::addRates(const QString &table, const std::vector<QStringList> &rows,
                            const QString &column) {
    QSqlQuery q(price());
    for (const QStringList &r : rows) {
        q.prepare(QStringLiteral("INSERT INTO %1 (edras, nameras, edizm, %2, rec) VALUES (?,?,?,?,?)")
                      .arg(table, column));
        for (int i = 0; i < 5; ++i)
            q.addBindValue(i < r.size() ? r.at(i) : QString());
        ASSERT_TRUE(q.exec()) << q.lastError().text().toStdString();
    }
}

void PriceFixture::addResource(const QString &table, const QString &name, const QString &unit,
                               const QString &cena, const QString &ras, const QString &norma) {
    QSqlQuery q(price());
    q.prepare(QStringLiteral("INSERT INTO %1 (name, edizm, cena, ras, norma) VALUES (?,?,?,?,?)").arg(table));
    for (const QString &v : {name, unit, cena, ras, norma})
        q.addBindValue(v);
    ASSERT_TRUE(q.exec()) << q.lastError().text().toStdString();
}

QStringList estimateMaterials(QSqlDatabase smeta) {
    return queryRows(smeta,
                     QStringLiteral("SELECT namemat, kolvo, price, summa FROM materials ORDER BY _id"));
}

QString PriceFixture::scalar(QSqlDatabase db, const QString &sql) {
    QSqlQuery q(db);
    if (!q.exec(sql) || !q.next())
        return QStringLiteral("<none>");
    return q.value(0).toString();
}

RateRow rate(const QString &ras, const QString &name, const QString &unit, const QString &price,
             const QString &rec) {
    RateRow::Cells c;
    c[PriceCol::Ras] = ras;
    c[PriceCol::Name] = name;
    c[PriceCol::Unit] = unit;
    c[PriceCol::Price] = price;
    c[PriceCol::Rec] = rec;
    return RateRow(c);
}

namespace {
QString env(const char *name) {
    return QString::fromLocal8Bit(qgetenv(name));
}
} // namespace

std::optional<ServerSettings> testServer() {
    if (env("VIRN_TEST_MYSQL_HOST").isEmpty())
        return std::nullopt;
    ServerSettings s;
    s.host = env("VIRN_TEST_MYSQL_HOST");
    s.port = env("VIRN_TEST_MYSQL_PORT").toInt();
    s.user = env("VIRN_TEST_MYSQL_USER");
    s.password = env("VIRN_TEST_MYSQL_PASSWORD");
    s.database = env("VIRN_TEST_MYSQL_DB");
    return s;
}

void dropServerTable(const ServerSettings &s) {
    const QString name = QStringLiteral("cleanup");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QMYSQL"), name);
        db.setHostName(s.host);
        db.setPort(s.port);
        db.setUserName(s.user);
        db.setPassword(s.password);
        db.setDatabaseName(s.database);
        if (db.open())
            QSqlQuery(db).exec(QStringLiteral("DROP TABLE IF EXISTS ") + s.table);
    }
    QSqlDatabase::removeDatabase(name);
}
