// The rate grid beside the estimate: price lists, navigation, live search, insertion.

#include "TForm1.h"

#include "ui/Dialogs.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateGrid.h"
#include "pricebase/CalcDocKolvo_frame.h"
#include "pricebase/LiveSearchList.h"
#include "pricebase/PriceBase.h"
#include "pricebase/RateInsertion.h"
#include "pricebase/RatePanel_frame.h"
#include "pricebase/Resources.h"
#include "storage/ModuleSQL.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QTabWidget>
#include <QTableView>

void TForm1::setupPrice() {
    m_priceBase = new PriceBase(nullptr, this);
    RatePanel = new TRatePanel(*m_priceBase, PanelRas);
    PanelRas->layout()->addWidget(RatePanel);
    RatePanel->setSettingsProvider([this] { return settingsStore(); });
    RatePanel->setKoefProvider([this] {
        // The crew coefficient field of the crew sheet when there is one, else its stored value.
        if (auto *edit = findChild<QLineEdit *>(QStringLiteral("EditKoefBrig")))
            return edit->text();
        return m_settings.text(QStringLiteral("EditKoefBrig"));
    });
    connect(RatePanel, &TRatePanel::rateDoubleClicked, this, &TForm1::StringGridRasDblClickCell);

    // Options of the estimate grid's pop-up menu, also under "Настройки".
    if (!PopupMenuDoc) {
        PopupMenuDoc = new QMenu(this);
        PopupMenuDoc->setObjectName(QStringLiteral("PopupMenuDoc"));
        StringGridDoc->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(StringGridDoc, &QWidget::customContextMenuRequested, this, [this](const QPoint &pos) {
            PopupMenuDoc->popup(StringGridDoc->viewport()->mapToGlobal(pos));
        });
    }
    PopupMenuDoc->addSeparator();
    CheckBoxLiveSearch =
        addOption(PopupMenuDoc, QStringLiteral("CheckBoxLiveSearch"), QStringLiteral("Живой поиск расценок"));
    CheckBoxSortWork = addOption(PopupMenuDoc, QStringLiteral("CheckBoxSortWork"),
                                 QStringLiteral("Сортировка работ по номеру расценок"));
    CheckBoxControlPrice = addOption(PopupMenuDoc, QStringLiteral("CheckBoxControlPrice"),
                                     QStringLiteral("Исключить дублирование в подразделах/разделах"));
    CheckRowMat = addOption(RatePanel->PopupMenuRas, QStringLiteral("CheckRowMat"),
                            QStringLiteral("Включить добавление нескольких строк"));
    QMenu *options = MenuOptions->addMenu(QStringLiteral("Расценки"));
    options->setObjectName(QStringLiteral("MenuPriceOptions"));
    options->addActions({CheckBoxLiveSearch, CheckBoxSortWork, CheckBoxControlPrice, CheckRowMat});
    RatePanel->setCheckColumnVisible(CheckRowMat->isChecked());
    connect(CheckRowMat, &QAction::toggled, RatePanel, &TRatePanel::setCheckColumnVisible);

    // The live-search list over the estimate grid.
    MemoPrice = new LiveSearchList(StringGridDoc);
    m_liveModel = new LiveSearchModel(m_priceBase->liveSearch(), this);
    MemoPrice->setModel(m_liveModel);
    m_cellWatcher = new CellEditorWatcher(StringGridDoc, MemoPrice);
    connect(m_cellWatcher, &CellEditorWatcher::textEdited, this,
            [this](const QModelIndex &index, const QString &text) {
                StringGridDocSetEditText(EstimateGrid::toGridRow(index.row()), index.column(), text);
            });
    connect(m_cellWatcher, &CellEditorWatcher::chooseRequested, this, &TForm1::MemoPriceDblClick);
    connect(MemoPrice, &LiveSearchList::chosen, this, &TForm1::MemoPriceDblClick);
    connect(MemoPrice, &LiveSearchList::typingReturned, this,
            [this](int key, Qt::KeyboardModifiers mods, const QString &text) {
                QWidget *target = m_cellWatcher->editor() ? static_cast<QWidget *>(m_cellWatcher->editor())
                                                          : static_cast<QWidget *>(StringGridDoc);
                target->setFocus();
                if (key == 0)
                    return;
                QKeyEvent press(QEvent::KeyPress, key, mods, text);
                QApplication::sendEvent(target, &press);
            });
    connect(CheckBoxLiveSearch, &QAction::toggled, this, [this](bool on) {
        m_priceBase->setLiveSearchEnabled(on);
        if (!on)
            MemoPrice->hide();
    });
    connect(m_priceBase, &PriceBase::listRead, this, [this](bool rebuilt) {
        // The names behind the list were replaced.
        if (rebuilt) {
            m_liveModel->clear();
            MemoPrice->hide();
        }
    });

    connect(EditValuta, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (RatePanel->started())
            RatePanel->setCurrency(index);
        else
            m_priceBase->setCurrency(index);
    });
    // Quantities edited, rows deleted, undone or redone: the materials of those rates follow. An
    // insertion's own step is left alone, its materials wait for a quantity.
    if (m_editor)
        connect(m_editor, &EstimateEditor::ratesAffected, this,
                [this](const QList<QPair<QString, QString>> &rates) {
                    if (m_inserting)
                        return;
                    for (const auto &rate : rates)
                        SearchAndWriteResurse(rate.first, rate.second);
                });
    // The price base opens with the first document, once the settings and the data module are there.
    connect(this, &TForm1::documentLoaded, this, &TForm1::startPriceBase);
}

void TForm1::startPriceBase() {
    if (RatePanel->started() || !m_module)
        return;
    m_priceBase->setModule(m_module);
    m_priceBase->setCurrency(EditValuta->currentIndex());
    m_priceBase->setLiveSearchEnabled(CheckBoxLiveSearch->isChecked());
    RatePanel->start();
}

void TForm1::StringGridDocSetEditText(int gridRow, int col, const QString &text) {
    if (!CheckBoxLiveSearch->isChecked() || col != EstimateCol::Name ||
        !m_gridDoc->cell(gridRow, EstimateCol::Kind).isEmpty())
        return;
    m_currentRow = gridRow;
    if (text.trimmed().isEmpty() || m_liveModel->search(text) == 0) {
        MemoPrice->hide();
        return;
    }
    const QModelIndex cell = m_gridDoc->index(EstimateGrid::toModelRow(gridRow), col);
    const QRect rect = StringGridDoc->visualRect(cell).translated(StringGridDoc->viewport()->pos());
    MemoPrice->popUpUnder(rect);
}

void TForm1::MemoPriceDblClick(int row) {
    const QString name = m_liveModel->nameAt(row);
    if (name.isEmpty())
        return;
    // The typed part is replaced by the chosen name.
    m_cellWatcher->discardEditor();
    MemoPrice->hide();
    RateRow rate;
    QString error;
    const bool found = m_priceBase->findRate(name, rate, &error);
    if (!found && !error.isEmpty())
        dialogs().tell(Captions::error, QStringLiteral("Не удалось найти расценку: %1").arg(error),
                       Dialogs::Icon::Error);
    InsertOutcome out;
    {
        EstimateEditor::Scope step(m_editor, QStringLiteral("Вставка расценки"));
        m_inserting = true;
        RateInsertion insertion(*m_gridDoc, m_module->database(Db::Smeta), m_module->database(Db::Price));
        out = insertion.insertFromLiveSearch(name, found ? &rate : nullptr, m_priceBase->resourcesTable(),
                                             m_currentRow);
    }
    m_inserting = false;
    if (out.kind == InsertOutcome::Failed)
        dialogs().tell(Captions::error, out.error, Dialogs::Icon::Error);
    if (out.materialsChanged && m_editor)
        m_editor->materialsChanged();
    StringGridDoc->setCurrentIndex(
        m_gridDoc->index(EstimateGrid::toModelRow(m_currentRow), EstimateCol::Name));
    StringGridDoc->setFocus();
}

void TForm1::StringGridRasDblClickCell(int gridRow) {
    if (!m_priceBase->showsRates() ||
        RatePanel->PageControlRas->tabText(1) == QStringLiteral("Расценки для бригады"))
        return;
    RateGridModel &model = m_priceBase->model();
    if (model.editMode()) {
        dialogs().tell(Captions::warning, QStringLiteral("Нельзя добавить во время редактирования"),
                       Dialogs::Icon::Warning);
        return;
    }
    PageControlDoc->setCurrentWidget(TabSheet1);
    std::vector<RateRow> rates;
    const std::vector<int> ticked = model.checkedIndices();
    if (CheckRowMat->isChecked() && !ticked.empty()) {
        for (int i : ticked)
            rates.push_back(model.allRows()[static_cast<size_t>(i)]);
        model.clearChecks();
    } else {
        const int i = model.sourceIndex(gridRow);
        if (i < 0 || model.allRows()[static_cast<size_t>(i)].isBlank())
            return;
        rates.push_back(model.allRows()[static_cast<size_t>(i)]);
    }
    const InsertOptions options{CheckBoxControlPrice->isChecked(), CheckBoxSortWork->isChecked()};
    bool materials = false;
    std::vector<int> duplicates;
    {
        EstimateEditor::Scope step(m_editor, QStringLiteral("Вставка расценки"));
        m_inserting = true;
        RateInsertion insertion(*m_gridDoc, m_module->database(Db::Smeta), m_module->database(Db::Price));
        for (const RateRow &rate : rates) {
            const InsertOutcome out =
                insertion.insertFromGrid(rate, m_priceBase->resourcesTable(), m_currentRow, options);
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
    if (materials && m_editor)
        m_editor->materialsChanged();
    for (int row : duplicates)
        showDuplicate(row);
    if (duplicates.empty()) {
        StringGridDoc->setCurrentIndex(
            m_gridDoc->index(EstimateGrid::toModelRow(m_currentRow), EstimateCol::Qty));
        StringGridDoc->setFocus();
    }
}

void TForm1::showDuplicate(int gridRow) {
    // The found row in the middle of the visible rows, not above the first data row.
    const int rowHeight = std::max(1, StringGridDoc->verticalHeader()->defaultSectionSize());
    const int visible = StringGridDoc->viewport()->height() / rowHeight;
    const int top = std::max(int(EstimateGrid::kFixedRows), gridRow - visible / 2);
    StringGridDoc->scrollTo(m_gridDoc->index(EstimateGrid::toModelRow(top), EstimateCol::Name),
                            QAbstractItemView::PositionAtTop);
    const QModelIndex found = m_gridDoc->index(EstimateGrid::toModelRow(gridRow), EstimateCol::Name);
    StringGridDoc->setCurrentIndex(found);
    StringGridDoc->selectRow(found.row());
    const QString quantity = m_gridDoc->cell(gridRow, EstimateCol::Qty);
    TCalcDocKolvo dialog(m_gridDoc->cell(gridRow, EstimateCol::Num),
                         m_gridDoc->cell(gridRow, EstimateCol::Name), quantity, this);
    if (dialog.exec() != QDialog::Accepted || dialog.quantity() == quantity)
        return;
    {
        EstimateEditor::Scope step(m_editor, QStringLiteral("Изменение количества"));
        m_gridDoc->setCell(gridRow, EstimateCol::Qty, dialog.quantity());
    }
    // With the editor the step's ratesAffected recomputes the materials.
    if (!m_editor)
        SearchAndWriteResurse(m_gridDoc->cell(gridRow, EstimateCol::IdRas),
                              m_gridDoc->cell(gridRow, EstimateCol::NamePrice));
}

void TForm1::SearchAndWriteResurse(const QString &rec, const QString &table) {
    if (!m_module || rec.trimmed().isEmpty())
        return;
    bool changed = false;
    QString error;
    if (!RateResources::searchAndWriteResurse(m_module->database(Db::Price), m_module->database(Db::Smeta),
                                              *m_gridDoc, rec, table, &changed, &error))
        dialogs().tell(Captions::error, QStringLiteral("Не удалось пересчитать материалы: %1").arg(error),
                       Dialogs::Icon::Error);
    if (changed && m_editor)
        m_editor->materialsChanged();
}
