#include "EstimateOutput.h"

#include "office/InWord.h"
#include "office/OfficeEngine.h"
#include "office/OfficeTemplates.h"
#include "office/TemplateNames.h"
#include "storage/TextValues.h"

#include <QFileInfo>

namespace EstimateOutput {

namespace {

using namespace TemplateNames;

SheetValue money(Money v) {
    return SheetValue::ofMoney(v);
}

enum class Cell { Quantity, Price, Amount };

// A grid text as a typed value: a number when it reads as one, else the text itself. Unit prices keep
// every decimal they have (a price of 0,125 is not printed as 0,13); amounts are money.
SheetValue amountOrText(const QString &text, Cell kind) {
    const auto v = TextValues::parseAmount(text);
    if (!v)
        return SheetValue::ofText(text);
    switch (kind) {
    case Cell::Quantity:
        return SheetValue::ofNumber(v->toDouble(), TextValues::formatQuantity(*v));
    case Cell::Price:
        return SheetValue::ofNumber(v->toDouble(), TextValues::groupThousands(TextValues::formatPrice(*v)));
    case Cell::Amount:
        break;
    }
    const MoneyResult m = Money::of(*v);
    return m ? money(*m) : SheetValue::ofText(text);
}

SheetValue numberOrText(const QString &text) {
    bool ok = false;
    const int n = text.toInt(&ok);
    return ok ? SheetValue::ofNumber(n, text) : SheetValue::ofText(text);
}

SheetRow workRow(const EstimatePrint::Row &r) {
    SheetRow row;
    row.kind = rowWork;
    row.cells.insert(colNumber, numberOrText(r.number));
    row.cells.insert(colPosition, numberOrText(r.number));
    row.cells.insert(colCode, SheetValue::ofText(r.code));
    row.cells.insert(colName, SheetValue::ofText(r.name));
    row.cells.insert(colUnit, SheetValue::ofText(r.unit));
    row.cells.insert(colQuantity, amountOrText(r.quantity, Cell::Quantity));
    row.cells.insert(colPrice, amountOrText(r.price, Cell::Price));
    row.cells.insert(colSum, amountOrText(r.sum, Cell::Amount));
    return row;
}

SheetRow namedRow(const QString &kind, const QString &name, const SheetValue &sum = SheetValue::ofText({})) {
    SheetRow row;
    row.kind = kind;
    row.cells.insert(colName, SheetValue::ofText(name));
    row.cells.insert(colSum, sum);
    return row;
}

// Acts number their lines 1, 2, … through works and materials ("по порядку"), beside the position in
// the estimate; estimates number the materials on their own.
SheetList estimateRows(const EstimatePrint &p, bool runningNumbers) {
    SheetList list;
    list.kinds = {rowWork, rowSection, rowSubsection, rowSectionTotal, rowSubsectionTotal};
    list.headingKinds = {rowSection, rowSubsection}; // a section's title never ends a printed page
    list.fallback = {{rowSubsection, rowSection},
                     {rowSubsectionTotal, rowSectionTotal},
                     {rowSection, rowWork},
                     {rowSectionTotal, rowWork}};
    for (const EstimatePrint::Row &r : p.rows) {
        switch (r.kind) {
        case EstimatePrint::Kind::Work:
            list.rows << workRow(r);
            break;
        case EstimatePrint::Kind::Section:
            list.rows << namedRow(rowSection, r.name);
            break;
        case EstimatePrint::Kind::Subsection:
            list.rows << namedRow(rowSubsection, r.name);
            break;
        case EstimatePrint::Kind::SectionTotal:
            list.rows << namedRow(rowSectionTotal, r.name, amountOrText(r.sum, Cell::Amount));
            break;
        case EstimatePrint::Kind::SubsectionTotal:
            list.rows << namedRow(rowSubsectionTotal, r.name, amountOrText(r.sum, Cell::Amount));
            break;
        }
    }
    if (!p.materialRows.isEmpty()) {
        list.rows << namedRow(rowSection, QStringLiteral("МАТЕРИАЛЫ"));
        for (const EstimatePrint::Row &m : p.materialRows)
            list.rows << workRow(m);
        list.rows << namedRow(rowSectionTotal, QStringLiteral("Итого по материалам"), money(p.materialsRaw));
    }
    // An act that closes only some rows of the estimate numbers its own lines all the same.
    if (runningNumbers) {
        int n = 0;
        for (SheetRow &r : list.rows)
            if (r.kind == rowWork) {
                ++n;
                r.cells.insert(colNumber, SheetValue::ofNumber(n, QString::number(n)));
            }
    }
    return list;
}

SheetList closingLines(const EstimatePrint &p, Form form) {
    SheetList list;
    list.kinds = {rowTotals};
    auto add = [&list](const QString &name, Money amount) {
        list.rows << namedRow(rowTotals, name, money(amount));
    };
    const bool detailed = !p.materialRows.isEmpty() || !p.koefLines.isEmpty() || !p.vat.isZero();
    if (detailed)
        add(QStringLiteral("Итого по работам"), p.worksRaw);
    for (const EstimatePrint::Line &line : p.koefLines)
        add(line.name, line.amount);
    if (!p.materialRows.isEmpty())
        add(QStringLiteral("Итого по материалам"), p.materialsRaw);
    if (!p.vat.isZero()) {
        const QString vat = p.vatName.isEmpty() ? QStringLiteral("НДС") : p.vatName;
        add(p.vatIncluded ? QStringLiteral("В том числе %1").arg(vat) : vat, p.vat);
    }
    const bool act = form == Form::Act || form == Form::Ks2;
    add(act ? QStringLiteral("Всего по акту") : QStringLiteral("ВСЕГО по смете"), p.grand);
    return list;
}

QString folded(const QString &s) {
    return s.simplified().toUpper();
}

} // namespace

Sheet sheetFor(const QString &documentTitle, const ViewTitles &titles) {
    const QString t = folded(documentTitle);
    if (t == QStringLiteral("ЛОКАЛЬНЫЙ РЕСУРСНЫЙ СМЕТНЫЙ РАСЧЕТ"))
        return {Form::Local, QStringLiteral("Шаблон Локальная.xls"), titles.local, titles.afterLocal};
    if (t == QStringLiteral("ЛОКАЛЬНЫЙ СМЕТНЫЙ РАСЧЕТ"))
        return {Form::Local, QStringLiteral("Шаблон Локальная.xls"), documentTitle.simplified(),
                QStringLiteral("(ЛОКАЛЬНАЯ СМЕТА)")};
    if (t == QStringLiteral("СМЕТА"))
        return {Form::Estimate, QStringLiteral("Шаблон Смета.xls"), titles.smetaName, titles.smeta};
    if (t == QStringLiteral("КОММЕРЧЕСКОЕ ПРЕДЛОЖЕНИЕ") || t == QStringLiteral("КП"))
        return {Form::Offer, QStringLiteral("Шаблон КП.xls"), QStringLiteral("КОММЕРЧЕСКОЕ ПРЕДЛОЖЕНИЕ"),
                QString()};
    if (t == QStringLiteral("СТРОЙКООПЕРАТИВ"))
        return {Form::Cooperative, QStringLiteral("Шаблон Стройкооператив.xls"), titles.smetaName,
                titles.smeta};
    if (t == QStringLiteral("АКТ"))
        return {Form::Act, QStringLiteral("Шаблон Смета.xls"), titles.aktName, titles.akt};
    if (t == QStringLiteral("АКТ КС-2") || t == QStringLiteral("КС-2"))
        return {Form::Ks2, QStringLiteral("Шаблон КС-2.xls"), QStringLiteral("АКТ"),
                QStringLiteral("О ПРИЕМКЕ ВЫПОЛНЕННЫХ РАБОТ")};
    if (t == QStringLiteral("АКТ КС-3") || t == QStringLiteral("КС-3"))
        return {Form::Ks3, QStringLiteral("Шаблон КС-3.xls"), QStringLiteral("СПРАВКА"),
                QStringLiteral("О СТОИМОСТИ ВЫПОЛНЕННЫХ РАБОТ И ЗАТРАТ")};
    const QString own = documentTitle.simplified();
    return {Form::Estimate, QStringLiteral("Шаблон Смета.xls"), own.isEmpty() ? titles.smetaName : own,
            titles.smeta};
}

QString currencySign(int currency) {
    static const char *signs[] = {"руб.", "$", "грн.", "Br", "тг."};
    return QString::fromUtf8(signs[currency >= 0 && currency < 5 ? currency : 0]);
}

SheetData sheetData(const EstimatePrint &p, const Sheet &sheet, const ViewTitles &titles) {
    SheetData d;
    auto text = [&d](const QString &name, const QString &value) {
        d.values.insert(name, SheetValue::ofText(value));
    };
    text(title, sheet.title);
    text(subtitle, sheet.subtitle);
    text(contractorLabel, titles.podryad);
    text(contractor, p.contractor);
    text(contractorPhone, p.contractorPhone);
    text(contractorEmail, p.contractorEmail);
    text(contractorAddress, p.contractorAddress);
    text(customer, p.customer);
    text(object, p.object);
    text(works, p.nameOfWorks);
    text(number, p.number);
    text(date, p.date.isValid() ? TextValues::shortDate(p.date) : QString());
    text(currency, currencySign(p.currency));
    text(basis, EstimatePrintBuilder::basis(p));
    text(grandWords, TInWord::amount(p.grand, p.currency));
    d.values.insert(worksTotal, money(p.worksTotal));
    d.values.insert(materialsTotal, money(p.materialsTotal));
    d.values.insert(vat, money(p.vat));
    d.values.insert(grandTotal, money(p.grand));
    d.values.insert(subtotal, money((p.worksTotal + p.materialsTotal).value()));
    // The act's own fields under their names; a stored contract value prints as money.
    for (auto it = p.act.cbegin(); it != p.act.cend(); ++it) {
        if (it.key() == QLatin1String("EditSumSmet"))
            d.values.insert(it.key(), amountOrText(it.value(), Cell::Amount));
        else
            text(it.key(), it.value());
    }
    // The parties in one line each, blank parts left out.
    auto joined = [](const QStringList &parts) {
        QStringList kept;
        for (const QString &part : parts)
            if (!part.trimmed().isEmpty() && part.trimmed() != QStringLiteral("тел."))
                kept << part.trimmed();
        return kept.join(QStringLiteral(", "));
    };
    auto act = [&p](const char *field, const QString &fallback = QString()) {
        const QString v = p.act.value(QString::fromLatin1(field)).trimmed();
        return v.isEmpty() ? fallback : v;
    };
    text(customerLine, joined({act("ComboBoxZakaz", p.customer), act("ZEditAddress"),
                               QStringLiteral("тел. ") + act("ZEditPhone")}));
    text(contractorLine,
         joined({act("ComboBoxPodryad", p.contractor), act("PEditAddress", p.contractorAddress),
                 QStringLiteral("тел. ") + act("PEditPhone", p.contractorPhone)}));
    text(siteLine, joined({act("EditNameWork", p.nameOfWorks), act("AddressWork")}));
    // The contract value defaults to the estimate's total.
    if (act("EditSumSmet").isEmpty())
        d.values.insert(QStringLiteral("EditSumSmet"), money(p.grand));
    // Act fields left blank take what the estimate's header says.
    const QPair<QString, QString> fromHeader[] = {{QStringLiteral("ComboBoxZakaz"), p.customer},
                                                  {QStringLiteral("ComboBoxPodryad"), p.contractor},
                                                  {QStringLiteral("ComboBoxObject"), p.object},
                                                  {QStringLiteral("EditNameWork"), p.nameOfWorks},
                                                  {QStringLiteral("PEditAddress"), p.contractorAddress},
                                                  {QStringLiteral("PEditPhone"), p.contractorPhone},
                                                  {QStringLiteral("PEditFax"), p.contractorEmail}};
    for (const auto &f : fromHeader) {
        if (p.act.value(f.first).trimmed().isEmpty() && !f.second.isEmpty())
            text(f.first, f.second);
    }
    if (sheet.form == Form::Ks3) {
        d.lists << SheetList() << SheetList();
        putStatement(d, statement(p));
    } else {
        d.lists << estimateRows(p, sheet.form == Form::Ks2);
        d.lists << closingLines(p, sheet.form);
    }
    // The grand totals, the amount in words and the signatures print on one page.
    d.keepTogether = true;
    d.closingList = 1;
    return d;
}

QVector<EstimatePrint::Line> statementLines(const EstimatePrint &p) {
    QVector<EstimatePrint::Line> lines;
    QString section;
    for (const EstimatePrint::Row &r : p.rows) {
        if (r.kind == EstimatePrint::Kind::Section)
            section = r.name;
        else if (r.kind == EstimatePrint::Kind::SectionTotal)
            lines.push_back({section.isEmpty() ? r.name : section, Money::parse(r.sum).valueOr(Money())});
    }
    if (lines.isEmpty())
        lines.push_back(
            {p.nameOfWorks.isEmpty() ? QStringLiteral("Выполненные работы") : p.nameOfWorks, p.worksRaw});
    if (!p.materialsRaw.isZero())
        lines.push_back({QStringLiteral("Материалы"), p.materialsRaw});
    // Within the range: each total is, and the printed document was refused otherwise.
    const Money added = (p.worksTotal + p.materialsTotal - p.worksRaw - p.materialsRaw).value();
    if (!added.isZero())
        lines.push_back({QStringLiteral("Начисления по коэффициентам"), added});
    return lines;
}

Statement statement(const EstimatePrint &p) {
    auto same = [](const QString &name, Money amount) { return StatementLine{name, amount, amount, amount}; };
    Statement s;
    for (const EstimatePrint::Line &line : statementLines(p))
        s.lines.push_back(same(line.name, line.amount));
    const Money total = (p.worksTotal + p.materialsTotal).value();
    s.closing = {same(QStringLiteral("Итого"), total), same(QStringLiteral("Сумма НДС"), p.vat),
                 same(QStringLiteral("Всего с учетом НДС"), p.grand)};
    return s;
}

void putStatement(SheetData &d, const Statement &s) {
    auto cells = [](SheetRow &row, const StatementLine &line) {
        row.cells.insert(colName, SheetValue::ofText(line.name));
        row.cells.insert(colSinceStart, money(line.sinceStart));
        row.cells.insert(colSinceYear, money(line.sinceYear));
        row.cells.insert(colSum, money(line.period));
    };
    SheetList lines;
    lines.kinds = {rowWork};
    for (const StatementLine &line : s.lines) {
        SheetRow row;
        row.kind = rowWork;
        const int n = lines.rows.size() + 1;
        row.cells.insert(colNumber, SheetValue::ofNumber(n, QString::number(n)));
        row.cells.insert(colCode, SheetValue::ofText(QString()));
        cells(row, line);
        lines.rows << row;
    }
    SheetList closing;
    closing.kinds = {rowTotals};
    for (const StatementLine &line : s.closing) {
        SheetRow row;
        row.kind = rowTotals;
        cells(row, line);
        closing.rows << row;
    }
    while (d.lists.size() < 2)
        d.lists << SheetList();
    d.lists[0] = lines;
    d.lists[1] = closing;
    // "Всего работ и затрат": the first closing line.
    const StatementLine total = s.closing.value(0);
    d.values.insert(subtotalSinceStart, money(total.sinceStart));
    d.values.insert(subtotalSinceYear, money(total.sinceYear));
    d.values.insert(subtotal, money(total.period));
}

QString leftOutWarning(const EstimatePrint &print) {
    if (print.leftOut.isEmpty())
        return QString();
    return QStringLiteral("Суммы этих строк не вошли в документ и в его итоги, пока их ячейки не "
                          "исправлены:\n") +
           print.leftOut.join(u'\n');
}

int timeBudgetMs(const EstimatePrint &print) {
    return SheetTemplate::timeBudgetMs(print.rows.size() + print.materialRows.size() +
                                       print.koefLines.size());
}

bool produce(OfficeEngine &engine, const QString &dataFolder, const EstimatePrint &print,
             const ViewTitles &titles, const QVector<TemplateFile::Output> &outputs, QString *error,
             const SheetTemplate::Progress &progress, std::shared_ptr<const std::atomic<bool>> cancel) {
    if (!print.refusal.isEmpty()) {
        if (error)
            *error = print.refusal;
        return false;
    }
    const Sheet sheet = sheetFor(print.title, titles);
    engine.setBudget(timeBudgetMs(print), std::move(cancel));
    const bool ok = SheetTemplate::fill(engine, OfficeTemplates::path(dataFolder, sheet.templateFile),
                                        sheetData(print, sheet, titles), outputs, error, progress);
    engine.clearBudget();
    return ok;
}

QString outputBaseName(const QString &documentPath, const QString &documentTitle) {
    QString base = QFileInfo(documentPath).completeBaseName().trimmed();
    if (base.isEmpty())
        base = documentTitle.simplified();
    if (base.isEmpty())
        base = QStringLiteral("Смета");
    // Characters a file name cannot hold on the user's systems.
    static const QString forbidden = QStringLiteral("\\/:*?\"<>|");
    for (QChar &c : base)
        if (forbidden.contains(c))
            c = u'_';
    return base;
}

} // namespace EstimateOutput
