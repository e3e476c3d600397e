#include "PricePart.h"

#include "CalcDocKolvo_frame.h"
#include "LiveSearchList.h"
#include "PriceBase.h"
#include "RateInsertion.h"
#include "RatePanel_frame.h"
#include "Resources.h"
#include "estimate/CrewSheet.h"
#include "estimate/EditorPart.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateGrid.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QPointer>
#include <QTableView>

PricePart::PricePart(QObject *parent) : ShellPart(parent), m_needs(std::make_unique<MaterialNeeds>()) {}

PricePart::~PricePart() = default;

void PricePart::attach(MainShell &shell) {
    m_shell = &shell;
    m_doc = &shell.document();
    m_editor = shell.part<EditorPart>();
    m_priceBase = new PriceBase(nullptr, this);
    QWidget *left = shell.area(ShellArea::Left);
    m_panel = new TRatePanel(*m_priceBase, left);
    left->layout()->addWidget(m_panel);
    m_panel->setSettingsProvider([this] { return m_shell->settingsStore(); });
    m_panel->setKoefProvider([this] {
        // The crew coefficient field of the crew sheet when there is one, else its stored value.
        if (auto *edit = m_shell->window()->findChild<QLineEdit *>(QStringLiteral("EditKoefBrig")))
            return edit->text();
        return m_shell->settings().text(QStringLiteral("EditKoefBrig"));
    });
    connect(m_panel, &TRatePanel::rateDoubleClicked, this, &PricePart::StringGridRasDblClickCell);
    buildOptions();
    buildLiveSearch();

    connect(m_doc, &EstimateDocument::headerChanged, this, [this] {
        const int currency = m_doc->header().currency;
        if (currency == m_priceBase->currency())
            return;
        if (m_panel->started())
            m_panel->setCurrency(currency);
        else
            m_priceBase->setCurrency(currency);
    });
    // Quantities edited, rows deleted, undone or redone: the needs of materials move by the rows the
    // step changed, and the materials of those rates follow. An insertion's own step is only counted,
    // its materials wait for a quantity.
    connect(&m_doc->editor(), &EstimateEditor::rateRowsChanged, this,
            [this](const QList<RowDiff::Change> &changes) {
                TModuleSQL *module = m_shell->module();
                if (!module)
                    return;
                QString error;
                if (!m_needs->update(module->database(Db::Price), changes, &error))
                    dialogs().tell(Captions::error,
                                   QStringLiteral("Не удалось прочитать ресурсы расценок: %1").arg(error),
                                   Dialogs::Icon::Error);
                if (!m_inserting)
                    writeMaterials(RowDiff::ratesOf(changes));
            });
    // The crew prices of the estimate's rates: from the rate grid's rows while they hold price list 1
    // as read from its file (no statement per opened document), else from the file.
    // Neither the part nor the shell is reached once the price base is gone (the program closing).
    QPointer<PriceBase> base = m_priceBase;
    MainShell *window = &shell;
    CrewSheet::PriceLookup fromFile = CrewSheet::priceListLookup([base, window] {
        TModuleSQL *module = base ? window->module() : nullptr;
        return module ? module->database(Db::Price) : QSqlDatabase();
    });
    m_doc->editor().crew()->setPriceLookup([base, fromFile](const QList<CrewSheet::Rate> &rates) {
        std::vector<std::optional<Decimal>> prices;
        if (base && base->crewPrices(rates, prices))
            return prices;
        return fromFile(rates);
    });
    // The list read again (its rates may have changed): the resources and the needs are gathered again
    // when next asked.
    connect(m_priceBase, &PriceBase::listRead, this, [this] { m_needs->clear(); });
}

void PricePart::buildOptions() {
    // Options of the estimate grid's pop-up menu, also under "Настройки".
    QMenu *popup = m_editor->popupMenu();
    popup->addSeparator();
    QAction *live = m_shell->addOption(popup, QStringLiteral("CheckBoxLiveSearch"),
                                       QStringLiteral("Живой поиск расценок"));
    QAction *sort = m_shell->addOption(popup, QStringLiteral("CheckBoxSortWork"),
                                       QStringLiteral("Сортировка работ по номеру расценок"));
    QAction *control = m_shell->addOption(popup, QStringLiteral("CheckBoxControlPrice"),
                                          QStringLiteral("Исключить дублирование в подразделах/разделах"));
    QAction *rows = m_shell->addOption(m_panel->PopupMenuRas, QStringLiteral("CheckRowMat"),
                                       QStringLiteral("Включить добавление нескольких строк"));
    QMenu *options = m_shell->menu(ShellMenu::Options)->addMenu(QStringLiteral("Расценки"));
    options->setObjectName(QStringLiteral("MenuPriceOptions"));
    options->addActions({live, sort, control, rows});
    connect(rows, &QAction::toggled, m_panel, &TRatePanel::setCheckColumnVisible);
    connect(live, &QAction::toggled, this, [this](bool on) {
        m_priceBase->setLiveSearchEnabled(on);
        if (!on)
            m_memo->hide();
    });
}

void PricePart::buildLiveSearch() {
    QTableView *view = m_editor->view();
    m_memo = new LiveSearchList(view);
    m_liveModel = new LiveSearchModel(m_priceBase->liveSearch(), this);
    m_memo->setModel(m_liveModel);
    m_cellWatcher = new CellEditorWatcher(view, m_memo);
    connect(m_cellWatcher, &CellEditorWatcher::textEdited, this,
            [this](const QModelIndex &index, const QString &text) {
                StringGridDocSetEditText(EstimateGrid::toGridRow(index.row()), index.column(), text);
            });
    connect(m_cellWatcher, &CellEditorWatcher::chooseRequested, this, &PricePart::MemoPriceDblClick);
    connect(m_memo, &LiveSearchList::chosen, this, &PricePart::MemoPriceDblClick);
    returnTypingToEditor(m_memo, m_cellWatcher, view);
    connect(m_priceBase, &PriceBase::listRead, this, [this](bool rebuilt) {
        // The names behind the list were replaced.
        if (rebuilt) {
            m_liveModel->clear();
            m_memo->hide();
        }
    });
}

bool PricePart::option(const char *key) const {
    return m_shell->settings().flag(QLatin1String(key));
}

void PricePart::start() {
    m_panel->setCheckColumnVisible(option("CheckRowMat"));
    if (m_panel->started() || !m_shell->module())
        return;
    m_priceBase->setModule(m_shell->module());
    m_priceBase->setCurrency(m_doc->header().currency);
    m_priceBase->setLiveSearchEnabled(option("CheckBoxLiveSearch"));
    m_panel->start();
}

void PricePart::documentLoaded() {
    // Another document: its rates' resources are read when first needed.
    m_needs->clear();
}

bool PricePart::settleBeforeClose() {
    // Rates edited in the rate grid are a separate list: settled before the document.
    return m_panel->settleEdits();
}

void PricePart::StringGridDocSetEditText(int gridRow, int col, const QString &text) {
    EstimateGrid &grid = m_doc->grid();
    if (!option("CheckBoxLiveSearch") || col != EstimateCol::Name ||
        !grid.cell(gridRow, EstimateCol::Kind).isEmpty())
        return;
    m_editor->setCurrentRow(gridRow);
    if (text.trimmed().isEmpty() || m_liveModel->search(text) == 0) {
        m_memo->hide();
        return;
    }
    QTableView *view = m_editor->view();
    const QModelIndex cell = grid.index(EstimateGrid::toModelRow(gridRow), col);
    const QRect rect = view->visualRect(cell).translated(view->viewport()->pos());
    m_memo->popUpUnder(rect);
}

void PricePart::MemoPriceDblClick(int row) {
    const QString name = m_liveModel->nameAt(row);
    if (name.isEmpty())
        return;
    // The typed part is replaced by the chosen name.
    m_cellWatcher->discardEditor();
    m_memo->hide();
    RateRow rate;
    QString error;
    const bool found = m_priceBase->findRate(name, rate, &error);
    if (!found && !error.isEmpty())
        dialogs().tell(Captions::error, QStringLiteral("Не удалось найти расценку: %1").arg(error),
                       Dialogs::Icon::Error);
    TModuleSQL &module = *m_shell->module();
    int current = m_editor->currentRow();
    InsertOutcome out;
    {
        EstimateEditor::Scope step(m_doc->editor(), QStringLiteral("Вставка расценки"));
        m_inserting = true;
        RateInsertion insertion(m_doc->grid(), module.database(Db::Smeta), module.database(Db::Price));
        out = insertion.insertFromLiveSearch(name, found ? &rate : nullptr, m_priceBase->resourcesTable(),
                                             current);
    }
    m_inserting = false;
    m_editor->setCurrentRow(current);
    if (out.kind == InsertOutcome::Failed)
        dialogs().tell(Captions::error, out.error, Dialogs::Icon::Error);
    if (out.materialsChanged)
        m_doc->editor().materialsChanged();
    QTableView *view = m_editor->view();
    view->setCurrentIndex(m_doc->grid().index(EstimateGrid::toModelRow(current), EstimateCol::Name));
    view->setFocus();
}

void PricePart::StringGridRasDblClickCell(int gridRow) {
    if (!m_priceBase->showsRates() || m_priceBase->crewMode())
        return;
    RateGridModel &model = m_priceBase->model();
    if (model.editMode()) {
        dialogs().tell(Captions::warning, QStringLiteral("Нельзя добавить во время редактирования"),
                       Dialogs::Icon::Warning);
        return;
    }
    m_editor->showEstimatePage();
    std::vector<RateRow> rates;
    const std::vector<int> ticked = model.checkedIndices();
    if (option("CheckRowMat") && !ticked.empty()) {
        for (int i : ticked)
            rates.push_back(model.allRows()[static_cast<size_t>(i)]);
        model.clearChecks();
    } else {
        const int i = model.sourceIndex(gridRow);
        if (i < 0 || model.allRows()[static_cast<size_t>(i)].isBlank())
            return;
        rates.push_back(model.allRows()[static_cast<size_t>(i)]);
    }
    const InsertOptions options{option("CheckBoxControlPrice"), option("CheckBoxSortWork")};
    TModuleSQL &module = *m_shell->module();
    int current = m_editor->currentRow();
    bool materials = false;
    std::vector<int> duplicates;
    {
        EstimateEditor::Scope step(m_doc->editor(), QStringLiteral("Вставка расценки"));
        m_inserting = true;
        RateInsertion insertion(m_doc->grid(), module.database(Db::Smeta), module.database(Db::Price));
        for (const RateRow &rate : rates) {
            const InsertOutcome out =
                insertion.insertFromGrid(rate, m_priceBase->resourcesTable(), current, options);
            materials = materials || out.materialsChanged;
            if (out.kind == InsertOutcome::Duplicate)
                duplicates.push_back(out.row);
            if (out.kind == InsertOutcome::Failed) {
                dialogs().tell(Captions::error, out.error, Dialogs::Icon::Error);
                break;
            }
        }
    }
    m_inserting = false;
    m_editor->setCurrentRow(current);
    if (materials)
        m_doc->editor().materialsChanged();
    for (int row : duplicates)
        showDuplicate(row);
    if (duplicates.empty()) {
        QTableView *view = m_editor->view();
        view->setCurrentIndex(m_doc->grid().index(EstimateGrid::toModelRow(current), EstimateCol::Qty));
        view->setFocus();
    }
}

void PricePart::showDuplicate(int gridRow) {
    // The found row in the middle of the visible rows, not above the first data row.
    QTableView *view = m_editor->view();
    EstimateGrid &grid = m_doc->grid();
    const int rowHeight = std::max(1, view->verticalHeader()->defaultSectionSize());
    const int visible = view->viewport()->height() / rowHeight;
    const int top = std::max(int(EstimateGrid::kFixedRows), gridRow - visible / 2);
    view->scrollTo(grid.index(EstimateGrid::toModelRow(top), EstimateCol::Name),
                   QAbstractItemView::PositionAtTop);
    const QModelIndex found = grid.index(EstimateGrid::toModelRow(gridRow), EstimateCol::Name);
    view->setCurrentIndex(found);
    view->selectRow(found.row());
    const QString quantity = grid.cell(gridRow, EstimateCol::Qty);
    TCalcDocKolvo dialog(grid.cell(gridRow, EstimateCol::Num), grid.cell(gridRow, EstimateCol::Name),
                         quantity, m_shell->window());
    if (dialog.exec() != QDialog::Accepted || dialog.quantity() == quantity)
        return;
    // The step's ratesAffected recomputes the materials.
    EstimateEditor::Scope step(m_doc->editor(), QStringLiteral("Изменение количества"));
    grid.setCell(gridRow, EstimateCol::Qty, dialog.quantity());
}

void PricePart::SearchAndWriteResurse(const QString &rec, const QString &table) {
    writeMaterials({{rec, table}});
}

void PricePart::writeMaterials(const QList<QPair<QString, QString>> &rates) {
    TModuleSQL *module = m_shell->module();
    if (!module || rates.isEmpty())
        return;
    bool changed = false;
    QString error;
    if (!m_needs->write(module->database(Db::Price), module->database(Db::Smeta), m_doc->grid(), rates,
                        &changed, &error))
        dialogs().tell(Captions::error, QStringLiteral("Не удалось пересчитать материалы: %1").arg(error),
                       Dialogs::Icon::Error);
    if (changed)
        m_doc->editor().materialsChanged();
}
