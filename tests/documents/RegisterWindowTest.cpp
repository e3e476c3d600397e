// The register "Мои документы" in the main window: opened by its button, filtered, an estimate opened
// from it, moved between drafts and documents, edited, files of the side grids, a damaged register;
// a screenshot with a few hundred rows.

#include "MainWindowFixture.h"
#include "RegisterTestData.h"
#include "SqlRows.h"
#include "customers/CustomerRegister.h"
#include "documents/EditDocument_frame.h"
#include "documents/MyDocuments_frame.h"
#include "documents/RegisterModel.h"
#include "documents/RegisterPart.h"
#include "storage/TextValues.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QDesktopServices>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <functional>

namespace {

using Registration::List;

// Receives the files the register hands to the desktop.
class UrlCatcher : public QObject {
    Q_OBJECT
public:
    QList<QUrl> opened;
public slots:
    void handle(const QUrl &url) { opened << url; }
};

class RegisterWindowTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        child<QAction>(window.get(), QStringLiteral("CheckBossDir"))->setChecked(false);
    }
    // Saves a new estimate for the customer under Sm (or as a draft under Sm/Drafts).
    QString saveEstimate(const QString &name, const QString &customer, const QDate &date,
                         bool draft = false) {
        window->CreateNewDoc(draft);
        EstimateHeader::Values h = window->document().header();
        h.customer = customer;
        h.object = QStringLiteral("Кухня");
        h.date = date;
        window->document().setHeader(h);
        edit(QStringLiteral("Окраска стен"));
        const QString path = folder.file((draft ? "Sm/Drafts/" : "Sm/") + name + ".sim");
        dialogs->queueFile(path);
        EXPECT_TRUE(window->spdSaveClick());
        return path;
    }
    TMyDocuments *openRegister() {
        child<QAction>(window.get(), QStringLiteral("spdMyDoc"))->trigger();
        auto *part = window->part<RegisterPart>();
        return part ? part->frame() : nullptr;
    }
    QSqlDatabase mydoc() { return module->database(Db::MyDoc); }
    static int rows(QTableView *grid) { return grid->model()->rowCount(); }
    static QString cell(QTableView *grid, int row, int column) {
        return grid->model()->index(row, column).data().toString();
    }
    // A double click as the mouse makes it: a click, then the second press.
    static void doubleClick(QTableView *grid, int row) {
        const QPoint at = grid->visualRect(grid->model()->index(row, 1)).center();
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, at);
    }
    static void settle() { QTest::qWait(20); }
};

TEST_F(RegisterWindowTest, OpensFromTheMainWindowFiltersOpensEstimatesAndMovesADraft) {
    CustomerRegister customers(*module);
    customers.addCustomer(QStringLiteral("ООО \"Ромашка\""));
    customers.addCustomer(QStringLiteral("Иванов"));
    const QString a = saveEstimate("Ромашка", "ООО \"Ромашка\"", QDate(2024, 12, 20));
    const QString b = saveEstimate("Иванов", "Иванов", QDate(2025, 1, 15));
    // Saving twice keeps one row.
    edit(QStringLiteral("Штукатурка"));
    ASSERT_TRUE(window->spdSaveClick());
    const QString draft = saveEstimate("Черновик", "Иванов", QDate(2025, 1, 16), true);

    TMyDocuments *frame = openRegister();
    ASSERT_NE(frame, nullptr);
    QWidget *form = window->part<RegisterPart>()->window();
    EXPECT_EQ(form->objectName(), "MyDocumentsForm");
    EXPECT_EQ(form->windowTitle(), "Мои документы");
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(frame->objectName(), "MyDocuments");
    auto *grid = child<QTableView>(form, QStringLiteral("GridDoc"));
    auto *drafts = child<QTableView>(form, QStringLiteral("GridDraft"));
    auto *pages = child<QTabWidget>(form, QStringLiteral("PageControlMyDoc"));
    EXPECT_EQ(pages->tabText(pages->currentIndex()), "Документы");
    ASSERT_EQ(rows(grid), 2);
    EXPECT_EQ(rows(drafts), 1);
    EXPECT_EQ(cell(grid, 0, RegisterCol::Name), "Ромашка");
    EXPECT_EQ(cell(grid, 1, RegisterCol::FileName), b);
    EXPECT_EQ(cell(grid, 1, RegisterCol::Status), "В работе");

    // The customer: one row, the header names the customer in bold.
    auto *list = child<QListView>(form, QStringLiteral("ListBoxZakaz"));
    ASSERT_EQ(list->model()->rowCount(), 2);
    EXPECT_EQ(list->model()->index(0, 0).data().toString(), "ООО \"Ромашка\"");
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualRect(list->model()->index(0, 0)).center());
    ASSERT_EQ(rows(grid), 1);
    EXPECT_EQ(cell(grid, 0, RegisterCol::FileName), a);
    EXPECT_EQ(grid->model()->headerData(RegisterCol::Name, Qt::Horizontal).toString(), "ООО \"Ромашка\"");
    EXPECT_TRUE(
        grid->model()->headerData(RegisterCol::Name, Qt::Horizontal, Qt::FontRole).value<QFont>().bold());

    // The month combo filters as soon as a month is chosen; the month buttons only step it.
    child<QPushButton>(form, QStringLiteral("BtnClearFiltersDoc"))->click();
    EXPECT_EQ(rows(grid), 2);
    EXPECT_EQ(grid->model()->headerData(RegisterCol::Name, Qt::Horizontal).toString(), "Все заказчики");
    auto *month = child<QComboBox>(form, QStringLiteral("ComboMonthDoc"));
    auto *year = child<QComboBox>(form, QStringLiteral("ComboYearDoc"));
    EXPECT_EQ(year->count(), 3); // "Год", 2024, 2025
    month->setFocus();
    QTest::keyClick(month, Qt::Key_Down); // "Январь"
    settle();
    EXPECT_EQ(month->currentText(), "Январь");
    ASSERT_EQ(rows(grid), 1);
    EXPECT_EQ(cell(grid, 0, RegisterCol::FileName), b);
    child<QPushButton>(form, QStringLiteral("BtnPrevMonthDoc"))->click();
    EXPECT_EQ(month->currentText(), "Декабрь");
    EXPECT_EQ(rows(grid), 1); // not yet
    EXPECT_EQ(cell(grid, 0, RegisterCol::FileName), b);
    child<QPushButton>(form, QStringLiteral("BtnFilterPeriodDoc"))->click();
    ASSERT_EQ(rows(grid), 1);
    EXPECT_EQ(cell(grid, 0, RegisterCol::FileName), a);
    child<QPushButton>(form, QStringLiteral("BtnNextMonthDoc"))->click();
    EXPECT_EQ(month->currentText(), "Январь");
    // The totals follow the shown rows.
    EXPECT_EQ(child<QLineEdit>(form, QStringLiteral("EditSumAll"))->text(), "0,00");

    // Status: finished rows only, after finishing one.
    child<QPushButton>(form, QStringLiteral("BtnClearFiltersDoc"))->click();
    grid->selectRow(1);
    frame->NFinish->trigger();
    EXPECT_EQ(cell(grid, 1, RegisterCol::Status), "Завершено");
    EXPECT_FALSE(frame->NFinish->isEnabled());
    child<QRadioButton>(form, QStringLiteral("RadioClosed"))->click();
    ASSERT_EQ(rows(grid), 1);
    EXPECT_EQ(cell(grid, 0, RegisterCol::FileName), b);
    child<QRadioButton>(form, QStringLiteral("RadioInWork"))->click();
    ASSERT_EQ(rows(grid), 1);
    EXPECT_EQ(cell(grid, 0, RegisterCol::FileName), a);

    // Opening an estimate: the open one (the draft) is unchanged, so nothing is asked.
    dialogs->clear();
    doubleClick(grid, 0);
    EXPECT_EQ(window->document().fileName(), a);
    EXPECT_FALSE(window->document().isDraft());
    EXPECT_TRUE(dialogs->shown().isEmpty());
    // With unsaved edits the question comes first; Cancel keeps the open estimate.
    edit(QStringLiteral("Новая работа"));
    child<QRadioButton>(form, QStringLiteral("RadioAll"))->click();
    dialogs->queueAnswer(Dialogs::Answer::Cancel);
    grid->selectRow(1);
    frame->ToolOpen->trigger();
    EXPECT_EQ(dialogs->lastText(), "Сохранить файл?");
    EXPECT_EQ(window->document().fileName(), a);
    // Enter on the grid opens the chosen row, as the button does.
    dialogs->queueAnswer(Dialogs::Answer::No);
    grid->setFocus();
    QTest::keyClick(grid, Qt::Key_Return);
    EXPECT_EQ(window->document().fileName(), b);

    // The draft moves to the documents where the user chooses.
    pages->setCurrentWidget(drafts->parentWidget());
    ASSERT_EQ(rows(drafts), 1);
    drafts->selectRow(0);
    const QString moved = folder.file("Sm/Иванов-готово.sim");
    dialogs->clear();
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    dialogs->queueFile(moved);
    frame->MMoveToDoc->trigger();
    ASSERT_GE(dialogs->shown().size(), 3);
    EXPECT_EQ(dialogs->shown()[0].caption, "Перемещение");
    EXPECT_EQ(dialogs->shown()[0].text, "Переместить черновик от 16.01.2025 в документы?");
    EXPECT_EQ(dialogs->shown()[1].kind, "saveFile");
    EXPECT_EQ(dialogs->shown().last().caption, "Сообщение");
    EXPECT_EQ(dialogs->lastText(), "Операция прошла успешно");
    EXPECT_EQ(rows(drafts), 0);
    EXPECT_FALSE(QFile::exists(draft));
    const QStringList registered =
        queryRows(mydoc(), "SELECT id FROM documents WHERE filename=" + TextValues::sqlLiteral(moved));
    ASSERT_EQ(registered.size(), 1);
    EXPECT_EQ(RegisterTestData::linkOf(moved), registered[0] + "|doc");
    EXPECT_EQ(queryRows(mydoc(), "SELECT COUNT(*) FROM documents"), QStringList{"3"});

    // The open estimate moved to the drafts is opened again from there, as a draft.
    pages->setCurrentWidget(grid->parentWidget());
    int row = -1;
    for (int r = 0; r < rows(grid); ++r)
        if (cell(grid, r, RegisterCol::FileName) == b)
            row = r;
    ASSERT_GE(row, 0);
    grid->selectRow(row);
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    frame->ToolSetDrafts->trigger();
    EXPECT_EQ(dialogs->shown().last().caption, "Действие") << dialogs->lastText().toStdString();
    EXPECT_FALSE(QFile::exists(b));
    EXPECT_EQ(window->document().fileName(), folder.file("Sm/Drafts/Иванов.sim"));
    EXPECT_TRUE(window->document().isDraft());
    EXPECT_EQ(rows(grid), 2);
}

TEST_F(RegisterWindowTest, TheDraftsPageFollowsTheOption) {
    QAction *option = child<QAction>(window.get(), QStringLiteral("CheckBoxDraft"));
    option->setChecked(false);
    TMyDocuments *frame = openRegister();
    auto *pages = frame->PageControl;
    const int draftsTab = pages->indexOf(frame->GridDraft->parentWidget());
    EXPECT_FALSE(pages->isTabVisible(draftsTab));
    EXPECT_EQ(pages->currentWidget(), frame->GridDoc->parentWidget());
    option->setChecked(true);
    EXPECT_TRUE(pages->isTabVisible(draftsTab));
    EXPECT_EQ(pages->tabText(draftsTab), "Черновики");
}

TEST_F(RegisterWindowTest, APageShownAgainHasTheRowsWrittenMeanwhile) {
    RegisterTestData::addRow(mydoc(), List::Documents, "Иванов", QDate(2024, 3, 5));
    TMyDocuments *frame = openRegister();
    QWidget *documents = frame->GridDoc->parentWidget();
    QWidget *drafts = frame->GridDraft->parentWidget();
    ASSERT_EQ(rows(frame->GridDoc), 1);
    struct Writer {
        const char *who;
        std::function<void()> write;
    };
    const Writer writers[] = {
        {"this program",
         [this] { RegisterTestData::addRow(mydoc(), List::Documents, "Петров", QDate(2024, 4, 1)); }},
        {"another program",
         [this] {
             DatabaseFile other(module->filePath(Db::MyDoc));
             RegisterTestData::addRow(other.db(), List::Documents, "Сидоров", QDate(2024, 5, 1));
         }},
    };
    int expected = 1;
    for (const Writer &w : writers) {
        SCOPED_TRACE(w.who);
        frame->PageControl->setCurrentWidget(drafts);
        w.write();
        frame->PageControl->setCurrentWidget(documents);
        EXPECT_EQ(rows(frame->GridDoc), ++expected);
        EXPECT_EQ(frame->findChild<QComboBox *>("ComboYearDoc")->count(), 2); // "Год", 2024
    }
    // Nothing written: the page comes back as it was, with its chosen row.
    frame->GridDoc->selectRow(2);
    frame->PageControl->setCurrentWidget(drafts);
    frame->PageControl->setCurrentWidget(documents);
    EXPECT_EQ(rows(frame->GridDoc), 3);
    EXPECT_EQ(frame->GridDoc->currentIndex().row(), 2);
}

TEST_F(RegisterWindowTest, EditingWritesTheDialogsValuesAndMissingFilesAreSaid) {
    const QString name = "Ремонт \"под ключ\" 'а' \\ 😀";
    RegisterTestData::addRow(mydoc(), List::Documents, "Иванов", QDate(2024, 3, 5), "5,00", true, "Старое",
                             folder.file("Sm/нет такого.sim"));
    TMyDocuments *frame = openRegister();
    QTableView *grid = frame->GridDoc;
    ASSERT_EQ(rows(grid), 1);
    grid->selectRow(0);
    QTimer::singleShot(0, [&name] {
        auto *dialog = qobject_cast<TEditDocument *>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->windowTitle(), "Редактирование");
        EXPECT_EQ(dialog->EditName->text(), "Старое");
        EXPECT_TRUE(dialog->RadioFinished->isChecked());
        dialog->EditName->setText(name);
        dialog->DateEdit->setDate(QDate(2025, 6, 1));
        dialog->RadioInWork->setChecked(true);
        dialog->accept();
    });
    frame->NEdit->trigger();
    EXPECT_EQ(queryRows(mydoc(), "SELECT name, data, month, typeof(status), dataend FROM documents"),
              QStringList{"Ремонт `под ключ` 'а' \\ 😀|01.06.2025|6|null|"});
    EXPECT_EQ(cell(grid, 0, RegisterCol::Name), name);
    EXPECT_EQ(cell(grid, 0, RegisterCol::Status), "В работе");

    // The estimate's file is gone.
    grid->selectRow(0);
    frame->ToolOpen->trigger();
    EXPECT_EQ(dialogs->lastCaption(), "Ошибка");
    EXPECT_EQ(dialogs->lastText(), "Файл не найден");

    // Side grids: a missing file is named, an existing one goes to the desktop.
    const qlonglong id = cell(grid, 0, RegisterCol::Id).toLongLong();
    const QString present = folder.file("Sm/Договор № 1.pdf");
    QFile f(present);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    QSqlQuery q(mydoc());
    q.prepare(
        "INSERT INTO contract (iddoc, data, name, filename, ext) VALUES (?, '01.06.2025', '№ 1', ?, 'pdf')");
    q.addBindValue(QString::number(id));
    q.addBindValue(present);
    ASSERT_TRUE(q.exec());
    q.prepare(
        "INSERT INTO act (iddoc, data, name, filename, ext, status) VALUES (?, '01.06.2025', 'КС-2 № 1', ?, "
        "'xls', 2)");
    q.addBindValue(QString::number(id));
    q.addBindValue(folder.file("Sm/пропал.xls"));
    ASSERT_TRUE(q.exec());
    frame->refresh();
    grid->selectRow(0);
    ASSERT_EQ(rows(frame->GridContract), 1);
    ASSERT_EQ(rows(frame->GridAct), 1);
    EXPECT_EQ(rows(frame->GridAccount), 0);
    EXPECT_EQ(frame->GridAct->model()->headerData(1, Qt::Horizontal).toString(), "Акты");
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler("file", &catcher, "handle");
    doubleClick(frame->GridContract, 0);
    doubleClick(frame->GridAct, 0);
    QDesktopServices::unsetUrlHandler("file");
    EXPECT_EQ(catcher.opened, QList<QUrl>{QUrl::fromLocalFile(present)});
    EXPECT_EQ(dialogs->lastText(), "Отсутствует файл " + folder.file("Sm/пропал.xls"));

    // Deleting asks, and No keeps the row.
    dialogs->queueAnswer(Dialogs::Answer::No);
    frame->NDelete->trigger();
    EXPECT_EQ(dialogs->lastText(), "Удалить запись от 01.06.2025?");
    EXPECT_EQ(rows(grid), 1);
    grid->selectRow(0);
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    frame->NDelete->trigger();
    EXPECT_EQ(rows(grid), 0);
    EXPECT_EQ(queryRows(mydoc(), "SELECT COUNT(*) FROM contract"), QStringList{"1"});
}

TEST_F(RegisterWindowTest, ADamagedRegisterIsNamedAndTheEstimateStillSaves) {
    module->close(Db::MyDoc);
    QFile damaged(folder.file("Sp/mydoc.db"));
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly | QIODevice::Truncate));
    damaged.write(QByteArray("SQLite format 3") + QByteArray(4000, '\x7f'));
    damaged.close();
    dialogs->clear();
    TMyDocuments *frame = openRegister();
    ASSERT_NE(frame, nullptr);
    EXPECT_TRUE(dialogs->lastText().contains("mydoc.db")) << dialogs->lastText().toStdString();
    auto *problem = child<QLabel>(frame, QStringLiteral("LabelProblem"));
    EXPECT_FALSE(problem->isHidden());
    EXPECT_TRUE(problem->text().contains("mydoc.db"));
    EXPECT_EQ(rows(frame->GridDoc), 0);
    frame->NFinish->trigger(); // nothing chosen: nothing happens
    // The estimate itself is saved; only its registration is missing, and the user is told.
    edit();
    dialogs->queueFile(folder.file("Sm/Смета.sim"));
    EXPECT_TRUE(window->spdSaveClick());
    EXPECT_TRUE(QFile::exists(folder.file("Sm/Смета.sim")));
    EXPECT_TRUE(dialogs->lastText().contains("не внесён")) << dialogs->lastText().toStdString();
}

TEST_F(RegisterWindowTest, AFewHundredRowsOnScreen) {
    const QStringList customers = {"ООО \"Ромашка\"", "Иванов И.И.", "ИП Петров", "ЗАО \"Стройка\""};
    QSqlQuery(mydoc()).exec("BEGIN");
    for (int i = 0; i < 300; ++i) {
        const QDate date = QDate(2023, 1, 1).addDays(i * 3);
        RegisterTestData::addRow(mydoc(), List::Documents, customers[i % customers.size()], date,
                                 QString::number(10000 + i * 137) + ",50", i % 3 == 0,
                                 QStringLiteral("Ремонт квартиры %1, %2").arg(i + 1).arg(customers[i % 4]),
                                 folder.file(QStringLiteral("Sm/Смета %1.sim").arg(i + 1)));
    }
    QSqlQuery(mydoc()).exec("COMMIT");
    CustomerRegister reg(*module);
    for (const QString &c : customers)
        reg.addCustomer(c);
    TMyDocuments *frame = openRegister();
    QWidget *form = window->part<RegisterPart>()->window();
    form->resize(1400, 800);
    EXPECT_EQ(rows(frame->GridDoc), 300);
    EXPECT_EQ(child<QComboBox>(form, QStringLiteral("ComboYearDoc"))->count(), 4);
    frame->ListBoxZakazClick("ЗАО \"Стройка\"");
    EXPECT_EQ(rows(frame->GridDoc), 75);
    frame->GridDoc->selectRow(4);
    QApplication::processEvents();
    const QString picture = QStringLiteral(VIRN_SCREENSHOT_DIR "/register_window.png");
    EXPECT_TRUE(form->grab().save(picture)) << picture.toStdString();
}

} // namespace

#include "RegisterWindowTest.moc"
