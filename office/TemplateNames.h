#pragma once
// The names the default templates and the estimate's output share. A template names an item in square
// brackets ("[заказчик]"); a row of a list names its columns as "[kind.column]" ("[строки.сумма]").

#include <QString>

namespace TemplateNames {

// Named items of the estimate and act sheets (the contract uses the same words where they mean the same).
inline const QString title = QStringLiteral("заголовок"); // "СМЕТА", "АКТ", the local form's title
inline const QString subtitle = QStringLiteral("подзаголовок");              // the line under the title
inline const QString contractorLabel = QStringLiteral("надпись подрядчика"); // the word for the contractor
inline const QString contractor = QStringLiteral("подрядчик");
inline const QString contractorPhone = QStringLiteral("телефон");
inline const QString contractorEmail = QStringLiteral("email");
inline const QString contractorAddress = QStringLiteral("адрес");
inline const QString customer = QStringLiteral("заказчик");
inline const QString object = QStringLiteral("объект");
inline const QString works = QStringLiteral("работа");
inline const QString number = QStringLiteral("номер");
inline const QString date = QStringLiteral("дата");
inline const QString currency = QStringLiteral("валюта"); // "руб.", "$", …
inline const QString worksTotal = QStringLiteral("итого работы");
inline const QString materialsTotal = QStringLiteral("итого материалы");
inline const QString subtotal = QStringLiteral("итого"); // the total before VAT added on top
// The statement of cost (КС-3) gives each amount three times: since the start of the work, since the
// start of the year, and (under the plain name) in the reporting period.
inline const QString subtotalSinceStart = QStringLiteral("итого с начала работ");
inline const QString subtotalSinceYear = QStringLiteral("итого с начала года");
inline const QString vat = QStringLiteral("ндс");
inline const QString grandTotal = QStringLiteral("всего");
inline const QString grandWords = QStringLiteral("сумма прописью");
inline const QString basis = QStringLiteral("основание"); // "Смета № 5, договор № 12"
// The parties of the act forms in one line each, the blank parts left out:
// "Кудрявцев О. Н., г. Ярославль, ул. Садовая, 14, тел. +7 999 214-57-38".
inline const QString customerLine = QStringLiteral("заказчик, адрес, телефон");
inline const QString contractorLine = QStringLiteral("подрядчик, адрес, телефон");
inline const QString siteLine = QStringLiteral("стройка, адрес");

// The list of estimate rows and its kinds.
inline const QString rowWork = QStringLiteral("строки");
inline const QString rowSection = QStringLiteral("раздел");
inline const QString rowSubsection = QStringLiteral("подраздел");
inline const QString rowSectionTotal = QStringLiteral("итог");
inline const QString rowSubsectionTotal = QStringLiteral("подытог");
// Its columns.
inline const QString colNumber = QStringLiteral("№");
inline const QString colPosition = QStringLiteral("позиция"); // the position in the estimate (acts)
inline const QString colCode = QStringLiteral("шифр");
inline const QString colName = QStringLiteral("наименование");
inline const QString colUnit = QStringLiteral("ед");
inline const QString colQuantity = QStringLiteral("количество");
inline const QString colPrice = QStringLiteral("цена");
inline const QString colSum = QStringLiteral("сумма");
// The statement's two further amounts of a line (КС-3).
inline const QString colSinceStart = QStringLiteral("с начала работ");
inline const QString colSinceYear = QStringLiteral("с начала года");

// The list of closing lines (works, materials, coefficient lines, VAT, grand total): columns
// colName and colSum.
inline const QString rowTotals = QStringLiteral("итоги");

} // namespace TemplateNames
