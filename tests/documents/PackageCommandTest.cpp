// virn-smeta --package, run as the user runs it, on the sample data folder the repository ships: the
// package of an estimate that is not yet in the register, made again as PDF, the exit codes of bad
// input, and a failing document.

#include "SqlRows.h"
#include "TestFolder.h"

#include "office/OfficeTemplates.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

#ifndef VIRN_SOURCE_DIR
#error "VIRN_SOURCE_DIR names the source tree"
#endif
#ifndef VIRN_SMETA_EXE
#error "VIRN_SMETA_EXE names the program"
#endif

namespace {

struct Outcome {
    int exit = -1;
    QStringList out; // lines of standard output
    QString err;
};

class Headless : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        data = folder.file("data");
        estimate = QDir(data).filePath("Sm/Образец сметы.sim");
        ASSERT_EQ(program({"--prepare-data", data}).exit, 0);
        const QString sample = QStringLiteral(VIRN_SOURCE_DIR "/resources/sample/");
        sqlite(QDir(data).filePath("Sp/peoplebase.db"), ".read '" + sample + "people.sql'");
        sqlite(QDir(data).filePath("Sp/cashbase.db"), ".read '" + sample + "cash.sql'");
        ASSERT_TRUE(QFile::copy(QDir(data).filePath("Sp/smeta.db"), estimate));
        sqlite(estimate, ".read '" + sample + "estimate.sql'");
    }
    void sqlite(const QString &db, const QString &statement) {
        QProcess p;
        p.start("sqlite3", {"-bail", db, statement});
        ASSERT_TRUE(p.waitForFinished(30000));
        ASSERT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    }
    // The program in the data folder, with settings of its own (the remembered data folder included).
    Outcome program(const QStringList &args) {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_CONFIG_HOME", folder.file("config"));
        p.setProcessEnvironment(env);
        QDir().mkpath(data);
        p.setWorkingDirectory(data);
        p.start(QStringLiteral(VIRN_SMETA_EXE), args);
        Outcome o;
        if (!p.waitForFinished(300000)) {
            p.kill();
            p.waitForFinished();
            ADD_FAILURE() << "the program did not end";
            return o;
        }
        o.exit = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
        o.out = QString::fromUtf8(p.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        o.err = QString::fromUtf8(p.readAllStandardError());
        return o;
    }
    QStringList mydoc(const QString &sql) {
        DatabaseFile db(QDir(data).filePath("Sp/mydoc.db"));
        return db.rows(sql);
    }

    TestFolder folder;
    QString data;
    QString estimate;
};

TEST_F(Headless, PackageOfAnEstimateNotYetInTheRegister) {
    EXPECT_EQ(mydoc("SELECT COUNT(*) FROM documents"), QStringList{"0"});
    const QString out = folder.file("Пакет");
    Outcome o = program({"--package", estimate, out, "--date", "06.03.2026"});
    ASSERT_EQ(o.exit, 0) << o.err.toStdString();
    ASSERT_EQ(o.out.size(), 5) << o.out.join('\n').toStdString() << o.err.toStdString();
    QStringList names;
    for (const QString &line : o.out) {
        EXPECT_TRUE(QFileInfo(line).isFile()) << line.toStdString();
        EXPECT_EQ(QFileInfo(line).absolutePath(), out);
        names << QFileInfo(line).fileName();
    }
    EXPECT_EQ(names, (QStringList{"Договор № 12 от 06.03.2026.docx", "Счет на оплату № 12 от 06.03.2026.xls",
                                  "Акт КС-2 № 1 от 06.03.2026.xls", "Акт КС-3 № 1 от 06.03.2026.xls",
                                  "Акт № 1 от 06.03.2026.xls"}));
    // The estimate was entered first, and its file links to its row.
    const QStringList documents = mydoc("SELECT id, filename FROM documents");
    ASSERT_EQ(documents.size(), 1);
    const QString id = documents.first().section('|', 0, 0);
    EXPECT_EQ(documents.first().section('|', 1), estimate);
    EXPECT_EQ(DatabaseFile(estimate).rows("SELECT iddoc, note FROM mydoc"), QStringList{id + "|doc"});
    EXPECT_EQ(mydoc("SELECT iddoc, ext FROM contract"), QStringList{id + "|doc"});
    EXPECT_EQ(mydoc("SELECT iddoc, ext FROM account"), QStringList{id + "|xls"});
    EXPECT_EQ(mydoc("SELECT iddoc, ext, status FROM act ORDER BY status"),
              (QStringList{id + "|xls|1", id + "|xls|2", id + "|xls|3"}));

    // Again as PDF: five PDF files, a second row of each kind, the estimate's row still one.
    o = program({"--package", estimate, out, "--pdf", "--date", "06.03.2026"});
    ASSERT_EQ(o.exit, 0) << o.err.toStdString();
    ASSERT_EQ(o.out.size(), 5);
    for (const QString &line : o.out)
        EXPECT_EQ(QFileInfo(line).suffix(), "pdf") << line.toStdString();
    EXPECT_EQ(mydoc("SELECT COUNT(*) FROM documents"), QStringList{"1"});
    EXPECT_EQ(mydoc("SELECT (SELECT COUNT(*) FROM contract), (SELECT COUNT(*) FROM account), "
                    "(SELECT COUNT(*) FROM act)"),
              QStringList{"2|2|6"});
}

TEST_F(Headless, BadInputMakesNothing) {
    const QString file = folder.file("файл.txt");
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    struct Case {
        const char *name;
        QStringList args;
        const char *told; // a part of standard error
    };
    const QString out = folder.file("Пакет");
    const Case cases[] = {
        {"no folder", {"--package", estimate}, "Нужны файл сметы и папка пакета"},
        {"no such estimate", {"--package", folder.file("нет.sim"), out}, "Отсутствует файл"},
        {"a date that is none",
         {"--package", estimate, out, "--date", "31.02.2026"},
         "Неверная дата «31.02.2026»"},
        {"an unknown option", {"--package", estimate, out, "--xls"}, "Неизвестный параметр --xls"},
        {"a folder that cannot be made", {"--package", estimate, file + "/Пакет"}, "файл.txt"},
    };
    for (const Case &c : cases) {
        const Outcome o = program(c.args);
        EXPECT_EQ(o.exit, 1) << c.name;
        EXPECT_TRUE(o.out.isEmpty()) << c.name << o.out.join('\n').toStdString();
        EXPECT_TRUE(o.err.contains(QString::fromUtf8(c.told))) << c.name << ": " << o.err.toStdString();
    }
    EXPECT_EQ(mydoc("SELECT COUNT(*) FROM documents"), QStringList{"0"}) << "nothing registered";
    EXPECT_FALSE(QDir(out).exists());
}

TEST_F(Headless, AFailingDocumentEndsWithTwo) {
    QDir().mkpath(QDir(data).filePath("Sh"));
    QFile templ(OfficeTemplates::path(data, "Шаблон Счет на оплату.xls"));
    ASSERT_TRUE(templ.open(QIODevice::WriteOnly | QIODevice::Truncate));
    templ.write("это не таблица");
    templ.close();
    const Outcome o = program({"--package", estimate, folder.file("Пакет")});
    EXPECT_EQ(o.exit, 2) << o.err.toStdString();
    EXPECT_EQ(o.out.size(), 4) << o.out.join('\n').toStdString();
    for (const QString &line : o.out)
        EXPECT_FALSE(line.contains("Счет")) << line.toStdString();
    EXPECT_TRUE(o.err.contains("Не создан: Счёт: ")) << o.err.toStdString();
    EXPECT_EQ(mydoc("SELECT COUNT(*) FROM account"), QStringList{"0"});
    EXPECT_EQ(mydoc("SELECT COUNT(*) FROM act"), QStringList{"3"});
}

} // namespace
