#include "ContractFill.h"

#include "ContractAmounts.h"
#include "estimate/EstimateOutput.h"
#include "office/InWord.h"
#include "storage/TextValues.h"

namespace ContractFill {

namespace {

using P = Party;

// The requisites of either party that fill a placeholder: column -> placeholder.
struct Column {
    const char *column;
    const char *placeholder;
};

} // namespace

const QVector<Placeholder> &placeholders() {
    static const QVector<Placeholder> list = {
        {QStringLiteral("[дата]"), QStringLiteral("дата в коротком формате (цифры)"), P::Estimate},
        {QStringLiteral("[дата окончания]"), QStringLiteral("дата окончания работ (для пакета док.)"),
         P::Estimate},
        {QStringLiteral("[день] [месяц] [год]"), QStringLiteral("длинный формат даты"), P::Estimate},
        {QStringLiteral("[объект]"), QStringLiteral("объект"), P::Estimate},
        {QStringLiteral("[работа]"), QStringLiteral("наименование работ"), P::Estimate},
        {QStringLiteral("[сумма цифрами]"), QStringLiteral("сумма сметы"), P::Estimate},
        {QStringLiteral("[сумма прописью]"), QStringLiteral("сумма сметы"), P::Estimate},
        {QStringLiteral("[аванс]"), QStringLiteral("сумма аванса = сметная стоимость * n%"), P::Estimate},
        {QStringLiteral("[аванс прописью]"), QStringLiteral("аванс прописью"), P::Estimate},
        {QStringLiteral("[остаток]"), QStringLiteral("сметная стоимость минус аванс"), P::Estimate},
        {QStringLiteral("[остаток прописью]"), QStringLiteral("остаток прописью"), P::Estimate},
        {QStringLiteral("[подрядчик]"), QStringLiteral("имя для договора, если нет, то имя для сметы"),
         P::Contractor},
        {QStringLiteral("[телефон]"), QStringLiteral("номер телефона подрядчика"), P::Contractor},
        {QStringLiteral("[свидетельство]"), QStringLiteral("свидетельство о гос. регистрации подрядчика"),
         P::Contractor},
        {QStringLiteral("[паспорт]"), QStringLiteral("паспортные данные подрядчика"), P::Contractor},
        {QStringLiteral("[адрес]"), QStringLiteral("адрес подрядчика"), P::Contractor},
        {QStringLiteral("[инн]"), QStringLiteral("ИНН подрядчика"), P::Contractor},
        {QStringLiteral("[огрн]"), QStringLiteral("ОГРН подрядчика"), P::Contractor},
        {QStringLiteral("[банк]"), QStringLiteral("наименование банка подрядчика"), P::Contractor},
        {QStringLiteral("[бик]"), QStringLiteral("БИК подрядчика"), P::Contractor},
        {QStringLiteral("[рсчет]"), QStringLiteral("расчётный счёт подрядчика"), P::Contractor},
        {QStringLiteral("[ксчет]"), QStringLiteral("кор. счёт подрядчика"), P::Contractor},
        {QStringLiteral("[email]"), QStringLiteral("электронная почта подрядчика"), P::Contractor},
        {QStringLiteral("[юрдан]"), QStringLiteral("юридические данные подрядчика"), P::Contractor},
        {QStringLiteral("[руководитель]"), QStringLiteral("руководитель подрядчика"), P::Contractor},
        {QStringLiteral("[заказчик]"), QStringLiteral("заказчик"), P::Customer},
        {QStringLiteral("[телефонзак]"), QStringLiteral("номер телефона заказчика"), P::Customer},
        {QStringLiteral("[паспортзак]"), QStringLiteral("паспортные данные заказчика"), P::Customer},
        {QStringLiteral("[адресзак]"), QStringLiteral("адрес заказчика"), P::Customer},
        {QStringLiteral("[представительзак]"), QStringLiteral("представитель заказчика (контакт. лицо)"),
         P::Customer},
        {QStringLiteral("[иннзак]"), QStringLiteral("ИНН заказчика"), P::Customer},
        {QStringLiteral("[огрнзак]"), QStringLiteral("ОГРН заказчика"), P::Customer},
        {QStringLiteral("[банкзак]"), QStringLiteral("наименование банка заказчика"), P::Customer},
        {QStringLiteral("[бикзак]"), QStringLiteral("БИК заказчика"), P::Customer},
        {QStringLiteral("[рсчетзак]"), QStringLiteral("расчётный счёт заказчика"), P::Customer},
        {QStringLiteral("[ксчетзак]"), QStringLiteral("кор. счёт заказчика"), P::Customer},
        {QStringLiteral("[emailclient]"), QStringLiteral("электронная почта заказчика"), P::Customer},
        {QStringLiteral("[юрданзак]"), QStringLiteral("юридические данные заказчика"), P::Customer},
        {QStringLiteral("[руководительзак]"), QStringLiteral("руководитель заказчика"), P::Customer},
    };
    return list;
}

QString monthGenitive(int month) {
    static const char *const names[] = {"Января", "Февраля", "Марта",    "Апреля",  "Мая",    "Июня",
                                        "Июля",   "Августа", "Сентября", "Октября", "Ноября", "Декабря"};
    return month >= 1 && month <= 12 ? QString::fromUtf8(names[month - 1]) : QString();
}

void setAmounts(Data *data, int percent) {
    data->advance = ContractAmounts::advanceText(data->total, percent);
    data->remainder = ContractAmounts::remainderText(data->total, data->advance);
}

WordTemplate::Replacements replacements(const Data &d) {
    WordTemplate::Replacements out;
    const auto put = [&out](const char *placeholder, const QString &value) {
        if (!TextValues::isBlank(value))
            out.append({QString::fromUtf8(placeholder), value});
    };
    const auto putColumns = [&put](const Fields &row, std::initializer_list<Column> columns) {
        for (const Column &c : columns)
            put(c.placeholder, row.value(QLatin1String(c.column)));
    };
    const auto putAmount = [&put, &d](const char *figures, const char *words, const QString &text,
                                      const QString &shown) {
        const MoneyResult money = Money::parse(text);
        if (!money)
            return; // an amount that is not one leaves both placeholders
        put(figures, shown);
        put(words, TInWord::amount(*money, d.currency));
    };

    // Dates.
    if (d.date.isValid()) {
        put("[дата]", TextValues::shortDate(d.date));
        if (d.endDate.isValid())
            put("[дата окончания]", TextValues::shortDate(d.endDate));
        put("[день]", QString::number(d.date.day()));
        put("[месяц]", monthGenitive(d.date.month()));
        put("[год]", QString::number(d.date.year()) + QStringLiteral("г."));
    } else if (d.endDate.isValid()) {
        put("[дата окончания]", TextValues::shortDate(d.endDate));
    }

    // The contractor: the name for contracts, else the name for estimates.
    const QString longName = d.contractor.contractor.value(QStringLiteral("longname"));
    put("[подрядчик]",
        TextValues::isBlank(longName) ? d.contractor.contractor.value(QStringLiteral("shotname")) : longName);
    put("[телефон]", d.contractor.contractor.value(QStringLiteral("phone")));

    // The customer, only when the register (or the estimate's copy) knows it.
    if (d.customer.found) {
        putColumns(d.customer.customer, {{"fio", "[заказчик]"},
                                         {"phone", "[телефонзак]"},
                                         {"address", "[адресзак]"},
                                         {"Agent", "[представительзак]"},
                                         {"email", "[emailclient]"},
                                         {"note", "[юрданзак]"}});
        putColumns(d.customer.requisites, {{"pasport", "[паспортзак]"},
                                           {"inn", "[иннзак]"},
                                           {"okpo", "[огрнзак]"},
                                           {"bank", "[банкзак]"},
                                           {"bik", "[бикзак]"},
                                           {"account", "[рсчетзак]"},
                                           {"koraccount", "[ксчетзак]"},
                                           {"boss", "[руководительзак]"}});
    }

    // Object and works.
    put("[объект]", d.object);
    put("[работа]", d.works);

    // The total.
    putAmount("[сумма цифрами]", "[сумма прописью]", d.total,
              d.total.trimmed() + u' ' + EstimateOutput::currencySign(d.currency));

    // The contractor's requisites and e-mail.
    putColumns(d.contractor.requisites, {{"certificate", "[свидетельство]"},
                                         {"pasport", "[паспорт]"},
                                         {"adres", "[адрес]"},
                                         {"inn", "[инн]"},
                                         {"okpo", "[огрн]"},
                                         {"bank", "[банк]"},
                                         {"bik", "[бик]"},
                                         {"account", "[рсчет]"},
                                         {"koraccount", "[ксчет]"}});
    put("[email]", d.contractor.email);
    putColumns(d.contractor.requisites, {{"note", "[юрдан]"}, {"boss", "[руководитель]"}});

    // Advance and remainder.
    putAmount("[аванс]", "[аванс прописью]", d.advance, d.advance.trimmed());
    putAmount("[остаток]", "[остаток прописью]", d.remainder, d.remainder.trimmed());
    return out;
}

} // namespace ContractFill
