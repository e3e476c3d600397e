#include "InvoiceData.h"

#include "office/InWord.h"
#include "storage/TextValues.h"

namespace {

QString flag(bool on) {
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

} // namespace

QString InvoiceParty::shown() const {
    const QString line = legalLine.trimmed();
    return withLegal && !line.isEmpty() ? name + QStringLiteral(", ") + line : name;
}

const QVector<Invoice::Detail> &Invoice::details() {
    static const QVector<Detail> list{
        {QStringLiteral("inn"), QStringLiteral("ИНН")},
        {QStringLiteral("kpp"), QStringLiteral("КПП")},
        {QStringLiteral("boss"), QStringLiteral("Руководитель")},
        {QStringLiteral("glavbuh"), QStringLiteral("Главный бухгалтер")},
        {QStringLiteral("account"), QStringLiteral("Расчетный счет")},
        {QStringLiteral("bank"), QStringLiteral("Наименование банка")},
        {QStringLiteral("bik"), QStringLiteral("БИК")},
        {QStringLiteral("koraccount"), QStringLiteral("Корр. счет")},
    };
    return list;
}

const QStringList &Invoice::currencies() {
    static const QStringList list{QStringLiteral("Рубль РФ"), QStringLiteral("Доллар США"),
                                  QStringLiteral("Гривна"), QStringLiteral("Белорусский рубль"),
                                  QStringLiteral("Тенге")};
    return list;
}

QString Invoice::amountInWords() const {
    const MoneyResult a = form.amount();
    return a.ok() ? TInWord::amount(*a, currency) : QString();
}

QVector<AccountTable::Item> Invoice::items() const {
    QVector<AccountTable::Item> list;
    auto add = [&list](const char *name, const QString &value) { list.append({QLatin1String(name), value}); };
    add("edNumber", number);
    add("DateEdit", TextValues::shortDate(date));
    add("edSumma", form.amount().text());
    add("EditValuta", currencies().value(currency, currencies().first()));
    add("ComboBoxPodryad", seller.shown());
    add("ComboBoxZakaz", buyer.shown());
    const char *names[] = {"ComboBoxNameWork", "EditNameWork2", "EditNameWork3"};
    const char *prices[] = {"edSumma1", "edSumma2", "edSumma3"};
    const QVector<InvoiceService> &services = form.services();
    for (int i = 0; i < 3; ++i) {
        const InvoiceService s = services.value(i);
        add(names[i], s.name);
        add(prices[i], InvoiceForm::priceOf(s.price).text());
    }
    add("CheckBoxNDS", flag(form.vatOn()));
    add("SpinEditNDS", QString::number(form.vatRate()));
    add("rbtSumma", flag(form.vatChoice() == InvoiceForm::VatChoice::Added));
    for (const Detail &d : details())
        list.append({d.key, sellerDetails.value(d.key)});
    add("summaword", amountInWords());
    add("nds", form.vat().text());
    add("CheckBoxWork", flag(form.works()));
    add("CheckBoxMat", flag(form.materials()));
    add("ToggleSwitch1", flag(form.oneLine()));
    return list;
}
