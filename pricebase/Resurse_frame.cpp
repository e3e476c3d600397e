#include "Resurse_frame.h"

#include "ResourceModel.h"
#include "ui/Dialogs.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>

namespace {

// Tells the model while a price is being typed, so that its column reads "Цена материала".
class PriceEditingDelegate : public QStyledItemDelegate {
public:
    PriceEditingDelegate(ResourceModel *model, QObject *parent)
        : QStyledItemDelegate(parent), m_model(model) {}
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override {
        if (index.column() == ResCol::Price)
            m_model->setPriceEditing(true);
        return QStyledItemDelegate::createEditor(parent, option, index);
    }
    void destroyEditor(QWidget *editor, const QModelIndex &index) const override {
        if (index.column() == ResCol::Price)
            m_model->setPriceEditing(false);
        QStyledItemDelegate::destroyEditor(editor, index);
    }

private:
    ResourceModel *m_model;
};

} // namespace

TResurse::TResurse(ResourceModel *model, const QString &rateText, const QString &refusal,
                   const QString &listCaption, QWidget *parent)
    : QDialog(parent), m_model(model), m_refusal(refusal), m_listCaption(listCaption) {
    setObjectName(QStringLiteral("Resurse"));
    setWindowTitle(QStringLiteral("Ресурсы"));
    resize(760, 420);
    auto *layout = new QVBoxLayout(this);
    LabelRes = new QLabel(rateText, this);
    LabelRes->setObjectName(QStringLiteral("LabelRes"));
    LabelRes->setWordWrap(true);
    layout->addWidget(LabelRes);

    StringGridListMat = new QTableView(this);
    StringGridListMat->setObjectName(QStringLiteral("StringGridListMat"));
    StringGridListMat->setModel(model);
    StringGridListMat->setItemDelegate(new PriceEditingDelegate(model, StringGridListMat));
    StringGridListMat->verticalHeader()->setVisible(false);
    StringGridListMat->verticalHeader()->setDefaultSectionSize(21);
    StringGridListMat->setSelectionBehavior(QAbstractItemView::SelectItems);
    StringGridListMat->setSelectionMode(QAbstractItemView::SingleSelection);
    StringGridListMat->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                                       QAbstractItemView::AnyKeyPressed);
    StringGridListMat->horizontalHeader()->setSectionResizeMode(ResCol::Name, QHeaderView::Stretch);
    StringGridListMat->setColumnWidth(ResCol::Unit, 70);
    StringGridListMat->setColumnWidth(ResCol::Norma, 80);
    StringGridListMat->setColumnWidth(ResCol::Price, 110);
    for (int c : {int(ResCol::Ras), int(ResCol::Id), int(ResCol::IdMat)})
        StringGridListMat->setColumnHidden(c, true);
    layout->addWidget(StringGridListMat, 1);

    auto *bar = new QHBoxLayout;
    auto button = [this, bar](const char *name, const QString &text, void (TResurse::*handler)()) {
        auto *b = new QPushButton(text, this);
        b->setObjectName(QLatin1String(name));
        b->setAutoDefault(false);
        connect(b, &QPushButton::clicked, this, handler);
        bar->addWidget(b);
        return b;
    };
    ButtonAddRes = button("ButtonAddRes", QStringLiteral("Добавить ресурс"), &TResurse::ButtonAddResClick);
    ButtonDeleteRes =
        button("ButtonDeleteRes", QStringLiteral("Удалить ресурс"), &TResurse::ButtonDeleteResClick);
    ButtonClearRes =
        button("ButtonClearRes", QStringLiteral("Очистить базу ресурсов"), &TResurse::ButtonClearResClick);
    bar->addStretch(1);
    ButtonClose = new QPushButton(QStringLiteral("Закрыть"), this);
    ButtonClose->setObjectName(QStringLiteral("ButtonClose"));
    connect(ButtonClose, &QPushButton::clicked, this, &QDialog::accept);
    bar->addWidget(ButtonClose);
    layout->addLayout(bar);
}

void TResurse::ButtonAddResClick() {
    if (!m_refusal.isEmpty()) {
        dialogs().tell(Captions::warning, m_refusal, Dialogs::Icon::Warning);
        return;
    }
    const int row = m_model->addResource();
    if (row < 0) {
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось добавить ресурс: %1").arg(m_model->lastError()),
                       Dialogs::Icon::Error);
        return;
    }
    const QModelIndex cell = m_model->index(row, ResCol::Name);
    StringGridListMat->setCurrentIndex(cell);
    StringGridListMat->edit(cell);
}

void TResurse::ButtonDeleteResClick() {
    const QModelIndex current = StringGridListMat->currentIndex();
    if (!current.isValid())
        return;
    const QString name = m_model->rows()[static_cast<size_t>(current.row())].name;
    if (dialogs().ask(Captions::deletion, QStringLiteral("Удалить материал ") + name + QStringLiteral("?")) !=
        Dialogs::Answer::Yes)
        return;
    if (!m_model->removeResource(current.row()))
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось удалить ресурс: %1").arg(m_model->lastError()),
                       Dialogs::Icon::Error);
}

void TResurse::ButtonClearResClick() {
    if (dialogs().ask(Captions::deletion, QStringLiteral("Удалить ресурсы для ") + m_listCaption +
                                              QStringLiteral("?")) != Dialogs::Answer::Yes)
        return;
    if (!m_model->clearTable())
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось очистить базу ресурсов: %1").arg(m_model->lastError()),
                       Dialogs::Icon::Error);
}
