#include "CalculatorsPart.h"

#include "ExpenseMix_frame.h"
#include "FigurePlugin.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateEditor.h"
#include "estimate/MaterialsStore.h"
#include "fileserver/Protocol.h"
#include "server/RemoteClient.h"
#include "server/ServerPart.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>

void CalculatorsPart::attach(MainShell &shell) {
    m_shell = &shell;
    auto *menu = new QMenu(QStringLiteral("&Калькуляторы"), shell.window());
    menu->setObjectName(QStringLiteral("MenuCalc"));
    shell.window()->menuBar()->insertMenu(shell.menu(ShellMenu::Help)->menuAction(), menu);
    QAction *mix = menu->addAction(QStringLiteral("Расчет строительных смесей"));
    mix->setObjectName(QStringLiteral("MExpenseMix"));
    connect(mix, &QAction::triggered, this, &CalculatorsPart::MExpenseMixClick);
    m_figures = menu->addAction(QStringLiteral("Площади фигур"));
    m_figures->setObjectName(QStringLiteral("MSfigure"));
    connect(m_figures, &QAction::triggered, this, &CalculatorsPart::MSfigureClick);
}

void CalculatorsPart::MExpenseMixClick() {
    FExpenseMix dialog(m_shell->window());
    connect(dialog.frame(), &TExpenseMix::addToEstimate, this,
            [this](const QString &name, const QString &bags) {
                QString error;
                if (!addBagsToEstimate(name, bags, &error))
                    dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
            });
    dialog.exec();
}

bool CalculatorsPart::addBagsToEstimate(const QString &name, const QString &bags, QString *error) {
    MaterialsStore::Material m;
    m.name = name;
    m.unit = QStringLiteral("меш.");
    m.quantity = bags;
    if (MaterialsStore::add(m_shell->module()->database(Db::Smeta), m, error).isEmpty())
        return false;
    EstimateDocument &doc = m_shell->document();
    doc.editor().materialsChanged();
    doc.setChanged(true);
    m_shell->showStatus(QStringLiteral("В материалы сметы добавлено: %1 — %2 меш.").arg(name, bags));
    return true;
}

QString CalculatorsPart::pluginFolder() const {
    if (SettingsStore *store = m_shell->settingsStore())
        return QFileInfo(store->filePath()).absolutePath();
    return m_shell->dataFolder();
}

void CalculatorsPart::MSfigureClick() {
    FigurePlugin plugin(pluginFolder());
    switch (plugin.state()) {
    case FigurePlugin::State::Ours:
        showPlugin();
        return;
    case FigurePlugin::State::Foreign:
        // Another version's plug-in (or a damaged file) is never loaded: it makes room for this one.
        plugin.remove();
        m_shell->showStatus(QStringLiteral("Файл %1 не подходит к этой версии программы и удалён.")
                                .arg(FigurePlugin::fileName()));
        break;
    case FigurePlugin::State::Missing:
        break;
    }
    if (dialogs().ask(QStringLiteral("Плагин не установлен"), QStringLiteral("Загрузить библиотеку?"),
                      Dialogs::Buttons::YesNo, Dialogs::Icon::Warning) != Dialogs::Answer::Yes)
        return;
    downloadPlugin();
}

void CalculatorsPart::showPlugin() {
    QString error;
    const FigurePlugin::Shown shown =
        FigurePlugin(pluginFolder()).show(static_cast<quintptr>(m_shell->window()->winId()), &error);
    if (shown == FigurePlugin::Shown::LoadFailed)
        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
}

void CalculatorsPart::downloadPlugin() {
    auto *server = m_shell->part<ServerPart>();
    RemoteClient *client = server ? server->client() : nullptr;
    if (!client || !client->isConfigured()) {
        dialogs().tell(Captions::warning,
                       QStringLiteral("Файловый сервер не настроен: укажите его адрес в меню «Настройки» → "
                                      "«Файловый сервер…»."),
                       Dialogs::Icon::Warning);
        return;
    }
    if (!client->connectionPresent()) {
        dialogs().tell(Captions::warning, QStringLiteral("Отсутствует подключение к интернету"),
                       Dialogs::Icon::Warning);
        return;
    }
    m_figures->setEnabled(false);
    QProgressBar *bar = m_shell->showProgress();
    RemoteCall *call = client->get(Protocol::kPlugin, {15000, 120000, FigurePlugin::kMaxBytes});
    connect(call, &RemoteCall::progress, bar, [bar](qint64 done, qint64 total) {
        if (total > 0)
            bar->setValue(static_cast<int>(done * 100 / total));
    });
    connect(call, &RemoteCall::finished, this, [this](const RemoteResult &r) {
        m_shell->hideProgress();
        m_figures->setEnabled(true);
        QString problem = r.error;
        const bool ok = r.statusOk() && FigurePlugin(pluginFolder()).install(r.body, &problem);
        emit pluginDownloadFinished(ok);
        if (!ok) {
            if (!problem.isEmpty())
                m_shell->showStatus(problem, 30000);
            dialogs().tell(Captions::error, QStringLiteral("Не удалось загрузить библиотеку"),
                           Dialogs::Icon::Error);
            return;
        }
        MSfigureClick(); // now it is there
    });
}
