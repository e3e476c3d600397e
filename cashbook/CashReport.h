#pragma once
// The cash book on paper: the records as the filters show them, with their receipt lines when asked,
// under a title naming the customer, the object and the period, and closed by the totals row and the
// summary (expenses, remainder, income, days, balance, sold materials). It is written as a flat
// OpenDocument spreadsheet and turned by the office engine into the file the user asked for (".xlsx"
// for "Экспорт в Excel", ".pdf" for "Экспорт в PDF", preview and printing).

#include "CashFilter.h"
#include "CashRecord.h"
#include "CashStore.h"
#include "CashTotals.h"
#include "office/TemplateFile.h"

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

class CashBook;
class OfficeEngine;

struct CashReport {
    QString customer, object;
    QString period;   // "Март 2024", "с 01.03.2024 по 31.03.2024", "все записи"
    QString category; // the category filter's caption when one is chosen
    bool withReceipts = false;
    struct Line {
        CashEntry entry;
        std::vector<CheckLine> receipts;
    };
    std::vector<Line> lines;
    CashTotals totals;
    MoneyResult balance = Money();
    std::optional<MoneyResult> sold;

    // The customer and object columns are printed when the title does not name both.
    bool namesColumns() const { return customer.isEmpty() || object.isEmpty(); }
};

namespace CashReportOutput {

// The report of what the book shows now; the receipt lines read when asked. False with *error.
bool make(const CashBook &book, bool withReceipts, CashReport *report, QString *error);
// "Март 2024", "2024 год", "с 01.03.2024 по 31.03.2024" (both when both filters hold), "все записи".
QString periodText(const CashFilter &filter);
// A receipt line as one text: "Цемент М500: 10 меш. × 450,00 = 4500,00".
QString receiptText(const CheckLine &line);

// The sheet as a flat OpenDocument spreadsheet (landscape A4, the column titles repeated on every page).
QByteArray flatOds(const CashReport &report);

using Progress = std::function<void(int)>; // 0..100
// Writes the report into every output through the engine (each output written whole or not at all).
bool produce(OfficeEngine &engine, const CashReport &report, const QVector<TemplateFile::Output> &outputs,
             const QString &scratchDir, QString *error, const Progress &progress = {});

} // namespace CashReportOutput
