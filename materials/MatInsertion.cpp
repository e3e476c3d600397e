#include "MatInsertion.h"

#include "estimate/RowAmount.h"
#include "pricebase/ResourceStore.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

namespace MatInsertion {

namespace {

MatPickOutcome failed(const QString &error) {
    MatPickOutcome out;
    out.kind = MatPickOutcome::Failed;
    out.error = error;
    return out;
}

// The new material without writing the positions of the others.
MatPickOutcome add(QSqlDatabase smeta, const MatRow &row) {
    MatPickOutcome out;
    if (matRowKind(row) != MatRowKind::Material)
        return out;
    QString problem;
    if (auto existing = MaterialsStore::findByName(smeta, row.name, &problem)) {
        out.kind = MatPickOutcome::Duplicate;
        out.material = *existing;
        return out;
    }
    if (!problem.isEmpty())
        return failed(problem);
    const int place = MaterialsStore::nextPosition(smeta, &problem);
    if (place < 0)
        return failed(problem);
    MaterialsStore::Material m;
    m.numpos = QString::number(place);
    m.name = row.name;
    m.unit = row.unit;
    m.price = row.price;
    m.note = row.nummat;
    if (!TextValues::isBlank(row.quantity)) {
        // A quantity typed into the list comes along, with its amount when both are numbers.
        m.quantity = row.quantity.trimmed();
        m.sum = RowAmount::of(m.quantity, m.price, QString()).amountText();
    }
    m.id = MaterialsStore::add(smeta, m, &problem);
    if (m.id.isEmpty())
        return failed(problem);
    out.kind = MatPickOutcome::Added;
    out.material = m;
    return out;
}

} // namespace

MatPickOutcome pick(QSqlDatabase smeta, const MatRow &row) {
    std::vector<MatPickOutcome> all = pickAll(smeta, {row});
    return all.empty() ? MatPickOutcome() : all.front();
}

std::vector<MatPickOutcome> pickAll(QSqlDatabase smeta, const std::vector<MatRow> &rows) {
    std::vector<MatPickOutcome> out;
    Transaction t(smeta);
    if (!t.active()) {
        out.push_back(failed(t.error()));
        return out;
    }
    bool added = false;
    for (const MatRow &row : rows) {
        out.push_back(add(smeta, row));
        if (out.back().kind == MatPickOutcome::Failed)
            break;
        added = added || out.back().kind == MatPickOutcome::Added;
    }
    // The positions follow the table's order; the materials added stay even if that fails.
    QString problem;
    if (added && !MaterialsStore::renumber(smeta, &problem))
        out.push_back(failed(problem));
    if (!t.commit())
        out.push_back(failed(t.error()));
    return out;
}

QString attachToRate(QSqlDatabase price, const QString &resourcesTable, bool showsRates, const RateRow *rate,
                     const MatRow &material, const QString &currency) {
    const QString refused = ResourceStore::refusal(showsRates, rate);
    if (!refused.isEmpty())
        return refused;
    if (matRowKind(material) != MatRowKind::Material)
        return QStringLiteral("Выберите в списке материал, а не заголовок или пустую строку");
    ResourceStore::Row r;
    r.name = material.name;
    r.edizm = material.unit;
    r.cena = material.price;
    r.ras = (*rate)[PriceCol::Rec];
    r.val = currency;
    QString error;
    if (ResourceStore::attach(price, resourcesTable, r, &error).isEmpty())
        return QStringLiteral("Не удалось добавить ресурс: %1").arg(error);
    return {};
}

} // namespace MatInsertion
