#pragma once
// The document package in the main window: "Документ" → "Пакет документов…" (MPackage) and the
// register's "Создать пакет документов" open TPackage for the open estimate. Before the package is
// made the estimate is saved (a never saved one only when the user agrees) and the act data window's
// fields are written; afterwards the document is marked changed when the package kept something in it.

#include "PackageJob.h"
#include "Package_frame.h"
#include "ui/MainShell.h"

#include <QPointer>

class PackagePart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;
    // Another estimate: a package window of the one before closes.
    void documentLoaded() override;

    // Opens (or raises) the package window for the open estimate; parent: the window it belongs to
    // (the main window when null).
    void showPackage(QWidget *parent = nullptr);
    TPackage *packageWindow() const { return m_window; }

signals:
    // A package was made (the register shows its files).
    void packageMade();

private:
    bool settle();
    void afterPackage(const QVector<PackageItem> &items);

    MainShell *m_shell = nullptr;
    QPointer<TPackage> m_window;
};
