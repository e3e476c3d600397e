#include "PackagePart.h"

#include "ActsPart.h"
#include "FormKS2_frame.h"
#include "Package_frame.h"
#include "estimate/DocumentFilePart.h"
#include "estimate/EstimateDocument.h"
#include "estimate/OutputPart.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <algorithm>

void PackagePart::attach(MainShell &shell) {
    m_shell = &shell;
    auto *action = new QAction(QStringLiteral("Пакет документов…"), shell.window());
    action->setObjectName(QStringLiteral("MPackage"));
    action->setToolTip(QStringLiteral("Договор, счёт и акты по открытой смете одним пакетом"));
    connect(action, &QAction::triggered, this, [this] { showPackage(); });
    shell.menu(ShellMenu::Document)->addAction(action);
}

void PackagePart::documentLoaded() {
    if (m_window && !m_window->running())
        m_window->close();
}

void PackagePart::showPackage(QWidget *parent) {
    TModuleSQL *module = m_shell->module();
    OutputPart *output = m_shell->part<OutputPart>();
    if (!module || !output)
        return;
    if (m_window) {
        m_window->raise();
        m_window->activateWindow();
        return;
    }
    EstimateDocument &document = m_shell->document();
    TPackage::Context c;
    c.document = &document;
    c.office = &output->office();
    c.settings = PackageSettings::read(&m_shell->settings(), m_shell->settingsStore(), m_shell->dataFolder());
    c.settings.titles = output->viewTitles();
    c.numbering = PackageNumbering::read(&m_shell->settings(), m_shell->settingsStore());
    c.settle = [this] { return settle(); };
    const PackageRequest initial =
        PackageDefaults::make(document, module->database(Db::People), c.numbering, QDate::currentDate());
    m_window = new TPackage(c, initial, parent ? parent : m_shell->window());
    m_window->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_window, &TPackage::packageMade, this, &PackagePart::afterPackage);
    m_window->show();
}

bool PackagePart::settle() {
    EstimateDocument &document = m_shell->document();
    DocumentFilePart *file = m_shell->part<DocumentFilePart>();
    if (!file)
        return false;
    // The package's files are entered in the register under the estimate's row: it needs one.
    if (document.fileName().isEmpty()) {
        if (dialogs().ask(QStringLiteral("Данные изменялись"), QStringLiteral("Сохранить файл?"),
                          Dialogs::Buttons::YesNo, Dialogs::Icon::Question) != Dialogs::Answer::Yes ||
            !file->spdSaveClick()) {
            if (document.fileName().isEmpty())
                dialogs().tell(
                    Captions::warning,
                    QStringLiteral("Пакет документов не создан: смета не сохранена. Документы пакета "
                                   "вносятся в «Мои документы» под записью сметы — сохраните её."),
                    Dialogs::Icon::Warning);
            return false;
        }
    } else if (!file->askSaveChanges()) {
        return false;
    }
    // The act data window's fields go into the document before the acts read them.
    if (ActsPart *acts = m_shell->part<ActsPart>())
        if (TFormKS2 *form = acts->actData(); form && form->isVisible() && !form->leave())
            return false;
    // Rows typed since the last write get their work ids: acts by volumes keep their rows by them.
    QString why;
    if (!document.writeWorkingDatabase(&why)) {
        dialogs().tell(Captions::error, why, Dialogs::Icon::Error);
        return false;
    }
    return true;
}

void PackagePart::afterPackage(const QVector<PackageItem> &items) {
    // An act by volumes, or the contract's number in the act data, was kept in the working database.
    if (std::any_of(items.cbegin(), items.cend(), [](const PackageItem &i) { return i.documentChanged; })) {
        m_shell->document().setChanged(true);
        if (ActsPart *acts = m_shell->part<ActsPart>())
            if (TFormKS2 *form = acts->actData(); form && form->isVisible())
                form->enter();
    }
    emit packageMade();
}
