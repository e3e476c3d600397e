#pragma once
// The price base in the main window: the rate panel TRatePanel in the left column (price lists,
// section navigation, the rate grid StringGridRas), the live-search list MemoPrice over the estimate
// grid, the options of insertion, and the insertion of rates into the estimate as one undoable step.

#include "ui/MainShell.h"

#include <QList>
#include <QPair>
#include <memory>

class CellEditorWatcher;
class EditorPart;
class EstimateDocument;
class LiveSearchList;
class LiveSearchModel;
class MaterialNeeds;
class PriceBase;
class QAction;
class TRatePanel;

class PricePart : public ShellPart {
    Q_OBJECT
public:
    explicit PricePart(QObject *parent = nullptr);
    ~PricePart() override;

    void attach(MainShell &shell) override;
    void start() override;
    void documentLoaded() override;
    bool settleBeforeClose() override;

    PriceBase *priceBase() const { return m_priceBase; }
    TRatePanel *ratePanel() const { return m_panel; }
    LiveSearchList *liveSearchList() const { return m_memo; }

    // StringGridRasDblClickCell: rate grid row r (or every ticked row) into the estimate.
    void StringGridRasDblClickCell(int gridRow);
    // StringGridDocSetEditText: the live search while a work's name is typed into the estimate grid.
    void StringGridDocSetEditText(int gridRow, int col, const QString &text);
    // MemoPriceDblClick: live-search entry `row` into the current estimate row.
    void MemoPriceDblClick(int row);
    // The estimate's materials of one rate again from the quantities and the norms.
    void SearchAndWriteResurse(const QString &rec, const QString &table);
    // The same for several rates (rec, resources table) at once.
    void writeMaterials(const QList<QPair<QString, QString>> &rates);

private:
    void buildOptions();
    void buildLiveSearch();
    void showDuplicate(int gridRow);
    bool option(const char *key) const;

    MainShell *m_shell = nullptr;
    EstimateDocument *m_doc = nullptr;
    EditorPart *m_editor = nullptr;
    PriceBase *m_priceBase = nullptr;
    TRatePanel *m_panel = nullptr;
    LiveSearchList *m_memo = nullptr;
    LiveSearchModel *m_liveModel = nullptr;
    CellEditorWatcher *m_cellWatcher = nullptr;
    std::unique_ptr<MaterialNeeds> m_needs; // what the estimate needs of each material, by the norms
    bool m_inserting = false;               // an insertion's own step needs no recomputing of materials
};
