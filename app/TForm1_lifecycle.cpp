// Start-up and shut-down of the main window: settings, databases, the start document, the close
// question.

#include "TForm1.h"

#include "storage/DataFolder.h"
#include "ui/Dialogs.h"
#include "storage/SettingsStore.h"
#include "estimate/EstimateGrid.h"
#include "pricebase/RatePanel_frame.h"
#include "storage/ModuleSQL.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QMenu>
#include <QSplitter>
#include <QTableView>

void TForm1::attachModule(TModuleSQL *module) {
    m_module = module;
    m_module->setFailureHandler([this](Db, const QString &text) { reportDatabaseFailure(text); });
}

void TForm1::reportDatabaseFailure(const QString &text) {
    if (m_closing)
        return;
    dialogs().tell(Captions::error, text, Dialogs::Icon::Error);
}

QAction *TForm1::addOption(QMenu *menu, const QString &key, const QString &caption) {
    auto *a = new QAction(caption, this);
    a->setObjectName(key);
    a->setCheckable(true);
    a->setChecked(m_settings.flag(key));
    connect(a, &QAction::toggled, this, [this, key](bool on) { m_settings.setFlag(key, on); });
    menu->addAction(a);
    return a;
}

void TForm1::FormShow() {
    m_settingsStore = std::make_unique<SettingsStore>(QDir(m_dataFolder).filePath(QStringLiteral("IniFile.db")));
    if (!m_settingsStore->isOpen())
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось открыть файл настроек «%1»: %2. Настройки не будут сохранены.")
                           .arg(QDir::toNativeSeparators(m_settingsStore->filePath()), m_settingsStore->error()),
                       Dialogs::Icon::Error);
    m_settings.read(*m_settingsStore);
    m_settings.set(QStringLiteral("Path"), m_dataFolder);
    // A start without a document remembers the folder, so that opening a file from the file manager
    // finds the same data.
    if (m_startupDocument.isEmpty())
        DataFolder::storeFolder(m_dataFolder);
    applySettings();
    outputShow();

    // Open the working database now: it is created and completed with its tables on first use.
    m_module->database(Db::Smeta);

    LastDocMenu();
    if (!m_startupDocument.isEmpty())
        OpenMyFile(m_startupDocument);
    else if (m_settings.flag(QStringLiteral("CheckBoxLoadLastDoc")))
        OpenLastDoc(); // the newest recent document, if it still exists
    if (m_fileName.isEmpty())
        CreateNewDoc();
    DisableSave();
}

void TForm1::applySettings() {
    for (QAction *a : findChildren<QAction *>()) {
        if (!a->isCheckable() || a->objectName().isEmpty())
            continue;
        for (const auto &k : MainSettings::keys())
            if (k.key == a->objectName()) {
                a->setChecked(m_settings.flag(k.key));
                break;
            }
    }
    QFont f = StringGridDoc->font();
    f.setPointSize(std::clamp(m_settings.integer(QStringLiteral("FontSizeTable"), 10), 6, 28));
    StringGridDoc->setFont(f);
    StringGridBrig->setFont(f);
    const int left = m_settings.integer(QStringLiteral("PanelRasLeft"), 0);
    const int right = m_settings.integer(QStringLiteral("PanelRasRight"), 0);
    if (left > 0 && right > 0)
        SplitterMain->setSizes({left, right});
}

void TForm1::collectSettings() {
    for (QAction *a : findChildren<QAction *>()) {
        if (!a->isCheckable() || a->objectName().isEmpty())
            continue;
        for (const auto &k : MainSettings::keys())
            if (k.key == a->objectName()) {
                m_settings.setFlag(k.key, a->isChecked());
                break;
            }
    }
    const QList<int> sizes = SplitterMain->sizes();
    if (sizes.size() == 2 && sizes[0] > 0 && sizes[1] > 0) {
        m_settings.setInteger(QStringLiteral("PanelRasLeft"), sizes[0]);
        m_settings.setInteger(QStringLiteral("PanelRasRight"), sizes[1]);
    }
    m_settings.setInteger(QStringLiteral("FontSizeTable"), StringGridDoc->font().pointSize());
}

bool TForm1::FormCloseQuery() {
    // Rates edited in the rate grid are a separate list: settle them first.
    if (RatePanel && !RatePanel->settleEdits())
        return false;
    if (isChanged()) {
        const Dialogs::Answer a = dialogs().ask(QStringLiteral("Данные изменялись"), QStringLiteral("Сохранить файл?"),
                                                Dialogs::Buttons::YesNoCancel, Dialogs::Icon::Question);
        if (a == Dialogs::Answer::Cancel)
            return false;
        if (a == Dialogs::Answer::Yes && !spdSaveClick())
            return false; // the save was cancelled or failed: keep the window and the edits
    }
    m_closing = true;
    collectSettings();
    if (m_settingsStore)
        m_settings.write(*m_settingsStore);
    return true;
}
