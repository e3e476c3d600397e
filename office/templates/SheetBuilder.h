#pragma once
// Builds a one-sheet spreadsheet as flat OpenDocument XML (".fods"): page setup, column widths, row
// heights, cells with their look and merged areas. The template generator lays out the default
// templates with it and lets the engine turn the result into ".xls".

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>
#include <QVector>

struct CellLook {
    enum Align { Left, Center, Right, Justify };
    enum VAlign { Top, Middle, Bottom };
    enum Border { None = 0, LeftSide = 1, TopSide = 2, RightSide = 4, BottomSide = 8, All = 15 };
    enum Number { General, Money, Text };

    double size = 10;
    bool bold = false;
    bool italic = false;
    Align align = Left;
    VAlign valign = Middle;
    bool wrap = false;
    int borders = None;
    bool thickBottom = false; // a heavier rule under the cell
    Number number = General;

    CellLook &pt(double s) {
        size = s;
        return *this;
    }
    CellLook &b() {
        bold = true;
        return *this;
    }
    CellLook &i() {
        italic = true;
        return *this;
    }
    CellLook &center() {
        align = Center;
        return *this;
    }
    CellLook &right() {
        align = Right;
        return *this;
    }
    CellLook &justify() {
        align = Justify;
        return *this;
    }
    CellLook &top() {
        valign = Top;
        return *this;
    }
    CellLook &bottom() {
        valign = Bottom;
        return *this;
    }
    CellLook &w() {
        wrap = true;
        return *this;
    }
    CellLook &box() {
        borders = All;
        return *this;
    }
    CellLook &under() {
        borders |= BottomSide;
        return *this;
    }
    CellLook &heavyUnder() {
        thickBottom = true;
        return *this;
    }
    CellLook &money() {
        number = Money;
        return *this;
    }
    CellLook &text() {
        number = Text;
        return *this;
    }

    QString key() const;
};

class SheetBuilder {
public:
    enum class Orientation { Portrait, Landscape };

    SheetBuilder(const QString &sheetName, Orientation orientation);

    // Column widths in centimetres, A first.
    void setColumns(const QVector<double> &widthsCm);
    // Rows from 1. A row without a height fits its contents.
    void setRowHeight(int row, double cm);
    // A row that is kept but neither shown nor printed (data for formulas of the user's own copy).
    void setHiddenRow(int row) { m_hidden.insert(row); }
    // Rows from 1, columns from 1 (A = 1). A merged area covers span columns and rowSpan rows; the
    // covered cells get the same look so that the area's borders are whole.
    void cell(int row, int column, const QString &text, const CellLook &look = {}, int span = 1,
              int rowSpan = 1);
    // The same look (borders) on every cell of a rectangle that has no cell yet.
    void frame(int firstRow, int firstColumn, int lastRow, int lastColumn, const CellLook &look);
    // These rows print again at the top of every page (the table's head).
    void setRepeatedRows(int first, int last);
    // Page margins in centimetres.
    void setMargins(double left, double top, double right, double bottom);
    // The font of the whole sheet.
    void setFont(const QString &family) { m_font = family; }

    QByteArray fods() const;

private:
    struct Cell {
        QString text;
        CellLook look;
        int span = 1;
        int rowSpan = 1;
        bool covered = false;
        bool present = false;
    };
    Cell &at(int row, int column);

    QString m_name;
    Orientation m_orientation;
    QVector<double> m_columns;
    QMap<int, double> m_heights;
    QSet<int> m_hidden;
    QVector<QVector<Cell>> m_cells; // [row][column], from 0
    int m_repeatFirst = 0, m_repeatLast = 0;
    double m_left = 1.5, m_top = 1.0, m_right = 1.0, m_bottom = 1.0;
    QString m_font = QStringLiteral("Times New Roman");
};
