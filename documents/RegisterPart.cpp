#include "RegisterPart.h"

#include "MyDocuments_frame.h"
#include "customers/CustomersPart.h"
#include "estimate/DocumentFilePart.h"
#include "estimate/EstimateDocument.h"
#include "estimate/OutputPart.h"
#include "storage/MainSettings.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QStyle>
#include <QToolBar>
#include <QVBoxLayout>

void RegisterPart::attach(MainShell &shell) {
    m_shell = &shell;
    QMainWindow *window = shell.window();
    auto *open = new QAction(QStringLiteral("Мои документы"), window);
    open->setObjectName(QStringLiteral("spdMyDoc"));
    open->setToolTip(QStringLiteral("Мои документы"));
    open->setIcon(window->style()->standardIcon(QStyle::SP_DirOpenIcon));
    open->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_D));
    auto *item = new QAction(QStringLiteral("Мои документы"), window);
    item->setObjectName(QStringLiteral("MMyDocuments"));
    shell.toolBar(ShellBar::Main)->addAction(open);
    shell.menu(ShellMenu::Document)->addAction(item);
    connect(open, &QAction::triggered, this, &RegisterPart::MMyDocumentsClick);
    connect(item, &QAction::triggered, this, &RegisterPart::MMyDocumentsClick);

    // A save writes the estimate's row: the register shows it at once.
    connect(&shell.document(), &EstimateDocument::saved, this, &RegisterPart::refreshShown);
}

void RegisterPart::documentLoaded() {
    refreshShown();
}

void RegisterPart::refreshShown() {
    if (m_frame && m_window && m_window->isVisible())
        m_frame->refresh();
}

void RegisterPart::MMyDocumentsClick() {
    if (!m_shell->module())
        return;
    if (!m_window) {
        auto *form = new QWidget(m_shell->window(), Qt::Window);
        form->setObjectName(QStringLiteral("MyDocumentsForm"));
        form->setWindowTitle(QStringLiteral("Мои документы"));
        form->setAttribute(Qt::WA_DeleteOnClose);
        MainShell *shell = m_shell;
        OptionFlags options{[shell](const QString &key) { return shell->settings().flag(key); },
                            [shell](const QString &key, bool on) { shell->settings().setFlag(key, on); }};
        m_frame = new TMyDocuments(*m_shell->module(), *this, options, form);
        auto *layout = new QVBoxLayout(form);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_frame);
        form->resize(1400, 800);
        m_window = form;
        // The drafts page follows the option while the window is open.
        if (auto *drafts = m_shell->window()->findChild<QAction *>(QStringLiteral("CheckBoxDraft")))
            connect(drafts, &QAction::toggled, m_frame, &TMyDocuments::showDraftsPage);
        if (auto *customers = m_shell->part<CustomersPart>())
            connect(customers, &CustomersPart::customersChanged, m_frame, &TMyDocuments::FrameEnter);
    }
    m_frame->FrameEnter();
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

QString RegisterPart::openDocument() const {
    return m_shell->document().fileName();
}

bool RegisterPart::settleOpenDocument() {
    DocumentFilePart *file = m_shell->part<DocumentFilePart>();
    return file && file->askSaveChanges();
}

bool RegisterPart::openEstimate(const QString &path) {
    DocumentFilePart *file = m_shell->part<DocumentFilePart>();
    if (!file || !file->OpenMyFile(path))
        return false;
    m_shell->window()->raise();
    return true;
}

void RegisterPart::output(Output kind) {
    OutputPart *out = m_shell->part<OutputPart>();
    if (!out)
        return;
    switch (kind) {
    case Output::Preview:
        out->MPreviewClick();
        break;
    case Output::Print:
        out->MPrintClick();
        break;
    case Output::Pdf:
        out->MExportPDFClick();
        break;
    case Output::Excel:
        out->MExportExcelClick();
        break;
    }
}
