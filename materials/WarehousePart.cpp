#include "WarehousePart.h"

#include "DohodMat_frame.h"
#include "ListMat_frame.h"
#include "MaterialsPart.h"
#include "SkladMat_frame.h"
#include "SoldReport.h"
#include "Warehouse.h"
#include "customers/CustomerRegister.h"
#include "estimate/EditorPart.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateMaterials.h"
#include "estimate/OutputPart.h"
#include "estimate/SmetaMaterials_frame.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"
#include "storage/TextValues.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QDesktopServices>
#include <QMainWindow>
#include <QStyle>
#include <QTableView>
#include <QToolBar>
#include <QUrl>

WarehousePart::WarehousePart(QObject *parent) : ShellPart(parent) {}

WarehousePart::~WarehousePart() = default;

void WarehousePart::attach(MainShell &shell) {
    m_shell = &shell;
    m_editor = shell.part<EditorPart>();
    m_warehouse = std::make_unique<Warehouse>([this] {
        TModuleSQL *module = m_shell->module();
        return module ? module->database(Db::Mat) : QSqlDatabase();
    });
    m_sklad = new TSkladMat(*m_warehouse, shell.document().editor().materials(), shell.window());
    m_sklad->setWindowFlag(Qt::Window);
    m_sklad->resize(1100, 600);
    m_sklad->setOfficeProvider([this]() -> OfficeService * {
        auto *output = m_shell->part<OutputPart>();
        return output ? &output->office() : nullptr;
    });
    m_sklad->setDocumentName([this] { return m_shell->document().caption(); });
    m_sklad->setFileOpener(
        [](const QString &path) { return QDesktopServices::openUrl(QUrl::fromLocalFile(path)); });
    connect(m_sklad, &TSkladMat::soldMaterialsRequested, this, [this] {
        const auto &header = m_shell->document().header();
        showSoldMaterials(header.customer, header.object);
    });
    connect(m_sklad, &TSkladMat::modeChosen, this, [this](const QString &caption) {
        m_shell->settings().set(QStringLiteral("TypeStore"), caption);
        // Kept at once: another window of the program reads the same settings.
        if (SettingsStore *store = m_shell->settingsStore())
            store->setText(QStringLiteral("Param"), QStringLiteral("TypeStore"), caption);
    });

    spdSkladMat = new QAction(m_sklad->style()->standardIcon(QStyle::SP_DriveHDIcon),
                              QStringLiteral("Склад материалов"), shell.window());
    spdSkladMat->setObjectName(QStringLiteral("spdSkladMat"));
    spdSkladMat->setToolTip(QStringLiteral("Склад материалов"));
    connect(spdSkladMat, &QAction::triggered, this, &WarehousePart::spdSkladMatClick);
    shell.toolBar(ShellBar::Main)->addAction(spdSkladMat);

    if (auto *materials = shell.part<MaterialsPart>()) {
        TListMat *lists = materials->listFrame();
        lists->setWarehouse(m_warehouse.get());
        connect(lists, &TListMat::stockTakeRequested, this, &WarehousePart::takeFromStock);
    }
}

void WarehousePart::start() {
    if (m_customers || !m_shell->module())
        return;
    m_customers = std::make_unique<CustomerRegister>(*m_shell->module());
    m_report =
        std::make_unique<SoldReport>([this] { return m_shell->module()->database(Db::Mat); }, *m_customers);
    m_sklad->setDataFolder(m_shell->dataFolder());
    m_warehouse->setMode(stockModeFromCaption(m_shell->settings().text(QStringLiteral("TypeStore"))));
    m_sklad->showMode();
}

void WarehousePart::collectSettings() {
    m_shell->settings().set(QStringLiteral("TypeStore"), stockModeCaption(m_warehouse->mode()));
}

void WarehousePart::spdSkladMatClick() {
    if (!m_shell->module())
        return;
    m_sklad->refresh();
    m_sklad->show();
    m_sklad->raise();
    m_sklad->activateWindow();
}

void WarehousePart::showSoldMaterials(const QString &customer, const QString &object) {
    if (!m_report)
        return;
    if (!m_dohod) {
        m_dohod = new TDohodMat(*m_report, m_shell->window());
        m_dohod->setModal(false);
    }
    m_dohod->open(customer, object, QDate::currentDate());
    m_dohod->show();
    m_dohod->raise();
    m_dohod->activateWindow();
}

void WarehousePart::takeFromStock(int row) {
    TModuleSQL *module = m_shell->module();
    const StockItem *item = m_warehouse->model().rowAt(row);
    if (!module || !item)
        return;
    // The row is found again by its id once the quantity is typed.
    const QString id = item->id, name = item->name;
    QString typed;
    if (!dialogs().input(QStringLiteral("Склад материалов"), QStringLiteral("Введите количество"), &typed))
        return;
    QString refusal;
    const std::optional<Decimal> quantity = StockTaking::parseQuantity(typed, &refusal);
    if (!quantity) {
        dialogs().tell(Captions::warning, refusal, Dialogs::Icon::Warning);
        return;
    }
    EstimateDocument &doc = m_shell->document();
    StockTaking::Outcome out;
    {
        EstimateEditor::Scope step(doc.editor(), QStringLiteral("Материал со склада"));
        out = m_warehouse->take(module->database(Db::Smeta), m_warehouse->model().rowOfId(id), *quantity,
                                doc.header().customer, doc.header().object, QDate::currentDate());
    }
    if (out.kind == StockTaking::Outcome::Refused) {
        dialogs().tell(Captions::warning, out.message, Dialogs::Icon::Warning);
        return;
    }
    if (out.kind == StockTaking::Outcome::Failed) {
        dialogs().tell(Captions::error, out.message, Dialogs::Icon::Error);
        return;
    }
    doc.editor().materialsChanged(); // reloads, totals again, the document changed
    m_editor->showMaterialsPage();
    EstimateMaterials *materials = doc.editor().materials();
    const int at = materials->rowOfId(out.material.id);
    if (at >= 0) {
        QTableView *view = m_editor->materialsPage()->StringGridMat;
        view->setCurrentIndex(materials->index(at, MatCol::Qty));
        view->scrollTo(view->currentIndex());
    }
    m_shell->showStatus(QStringLiteral("Со склада в смету: «%1», %2 %3")
                            .arg(name, TextValues::formatQuantity(*quantity), out.material.unit));
    if (out.kind == StockTaking::Outcome::WholeTaken)
        dialogs().tell(QStringLiteral("Склад"), QStringLiteral("Списано"));
}
