#pragma once
// The estimate in the main window: the page "Новый документ" with the estimate grid StringGridDoc, the
// coefficient panel PanelKoef and the totals (Edit6, Edit4, Edit5, EditValuta); the page "Для бригады"
// with the crew grid StringGridBrig and its bar; the page "Материалы". The editing commands live in the
// grid's pop-up menu PopupMenuDoc, the estimate tool bar and the menu "Правка"; they forward to the
// document's EstimateEditor.

#include "ui/MainShell.h"

#include <QPair>

class EstimateDocument;
class QAction;
class QComboBox;
class QLineEdit;
class QMenu;
class QSplitter;
class QTableView;
class TSmetaMaterials;

class EditorPart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;
    void start() override;
    void documentLoaded() override;
    void collectSettings() override;

    // The estimate grid's view and its pop-up menu (other parts add their options to it).
    QTableView *view() const { return m_view; }
    QMenu *popupMenu() const { return m_popup; }
    // Brings the estimate page to the front.
    void showEstimatePage();
    // The page of the estimate's materials, and bringing it to the front.
    TSmetaMaterials *materialsPage() const { return m_materialsPage; }
    void showMaterialsPage();

    // The row the insertions of other parts go to (grid rows, data from 2).
    int currentRow() const { return m_currentRow; }
    void setCurrentRow(int gridRow) { m_currentRow = gridRow; }
    void moveCurrentTo(int gridRow, int col = -1);
    // The rows the commands work on: the selected rows, else the current row (grid rows).
    QPair<int, int> selectedDocRows() const;

    // StringGridDocCanEditCell: the rights of the row's kind; a closing "Итого" row is not typed into.
    bool StringGridDocCanEditCell(int gridRow, int col) const;
    // Commands of the pop-up menu PopupMenuDoc and the tool bar.
    void NAddRowClick();
    void NInsertRowClick();
    void NDeleteRowClick();
    void NUpRowClick();
    void NDownRowClick();
    void NCreateRazdelClick();
    void NCreatePodrazdelClick();
    void NDeleteRazdelClick();
    void NDeletePodrazdelClick();
    void NCopyRasClick();
    void NInsertRasClick();
    void NUndoClick();
    void NRedoClick();

private:
    void buildPages();
    void buildCommands();
    void showTotals();
    QAction *command(const char *name, const QString &text, const QKeySequence &key, int icon,
                     void (EditorPart::*handler)());

    MainShell *m_shell = nullptr;
    EstimateDocument *m_doc = nullptr;
    QTableView *m_view = nullptr;
    QTableView *m_crewView = nullptr;
    QSplitter *m_koefSplitter = nullptr;
    QMenu *m_popup = nullptr;
    QLineEdit *m_works = nullptr;
    QLineEdit *m_materials = nullptr;
    QLineEdit *m_grand = nullptr;
    QComboBox *m_currency = nullptr;
    QWidget *m_estimatePage = nullptr;
    QWidget *m_crewPage = nullptr;
    TSmetaMaterials *m_materialsPage = nullptr;
    int m_currentRow = 2;
};
