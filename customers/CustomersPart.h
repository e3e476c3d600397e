#pragma once
// The registers of customers, objects and contractors in the main window: the menu items "Заказчики и
// объекты" (MZakazAndObject) and "Данные подрядчика" (MPodryad) open their windows, which other windows
// (the header, the documents) open too. The part tells when a register changed.

#include "OptionFlags.h"
#include "ui/MainShell.h"

#include <QPointer>

class TPodryadList;
class TZakazAndObject;

class CustomersPart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;

    // Opens the customers window with that customer and object chosen (the estimate's when empty).
    void MZakazAndObjectClick();
    void showCustomers(const QString &customer, const QString &object);
    // Opens the contractor window with that contractor chosen.
    void MPodryadClick();
    void showContractors(const QString &shortName);
    // The window's check boxes and the menu options are the same settings.
    OptionFlags optionFlags() const;

signals:
    // A customer or object was added, renamed or deleted.
    void customersChanged();
    // A contractor was added, renamed or deleted.
    void contractorsChanged();

private:
    MainShell *m_shell = nullptr;
    QPointer<TZakazAndObject> m_zakazWindow;
    QPointer<TPodryadList> m_podryadWindow;
};
