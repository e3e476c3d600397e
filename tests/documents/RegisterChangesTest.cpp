// The register window's changes to its rows (finish, edit, delete), the files made from an estimate,
// names that must survive everything, and register files that are old or damaged.

#include "RegisterTestData.h"
#include "SqlRows.h"
#include "TestFolder.h"
#include "documents/RegisterFilter.h"
#include "documents/RegisterModel.h"
#include "documents/RegisterRows.h"
#include "storage/ModuleSQL.h"
#include "storage/Schema.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QFile>
#include <QFont>
#include <gtest/gtest.h>

namespace {

using Registration::List;
using namespace RegisterTestData;

class RegisterChanges : public ::testing::Test {
protected:
    void SetUp() override { ensureApplication(); }
    QSqlDatabase db() { return module.database(Db::MyDoc); }
    QStringList rows(const QString &sql) { return queryRows(db(), sql); }
    TestFolder folder;
    TModuleSQL module{folder.path()};
};

TEST_F(RegisterChanges, FinishingAndEditingBackToWorkLeaveNullNeverZero) {
    const qlonglong id = addRow(db(), List::Documents, "Иванов", QDate(2024, 3, 5));
    const QString inWork =
        RegisterFilter::statement(List::Documents, filter(QString(), RegisterFilter::Status::InWork));
    const QString closed =
        RegisterFilter::statement(List::Documents, filter(QString(), RegisterFilter::Status::Closed));

    ASSERT_TRUE(Registration::finish(db(), id, QDate(2025, 2, 1)));
    EXPECT_EQ(rows("SELECT status, dataend FROM documents"), QStringList{"1|01.02.2025"});
    EXPECT_EQ(ids(db(), closed), QList<qlonglong>{id});

    Registration::Edit back;
    back.date = QDate(2025, 11, 30);
    back.name = "Кухня \"под ключ\" 'эконом' \\ 🏠";
    back.finished = false;
    back.finishDate = QDate(2025, 12, 1); // no finish date for an estimate in work
    ASSERT_TRUE(Registration::edit(db(), List::Documents, id, back));
    EXPECT_EQ(rows("SELECT typeof(status), dataend, data, month, year, date_compare, name FROM documents"),
              QStringList{"null||30.11.2025|11|2025|20240305000000|Кухня `под ключ` 'эконом' \\ 🏠"});
    EXPECT_EQ(ids(db(), inWork), QList<qlonglong>{id});
    EXPECT_TRUE(ids(db(), closed).isEmpty());

    Registration::Edit done = back;
    done.finished = true;
    ASSERT_TRUE(Registration::edit(db(), List::Documents, id, done));
    EXPECT_EQ(rows("SELECT status, dataend FROM documents"), QStringList{"1|01.12.2025"});

    RegisterPage shown;
    ASSERT_TRUE(
        RegisterRows::read(db(), RegisterFilter::statement(List::Documents, filter()), &shown, nullptr));
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown.row(0).name, back.name);
    EXPECT_TRUE(shown.finished(0));

    // A row that is gone (deleted in another copy of the program) is said so, not silently passed.
    QString error;
    EXPECT_FALSE(Registration::finish(db(), id + 100, QDate(2025, 2, 1), &error));
    EXPECT_TRUE(error.contains("не найдена")) << error.toStdString();
    EXPECT_FALSE(Registration::edit(db(), List::Documents, id + 100, back, &error));
}

TEST_F(RegisterChanges, DraftsKeepNoStatusAndDeletingRemovesTheRowOnly) {
    const qlonglong draft = addRow(db(), List::Drafts, "Иванов", QDate(2024, 3, 5));
    Registration::Edit e;
    e.date = QDate(2024, 4, 6);
    e.name = "Черновик";
    e.finished = true; // a draft has no status: ignored
    e.finishDate = QDate(2024, 5, 1);
    ASSERT_TRUE(Registration::edit(db(), List::Drafts, draft, e));
    EXPECT_EQ(rows("SELECT typeof(status), dataend, data, month FROM drafts"),
              QStringList{"null||06.04.2024|4"});

    const QString file = folder.file("Sm/Смета.sim");
    const qlonglong doc = saveDocument(db(), file, false, "Смета");
    QSqlQuery(db()).exec(
        QStringLiteral("INSERT INTO contract (iddoc, name, filename, ext) VALUES ('%1', '№ 1', "
                       "'/x/Договор.doc', 'doc')")
            .arg(doc));
    ASSERT_TRUE(Registration::remove(db(), List::Documents, doc));
    ASSERT_TRUE(Registration::remove(db(), List::Drafts, draft));
    EXPECT_TRUE(rows("SELECT * FROM documents").isEmpty());
    EXPECT_TRUE(rows("SELECT * FROM drafts").isEmpty());
    EXPECT_EQ(rows("SELECT name FROM contract"), QStringList{"№ 1"});
    EXPECT_EQ(contentOf(file), "Окраска");
}

TEST_F(RegisterChanges, SideGridsListTheFilesOfTheChosenEstimate) {
    const qlonglong a = addRow(db(), List::Documents, "Иванов", QDate(2024, 3, 5));
    const qlonglong b = addRow(db(), List::Documents, "Петров", QDate(2024, 3, 5));
    auto add = [this](const QString &table, qlonglong iddoc, const QString &name, const QString &ext) {
        QSqlQuery q(db());
        q.prepare(QStringLiteral(
                      "INSERT INTO %1 (iddoc, data, name, filename, ext) VALUES (?, '05.03.2024', ?, ?, ?)")
                      .arg(table));
        q.addBindValue(QString::number(iddoc));
        q.addBindValue(name);
        q.addBindValue("/Sm/" + name + "." + ext);
        q.addBindValue(ext);
        ASSERT_TRUE(q.exec());
    };
    add("contract", a, "№ 7", "doc");
    add("contract", a, "№ 7", "pdf");
    add("account", b, "№ 3", "xls");
    add("act", a, "КС-2 № 1", "xls");
    add("act", a, "Акт № 1", "pdf");
    struct Case {
        const char *table;
        qlonglong iddoc;
        QStringList expected;
    };
    const Case cases[] = {{"contract", a, {"№ 7|doc", "№ 7|pdf"}},
                          {"account", a, {}},
                          {"account", b, {"№ 3|xls"}},
                          {"act", a, {"КС-2 № 1|xls", "Акт № 1|pdf"}},
                          {"act", b, {}}};
    for (const Case &c : cases) {
        std::vector<OutputFileRow> files;
        ASSERT_TRUE(RegisterRows::readOutputs(db(), c.table, c.iddoc, &files, nullptr));
        QStringList got;
        for (const OutputFileRow &f : files)
            got << f.name + "|" + f.ext;
        EXPECT_EQ(got, c.expected) << c.table;
    }
    OutputFilesModel model("Договор");
    std::vector<OutputFileRow> files;
    RegisterRows::readOutputs(db(), "contract", a, &files, nullptr);
    model.setRows(files);
    QStringList headers;
    for (int c = 0; c < model.columnCount(); ++c)
        headers << model.headerData(c, Qt::Horizontal).toString();
    EXPECT_EQ(headers, (QStringList{"Дата", "Договор", "Тип", "fn", "id"}));
    EXPECT_EQ(model.index(0, OutputFilesModel::FileName).data().toString(), "/Sm/№ 7.doc");
}

TEST_F(RegisterChanges, GridShowsRunningNumbersStatusTextsAndTheCustomerInBold) {
    const QString name = "ООО \"Ромашка\" " + QString(10000, QChar(u'ж'));
    addRow(db(), List::Documents, name, QDate(2024, 3, 5), "5,00", false, name);
    addRow(db(), List::Documents, "Иванов", QDate(2024, 3, 6), "7,00", true);
    RegisterPage shown;
    ASSERT_TRUE(
        RegisterRows::read(db(), RegisterFilter::statement(List::Documents, filter()), &shown, nullptr));
    RegisterModel model;
    model.setPage(shown);
    QStringList headers;
    for (int c = 0; c < model.columnCount(); ++c)
        headers << model.headerData(c, Qt::Horizontal).toString();
    EXPECT_EQ(headers, (QStringList{"№ п/п", "Дата", "Все заказчики", "Сумма", "id", "Статус",
                                    "Дата окончания", "FileName"}));
    EXPECT_FALSE(model.headerData(RegisterCol::Name, Qt::Horizontal, Qt::FontRole).isValid());
    auto cell = [&model](int r, int c) { return model.index(r, c).data().toString(); };
    EXPECT_EQ(cell(0, RegisterCol::Number), "1");
    EXPECT_EQ(cell(1, RegisterCol::Number), "2");
    EXPECT_EQ(cell(0, RegisterCol::Status), "В работе");
    EXPECT_EQ(cell(1, RegisterCol::Status), "Завершено");
    EXPECT_EQ(cell(1, RegisterCol::Sum), "7,00");
    // The long name is shown on one line, whole in its tool tip, with its double quotes.
    EXPECT_TRUE(cell(0, RegisterCol::Name).startsWith("ООО \"Ромашка\" жжж"));
    EXPECT_EQ(model.index(0, RegisterCol::Name).data(Qt::ToolTipRole).toString(), name);

    model.setCustomer(name);
    EXPECT_TRUE(model.headerData(RegisterCol::Name, Qt::Horizontal).toString().startsWith("ООО \"Ромашка\""));
    EXPECT_TRUE(model.headerData(RegisterCol::Name, Qt::Horizontal, Qt::FontRole).value<QFont>().bold());
    model.setCustomer(QString());
    EXPECT_EQ(model.headerData(RegisterCol::Name, Qt::Horizontal).toString(), "Все заказчики");

    // The customer filter finds the long name with its quotes.
    EXPECT_EQ(ids(db(), RegisterFilter::statement(List::Documents, filter(name))).size(), 1);
}

TEST(RegisterFile, AnOldRegisterIsBroughtUpToDate) {
    ensureApplication();
    TestFolder folder;
    const QString path = folder.file("Sp/mydoc.db");
    QDir().mkpath(folder.file("Sp"));
    {
        DatabaseFile old(path);
        QSqlQuery q(old.db());
        // An early register: no date_compare, status, month or year, and no drafts, contract or acts.
        ASSERT_TRUE(
            q.exec("CREATE TABLE documents (id INTEGER PRIMARY KEY AUTOINCREMENT, data DATE, name TEXT, "
                   "filename TEXT, client TEXT, object TEXT, summat TEXT, sumrab TEXT, allsum TEXT)"));
        ASSERT_TRUE(
            q.exec("INSERT INTO documents (data, name, client, allsum) VALUES ('01.02.2019', 'Старая', "
                   "'Иванов', '10')"));
    }
    TModuleSQL module(folder.path());
    QSqlDatabase db = module.database(Db::MyDoc);
    ASSERT_TRUE(db.isOpen()) << module.failure(Db::MyDoc).toStdString();
    EXPECT_EQ(Schema::version(db), Schema::latestVersion(Db::MyDoc));
    RegisterPage shown;
    ASSERT_TRUE(RegisterRows::read(
        db, RegisterFilter::statement(List::Documents, filter("Иванов", RegisterFilter::Status::InWork)),
        &shown, nullptr));
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown.row(0).name, "Старая");
    EXPECT_TRUE(shown.text(0, RegisterPage::DataEnd).isEmpty());
    EXPECT_TRUE(Registration::finish(db, shown.id(0), QDate(2025, 1, 1)));
    EXPECT_EQ(queryRows(db, "SELECT COUNT(*) FROM drafts"), QStringList{"0"});
}

TEST(RegisterFile, ADamagedRegisterIsNamedAndNothingElseFails) {
    ensureApplication();
    TestFolder folder;
    QDir().mkpath(folder.file("Sp"));
    QFile damaged(folder.file("Sp/mydoc.db"));
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write(QByteArray("SQLite format 3") + QByteArray(4000, '\x7f'));
    damaged.close();
    TModuleSQL module(folder.path());
    EXPECT_FALSE(module.database(Db::MyDoc).isOpen());
    EXPECT_TRUE(module.failure(Db::MyDoc).contains("mydoc.db")) << module.failure(Db::MyDoc).toStdString();
    EXPECT_TRUE(module.failure(Db::MyDoc).startsWith("Не удалось открыть"));
    EXPECT_TRUE(module.database(Db::People).isOpen());
    RegisterPage shown;
    QString error;
    EXPECT_FALSE(
        RegisterRows::read(module.database(Db::MyDoc), "SELECT * FROM documents WHERE 1", &shown, &error));
}

} // namespace
