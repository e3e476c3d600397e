#include "ResourcesPart.h"

#include "CopyRas_frame.h"
#include "CreateRasVirn_frame.h"
#include "PriceBase.h"
#include "PricePart.h"
#include "RatePanel_frame.h"
#include "RedPrimRas_frame.h"
#include "ResourceModel.h"
#include "Resurse_frame.h"
#include "storage/ModuleSQL.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QStyle>
#include <QToolBar>

void ResourcesPart::attach(MainShell &shell) {
    m_shell = &shell;
    m_price = shell.part<PricePart>();
    TRatePanel *panel = m_price->ratePanel();
    auto make = [this, panel](const char *name, const QString &hint, QStyle::StandardPixmap icon,
                              void (ResourcesPart::*handler)()) {
        auto *a = new QAction(panel->style()->standardIcon(icon), hint, panel);
        a->setObjectName(QLatin1String(name));
        a->setToolTip(hint);
        connect(a, &QAction::triggered, this, handler);
        return a;
    };
    ToolResurs = make("ToolResurs", QStringLiteral("Ресурсы"), QStyle::SP_FileDialogListView,
                      &ResourcesPart::ToolResursClick);
    ToolCopyRas = make("ToolCopyRas", QStringLiteral("Копировать текущие расценки в ..."),
                       QStyle::SP_FileDialogToParent, &ResourcesPart::ToolCopyRasClick);
    ToolPrimRas = make("ToolPrimRas", QStringLiteral("Редактировать примечание к расценкам"),
                       QStyle::SP_FileDialogInfoView, &ResourcesPart::ToolPrimRasClick);
    panel->ToolBarRas->addSeparator();
    panel->ToolBarRas->addActions({ToolResurs, ToolCopyRas, ToolPrimRas});
    connect(panel, &TRatePanel::serverConnected, this, &ResourcesPart::offerServerFill);
}

void ResourcesPart::ToolResursClick() {
    TModuleSQL *module = m_shell->module();
    if (!module)
        return;
    PriceBase &base = *m_price->priceBase();
    PriceCopy::List list;
    if (!currentList(&list))
        return;
    const std::optional<RateRow> rate = m_price->ratePanel()->currentRate();
    const QString refusal = ResourceStore::refusal(true, rate ? &*rate : nullptr);
    // A section or subsection title, or no rate at all, has no resources to show.
    const QString rec = refusal.isEmpty() ? (*rate)[PriceCol::Rec] : QString();
    TRatePanel *panel = m_price->ratePanel();
    const QString caption = panel->PageControlRas->tabText(panel->PageControlRas->currentIndex());
    ResourceModel model(module->database(Db::Price), base.resourcesTable(), rec);
    QString error;
    if (!model.reload(&error)) {
        dialogs().tell(Captions::error, QStringLiteral("Не удалось прочитать ресурсы: %1").arg(error),
                       Dialogs::Icon::Error);
        return;
    }
    const QString rateText =
        rate && !rate->isBlank()
            ? QStringLiteral("Ресурсы расценки %1 «%2»").arg((*rate)[PriceCol::Ras], rate->name())
            : QStringLiteral("Расценка не выбрана");
    TResurse dialog(&model, rateText, refusal, caption, m_shell->window());
    dialog.exec();
}

bool ResourcesPart::currentList(PriceCopy::List *list) {
    PriceBase &base = *m_price->priceBase();
    if (!base.showsRates()) {
        dialogs().tell(Captions::warning, QStringLiteral("Откройте вкладку \"Расценки\""),
                       Dialogs::Icon::Warning);
        return false;
    }
    *list = base.isRemote()                           ? PriceCopy::List::Server
            : base.table() == QLatin1String("price2") ? PriceCopy::List::Price2
                                                      : PriceCopy::List::MyPrice;
    return true;
}

bool ResourcesPart::copyList(PriceCopy::List from, PriceCopy::List to) {
    PriceBase &base = *m_price->priceBase();
    PriceCopy::Outcome outcome;
    QString error;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool ok = PriceCopy::copy(m_shell->module()->database(Db::Price), &base.remote(), from, to,
                                    base.currency(), &outcome, &error);
    QApplication::restoreOverrideCursor();
    if (!ok) {
        dialogs().tell(Captions::error, QStringLiteral("Расценки не скопированы: %1").arg(error),
                       Dialogs::Icon::Error);
        return false;
    }
    dialogs().tell(Captions::info, QStringLiteral("В «%1» скопировано расценок: %2, ресурсов: %3.")
                                       .arg(PriceCopy::caption(to))
                                       .arg(outcome.rates)
                                       .arg(outcome.resources));
    return true;
}

void ResourcesPart::ToolCopyRasClick() {
    if (!m_shell->module())
        return;
    PriceCopy::List from;
    if (!currentList(&from) || !m_price->ratePanel()->settleEdits())
        return;
    TCopyRas dialog(from, m_price->priceBase()->serverConnected(), m_shell->window());
    if (dialog.exec() != QDialog::Accepted)
        return;
    copyList(from, dialog.target());
}

void ResourcesPart::ToolPrimRasClick() {
    TRedPrimRas dialog(m_shell->dataFolder(), m_shell->window());
    dialog.exec();
}

void ResourcesPart::offerServerFill() {
    PriceBase &base = *m_price->priceBase();
    if (!base.isRemote() || !m_shell->module())
        return;
    // The list just read holds every rate of the server's table.
    const RateTable &rows = base.model().allRows();
    for (size_t i = 0; i < rows.size(); ++i)
        if (!rows.isBlank(i))
            return;
    TCreateRasVirn dialog(m_shell->window());
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (copyList(dialog.source(), PriceCopy::List::Server))
        m_price->ratePanel()->ReadSqlRAS();
}
