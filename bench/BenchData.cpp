#include "BenchData.h"

#include "estimate/EstimateDocument.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStructure.h"
#include "pricebase/PriceStore.h"
#include "pricebase/Resources.h"
#include "storage/DataFolder.h"
#include "storage/ModuleSQL.h"
#include "storage/Money.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QDir>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>

namespace BenchData {

namespace {

// Names like a real list: a work, an object, a material and a size, in Russian.
QString rateName(int i) {
    static const QStringList works = {"Укладка",    "Демонтаж",  "Монтаж",    "Штукатурка",
                                      "Окраска",    "Грунтовка", "Шпатлёвка", "Облицовка",
                                      "Устройство", "Ремонт",    "Замена",    "Очистка"};
    static const QStringList objects = {"стен",     "потолка", "пола",   "откосов", "перегородок",
                                        "ступеней", "фасада",  "колонн", "ниш",     "коробов"};
    static const QStringList materials = {
        "керамической плиткой",  "гипсокартоном",      "водоэмульсионной краской",
        "цементной смесью",      "ламинатом",          "декоративной штукатуркой",
        "пластиковыми панелями", "обоями под покраску"};
    return QStringLiteral("%1 %2 %3, толщина до %4 мм")
        .arg(works.at(i % works.size()), objects.at((i / 7) % objects.size()),
             materials.at((i / 13) % materials.size()))
        .arg(10 + i % 90);
}

constexpr int kMaterialNames = 3000;

QString materialName(int i) {
    static const QStringList kinds = {"Плитка керамическая",
                                      "Клей плиточный",
                                      "Грунтовка глубокого проникновения",
                                      "Шпатлёвка финишная",
                                      "Краска ВД",
                                      "Профиль направляющий",
                                      "Лист гипсокартонный",
                                      "Саморез по металлу",
                                      "Ламинат 33 класс",
                                      "Подложка",
                                      "Смесь цементная",
                                      "Штукатурка гипсовая",
                                      "Панель ПВХ",
                                      "Обои флизелиновые",
                                      "Затирка для швов",
                                      "Сетка армирующая",
                                      "Пена монтажная",
                                      "Герметик силиконовый",
                                      "Уголок перфорированный",
                                      "Дюбель-гвоздь"};
    return QStringLiteral("%1 %2")
        .arg(kinds.at(i % kinds.size()))
        .arg(QStringLiteral("%1×%2 мм").arg(100 + (i / kinds.size()) % 150 * 5).arg(10 + i % 30));
}

QString materialUnit(int i) {
    static const QStringList units = {"м2", "кг", "л", "шт", "м", "уп"};
    return units.at(i % units.size());
}

RateRow row(const QString &ras, const QString &name, const QString &unit, const QString &price, int rec) {
    RateRow::Cells c;
    c[PriceCol::Ras] = ras;
    c[PriceCol::Name] = name;
    c[PriceCol::Unit] = unit;
    c[PriceCol::Price] = price;
    c[PriceCol::Rec] = QString::number(rec);
    if (!price.isEmpty()) {
        const Decimal p = *TextValues::parsePrice(price);
        c[PriceCol::Koef] = QStringLiteral("0,7");
        c[PriceCol::Link] = Money::product(p, *Decimal::of(7, 1)).text();
    }
    return RateRow(c);
}

bool fail(QString *error, const QString &text) {
    if (error)
        *error = text;
    return false;
}

} // namespace

std::vector<RateRow> priceRows(int rows) {
    std::vector<RateRow> out;
    out.reserve(static_cast<size_t>(rows));
    const size_t total = static_cast<size_t>(rows);
    int rec = 0;
    for (int s = 1; out.size() < total; ++s) {
        out.push_back(row(QString::number(s), QStringLiteral("Раздел работ %1").arg(s), "", "", ++rec));
        for (int p = 1; p <= 10 && out.size() < total; ++p) {
            out.push_back(row(QStringLiteral("%1-%2").arg(s).arg(p), QStringLiteral("Подраздел %1").arg(p),
                              "пв", "", ++rec));
            for (int n = 1; n <= 98 && out.size() < total; ++n) {
                ++rec;
                out.push_back(row(QStringLiteral("%1-%2-%3").arg(s).arg(p).arg(n), rateName(rec), "м2",
                                  QString::number(100 + rec % 5000) + ",50", rec));
            }
        }
    }
    return out;
}

bool writePriceList(QSqlDatabase price, const std::vector<RateRow> &rows, QString *error) {
    if (!PriceStore::writeList(price, QStringLiteral("price1"), 0, rows, error))
        return false;
    Transaction t(price);
    if (!t.active())
        return fail(error, t.error());
    QSqlQuery q(price);
    if (!q.exec(QStringLiteral("DELETE FROM resurs1")))
        return fail(error, q.lastError().text());
    q.prepare(QStringLiteral("INSERT INTO resurs1 (name, edizm, cena, ras, val, koef, norma) "
                             "VALUES (?, ?, ?, ?, '', '', ?)"));
    for (const RateRow &r : rows) {
        if (priceRowKind(r) != PriceRowKind::Rate)
            continue;
        const int rec = r[PriceCol::Rec].toInt();
        for (int j = 0; j <= rec % 4; ++j) {
            const int m = (rec * 7 + j * 131) % kMaterialNames;
            q.addBindValue(materialName(m));
            q.addBindValue(materialUnit(m));
            q.addBindValue(QStringLiteral("%1,50").arg(50 + m % 900));
            q.addBindValue(QString::number(rec));
            q.addBindValue(QStringLiteral("%1,%2").arg((rec + j) % 3).arg(5 + (rec * 3 + j) % 90));
            if (!q.exec())
                return fail(error, q.lastError().text());
        }
    }
    return t.commit() || fail(error, t.error());
}

std::vector<QStringList> estimateRows(const std::vector<RateRow> &list, int works) {
    using namespace EstimateCol;
    std::vector<int> rates; // indices of the list's rates
    for (size_t i = 0; i < list.size(); ++i)
        if (priceRowKind(list[i]) == PriceRowKind::Rate)
            rates.push_back(static_cast<int>(i));
    std::vector<QStringList> out;
    auto blank = [] {
        QStringList c;
        for (int i = 0; i < Count; ++i)
            c << QString();
        return c;
    };
    auto titleRow = [&](const QString &name, const QString &kind) {
        QStringList c = blank();
        c[Name] = name;
        c[Kind] = kind;
        out.push_back(c);
    };
    int done = 0, number = 0;
    for (int s = 1; done < works; ++s) {
        titleRow(EstimateStructure::sectionName(s, QStringLiteral("Помещение %1").arg(s)), "br");
        for (int p = 1; p <= 4 && done < works; ++p) {
            titleRow(EstimateStructure::subsectionName(s, p, QStringLiteral("Работы %1").arg(p)), "bp");
            for (int w = 0; w < 25 && done < works; ++w, ++done) {
                // Rates spread over the whole list, each used once or twice in a large estimate.
                const RateRow &rate = list[static_cast<size_t>(
                    rates[static_cast<size_t>((static_cast<qint64>(done) * 7919) % rates.size())])];
                QStringList c = blank();
                const Decimal price = *TextValues::parsePrice(rate[PriceCol::Price]);
                const Decimal qty = *Decimal::of(10 + done % 240, 1);
                c[Num] = QString::number(++number);
                c[Ras] = rate[PriceCol::Ras];
                c[Name] = rate[PriceCol::Name];
                c[Unit] = rate[PriceCol::Unit];
                c[Qty] = TextValues::formatQuantity(qty);
                c[Price] = TextValues::formatPrice(price);
                c[Sum] = Money::product(price, qty).text();
                c[IdRas] = rate[PriceCol::Rec];
                c[NamePrice] = QStringLiteral("resurs1");
                c[Labour] = c[Price];
                c[Itogo] = c[Sum];
                out.push_back(c);
            }
            titleRow(EstimateStructure::subsectionTotalName(s, p), "ip");
        }
        titleRow(EstimateStructure::sectionTotalName(s), "ir");
    }
    titleRow(EstimateStructure::grandTotalName, QString());
    return out;
}

QString documentPath(const QString &folder, int works) {
    return QDir(folder).filePath(QStringLiteral("Sm/смета-%1.sim").arg(works));
}

bool makeFolder(const QString &folder, const QList<int> &works, QString *error, int listRows) {
    const QString tree = DataFolder::ensureTree(folder);
    if (!tree.isEmpty())
        return fail(error, tree);
    TModuleSQL module(folder);
    const std::vector<RateRow> list = priceRows(listRows);
    if (!writePriceList(module.database(Db::Price), list, error))
        return false;
    for (int n : works) {
        EstimateDocument document;
        document.attach(&module, nullptr, nullptr);
        EstimateDocument::Result r = document.newDocument();
        if (!r)
            return fail(error, r.error);
        document.grid().setAllRows(estimateRows(list, n));
        // The materials the rates bring, with their quantities from the norms.
        QList<QPair<QString, QString>> rates;
        for (int row = EstimateGrid::kFixedRows; row < document.grid().gridRowCount(); ++row) {
            const QPair<QString, QString> rate{document.grid().cell(row, EstimateCol::IdRas),
                                               document.grid().cell(row, EstimateCol::NamePrice)};
            if (!rate.first.isEmpty() && !rates.contains(rate))
                rates << rate;
        }
        MaterialNeeds needs;
        if (!needs.write(module.database(Db::Price), module.database(Db::Smeta), document.grid(), rates,
                         nullptr, error))
            return false;
        QFile::remove(documentPath(folder, n));
        r = document.saveAs(documentPath(folder, n));
        if (!r)
            return fail(error, r.error);
    }
    return true;
}

double residentMegabytes() {
    QFile f(QStringLiteral("/proc/self/status"));
    if (!f.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : f.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLong() / 1024.0;
    return 0;
}

} // namespace BenchData
