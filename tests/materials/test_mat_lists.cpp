// The materials lists without a window: reading a sheet in list order, the filter's letter-case rule,
// the filter word file, the rows' kinds and groups, edits written into the sheet, and the list grid's
// marks.

#include "MatTestData.h"
#include "SqlRows.h"
#include "TestFolder.h"
#include "materials/FilterWords.h"
#include "materials/MatListModel.h"
#include "materials/MaterialLists.h"
#include "storage/ModuleSQL.h"

#include <QFile>
#include <QFont>
#include <QStringEncoder>
#include <sys/stat.h>

namespace {

class MatLists : public ::testing::Test {
protected:
    void SetUp() override { ensureApplication(); }
    QSqlDatabase db() { return module.database(Db::Mat); }
    std::vector<MatRow> read(const QString &word = {}, const QString &table = "list1") {
        std::vector<MatRow> rows;
        QString error;
        EXPECT_TRUE(MatListStore::read(db(), table, word, rows, &error)) << error.toStdString();
        return rows;
    }
    TestFolder folder;
    TModuleSQL module{folder.path()};
};

TEST_F(MatLists, FilterCountsLetterCaseInCyrillicAndLatin) {
    ASSERT_TRUE(MatListStore::replaceSheet(
        db(), "list1",
        {matRow("Кирпич красный", "шт.", "18"), matRow("кирпич силикатный", "шт.", "14"),
         matRow("Cement M500", "мешок", "560"), matRow("cement bag", "шт.", "30"),
         matRow("Гвозди 50%", "кг", "90"), matRow("Гвозди 50 мм", "кг", "95"),
         matRow("Лента_малярная", "шт.", "60"), matRow("Лента малярная", "шт.", "55")}));
    struct Case {
        QString word;
        QStringList found;
    };
    const std::vector<Case> cases = {
        {"кирпич", {"кирпич силикатный"}},
        {"Кирпич", {"Кирпич красный"}},
        {"КИРПИЧ", {}},
        {"Cement", {"Cement M500"}}, // SQLite's LIKE alone folds Latin letters
        {"cement", {"cement bag"}},
        {"CEMENT", {}},
        {"50%", {"Гвозди 50%"}}, // "%" and "_" are letters here, not wildcards
        {"_", {"Лента_малярная"}},
        {"малярная", {"Лента_малярная", "Лента малярная"}},
        {"нет такого", {}},
    };
    for (const Case &c : cases) {
        QStringList found;
        for (const MatRow &r : read(c.word))
            found << r.name;
        EXPECT_EQ(found, c.found) << c.word.toStdString();
    }
    EXPECT_EQ(read().size(), 8u); // no word: the whole sheet
}

TEST_F(MatLists, SheetsAreReadInListOrderAndRowsGoBetweenOthers) {
    // A list of an older program: no positions at all.
    addUnplaced(db(), "list2",
                {matRow("Первый", "шт.", "1"), matRow("Второй", "шт.", "2"), matRow("Третий", "шт.", "3")});
    std::vector<MatRow> rows = read({}, "list2");
    ASSERT_EQ(rows.size(), 3u);
    QString error;
    const QString id = MatListStore::insertRow(db(), "list2", rows[1].id, &error);
    ASSERT_FALSE(id.isEmpty()) << error.toStdString();
    ASSERT_TRUE(MatListStore::setCell(db(), "list2", id, "namemat", "Вставленный", &error));
    ASSERT_FALSE(MatListStore::insertRow(db(), "list2", QString(), &error).isEmpty()); // at the end
    EXPECT_EQ(queryRows(db(), "SELECT namemat, numpos FROM list2 ORDER BY numpos"),
              (QStringList{"Первый|1", "Вставленный|2", "Второй|3", "Третий|4", "|5"}));
    // Other sheets are untouched; an unknown table is refused.
    EXPECT_TRUE(read({}, "list1").empty());
    EXPECT_FALSE(MatListStore::read(db(), "storage", {}, rows, &error));
    EXPECT_FALSE(MatListStore::setCell(db(), "list2", id, "idmat; DROP", "x", &error));
    // Removing and clearing.
    ASSERT_TRUE(MatListStore::removeRows(db(), "list2", {id}, &error));
    EXPECT_EQ(read({}, "list2").size(), 4u);
    ASSERT_TRUE(MatListStore::clearSheet(db(), "list2", &error));
    EXPECT_TRUE(read({}, "list2").empty());
}

TEST_F(MatLists, KindsGroupsAndTheirRanges) {
    const std::vector<MatRow> rows = {
        matRow("Без группы", "шт.", "5"),        // 0
        matRow("Кровля"),                        // 1 group
        matRow("Листовые", "ПВ"),                // 2 subgroup (any case)
        matRow("Профлист С8", "м2", "450"),      // 3
        matRow("Ондулин", "лист", "договорная"), // 4 a material with a price in words
        matRow("Штучные", " пв "),               // 5 subgroup
        matRow("Черепица", "м2", "900"),         // 6
        matRow(""),                              // 7 empty
        matRow("Отделка"),                       // 8 group
        matRow("Обои", "рулон", "1200"),         // 9
    };
    const std::vector<MatRowKind> kinds = {MatRowKind::Material, MatRowKind::Group,    MatRowKind::Subgroup,
                                           MatRowKind::Material, MatRowKind::Material, MatRowKind::Subgroup,
                                           MatRowKind::Material, MatRowKind::Empty,    MatRowKind::Group,
                                           MatRowKind::Material};
    for (size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ(matRowKind(rows[i]), kinds[i]) << i;
    const std::vector<MatGroup> groups = matGroups(rows);
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0].title, "Кровля");
    ASSERT_EQ(groups[0].subgroups.size(), 2u);
    EXPECT_EQ(groups[0].subgroups[1].title, "Штучные");
    EXPECT_TRUE(groups[1].subgroups.empty());
    struct Range {
        int title, first, last;
    };
    for (const Range &r : {Range{1, 1, 7}, Range{2, 2, 4}, Range{5, 5, 7}, Range{8, 8, 9}}) {
        int first = -1, last = -1;
        titleRange(rows, r.title, &first, &last);
        EXPECT_EQ(first, r.first) << r.title;
        EXPECT_EQ(last, r.last) << r.title;
    }
    // Subgroups before any group title gather under a group without one.
    const std::vector<MatGroup> loose = matGroups({matRow("Смеси", "пв"), matRow("Клей", "шт.", "5")});
    ASSERT_EQ(loose.size(), 1u);
    EXPECT_EQ(loose[0].row, -1);
    EXPECT_EQ(loose[0].subgroups.size(), 1u);
}

TEST_F(MatLists, FilterWordsFileKeepsTheLastWordFirstAndEachOnce) {
    const QString data = folder.path();
    QStringList words;
    ASSERT_TRUE(FilterWords::load(data, &words));
    EXPECT_TRUE(words.isEmpty()); // no file yet
    for (const char *w : {"кирпич", "Цемент", " кирпич ", "", "Гвозди"})
        ASSERT_TRUE(FilterWords::add(data, QString::fromUtf8(w), &words));
    EXPECT_EQ(words, (QStringList{"Гвозди", "кирпич", "Цемент"}));
    QFile f(folder.file("Sp/filter mat.txt"));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(f.readAll()), "Гвозди\nкирпич\nЦемент\n");
    f.close();
    // A file written on Windows: Windows-1251, CRLF, blank lines and repeats.
    QStringEncoder cp1251("windows-1251");
    ASSERT_TRUE(cp1251.isValid());
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(cp1251.encode(QStringLiteral("Плитка\r\n\r\nКлей\r\nПлитка\r\n")));
    f.close();
    ASSERT_TRUE(FilterWords::load(data, &words));
    EXPECT_EQ(words, (QStringList{"Плитка", "Клей"}));
    // Too many words: the oldest fall off.
    QStringList many;
    for (int i = 0; i < FilterWords::kMaxWords + 20; ++i)
        many << QStringLiteral("слово %1").arg(i);
    ASSERT_TRUE(FilterWords::save(data, many));
    ASSERT_TRUE(FilterWords::load(data, &words));
    EXPECT_EQ(words.size(), FilterWords::kMaxWords);
    EXPECT_EQ(words.first(), "слово 0");
    // A pipe in the file's place is refused, never read (that would wait for ever).
    ASSERT_TRUE(QFile::remove(folder.file("Sp/filter mat.txt")));
    ASSERT_EQ(mkfifo(QFile::encodeName(folder.file("Sp/filter mat.txt")).constData(), 0600), 0);
    QString error;
    EXPECT_FALSE(FilterWords::load(data, &words, &error));
    EXPECT_TRUE(error.contains("именованный канал")) << error.toStdString();
}

TEST_F(MatLists, ListsFollowTheSheetTheFilterAndTheLiveSearch) {
    MaterialLists lists(&module);
    ASSERT_TRUE(
        MatListStore::replaceSheet(db(), "list1",
                                   {matRow("Смеси", "пв"), matRow("Штукатурка гипсовая", "мешок", "520"),
                                    matRow("штукатурка цементная", "мешок", "360")}));
    ASSERT_TRUE(MatListStore::replaceSheet(db(), "list3", {matRow("Саморезы", "уп.", "150")}));
    ASSERT_TRUE(lists.readSheet(0));
    EXPECT_EQ(lists.model().rowCount(), 3);
    // The live search offers every material of the sheet, in any letter case, never a title.
    EXPECT_EQ(lists.liveSearch().find("ШТУКАТУРКА").size(), 2u);
    EXPECT_TRUE(lists.liveSearch().find("смеси").empty());
    ASSERT_TRUE(lists.applyFilter("штукатурка"));
    EXPECT_EQ(lists.model().rowCount(), 1);
    EXPECT_EQ(lists.liveSearch().find("штукатурка").size(), 2u); // still the whole sheet
    ASSERT_TRUE(lists.readSheet(2));                             // the filter stays in force on another sheet
    EXPECT_EQ(lists.model().rowCount(), 0);
    EXPECT_EQ(lists.liveSearch().find("само").size(), 1u);
    ASSERT_TRUE(lists.clearFilter());
    EXPECT_EQ(lists.model().rowCount(), 1);
    MatRow found;
    EXPECT_TRUE(lists.findMaterial("Саморезы", found));
    EXPECT_EQ(found.price, "150");
    EXPECT_FALSE(lists.findMaterial("Штукатурка гипсовая", found)); // another sheet
}

TEST_F(MatLists, GridEditsAreWrittenAndBadPricesMarked) {
    MaterialLists lists(&module);
    ASSERT_TRUE(MatListStore::replaceSheet(db(), "list1",
                                           {matRow("Смеси", "пв"), matRow("Клей плиточный", "мешок", "520"),
                                            matRow("Затирка", "кг", "договорная")}));
    ASSERT_TRUE(lists.readSheet(0));
    MatListModel &m = lists.model();
    // Titles are drawn as titles; the price in words is kept and marked.
    EXPECT_TRUE(m.index(0, MatListCol::Name).data(Qt::FontRole).value<QFont>().bold());
    EXPECT_FALSE(m.index(1, MatListCol::Name).data(Qt::FontRole).isValid());
    EXPECT_EQ(m.index(2, MatListCol::Price).data().toString(), "договорная");
    EXPECT_TRUE(m.index(2, MatListCol::Price).data(Qt::BackgroundRole).isValid());
    EXPECT_FALSE(m.index(1, MatListCol::Price).data(Qt::BackgroundRole).isValid());
    EXPECT_FALSE(m.index(2, MatListCol::Price).data(Qt::ToolTipRole).toString().isEmpty());
    // Outside edit mode only the quantity to put into the estimate is typed, and it is not stored.
    EXPECT_FALSE(m.setData(m.index(1, MatListCol::Name), "Клей", Qt::EditRole));
    EXPECT_TRUE(m.setData(m.index(1, MatListCol::Qty), "3", Qt::EditRole));
    // In edit mode each edit goes into the sheet at once.
    m.setEditMode(true);
    EXPECT_FALSE(m.flags(m.index(1, MatListCol::Qty)) & Qt::ItemIsEditable);
    ASSERT_TRUE(m.setData(m.index(2, MatListCol::Price), "240", Qt::EditRole));
    ASSERT_TRUE(m.setData(m.index(1, MatListCol::Reserve), "арт. 1501", Qt::EditRole));
    EXPECT_FALSE(m.index(2, MatListCol::Price).data(Qt::BackgroundRole).isValid());
    const int inserted = m.insertRowBefore(1);
    ASSERT_EQ(inserted, 1) << m.lastError().toStdString();
    ASSERT_TRUE(m.setData(m.index(inserted, MatListCol::Name), "Грунтовка", Qt::EditRole));
    EXPECT_EQ(queryRows(db(), "SELECT namemat, price, nummat FROM list1 ORDER BY numpos"),
              (QStringList{"Смеси||", "Грунтовка||", "Клей плиточный|520|арт. 1501", "Затирка|240|"}));
    ASSERT_TRUE(m.removeModelRows({0, 3}));
    EXPECT_EQ(queryRows(db(), "SELECT namemat FROM list1 ORDER BY numpos"),
              (QStringList{"Грунтовка", "Клей плиточный"}));
    EXPECT_EQ(m.rowCount(), 2);
    // A narrowed view inserts and removes in the right place of the whole list.
    ASSERT_TRUE(lists.readSheet(0));
    m.showRange(1, 1);
    ASSERT_EQ(m.rowCount(), 1);
    EXPECT_EQ(m.rowAt(0)->name, "Клей плиточный");
    EXPECT_EQ(m.insertRowBefore(-1), 1);
    EXPECT_EQ(m.rows().size(), 3u);
    EXPECT_EQ(m.sourceRow(1), 2);
}

} // namespace
