#include "ActVolumesPage.h"

#include "estimate/EstimateDocument.h"
#include "estimate/EstimatePrint.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"
#include "ui/Dialogs.h"
#include "ui/ShortTextDelegate.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

namespace {

template <typename W> W *named(W *w, const char *name) {
    w->setObjectName(QString::fromLatin1(name));
    return w;
}

} // namespace

ActVolumesPage::ActVolumesPage(EstimateDocument &document, QWidget *parent)
    : QWidget(parent), m_doc(document) {
    setObjectName(QStringLiteral("PageVolumes"));
    auto *v = new QVBoxLayout(this);
    LabelVolumes = named(new QLabel(this), "LabelVolumes");
    LabelVolumes->setWordWrap(true);
    v->addWidget(LabelVolumes);
    GridVolumes = named(new QTableView(this), "GridVolumes");
    GridVolumes->setModel(&m_volumes);
    GridVolumes->setItemDelegate(new ShortTextDelegate(GridVolumes));
    GridVolumes->verticalHeader()->hide();
    GridVolumes->horizontalHeader()->setSectionResizeMode(ActVolumeCol::Name, QHeaderView::Stretch);
    GridVolumes->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                                 QAbstractItemView::AnyKeyPressed);
    v->addWidget(GridVolumes, 3);
    auto *buttons = new QHBoxLayout;
    spdVolumesZero = named(new QPushButton(QStringLiteral("Обнулить «В этом акте»"), this), "spdVolumesZero");
    spdVolumesRemainder =
        named(new QPushButton(QStringLiteral("Весь остаток в этот акт"), this), "spdVolumesRemainder");
    spdDeleteLastAct =
        named(new QPushButton(QStringLiteral("Удалить последний акт"), this), "spdDeleteLastAct");
    buttons->addWidget(spdVolumesZero);
    buttons->addWidget(spdVolumesRemainder);
    buttons->addStretch(1);
    buttons->addWidget(spdDeleteLastAct);
    v->addLayout(buttons);
    v->addWidget(new QLabel(QStringLiteral("Составленные акты по объёмам"), this));
    GridActs = named(new QTableView(this), "GridActs");
    m_acts = new QStandardItemModel(0, 4, this);
    m_acts->setHorizontalHeaderLabels({QStringLiteral("№ акта"), QStringLiteral("Дата"),
                                       QStringLiteral("Отчетный период"), QStringLiteral("Сумма")});
    GridActs->setModel(m_acts);
    GridActs->setEditTriggers(QAbstractItemView::NoEditTriggers);
    GridActs->verticalHeader()->hide();
    GridActs->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Stretch);
    v->addWidget(GridActs, 1);

    connect(&m_volumes, &ActVolumesModel::edited, this, &ActVolumesPage::showState);
    connect(spdVolumesZero, &QPushButton::clicked, this, [this] { m_volumes.setAll(QStringLiteral("0")); });
    connect(spdVolumesRemainder, &QPushButton::clicked, &m_volumes, &ActVolumesModel::resetToRemainder);
    connect(spdDeleteLastAct, &QPushButton::clicked, this, &ActVolumesPage::spdDeleteLastActClick);
}

void ActVolumesPage::enter() {
    TModuleSQL *module = m_doc.module();
    m_stored = module ? ActVolumes::typed(module->database(Db::Smeta)) : QMap<QString, QString>();
    load(m_stored);
}

void ActVolumesPage::refresh() {
    load(m_volumes.typed());
}

void ActVolumesPage::load(const QMap<QString, QString> &typed) {
    TModuleSQL *module = m_doc.module();
    QSqlDatabase db = module ? module->database(Db::Smeta) : QSqlDatabase();
    EstimatePrint estimate = m_doc.print();
    // Rows the document has not numbered yet get their work ids (no edit of the document).
    const bool unnumbered =
        std::any_of(estimate.rows.cbegin(), estimate.rows.cend(), [](const EstimatePrint::Row &r) {
            return r.kind == EstimatePrint::Kind::Work && r.id.isEmpty();
        });
    QString why;
    if (unnumbered && m_doc.writeWorkingDatabase(&why))
        estimate = m_doc.print();
    const QVector<ActVolumes::Act> history = ActVolumes::history(db);
    m_volumes.load(ActVolumes::volumes(ActVolumes::estimateRows(estimate), history, typed));
    m_acts->setRowCount(0);
    for (const ActVolumes::Act &a : history) {
        QList<QStandardItem *> items{new QStandardItem(a.number),
                                     new QStandardItem(TextValues::shortDate(a.date)),
                                     new QStandardItem(a.periodFrom + QStringLiteral(" – ") + a.periodTo),
                                     new QStandardItem(a.grand.grouped())};
        items.last()->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_acts->appendRow(items);
    }
    spdDeleteLastAct->setEnabled(!history.isEmpty());
    showState();
}

bool ActVolumesPage::leave(bool *changed, QString *error) {
    const QMap<QString, QString> typed = m_volumes.typed();
    *changed = typed != m_stored;
    if (!*changed)
        return true;
    TModuleSQL *module = m_doc.module();
    if (!module || !ActVolumes::saveTyped(module->database(Db::Smeta), typed, error))
        return false;
    m_stored = typed;
    return true;
}

void ActVolumesPage::showState() {
    const bool byVolumes = m_acts->rowCount() > 0 || !m_volumes.typed().isEmpty();
    QString text = byVolumes ? QStringLiteral("Акт включит количества столбца «В этом акте».")
                             : QStringLiteral("Актов по объёмам нет: акт включит всю смету. Чтобы закрыть "
                                              "часть работ, измените количества в столбце «В этом акте».");
    if (const int problems = m_volumes.problemCount(); problems > 0)
        text += QStringLiteral(" Ячейки, отмеченные красным (%1), не приняты: акт не составляется, пока они "
                               "не исправлены.")
                    .arg(problems);
    LabelVolumes->setText(text);
}

void ActVolumesPage::spdDeleteLastActClick() {
    TModuleSQL *module = m_doc.module();
    QSqlDatabase db = module ? module->database(Db::Smeta) : QSqlDatabase();
    const QVector<ActVolumes::Act> history = ActVolumes::history(db);
    if (history.isEmpty())
        return;
    const ActVolumes::Act &last = history.constLast();
    if (dialogs().ask(Captions::deletion,
                      QStringLiteral("Удалить акт № %1 от %2? Его объёмы снова войдут в остаток.")
                          .arg(last.number, TextValues::shortDate(last.date))) != Dialogs::Answer::Yes)
        return;
    QString why;
    if (!ActVolumes::deleteLast(db, &why)) {
        dialogs().tell(Captions::error, QStringLiteral("Акт не удалён: %1").arg(why), Dialogs::Icon::Error);
        return;
    }
    m_doc.setChanged(true);
    refresh();
}
