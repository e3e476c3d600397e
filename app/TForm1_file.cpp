// The document file: new, open, save, save as. A document file is a copy of the working database.

#include "TForm1.h"

#include "Dialogs.h"
#include "estimate/CrewGrid.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStore.h"
#include "storage/ModuleSQL.h"
#include "storage/SqliteSnapshot.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTabWidget>

namespace {
const QString kSaveFilter = QStringLiteral("Файлы Вирн-Смета 7-8 (*.sim)");
// The dialog shows the two patterns joined by a comma; Qt reads the patterns split on blanks, so
// both are listed again after the caption text.
const QString kOpenFilter = QStringLiteral("Файлы Вирн-Смета 6-8 (*.sim,*.sme) (*.sim *.sme)");
} // namespace

void TForm1::setupFile() {
    connect(spdNew, &QAction::triggered, this, [this] {
        if (isChanged()) {
            const auto a = dialogs().ask(QStringLiteral("Данные изменялись"), QStringLiteral("Сохранить файл?"),
                                         Dialogs::Buttons::YesNoCancel);
            if (a == Dialogs::Answer::Cancel || (a == Dialogs::Answer::Yes && !spdSaveClick()))
                return;
        }
        CreateNewDoc();
    });
    connect(spdOpen, &QAction::triggered, this, [this] {
        const QString f = dialogs().openFile(QStringLiteral("Открыть"), m_openDir, kOpenFilter);
        if (!f.isEmpty())
            OpenMyFile(f);
    });
    connect(spdSave, &QAction::triggered, this, [this] { spdSaveClick(); });
    connect(MSaveFile, &QAction::triggered, this, [this] { spdSaveClick(); });
    connect(spdSaveKak, &QAction::triggered, this, [this] { spdSaveKakClick(); });
}

void TForm1::setCurrentFile(const QString &fileName) {
    m_fileName = fileName;
    if (fileName.isEmpty()) {
        m_xlsName.clear();
        PageControlDoc->setTabText(PageControlDoc->indexOf(TabSheet1),
                                   m_draft ? QStringLiteral("Новый черновик") : QStringLiteral("Новый документ"));
        return;
    }
    const QFileInfo fi(fileName);
    m_xlsName = fi.absolutePath() + QLatin1Char('/') + fi.completeBaseName() + QStringLiteral(".xls");
    PageControlDoc->setTabText(PageControlDoc->indexOf(TabSheet1), fi.fileName());
}

QList<QPair<QString, QString>> TForm1::documentParameters() const { return headerParameters(); }

void TForm1::CreateNewDoc(bool draft) {
    m_draft = draft;
    QString error;
    if (!EstimateStore::createNewDoc(*m_module, *m_gridDoc, *m_gridBrig, &error))
        dialogs().tell(Captions::error, QStringLiteral("Не удалось создать новый документ: %1").arg(error),
                       Dialogs::Icon::Error);
    m_currentRow = EstimateGrid::kFixedRows;
    setCurrentFile(QString());
    DisableSave();
    emit documentLoaded();
}

bool TForm1::spdSaveClick() {
    if (m_fileName.isEmpty())
        return spdSaveKakClick();
    QSqlDatabase db = m_module->database(Db::Smeta);
    QString error;
    if (!db.isOpen() || !EstimateStore::writeSmeta(db, *m_gridDoc, *m_gridBrig, documentParameters(), &error)) {
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось записать смету в рабочую базу: %1")
                           .arg(error.isEmpty() ? m_module->failure(Db::Smeta) : error),
                       Dialogs::Icon::Error);
        return false;
    }
    writeHeaderCopies(db);
    error = SqliteSnapshot::saveTo(db, m_fileName);
    if (!error.isEmpty()) {
        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
        return false;
    }
    DisableSave();
    return true;
}

bool TForm1::spdSaveKakClick() {
    const QString f =
        dialogs().saveFile(QStringLiteral("Сохранить как"), m_saveDir, QString(), kSaveFilter, QStringLiteral("sim"));
    if (f.isEmpty())
        return false;
    const QString previous = m_fileName;
    setCurrentFile(f);
    m_openDir = m_saveDir = QFileInfo(f).absolutePath();
    if (!spdSaveClick()) {
        setCurrentFile(previous);
        return false;
    }
    return true;
}

bool TForm1::OpenMyFile(const QString &fileName) {
    const QString problem = SqliteSnapshot::check(fileName);
    if (!problem.isEmpty()) {
        dialogs().tell(Captions::error,
                       QStringLiteral("Файл «%1» повреждён или не является документом Вирн-Смета (%2).")
                           .arg(QDir::toNativeSeparators(fileName), problem),
                       Dialogs::Icon::Error);
        return false;
    }
    const QString working = m_module->filePath(Db::Smeta);
    m_module->close(Db::Smeta);
    for (const char *suffix : {"-journal", "-wal", "-shm"})
        QFile::remove(working + QLatin1String(suffix));
    const QString error = SqliteSnapshot::copyFile(fileName, working);
    QSqlDatabase db = m_module->database(Db::Smeta);
    if (!error.isEmpty()) {
        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
        return false;
    }
    QString readError;
    if (!EstimateStore::readSmeta(db, *m_gridDoc, *m_gridBrig, &readError)) {
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось прочитать документ «%1»: %2")
                           .arg(QDir::toNativeSeparators(fileName), readError),
                       Dialogs::Icon::Error);
        return false;
    }
    applyHeaderParameters(EstimateStore::readParameters(db));
    m_currentRow = EstimateGrid::kFixedRows;
    m_openDir = m_saveDir = QFileInfo(fileName).absolutePath();
    setCurrentFile(fileName);
    DisableSave();
    emit documentLoaded();
    return true;
}
