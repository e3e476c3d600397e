#include "TForm1.h"

#include "estimate/DocumentFilePart.h"
#include "estimate/EstimateDocument.h"
#include "storage/DataFolder.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QGuiApplication>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

TForm1::TForm1(const QStringList &arguments, QWidget *parent)
    : QMainWindow(parent), m_settings(std::make_unique<MainSettings>()) {
    setObjectName(QStringLiteral("Form1"));
    setWindowTitle(QStringLiteral("Вирн-Смета"));

    // 1. The data folder.
    const DataFolder::Decision d =
        DataFolder::decide(arguments, DataFolder::storedFolder(), QDir::currentPath());
    m_dataFolder = d.folder;
    m_startupDocument = d.documentFile;

    // 2. The whole screen; larger tool icons on wide screens.
    if (QScreen *screen = QGuiApplication::primaryScreen()) {
        const QRect g = screen->availableGeometry();
        resize(g.size());
        move(g.topLeft());
        if (g.width() > 1366)
            setIconSize(QSize(22, 22));
    }

    // 4. The folder tree.
    m_startupError = DataFolder::ensureTree(m_dataFolder);

    m_document = new EstimateDocument(this);
    buildMenus();
    buildCentral();
    m_parts = makeShellParts(this);
    for (ShellPart *part : m_parts)
        part->attach(*this);
}

TForm1::~TForm1() {
    // The views and panels show the parts' and the document's models: they go first, then the parts,
    // then the document.
    delete takeCentralWidget();
    for (ShellPart *part : m_parts)
        delete part;
    m_parts.clear();
}

void TForm1::buildMenus() {
    auto addMenu = [this](const char *name, const QString &title) {
        QMenu *m = menuBar()->addMenu(title);
        m->setObjectName(QLatin1String(name));
        m_menus << m;
        return m;
    };
    QMenu *file = addMenu("MenuFile", QStringLiteral("&Файл"));
    addMenu("MenuEdit", QStringLiteral("&Правка"));
    addMenu("MenuDocument", QStringLiteral("&Документ"));
    addMenu("MenuOptions", QStringLiteral("&Настройки"));
    QMenu *help = addMenu("MenuHelp", QStringLiteral("&Справка"));
    auto *exit = new QAction(QStringLiteral("Выход"), this);
    exit->setObjectName(QStringLiteral("MExit"));
    exit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(exit, &QAction::triggered, this, &QWidget::close);
    file->addAction(exit);
    QAction *about = help->addAction(QStringLiteral("О программе"));
    connect(about, &QAction::triggered, this, [this] {
        dialogs().tell(
            QStringLiteral("О программе"),
            QStringLiteral("Вирн-Смета\nСметы на строительные и ремонтные работы.\nПапка данных: %1")
                .arg(QDir::toNativeSeparators(m_dataFolder)));
    });

    m_mainBar = addToolBar(QStringLiteral("Файл"));
    m_mainBar->setObjectName(QStringLiteral("ToolBarMain"));
    m_docBar = addToolBar(QStringLiteral("Смета"));
    m_docBar->setObjectName(QStringLiteral("ToolBarDoc"));
}

void TForm1::buildCentral() {
    m_splitter = new QSplitter(Qt::Horizontal, this);
    m_splitter->setObjectName(QStringLiteral("SplitterMain"));
    auto panel = [](const char *name, QWidget *parent) {
        auto *w = new QWidget(parent);
        w->setObjectName(QLatin1String(name));
        auto *layout = new QVBoxLayout(w);
        layout->setContentsMargins(0, 0, 0, 0);
        return w;
    };
    m_left = panel("PanelRas", m_splitter);
    auto *right = new QWidget(m_splitter);
    auto *rightLayout = new QVBoxLayout(right);
    rightLayout->setContentsMargins(0, 0, 0, 0);
    m_header = panel("PanelHeader", right);
    rightLayout->addWidget(m_header);
    m_pages = new QTabWidget(right);
    m_pages->setObjectName(QStringLiteral("PageControlDoc"));
    rightLayout->addWidget(m_pages, 1);
    m_splitter->addWidget(m_left);
    m_splitter->addWidget(right);
    m_splitter->setStretchFactor(0, 2);
    m_splitter->setStretchFactor(1, 3);
    setCentralWidget(m_splitter);
}

QMenu *TForm1::menu(ShellMenu which) {
    return m_menus.at(static_cast<int>(which));
}

QToolBar *TForm1::toolBar(ShellBar which) {
    return which == ShellBar::Main ? m_mainBar : m_docBar;
}

QWidget *TForm1::area(ShellArea which) {
    return which == ShellArea::Left ? m_left : m_header;
}

MainSettings &TForm1::settings() {
    return *m_settings;
}

QList<ShellPart *> TForm1::parts() const {
    return QList<ShellPart *>(m_parts.begin(), m_parts.end());
}

void TForm1::showStatus(const QString &text, int milliseconds) {
    statusBar()->showMessage(text, milliseconds);
}

QProgressBar *TForm1::showProgress() {
    if (!m_progress) {
        m_progress = new QProgressBar(this);
        m_progress->setObjectName(QStringLiteral("ProgressBar1"));
        m_progress->setFixedSize(320, 24);
    }
    m_progress->setRange(0, 100);
    m_progress->reset();
    m_progress->setValue(0);
    m_progress->move((width() - m_progress->width()) / 2, (height() - m_progress->height()) / 2);
    m_progress->raise();
    m_progress->show();
    return m_progress;
}

void TForm1::hideProgress() {
    if (m_progress)
        m_progress->hide();
}

QAction *TForm1::addOption(QMenu *menu, const QString &key, const QString &caption) {
    auto *a = new QAction(caption, this);
    a->setObjectName(key);
    a->setCheckable(true);
    a->setChecked(m_settings->flag(key));
    connect(a, &QAction::toggled, this, [this, key](bool on) { m_settings->setFlag(key, on); });
    menu->addAction(a);
    return a;
}

DocumentFilePart *TForm1::filePart() const {
    return part<DocumentFilePart>();
}

bool TForm1::isChanged() const {
    return m_document->isChanged();
}

void TForm1::CreateNewDoc(bool draft) {
    filePart()->CreateNewDoc(draft);
}
bool TForm1::spdSaveClick() {
    return filePart()->spdSaveClick();
}
bool TForm1::spdSaveKakClick() {
    return filePart()->spdSaveKakClick();
}
bool TForm1::OpenMyFile(const QString &fileName) {
    return filePart()->OpenMyFile(fileName);
}

void TForm1::attachModule(TModuleSQL *module) {
    m_module = module;
    m_module->setFailureHandler([this](Db, const QString &text) { reportDatabaseFailure(text); });
}

void TForm1::reportDatabaseFailure(const QString &text) {
    if (!m_closing)
        dialogs().tell(Captions::error, text, Dialogs::Icon::Error);
}

void TForm1::FormShow() {
    m_settingsStore =
        std::make_unique<SettingsStore>(QDir(m_dataFolder).filePath(QStringLiteral("IniFile.db")));
    if (!m_settingsStore->isOpen())
        dialogs().tell(
            Captions::error,
            QStringLiteral("Не удалось открыть файл настроек «%1»: %2. Настройки не будут сохранены.")
                .arg(QDir::toNativeSeparators(m_settingsStore->filePath()), m_settingsStore->error()),
            Dialogs::Icon::Error);
    m_settings->read(*m_settingsStore);
    m_settings->set(QStringLiteral("Path"), m_dataFolder);
    // A start without a document remembers the folder, so that opening a file from the file manager
    // finds the same data.
    if (m_startupDocument.isEmpty())
        DataFolder::storeFolder(m_dataFolder);
    applySettings();

    // The document takes this program's own working copy; what crashed programs left is offered below.
    m_document->attach(m_module, m_settings.get(), m_settingsStore.get());
    if (!m_document->workingCopyError().isEmpty())
        dialogs().tell(Captions::error, m_document->workingCopyError(), Dialogs::Icon::Error);
    // The working database is created and completed with its tables on first use.
    m_module->database(Db::Smeta);
    connect(m_document, &EstimateDocument::loaded, this, [this] {
        for (ShellPart *part : m_parts)
            part->documentLoaded();
    });
    for (ShellPart *part : m_parts)
        part->start();

    DocumentFilePart *file = filePart();
    if (m_document->workingCopy() && file->offerRecovery(*m_document->workingCopy()))
        return; // the recovered changes are the document now
    if (!m_startupDocument.isEmpty())
        file->OpenMyFile(m_startupDocument);
    else if (m_settings->flag(QStringLiteral("CheckBoxLoadLastDoc")))
        file->OpenLastDoc(); // the newest recent document, if it still exists
    if (m_document->fileName().isEmpty())
        file->CreateNewDoc();
    m_document->setChanged(false);
}

void TForm1::applySettings() {
    for (QAction *a : findChildren<QAction *>()) {
        if (a->isCheckable() && !a->objectName().isEmpty() &&
            !MainSettings::sectionOf(a->objectName()).isEmpty())
            a->setChecked(m_settings->flag(a->objectName()));
    }
    const int left = m_settings->integer(QStringLiteral("PanelRasLeft"), 0);
    const int right = m_settings->integer(QStringLiteral("PanelRasRight"), 0);
    if (left > 0 && right > 0)
        m_splitter->setSizes({left, right});
}

void TForm1::collectSettings() {
    for (QAction *a : findChildren<QAction *>()) {
        if (a->isCheckable() && !a->objectName().isEmpty() &&
            !MainSettings::sectionOf(a->objectName()).isEmpty())
            m_settings->setFlag(a->objectName(), a->isChecked());
    }
    const QList<int> sizes = m_splitter->sizes();
    if (sizes.size() == 2 && sizes[0] > 0 && sizes[1] > 0) {
        m_settings->setInteger(QStringLiteral("PanelRasLeft"), sizes[0]);
        m_settings->setInteger(QStringLiteral("PanelRasRight"), sizes[1]);
    }
    for (ShellPart *part : m_parts)
        part->collectSettings();
}

bool TForm1::FormCloseQuery() {
    for (ShellPart *part : m_parts)
        if (!part->settleBeforeClose())
            return false;
    if (!filePart()->askSaveChanges())
        return false; // cancelled, or the save failed: keep the window and the edits
    m_closing = true;
    collectSettings();
    if (m_settingsStore)
        m_settings->write(*m_settingsStore);
    return true;
}

void TForm1::closeEvent(QCloseEvent *event) {
    if (FormCloseQuery())
        event->accept();
    else
        event->ignore();
}
