#include "ContractPart.h"

#include "Contract_frame.h"
#include "estimate/EstimateDocument.h"
#include "estimate/OutputPart.h"
#include "office/OfficeService.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QEventLoop>
#include <QMainWindow>
#include <QMenu>
#include <QTabWidget>

void ContractPart::attach(MainShell &shell) {
    m_shell = &shell;
    auto *action = new QAction(QStringLiteral("Составить договор"), shell.window());
    action->setObjectName(QStringLiteral("MContract"));
    action->setToolTip(QStringLiteral("Договор на работы по открытой смете"));
    connect(action, &QAction::triggered, this, &ContractPart::showContract);
    shell.menu(ShellMenu::Document)->addAction(action);
}

OfficeService *ContractPart::office() {
    // The engine session the program's documents share, when the output part is there.
    if (OutputPart *output = m_shell->part<OutputPart>())
        return &output->office();
    if (!m_office)
        m_office = new OfficeService(m_shell->dataFolder(), this);
    return m_office;
}

void ContractPart::showContract() {
    if (!m_page) {
        TContract::Context c;
        c.document = &m_shell->document();
        c.module = m_shell->module();
        c.store = m_shell->settingsStore();
        c.dataFolder = m_shell->dataFolder();
        c.office = office();
        MainShell *shell = m_shell;
        c.status = [shell](const QString &text) { shell->showStatus(text); };
        m_page = new TContract(c, m_shell->pages());
        m_shell->pages()->addTab(m_page, QStringLiteral("Договор"));
    } else {
        m_page->readEstimate();
    }
    m_shell->pages()->setCurrentWidget(m_page);
    m_page->CreateContract();
}

void ContractPart::documentLoaded() {
    if (m_page)
        m_page->readEstimate();
}

bool ContractPart::settleBeforeClose() {
    if (!m_page || !m_page->hasUnsavedEdits())
        return true;
    m_shell->pages()->setCurrentWidget(m_page);
    const Dialogs::Answer a = dialogs().ask(QStringLiteral("Договор"),
                                            QStringLiteral("Договор изменён и не сохранён. Сохранить его?"),
                                            Dialogs::Buttons::YesNoCancel);
    if (a == Dialogs::Answer::No)
        return true;
    if (a != Dialogs::Answer::Yes)
        return false;
    // The save runs on the engine's thread: wait for it before the window goes.
    bool saved = false;
    QEventLoop loop;
    const auto finished = connect(m_page, &TContract::jobFinished, &loop, [&](bool ok) {
        saved = ok;
        loop.quit();
    });
    m_page->btnSaveClick();
    if (m_page->busy())
        loop.exec();
    disconnect(finished);
    return saved;
}
