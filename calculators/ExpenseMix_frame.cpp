#include "ExpenseMix_frame.h"

#include "MixTable.h"
#include "ui/Dialogs.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

namespace {
const MixTable *mixTable(const QModelIndex &index) {
    return qobject_cast<const MixTable *>(index.model());
}
} // namespace

QWidget *MixDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                   const QModelIndex &index) const {
    const MixTable *table = mixTable(index);
    const QStringList items = table ? table->listItems(index.row(), index.column()) : QStringList();
    if (!items.isEmpty()) {
        auto *combo = new QComboBox(parent);
        combo->addItems(items);
        // The list closing is a finished edit: the row's bags follow at once.
        connect(combo, &QComboBox::activated, this, [this, combo] {
            auto *self = const_cast<MixDelegate *>(this);
            emit self->commitData(combo);
            emit self->closeEditor(combo);
        });
        return combo;
    }
    QWidget *editor = QStyledItemDelegate::createEditor(parent, option, index);
    if (auto *line = qobject_cast<QLineEdit *>(editor)) {
        line->setAlignment(Qt::AlignCenter);
        connect(line, &QLineEdit::textEdited, line, [line](const QString &text) {
            if (!text.contains(QLatin1Char('.')))
                return;
            const int cursor = line->cursorPosition();
            line->setText(QString(text).replace(QLatin1Char('.'), QLatin1Char(',')));
            line->setCursorPosition(cursor);
        });
    }
    return editor;
}

void MixDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const {
    if (auto *combo = qobject_cast<QComboBox *>(editor)) {
        const int i = combo->findText(index.data(Qt::EditRole).toString());
        combo->setCurrentIndex(i >= 0 ? i : 0);
        return;
    }
    QStyledItemDelegate::setEditorData(editor, index);
}

void MixDelegate::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const {
    if (auto *combo = qobject_cast<QComboBox *>(editor)) {
        model->setData(index, combo->currentText(), Qt::EditRole);
        return;
    }
    QStyledItemDelegate::setModelData(editor, model, index);
}

TExpenseMix::TExpenseMix(QWidget *parent) : QWidget(parent), m_table(new MixTable(this)) {
    setObjectName(QStringLiteral("ExpenseMix"));
    m_pages = new QTabWidget(this);
    m_pages->setObjectName(QStringLiteral("PageControl1"));
    auto *basic = new QWidget(m_pages);
    basic->setObjectName(QStringLiteral("TabSheetBase"));
    auto *user = new QWidget(m_pages);
    user->setObjectName(QStringLiteral("TabSheetUser"));
    m_pages->addTab(basic, QStringLiteral("Базовый"));
    m_pages->addTab(user, QStringLiteral("Пользователь"));

    m_grid = new QTableView(basic);
    m_grid->setObjectName(QStringLiteral("AdvStringGrid1"));
    m_grid->setModel(m_table);
    m_grid->setItemDelegate(new MixDelegate(m_grid));
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grid->setEditTriggers(QAbstractItemView::AllEditTriggers);
    m_grid->verticalHeader()->hide();
    m_grid->horizontalHeader()->setFixedHeight(40);
    m_grid->horizontalHeader()->setHighlightSections(false);
    m_grid->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_grid->verticalHeader()->setDefaultSectionSize(26);
    m_grid->setColumnWidth(MixCol::Name, 200);
    for (int c = MixCol::Bag; c < MixCol::Count; ++c)
        m_grid->setColumnWidth(c, 64);
    m_grid->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_grid->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_grid->setFixedSize(gridSize());

    m_toEstimate = new QPushButton(QStringLiteral("В смету"), basic);
    m_toEstimate->setObjectName(QStringLiteral("ButtonToEstimate"));
    m_toEstimate->setAutoDefault(false); // Enter finishes a cell, it does not add to the estimate
    m_toEstimate->setToolTip(QStringLiteral("Добавить мешки выбранной смеси в материалы сметы"));
    connect(m_toEstimate, &QPushButton::clicked, this, &TExpenseMix::ButtonToEstimateClick);

    auto *basicLayout = new QVBoxLayout(basic);
    basicLayout->addWidget(m_grid);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_toEstimate);
    basicLayout->addLayout(buttons);
    basicLayout->addStretch(1);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_pages);
}

QSize TExpenseMix::gridSize() const {
    int width = 2 * m_grid->frameWidth();
    for (int c = 0; c < MixCol::Count; ++c)
        width += m_grid->columnWidth(c);
    const int height = 2 * m_grid->frameWidth() + m_grid->horizontalHeader()->height() + MixRow::Count * 26;
    return {width, height};
}

void TExpenseMix::ButtonToEstimateClick() {
    const int row = m_grid->currentIndex().isValid() ? m_grid->currentIndex().row() : -1;
    if (row < 0) {
        dialogs().tell(Captions::warning, QStringLiteral("Выберите строку смеси."), Dialogs::Icon::Warning);
        return;
    }
    const QString bags = m_table->cell(row, MixCol::Bags);
    if (bags.isEmpty() || bags == QLatin1String("0")) {
        dialogs().tell(Captions::warning,
                       QStringLiteral("Для смеси «%1» не рассчитано ни одного мешка: введите площадь.")
                           .arg(m_table->cell(row, MixCol::Name)),
                       Dialogs::Icon::Warning);
        return;
    }
    emit addToEstimate(m_table->cell(row, MixCol::Name), bags);
}

FExpenseMix::FExpenseMix(QWidget *parent) : QDialog(parent), m_frame(new TExpenseMix(this)) {
    setObjectName(QStringLiteral("FExpenseMix"));
    setWindowTitle(QStringLiteral("Расчёт строительных смесей"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_frame);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}
