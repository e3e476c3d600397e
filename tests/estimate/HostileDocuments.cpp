#include "HostileDocuments.h"

#include "estimate/CrewGrid.h"
#include "estimate/DocumentFile.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStore.h"
#include "storage/DataFolder.h"
#include "storage/ModuleSQL.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <functional>
#include <sqlite3.h>
#include <sys/stat.h>

namespace HostileDocuments {

namespace {

QByteArray readAll(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeAll(const QString &path, const QByteArray &bytes) {
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(bytes);
}

// A raw connection to a corpus file: every trick below is plain SQL on it.
class Raw {
public:
    explicit Raw(const QString &path) {
        sqlite3_open_v2(QFile::encodeName(path).constData(), &m_db, SQLITE_OPEN_READWRITE, nullptr);
        // The tricks are written, never run here.
        sqlite3_limit(m_db, SQLITE_LIMIT_LENGTH, 64 * 1024 * 1024);
    }
    ~Raw() { sqlite3_close(m_db); }
    Raw(const Raw &) = delete;
    Raw &operator=(const Raw &) = delete;
    void exec(const QString &sql) { sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, nullptr); }
    // Runs a statement with one text parameter (a long text is made here, not by SQL's printf, which
    // takes many times its size to build it).
    void exec(const QString &sql, const QByteArray &text) {
        sqlite3_stmt *st = nullptr;
        if (sqlite3_prepare_v2(m_db, sql.toUtf8().constData(), -1, &st, nullptr) == SQLITE_OK) {
            sqlite3_bind_text(st, 1, text.constData(), static_cast<int>(text.size()), SQLITE_STATIC);
            sqlite3_step(st);
        }
        sqlite3_finalize(st);
    }
    // Rewrites the CREATE statement of a table in place (what another program may leave in a file).
    void rewriteSchema(const QString &name, const QString &from, const QString &to) {
        sqlite3_db_config(m_db, SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
        exec(QStringLiteral("PRAGMA writable_schema=ON"));
        exec(QStringLiteral("UPDATE sqlite_master SET sql=replace(sql, '%1', '%2') WHERE name='%3'")
                 .arg(QString(from).replace(u'\'', QStringLiteral("''")),
                      QString(to).replace(u'\'', QStringLiteral("''")), name));
        exec(QStringLiteral("PRAGMA writable_schema=OFF"));
    }
    sqlite3 *handle() const { return m_db; }

private:
    sqlite3 *m_db = nullptr;
};

const QStringList kTables = {"smeta", "materials", "koef", "parametrs", "ks2", "Customer", "cash", "shema"};

QString pick(QRandomGenerator &rng, const QStringList &list) {
    return list.at(static_cast<int>(rng.bounded(static_cast<quint32>(list.size()))));
}

// An expression that costs time or memory when evaluated.
QString heavyExpression(QRandomGenerator &rng) {
    static const QStringList e = {
        "zeroblob(1000000000)",
        "zeroblob(100000000)",
        "printf('%.*c', 1000000000, 'x')",
        "printf('%.*c', 200000000, 'x')",
        "hex(zeroblob(300000000))",
        "replace(printf('%.*c', 10000000, 'x'), 'x', printf('%.*c', 100, 'y'))",
        "(WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) SELECT max(x) FROM c)",
        "(SELECT count(*) FROM smeta a, smeta b, smeta c, smeta d)",
        "randomblob(500000000)",
    };
    return pick(rng, e);
}

using Maker = std::function<void(const QString &base, const QString &out, QRandomGenerator &rng)>;

void copyBase(const QString &base, const QString &out) {
    QFile::remove(out);
    QFile::copy(base, out);
    QFile::setPermissions(out, QFile::ReadOwner | QFile::WriteOwner);
}

struct Kind {
    const char *name;
    Maker make;
};

const QVector<Kind> &allKinds() {
    static const QVector<Kind> list = {
        {"flipped-bytes",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             // Bytes inside records: quick_check does not see most of them.
             QByteArray b = readAll(base);
             const int flips = 1 + static_cast<int>(rng.bounded(8u));
             for (int i = 0; i < flips && b.size() > 4096; ++i) {
                 const int at = 4096 + static_cast<int>(rng.bounded(static_cast<quint32>(b.size() - 4096)));
                 b[at] = static_cast<char>(b[at] ^ (1 << rng.bounded(8u)));
             }
             writeAll(out, b);
         }},
        {"cut-file",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             const QByteArray b = readAll(base);
             writeAll(out, b.left(static_cast<int>(rng.bounded(static_cast<quint32>(b.size())))));
         }},
        {"damaged-header",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             QByteArray b = readAll(base);
             // Page size, counts, freelist, schema cookie, encoding: the fields SQLite trusts first.
             static const int fields[] = {16, 17, 18, 19, 20, 21, 28, 29, 30,
                                          31, 32, 36, 40, 44, 48, 52, 56, 64};
             const int n = 1 + static_cast<int>(rng.bounded(4u));
             for (int i = 0; i < n; ++i)
                 b[fields[rng.bounded(static_cast<quint32>(std::size(fields)))]] =
                     static_cast<char>(rng.bounded(256u));
             writeAll(out, b);
         }},
        {"generated-column",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             const QString table = pick(rng, kTables);
             if (rng.bounded(2u))
                 db.exec(QStringLiteral("ALTER TABLE %1 ADD COLUMN g BLOB AS (%2)")
                             .arg(table, heavyExpression(rng)));
             else // a column the program reads, computed
                 db.rewriteSchema(QStringLiteral("smeta"), QStringLiteral("nameras TEXT"),
                                  QStringLiteral("nameras TEXT AS (%1) VIRTUAL").arg(heavyExpression(rng)));
         }},
        {"expression-default",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             const QString table = pick(rng, {"ks2", "koef", "parametrs", "materials", "smeta", "mydoc"});
             const QString column = table == QLatin1String("smeta")       ? QStringLiteral("machine")
                                    : table == QLatin1String("materials") ? QStringLiteral("reserve")
                                    : table == QLatin1String("koef")      ? QStringLiteral("comment")
                                    : table == QLatin1String("mydoc")     ? QStringLiteral("note")
                                                                          : QStringLiteral("value");
             db.rewriteSchema(table, column + QStringLiteral(" TEXT"),
                              column + QStringLiteral(" TEXT DEFAULT (%1)").arg(heavyExpression(rng)));
         }},
        {"check-constraint",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             const QString table = pick(rng, {"smeta", "materials", "koef", "ks2", "parametrs"});
             db.rewriteSchema(
                 table, QStringLiteral("AUTOINCREMENT,"),
                 QStringLiteral("AUTOINCREMENT CHECK (length(%1) >= 0),").arg(heavyExpression(rng)));
         }},
        {"view",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             db.exec(QStringLiteral("CREATE VIEW v%1 AS SELECT %2 AS x")
                         .arg(rng.bounded(100u))
                         .arg(heavyExpression(rng)));
         }},
        {"view-as-table",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             // A table the program reads replaced by a view that never ends.
             copyBase(base, out);
             Raw db(out);
             const QString table = pick(rng, {"smeta", "materials", "koef", "parametrs"});
             db.exec(QStringLiteral("DROP TABLE %1").arg(table));
             db.exec(
                 QStringLiteral("CREATE VIEW %1 AS WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 "
                                "FROM c) SELECT x AS _id, %2 AS nameras FROM c")
                     .arg(table, heavyExpression(rng)));
         }},
        {"trigger",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             const QString table = pick(rng, {"smeta", "materials", "koef", "ks2", "parametrs"});
             const QString when = pick(rng, {"INSERT", "DELETE", "UPDATE"});
             db.exec(QStringLiteral(
                         "CREATE TRIGGER t AFTER %1 ON %2 BEGIN INSERT INTO cash (note) VALUES (%3); END")
                         .arg(when, table, heavyExpression(rng)));
         }},
        {"virtual-table",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             if (rng.bounded(2u)) {
                 db.exec(QStringLiteral("DROP TABLE materials"));
                 db.exec(QStringLiteral("CREATE VIRTUAL TABLE materials USING fts4(edras, namemat, edizm)"));
             } else {
                 db.exec(QStringLiteral("CREATE VIRTUAL TABLE extra USING rtree(id, a, b)"));
             }
         }},
        {"expression-index",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             // Indexes whose every write evaluates an expression (made on a plain column, then described
             // as another program may describe them).
             db.exec(QStringLiteral("CREATE INDEX heavy ON materials (namemat)"));
             db.rewriteSchema(QStringLiteral("heavy"), QStringLiteral("(namemat)"),
                              QStringLiteral("(length(%1))").arg(heavyExpression(rng)));
             db.exec(QStringLiteral("CREATE INDEX light ON smeta (nameras)"));
             db.rewriteSchema(QStringLiteral("light"), QStringLiteral("(nameras)"),
                              QStringLiteral("(nameras) WHERE length(%1) > 0").arg(heavyExpression(rng)));
         }},
        {"huge-cell",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             // Characters of two bytes: the last size is past what a document may hold (32 MB).
             static const int sizes[] = {20000, 1000000, 10000000, 17000000};
             const int size = sizes[rng.bounded(static_cast<quint32>(std::size(sizes)))];
             const QString where = pick(rng, {"smeta.nameras", "smeta.kolvo", "materials.namemat",
                                              "parametrs.value", "koef.title", "Customer.fio"});
             const QString table = where.section(u'.', 0, 0), column = where.section(u'.', 1);
             db.exec(QStringLiteral("UPDATE %1 SET %2 = ?1 WHERE rowid = (SELECT min(rowid) FROM %1)")
                         .arg(table, column),
                     QString(size, QChar(0x0416)).toUtf8());
         }},
        {"many-rows",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             const int rows = 20000 + static_cast<int>(rng.bounded(180000u));
             const QString table = pick(rng, {"smeta", "materials", "koef", "parametrs"});
             const QString column = table == QLatin1String("smeta")       ? QStringLiteral("nameras")
                                    : table == QLatin1String("materials") ? QStringLiteral("namemat")
                                    : table == QLatin1String("koef")      ? QStringLiteral("title")
                                                                          : QStringLiteral("name");
             db.exec(QStringLiteral("BEGIN"));
             db.exec(QStringLiteral(
                         "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c WHERE x < %1) "
                         "INSERT INTO %2 (%3) SELECT 'Строка ' || x FROM c")
                         .arg(rows)
                         .arg(table, column));
             db.exec(QStringLiteral("COMMIT"));
         }},
        {"many-columns",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             const int columns = 100 + static_cast<int>(rng.bounded(1900u));
             QString extra;
             for (int i = 0; i < columns; ++i)
                 extra += QStringLiteral(", c%1 TEXT").arg(i);
             db.rewriteSchema(QStringLiteral("smeta"), QStringLiteral("idwork TEXT"),
                              QStringLiteral("idwork TEXT") + extra);
         }},
        {"odd-values",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             static const QStringList values = {"1e308",
                                                "-1e308",
                                                "9999999999999999999999999",
                                                "-9223372036854775808",
                                                "NaN",
                                                "inf",
                                                "0x7fffffffffffffff",
                                                "1,,,5",
                                                "--5",
                                                "[заказчик]",
                                                "ООО [заказчик]",
                                                "[строки.сумма]",
                                                "=HYPERLINK(\"http://example\")",
                                                "\u202eотчёт",
                                                "",
                                                " ",
                                                "999999999999,995"};
             db.exec(
                 QStringLiteral("UPDATE smeta SET kolvo = '%1', price = '%2', summa = '%3', nameras = '%4'")
                     .arg(pick(rng, values), pick(rng, values), pick(rng, values), pick(rng, values)));
             db.exec(QStringLiteral("UPDATE parametrs SET value = '%1'").arg(pick(rng, values)));
             db.exec(QStringLiteral("UPDATE koef SET value = '%1', checked = '-1'").arg(pick(rng, values)));
             // A NUL inside a text, bytes that are not UTF-8, a blob where text is expected.
             db.exec(QStringLiteral("UPDATE materials SET namemat = CAST(x'd0a300ff00c328' AS TEXT), kolvo = "
                                    "x'00ff', price = %1")
                         .arg(rng.bounded(2u) ? QStringLiteral("1e400") : QStringLiteral("-0.0")));
         }},
        {"false-version",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             static const int versions[] = {0, 1, 99, 2147483647, -5};
             db.exec(QStringLiteral("PRAGMA user_version = %1").arg(versions[rng.bounded(5u)]));
             if (rng.bounded(2u))
                 db.exec(QStringLiteral("DROP TABLE %1").arg(pick(rng, kTables)));
         }},
        {"unknown-table",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             db.exec(QStringLiteral("CREATE TABLE notes%1 (a TEXT, b BLOB)").arg(rng.bounded(10u)));
             db.exec(QStringLiteral(
                         "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c WHERE x < 2000) "
                         "INSERT INTO notes%1 SELECT 'x', randomblob(1000) FROM c")
                         .arg(rng.bounded(10u)));
             db.exec(QStringLiteral("ANALYZE"));
         }},
        {"stray-wal",
         [](const QString &base, const QString &out, QRandomGenerator &) {
             // A log left by another program beside the document: applying it would show rows the file
             // does not hold.
             const QString work = out + QStringLiteral(".work");
             copyBase(base, work);
             {
                 Raw db(work);
                 db.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
                 db.exec(QStringLiteral("PRAGMA wal_autocheckpoint=0"));
                 db.exec(QStringLiteral("UPDATE smeta SET nameras = 'Из журнала ' || nameras"));
                 QFile::remove(out + QStringLiteral("-wal"));
                 QFile::copy(work + QStringLiteral("-wal"), out + QStringLiteral("-wal"));
                 QFile::copy(work + QStringLiteral("-shm"), out + QStringLiteral("-shm"));
             }
             copyBase(base, out);
             for (const char *s : {"", "-wal", "-shm"})
                 QFile::remove(work + QLatin1String(s));
         }},
        {"hot-journal",
         [](const QString &base, const QString &out, QRandomGenerator &) {
             // A writer killed half-way: some pages of the file are new, the journal holds the old ones.
             const QString work = out + QStringLiteral(".work");
             copyBase(base, work);
             {
                 Raw db(work);
                 db.exec(QStringLiteral("PRAGMA journal_mode=DELETE"));
                 db.exec(QStringLiteral("PRAGMA cache_size=2"));
                 db.exec(QStringLiteral("BEGIN"));
                 db.exec(QStringLiteral(
                     "UPDATE smeta SET nameras = 'Недописано ' || nameras || printf('%.*c', 300, "
                     "'z')"));
                 db.exec(QStringLiteral("UPDATE materials SET namemat = 'Недописано'"));
                 QFile::remove(out);
                 QFile::remove(out + QStringLiteral("-journal"));
                 QFile::copy(work, out);
                 QFile::copy(work + QStringLiteral("-journal"), out + QStringLiteral("-journal"));
                 db.exec(QStringLiteral("ROLLBACK"));
             }
             QFile::remove(work);
         }},
        {"garbage-journal",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             QByteArray junk(4096 + static_cast<int>(rng.bounded(20000u)), '\0');
             for (char &c : junk)
                 c = static_cast<char>(rng.bounded(256u));
             // Sometimes with the journal's own magic number in front, so that it looks hot.
             if (rng.bounded(2u))
                 junk.replace(0, 8, QByteArray("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7", 8));
             writeAll(out + QStringLiteral("-journal"), junk);
         }},
        {"not-a-file",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             Q_UNUSED(base);
             switch (rng.bounded(4u)) {
             case 0:
                 ::mkfifo(QFile::encodeName(out).constData(), 0600);
                 break;
             case 1:
                 QDir().mkpath(out);
                 break;
             case 2:
                 QFile::link(QStringLiteral("/dev/zero"), out);
                 break;
             default:
                 QFile::link(out, out); // a link to itself
                 break;
             }
         }},
        {"page-fields",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             // A header that claims far more pages, or a freelist that points anywhere.
             QByteArray b = readAll(base);
             auto put32 = [&b](int at, quint32 v) {
                 for (int i = 0; i < 4; ++i)
                     b[at + i] = static_cast<char>((v >> (24 - 8 * i)) & 0xff);
             };
             put32(rng.bounded(2u) ? 28 : 36, rng.bounded(2u) ? 0x7fffffffu : rng.generate());
             put32(32, rng.generate());
             writeAll(out, b);
         }},
        {"deep-expression",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             const int depth = 1000 + static_cast<int>(rng.bounded(20000u));
             db.rewriteSchema(QStringLiteral("ks2"), QStringLiteral("value TEXT"),
                              QStringLiteral("value TEXT DEFAULT (") + QString(depth, u'(') +
                                  QStringLiteral("1") + QString(depth, u')') + QStringLiteral(")"));
         }},
        {"unknown-collation",
         [](const QString &base, const QString &out, QRandomGenerator &) {
             copyBase(base, out);
             Raw db(out);
             db.rewriteSchema(QStringLiteral("smeta"), QStringLiteral("nameras TEXT"),
                              QStringLiteral("nameras TEXT COLLATE nosuch"));
         }},
        {"strict-table",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             db.exec(QStringLiteral("DROP TABLE ks2"));
             db.exec(rng.bounded(2u)
                         ? QStringLiteral("CREATE TABLE ks2 (id INTEGER PRIMARY KEY, name INTEGER NOT NULL, "
                                          "value INTEGER NOT NULL) STRICT")
                         : QStringLiteral("CREATE TABLE ks2 (name TEXT PRIMARY KEY, value TEXT UNIQUE "
                                          "NOT NULL) WITHOUT ROWID"));
         }},
        {"blob-cells",
         [](const QString &base, const QString &out, QRandomGenerator &rng) {
             copyBase(base, out);
             Raw db(out);
             db.exec(QStringLiteral(
                         "UPDATE smeta SET nameras = randomblob(%1), kolvo = zeroblob(10), section = x'6272'")
                         .arg(100 + rng.bounded(5000u)));
         }},
    };
    return list;
}

} // namespace

QStringList kinds() {
    QStringList names;
    for (const Kind &k : allKinds())
        names << QString::fromLatin1(k.name);
    return names;
}

QVector<Sample> generate(const QString &folder, const QString &base, quint32 seed, int count) {
    QDir().mkpath(folder);
    QRandomGenerator rng(seed);
    QVector<Sample> out;
    const QVector<Kind> &list = allKinds();
    for (int i = 0; i < count; ++i) {
        const Kind &kind = list.at(i % list.size());
        const QString path = QDir(folder).filePath(
            QStringLiteral("%1-%2.sim").arg(i, 4, 10, QLatin1Char('0')).arg(QString::fromLatin1(kind.name)));
        kind.make(base, path, rng);
        out.append({path, QString::fromLatin1(kind.name)});
    }
    return out;
}

QString makeBase(const QString &path, int rows) {
    QTemporaryDir data;
    if (!data.isValid())
        return QStringLiteral("no temporary folder");
    if (const QString why = DataFolder::ensureTree(data.path()); !why.isEmpty())
        return why;
    TModuleSQL module(data.path());
    EstimateGrid grid;
    CrewGrid crew;
    QString error;
    if (!EstimateStore::createNewDoc(module, grid, crew, &error))
        return error;
    std::vector<QStringList> cells;
    for (int r = 0; r < rows; ++r) {
        QStringList row;
        for (int c = 0; c < EstimateCol::Count; ++c)
            row << QString();
        if (r % 10 == 0) {
            row[EstimateCol::Name] = QStringLiteral("РАЗДЕЛ %1. Отделка").arg(r / 10 + 1);
            row[EstimateCol::Kind] = QStringLiteral("br");
        } else {
            row[EstimateCol::Num] = QString::number(r);
            row[EstimateCol::Ras] = QStringLiteral("1-%1").arg(r);
            row[EstimateCol::Name] = QStringLiteral("Шпаклёвка стен, помещение %1").arg(r);
            row[EstimateCol::Unit] = QStringLiteral("м2");
            row[EstimateCol::Qty] = QString::number(r % 7 + 1);
            row[EstimateCol::Price] = QStringLiteral("%1,50").arg(100 + r);
        }
        cells.push_back(row);
    }
    grid.setAllRows(std::move(cells));
    crew.setGridRowCount(rows + 1);
    QSqlDatabase db = module.database(Db::Smeta);
    if (!EstimateStore::writeSmeta(db, grid, crew,
                                   {{DocParam::customer, QStringLiteral("ООО «Ромашка»")},
                                    {DocParam::object, QStringLiteral("Офис на Ленина, 5")},
                                    {DocParam::number, QStringLiteral("17")}},
                                   &error))
        return error;
    QSqlQuery q(db);
    for (int i = 0; i < 12; ++i)
        q.exec(QStringLiteral(
                   "INSERT INTO materials (edras, namemat, edizm, kolvo, price, summa, numpos) VALUES "
                   "('1-%1', 'Шпаклёвка финишная %1', 'кг', '%2', '45,00', '', %1)")
                   .arg(i + 1)
                   .arg(i * 3 + 2));
    q.exec(QStringLiteral("INSERT INTO Customer (fio, phone) VALUES ('ООО «Ромашка»', '+7 900 000-00-00')"));
    q.exec(QStringLiteral("INSERT INTO cash (data, prihod) VALUES ('01.02.2025', '5000')"));
    q.exec(QStringLiteral("INSERT INTO shema (number, name, stena) VALUES ('1', 'Кухня', '3,2')"));
    QFile::remove(path);
    return DocumentFile::save(module, path);
}

} // namespace HostileDocuments
