#pragma once
// The materials lists in the main window: TListMat in the rate panel's tab "Материалы" or in a window
// of its own ("Список материалов", spdListMat, so that the rate grid stays beside it for attaching
// materials to rates); putting list materials into the estimate as one undoable step (with the
// "Найдено совпадение" dialog for a name the estimate has already); the materials live search MemoMat
// over the estimate's materials grid; the recalculation of the estimate materials' prices.

#include "MatList.h"
#include "ui/MainShell.h"

#include <vector>

class CellEditorWatcher;
class EditorPart;
class LiveSearchList;
class LiveSearchModel;
class MaterialLists;
class PricePart;
class QAction;
class TListMat;
namespace MaterialsStore {
struct Material;
}

class MaterialsPart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;
    void start() override;

    MaterialLists *lists() const { return m_lists; }
    TListMat *listFrame() const { return m_frame; }
    QWidget *listWindow() const { return m_window; }
    LiveSearchList *liveSearchList() const { return m_memo; }

    // spdListMat: the lists in their own window.
    void spdListMatClick();
    // The rate panel's tab "Материалы": the lists in the panel.
    void showInPanel();
    // Rows of a list into the estimate, as one step.
    void insertMaterials(const std::vector<MatRow> &rows);
    // A list material to the rate chosen in the rate grid.
    void attachToRate(const MatRow &row);
    // toolCalc: TCalcMat.
    void toolCalcClick();
    // StringGridMatSetEditText: the live search while a name is typed into the estimate's materials.
    void StringGridMatSetEditText(int row, int col, const QString &text);
    // MemoMatDblClick: live-search entry `row` into the material being typed.
    void MemoMatDblClick(int row);

    QAction *spdListMat = nullptr;

private:
    void buildLiveSearch();
    // TCalcMatKolvo for a material the estimate has already.
    void showDuplicate(const MaterialsStore::Material &material);
    bool option(const char *key) const;

    MainShell *m_shell = nullptr;
    EditorPart *m_editor = nullptr;
    PricePart *m_price = nullptr;
    MaterialLists *m_lists = nullptr;
    TListMat *m_frame = nullptr;
    QWidget *m_window = nullptr;
    LiveSearchList *m_memo = nullptr;
    LiveSearchModel *m_liveModel = nullptr;
    CellEditorWatcher *m_cellWatcher = nullptr;
};
