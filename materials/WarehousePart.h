#pragma once
// The warehouse in the main window: the tool button "Склад материалов" (spdSkladMat) opens TSkladMat
// in a window of its own; the tab "Склад" of the materials lists shows the stock, and a double-click
// there takes a material into the open estimate ("Склад материалов" / "Введите количество", one undoable
// step of the estimate); "Проданный материал" opens TDohodMat. The mode "Склад"/"Магазин" is kept in
// the settings (Param/TypeStore).
//
// Other parts (the cash book) open the report with showSoldMaterials(); the sum of sold materials
// for a customer, object and period is WriteOffs::soldTotal (materials/WriteOffs.h), no window needed.

#include "ui/MainShell.h"

#include <memory>

class CustomerRegister;
class EditorPart;
class QAction;
class SoldReport;
class TDohodMat;
class TSkladMat;
class Warehouse;

class WarehousePart : public ShellPart {
    Q_OBJECT
public:
    explicit WarehousePart(QObject *parent = nullptr);
    ~WarehousePart() override;

    void attach(MainShell &shell) override;
    void start() override;
    void collectSettings() override;

    Warehouse *warehouse() const { return m_warehouse.get(); }
    TSkladMat *skladFrame() const { return m_sklad; }
    // The report window once it has been opened.
    TDohodMat *soldMaterialsWindow() const { return m_dohod; }

    // spdSkladMat: the warehouse window, its stock read again.
    void spdSkladMatClick();
    // "Доход с продаж материалов" for a customer and object (empty: every write-off).
    void showSoldMaterials(const QString &customer = {}, const QString &object = {});
    // The tab "Склад" of the materials lists: stock row `row` into the open estimate.
    void takeFromStock(int row);

    QAction *spdSkladMat = nullptr;

private:
    MainShell *m_shell = nullptr;
    EditorPart *m_editor = nullptr;
    std::unique_ptr<Warehouse> m_warehouse;
    std::unique_ptr<CustomerRegister> m_customers;
    std::unique_ptr<SoldReport> m_report;
    TSkladMat *m_sklad = nullptr;
    TDohodMat *m_dohod = nullptr;
};
