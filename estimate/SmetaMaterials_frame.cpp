#include "SmetaMaterials_frame.h"

#include "EstimateMaterials.h"
#include "ui/Dialogs.h"
#include "ui/ShortTextDelegate.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

TSmetaMaterials::TSmetaMaterials(EstimateMaterials *model, QWidget *parent)
    : QWidget(parent), m_model(model) {
    setObjectName(QStringLiteral("TSmetaMaterials"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    StringGridMat = new QTableView(this);
    StringGridMat->setObjectName(QStringLiteral("StringGridMat"));
    StringGridMat->setModel(model);
    StringGridMat->setItemDelegate(new ShortTextDelegate(StringGridMat));
    StringGridMat->verticalHeader()->setVisible(false);
    StringGridMat->verticalHeader()->setDefaultSectionSize(21);
    StringGridMat->setSelectionMode(QAbstractItemView::ContiguousSelection);
    StringGridMat->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                                   QAbstractItemView::AnyKeyPressed);
    StringGridMat->setColumnWidth(MatCol::Num, 40);
    StringGridMat->setColumnWidth(MatCol::Name, 380);
    StringGridMat->horizontalHeader()->setStretchLastSection(true);
    layout->addWidget(StringGridMat, 1);
    PopupMenuMat = new QMenu(this);
    PopupMenuMat->setObjectName(QStringLiteral("PopupMenuMat"));
    StringGridMat->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(StringGridMat, &QWidget::customContextMenuRequested, this, [this](const QPoint &pos) {
        if (!PopupMenuMat->isEmpty())
            PopupMenuMat->popup(StringGridMat->viewport()->mapToGlobal(pos));
    });

    auto *bar = new QHBoxLayout;
    ButtonAddMat = new QPushButton(QStringLiteral("Добавить материал"), this);
    ButtonAddMat->setObjectName(QStringLiteral("ButtonAddMat"));
    ButtonDeleteMat = new QPushButton(QStringLiteral("Удалить материал"), this);
    ButtonDeleteMat->setObjectName(QStringLiteral("ButtonDeleteMat"));
    LabelMatTotal = new QLabel(this);
    LabelMatTotal->setObjectName(QStringLiteral("LabelMatTotal"));
    bar->addWidget(ButtonAddMat);
    bar->addWidget(ButtonDeleteMat);
    bar->addStretch(1);
    bar->addWidget(LabelMatTotal);
    layout->addLayout(bar);

    connect(ButtonAddMat, &QPushButton::clicked, this, &TSmetaMaterials::ButtonAddMatClick);
    connect(ButtonDeleteMat, &QPushButton::clicked, this, &TSmetaMaterials::ButtonDeleteMatClick);
    connect(model, &EstimateMaterials::totalChanged, this, &TSmetaMaterials::showTotal);
    connect(model, &QAbstractItemModel::modelReset, this, &TSmetaMaterials::showTotal);
    showTotal();
}

void TSmetaMaterials::showTotal() {
    const MoneyResult total = m_model->total();
    LabelMatTotal->setText(
        QStringLiteral("Итого материалы: %1")
            .arg(total ? total->text()
                       : QStringLiteral("не считается (%1)").arg(numberProblemText(total.problem()))));
}

void TSmetaMaterials::ButtonAddMatClick() {
    const int row = m_model->addRow();
    if (row < 0) {
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось добавить материал: %1").arg(m_model->lastError()),
                       Dialogs::Icon::Error);
        return;
    }
    StringGridMat->setCurrentIndex(m_model->index(row, MatCol::Name));
    StringGridMat->edit(StringGridMat->currentIndex());
}

void TSmetaMaterials::ButtonDeleteMatClick() {
    int first = -1, last = -1;
    for (const QModelIndex &i : StringGridMat->selectionModel()->selectedIndexes()) {
        first = first < 0 ? i.row() : std::min(first, i.row());
        last = std::max(last, i.row());
    }
    if (first < 0 && StringGridMat->currentIndex().isValid())
        first = last = StringGridMat->currentIndex().row();
    if (first < 0)
        return;
    if (dialogs().ask(Captions::deletion,
                      QStringLiteral("Удалить выделенные материалы (%1)?").arg(last - first + 1)) !=
        Dialogs::Answer::Yes)
        return;
    if (!m_model->removeRows(first, last))
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось удалить материалы: %1").arg(m_model->lastError()),
                       Dialogs::Icon::Error);
}
