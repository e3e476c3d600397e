#pragma once
// The estimate's printed forms: the document title chosen in ComboBoxShablon picks the template and
// the sheet's headings; the estimate fills its header, its rows with sections, subsections and their
// totals, the materials, the coefficient lines, the totals and the amount in words.

#include "estimate/EstimatePrint.h"
#include "estimate/ViewTitles.h"
#include "office/SheetTemplate.h"
#include "office/TemplateFile.h"

#include <QString>
#include <atomic>
#include <memory>

class OfficeEngine;

namespace EstimateOutput {

enum class Form { Estimate, Offer, Local, Cooperative, Act, Ks2, Ks3 };

struct Sheet {
    Form form = Form::Estimate;
    QString templateFile; // in Sh
    QString title;        // [заголовок]
    QString subtitle;     // [подзаголовок]
};

// The form for a document title: the two local estimate titles, "СМЕТА", "Коммерческое предложение",
// "Стройкооператив", "АКТ", "АКТ КС-2", "АКТ КС-3"; any other title prints as an estimate headed by it.
Sheet sheetFor(const QString &documentTitle, const ViewTitles &titles);

// "руб.", "$", "грн.", "Br", "тг." for the EditValuta index.
QString currencySign(int currency);

// Everything the template of the sheet receives.
SheetData sheetData(const EstimatePrint &print, const Sheet &sheet, const ViewTitles &titles);

// The statement of cost (КС-3): one line per section of the estimate with the section's total (or one
// line for all the works), the materials and what the coefficient lines added; then the closing lines
// "Итого", "Сумма НДС", "Всего с учетом НДС". Each amount is given since the start of the work, since
// the start of the year and for the reporting period.
struct StatementLine {
    QString name;
    Money sinceStart, sinceYear, period;
};
struct Statement {
    QVector<StatementLine> lines;
    QVector<StatementLine> closing;
};
// The lines of one estimate (or act) with their amounts.
QVector<EstimatePrint::Line> statementLines(const EstimatePrint &print);
// A statement of one act covering the whole estimate: the three amounts of a line are the same.
Statement statement(const EstimatePrint &print);
// Puts a statement into the sheet's data: its two lists (lines, closing lines) and the total items.
void putStatement(SheetData &data, const Statement &statement);

// The rows whose amounts were left out (cells to be fixed), as a warning for the user after output;
// empty when there are none.
QString leftOutWarning(const EstimatePrint &print);

// The time a whole document may take in the engine: a few minutes, more for a long estimate.
int timeBudgetMs(const EstimatePrint &print);

// Fills the sheet's template from <dataFolder>/Sh and saves the outputs (".xls", ".pdf"). A print whose
// totals were refused is not produced (error says why). The whole document has the time of
// timeBudgetMs; `cancel` (may be null), set from another thread, stops it.
bool produce(OfficeEngine &engine, const QString &dataFolder, const EstimatePrint &print,
             const ViewTitles &titles, const QVector<TemplateFile::Output> &outputs, QString *error,
             const SheetTemplate::Progress &progress = {},
             std::shared_ptr<const std::atomic<bool>> cancel = {});

// The name outputs take: the document's file name without its extension ("Смета Иванов.sim" gives
// "Смета Иванов", as the companion ".xls" of the document is named), else the document title.
QString outputBaseName(const QString &documentPath, const QString &documentTitle);

} // namespace EstimateOutput
