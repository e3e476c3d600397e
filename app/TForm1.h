#pragma once
// The main window "Вирн-Смета": a shell that holds the menus, the tool bars, the pages, the panels
// around them, the settings and the open estimate document. The subsystems plug into it through the
// ShellPart contract (ui/MainShell.h); the list of parts is in Parts.cpp.

#include "ui/MainShell.h"

#include <QMainWindow>
#include <QStringList>
#include <memory>
#include <vector>

class QSplitter;
class DocumentFilePart;

class TForm1 : public QMainWindow, public MainShell {
    Q_OBJECT
public:
    // FormCreate: decides the data folder and builds the window; touches no database.
    explicit TForm1(const QStringList &arguments, QWidget *parent = nullptr);
    ~TForm1() override;

    // The data module is created after the window and handed over here.
    void attachModule(TModuleSQL *module);
    // FormShow: reads the settings, starts the parts, opens the start document.
    void FormShow();
    // FormCloseQuery: the parts settle their own work, then the unsaved-changes question; writes the
    // settings. False keeps the window open.
    bool FormCloseQuery();

    QString startupError() const { return m_startupError; }
    bool isChanged() const;

    // The document commands by their handler names (the document file part does the work).
    void CreateNewDoc(bool draft = false);
    bool spdSaveClick();
    bool spdSaveKakClick();
    bool OpenMyFile(const QString &fileName);

    // MainShell
    QMainWindow *window() override { return this; }
    QMenu *menu(ShellMenu which) override;
    QToolBar *toolBar(ShellBar which) override;
    QTabWidget *pages() override { return m_pages; }
    QWidget *area(ShellArea which) override;
    EstimateDocument &document() override { return *m_document; }
    TModuleSQL *module() override { return m_module; }
    QString dataFolder() const override { return m_dataFolder; }
    MainSettings &settings() override;
    SettingsStore *settingsStore() override { return m_settingsStore.get(); }
    QAction *addOption(QMenu *menu, const QString &key, const QString &caption) override;
    void showStatus(const QString &text, int milliseconds = 10000) override;
    QProgressBar *showProgress() override;
    void hideProgress() override;
    QList<ShellPart *> parts() const override;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void showTitle();
    void buildMenus();
    void buildCentral();
    void applySettings();
    void collectSettings();
    void reportDatabaseFailure(const QString &text);
    DocumentFilePart *filePart() const;

    QString m_dataFolder;
    QString m_startupDocument;
    QString m_startupError;
    bool m_closing = false;
    TModuleSQL *m_module = nullptr;
    std::unique_ptr<SettingsStore> m_settingsStore;
    std::unique_ptr<MainSettings> m_settings;
    EstimateDocument *m_document = nullptr;
    std::vector<ShellPart *> m_parts;
    QList<QMenu *> m_menus;
    QToolBar *m_mainBar = nullptr;
    QToolBar *m_docBar = nullptr;
    QTabWidget *m_pages = nullptr;
    QSplitter *m_splitter = nullptr;
    QWidget *m_left = nullptr;
    QWidget *m_header = nullptr;
    QProgressBar *m_progress = nullptr;
};

// The parts of the program, in the order they attach (Parts.cpp).
std::vector<ShellPart *> makeShellParts(QObject *owner);
