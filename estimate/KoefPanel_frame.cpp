#include "KoefPanel_frame.h"

#include "KoefModel.h"
#include "ui/Dialogs.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>

namespace {

// The unit, action and "applies to" columns are chosen from their lists.
class ChoiceDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override {
        const QStringList choices = KoefModel::choices(index.column());
        if (choices.isEmpty())
            return QStyledItemDelegate::createEditor(parent, option, index);
        auto *box = new QComboBox(parent);
        box->addItems(choices);
        return box;
    }
    void setEditorData(QWidget *editor, const QModelIndex &index) const override {
        if (auto *box = qobject_cast<QComboBox *>(editor))
            box->setCurrentText(index.data(Qt::EditRole).toString());
        else
            QStyledItemDelegate::setEditorData(editor, index);
    }
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override {
        if (auto *box = qobject_cast<QComboBox *>(editor))
            model->setData(index, box->currentText(), Qt::EditRole);
        else
            QStyledItemDelegate::setModelData(editor, model, index);
    }
};

} // namespace

TKoefPanel::TKoefPanel(KoefModel *model, QWidget *parent) : QWidget(parent), m_model(model) {
    setObjectName(QStringLiteral("TKoefPanel"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    GridKoef = new QTableView(this);
    GridKoef->setObjectName(QStringLiteral("GridKoef"));
    GridKoef->setModel(model);
    GridKoef->setItemDelegate(new ChoiceDelegate(GridKoef));
    GridKoef->verticalHeader()->setVisible(false);
    GridKoef->verticalHeader()->setDefaultSectionSize(21);
    GridKoef->setSelectionBehavior(QAbstractItemView::SelectRows);
    GridKoef->setSelectionMode(QAbstractItemView::SingleSelection);
    GridKoef->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                              QAbstractItemView::SelectedClicked);
    GridKoef->horizontalHeader()->setSectionResizeMode(KoefCol::Title, QHeaderView::Stretch);
    GridKoef->setColumnWidth(KoefCol::On, 44);
    GridKoef->setColumnWidth(KoefCol::Value, 80);
    GridKoef->setColumnWidth(KoefCol::Unit, 60);
    GridKoef->setColumnWidth(KoefCol::Action, 90);
    GridKoef->setColumnWidth(KoefCol::Applies, 140);
    GridKoef->setColumnWidth(KoefCol::Effect, 100);
    GridKoef->setMaximumHeight(6 * 21 + 8);
    layout->addWidget(GridKoef, 1);

    auto *buttons = new QVBoxLayout;
    ButtonAddKoef = new QPushButton(QStringLiteral("Добавить"), this);
    ButtonAddKoef->setObjectName(QStringLiteral("ButtonAddKoef"));
    ButtonAddKoef->setToolTip(QStringLiteral("Добавить коэффициент"));
    ButtonDeleteKoef = new QPushButton(QStringLiteral("Удалить"), this);
    ButtonDeleteKoef->setObjectName(QStringLiteral("ButtonDeleteKoef"));
    ButtonDeleteKoef->setToolTip(QStringLiteral("Удалить выбранный коэффициент"));
    buttons->addWidget(ButtonAddKoef);
    buttons->addWidget(ButtonDeleteKoef);
    buttons->addStretch(1);
    layout->addLayout(buttons);

    connect(ButtonAddKoef, &QPushButton::clicked, this, &TKoefPanel::ButtonAddKoefClick);
    connect(ButtonDeleteKoef, &QPushButton::clicked, this, &TKoefPanel::ButtonDeleteKoefClick);
}

void TKoefPanel::ButtonAddKoefClick() {
    const int row = m_model->addLine();
    if (row < 0) {
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось добавить коэффициент: %1").arg(m_model->lastError()),
                       Dialogs::Icon::Error);
        return;
    }
    GridKoef->setCurrentIndex(m_model->index(row, KoefCol::Title));
    GridKoef->edit(GridKoef->currentIndex());
}

void TKoefPanel::ButtonDeleteKoefClick() {
    const QModelIndex cur = GridKoef->currentIndex();
    if (!cur.isValid())
        return;
    const QString title = m_model->index(cur.row(), KoefCol::Title).data().toString();
    if (dialogs().ask(Captions::deletion, QStringLiteral("Удалить коэффициент «%1»?").arg(title)) !=
        Dialogs::Answer::Yes)
        return;
    if (!m_model->removeLine(cur.row()))
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось удалить коэффициент: %1").arg(m_model->lastError()),
                       Dialogs::Icon::Error);
}
