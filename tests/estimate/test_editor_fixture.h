#pragma once
// The open estimate in a scratch data folder, as the main window has it: its grids and its editor.

#include "MoneyText.h"
#include "TestFolder.h"
#include "estimate/CrewGrid.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStore.h"
#include "storage/ModuleSQL.h"

#include <QCoreApplication>
#include <QStringList>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>

inline void PrintTo(const QString &s, std::ostream *os) {
    *os << '"' << s.toStdString() << '"';
}

class EditorTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        doc.attach(module.get(), nullptr, nullptr);
        ASSERT_TRUE(doc.newDocument());
    }

    // Types into a cell as the user does (through the view's model interface).
    void type(int gridRow, int col, const QString &text) {
        ASSERT_TRUE(grid.setData(grid.index(EstimateGrid::toModelRow(gridRow), col), text, Qt::EditRole))
            << "row " << gridRow << " col " << col;
    }
    void work(int gridRow, const QString &name, const QString &qty, const QString &price) {
        type(gridRow, EstimateCol::Name, name);
        type(gridRow, EstimateCol::Qty, qty);
        type(gridRow, EstimateCol::Price, price);
    }
    // Lets queued commits run.
    static void settle() { QCoreApplication::processEvents(); }

    QString cell(int gridRow, int col) const { return grid.cell(gridRow, col); }
    // One line per data row: "number|name|sum|marker".
    QStringList outline() const {
        QStringList out;
        for (int r = EstimateGrid::kFixedRows; r < grid.gridRowCount(); ++r)
            out << QStringList{cell(r, EstimateCol::Num), cell(r, EstimateCol::Name),
                               cell(r, EstimateCol::Sum), cell(r, EstimateCol::Kind)}
                       .join(QLatin1Char('|'));
        return out;
    }
    // Every cell of both grids.
    std::vector<QStringList> everything() const {
        std::vector<QStringList> out;
        for (int r = EstimateGrid::kFixedRows; r < grid.gridRowCount(); ++r)
            out.push_back(grid.rowCells(r));
        for (int r = CrewGrid::kFixedRows; r < crew.gridRowCount(); ++r) {
            QStringList c;
            for (int col = 0; col < CrewCol::Count; ++col)
                c << crew.cell(r, col);
            out.push_back(c);
        }
        return out;
    }

    TestFolder folder;
    std::unique_ptr<TModuleSQL> module = std::make_unique<TModuleSQL>(folder.path());
    EstimateDocument doc;
    EstimateGrid &grid = doc.grid();
    CrewGrid &crew = doc.crew();
    EstimateEditor *editor = &doc.editor();
};
