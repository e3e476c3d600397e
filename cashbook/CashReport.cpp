#include "CashReport.h"

#include "CashBook.h"
#include "CashModels.h"
#include "office/FlatOds.h"
#include "office/OfficeEngine.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QScopeGuard>
#include <QUuid>
#include <QXmlStreamWriter>

namespace CashReportOutput {

namespace {

using FlatOds::kFo;
using FlatOds::kNumber;
using FlatOds::kOffice;
using FlatOds::kStyle;
using FlatOds::kTable;
using FlatOds::kText;

void advance(const Progress &p, int value) {
    if (p)
        p(value);
}

// The sheet's writer: styles first, then rows of cells.
class Sheet {
public:
    explicit Sheet(QByteArray *out) : x(out) {}

    void begin(const QList<double> &widthsCm) {
        FlatOds::startSpreadsheet(x);
        x.writeStartElement(kOffice, QStringLiteral("automatic-styles"));
        pageLayout();
        numberStyle();
        for (int i = 0; i < widthsCm.size(); ++i)
            columnStyle(QStringLiteral("co%1").arg(i), widthsCm[i]);
        cellStyle(QStringLiteral("title"), true, false, false, false, QStringLiteral("14pt"));
        cellStyle(QStringLiteral("sub"), false, false, false, false, QStringLiteral("11pt"));
        cellStyle(QStringLiteral("head"), true, false, true, false, QStringLiteral("10pt"), true);
        cellStyle(QStringLiteral("txt"), false, false, true, false, QStringLiteral("10pt"));
        cellStyle(QStringLiteral("num"), false, false, true, true, QStringLiteral("10pt"));
        cellStyle(QStringLiteral("tot"), true, false, true, false, QStringLiteral("10pt"));
        cellStyle(QStringLiteral("totnum"), true, false, true, true, QStringLiteral("10pt"));
        cellStyle(QStringLiteral("rcp"), false, true, true, false, QStringLiteral("9pt"));
        cellStyle(QStringLiteral("lbl"), false, false, false, false, QStringLiteral("10pt"));
        cellStyle(QStringLiteral("lblnum"), true, false, false, true, QStringLiteral("10pt"));
        x.writeEndElement();
        x.writeStartElement(kOffice, QStringLiteral("master-styles"));
        x.writeStartElement(kStyle, QStringLiteral("master-page"));
        x.writeAttribute(kStyle, QStringLiteral("name"), QStringLiteral("Default"));
        x.writeAttribute(kStyle, QStringLiteral("page-layout-name"), QStringLiteral("pm1"));
        x.writeEndElement();
        x.writeEndElement();
        x.writeStartElement(kOffice, QStringLiteral("body"));
        x.writeStartElement(kOffice, QStringLiteral("spreadsheet"));
        x.writeStartElement(kTable, QStringLiteral("table"));
        x.writeAttribute(kTable, QStringLiteral("name"), QStringLiteral("Касса"));
        for (int i = 0; i < widthsCm.size(); ++i) {
            x.writeEmptyElement(kTable, QStringLiteral("table-column"));
            x.writeAttribute(kTable, QStringLiteral("style-name"), QStringLiteral("co%1").arg(i));
        }
        m_columns = widthsCm.size();
    }
    void end() { x.writeEndDocument(); }

    void beginRow() { x.writeStartElement(kTable, QStringLiteral("table-row")); }
    void endRow() { x.writeEndElement(); }
    void beginHeader() { x.writeStartElement(kTable, QStringLiteral("table-header-rows")); }
    void endHeader() { x.writeEndElement(); }

    // A text cell spanning `span` columns.
    void text(const QString &value, const QString &style, int span = 1) {
        x.writeStartElement(kTable, QStringLiteral("table-cell"));
        x.writeAttribute(kTable, QStringLiteral("style-name"), style);
        if (span > 1)
            x.writeAttribute(kTable, QStringLiteral("number-columns-spanned"), QString::number(span));
        if (!value.isEmpty()) {
            x.writeAttribute(kOffice, QStringLiteral("value-type"), QStringLiteral("string"));
            x.writeTextElement(kText, QStringLiteral("p"), value);
        }
        x.writeEndElement();
        for (int i = 1; i < span; ++i)
            x.writeEmptyElement(kTable, QStringLiteral("covered-table-cell"));
    }
    // An amount the spreadsheet can count with; empty when there is none.
    void money(const std::optional<Money> &value, const QString &style) {
        x.writeStartElement(kTable, QStringLiteral("table-cell"));
        x.writeAttribute(kTable, QStringLiteral("style-name"), style);
        if (value) {
            x.writeAttribute(kOffice, QStringLiteral("value-type"), QStringLiteral("float"));
            x.writeAttribute(kOffice, QStringLiteral("value"),
                             value->text().replace(QLatin1Char(','), QLatin1Char('.')));
            x.writeTextElement(kText, QStringLiteral("p"), value->grouped());
        }
        x.writeEndElement();
    }
    // A whole number (a count of days), right-aligned as the spreadsheet aligns numbers.
    void count(qint64 value, const QString &style) {
        x.writeStartElement(kTable, QStringLiteral("table-cell"));
        x.writeAttribute(kTable, QStringLiteral("style-name"), style);
        x.writeAttribute(kOffice, QStringLiteral("value-type"), QStringLiteral("float"));
        x.writeAttribute(kOffice, QStringLiteral("value"), QString::number(value));
        x.writeTextElement(kText, QStringLiteral("p"), QString::number(value));
        x.writeEndElement();
    }
    int columns() const { return m_columns; }

private:
    void pageLayout() {
        x.writeStartElement(kStyle, QStringLiteral("page-layout"));
        x.writeAttribute(kStyle, QStringLiteral("name"), QStringLiteral("pm1"));
        x.writeEmptyElement(kStyle, QStringLiteral("page-layout-properties"));
        x.writeAttribute(kFo, QStringLiteral("page-width"), QStringLiteral("29.7cm"));
        x.writeAttribute(kFo, QStringLiteral("page-height"), QStringLiteral("21cm"));
        x.writeAttribute(kStyle, QStringLiteral("print-orientation"), QStringLiteral("landscape"));
        for (const char *side : {"margin-top", "margin-bottom", "margin-left", "margin-right"})
            x.writeAttribute(kFo, QLatin1String(side), QStringLiteral("1cm"));
        x.writeEndElement();
    }
    void numberStyle() {
        x.writeStartElement(kNumber, QStringLiteral("number-style"));
        x.writeAttribute(kStyle, QStringLiteral("name"), QStringLiteral("N2"));
        x.writeEmptyElement(kNumber, QStringLiteral("number"));
        x.writeAttribute(kNumber, QStringLiteral("decimal-places"), QStringLiteral("2"));
        x.writeAttribute(kNumber, QStringLiteral("min-decimal-places"), QStringLiteral("2"));
        x.writeAttribute(kNumber, QStringLiteral("min-integer-digits"), QStringLiteral("1"));
        x.writeAttribute(kNumber, QStringLiteral("grouping"), QStringLiteral("true"));
        x.writeEndElement();
    }
    void columnStyle(const QString &name, double widthCm) {
        x.writeStartElement(kStyle, QStringLiteral("style"));
        x.writeAttribute(kStyle, QStringLiteral("name"), name);
        x.writeAttribute(kStyle, QStringLiteral("family"), QStringLiteral("table-column"));
        x.writeEmptyElement(kStyle, QStringLiteral("table-column-properties"));
        x.writeAttribute(kStyle, QStringLiteral("column-width"),
                         QStringLiteral("%1cm").arg(widthCm, 0, 'f', 2));
        x.writeEndElement();
    }
    void cellStyle(const QString &name, bool bold, bool italic, bool border, bool number, const QString &size,
                   bool shaded = false) {
        x.writeStartElement(kStyle, QStringLiteral("style"));
        x.writeAttribute(kStyle, QStringLiteral("name"), name);
        x.writeAttribute(kStyle, QStringLiteral("family"), QStringLiteral("table-cell"));
        if (number)
            x.writeAttribute(kStyle, QStringLiteral("data-style-name"), QStringLiteral("N2"));
        x.writeEmptyElement(kStyle, QStringLiteral("table-cell-properties"));
        if (border)
            x.writeAttribute(kFo, QStringLiteral("border"), QStringLiteral("0.5pt solid #000000"));
        if (shaded)
            x.writeAttribute(kFo, QStringLiteral("background-color"), QStringLiteral("#e6e6e6"));
        x.writeAttribute(kFo, QStringLiteral("wrap-option"), QStringLiteral("wrap"));
        x.writeAttribute(kStyle, QStringLiteral("vertical-align"), QStringLiteral("middle"));
        x.writeEmptyElement(kStyle, QStringLiteral("text-properties"));
        x.writeAttribute(kStyle, QStringLiteral("font-name"), QStringLiteral("Liberation Sans"));
        x.writeAttribute(kFo, QStringLiteral("font-size"), size);
        if (bold)
            x.writeAttribute(kFo, QStringLiteral("font-weight"), QStringLiteral("bold"));
        if (italic)
            x.writeAttribute(kFo, QStringLiteral("font-style"), QStringLiteral("italic"));
        x.writeEndElement();
    }

    QXmlStreamWriter x;
    int m_columns = 0;
};

std::optional<Money> present(const MoneyResult &m) {
    return m.ok() ? std::optional<Money>(*m) : std::nullopt;
}

} // namespace

QString periodText(const CashFilter &f) {
    QStringList parts;
    if (f.month > 0 && !f.year.isEmpty())
        parts << CashMonths::name(f.month) + QLatin1Char(' ') + f.year;
    else if (f.month > 0)
        parts << CashMonths::name(f.month);
    else if (!f.year.isEmpty())
        parts << f.year + QStringLiteral(" год");
    if (f.period)
        parts
            << QStringLiteral("с %1 по %2").arg(TextValues::shortDate(f.begin), TextValues::shortDate(f.end));
    return parts.isEmpty() ? QStringLiteral("все записи") : parts.join(QStringLiteral(", "));
}

QString receiptText(const CheckLine &l) {
    QString s = l.name.trimmed().isEmpty() ? QStringLiteral("(без наименования)") : l.name.trimmed();
    QStringList amount;
    if (!l.kolvo.trimmed().isEmpty())
        amount << (l.edizm.trimmed().isEmpty() ? l.kolvo.trimmed()
                                               : l.kolvo.trimmed() + QLatin1Char(' ') + l.edizm.trimmed());
    if (!l.price.trimmed().isEmpty())
        amount << l.price.trimmed();
    if (!amount.isEmpty())
        s += QStringLiteral(": ") + amount.join(QStringLiteral(" × "));
    if (!l.sum.trimmed().isEmpty())
        s += QStringLiteral(" = ") + l.sum.trimmed();
    return s;
}

bool make(const CashBook &book, bool withReceipts, CashReport *r, QString *error) {
    const CashFilter &f = book.filter();
    *r = CashReport();
    r->customer = f.customer;
    r->object = f.object;
    r->period = periodText(f);
    if (f.category > 0)
        r->category = CashCategory::captions()[f.category - 1];
    r->withReceipts = withReceipts;
    r->totals = book.totals();
    r->balance = book.balance();
    r->sold = book.soldMaterials();
    const CashGridModel &rows = *book.records();
    r->lines.reserve(static_cast<size_t>(rows.rowCount()));
    QStringList keys;
    for (int i = 0; i < rows.rowCount(); ++i) {
        const CashEntry &entry = rows.entry(i);
        r->lines.push_back({entry, {}});
        if (withReceipts && !entry.cheki.isEmpty())
            keys << entry.cheki;
    }
    if (keys.isEmpty())
        return true;
    std::vector<CheckLine> lines;
    if (!CashStore::linesOf(book.book(), keys, &lines, error))
        return false;
    QHash<QString, std::vector<CheckLine>> byKey;
    for (CheckLine &l : lines)
        byKey[l.val].push_back(std::move(l));
    for (CashReport::Line &line : r->lines)
        if (!line.entry.cheki.isEmpty())
            line.receipts = byKey.value(line.entry.cheki);
    return true;
}

QByteArray flatOds(const CashReport &r) {
    // Landscape A4 within its margins holds 27,7 cm; the columns take 26: the date, six amounts, the
    // note and, when the title does not name them, the customer and the object.
    QList<double> widths{2.2};
    for (int i = 0; i < CashCategory::kCount; ++i)
        widths << 2.3;
    if (r.namesColumns())
        widths << 5.0 << 2.5 << 2.5;
    else
        widths << 10.0;
    QByteArray out;
    out.reserve(static_cast<int>(r.lines.size()) * 900 + 8192);
    Sheet s(&out);
    s.begin(widths);
    const int all = s.columns();
    auto line = [&s](const QString &text, const QString &style, int span) {
        s.beginRow();
        s.text(text, style, span);
        s.endRow();
    };
    line(QStringLiteral("Кассовая книга"), QStringLiteral("title"), all);
    if (!r.customer.isEmpty())
        line(QStringLiteral("Заказчик: ") + r.customer, QStringLiteral("sub"), all);
    if (!r.object.isEmpty())
        line(QStringLiteral("Объект: ") + r.object, QStringLiteral("sub"), all);
    line(QStringLiteral("Период: ") + r.period, QStringLiteral("sub"), all);
    if (!r.category.isEmpty())
        line(QStringLiteral("Категория: ") + r.category, QStringLiteral("sub"), all);
    line(QString(), QStringLiteral("sub"), all);

    s.beginHeader();
    s.beginRow();
    s.text(QStringLiteral("Дата"), QStringLiteral("head"));
    for (const QString &c : CashCategory::captions())
        s.text(c, QStringLiteral("head"));
    s.text(QStringLiteral("Примечание"), QStringLiteral("head"));
    if (r.namesColumns()) {
        s.text(QStringLiteral("Заказчик"), QStringLiteral("head"));
        s.text(QStringLiteral("Объект"), QStringLiteral("head"));
    }
    s.endRow();
    s.endHeader();

    for (const CashReport::Line &l : r.lines) {
        CashAmounts amounts;
        amounts.readAll(l.entry);
        s.beginRow();
        s.text(l.entry.date, QStringLiteral("txt"));
        for (int i = 0; i < CashCategory::kCount; ++i) {
            if (const auto m = amounts.money(i))
                s.money(m, QStringLiteral("num"));
            else
                s.text(l.entry.amounts[i], QStringLiteral("num"));
        }
        s.text(l.entry.note, QStringLiteral("txt"));
        if (r.namesColumns()) {
            s.text(l.entry.customer, QStringLiteral("txt"));
            s.text(l.entry.object, QStringLiteral("txt"));
        }
        s.endRow();
        for (const CheckLine &c : l.receipts) {
            s.beginRow();
            s.text(c.date, QStringLiteral("rcp"));
            s.text(QStringLiteral("    ") + receiptText(c), QStringLiteral("rcp"), all - 1);
            s.endRow();
        }
    }

    s.beginRow();
    s.text(QStringLiteral("Итого"), QStringLiteral("tot"));
    for (const MoneyResult &m : r.totals.sums)
        s.money(present(m), QStringLiteral("totnum"));
    s.text(QString(), QStringLiteral("tot"), all - 1 - CashCategory::kCount);
    s.endRow();
    line(QString(), QStringLiteral("lbl"), all);
    auto summary = [&s](const QString &label, const std::optional<Money> &value) {
        s.beginRow();
        s.text(label, QStringLiteral("lbl"), 3);
        s.money(value, QStringLiteral("lblnum"));
        s.endRow();
    };
    summary(QStringLiteral("Расходы"), present(r.totals.expenses));
    summary(QStringLiteral("Остаток"), present(r.totals.remainder));
    summary(QStringLiteral("Доход"), present(r.totals.income));
    s.beginRow();
    s.text(QStringLiteral("Период (дн.)"), QStringLiteral("lbl"), 3);
    if (r.totals.days)
        s.count(*r.totals.days, QStringLiteral("lbl"));
    s.endRow();
    summary(QStringLiteral("Баланс"), present(r.balance));
    if (r.sold && r.sold->ok() && !(*r.sold)->isZero())
        summary(QStringLiteral("Доход от продажи материалов"), present(*r.sold));
    s.end();
    return out;
}

bool produce(OfficeEngine &engine, const CashReport &report, const QVector<TemplateFile::Output> &outputs,
             const QString &scratchDir, QString *error, const Progress &progress) {
    advance(progress, 0);
    QDir().mkpath(scratchDir);
    const QString ods =
        QDir(scratchDir)
            .filePath(
                QStringLiteral("cashbook-%1.fods").arg(QUuid::createUuid().toString(QUuid::WithoutBraces)));
    auto removeOds = qScopeGuard([&ods] { QFile::remove(ods); });
    {
        QFile f(ods);
        if (!f.open(QIODevice::WriteOnly) || f.write(flatOds(report)) < 0 || !f.flush()) {
            *error = QStringLiteral("Не удалось записать временный файл в %1.")
                         .arg(QDir::toNativeSeparators(scratchDir));
            return false;
        }
    }
    advance(progress, 15);
    if (!engine.load(ods)) {
        *error = QStringLiteral("Кассовая книга не передана в таблицу: %1").arg(engine.error());
        return false;
    }
    auto closeEngine = qScopeGuard([&engine] { engine.close(); });
    advance(progress, 60);
    if (!TemplateFile::save(engine, outputs, error))
        return false;
    advance(progress, 100);
    return true;
}

} // namespace CashReportOutput
