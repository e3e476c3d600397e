#pragma once
// The cash book in the main window: the menu item and tool button "Кассовая книга" (MKassaBook) open
// the page TKassaBook. At start the book of the settings ("Path"/"Cashbook", else Sp/cashbase.db) is
// checked and brought to the current layout before any part reads the customers from it; another book
// opened from the page is kept there. The page's "Проданный материал" opens the warehouse's report of
// sold materials (WarehousePart) for the chosen customer and object.

#include "ui/MainShell.h"

#include <QPointer>

class CashBook;
class MobileExchange;
class OfficeService;
class QAction;
class TKassaBook;

class CashbookPart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;
    ~CashbookPart() override;

    void attach(MainShell &shell) override;
    void start() override;
    void collectSettings() override;

    // MKassaBook: the page, made on first use and read again on every entry.
    void MKassaBookClick();

    CashBook *book() const { return m_book; }
    TKassaBook *page() const;
    MobileExchange *exchange();

    QAction *MKassaBook = nullptr;

private:
    // The book of the settings, or the data folder's own when that cannot be used.
    void openStartBook();
    void bookChanged(const QString &path);
    OfficeService &office();

    MainShell *m_shell = nullptr;
    CashBook *m_book = nullptr;
    MobileExchange *m_exchange = nullptr;
    OfficeService *m_office = nullptr;
    QPointer<TKassaBook> m_page;
    QString m_defaultBook;
};
