#include "EstimatePrint.h"

#include "estimate/ActFields.h"
#include "estimate/Coefficients.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateMaterials.h"

#include <QSqlQuery>

namespace EstimatePrintBuilder {

namespace {

EstimatePrint::Kind kindOf(RowKind k) {
    switch (k) {
    case RowKind::SectionStart:
        return EstimatePrint::Kind::Section;
    case RowKind::SubsectionStart:
        return EstimatePrint::Kind::Subsection;
    case RowKind::SectionTotal:
        return EstimatePrint::Kind::SectionTotal;
    case RowKind::SubsectionTotal:
        return EstimatePrint::Kind::SubsectionTotal;
    case RowKind::Work:
        break;
    }
    return EstimatePrint::Kind::Work;
}

// "Накладные расходы, %" with 12 reads "Накладные расходы 12 %"; "Коэффициент удорожания" with 1,2
// reads "Коэффициент удорожания × 1,2".
QString lineName(const KoefLine &line) {
    QString title = line.title.trimmed();
    const QString value = line.value.trimmed();
    if (value.isEmpty())
        return title;
    if (!line.percent())
        return QStringLiteral("%1 × %2").arg(title, value);
    if (title.endsWith(u'%')) {
        title.chop(1);
        while (title.endsWith(u' ') || title.endsWith(u','))
            title.chop(1);
    }
    return QStringLiteral("%1 %2 %").arg(title, value);
}

} // namespace

void fillBody(EstimatePrint &print, const EstimateEditor &editor, QSqlDatabase db) {
    const EstimateGrid &grid = *editor.grid();
    print.rows.clear();
    print.rows.reserve(grid.gridRowCount()); // a hundred thousand rows, not twice the room for them
    print.leftOut.clear();
    for (int r = EstimateGrid::kFixedRows; r < grid.gridRowCount(); ++r) {
        if (editor.isGrandTotalRow(r))
            continue; // the closing lines say it
        EstimatePrint::Row row;
        row.kind = kindOf(grid.kind(r));
        row.number = grid.cell(r, EstimateCol::Num).trimmed();
        row.code = grid.cell(r, EstimateCol::Ras).trimmed();
        row.name = grid.cell(r, EstimateCol::Name).trimmed(); // the grid indents section rows with blanks
        row.unit = grid.cell(r, EstimateCol::Unit).trimmed();
        row.quantity = grid.cell(r, EstimateCol::Qty).trimmed();
        row.price = grid.cell(r, EstimateCol::Price).trimmed();
        row.sum = grid.cell(r, EstimateCol::Sum).trimmed();
        row.id = grid.cell(r, EstimateCol::IdDoc).trimmed();
        QStringList problems;
        for (int col : {EstimateCol::Qty, EstimateCol::Price, EstimateCol::Sum})
            if (const QString p = grid.cellProblem(r, col); !p.isEmpty())
                problems << p;
        if (row.kind == EstimatePrint::Kind::Work && row.name.isEmpty() && row.sum.isEmpty() &&
            row.code.isEmpty() && problems.isEmpty())
            continue; // an empty line of the grid
        if (!problems.isEmpty() && row.kind == EstimatePrint::Kind::Work)
            print.leftOut << QStringLiteral("№ %1 «%2»: %3")
                                 .arg(row.number.isEmpty() ? QString::number(r - 1) : row.number, row.name,
                                      problems.join(u' '));
        print.rows << row;
    }

    print.materialRows.clear();
    if (const EstimateMaterials *m = editor.materials()) {
        for (int i = 0; i < m->rowCount(); ++i) {
            auto text = [&](int col) {
                return m->data(m->index(i, col), Qt::DisplayRole).toString().trimmed();
            };
            EstimatePrint::Row row;
            row.number = QString::number(print.materialRows.size() + 1);
            row.name = text(MatCol::Name);
            row.unit = text(MatCol::Unit);
            row.quantity = text(MatCol::Qty);
            row.price = text(MatCol::Price);
            row.sum = text(MatCol::Sum);
            row.id = m->rowId(i);
            QStringList problems;
            for (int col : {MatCol::Qty, MatCol::Price, MatCol::Sum})
                if (const QString p = m->cellProblem(i, col); !p.isEmpty())
                    problems << p;
            if (row.name.isEmpty() && row.sum.isEmpty() && problems.isEmpty())
                continue;
            if (!problems.isEmpty())
                print.leftOut << QStringLiteral("материал «%1»: %2").arg(row.name, problems.join(u' '));
            print.materialRows << row;
        }
    }

    fillTotals(print, editor.koefResult(),
               db.isOpen() ? Coefficients::readApplied(db) : std::vector<KoefLine>());
}

void fillTotals(EstimatePrint &print, const KoefResult &k, const std::vector<KoefLine> &applied) {
    print.refusal.clear();
    for (const MoneyResult &total : {k.worksRaw, k.materialsRaw, k.works, k.materials, k.vat, k.grand})
        if (!total && print.refusal.isEmpty())
            print.refusal = QStringLiteral("Документ не выводится: итог сметы %1. Исправьте отмеченные "
                                           "ячейки сметы.")
                                .arg(numberProblemText(total.problem()));
    print.worksRaw = k.worksRaw.value();
    print.materialsRaw = k.materialsRaw.value();
    print.worksTotal = k.works.value();
    print.materialsTotal = k.materials.value();
    print.vat = k.vat.value();
    print.vatAdded = k.vatAdded.value();
    print.grand = k.grand.value();
    print.koefLines.clear();
    print.vatName.clear();
    print.vatIncluded = false;
    for (const KoefLine &line : applied) {
        if (line.isVat()) {
            print.vatName = lineName(line);
            print.vatIncluded = !line.raises();
            continue;
        }
        const Money amount = k.effect.value(line.id);
        if (!amount.isZero())
            print.koefLines << EstimatePrint::Line{lineName(line), amount};
    }
}

QMap<QString, QString> readAct(QSqlDatabase db) {
    return ActFields::read(db);
}

QString basis(const EstimatePrint &print) {
    QString text = QStringLiteral("Смета № %1").arg(print.number);
    const QString contract = print.act.value(QStringLiteral("EditNumDoc")).trimmed();
    if (!contract.isEmpty())
        text += QStringLiteral(", договор № %1").arg(contract);
    return text;
}

} // namespace EstimatePrintBuilder
