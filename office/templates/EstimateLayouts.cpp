// The estimate sheets: "Шаблон Смета.xls", "Шаблон КП.xls", "Шаблон Локальная.xls",
// "Шаблон Стройкооператив.xls".

#include "DefaultTemplates.h"
#include "LayoutParts.h"

namespace DefaultTemplates {

using namespace TemplateNames;
using LayoutParts::Column;
using LayoutParts::ph;

namespace {

// Label in the first columns, value over the rest (a line of the document's header).
void labelled(SheetBuilder &s, int row, const QString &label, const QString &value, int labelSpan,
              int width) {
    s.cell(row, 1, label, CellLook().b().top().w(), labelSpan);
    s.cell(row, labelSpan + 1, value, CellLook().w().top(), width - labelSpan);
}

QString money(const char *head) {
    return QString::fromUtf8(head) + QStringLiteral(", ") + ph(currency);
}

} // namespace

QByteArray estimateSheet() {
    SheetBuilder s(QStringLiteral("Смета"), SheetBuilder::Orientation::Portrait);
    s.setColumns({1.0, 1.9, 7.3, 1.5, 1.7, 2.3, 2.8}); // 18,5 cm: A4 less the margins
    const int w = 7;
    s.cell(1, 1, ph(title), CellLook().pt(14).b().center(), w);
    s.cell(2, 1, ph(subtitle), CellLook().pt(11).center().w(), w);
    s.cell(3, 1, QStringLiteral("№ %1 от %2").arg(ph(number), ph(date)), CellLook().center(), w);
    labelled(s, 5, ph(contractorLabel) + u':', ph(contractor), 2, w);
    labelled(s, 6, QStringLiteral("Заказчик:"), ph(customer), 2, w);
    labelled(s, 7, QStringLiteral("Объект:"), ph(object), 2, w);
    labelled(s, 8, QStringLiteral("Работы:"), ph(works), 2, w);
    const QVector<Column> columns{
        {QStringLiteral("№ п/п"), colNumber, LayoutParts::dataQty().center()},
        {QStringLiteral("Шифр расценки"), colCode, LayoutParts::dataText().center().text()},
        {QStringLiteral("Наименование работ и материалов"), colName, LayoutParts::dataText()},
        {QStringLiteral("Ед. изм."), colUnit, LayoutParts::dataText().center()},
        {QStringLiteral("Кол-во"), colQuantity, LayoutParts::dataQty()},
        {money("Цена"), colPrice, LayoutParts::dataMoney()},
        {money("Сумма"), colSum, LayoutParts::dataMoney()},
    };
    int row = LayoutParts::estimateTable(s, 10, columns, false) + 1;
    s.cell(row, 1,
           QStringLiteral("Всего по смете: %1 %2 (%3).").arg(ph(grandTotal), ph(currency), ph(grandWords)),
           CellLook().b().w().top(), w);
    s.setRowHeight(row, 0.9);
    row += 2;
    s.cell(row, 1, ph(contractorLabel), CellLook().b(), 3);
    s.cell(row, 5, QStringLiteral("Заказчик"), CellLook().b(), 3);
    ++row;
    s.cell(row, 1, QStringLiteral("____________________ / ____________________ /"), CellLook().bottom(), 3);
    s.cell(row, 5, QStringLiteral("____________________ / ____________________ /"), CellLook().bottom(), 3);
    s.setRowHeight(row, 0.9);
    ++row;
    s.cell(row, 1, QStringLiteral("М. П."), CellLook().pt(8), 3);
    s.cell(row, 5, QStringLiteral("М. П."), CellLook().pt(8), 3);
    return s.fods();
}

QByteArray offerSheet() {
    SheetBuilder s(QStringLiteral("Коммерческое предложение"), SheetBuilder::Orientation::Portrait);
    s.setColumns({1.0, 8.8, 1.6, 1.8, 2.5, 2.8});
    const int w = 6;
    s.cell(1, 1, ph(contractor), CellLook().pt(12).b().w(), w);
    s.cell(2, 1, QStringLiteral("Адрес: %1").arg(ph(contractorAddress)), CellLook().pt(9).w(), w);
    s.cell(
        3, 1,
        QStringLiteral("Телефон: %1    Электронная почта: %2").arg(ph(contractorPhone), ph(contractorEmail)),
        CellLook().pt(9).heavyUnder(), w);
    s.cell(5, 1, ph(title), CellLook().pt(16).b().center(), w);
    s.cell(6, 1, QStringLiteral("№ %1 от %2").arg(ph(number), ph(date)), CellLook().center(), w);
    s.cell(8, 1, QStringLiteral("Кому: %1").arg(ph(customer)), CellLook().w().top(), w);
    s.cell(9, 1, QStringLiteral("Объект: %1").arg(ph(object)), CellLook().w().top(), w);
    s.cell(
        11, 1,
        QStringLiteral("Благодарим за интерес к нашей работе. Предлагаем выполнить работы «%1» на следующих "
                       "условиях:")
            .arg(ph(works)),
        CellLook().w().top(), w);
    s.setRowHeight(11, 0.9);
    const QVector<Column> columns{
        {QStringLiteral("№"), colNumber, LayoutParts::dataQty().center()},
        {QStringLiteral("Наименование работ и материалов"), colName, LayoutParts::dataText()},
        {QStringLiteral("Ед. изм."), colUnit, LayoutParts::dataText().center()},
        {QStringLiteral("Кол-во"), colQuantity, LayoutParts::dataQty()},
        {money("Цена"), colPrice, LayoutParts::dataMoney()},
        {money("Стоимость"), colSum, LayoutParts::dataMoney()},
    };
    int row = LayoutParts::estimateTable(s, 13, columns, false) + 1;
    s.cell(row, 1,
           QStringLiteral("Итого стоимость предложения: %1 %2 (%3).")
               .arg(ph(grandTotal), ph(currency), ph(grandWords)),
           CellLook().b().w().top(), w);
    s.setRowHeight(row, 0.9);
    row += 2;
    const char *terms[] = {
        "Условия предложения:",
        "— цены действительны в течение 30 календарных дней со дня составления предложения;",
        "— сроки выполнения и порядок оплаты работ согласовываются при заключении договора;",
        "— объёмы работ уточняются после осмотра объекта; изменение объёмов меняет стоимость по тем же "
        "ценам;",
        "— на выполненные работы предоставляется гарантия в соответствии с договором.",
    };
    bool first = true;
    for (const char *t : terms) {
        s.cell(row, 1, QString::fromUtf8(t), first ? CellLook().b() : CellLook().w().top(), w);
        first = false;
        ++row;
    }
    ++row;
    s.cell(row, 1, ph(contractorLabel), CellLook().b(), 2);
    s.cell(row, 3, QStringLiteral("____________________ / ____________________ /"), CellLook().bottom(), 4);
    s.setRowHeight(row, 0.9);
    return s.fods();
}

QByteArray localSheet() {
    SheetBuilder s(QStringLiteral("Локальный сметный расчет"), SheetBuilder::Orientation::Landscape);
    s.setColumns({1.2, 2.8, 11.0, 2.0, 2.4, 3.3, 3.6}); // 26,3 cm on an A4 landscape page
    s.setMargins(1.5, 1.0, 1.0, 1.0);
    const int w = 7;
    s.cell(1, 1, QStringLiteral("СОГЛАСОВАНО:"), CellLook().b(), 3);
    s.cell(1, 5, QStringLiteral("УТВЕРЖДАЮ:"), CellLook().b(), 3);
    s.cell(2, 1, QStringLiteral("%1: %2").arg(ph(contractorLabel), ph(contractor)), CellLook().w().top(), 3);
    s.cell(2, 5, QStringLiteral("Заказчик: %1").arg(ph(customer)), CellLook().w().top(), 3);
    s.cell(3, 1, QStringLiteral("____________________ / ____________________ /"), CellLook().bottom(), 3);
    s.cell(3, 5, QStringLiteral("____________________ / ____________________ /"), CellLook().bottom(), 3);
    s.setRowHeight(3, 0.9);
    s.cell(4, 1, QStringLiteral("«____» ________________ 20____ г."), CellLook(), 3);
    s.cell(4, 5, QStringLiteral("«____» ________________ 20____ г."), CellLook(), 3);
    labelled(s, 6, QStringLiteral("Стройка:"), ph(works), 2, w);
    labelled(s, 7, QStringLiteral("Объект:"), ph(object), 2, w);
    s.cell(9, 1, QStringLiteral("%1 № %2").arg(ph(title), ph(number)), CellLook().pt(13).b().center(), w);
    s.cell(10, 1, ph(subtitle), CellLook().pt(11).b().center(), w);
    s.cell(11, 1, QStringLiteral("на %1").arg(ph(works)), CellLook().center().w().under(), w);
    s.cell(12, 1, QStringLiteral("(наименование работ и затрат)"), CellLook().pt(7).center(), w);
    labelled(s, 14, QStringLiteral("Основание:"), QStringLiteral("дефектная ведомость, задание заказчика"), 2,
             w);
    labelled(s, 15, QStringLiteral("Сметная стоимость:"),
             QStringLiteral("%1 %2").arg(ph(grandTotal), ph(currency)), 2, w);
    labelled(s, 16, QStringLiteral("Составлен в ценах на:"), ph(date), 2, w);
    // Two-level head: the price columns under one caption.
    const int h = 18;
    const CellLook head = LayoutParts::headLook();
    s.cell(h, 1, QStringLiteral("№ п/п"), head, 1, 2);
    s.cell(h, 2, QStringLiteral("Обоснование"), head, 1, 2);
    s.cell(h, 3, QStringLiteral("Наименование работ и затрат"), head, 1, 2);
    s.cell(h, 4, QStringLiteral("Единица измерения"), head, 1, 2);
    s.cell(h, 5, QStringLiteral("Количество"), head, 1, 2);
    s.cell(h, 6, QStringLiteral("Сметная стоимость, %1").arg(ph(currency)), head, 2);
    s.cell(h + 1, 6, QStringLiteral("на единицу измерения"), head);
    s.cell(h + 1, 7, QStringLiteral("всего"), head);
    // The numbered head row follows as the first row of estimateTable's head: captions are the numbers.
    const QVector<Column> columns{
        {QStringLiteral("1"), colNumber, LayoutParts::dataQty().center()},
        {QStringLiteral("2"), colCode, LayoutParts::dataText().center().text()},
        {QStringLiteral("3"), colName, LayoutParts::dataText()},
        {QStringLiteral("4"), colUnit, LayoutParts::dataText().center()},
        {QStringLiteral("5"), colQuantity, LayoutParts::dataQty()},
        {QStringLiteral("6"), colPrice, LayoutParts::dataMoney()},
        {QStringLiteral("7"), colSum, LayoutParts::dataMoney()},
    };
    int row = LayoutParts::estimateTable(s, h + 2, columns, false) + 1;
    s.setRepeatedRows(h, h + 2);
    s.cell(row, 1,
           QStringLiteral("Всего по смете: %1 %2 (%3).").arg(ph(grandTotal), ph(currency), ph(grandWords)),
           CellLook().b().w().top(), w);
    s.setRowHeight(row, 0.9);
    row += 2;
    s.cell(row, 1, QStringLiteral("Составил:"), CellLook().b(), 2);
    s.cell(row, 3, QStringLiteral("____________________ / %1 /").arg(ph(contractor)), CellLook().bottom());
    s.cell(row + 1, 3, QStringLiteral("(должность, подпись, расшифровка подписи)"),
           CellLook().pt(7).center());
    s.setRowHeight(row, 0.9);
    row += 3;
    s.cell(row, 1, QStringLiteral("Проверил:"), CellLook().b(), 2);
    s.cell(row, 3, QStringLiteral("____________________ / ____________________ /"), CellLook().bottom());
    s.cell(row + 1, 3, QStringLiteral("(должность, подпись, расшифровка подписи)"),
           CellLook().pt(7).center());
    s.setRowHeight(row, 0.9);
    return s.fods();
}

QByteArray cooperativeSheet() {
    SheetBuilder s(QStringLiteral("Смета"), SheetBuilder::Orientation::Portrait);
    s.setColumns({1.0, 1.9, 7.3, 1.5, 1.7, 2.3, 2.8});
    const int w = 7;
    s.cell(1, 5, QStringLiteral("УТВЕРЖДАЮ"), CellLook().b(), 3);
    s.cell(2, 5, QStringLiteral("Председатель правления"), CellLook(), 3);
    s.cell(3, 5, ph(customer), CellLook().w().top(), 3);
    s.cell(4, 5, QStringLiteral("____________ / ________________ /"), CellLook().bottom(), 3);
    s.setRowHeight(4, 0.9);
    s.cell(5, 5, QStringLiteral("«____» ______________ 20____ г."), CellLook(), 3);
    s.cell(7, 1, ph(title), CellLook().pt(14).b().center(), w);
    s.cell(8, 1, ph(subtitle), CellLook().pt(11).center().w(), w);
    s.cell(9, 1, QStringLiteral("№ %1 от %2").arg(ph(number), ph(date)), CellLook().center(), w);
    labelled(s, 11, QStringLiteral("Кооператив:"), ph(customer), 2, w);
    labelled(s, 12, QStringLiteral("Объект:"), ph(object), 2, w);
    labelled(s, 13, QStringLiteral("Работы:"), ph(works), 2, w);
    labelled(s, 14, QStringLiteral("Исполнитель:"), ph(contractor), 2, w);
    const QVector<Column> columns{
        {QStringLiteral("№ п/п"), colNumber, LayoutParts::dataQty().center()},
        {QStringLiteral("Шифр"), colCode, LayoutParts::dataText().center().text()},
        {QStringLiteral("Наименование работ и материалов"), colName, LayoutParts::dataText()},
        {QStringLiteral("Ед. изм."), colUnit, LayoutParts::dataText().center()},
        {QStringLiteral("Кол-во"), colQuantity, LayoutParts::dataQty()},
        {money("Цена"), colPrice, LayoutParts::dataMoney()},
        {money("Сумма"), colSum, LayoutParts::dataMoney()},
    };
    int row = LayoutParts::estimateTable(s, 16, columns, false) + 1;
    s.cell(row, 1,
           QStringLiteral("Всего по смете: %1 %2 (%3).").arg(ph(grandTotal), ph(currency), ph(grandWords)),
           CellLook().b().w().top(), w);
    s.setRowHeight(row, 0.9);
    row += 2;
    s.cell(
        row, 1,
        QStringLiteral("Смета рассмотрена и одобрена на заседании правления кооператива, протокол № ______ "
                       "от «____» ______________ 20____ г."),
        CellLook().w().top(), w);
    s.setRowHeight(row, 0.9);
    row += 2;
    const char *signers[] = {"Исполнитель", "Председатель правления",
                             "Член правления (ревизионной комиссии)"};
    for (const char *who : signers) {
        s.cell(row, 1, QString::fromUtf8(who), CellLook().w().bottom(), 3);
        s.cell(row, 4, QStringLiteral("________________ / ________________________ /"), CellLook().bottom(),
               4);
        s.setRowHeight(row, 0.9);
        ++row;
    }
    return s.fods();
}

} // namespace DefaultTemplates
