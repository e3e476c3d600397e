// Document files from elsewhere: what runs when it is read is refused, huge cells are cut and named,
// changed content is reported by table, logs and journals beside a document are handled as SQLite
// would not, things that are not files are told as what they are; and a sample of the generated
// corpus of hostile files opens or is refused in a process of its own, within its memory.

#include "HostileDocuments.h"
#include "SqlRows.h"
#include "TestFolder.h"
#include "estimate/CrewGrid.h"
#include "estimate/DocumentFile.h"
#include "estimate/EstimateExport.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStore.h"
#include "storage/DataFolder.h"
#include "storage/ModuleSQL.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlQuery>
#include <gtest/gtest.h>

#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

inline void PrintTo(const QString &s, std::ostream *os) {
    *os << '"' << s.toStdString() << '"';
}

namespace {

QByteArray bytes(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void exec(const QString &path, const QString &sql) {
    sqlite3 *db = nullptr;
    ASSERT_EQ(sqlite3_open(QFile::encodeName(path).constData(), &db), SQLITE_OK);
    sqlite3_db_config(db, SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
    char *message = nullptr;
    EXPECT_EQ(sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, &message), SQLITE_OK)
        << sql.toStdString() << ": " << (message ? message : "");
    sqlite3_free(message);
    sqlite3_close(db);
}

class HostileDocumentTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(DataFolder::ensureTree(folder.path()).isEmpty());
        base = folder.file(QStringLiteral("base.sim"));
        ASSERT_EQ(HostileDocuments::makeBase(base), QString());
        // The open document, which a refused file must leave as it is.
        ASSERT_TRUE(EstimateStore::createNewDoc(module, grid, crew));
        QSqlQuery(working()).exec(QStringLiteral("INSERT INTO smeta (nameras) VALUES ('Открытая смета')"));
    }
    QSqlDatabase working() { return module.database(Db::Smeta); }
    QStringList names() {
        return queryRows(working(), QStringLiteral("SELECT nameras FROM smeta ORDER BY _id"));
    }
    // A copy of the sound document changed by `sql`.
    QString variant(const QString &name, const QString &sql) {
        const QString path = folder.file(name);
        QFile::copy(base, path);
        exec(path, sql);
        return path;
    }

    TestFolder folder;
    TModuleSQL module{folder.path()};
    EstimateGrid grid;
    CrewGrid crew;
    QString base;
};

TEST_F(HostileDocumentTest, WhatRunsOnReadingIsRefusedByNameAndTheOpenDocumentStays) {
    struct Case {
        const char *name, *sql, *told;
    };
    const Case cases[] = {
        {"view.sim", "CREATE VIEW v AS SELECT printf('%.*c', 1000000000, 'x')", "представление «v»"},
        {"trigger.sim", "CREATE TRIGGER t AFTER INSERT ON materials BEGIN DELETE FROM smeta; END",
         "триггер «t»"},
        {"generated.sim", "ALTER TABLE koef ADD COLUMN g BLOB AS (zeroblob(1000000000))",
         "вычисляемый столбец «g»"},
        {"stored.sim",
         "PRAGMA writable_schema=ON; UPDATE sqlite_master SET sql=replace(sql, 'idwork TEXT', 'idwork TEXT, "
         "s TEXT AS "
         "(upper(nameras)) STORED') WHERE name='smeta'",
         "вычисляемый столбец «s»"},
        {"virtual.sim", "DROP TABLE materials; CREATE VIRTUAL TABLE materials USING fts4(namemat)",
         "виртуальная"},
        {"unknown.sim", "CREATE TABLE notes (a TEXT)", "таблица «notes»"},
        {"smeta-view.sim",
         "DROP TABLE smeta; CREATE VIEW smeta AS WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 "
         "FROM c) "
         "SELECT x AS _id, 'a' AS nameras FROM c",
         "нет таблицы сметы"},
    };
    const QStringList before = names();
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = variant(QString::fromUtf8(c.name), QString::fromUtf8(c.sql));
        const QString error = DocumentFile::open(module, path);
        EXPECT_TRUE(error.contains(QString::fromUtf8(c.told))) << error.toStdString();
        EXPECT_TRUE(error.contains(QFileInfo(path).fileName())) << error.toStdString();
        EXPECT_EQ(names(), before);
    }
}

TEST_F(HostileDocumentTest, TheFilesOwnDefaultsAndChecksAreNeverRun) {
    // A document whose tables would write 100 MB per new row, or check every row with 200 MB of text:
    // its rows are read into tables the program makes itself.
    const QString path = variant(
        QStringLiteral("defaults.sim"),
        QStringLiteral(
            "PRAGMA writable_schema=ON;"
            "UPDATE sqlite_master SET sql=replace(sql, 'value TEXT', 'value TEXT DEFAULT "
            "(zeroblob(100000000))') "
            "WHERE name='ks2';"
            "UPDATE sqlite_master SET sql=replace(sql, 'AUTOINCREMENT,', "
            "'AUTOINCREMENT CHECK (length(printf(''%.*c'', 200000000, ''x'')) >= 0),') WHERE name='koef';"));
    ASSERT_EQ(DocumentFile::open(module, path), QString());
    EXPECT_EQ(queryRows(working(), QStringLiteral("SELECT count(*) FROM smeta")), QStringList{"40"});
    // New rows of the act's settings and coefficients take the program's defaults.
    QSqlQuery q(working());
    ASSERT_TRUE(q.exec(QStringLiteral("INSERT INTO ks2 (name) VALUES ('Новое поле')")));
    ASSERT_TRUE(q.exec(QStringLiteral("INSERT INTO koef (title) VALUES ('Новая строка')")));
    EXPECT_EQ(queryRows(working(), QStringLiteral("SELECT count(*) FROM ks2 WHERE value IS NULL")),
              QStringList{"1"});
    EXPECT_LT(QFileInfo(module.filePath(Db::Smeta)).size(), 1024 * 1024);
}

TEST_F(HostileDocumentTest, LongCellsAreCutAndNamedAndOverlongOnesRefused) {
    const QString path =
        variant(QStringLiteral("long.sim"),
                QStringLiteral("UPDATE smeta SET nameras = printf('%.*c', 50000, 'Ж') WHERE _id = 3;"
                               "UPDATE materials SET note = printf('%.*c', 20000, 'x') WHERE _id = 2"));
    QString warning;
    ASSERT_EQ(DocumentFile::open(module, path, &warning), QString());
    EXPECT_TRUE(warning.contains(QStringLiteral("строка сметы 3, столбец «nameras»: 50 000 знаков")))
        << warning.toStdString();
    EXPECT_TRUE(warning.contains(QStringLiteral("материал 2, столбец «note»: 20 000 знаков")))
        << warning.toStdString();
    EXPECT_EQ(queryRows(working(), QStringLiteral("SELECT length(nameras) FROM smeta WHERE _id = 3")),
              QStringList{"10000"});
    EXPECT_EQ(queryRows(working(), QStringLiteral("SELECT length(note) FROM materials WHERE _id = 2")),
              QStringList{"10000"});

    // Past what is read at all: refused, and the cell named.
    const QStringList before = names();
    const QString huge = variant(QStringLiteral("huge.sim"),
                                 QStringLiteral("UPDATE smeta SET kolvo = zeroblob(40000000) WHERE _id = 5"));
    const QString error = DocumentFile::open(module, huge);
    EXPECT_TRUE(error.contains(QStringLiteral("строка сметы 5 (столбец «kolvo») длиннее 32 МБ")))
        << error.toStdString();
    EXPECT_TRUE(error.contains(QStringLiteral("больше, чем программа может взять"))) << error.toStdString();
    EXPECT_EQ(names(), before);

    // More records than the program takes: refused before they are read.
    const QString many =
        variant(QStringLiteral("many.sim"),
                QStringLiteral("WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c WHERE "
                               "x < 100000) INSERT INTO materials (namemat) SELECT 'м' || x FROM c"));
    const QString tooMany = DocumentFile::open(module, many);
    EXPECT_TRUE(
        tooMany.contains(QStringLiteral("материалы (materials) — число записей 100 012, а документ может "
                                        "содержать до 100 000")))
        << tooMany.toStdString();
    EXPECT_EQ(names(), before);
}

TEST_F(HostileDocumentTest, ContentThatIsNotWhatWasSavedIsReportedByTable) {
    QString warning;
    ASSERT_EQ(DocumentFile::open(module, base, &warning), QString());
    EXPECT_EQ(warning, QString());

    // One letter of a name changed inside its record: SQLite's own check sees nothing.
    QByteArray b = bytes(base);
    const QByteArray word = QStringLiteral("помещение 17").toUtf8();
    const int at = b.indexOf(word);
    ASSERT_GT(at, 0);
    b[at + word.size() - 1] = '9';
    const QString changed = folder.file(QStringLiteral("changed.sim"));
    QFile f(changed);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(b);
    f.close();
    ASSERT_EQ(DocumentFile::open(module, changed, &warning), QString());
    EXPECT_TRUE(warning.contains(QStringLiteral("строки сметы (smeta)"))) << warning.toStdString();
    EXPECT_FALSE(warning.contains(QStringLiteral("materials"))) << warning.toStdString();

    // A document written before sums were kept opens without a word.
    const QString older = variant(QStringLiteral("older.sim"), QStringLiteral("DROP TABLE checksum"));
    ASSERT_EQ(DocumentFile::open(module, older, &warning), QString());
    EXPECT_EQ(warning, QString());
    // The sums belong to the file: they are not carried into the working database.
    EXPECT_EQ(
        queryRows(working(), QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name='checksum'")),
        QStringList{"0"});
}

TEST_F(HostileDocumentTest, ALogBesideTheDocumentIsNeverAppliedAndAJournalIsPlayedBack) {
    const QVector<HostileDocuments::Sample> samples = HostileDocuments::generate(
        folder.file(QStringLiteral("corpus")), base, 1, HostileDocuments::kinds().size());
    auto sample = [&](const QString &kind) {
        for (const auto &s : samples)
            if (s.kind == kind)
                return s.path;
        return QString();
    };
    const QStringList baseNames = [&] {
        DatabaseFile d(base);
        return d.rows(QStringLiteral("SELECT nameras FROM smeta ORDER BY _id"));
    }();

    const QString walled = sample(QStringLiteral("stray-wal"));
    const QByteArray file = bytes(walled), log = bytes(walled + QStringLiteral("-wal"));
    ASSERT_FALSE(log.isEmpty());
    QString warning;
    ASSERT_EQ(DocumentFile::open(module, walled, &warning), QString());
    EXPECT_EQ(names(), baseNames);
    EXPECT_TRUE(warning.contains(QFileInfo(walled).fileName() + QStringLiteral("-wal")))
        << warning.toStdString();
    // Neither the document nor the log beside it was touched.
    EXPECT_EQ(bytes(walled), file);
    EXPECT_EQ(bytes(walled + QStringLiteral("-wal")), log);

    const QString journaled = sample(QStringLiteral("hot-journal"));
    ASSERT_TRUE(QFile::exists(journaled + QStringLiteral("-journal")));
    ASSERT_EQ(DocumentFile::open(module, journaled, &warning), QString());
    EXPECT_EQ(names(), baseNames); // the half-written change is undone
    EXPECT_TRUE(warning.contains(QStringLiteral("отменена"))) << warning.toStdString();
    EXPECT_FALSE(QFile::exists(journaled + QStringLiteral("-journal")));

    // Saving over a document writes it whole and leaves nothing beside it to be played back.
    ASSERT_EQ(DocumentFile::save(module, walled), QString());
    EXPECT_FALSE(QFile::exists(walled + QStringLiteral("-wal")));
}

TEST_F(HostileDocumentTest, WhatIsNotAFileIsToldAsWhatItIs) {
    const QString fifo = folder.file(QStringLiteral("канал.sim"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const QString dir = folder.file(QStringLiteral("папка.sim"));
    QDir().mkpath(dir);
    const QString device = folder.file(QStringLiteral("устройство.sim"));
    QFile::link(QStringLiteral("/dev/zero"), device);
    const QString loop = folder.file(QStringLiteral("петля.sim"));
    QFile::link(loop, loop);
    const QString dangling = folder.file(QStringLiteral("ссылка.sim"));
    QFile::link(folder.file(QStringLiteral("нет такого.sim")), dangling);
    struct Case {
        QString path;
        const char *told;
    };
    const Case cases[] = {{fifo, "именованный канал"},
                          {dir, "это папка"},
                          {device, "это устройство"},
                          {loop, "сама на себя"},
                          {dangling, "ссылка на файл, которого нет"},
                          {folder.file(QStringLiteral("нет такого.sim")), "не найден"}};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.told);
        // A pipe that were opened would wait here for ever.
        const QString error = DocumentFile::open(module, c.path);
        EXPECT_TRUE(error.contains(QString::fromUtf8(c.told))) << error.toStdString();
        EstimatePrint print;
        QString exportError;
        EXPECT_FALSE(EstimateExport::load(c.path, &print, &exportError));
        EXPECT_TRUE(exportError.contains(QString::fromUtf8(c.told)) ||
                    exportError.startsWith(QStringLiteral("Отсутствует файл")))
            << exportError.toStdString();
    }
}

// Each file of a sample of the corpus is opened by a process of its own, as `virn-smeta --export`
// would: it opens or is refused with a message, never crashes, hangs or runs out of memory.
TEST(HostileCorpus, EveryFileOfASampleOpensOrIsRefusedInItsLimits) {
    ensureApplication();
    TestFolder folder;
    const QString base = folder.file(QStringLiteral("base.sim"));
    ASSERT_EQ(HostileDocuments::makeBase(base), QString());
    const QVector<HostileDocuments::Sample> samples = HostileDocuments::generate(
        folder.file(QStringLiteral("corpus")), base, 20251201, 2 * HostileDocuments::kinds().size());
    constexpr long kMemoryKb = 200 * 1024;
    constexpr int kHangMs = 30000; // far past the open's own budget: only a hang gets here
    long worstKb = 0;
    qint64 worstMs = 0;
    QString worstMemory, worstTime;
    int opened = 0, refused = 0;
    for (const auto &s : samples) {
        SCOPED_TRACE(s.path.toStdString());
        QProcess p;
        p.start(QStringLiteral(DOCFILE_HELPER), {QStringLiteral("open"), s.path});
        ASSERT_TRUE(p.waitForStarted(10000));
        if (!p.waitForFinished(kHangMs)) {
            p.kill();
            p.waitForFinished();
            ADD_FAILURE() << "hangs";
            continue;
        }
        ASSERT_EQ(p.exitStatus(), QProcess::NormalExit) << p.readAllStandardError().toStdString();
        ASSERT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
        const QStringList fields = QString::fromUtf8(p.readAllStandardOutput()).split(u'\t');
        ASSERT_GE(fields.size(), 5);
        ASSERT_TRUE(fields[0] == QLatin1String("opened") || fields[0] == QLatin1String("refused"));
        (fields[0] == QLatin1String("opened") ? opened : refused)++;
        if (fields[0] == QLatin1String("refused")) {
            EXPECT_FALSE(fields[4].trimmed().isEmpty());
        }
        const qint64 ms = fields[1].toLongLong();
        const long kb = fields[3].toLong();
        if (kb > worstKb) {
            worstKb = kb;
            worstMemory = s.kind;
        }
        if (ms > worstMs) {
            worstMs = ms;
            worstTime = s.kind;
        }
#ifndef VIRN_SANITIZE // the sanitizers' own bookkeeping takes several times the memory
        EXPECT_LT(kb, kMemoryKb) << s.kind.toStdString();
#endif
    }
    std::printf("%d files: %d opened, %d refused; most memory %ld KB (%s), longest %lld ms (%s)\n",
                static_cast<int>(samples.size()), opened, refused, worstKb, qPrintable(worstMemory),
                static_cast<long long>(worstMs), qPrintable(worstTime));
}

} // namespace
