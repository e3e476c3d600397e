#include "MaterialsPart.h"

#include "CalcMatKolvo_frame.h"
#include "CalcMat_frame.h"
#include "ListMat_frame.h"
#include "MatInsertion.h"
#include "MatRecalc.h"
#include "MaterialLists.h"
#include "estimate/EditorPart.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateMaterials.h"
#include "estimate/OutputPart.h"
#include "estimate/SmetaMaterials_frame.h"
#include "pricebase/LiveSearchList.h"
#include "pricebase/PriceBase.h"
#include "pricebase/PricePart.h"
#include "pricebase/RatePanel_frame.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QLayout>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QStyle>
#include <QTabWidget>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

void MaterialsPart::attach(MainShell &shell) {
    m_shell = &shell;
    m_editor = shell.part<EditorPart>();
    m_price = shell.part<PricePart>();
    m_lists = new MaterialLists(nullptr, this);
    m_frame = new TListMat(*m_lists);
    m_frame->setOfficeProvider([this]() -> OfficeService * {
        auto *output = m_shell->part<OutputPart>();
        return output ? &output->office() : nullptr;
    });

    // The lists' own window: beside the rate grid.
    m_window = new QWidget(shell.window(), Qt::Window);
    m_window->setObjectName(QStringLiteral("FormListMat"));
    m_window->setWindowTitle(QStringLiteral("Материалы"));
    m_window->resize(640, 560);
    auto *layout = new QVBoxLayout(m_window);
    layout->setContentsMargins(2, 2, 2, 2);

    TRatePanel *panel = m_price->ratePanel();
    panel->materialsPage()->layout()->addWidget(m_frame);
    panel->setMaterialsAvailable(true);
    connect(panel, &TRatePanel::materialsShown, this, &MaterialsPart::showInPanel);

    spdListMat = new QAction(m_frame->style()->standardIcon(QStyle::SP_FileDialogListView),
                             QStringLiteral("Список материалов"), shell.window());
    spdListMat->setObjectName(QStringLiteral("spdListMat"));
    spdListMat->setToolTip(QStringLiteral("Список материалов"));
    connect(spdListMat, &QAction::triggered, this, &MaterialsPart::spdListMatClick);
    QToolBar *bar = shell.toolBar(ShellBar::Main);
    bar->addSeparator();
    bar->addAction(spdListMat);

    connect(m_frame, &TListMat::materialsChosen, this, &MaterialsPart::insertMaterials);
    connect(m_frame, &TListMat::attachRequested, this, &MaterialsPart::attachToRate);
    connect(m_frame, &TListMat::recalcRequested, this, &MaterialsPart::toolCalcClick);

    // ToolCheckRow and the option "Включить добавление нескольких строк" are one setting.
    if (auto *rows = shell.window()->findChild<QAction *>(QStringLiteral("CheckRowMat"))) {
        m_frame->ToolCheckRow->setChecked(rows->isChecked());
        connect(rows, &QAction::toggled, m_frame->ToolCheckRow, &QAction::setChecked);
        connect(m_frame->ToolCheckRow, &QAction::toggled, rows, &QAction::setChecked);
    }
    buildLiveSearch();
}

void MaterialsPart::buildLiveSearch() {
    TSmetaMaterials *page = m_editor->materialsPage();
    QAction *live = m_shell->addOption(page->PopupMenuMat, QStringLiteral("CheckMatLiveSearch"),
                                       QStringLiteral("Живой поиск материалов"));
    QMenu *options = m_shell->menu(ShellMenu::Options)->addMenu(QStringLiteral("Материалы"));
    options->setObjectName(QStringLiteral("MenuMaterialsOptions"));
    options->addAction(live);
    QTableView *view = page->StringGridMat;
    m_memo = new LiveSearchList(view);
    m_memo->setObjectName(QStringLiteral("MemoMat"));
    m_liveModel = new LiveSearchModel(m_lists->liveSearch(), this);
    m_memo->setModel(m_liveModel);
    m_cellWatcher = new CellEditorWatcher(view, m_memo);
    connect(m_cellWatcher, &CellEditorWatcher::textEdited, this,
            [this](const QModelIndex &index, const QString &text) {
                StringGridMatSetEditText(index.row(), index.column(), text);
            });
    connect(m_cellWatcher, &CellEditorWatcher::chooseRequested, this, &MaterialsPart::MemoMatDblClick);
    connect(m_memo, &LiveSearchList::chosen, this, &MaterialsPart::MemoMatDblClick);
    returnTypingToEditor(m_memo, m_cellWatcher, view);
    connect(live, &QAction::toggled, this, [this](bool on) {
        if (!on)
            m_memo->hide();
    });
    connect(m_lists, &MaterialLists::sheetRead, this, [this] {
        // The names behind the list were replaced.
        m_liveModel->clear();
        m_memo->hide();
    });
}

bool MaterialsPart::option(const char *key) const {
    return m_shell->settings().flag(QLatin1String(key));
}

void MaterialsPart::start() {
    if (m_lists->hasModule() || !m_shell->module())
        return;
    m_lists->setModule(m_shell->module());
    m_frame->setDataFolder(m_shell->dataFolder());
    m_frame->start();
}

void MaterialsPart::spdListMatClick() {
    TRatePanel *panel = m_price->ratePanel();
    // The rate grid comes back beside the window, ready for attaching materials to rates.
    if (panel->PageControlRas->currentIndex() == static_cast<int>(PriceTab::Material))
        panel->PageControlRas->setCurrentIndex(static_cast<int>(PriceTab::MyPrice));
    if (m_frame->parentWidget() != m_window)
        m_window->layout()->addWidget(m_frame);
    m_frame->show();
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void MaterialsPart::showInPanel() {
    QWidget *page = m_price->ratePanel()->materialsPage();
    if (m_frame->parentWidget() != page)
        page->layout()->addWidget(m_frame);
    m_frame->show();
    m_window->hide();
}

void MaterialsPart::insertMaterials(const std::vector<MatRow> &rows) {
    TModuleSQL *module = m_shell->module();
    if (!module)
        return;
    EstimateDocument &doc = m_shell->document();
    std::vector<MatPickOutcome> outcomes;
    {
        EstimateEditor::Scope step(doc.editor(), QStringLiteral("Вставка материала"));
        outcomes = MatInsertion::pickAll(module->database(Db::Smeta), rows);
    }
    QString lastAdded;
    std::vector<MaterialsStore::Material> duplicates;
    for (const MatPickOutcome &o : outcomes) {
        if (o.kind == MatPickOutcome::Added)
            lastAdded = o.material.id;
        else if (o.kind == MatPickOutcome::Duplicate)
            duplicates.push_back(o.material);
        else if (o.kind == MatPickOutcome::Failed)
            dialogs().tell(Captions::error, QStringLiteral("Материал не добавлен в смету: %1").arg(o.error),
                           Dialogs::Icon::Error);
    }
    if (lastAdded.isEmpty() && duplicates.empty())
        return;
    if (!lastAdded.isEmpty())
        doc.editor().materialsChanged(); // reloads, totals again, the document changed
    m_editor->showMaterialsPage();
    EstimateMaterials *materials = doc.editor().materials();
    const int row = materials->rowOfId(lastAdded);
    if (row >= 0) {
        QTableView *view = m_editor->materialsPage()->StringGridMat;
        view->setCurrentIndex(materials->index(row, MatCol::Qty));
        view->scrollTo(view->currentIndex());
    }
    for (const MaterialsStore::Material &m : duplicates)
        showDuplicate(m);
}

void MaterialsPart::showDuplicate(const MaterialsStore::Material &material) {
    EstimateMaterials *materials = m_shell->document().editor().materials();
    const int row = materials->rowOfId(material.id);
    if (row < 0)
        return;
    QTableView *view = m_editor->materialsPage()->StringGridMat;
    const QModelIndex found = materials->index(row, MatCol::Name);
    view->scrollTo(found, QAbstractItemView::PositionAtCenter);
    view->setCurrentIndex(found);
    view->selectRow(row);
    const QString quantity = materials->index(row, MatCol::Qty).data(Qt::EditRole).toString();
    TCalcMatKolvo dialog(materials->index(row, MatCol::Num).data().toString(), material.name, quantity,
                         m_shell->window());
    if (dialog.exec() != QDialog::Accepted || dialog.quantity() == quantity)
        return;
    EstimateEditor::Scope step(m_shell->document().editor(),
                               QStringLiteral("Изменение количества материала"));
    if (!materials->setData(materials->index(row, MatCol::Qty), dialog.quantity(), Qt::EditRole))
        dialogs().tell(Captions::error,
                       QStringLiteral("Количество не записано: %1").arg(materials->lastError()),
                       Dialogs::Icon::Error);
}

void MaterialsPart::attachToRate(const MatRow &row) {
    TModuleSQL *module = m_shell->module();
    if (!module)
        return;
    PriceBase &base = *m_price->priceBase();
    const std::optional<RateRow> current = m_price->ratePanel()->currentRate();
    const RateRow *rate = current ? &*current : nullptr;
    const QString refused =
        MatInsertion::attachToRate(module->database(Db::Price), base.resourcesTable(), base.showsRates(),
                                   rate, row, currencyColumn(base.currency()));
    if (!refused.isEmpty()) {
        dialogs().tell(Captions::warning, refused, Dialogs::Icon::Warning);
        return;
    }
    m_shell->showStatus(QStringLiteral("Материал «%1» добавлен в ресурсы расценки %2 «%3»")
                            .arg(row.name, (*rate)[PriceCol::Ras], rate->name()));
}

void MaterialsPart::toolCalcClick() {
    TModuleSQL *module = m_shell->module();
    if (!module)
        return;
    EstimateDocument &doc = m_shell->document();
    EstimateMaterials *materials = doc.editor().materials();
    if (materials->rowCount() == 0) {
        dialogs().tell(Captions::info, QStringLiteral("В смете нет материалов."));
        return;
    }
    TCalcMat dialog(MatListStore::sheetCaption(m_lists->sheet()), m_shell->window());
    if (dialog.exec() != QDialog::Accepted)
        return;
    MatRecalc::Outcome out;
    if (dialog.fromList()) {
        // The whole sheet, whatever the filter shows.
        std::vector<MatRow> list;
        QString error;
        if (!MatListStore::read(m_lists->database(&error), m_lists->table(), QString(), list, &error)) {
            dialogs().tell(Captions::error, QStringLiteral("Не удалось прочитать список: %1").arg(error),
                           Dialogs::Icon::Error);
            return;
        }
        EstimateEditor::Scope step(doc.editor(), QStringLiteral("Пересчёт стоимости материалов"));
        out = MatRecalc::fromList(*materials, list);
    } else {
        EstimateEditor::Scope step(doc.editor(), QStringLiteral("Пересчёт стоимости материалов"));
        out = MatRecalc::byPercent(*materials, *dialog.percent());
    }
    m_editor->showMaterialsPage();
    QString text = QStringLiteral("Изменены цены материалов: %1.").arg(out.changed);
    if (dialog.fromList() && out.unmatched > 0)
        text += QStringLiteral(" Нет в списке: %1.").arg(out.unmatched);
    if (!out.skipped.isEmpty())
        text += QStringLiteral(" Не пересчитаны (цена не число): %1.")
                    .arg(out.skipped.join(QStringLiteral(", ")));
    if (!out.error.isEmpty())
        text += QStringLiteral(" Ошибка: %1").arg(out.error);
    dialogs().tell(Captions::info, text);
}

void MaterialsPart::StringGridMatSetEditText(int row, int col, const QString &text) {
    if (!option("CheckMatLiveSearch") || col != MatCol::Name || row < 0)
        return;
    if (text.trimmed().isEmpty() || m_liveModel->search(text) == 0) {
        m_memo->hide();
        return;
    }
    QTableView *view = m_editor->materialsPage()->StringGridMat;
    const QModelIndex cell = view->model()->index(row, col);
    m_memo->popUpUnder(view->visualRect(cell).translated(view->viewport()->pos()));
}

void MaterialsPart::MemoMatDblClick(int row) {
    const QString name = m_liveModel->nameAt(row);
    const QModelIndex edited = m_cellWatcher->editedIndex();
    if (name.isEmpty() || !edited.isValid())
        return;
    // The typed part is replaced by the chosen name.
    m_cellWatcher->discardEditor();
    m_memo->hide();
    MatRow found;
    QString error;
    const bool known = m_lists->findMaterial(name, found, &error);
    if (!known && !error.isEmpty())
        dialogs().tell(Captions::error, QStringLiteral("Не удалось найти материал: %1").arg(error),
                       Dialogs::Icon::Error);
    EstimateMaterials *materials = m_shell->document().editor().materials();
    int current = edited.row();
    {
        EstimateEditor::Scope step(m_shell->document().editor(), QStringLiteral("Вставка материала"));
        bool ok = materials->setData(materials->index(current, MatCol::Name), name, Qt::EditRole);
        if (ok && known) {
            ok = materials->setData(materials->index(current, MatCol::Unit), found.unit, Qt::EditRole) &&
                 materials->setData(materials->index(current, MatCol::Price), found.price, Qt::EditRole);
            if (ok && !found.nummat.isEmpty() &&
                materials->index(current, MatCol::Note).data(Qt::EditRole).toString().isEmpty())
                ok = materials->setData(materials->index(current, MatCol::Note), found.nummat, Qt::EditRole);
        }
        // On to the next row, ready for the next name.
        if (ok && current == materials->rowCount() - 1)
            ok = materials->addRow() >= 0;
        if (!ok)
            dialogs().tell(Captions::error,
                           QStringLiteral("Материал не записан: %1").arg(materials->lastError()),
                           Dialogs::Icon::Error);
        else
            ++current;
    }
    QTableView *view = m_editor->materialsPage()->StringGridMat;
    view->setCurrentIndex(materials->index(std::min(current, materials->rowCount() - 1), MatCol::Name));
    view->setFocus();
}
