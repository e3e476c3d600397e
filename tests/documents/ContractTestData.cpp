#include "ContractTestData.h"

ContractFill::Data fullData() {
    ContractFill::Data d;
    d.date = QDate(2026, 3, 5);
    d.currency = 0;
    d.total = QStringLiteral("35271,43");
    ContractFill::setAmounts(&d, 35);
    d.object = QStringLiteral("Квартира, ул. Садовая, д. 14");
    d.works = QStringLiteral("Ремонт кухни");
    d.contractor.found = true;
    d.contractor.contractor = {{"id", "1"},
                               {"shotname", "ИП Соболев"},
                               {"longname", "ИП Соболев Денис Андреевич"},
                               {"phone", "+7 999 308-41-16"}};
    d.contractor.requisites = {{"certificate", "св-во 76 № 1"},
                               {"pasport", "78 19 402715"},
                               {"adres", "г.Ярославль, ул. Полевая, 8"},
                               {"inn", "760419305865"},
                               {"okpo", "318762700041729"},
                               {"bank", "АО «Банк»"},
                               {"bik", "047888913"},
                               {"account", "40802810577010004521"},
                               {"koraccount", "30101810500000000913"},
                               {"note", "ИНН 760419305865"},
                               {"boss", "Соболев Д.А."}};
    d.contractor.email = QStringLiteral("sobolev@example.com");
    d.customer.found = true;
    d.customer.customer = {{"_id", "1"},
                           {"fio", "Кудрявцев Олег"},
                           {"phone", "+7 999 214-57-38"},
                           {"address", "г.Ярославль, ул. Садовая, 14"},
                           {"Agent", "Кудрявцева Анна"},
                           {"email", "o.k@example.com"},
                           {"note", "паспорт 78 19"}};
    d.customer.requisites = {{"pasport", "серия 78 19 № 402715"},
                             {"inn", "760628471915"},
                             {"okpo", "1027600000000"},
                             {"bank", "ПАО «Сбер»"},
                             {"bik", "047888001"},
                             {"account", "40817810000000000001"},
                             {"koraccount", "30101810000000000001"},
                             {"boss", "Кудрявцев О.Н."}};
    return d;
}
