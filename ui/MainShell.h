#pragma once
// The contract between the main window and the subsystems that plug into it. The main window is a
// shell: it holds the menus, the tool bars, the pages, the panels around them, the settings and the
// open estimate document. Each subsystem brings a ShellPart that adds its actions, menus, pages and
// panels when the window is built, and hears when the program starts, when a document is loaded or
// saved, and when the window closes. A subsystem never includes the application; it sees the window
// only through MainShell, and other parts only through their own headers.
//
// A new subsystem attaches by writing its part (in its folder's window library) and adding one line to
// the list of parts in app/Parts.cpp.

#include <QList>
#include <QObject>
#include <QString>

class EstimateDocument;
class MainSettings;
class QAction;
class QMainWindow;
class QMenu;
class QProgressBar;
class QTabWidget;
class QToolBar;
class QWidget;
class SettingsStore;
class ShellPart;
class TModuleSQL;

// The menus of the menu bar, in their order.
enum class ShellMenu { File, Edit, Document, Options, Help };
// The tool bars: the program's (file, output) and the estimate's (editing commands).
enum class ShellBar { Main, Document };
// Panels around the pages, each with a vertical layout to add widgets to: the left column beside the
// pages (the rate panel) and the strip above the pages (the estimate header).
enum class ShellArea { Left, Header };

class MainShell {
public:
    virtual ~MainShell() = default;

    virtual QMainWindow *window() = 0;
    virtual QMenu *menu(ShellMenu which) = 0;
    virtual QToolBar *toolBar(ShellBar which) = 0;
    // PageControlDoc: the estimate's pages and the pages of other subsystems.
    virtual QTabWidget *pages() = 0;
    virtual QWidget *area(ShellArea which) = 0;

    virtual EstimateDocument &document() = 0;
    // The data module: valid from ShellPart::start on.
    virtual TModuleSQL *module() = 0;
    virtual QString dataFolder() const = 0;
    // The settings read at show and written at close (keys and defaults in storage/MainSettings), and
    // the store itself for the sections a window keeps on its own. The store exists from start on.
    virtual MainSettings &settings() = 0;
    virtual SettingsStore *settingsStore() = 0;
    // A checkable option whose objectName is its settings key; its state follows the settings.
    virtual QAction *addOption(QMenu *menu, const QString &key, const QString &caption) = 0;
    // A short note in the status bar (what was written where).
    virtual void showStatus(const QString &text, int milliseconds = 10000) = 0;
    // The main window's progress bar (ProgressBar1): showProgress resets it (0 to 100), centres it over
    // the window and shows it; hideProgress hides it again.
    virtual QProgressBar *showProgress() = 0;
    virtual void hideProgress() = 0;

    virtual QList<ShellPart *> parts() const = 0;
    // Another part by its type; null when the program has no such part.
    template <typename T> T *part() const {
        for (ShellPart *p : parts())
            if (auto *t = dynamic_cast<T *>(p))
                return t;
        return nullptr;
    }
};

class ShellPart : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // Builds the part's actions, menus, pages and panels into the shell. No database is touched yet;
    // the settings are not read yet either (options made with addOption follow them when they are).
    virtual void attach(MainShell &shell) = 0;
    // The window is shown, the settings are read and the data module exists.
    virtual void start() {}
    // The open document was opened or made new.
    virtual void documentLoaded() {}
    // Before the question about the unsaved document: false keeps the window open (the part asked
    // the user about its own unsaved work and the user cancelled).
    virtual bool settleBeforeClose() { return true; }
    // At close: the part writes what it keeps into the settings.
    virtual void collectSettings() {}
};
