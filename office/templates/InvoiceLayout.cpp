// "Шаблон Счет на оплату.xls": a Russian payment invoice. Its cells name the items the invoice window
// stores in the document's table Account ([edNumber], [DateEdit], [inn], …). The first three services
// are stored items (the lines of the second and third are left out when empty); further services fill
// the row list [услуги.…] under them. The payment QR code goes where [QR-код] stands, beside the bank
// block. A hidden row keeps the invoice's settings (VAT on, rate, added or included, the switch and the
// ticks), for formulas of a user's own copy of the template.

#include "DefaultTemplates.h"
#include "LayoutParts.h"

namespace DefaultTemplates {

using LayoutParts::ph;

QByteArray invoiceSheet() {
    SheetBuilder s(QStringLiteral("Счет на оплату"), SheetBuilder::Orientation::Portrait);
    s.setColumns({0.9, 7.2, 1.3, 1.3, 4.0, 3.8}); // 18,5 cm
    const int w = 6;
    const CellLook box = CellLook().box().w().top();
    const CellLook caption = CellLook().pt(8).box().bottom();
    s.cell(1, 1, QStringLiteral("Образец заполнения платёжного поручения"), CellLook().pt(8).i().center(), 5);
    // The seller's bank block, as a payment order has it, and the payment QR code beside it.
    s.cell(2, 1, ph(QStringLiteral("bank")), box, 3, 2);
    s.cell(2, 4, QStringLiteral("БИК"), box);
    s.cell(2, 5, ph(QStringLiteral("bik")), CellLook(box).text());
    s.cell(3, 4, QStringLiteral("Сч. №"), box, 1, 2);
    s.cell(3, 5, ph(QStringLiteral("koraccount")), CellLook(box).text(), 1, 2);
    s.cell(4, 1, QStringLiteral("Банк получателя"), caption, 3);
    s.cell(5, 1,
           QStringLiteral("ИНН %1        КПП %2").arg(ph(QStringLiteral("inn")), ph(QStringLiteral("kpp"))),
           box, 3);
    s.cell(5, 4, QStringLiteral("Сч. №"), box, 1, 4);
    s.cell(5, 5, ph(QStringLiteral("account")), CellLook(box).text(), 1, 4);
    s.cell(6, 1, ph(QStringLiteral("ComboBoxPodryad")), box, 3, 2);
    s.cell(8, 1, QStringLiteral("Получатель"), caption, 3);
    s.cell(1, 6, ph(QStringLiteral("QR-код")), CellLook().pt(8).center().top());
    for (int row = 2; row <= 8; ++row)
        s.setRowHeight(row, row == 4 || row == 8 ? 0.45 : 0.55);

    s.cell(10, 1,
           QStringLiteral("Счет на оплату № %1 от %2")
               .arg(ph(QStringLiteral("edNumber")), ph(QStringLiteral("DateEdit"))),
           CellLook().pt(14).b().heavyUnder().bottom(), w);
    s.setRowHeight(10, 0.9);
    // The seller with its ИНН and КПП, the blank ones left out.
    s.cell(12, 1, QStringLiteral("Поставщик (Исполнитель): %1").arg(ph(QStringLiteral("поставщик"))),
           CellLook().w().top(), w);
    s.cell(13, 1, QStringLiteral("Покупатель (Заказчик): %1").arg(ph(QStringLiteral("ComboBoxZakaz"))),
           CellLook().w().top(), w);
    s.cell(14, 1, QStringLiteral("Валюта счета: %1").arg(ph(QStringLiteral("EditValuta"))), CellLook(), w);

    const CellLook head = LayoutParts::headLook();
    const char *heads[] = {"№", "Наименование работ, услуг", "Кол-во", "Ед.", "Цена", "Сумма"};
    for (int c = 0; c < w; ++c)
        s.cell(16, c + 1, QString::fromUtf8(heads[c]), head);
    auto serviceRow = [&](int row, const QString &number, const QString &name, const QString &sum) {
        s.cell(row, 1, number, LayoutParts::dataQty().center());
        s.cell(row, 2, name, LayoutParts::dataText());
        s.cell(row, 3, QStringLiteral("1"), LayoutParts::dataQty().center());
        s.cell(row, 4, QStringLiteral("усл."), LayoutParts::dataText().center());
        s.cell(row, 5, sum, LayoutParts::dataMoney());
        s.cell(row, 6, sum, LayoutParts::dataMoney());
    };
    const QString names[] = {QStringLiteral("ComboBoxNameWork"), QStringLiteral("EditNameWork2"),
                             QStringLiteral("EditNameWork3")};
    for (int i = 0; i < 3; ++i)
        serviceRow(17 + i, QString::number(i + 1), ph(names[i]), ph(QStringLiteral("edSumma%1").arg(i + 1)));
    const QString more = QStringLiteral("услуги");
    serviceRow(20, ph(more, QStringLiteral("№")), ph(more, QStringLiteral("наименование")),
               ph(more, QStringLiteral("цена")));

    s.cell(21, 1, QStringLiteral("Итого:"), CellLook().b().right(), 5);
    s.cell(21, 6, ph(TemplateNames::subtotal), CellLook().b().right().money());
    s.cell(22, 1, ph(QStringLiteral("ндс надпись")), CellLook().b().right(), 5);
    s.cell(22, 6, ph(QStringLiteral("ндс сумма")), CellLook().b().right().money());
    s.cell(23, 1, QStringLiteral("Всего к оплате:"), CellLook().b().right(), 5);
    s.cell(23, 6, ph(QStringLiteral("edSumma")), CellLook().b().right().money());
    s.cell(25, 1, ph(QStringLiteral("всего наименований")), CellLook(), w);
    s.cell(26, 1, ph(QStringLiteral("summaword")), CellLook().b().w().top(), w);
    s.setRowHeight(26, 0.9);
    s.cell(27, 1,
           QStringLiteral(
               "Оплата данного счета означает согласие с условиями выполнения работ и оказания услуг."),
           CellLook().pt(8).i().heavyUnder(), w);
    s.cell(29, 1, QStringLiteral("Руководитель ______________ / %1 /").arg(ph(QStringLiteral("boss"))),
           CellLook().bottom(), 2);
    s.cell(29, 3, QStringLiteral("Главный бухгалтер ____________ / %1 /").arg(ph(QStringLiteral("glavbuh"))),
           CellLook().bottom(), 4);
    s.setRowHeight(29, 0.9);
    s.cell(31, 1, QStringLiteral("М. П."), CellLook().pt(8), 2);

    const char *settings[] = {"CheckBoxNDS", "SpinEditNDS", "rbtSumma", "nds", "CheckBoxWork", "CheckBoxMat"};
    for (int c = 0; c < w; ++c)
        s.cell(33, c + 1, ph(QString::fromUtf8(settings[c])), CellLook().text());
    s.cell(34, 1, ph(QStringLiteral("ToggleSwitch1")), CellLook().text());
    s.setHiddenRow(33);
    s.setHiddenRow(34);
    return s.fods();
}

} // namespace DefaultTemplates
