#include "CashbookPart.h"

#include "CashBook.h"
#include "KassaBook_frame.h"
#include "MobileExchange.h"
#include "customers/CustomersPart.h"
#include "estimate/OutputPart.h"
#include "materials/WarehousePart.h"
#include "office/OfficeService.h"
#include "server/ServerPart.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QStyle>
#include <QTabWidget>
#include <QToolBar>

namespace {
const QString kBookKey = QStringLiteral("Cashbook");
}

CashbookPart::~CashbookPart() = default;

TKassaBook *CashbookPart::page() const {
    return m_page;
}

void CashbookPart::attach(MainShell &shell) {
    m_shell = &shell;
    MKassaBook = new QAction(shell.window()->style()->standardIcon(QStyle::SP_FileDialogListView),
                             QStringLiteral("Кассовая книга"), shell.window());
    MKassaBook->setObjectName(QStringLiteral("MKassaBook"));
    MKassaBook->setToolTip(QStringLiteral("Кассовая книга: приход и расход по заказчикам и объектам"));
    connect(MKassaBook, &QAction::triggered, this, &CashbookPart::MKassaBookClick);
    shell.menu(ShellMenu::Document)->addAction(MKassaBook);
    shell.toolBar(ShellBar::Main)->addAction(MKassaBook);
    if (auto *customers = shell.part<CustomersPart>())
        connect(customers, &CustomersPart::customersChanged, this, [this] {
            if (m_page && m_shell->pages()->currentWidget() == m_page)
                m_page->enter();
        });
}

void CashbookPart::start() {
    TModuleSQL *module = m_shell->module();
    if (!module)
        return;
    m_defaultBook = QFileInfo(module->filePath(Db::Cash)).absoluteFilePath();
    m_book = new CashBook(*module, this);
    openStartBook();
}

void CashbookPart::openStartBook() {
    TModuleSQL &module = *m_shell->module();
    const QString chosen = m_shell->settings().text(kBookKey);
    const bool fromSettings = !chosen.isEmpty() && QFileInfo::exists(chosen);
    CashBook::Outcome o =
        m_book->openBook(fromSettings ? chosen : m_defaultBook, BookUpgrade::programTargets(module));
    if (!o.ok && fromSettings) {
        dialogs().tell(o.caption, o.text + QStringLiteral("\nОткрыта касса из папки данных."),
                       Dialogs::Icon::Error);
        m_shell->settings().set(kBookKey, QString());
        o = m_book->openBook(m_defaultBook, BookUpgrade::programTargets(module));
    }
    if (!o.ok && !o.text.isEmpty())
        dialogs().tell(o.caption, o.text, Dialogs::Icon::Error);
}

void CashbookPart::collectSettings() {
    if (!m_book)
        return;
    const QString path = m_book->bookPath();
    m_shell->settings().set(kBookKey, path == m_defaultBook ? QString() : path);
}

MobileExchange *CashbookPart::exchange() {
    if (!m_exchange) {
        ServerPart *server = m_shell->part<ServerPart>();
        m_exchange = new MobileExchange(server ? server->client() : nullptr, this);
    }
    return m_exchange;
}

OfficeService &CashbookPart::office() {
    // The engine session the program's documents share, when the output part is there.
    if (OutputPart *output = m_shell->part<OutputPart>())
        return output->office();
    if (!m_office)
        m_office = new OfficeService(m_shell->dataFolder(), this);
    return *m_office;
}

void CashbookPart::bookChanged(const QString &path) {
    m_shell->settings().set(kBookKey, path == m_defaultBook ? QString() : path);
    if (SettingsStore *store = m_shell->settingsStore())
        store->setText(QStringLiteral("Path"), kBookKey, path == m_defaultBook ? QString() : path);
    // The register of customers lives in the book: every list of them follows.
    if (auto *customers = m_shell->part<CustomersPart>())
        emit customers->customersChanged();
}

void CashbookPart::MKassaBookClick() {
    if (!m_book)
        return;
    QTabWidget *pages = m_shell->pages();
    if (!m_page) {
        TKassaBook::Context c;
        c.book = m_book;
        c.exchange = exchange();
        c.dataFolder = m_shell->dataFolder();
        c.office = [this]() -> OfficeService & { return office(); };
        OutputPart *output = m_shell->part<OutputPart>();
        c.preview = output ? output->preview() : nullptr;
        TModuleSQL *module = m_shell->module();
        c.targets = [module] { return BookUpgrade::programTargets(*module); };
        c.bookChanged = [this](const QString &path) { bookChanged(path); };
        MainShell *shell = m_shell;
        c.status = [shell](const QString &text) { shell->showStatus(text); };
        if (WarehousePart *warehouse = shell->part<WarehousePart>())
            c.soldMaterials = [warehouse](const QString &customer, const QString &object) {
                warehouse->showSoldMaterials(customer, object);
            };
        m_page = new TKassaBook(c, pages);
        pages->addTab(m_page, QStringLiteral("Касса"));
        // Every entry into the page reads the lists and the records again (another copy of the program
        // may have written the book meanwhile).
        connect(pages, &QTabWidget::currentChanged, m_page, [this, pages] {
            if (pages->currentWidget() == m_page)
                m_page->enter();
        });
    }
    if (pages->currentWidget() == m_page)
        m_page->enter();
    else
        pages->setCurrentWidget(m_page);
}
