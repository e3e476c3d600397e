// Undo and redo of every command back to the identical grid, the journal in ReturnAction, copy and
// paste through PopupMenuEdit.

#include "estimate/CrewSheet.h"
#include "estimate/KoefModel.h"
#include "estimate/KoefUndo.h"
#include "estimate/RowDiff.h"
#include "test_editor_fixture.h"

#include <QSqlQuery>
#include <random>

using namespace EstimateCol;

namespace {

class UndoTest : public EditorTest {
protected:
    // [br 2, w 3, w 4, bp 5, w 6, ip 7, ir 8, w 9, Итого 10]
    void build() {
        work(2, "Снос", "10", "150");
        editor->appendRow();
        work(3, "Вывоз", "2", "1000");
        editor->appendRow();
        work(4, "Стяжка", "5", "500");
        ASSERT_TRUE(editor->createSection(2, 4, "Демонтаж"));
        ASSERT_TRUE(editor->createSubsection(5, 5, "Пол"));
        const int r = editor->appendRow();
        work(r, "Уборка", "1", "2000");
        editor->crew()->setPerRow(true);
        ASSERT_TRUE(crew.setData(crew.index(1, CrewCol::Koef), "0,8", Qt::EditRole)); // estimate row 3
        ASSERT_EQ(grid.gridRowCount(), 11);
    }
    int journalRecords(const QString &where = "1") {
        QSqlQuery q(module->database(Db::ReturnAction));
        q.exec("SELECT COUNT(*) FROM ReturnAction WHERE " + where);
        return q.next() ? q.value(0).toInt() : -1;
    }
};

TEST_F(UndoTest, EveryCommandUndoesAndRedoesToTheIdenticalGrid) {
    build();
    struct Case {
        const char *what;
        std::function<bool()> step;
    };
    const std::vector<Case> cases = {
        {"append a row", [&] { return editor->appendRow() == 10; }},
        {"insert a row above", [&] { return editor->insertRowAbove(6) == 6; }},
        {"delete rows", [&] { return editor->deleteRows(3, 4); }},
        {"move rows down", [&] { return editor->moveRowsDown(3, 4); }},
        {"move a subsection up", [&] { return editor->moveRows(5, 7, 4); }},
        {"drag a row far down", [&] { return editor->moveRows(3, 3, 9); }},
        {"create a section around a row", [&] { return editor->createSection(9, 9, "Уборка"); }},
        {"create an empty section", [&] { return editor->createSection(10, 10, "Новый"); }},
        {"create a subsection", [&] { return editor->createSubsection(3, 4, "Стены"); }},
        {"delete a section", [&] { return editor->deleteSection(6); }},
        {"delete a subsection", [&] { return editor->deleteSubsection(6); }},
        {"type a quantity", [&] { return grid.setData(grid.index(1, Qty), "7", Qt::EditRole); }},
        {"rename a section", [&] { return grid.setData(grid.index(0, Name), "Снос и вывоз", Qt::EditRole); }},
        {"type a crew coefficient",
         [&] { return crew.setData(crew.index(4, CrewCol::Koef), "0,9", Qt::EditRole); }},
        {"paste copied rows", [&] { return editor->copyRows(3, 4) == 2 && editor->pasteRows(6) == 2; }},
        {"a scoped change by other code",
         [&] {
             EstimateEditor::Scope step(*editor, QStringLiteral("Вставка расценки"));
             grid.insertGridRows(4, 2);
             grid.setCell(4, Name, "Грунтовка");
             grid.setCell(5, Kind, "");
             grid.setCell(9, Price, "99");
             grid.removeGridRows(7, 1);
             return true;
         }},
        {"an unscoped change by other code",
         [&] {
             grid.setCell(3, Qty, "11");
             grid.insertGridRows(9, 1);
             settle();
             return true;
         }},
    };
    for (const Case &c : cases) {
        const auto before = everything();
        const int steps = editor->canUndo() ? 1 : 0;
        ASSERT_TRUE(c.step()) << c.what << ": " << editor->lastError().toStdString();
        const auto after = everything();
        ASSERT_NE(after, before) << c.what;
        ASSERT_TRUE(editor->canUndo()) << c.what;
        ASSERT_TRUE(editor->undo()) << c.what;
        EXPECT_EQ(everything(), before) << c.what;
        ASSERT_TRUE(editor->canRedo()) << c.what;
        ASSERT_TRUE(editor->redo()) << c.what;
        EXPECT_EQ(everything(), after) << c.what;
        ASSERT_TRUE(editor->undo()) << c.what;
        EXPECT_EQ(everything(), before) << c.what;
        (void)steps;
    }
}

TEST_F(UndoTest, ManyStepsBackAndForthAndTheJournalInActionsDb) {
    const auto empty = everything();
    build();
    const auto built = everything();
    int undone = 0;
    while (editor->canUndo()) {
        ASSERT_TRUE(editor->undo());
        ++undone;
    }
    EXPECT_GE(undone, 12);
    EXPECT_EQ(everything(), empty);
    while (editor->canRedo())
        ASSERT_TRUE(editor->redo());
    EXPECT_EQ(everything(), built);

    // The journal: one record per changed row, grouped by step, with the step's caption.
    EXPECT_GT(journalRecords(), 0);
    EXPECT_EQ(journalRecords("_action='insert' AND hint='Создать раздел'"), 3); // br, ir, "Итого по смете"
    {
        QSqlQuery q(module->database(Db::ReturnAction));
        ASSERT_TRUE(q.exec(
            "SELECT nameras, kolvo, cells FROM ReturnAction WHERE hint='Правка ячейки' AND kolvo='5'"));
        ASSERT_TRUE(q.next());
        EXPECT_EQ(q.value(0).toString(), "Стяжка");
        EXPECT_TRUE(q.value(2).toString().contains("\"old\""));
    }

    // A new step drops the undone ones.
    ASSERT_TRUE(editor->undo());
    ASSERT_TRUE(editor->undo());
    editor->appendRow();
    EXPECT_FALSE(editor->canRedo());
    EXPECT_EQ(editor->undoTitle(), "Добавить строку");

    // A new document empties the journal.
    QString error;
    ASSERT_TRUE(EstimateStore::createNewDoc(*module, grid, crew, &error)) << error.toStdString();
    editor->reset();
    EXPECT_FALSE(editor->canUndo());
    EXPECT_EQ(journalRecords(), 0);
}

TEST_F(UndoTest, EveryEditOfTheCoefficientPanelIsOneStep) {
    build();
    KoefModel &koef = *editor->koef();
    QSqlDatabase smeta = module->database(Db::Smeta);
    const auto lines = [&] { return KoefUndo::readAll(smeta); };
    ASSERT_GT(koef.rowCount(), 0);
    const int rowsBefore = koef.rowCount();
    struct Case {
        const char *what;
        std::function<void()> edit;
        const char *title;
    };
    const std::vector<Case> cases = {
        {"a value", [&] { ASSERT_TRUE(koef.setData(koef.index(0, KoefCol::Value), "7", Qt::EditRole)); },
         "Изменение коэффициента"},
        {"the switch",
         [&] { ASSERT_TRUE(koef.setData(koef.index(0, KoefCol::On), int(Qt::Checked), Qt::CheckStateRole)); },
         "Изменение коэффициента"},
        {"a choice",
         [&] { ASSERT_TRUE(koef.setData(koef.index(0, KoefCol::Action), "понижает", Qt::EditRole)); },
         "Изменение коэффициента"},
        {"a new line", [&] { ASSERT_GE(koef.addLine(), 0); }, "Добавить коэффициент"},
        {"a removed line", [&] { ASSERT_TRUE(koef.removeLine(1)); }, "Удалить коэффициент"},
    };
    for (const Case &c : cases) {
        const auto before = lines();
        const std::string grandBefore = rub(editor->grandTotal());
        c.edit();
        const auto after = lines();
        ASSERT_NE(after, before) << c.what;
        EXPECT_TRUE(editor->undoTitle().startsWith(QString::fromUtf8(c.title))) << c.what;
        ASSERT_TRUE(editor->undo()) << c.what;
        EXPECT_EQ(lines(), before) << c.what;
        EXPECT_EQ(rub(editor->grandTotal()), grandBefore) << c.what << ": the totals follow the undo";
        EXPECT_EQ(koef.lines().size(), before.size()) << c.what << ": the panel shows the lines again";
        ASSERT_TRUE(editor->redo()) << c.what;
        EXPECT_EQ(lines(), after) << c.what;
    }
    EXPECT_EQ(koef.rowCount(), rowsBefore);
    // The grid's steps and the panel's share one journal, in the order they were made.
    type(9, Qty, "3");
    ASSERT_TRUE(koef.setData(koef.index(0, KoefCol::Value), "9", Qt::EditRole));
    EXPECT_TRUE(editor->undoTitle().startsWith("Изменение коэффициента"));
    ASSERT_TRUE(editor->undo());
    EXPECT_EQ(editor->undoTitle(), "Правка ячейки");
    EXPECT_EQ(journalRecords("_action LIKE 'koef-%'") > 0, true);
}

TEST_F(UndoTest, CopyAndPasteThroughPopupMenuEdit) {
    build();
    // Rows 2..4: the section start is not copied, the works are.
    EXPECT_EQ(editor->copyRows(2, 4), 2);
    QSqlQuery q(module->database(Db::ReturnAction));
    ASSERT_TRUE(q.exec("SELECT edras, nameras, kolvo, KoefBrig FROM PopupMenuEdit WHERE 1"));
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(1).toString(), "Снос");
    EXPECT_EQ(q.value(2).toString(), "10");
    EXPECT_EQ(q.value(3).toString(), "0,8");
    // Pasted below row 9 ("Уборка"): above the closing "Итого".
    EXPECT_EQ(editor->pasteRows(9), 2);
    EXPECT_EQ(cell(10, Name), "Снос");
    EXPECT_EQ(cell(11, Name), "Вывоз");
    EXPECT_EQ(cell(10, Price), "150");
    EXPECT_EQ(cell(10, Qty), ""); // the quantity is typed for the new place
    EXPECT_EQ(editor->crew()->rowKoef(10), "0,8");
    EXPECT_EQ(cell(10, Num), "5");
    EXPECT_TRUE(editor->isGrandTotalRow(12));
    // Nothing to copy.
    EXPECT_EQ(editor->copyRows(8, 8), 0);
    EXPECT_FALSE(editor->lastError().isEmpty());
}

} // namespace

namespace {

// The row difference, applied forward and backward, on random edits of random lists of rows.
TEST(RowDiffTest, RandomChangesRoundTrip) {
    std::mt19937 rng(20240611);
    auto makeRow = [&](int id) {
        RowDiff::Row r;
        for (int c = 0; c < EstimateCol::Count; ++c)
            r.cells << QString();
        r.cells[EstimateCol::Name] = QStringLiteral("Работа %1").arg(id);
        r.cells[EstimateCol::Qty] = QString::number(id % 7);
        return r;
    };
    auto apply = [](std::vector<QStringList> rows, const std::vector<RowDiff::Op> &ops, bool backward) {
        auto at = [&](int gridRow) { return rows.begin() + (gridRow - 2); };
        if (backward) {
            for (auto it = ops.rbegin(); it != ops.rend(); ++it) {
                if (it->kind == RowDiff::Op::Edit)
                    *at(it->row) = it->before;
                else if (it->kind == RowDiff::Op::Insert)
                    rows.erase(at(it->row));
                else
                    rows.insert(at(it->row), it->before);
            }
        } else {
            for (const auto &op : ops) {
                if (op.kind == RowDiff::Op::Edit)
                    *at(op.row) = op.after;
                else if (op.kind == RowDiff::Op::Insert)
                    rows.insert(at(op.row), op.after);
                else
                    rows.erase(at(op.row));
            }
        }
        return rows;
    };
    int next = 0;
    for (int round = 0; round < 300; ++round) {
        std::vector<RowDiff::Row> before;
        const int n = 1 + static_cast<int>(rng() % 30);
        for (int i = 0; i < n; ++i)
            before.push_back(makeRow(next++));
        std::vector<RowDiff::Row> after = before;
        const int changes = static_cast<int>(rng() % 6);
        for (int k = 0; k < changes; ++k) {
            const int pos = after.empty() ? 0 : static_cast<int>(rng() % after.size());
            switch (rng() % 4) {
            case 0:
                after.insert(after.begin() + pos, makeRow(next++));
                break;
            case 1:
                if (after.size() > 1)
                    after.erase(after.begin() + pos);
                break;
            case 2:
                if (!after.empty())
                    after[static_cast<size_t>(pos)].cells[EstimateCol::Qty] += QLatin1Char('5');
                break;
            default:
                if (!after.empty()) { // a move
                    RowDiff::Row r = after[static_cast<size_t>(pos)];
                    after.erase(after.begin() + pos);
                    after.insert(after.begin() + static_cast<int>(rng() % (after.size() + 1)), r);
                }
            }
        }
        const auto ops = RowDiff::diff(before, after, 2);
        std::vector<QStringList> b, a;
        for (const auto &r : before)
            b.push_back(r.wide());
        for (const auto &r : after)
            a.push_back(r.wide());
        ASSERT_EQ(apply(b, ops, false), a) << "round " << round;
        ASSERT_EQ(apply(a, ops, true), b) << "round " << round;
        // Only what changed is recorded: at most two records per change.
        EXPECT_LE(ops.size(), static_cast<size_t>(2 * changes)) << "round " << round;
    }
}

} // namespace
