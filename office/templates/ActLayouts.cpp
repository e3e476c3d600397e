// The unified forms of the acts: КС-2 "Акт о приемке выполненных работ" and КС-3 "Справка о стоимости
// выполненных работ и затрат", laid out as the official forms are. The act's own data come from the
// act data window and keep its field names ([ComboBoxZakaz], [EditNumDoc], …).

#include "DefaultTemplates.h"
#include "LayoutParts.h"

namespace DefaultTemplates {

using namespace TemplateNames;
using LayoutParts::ph;

namespace {

CellLook small() {
    return CellLook().pt(7).center().top();
}
CellLook codeBox() {
    return CellLook().box().center().text();
}

// "Заказчик (Генподрядчик) | value … | по ОКПО | [box]" with the explanation under the value.
void party(SheetBuilder &s, int row, const QString &label, const QString &value, const QString &note,
           int labelSpan, int valueSpan, bool okpo) {
    s.cell(row, 1, label, CellLook().pt(9).w().bottom(), labelSpan);
    s.cell(row, labelSpan + 1, value, CellLook().under().w().bottom(), valueSpan);
    const int codeColumn = labelSpan + valueSpan + 1;
    if (okpo) {
        s.cell(row, codeColumn, QStringLiteral("по ОКПО"), CellLook().pt(8).right().bottom());
        s.cell(row, codeColumn + 1, QString(), codeBox());
    }
    s.cell(row + 1, labelSpan + 1, note, small(), valueSpan);
    s.setRowHeight(row + 1, 0.32);
}

// The block "Номер документа | Дата составления | Отчетный период с … по …" with the document's title.
void documentBox(SheetBuilder &s, int row, int firstColumn, const QString &title) {
    const CellLook head = LayoutParts::headLook().pt(8);
    s.cell(row, firstColumn, QStringLiteral("Номер документа"), head, 1, 2);
    s.cell(row, firstColumn + 1, QStringLiteral("Дата составления"), head, 1, 2);
    s.cell(row, firstColumn + 2, QStringLiteral("Отчетный период"), head, 2);
    s.cell(row + 1, firstColumn + 2, QStringLiteral("с"), head);
    s.cell(row + 1, firstColumn + 3, QStringLiteral("по"), head);
    s.cell(row + 2, firstColumn - 1, title, CellLook().pt(12).b().right());
    const CellLook value = CellLook().pt(11).b().box().center().text();
    s.cell(row + 2, firstColumn, ph(number), value);
    s.cell(row + 2, firstColumn + 1, ph(date), value);
    s.cell(row + 2, firstColumn + 2, ph(QStringLiteral("DateEditPeriodS")), value);
    s.cell(row + 2, firstColumn + 3, ph(QStringLiteral("DateEditPeriodPo")), value);
    s.setRowHeight(row + 2, 0.7);
}

// "Сдал | должность | подпись | расшифровка" and the explanations under the lines, "М. П." beside
// them: two rows.
void signature(SheetBuilder &s, int row, const QString &who, const QString &position, const QString &name,
               const QVector<int> &spans) {
    int c = 1;
    s.cell(row, c, who, CellLook().b().bottom(), spans[0]);
    c += spans[0];
    s.cell(row, c, ph(position), CellLook().under().center().bottom().w(), spans[1]);
    s.cell(row + 1, c, QStringLiteral("(должность)"), small(), spans[1]);
    s.setRowHeight(row + 1, 0.32);
    c += spans[1];
    s.cell(row, c, QString(), CellLook().under(), spans[2]);
    s.cell(row + 1, c, QStringLiteral("(подпись)"), small(), spans[2]);
    c += spans[2];
    s.cell(row, c, ph(name), CellLook().under().center().bottom().w(), spans[3]);
    s.cell(row + 1, c, QStringLiteral("(расшифровка подписи)"), small(), spans[3]);
    s.setRowHeight(row, 0.8);
    s.cell(row + 1, 1, QStringLiteral("М. П."), CellLook().pt(8));
}

const QString kAuthority = QStringLiteral("Утверждена постановлением Госкомстата России от 11.11.99 № 100");

} // namespace

QByteArray ks2Sheet() {
    SheetBuilder s(QStringLiteral("КС-2"), SheetBuilder::Orientation::Landscape);
    s.setColumns({1.4, 2.3, 8.8, 2.6, 2.0, 2.3, 3.0, 3.4}); // 25,8 cm
    s.setMargins(1.5, 1.0, 1.0, 1.0);
    s.cell(1, 6, QStringLiteral("Унифицированная форма № КС-2"), CellLook().pt(8).right(), 3);
    s.cell(2, 5, kAuthority, CellLook().pt(8).right(), 4);
    s.cell(3, 8, QStringLiteral("Код"), LayoutParts::headLook().pt(8));
    s.cell(4, 6, QStringLiteral("Форма по ОКУД"), CellLook().pt(8).right(), 2);
    s.cell(4, 8, QStringLiteral("0322005"), codeBox());
    party(s, 5, QStringLiteral("Инвестор"), QString(), QStringLiteral("(организация, адрес, телефон, факс)"),
          2, 4, true);
    party(s, 7, QStringLiteral("Заказчик (Генподрядчик)"), ph(customerLine),
          QStringLiteral("(организация, адрес, телефон, факс)"), 2, 4, true);
    party(s, 9, QStringLiteral("Подрядчик (Субподрядчик)"), ph(contractorLine),
          QStringLiteral("(организация, адрес, телефон, факс)"), 2, 4, true);
    party(s, 11, QStringLiteral("Стройка"), ph(siteLine), QStringLiteral("(наименование, адрес)"), 2, 4,
          false);
    party(s, 13, QStringLiteral("Объект"), ph(QStringLiteral("ComboBoxObject")),
          QStringLiteral("(наименование)"), 2, 4, false);
    s.cell(14, 7, QStringLiteral("Вид деятельности по ОКДП"), CellLook().pt(7).right().w());
    s.setRowHeight(14, 0.65);
    s.cell(14, 8, QString(), codeBox());
    s.cell(15, 5, QStringLiteral("Договор подряда (контракт)"), CellLook().pt(8).right(), 2);
    s.cell(15, 7, QStringLiteral("номер"), CellLook().pt(8).right());
    s.cell(15, 8, ph(QStringLiteral("EditNumDoc")), codeBox());
    s.cell(16, 7, QStringLiteral("дата"), CellLook().pt(8).right());
    s.cell(16, 8, ph(QStringLiteral("DateEditContract")), codeBox());
    s.cell(17, 7, QStringLiteral("Вид операции"), CellLook().pt(8).right());
    s.cell(17, 8, QString(), codeBox());
    // Compact enough for a short act to keep both signatures on its first page.
    documentBox(s, 18, 4, QStringLiteral("АКТ"));
    s.cell(21, 1, QStringLiteral("О ПРИЕМКЕ ВЫПОЛНЕННЫХ РАБОТ"), CellLook().pt(12).b().center(), 8);
    s.cell(22, 1,
           QStringLiteral("Сметная (договорная) стоимость в соответствии с договором подряда (субподряда)"),
           CellLook().bottom(), 5);
    s.cell(22, 6, ph(QStringLiteral("EditSumSmet")), CellLook().under().right().bottom().money(), 2);
    s.cell(22, 8, ph(currency), CellLook().bottom());
    s.cell(23, 1, ph(basis), CellLook().w(), 8);

    const int h = 25;
    const CellLook head = LayoutParts::headLook().pt(8);
    s.cell(h, 1, QStringLiteral("Номер"), head, 2);
    s.cell(h + 1, 1, QStringLiteral("по порядку"), head);
    s.cell(h + 1, 2, QStringLiteral("позиции по смете"), head);
    s.cell(h, 3, QStringLiteral("Наименование работ"), head, 1, 2);
    s.cell(h, 4, QStringLiteral("Номер единичной расценки"), head, 1, 2);
    s.cell(h, 5, QStringLiteral("Единица измерения"), head, 1, 2);
    s.cell(h, 6, QStringLiteral("Выполнено работ"), head, 3);
    s.cell(h + 1, 6, QStringLiteral("количество"), head);
    s.cell(h + 1, 7, QStringLiteral("цена за единицу, %1").arg(ph(currency)), head);
    s.cell(h + 1, 8, QStringLiteral("стоимость, %1").arg(ph(currency)), head);
    s.setRowHeight(h + 1, 1.1);
    const QVector<LayoutParts::Column> columns{
        {QStringLiteral("1"), colNumber, LayoutParts::dataQty().center()},
        {QStringLiteral("2"), colPosition, LayoutParts::dataQty().center()},
        {QStringLiteral("3"), colName, LayoutParts::dataText()},
        {QStringLiteral("4"), colCode, LayoutParts::dataText().center().text()},
        {QStringLiteral("5"), colUnit, LayoutParts::dataText().center()},
        {QStringLiteral("6"), colQuantity, LayoutParts::dataQty()},
        {QStringLiteral("7"), colPrice, LayoutParts::dataMoney()},
        {QStringLiteral("8"), colSum, LayoutParts::dataMoney()},
    };
    int row = LayoutParts::estimateTable(s, h + 2, columns, false) + 1;
    s.setRepeatedRows(h, h + 2);
    signature(s, row, QStringLiteral("Сдал"), QStringLiteral("EditDolSdal"), QStringLiteral("EditSdal"),
              {1, 2, 2, 3});
    signature(s, row + 3, QStringLiteral("Принял"), QStringLiteral("EditDolPrinal"),
              QStringLiteral("EditPrinal"), {1, 2, 2, 3});
    return s.fods();
}

QByteArray ks3Sheet() {
    SheetBuilder s(QStringLiteral("КС-3"), SheetBuilder::Orientation::Landscape);
    s.setColumns({1.5, 3.2, 9.0, 2.0, 3.4, 3.4, 3.4}); // 25,9 cm
    s.setMargins(1.5, 1.0, 1.0, 1.0);
    s.cell(1, 5, QStringLiteral("Унифицированная форма № КС-3"), CellLook().pt(8).right(), 3);
    s.cell(2, 4, kAuthority, CellLook().pt(8).right(), 4);
    s.cell(3, 7, QStringLiteral("Код"), LayoutParts::headLook().pt(8));
    s.cell(4, 5, QStringLiteral("Форма по ОКУД"), CellLook().pt(8).right(), 2);
    s.cell(4, 7, QStringLiteral("0322001"), codeBox());
    party(s, 5, QStringLiteral("Инвестор"), QString(), QStringLiteral("(организация, адрес, телефон, факс)"),
          2, 3, true);
    party(s, 7, QStringLiteral("Заказчик (Генподрядчик)"), ph(customerLine),
          QStringLiteral("(организация, адрес, телефон, факс)"), 2, 3, true);
    party(s, 9, QStringLiteral("Подрядчик (Субподрядчик)"), ph(contractorLine),
          QStringLiteral("(организация, адрес, телефон, факс)"), 2, 3, true);
    party(s, 11, QStringLiteral("Стройка"), ph(siteLine), QStringLiteral("(наименование, адрес)"), 2, 3,
          false);
    s.cell(12, 6, QStringLiteral("Вид деятельности по ОКДП"), CellLook().pt(7).right().w());
    s.setRowHeight(12, 0.65);
    s.cell(12, 7, QString(), codeBox());
    s.cell(13, 4, QStringLiteral("Договор подряда (контракт)"), CellLook().pt(8).right(), 2);
    s.cell(13, 6, QStringLiteral("номер"), CellLook().pt(8).right());
    s.cell(13, 7, ph(QStringLiteral("EditNumDoc")), codeBox());
    s.cell(14, 6, QStringLiteral("дата"), CellLook().pt(8).right());
    s.cell(14, 7, ph(QStringLiteral("DateEditContract")), codeBox());
    s.cell(15, 6, QStringLiteral("Вид операции"), CellLook().pt(8).right());
    s.cell(15, 7, QString(), codeBox());
    documentBox(s, 16, 4, QStringLiteral("СПРАВКА"));
    s.cell(19, 1, QStringLiteral("О СТОИМОСТИ ВЫПОЛНЕННЫХ РАБОТ И ЗАТРАТ"), CellLook().pt(12).b().center(),
           7);
    s.cell(20, 1, ph(basis), CellLook().w().center(), 7);

    const int h = 22;
    const CellLook head = LayoutParts::headLook().pt(8);
    s.cell(h, 1, QStringLiteral("Номер по порядку"), head, 1, 2);
    s.cell(h, 2,
           QStringLiteral("Наименование пусковых комплексов, этапов, объектов, видов выполненных работ, "
                          "оборудования, затрат"),
           head, 2, 2);
    s.cell(h, 4, QStringLiteral("Код"), head, 1, 2);
    s.cell(h, 5, QStringLiteral("Стоимость выполненных работ и затрат, %1").arg(ph(currency)), head, 3);
    s.cell(h + 1, 5, QStringLiteral("с начала проведения работ"), head);
    s.cell(h + 1, 6, QStringLiteral("с начала года"), head);
    s.cell(h + 1, 7, QStringLiteral("в том числе за отчетный период"), head);
    s.setRowHeight(h + 1, 1.1);
    const CellLook number = CellLook().pt(8).center().box();
    s.cell(h + 2, 1, QStringLiteral("1"), number);
    s.cell(h + 2, 2, QStringLiteral("2"), number, 2);
    for (int c = 4; c <= 7; ++c)
        s.cell(h + 2, c, QString::number(c - 1), number);
    s.setRepeatedRows(h, h + 2);

    int row = h + 3;
    const CellLook amount = LayoutParts::dataMoney();
    s.cell(row, 1, QString(), LayoutParts::dataText());
    // Merged name cells do not wrap: the engine would size the row by the first column alone.
    const CellLook name = CellLook().box().top();
    s.cell(row, 2, QStringLiteral("Всего работ и затрат, включаемых в стоимость работ"), CellLook(name).b(),
           2);
    s.cell(row, 4, QString(), LayoutParts::dataText());
    // Columns 5 to 7: since the start of the work, since the start of the year, the reporting period.
    const QString amounts[] = {colSinceStart, colSinceYear, colSum};
    const QString totals[] = {subtotalSinceStart, subtotalSinceYear, subtotal};
    for (int c = 5; c <= 7; ++c)
        s.cell(row, c, ph(totals[c - 5]), CellLook(amount).b());
    ++row;
    s.cell(row, 1, QString(), LayoutParts::dataText());
    s.cell(row, 2, QStringLiteral("в том числе:"), CellLook(name).i(), 2);
    s.cell(row, 4, QString(), LayoutParts::dataText());
    for (int c = 5; c <= 7; ++c)
        s.cell(row, c, QString(), amount);
    ++row;
    // One line per section of the estimate (or one for the whole work).
    s.cell(row, 1, ph(rowWork, colNumber), LayoutParts::dataQty().center());
    s.cell(row, 2, ph(rowWork, colName), name, 2);
    s.cell(row, 4, ph(rowWork, colCode), LayoutParts::dataText().center().text());
    for (int c = 5; c <= 7; ++c)
        s.cell(row, c, ph(rowWork, amounts[c - 5]), amount);
    ++row;
    // Итого, Сумма НДС, Всего с учетом НДС.
    s.cell(row, 1, ph(rowTotals, colName), CellLook().b().right().box(), 4);
    for (int c = 5; c <= 7; ++c)
        s.cell(row, c, ph(rowTotals, amounts[c - 5]), CellLook().b().box().right().money());
    row += 2;
    signature(s, row, QStringLiteral("Заказчик (Генподрядчик)"), QStringLiteral("EditDolPrinal"),
              QStringLiteral("EditPrinal"), {2, 2, 1, 2});
    signature(s, row + 3, QStringLiteral("Подрядчик (Субподрядчик)"), QStringLiteral("EditDolSdal"),
              QStringLiteral("EditSdal"), {2, 2, 1, 2});
    return s.fods();
}

} // namespace DefaultTemplates
