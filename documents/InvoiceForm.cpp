#include "InvoiceForm.h"

#include "storage/TextValues.h"

#include <algorithm>

namespace {

Decimal whole(int n) {
    return *Decimal::whole(n);
}

} // namespace

QString InvoiceForm::oneLineName(const QString &object) {
    return (QStringLiteral("Сметная стоимость объекта ") + object).trimmed();
}

bool InvoiceForm::isGenerated(const QString &name) {
    return name.contains(QStringLiteral("Сметная стоимость")) || name == worksName || name == materialsName ||
           name == percentName;
}

MoneyResult InvoiceForm::priceOf(const QString &text) {
    if (TextValues::isBlank(text))
        return Money();
    return Money::parse(text);
}

QString InvoiceForm::priceProblem(const QString &text) {
    const MoneyResult r = priceOf(text);
    if (r.ok())
        return {};
    return QStringLiteral("Цена «%1» %2; она не входит в итог.")
        .arg(text.trimmed(), numberProblemText(r.problem()));
}

// ----- Services

void InvoiceForm::setServices(const QVector<InvoiceService> &services) {
    m_services = services;
    calc();
}

void InvoiceForm::addService(const QString &name, const QString &price) {
    m_services.append({name, price});
    calc();
}

void InvoiceForm::removeService(int row) {
    if (row < 0 || row >= m_services.size())
        return;
    m_services.removeAt(row);
    calc();
}

void InvoiceForm::setServiceName(int row, const QString &name) {
    if (row >= 0 && row < m_services.size())
        m_services[row].name = name;
}

void InvoiceForm::setServicePrice(int row, const QString &price) {
    if (row < 0 || row >= m_services.size())
        return;
    m_services[row].price = price;
    calc();
}

void InvoiceForm::clear() {
    m_services.clear();
    m_itogo = Money();
    m_base = Money();
    m_amountText = Money().text();
}

QVector<int> InvoiceForm::badPrices() const {
    QVector<int> rows;
    for (int i = 0; i < m_services.size(); ++i)
        if (!priceOf(m_services.at(i).price).ok())
            rows << i;
    return rows;
}

void InvoiceForm::setOneLine(bool on) {
    m_oneLine = on;
    generateServices();
}

void InvoiceForm::setWorks(bool on) {
    m_works = on;
    generateServices();
}

void InvoiceForm::setMaterials(bool on) {
    m_materials = on;
    generateServices();
}

void InvoiceForm::setSwitches(bool oneLine, bool works, bool materials) {
    m_oneLine = oneLine;
    m_works = works;
    m_materials = materials;
    generateServices();
}

void InvoiceForm::presetSwitches(bool oneLine, bool works, bool materials) {
    m_oneLine = oneLine;
    m_works = works;
    m_materials = materials;
}

void InvoiceForm::generateServices() {
    m_services.erase(std::remove_if(m_services.begin(), m_services.end(),
                                    [](const InvoiceService &s) { return isGenerated(s.name); }),
                     m_services.end());
    const InvoiceTotals &t = m_totals;
    if (m_oneLine) {
        m_services.append({oneLineName(t.object), t.grand.text()});
    } else {
        if (m_works)
            m_services.append({worksName, t.works.text()});
        if (m_materials)
            m_services.append({materialsName, t.materials.text()});
        const MoneyResult rest = MoneyResult(t.grand) - t.works - t.materials;
        if (m_works && rest.ok() && rest->kopecks() > 0)
            m_services.append({percentName, rest.text()});
    }
    calc();
}

// ----- Amounts

void InvoiceForm::calc() {
    MoneyResult sum = Money();
    for (const InvoiceService &s : m_services) {
        const MoneyResult price = priceOf(s.price);
        if (price.ok())
            sum += price;
    }
    m_itogo = sum;
    if (!m_services.isEmpty() && m_itogo.ok())
        m_base = *m_itogo;
    applyVat();
}

MoneyResult InvoiceForm::amount() const {
    if (TextValues::isBlank(m_amountText))
        return MoneyResult::refused(NumberProblem::Blank);
    return Money::parse(m_amountText);
}

void InvoiceForm::setAmount(const Money &value) {
    m_amountText = value.text();
}

void InvoiceForm::baseFromAmount() {
    const MoneyResult a = amount();
    if (a.ok())
        m_base = net();
}

void InvoiceForm::setAmountText(const QString &text) {
    m_amountText = text;
    baseFromAmount();
}

void InvoiceForm::takeEstimateTotal() {
    if (m_totals.grand.isZero())
        return;
    setAmount(m_totals.grand);
    baseFromAmount();
}

// ----- VAT

void InvoiceForm::setVatOn(bool on) {
    m_vatOn = on;
    applyVat();
}

void InvoiceForm::setVatRate(int percent) {
    m_vatRate = std::clamp(percent, 0, 100);
    applyVat();
}

void InvoiceForm::setVatChoice(VatChoice choice) {
    m_vatChoice = choice;
    applyVat();
}

void InvoiceForm::presetVat(bool on, int percent, VatChoice choice) {
    m_vatOn = on;
    m_vatRate = std::clamp(percent, 0, 100);
    m_vatChoice = choice;
}

InvoiceForm::VatResult InvoiceForm::vatOf(const Money &base, int percent, VatChoice choice) {
    VatResult r;
    if (choice == VatChoice::Added) {
        r.vat = base.percent(whole(percent));
        r.amount = MoneyResult(base) + r.vat;
    } else {
        r.vat = base.scaled(whole(percent), whole(100 + percent));
        r.amount = base;
    }
    return r;
}

void InvoiceForm::applyVat() {
    if (!m_vatOn) {
        if (m_totals.grand.isZero())
            return;
        setAmount(m_totals.grand);
        // Services give the base whenever there are any, so that VAT ticked later is charged on the
        // lines the invoice shows.
        if (m_services.isEmpty())
            m_base = m_totals.grand;
        return;
    }
    const VatResult r = vatOf(m_base, m_vatRate, m_vatChoice);
    if (r.amount.ok())
        setAmount(*r.amount);
    else
        m_amountText = QString(); // past the maximum: no amount rather than a wrong one
}

Money InvoiceForm::vat() const {
    const MoneyResult a = amount();
    if (!m_vatOn || !a.ok())
        return Money();
    return a->scaled(whole(m_vatRate), whole(100 + m_vatRate)).valueOr(Money());
}

Money InvoiceForm::net() const {
    const Money a = amount().valueOr(Money());
    return m_vatOn && m_vatChoice == VatChoice::Added ? *(MoneyResult(a) - vat()) : a;
}
