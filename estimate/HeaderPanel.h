#pragma once
// The estimate's header above the grid: customer and object (the object list follows the customer),
// contractor, date, number and text number, name of the works and the document title. The lists come from
// the registers; the values go to and from EstimateHeader::Values. Two lines when there is room, three on
// a narrow window.

#include "EstimateHeader.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QDateEdit;
class QLineEdit;
class QSpinBox;
class QToolButton;
class TModuleSQL;

class EstimateHeaderPanel : public QWidget {
    Q_OBJECT
public:
    explicit EstimateHeaderPanel(QWidget *parent = nullptr);

    // The registers become reachable (after the data module exists); the lists are filled.
    void attach(TModuleSQL *module);
    bool isAttached() const { return m_module != nullptr; }
    // Refill the lists from the registers, keeping the current choices where they still exist.
    void reloadCustomers();
    void reloadContractors();

    // The header's values (the currency is not part of this panel and stays as given in defaults).
    EstimateHeader::Values values(const EstimateHeader::Values &defaults = {}) const;
    // Shows the values without reporting an edit. A customer, object or contractor that the register does
    // not know is still shown, as the document names it.
    void setValues(const EstimateHeader::Values &values);
    // Numbering by date: the text number is the estimate's date, "DDMMYYYY" or "YYYYMMDD".
    void setDateNumbering(bool on, bool yearFirst);
    bool dateNumbering() const;

    QComboBox *ComboBoxZakaz = nullptr;
    QComboBox *ComboBoxObject = nullptr;
    QComboBox *ComboBoxPodryad = nullptr;
    QComboBox *ComboBoxShablon = nullptr;
    QDateEdit *DateSmeta = nullptr;
    QSpinBox *NumericSmeta = nullptr;
    QLineEdit *NumericSmetaWord = nullptr;
    QToolButton *spdDateNumericSmetaWord = nullptr;
    QLineEdit *EditNameWork = nullptr;

    QSize minimumSizeHint() const override;
    // True while the fields stand in three lines.
    bool isNarrow() const { return m_narrow; }

signals:
    // The user changed something in the header (the document changed).
    void edited();
    // The user chose another customer or object.
    void customerOrObjectChosen();
    // The user typed or chose another title.
    void titleChanged(const QString &title);
    void dateNumberingToggled(bool on);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void build();
    void arrange(bool narrow);
    void fillObjects(const QString &select);
    void applyDateNumber();
    static void choose(QComboBox *box, const QString &text);

    TModuleSQL *m_module = nullptr;
    bool m_quiet = false; // set while values are shown programmatically
    bool m_yearFirst = false;
    QWidget *m_numberAndDate = nullptr;
    QLabel *m_customerLabel = nullptr, *m_objectLabel = nullptr, *m_contractorLabel = nullptr,
           *m_worksLabel = nullptr;
    bool m_narrow = false;
    int m_wideWidth = 0;
    int m_narrowWidth = 0;
};
