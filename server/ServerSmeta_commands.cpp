// TServerSmeta's commands that change or move files: the upload, the download (a user's own database
// is restored in its place), the deletions, and what the window does when one of them ends.

#include "DatabaseRestore.h"
#include "ServerFiles.h"
#include "ServerSmeta_frame.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QTemporaryFile>
#include <QTimer>

void TServerSmeta::begin(Operation op, const QString &text) {
    m_operation = op;
    m_transferText->setText(text);
    ProgressTransfer->setRange(0, 0);
    m_transferBar->show();
    LabelStatus->clear();
    m_progressTimer->start();
    updateActions();
}

void TServerSmeta::updateProgress() {
    const qint64 total = m_files->total();
    if (total <= 0) {
        ProgressTransfer->setRange(0, 0); // moving, size unknown
        return;
    }
    ProgressTransfer->setRange(0, 1000);
    ProgressTransfer->setValue(
        static_cast<int>(qBound<qint64>(qint64(0), m_files->done() * 1000 / total, qint64(1000))));
}

void TServerSmeta::spdSaveFileServerClick() {
    if (!checkReady(false))
        return;
    const QString path = dialogs().openFile(QStringLiteral("Сохранить файл на сервере"), m_folder,
                                            QStringLiteral("Все файлы (*)"));
    if (path.isEmpty())
        return;
    const StoredFiles::SizeProblem problem = StoredFiles::sizeProblem(QFileInfo(path).size());
    if (problem == StoredFiles::SizeProblem::Empty) {
        dialogs().tell(Captions::error, StoredFiles::sizeMessage(problem), Dialogs::Icon::Error);
        return;
    }
    if (problem == StoredFiles::SizeProblem::TooLarge) {
        dialogs().tell(Captions::warning, StoredFiles::sizeMessage(problem), Dialogs::Icon::Warning);
        return;
    }
    m_folder = QFileInfo(path).absolutePath();
    begin(Operation::Upload, QStringLiteral("Загрузка «%1» на сервер").arg(QFileInfo(path).fileName()));
    m_files->upload(path, EditAddress->currentText());
}

void TServerSmeta::spdLoadServerClick() {
    if (!checkReady(true))
        return;
    const StoredFile row = *selectedFile();
    Db db;
    if (DatabaseRestore::databaseOf(row.name, &db))
        return restoreDatabase(row, db);
    const QString name = TextValues::nameFromStored(row.name);
    const QString suffix = row.type.startsWith(QLatin1Char('.')) ? row.type.mid(1) : row.type;
    const QString filter =
        suffix.isEmpty() ? QStringLiteral("Все файлы (*)") : QStringLiteral("Файлы %1 (*%1)").arg(row.type);
    const QString target =
        dialogs().saveFile(QStringLiteral("Загрузить файл в компьютер"), m_folder, name, filter, suffix);
    if (target.isEmpty())
        return;
    m_folder = QFileInfo(target).absolutePath();
    begin(Operation::Download, QStringLiteral("Загрузка «%1» с сервера").arg(name));
    m_files->download(row, target);
}

void TServerSmeta::restoreDatabase(const StoredFile &row, Db db) {
    if (!m_module) {
        dialogs().tell(Captions::error, QStringLiteral("Базы данных программы не открыты."),
                       Dialogs::Icon::Error);
        return;
    }
    if (DatabaseRestore::localIsNewer(*m_module, db, row.datefile) &&
        dialogs().ask(Captions::warning, DatabaseRestore::newerQuestion(row.name), Dialogs::Buttons::YesNo,
                      Dialogs::Icon::Question) != Dialogs::Answer::Yes)
        return;
    // The copy from the server waits in the data folder's Temp until it is checked.
    const QString temp = QDir(m_module->dataFolder()).filePath(QStringLiteral("Temp"));
    QDir().mkpath(temp);
    QTemporaryFile file(QDir(temp).filePath(QStringLiteral("restore-XXXXXX.db")));
    file.setAutoRemove(false);
    if (!file.open()) {
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось создать временный файл в «%1»: %2")
                           .arg(QDir::toNativeSeparators(temp), file.errorString()),
                       Dialogs::Icon::Error);
        return;
    }
    m_restoreTemp = file.fileName();
    file.close();
    m_restoreDb = db;
    begin(Operation::Restore,
          QStringLiteral("Загрузка «%1» с сервера").arg(TextValues::nameFromStored(row.name)));
    m_files->download(row, m_restoreTemp);
}

void TServerSmeta::spdDeleteFileClick() {
    if (!checkReady(true))
        return;
    const StoredFile row = *selectedFile();
    if (dialogs().ask(Captions::deletion,
                      QStringLiteral("Удалить файл ") + TextValues::nameFromStored(row.name) +
                          QStringLiteral("?"),
                      Dialogs::Buttons::YesNo, Dialogs::Icon::Question) != Dialogs::Answer::Yes)
        return;
    begin(Operation::Delete, QStringLiteral("Удаление «%1»").arg(TextValues::nameFromStored(row.name)));
    m_files->remove(row);
}

void TServerSmeta::spdDropTableClick() {
    if (!checkReady(false))
        return;
    if (dialogs().ask(Captions::deletion, QStringLiteral("Удалить все файлы на сервере?"),
                      Dialogs::Buttons::YesNo, Dialogs::Icon::Question) != Dialogs::Answer::Yes)
        return;
    begin(Operation::DeleteAll, QStringLiteral("Удаление всех файлов"));
    m_files->removeAll();
}

void TServerSmeta::onFinished(bool ok, bool cancelled, const QString &message) {
    const Operation op = m_operation;
    m_operation = Operation::None;
    m_progressTimer->stop();
    m_transferBar->hide();
    QString text = message;
    if (op == Operation::Restore) {
        if (ok) {
            const QString why = DatabaseRestore::restore(*m_module, m_restoreDb, m_restoreTemp);
            ok = why.isEmpty();
            text = why;
            if (ok && m_onRestored)
                m_onRestored(m_restoreDb);
        }
        QFile::remove(m_restoreTemp);
        m_restoreTemp.clear();
    }
    if (cancelled) {
        LabelStatus->setText(QStringLiteral("Передача отменена."));
    } else if (!ok) {
        LabelStatus->setText(text);
        dialogs().tell(Captions::error, text, Dialogs::Icon::Error);
    } else if (op == Operation::Download || op == Operation::Restore) {
        LabelStatus->setText(QStringLiteral("Сделано"));
        dialogs().tell(Captions::info, QStringLiteral("Сделано"));
    } else {
        LabelStatus->setText(text);
    }
    updateActions();
    emit operationFinished(ok);
    // The lists are read again after every change on the server.
    if (op == Operation::Upload || op == Operation::Delete || op == Operation::DeleteAll)
        readLists();
}
