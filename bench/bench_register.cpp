// The register of documents at the size of years of work: 20,000 estimates in documents, 1,000 drafts,
// 200 customers. Measured: entering the window, each filter (customer, status, month and year, a
// calendar day, clearing), and the switch between the pages, in the window itself (the grid, its
// totals and years, the repaint), and the same reads without the window. Each read is set beside its
// baseline in the same run: the same statement stepped with the SQLite C interface, every cell read
// as UTF-8, nothing else.

#include "customers/CustomerRegister.h"
#include "documents/MyDocuments_frame.h"
#include "documents/RegisterFilter.h"
#include "documents/RegisterModel.h"
#include "documents/RegisterRows.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"

#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QRadioButton>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QTabWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QVariant>
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <string>

namespace {

constexpr int kDocuments = 20000;
constexpr int kDrafts = 1000;
constexpr int kCustomers = 200;

QString customerName(int i) {
    static const QStringList forms = {"ООО \"%1\"", "ИП %1", "%1 И.П.", "ЗАО \"%1\""};
    static const QStringList names = {"Ромашка",       "Стройка",  "Иванов",    "Петров",  "Сидоров",
                                      "Ремонт-Сервис", "Кузнецов", "Домострой", "Смирнов", "Уют"};
    return forms.at(i % forms.size()).arg(names.at((i / 4) % names.size())) + QStringLiteral(" %1").arg(i);
}

// The window needs the main window only for opening files and printing: not measured here.
class NoCommands : public RegisterCommands {
public:
    QString openDocument() const override { return {}; }
    bool settleOpenDocument() override { return true; }
    bool openEstimate(const QString &) override { return false; }
    void output(Output) override {}
};

struct Data {
    QTemporaryDir dir;
    std::unique_ptr<TModuleSQL> module;
    NoCommands commands;
    std::unique_ptr<QWidget> form;
    TMyDocuments *frame = nullptr;

    Data() {
        module = std::make_unique<TModuleSQL>(dir.path());
        QSqlDatabase db = module->database(Db::MyDoc);
        QSqlQuery q(db);
        q.exec("BEGIN");
        auto fill = [&q](const QString &table, int count) {
            q.prepare(QStringLiteral(
                          "INSERT INTO %1 (data, date_compare, name, filename, client, object, summat, "
                          "sumrab, allsum, status, dataend, month, year) VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?)")
                          .arg(table));
            for (int i = 0; i < count; ++i) {
                const QDate date = QDate(2018, 1, 1).addDays(i * 2923 / count); // eight years
                const QString client = TextValues::nameToStored(customerName(i % kCustomers));
                const bool finished = i % 3 != 0;
                q.addBindValue(TextValues::shortDate(date));
                q.addBindValue(TextValues::dateCompareSeconds(date).toLongLong());
                q.addBindValue(
                    QStringLiteral("Ремонт квартиры №%1, ул. Садовая, д. %2").arg(i + 1).arg(i % 120));
                q.addBindValue(QStringLiteral("/home/user/Вирн/Sm/%1/Смета %2.sim").arg(client).arg(i + 1));
                q.addBindValue(client);
                q.addBindValue(QStringLiteral("Квартира %1").arg(i % 7));
                q.addBindValue(
                    QStringLiteral("%1,%2").arg(20000 + i * 7).arg(i % 100, 2, 10, QLatin1Char('0')));
                q.addBindValue(QStringLiteral("%1,00").arg(35000 + i * 11));
                q.addBindValue(
                    QStringLiteral("%1,%2").arg(55000 + i * 18).arg(i % 100, 2, 10, QLatin1Char('0')));
                q.addBindValue(finished ? QVariant(1) : QVariant(QMetaType(QMetaType::Int)));
                q.addBindValue(finished ? TextValues::shortDate(date.addDays(30)) : QString());
                q.addBindValue(TextValues::monthText(date));
                q.addBindValue(TextValues::yearText(date));
                if (!q.exec())
                    qFatal("cannot fill %s", qPrintable(table));
            }
        };
        fill("documents", kDocuments);
        fill("drafts", kDrafts);
        QSqlQuery(db).exec("COMMIT");
        CustomerRegister customers(*module);
        for (int i = 0; i < kCustomers; ++i)
            customers.addCustomer(customerName(i));

        form = std::make_unique<QWidget>(nullptr, Qt::Window);
        form->resize(1400, 800);
        OptionFlags options = OptionFlags::inMemory({{"CheckBoxDraft", true}});
        frame = new TMyDocuments(*module, commands, options, form.get());
        frame->resize(1400, 800);
        form->show();
        QApplication::processEvents();
    }
};

Data &data() {
    static Data d;
    return d;
}

// The statements of the cases, in the order of the benchmarks' argument.
const char *const kCases[] = {"all", "customer", "in work", "month and year", "day"};
const QString kCustomer = customerName(17);

QString statementOf(int which) {
    using Registration::List;
    switch (which) {
    case 1:
        return RegisterFilter::statement(List::Documents,
                                         {kCustomer, RegisterFilter::Status::All, 0, QString()});
    case 2:
        return RegisterFilter::statement(List::Documents,
                                         {QString(), RegisterFilter::Status::InWork, 0, QString()});
    case 3:
        return RegisterFilter::statement(List::Documents,
                                         {QString(), RegisterFilter::Status::All, 6, QStringLiteral("2022")});
    case 4:
        return RegisterFilter::dayStatement(List::Documents, QDate(2021, 5, 4));
    }
    return RegisterFilter::statement(List::Documents, {});
}

// Baseline: the statement stepped with the SQLite C interface, every cell copied out as UTF-8.
void BM_BaselineSqliteApi(benchmark::State &state) {
    QSqlDatabase db = data().module->database(Db::MyDoc);
    auto *handle = *static_cast<sqlite3 **>(db.driver()->handle().data());
    const QByteArray sql = statementOf(static_cast<int>(state.range(0))).toUtf8();
    size_t rows = 0;
    for (auto _ : state) {
        std::vector<std::vector<std::string>> out;
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(handle, sql.constData(), -1, &st, nullptr);
        const int columns = sqlite3_column_count(st);
        while (sqlite3_step(st) == SQLITE_ROW) {
            std::vector<std::string> r(static_cast<size_t>(columns));
            for (int c = 0; c < columns; ++c) {
                const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(st, c));
                if (text)
                    r[static_cast<size_t>(c)].assign(text, static_cast<size_t>(sqlite3_column_bytes(st, c)));
            }
            out.push_back(std::move(r));
        }
        sqlite3_finalize(st);
        rows = out.size();
        benchmark::DoNotOptimize(out.data());
    }
    state.SetLabel(kCases[state.range(0)]);
    state.counters["rows"] = static_cast<double>(rows);
}
BENCHMARK(BM_BaselineSqliteApi)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

// Without the window: the rows as the grid keeps them with their totals, into the grid model.
void BM_ReadIntoModel(benchmark::State &state) {
    QSqlDatabase db = data().module->database(Db::MyDoc);
    const QString sql = statementOf(static_cast<int>(state.range(0)));
    RegisterModel model;
    for (auto _ : state) {
        RegisterPage page;
        if (!RegisterRows::read(db, sql, &page, nullptr))
            state.SkipWithError("read failed");
        model.setPage(std::move(page));
        benchmark::DoNotOptimize(model.page().totals().all.ok());
    }
    state.SetLabel(kCases[state.range(0)]);
    state.counters["rows"] = model.rowCount();
}
BENCHMARK(BM_ReadIntoModel)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

// The window: each action as the user makes it, up to the repainted grid. Entering the window after
// the register changed reads both pages; entering it again unchanged keeps the rows on screen.
void BM_WindowFrameEnter(benchmark::State &state) {
    Data &d = data();
    const bool changed = state.range(0) == 1;
    QSqlQuery touch(d.module->database(Db::MyDoc));
    for (auto _ : state) {
        if (changed) {
            state.PauseTiming();
            touch.exec("UPDATE documents SET dataend=dataend WHERE id=1");
            state.ResumeTiming();
        }
        d.frame->FrameEnter();
        QApplication::processEvents();
    }
    state.SetLabel(changed ? "register changed" : "unchanged");
    state.counters["rows"] = d.frame->documentsModel()->rowCount() + d.frame->draftsModel()->rowCount();
}
BENCHMARK(BM_WindowFrameEnter)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

void BM_WindowFilter(benchmark::State &state) {
    Data &d = data();
    TMyDocuments *f = d.frame;
    f->PageControl->setCurrentWidget(f->GridDoc->parentWidget());
    f->BtnClearFiltersClick();
    auto *month = f->findChild<QComboBox *>("ComboMonthDoc");
    auto *year = f->findChild<QComboBox *>("ComboYearDoc");
    const int which = static_cast<int>(state.range(0));
    // Each iteration is one change the user makes; the filter is undone outside the timing.
    for (auto _ : state) {
        switch (which) {
        case 0:
            f->BtnClearFiltersClick();
            break;
        case 1:
            f->ListBoxZakazClick(kCustomer);
            break;
        case 2:
            f->RadioInWork->click();
            break;
        case 3:
            month->setCurrentIndex(6);
            year->setCurrentIndex(year->findText("2022"));
            f->BtnFilterPeriodClick();
            break;
        case 4:
            f->RzCalendar1Click(QDate(2021, 5, 4));
            break;
        }
        QApplication::processEvents();
        state.PauseTiming();
        const int shown = f->documentsModel()->rowCount();
        state.counters["rows"] = shown;
        if (which != 0)
            f->BtnClearFiltersClick();
        else
            f->ListBoxZakazClick(kCustomer); // clearing then shows all 20,000 again
        QApplication::processEvents();
        state.ResumeTiming();
    }
    state.SetLabel(kCases[which]);
}
BENCHMARK(BM_WindowFilter)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

// A choice typed into the month combo: one filter per key.
void BM_WindowMonthComboKey(benchmark::State &state) {
    Data &d = data();
    TMyDocuments *f = d.frame;
    f->PageControl->setCurrentWidget(f->GridDoc->parentWidget());
    f->BtnClearFiltersClick();
    auto *month = f->findChild<QComboBox *>("ComboMonthDoc");
    int m = 0;
    for (auto _ : state) {
        m = m % 12 + 1;
        month->setCurrentIndex(m);
        emit month->activated(m);
        QApplication::processEvents(); // the filter runs on the next turn of the event loop
    }
    state.counters["rows"] = f->documentsModel()->rowCount();
}
BENCHMARK(BM_WindowMonthComboKey)->Unit(benchmark::kMillisecond);

// The switch to the documents page (20,000 rows) or to the drafts (1,000): after the register changed
// (a row edited, as a save does), the page's whole table is read; unchanged, the rows on screen stay.
void BM_WindowPageSwitch(benchmark::State &state) {
    Data &d = data();
    TMyDocuments *f = d.frame;
    const bool toDocuments = state.range(0) == 0;
    const bool changed = state.range(1) == 1;
    QWidget *target = toDocuments ? f->GridDoc->parentWidget() : f->GridDraft->parentWidget();
    QWidget *other = toDocuments ? f->GridDraft->parentWidget() : f->GridDoc->parentWidget();
    QSqlQuery touch(d.module->database(Db::MyDoc));
    for (auto _ : state) {
        state.PauseTiming();
        f->PageControl->setCurrentWidget(other);
        if (changed)
            touch.exec("UPDATE documents SET dataend=dataend WHERE id=1");
        QApplication::processEvents();
        state.ResumeTiming();
        f->PageControl->setCurrentWidget(target);
        QApplication::processEvents();
    }
    state.SetLabel(std::string(toDocuments ? "to documents" : "to drafts") +
                   (changed ? ", register changed" : ", unchanged"));
}
BENCHMARK(BM_WindowPageSwitch)->ArgsProduct({{0, 1}, {1, 0}})->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    data();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
