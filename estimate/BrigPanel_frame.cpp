#include "BrigPanel_frame.h"

#include "CrewSheet.h"
#include "storage/TextValues.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

TBrigPanel::TBrigPanel(CrewSheet *sheet, QWidget *parent) : QWidget(parent), m_sheet(sheet) {
    setObjectName(QStringLiteral("TBrigPanel"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel(QStringLiteral("Коэффициент:"), this));
    EditKoefBrig = new QLineEdit(this);
    EditKoefBrig->setObjectName(QStringLiteral("EditKoefBrig"));
    EditKoefBrig->setToolTip(QStringLiteral("Заменить коэффициент расчёта во всех строках"));
    EditKoefBrig->setMaximumWidth(80);
    EditKoefBrig->setAlignment(Qt::AlignRight);
    layout->addWidget(EditKoefBrig);
    RadioButtonKoefBrigAll = new QRadioButton(QStringLiteral("один для всех строк"), this);
    RadioButtonKoefBrigAll->setObjectName(QStringLiteral("RadioButtonKoefBrigAll"));
    RadioButtonKoefBrig = new QRadioButton(QStringLiteral("свой в каждой строке"), this);
    RadioButtonKoefBrig->setObjectName(QStringLiteral("RadioButtonKoefBrig"));
    auto *group = new QButtonGroup(this);
    group->addButton(RadioButtonKoefBrigAll);
    group->addButton(RadioButtonKoefBrig);
    layout->addWidget(RadioButtonKoefBrigAll);
    layout->addWidget(RadioButtonKoefBrig);
    layout->addStretch(1);
    LabelBrigTotals = new QLabel(this);
    LabelBrigTotals->setObjectName(QStringLiteral("LabelBrigTotals"));
    layout->addWidget(LabelBrigTotals);

    connect(EditKoefBrig, &QLineEdit::editingFinished, this, &TBrigPanel::EditKoefBrigChange);
    connect(RadioButtonKoefBrig, &QRadioButton::toggled, this, [this](bool on) { m_sheet->setPerRow(on); });
    for (QRadioButton *b : {RadioButtonKoefBrigAll, RadioButtonKoefBrig})
        connect(b, &QRadioButton::clicked, this, &TBrigPanel::changedByUser);
    connect(sheet, &CrewSheet::settingsChanged, this, &TBrigPanel::showSettings);
    connect(sheet, &CrewSheet::totalsChanged, this, &TBrigPanel::showTotals);
    showSettings();
    showTotals();
}

void TBrigPanel::showSettings() {
    if (EditKoefBrig->text() != m_sheet->globalKoef())
        EditKoefBrig->setText(m_sheet->globalKoef());
    (m_sheet->perRow() ? RadioButtonKoefBrig : RadioButtonKoefBrigAll)->setChecked(true);
    const bool bad = !TextValues::parseAmount(m_sheet->globalKoef());
    EditKoefBrig->setStyleSheet(bad ? QStringLiteral("background: #FFC8C8") : QString());
    EditKoefBrig->setToolTip(
        bad ? QStringLiteral("Коэффициент «%1» не является числом: цены бригады не считаются.")
                  .arg(m_sheet->globalKoef())
            : QStringLiteral("Заменить коэффициент расчёта во всех строках"));
}

void TBrigPanel::EditKoefBrigChange() {
    const QString text = EditKoefBrig->text().trimmed();
    if (text == m_sheet->globalKoef())
        return;
    m_sheet->setGlobalKoef(text);
    showSettings();
    emit changedByUser();
}

void TBrigPanel::showTotals() {
    // A refused sum says so instead of showing a number.
    auto shown = [](const MoneyResult &m) {
        return m ? m->text() : QStringLiteral("не считается (%1)").arg(numberProblemText(m.problem()));
    };
    LabelBrigTotals->setText(
        QStringLiteral("Бригаде: %1   Заказчику: %2   Разница: %3")
            .arg(shown(m_sheet->crewTotal()), shown(m_sheet->customerTotal()), shown(m_sheet->margin())));
}
