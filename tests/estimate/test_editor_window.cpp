// The estimate editor in the main window: a two-section estimate built through the grid's pop-up menu
// and the shortcuts, as the user does it; the window is saved as a picture for a look.

#include "MainWindowFixture.h"
#include "estimate/CrewGrid.h"
#include "estimate/EstimateEditor.h"
#include "ui/ShortTextDelegate.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

using namespace EstimateCol;

inline void PrintTo(const QString &s, std::ostream *os) {
    *os << '"' << s.toStdString() << '"';
}

namespace {

class EditorWindowTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        window->resize(1500, 900);
        window->show();
        QApplication::setActiveWindow(window.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        view()->setFocus();
    }
    QTableView *view() const { return child<QTableView>(window.get(), QStringLiteral("StringGridDoc")); }
    EstimateEditor *editor() const { return (&window->document().editor()); }
    EstimateGrid *grid() const { return (&window->document().grid()); }
    QModelIndex at(int gridRow, int col) const {
        return grid()->index(EstimateGrid::toModelRow(gridRow), col);
    }

    // Opens the cell's editor, types, presses Enter.
    void typeCell(int gridRow, int col, const QString &text) {
        QApplication::setActiveWindow(window.get());
        view()->setCurrentIndex(at(gridRow, col));
        view()->edit(at(gridRow, col));
        auto *edit = qobject_cast<QLineEdit *>(QApplication::focusWidget());
        ASSERT_NE(edit, nullptr) << "no editor in row " << gridRow << " col " << col << " focus "
                                 << (QApplication::focusWidget()
                                         ? QApplication::focusWidget()->metaObject()->className()
                                         : "none")
                                 << " flags " << int(grid()->flags(at(gridRow, col)));
        edit->selectAll();
        // Key by key; QTest's own typing knows only Latin letters.
        for (const QChar ch : text) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(ch));
            QKeyEvent release(QEvent::KeyRelease, Qt::Key_unknown, Qt::NoModifier, QString(ch));
            QApplication::sendEvent(edit, &press);
            QApplication::sendEvent(edit, &release);
        }
        QTest::keyClick(edit, Qt::Key_Return);
        view()->setFocus();
    }
    void typeWork(int gridRow, const QString &name, const QString &qty, const QString &price) {
        typeCell(gridRow, Name, name);
        typeCell(gridRow, Qty, qty);
        typeCell(gridRow, Price, price);
    }
    void selectRows(int first, int last) {
        view()->setCurrentIndex(at(first, Name));
        view()->selectionModel()->select(QItemSelection(at(first, 0), at(last, Count - 1)),
                                         QItemSelectionModel::ClearAndSelect);
    }
    // Opens the pop-up menu over the current cell and clicks the item.
    void popupClick(const QString &text) {
        const QRect cell = view()->visualRect(view()->currentIndex());
        emit view()->customContextMenuRequested(cell.center());
        QMenu *menu = child<QMenu>(window.get(), QStringLiteral("PopupMenuDoc"));
        ASSERT_TRUE(menu->isVisible());
        QAction *item = nullptr;
        for (QAction *a : menu->actions())
            if (a->text() == text)
                item = a;
        ASSERT_NE(item, nullptr) << text.toStdString();
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
        QApplication::processEvents();
    }
    void shortcut(QKeyCombination key) {
        // A closed pop-up menu may leave no window active; shortcuts need the main window active.
        QApplication::setActiveWindow(window.get());
        view()->setFocus();
        QTest::keyClick(view(), key.key(), key.keyboardModifiers());
        QApplication::processEvents();
    }
    QStringList outline() const {
        QStringList out;
        for (int r = 2; r < grid()->gridRowCount(); ++r)
            out << QStringList{grid()->cell(r, Num), grid()->cell(r, Name).trimmed(), grid()->cell(r, Sum)}
                       .join("|");
        return out;
    }
};

TEST_F(EditorWindowTest, TwoSectionEstimateThroughThePopupMenuAndShortcuts) {
    typeWork(2, "Демонтаж перегородок", "12", "350");
    shortcut(Qt::CTRL | Qt::Key_Return); // add a row
    ASSERT_EQ(view()->currentIndex().row(), EstimateGrid::toModelRow(3));
    typeWork(3, "Вывоз мусора", "1", "4500");

    selectRows(2, 3);
    dialogs->queueInput("Демонтаж");
    popupClick("Создать раздел");
    ASSERT_EQ(grid()->kind(2), RowKind::SectionStart);

    // On the closing "Итого" row Ctrl+R makes a new empty section above it.
    selectRows(6, 6);
    dialogs->queueInput("Отделка");
    shortcut(Qt::CTRL | Qt::Key_R);
    ASSERT_EQ(dialogs->pendingAnswers(), 0);
    ASSERT_EQ(grid()->kind(6), RowKind::SectionStart);
    typeWork(7, "Шпаклёвка стен", "30", "250");
    selectRows(8, 8); // the section's total: Insert puts a row above it, inside the section
    shortcut(Qt::Key_Insert);
    typeWork(8, "Покраска стен", "30", "180");

    selectRows(7, 8);
    dialogs->queueInput("Стены");
    popupClick("Создать подраздел");

    const QStringList expected = {
        "|РАЗДЕЛ 1. Демонтаж|",     "1|Демонтаж перегородок|4200,00",
        "2|Вывоз мусора|4500,00",   "|Итого по разделу 1|8700,00",
        "|РАЗДЕЛ 2. Отделка|",      "|§ 2.1. Стены|",
        "3|Шпаклёвка стен|7500,00", "4|Покраска стен|5400,00",
        "|Итого по § 2.1|12900,00", "|Итого по разделу 2|12900,00",
        "|Итого по смете|21600,00",
    };
    EXPECT_EQ(outline(), expected);
    EXPECT_EQ(child<QLineEdit>(window.get(), QStringLiteral("Edit6"))->text(), "21600,00");
    EXPECT_EQ(child<QLineEdit>(window.get(), QStringLiteral("Edit5"))->text(), "21600,00");
    EXPECT_EQ((&window->document().crew())->gridRowCount(), grid()->gridRowCount() - 1);
    EXPECT_EQ((&window->document().crew())->cell(7, CrewCol::Name), "Шпаклёвка стен");
    EXPECT_TRUE(window->isChanged());

    // Undo and redo from the keyboard.
    shortcut(Qt::CTRL | Qt::Key_Z);
    EXPECT_EQ(grid()->gridRowCount(), 2 + 9); // the subsection is gone
    shortcut(Qt::CTRL | Qt::Key_Y);
    EXPECT_EQ(outline(), expected);

    // Copy a work and paste it below the current row, then take it back.
    selectRows(8, 8);
    shortcut(Qt::CTRL | Qt::Key_C);
    selectRows(9, 9);
    shortcut(Qt::CTRL | Qt::Key_V);
    EXPECT_EQ(grid()->cell(10, Name), "Шпаклёвка стен");
    EXPECT_EQ(grid()->cell(10, Num), "5");
    EXPECT_EQ(grid()->kind(11), RowKind::SubsectionTotal);
    shortcut(Qt::CTRL | Qt::Key_Z);
    EXPECT_EQ(outline(), expected);

    // A bad quantity: marked, left out of the totals, kept as typed.
    typeCell(9, Qty, "тридцать");
    EXPECT_FALSE(grid()->cellProblem(9, Qty).isEmpty());
    EXPECT_EQ(child<QLineEdit>(window.get(), QStringLiteral("Edit6"))->text(), "16200,00");
    EXPECT_EQ(grid()->cell(9, Qty), "тридцать");

    // Dragging a row by its number: "Вывоз мусора" (row 4) goes above "Демонтаж перегородок" (row 3).
    {
        QWidget *port = view()->viewport();
        const QPoint from = view()->visualRect(at(4, Num)).center();
        const QPoint to = view()->visualRect(at(3, Num)).center();
        QTest::mousePress(port, Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, to, port->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(port, &move);
        QTest::mouseRelease(port, Qt::LeftButton, {}, to);
        EXPECT_EQ(grid()->cell(3, Name), "Вывоз мусора");
        EXPECT_EQ(grid()->cell(3, Num), "1");
        EXPECT_EQ(editor()->undoTitle(), "Переместить строки");
        shortcut(Qt::CTRL | Qt::Key_Z);
        EXPECT_EQ(grid()->cell(3, Name), "Демонтаж перегородок");
    }

    // Deleting asks first; "No" keeps the row.
    selectRows(3, 3);
    dialogs->queueAnswer(Dialogs::Answer::No);
    popupClick("Удалить строки");
    EXPECT_EQ(grid()->cell(3, Name), "Демонтаж перегородок");
    EXPECT_EQ(dialogs->shown().last().caption, Captions::deletion);
    typeCell(9, Qty, "30");

    // The picture, for a look.
    child<QTabWidget>(window.get(), QStringLiteral("PageControlDoc"))->setCurrentIndex(0);
    view()->clearSelection();
    view()->setCurrentIndex(at(8, Qty));
    QApplication::processEvents();
    const QString picture = QStringLiteral(VIRN_SCREENSHOT_DIR "/editor_two_sections.png");
    EXPECT_TRUE(window->grab().save(picture)) << picture.toStdString();
    child<QTabWidget>(window.get(), QStringLiteral("PageControlDoc"))
        ->setCurrentWidget(child<QWidget>(window.get(), QStringLiteral("TabSheetBrig")));
    QApplication::processEvents();
    EXPECT_TRUE(window->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/editor_crew_sheet.png")));
}

TEST_F(EditorWindowTest, BadAndHugeInputIsMarkedAndCountedUnderTheGrid) {
    auto *line = window->findChild<QLabel *>(QStringLiteral("LabelProblems"));
    ASSERT_NE(line, nullptr);
    EXPECT_TRUE(line->isHidden());
    ASSERT_EQ(editor()->appendRow(), 3);
    struct Case {
        const char *what;
        int row, col;
        const char *text;
        const char *works, *grand; // Edit6, Edit5 ("" when refused)
        int problems;              // 0: the line is hidden
    };
    const Case cases[] = {
        {"a name", 2, Name, "Штукатурка", "0,00", "0,00", 0},
        {"letters as the quantity", 2, Qty, "abc", "0,00", "0,00", 1},
        {"a price", 2, Price, "100", "0,00", "0,00", 1},
        {"a quantity past the maximum", 2, Qty, "999999999999999999", "0,00", "0,00", 1},
        {"a quantity that fits", 2, Qty, "3", "300,00", "300,00", 0},
        {"an amount at the maximum", 2, Price, "333333333333,33", "999999999999,99", "999999999999,99", 0},
        {"a second row passes the total", 3, Sum, "1", "", "", 0},
        {"and is taken back", 3, Sum, "", "999999999999,99", "999999999999,99", 0},
    };
    for (const Case &c : cases) {
        if (*c.text) {
            typeCell(c.row, c.col, QString::fromUtf8(c.text));
        } else { // the cell's editor cannot be emptied by typing
            ASSERT_TRUE(grid()->setData(at(c.row, c.col), QString(), Qt::EditRole));
        }
        EXPECT_EQ(child<QLineEdit>(window.get(), QStringLiteral("Edit6"))->text(), QString::fromUtf8(c.works))
            << c.what;
        EXPECT_EQ(child<QLineEdit>(window.get(), QStringLiteral("Edit5"))->text(), QString::fromUtf8(c.grand))
            << c.what;
        EXPECT_EQ(child<QLineEdit>(window.get(), QStringLiteral("Edit5"))->toolTip().isEmpty(), *c.grand != 0)
            << c.what;
        EXPECT_EQ(line->isHidden(), c.problems == 0) << c.what;
        if (c.problems > 0) {
            EXPECT_TRUE(line->text().startsWith(QStringLiteral("Ячеек с ошибками: %1").arg(c.problems)))
                << c.what << ": " << line->text().toStdString();
        }
        const QModelIndex qty = at(2, Qty);
        const bool qtyBad = !grid()->cellProblem(2, Qty).isEmpty();
        EXPECT_EQ(qty.data(Qt::BackgroundRole).isValid(), qtyBad) << c.what;
        EXPECT_EQ(qty.data(Qt::ToolTipRole).toString(), grid()->cellProblem(2, Qty)) << c.what;
    }
}

// A name of a megabyte (pasted, or from a file of another program) is drawn as its beginning in
// every grid of the estimate: laying out the whole text at every paint froze the window.
TEST_F(EditorWindowTest, AHugeCellIsDrawnShortAndKeptWhole) {
    const QString huge(1000000, QChar(0x0416));
    EXPECT_EQ(ShortTextDelegate::shown(huge).size(), ShortTextDelegate::kShownChars + 1);
    EXPECT_TRUE(ShortTextDelegate::shown(huge).endsWith(QChar(0x2026)));
    EXPECT_EQ(ShortTextDelegate::shown(QStringLiteral("Окраска")), QStringLiteral("Окраска"));

    ASSERT_TRUE(grid()->setData(at(2, Name), huge, Qt::EditRole));
    for (const char *name : {"StringGridDoc", "StringGridBrig", "StringGridMat", "StringGridRas"}) {
        auto *v = child<QTableView>(window.get(), QString::fromLatin1(name));
        ASSERT_NE(v, nullptr) << name;
        EXPECT_NE(qobject_cast<ShortTextDelegate *>(v->itemDelegate()), nullptr) << name;
    }
    EXPECT_FALSE(view()->grab().isNull());
    EXPECT_EQ(grid()->cell(2, Name), huge); // what is kept and saved is the whole text
}

} // namespace
