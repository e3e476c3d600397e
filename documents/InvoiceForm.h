#pragma once
// The payment invoice as data with its rules, without a window: what TFAccount shows and what its
// events do (the window forwards every edit here and shows the result).
//
// - Services: rows of name and price text. The switch "Услуга одной строкой" first removes the rows
//   it generates (any name containing "Сметная стоимость", or "Стоимость работ", "Стоимость
//   материалов", "Проценты"), then adds one row "Сметная стоимость объекта …" at the estimate's grand
//   total (on), or "Стоимость работ" / "Стоимость материалов" at the works / materials totals as
//   ticked, and "Проценты" for what the grand total has beyond works and materials (off).
// - Calc: the total of the services ("Итого") becomes the base of the amount, then VAT is applied.
// - VAT, with the base S and the rate p: added, the amount is S + S × p ÷ 100; included, the amount
//   is S. Without VAT the amount takes the estimate's grand total (unless it is zero), which becomes
//   the base of an invoice without services (with services their total stays the base, so that the
//   amount is always a function of the rows and the VAT settings). The VAT shown is always the part of
//   the amount that is VAT, amount × p ÷ (100 + p), which equals S × p ÷ 100 to the kopeck for an
//   added VAT.
// - Typing an amount makes it the new base (its VAT part taken off for an added VAT).
// Money is exact (kopecks, rounded once half away from zero). A price or an amount that is not a
// number is kept as typed, marked with the reason and left out of every total; a negative price is a
// discount.

#include "storage/Money.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>

struct InvoiceService {
    QString name;
    QString price; // as typed
    bool operator==(const InvoiceService &o) const { return name == o.name && price == o.price; }
};

// What the invoice takes from the estimate's totals.
struct InvoiceTotals {
    Money works;     // Edit6
    Money materials; // Edit4
    Money grand;     // Edit5
    QString object;  // the estimate's object, for the one-line service
};

class InvoiceForm {
public:
    enum class VatChoice { Added, Included }; // "Сумма + НДС", "НДС в том числе"

    // Names of the generated services.
    static QString oneLineName(const QString &object);
    static inline const QString worksName = QStringLiteral("Стоимость работ");
    static inline const QString materialsName = QStringLiteral("Стоимость материалов");
    static inline const QString percentName = QStringLiteral("Проценты");
    // True for a row the switch generates (and removes before generating again).
    static bool isGenerated(const QString &name);

    // The price as money: blank counts as zero; a text that is not a number gives a refused result.
    static MoneyResult priceOf(const QString &text);
    // Why a price text cannot count ("Цена «abc» не является числом"), empty when it can.
    static QString priceProblem(const QString &text);

    void setTotals(const InvoiceTotals &totals) { m_totals = totals; }
    const InvoiceTotals &totals() const { return m_totals; }

    // ----- Services.
    const QVector<InvoiceService> &services() const { return m_services; }
    void setServices(const QVector<InvoiceService> &services); // as read back; then Calc
    void addService(const QString &name = QString(), const QString &price = QString());
    void removeService(int row);
    void setServiceName(int row, const QString &name);
    void setServicePrice(int row, const QString &price); // then Calc
    // "Очистить платёжную форму": no services, the total and the amount "0,00".
    void clear();
    // Rows whose price is not a number, from 0.
    QVector<int> badPrices() const;

    // ToggleSwitch1, CheckBoxWork, CheckBoxMat: each change generates the services again, then Calc.
    bool oneLine() const { return m_oneLine; }
    bool works() const { return m_works; }
    bool materials() const { return m_materials; }
    void setOneLine(bool on);
    void setWorks(bool on);
    void setMaterials(bool on);
    // Switch and ticks at once (opening), then the services generated once.
    void setSwitches(bool oneLine, bool works, bool materials);
    // Their states only (an invoice read back keeps its rows as they are).
    void presetSwitches(bool oneLine, bool works, bool materials);
    void generateServices();

    // ----- Amounts.
    // Calc: "Итого" is the sum of the prices that are numbers; then VAT.
    void calc();
    MoneyResult servicesTotal() const { return m_itogo; } // EditItogo
    QString amountText() const { return m_amountText; }   // edSumma
    MoneyResult amount() const;
    // Typed into "Сумма".
    void setAmountText(const QString &text);
    // spdSumma: the estimate's grand total into "Сумма", unless it is zero.
    void takeEstimateTotal();
    Money base() const { return m_base; }

    // ----- VAT: each change applies VAT.
    bool vatOn() const { return m_vatOn; }
    int vatRate() const { return m_vatRate; }
    VatChoice vatChoice() const { return m_vatChoice; }
    void setVatOn(bool on);
    void setVatRate(int percent); // 0..100 (outside is clamped)
    void setVatChoice(VatChoice choice);
    // VAT settings at once (opening), without applying them.
    void presetVat(bool on, int percent, VatChoice choice);
    void applyVat();
    // The VAT part of the amount (zero without VAT or when the amount is not a number).
    Money vat() const;
    // The amount before an added VAT (the amount itself otherwise).
    Money net() const;

    // Pure VAT arithmetic. Added: {vat = base × p ÷ 100, amount = base + vat}; included: {vat = base ×
    // p ÷ (100 + p), amount = base}. Refused past the maximum amount.
    struct VatResult {
        MoneyResult vat = Money();
        MoneyResult amount = Money();
    };
    static VatResult vatOf(const Money &base, int percent, VatChoice choice);

private:
    void setAmount(const Money &value);
    void baseFromAmount();

    InvoiceTotals m_totals;
    QVector<InvoiceService> m_services;
    bool m_oneLine = false;
    bool m_works = true;
    bool m_materials = true;
    MoneyResult m_itogo = Money();
    QString m_amountText = QStringLiteral("0,00");
    Money m_base;
    bool m_vatOn = false;
    int m_vatRate = 20;
    VatChoice m_vatChoice = VatChoice::Included;
};
