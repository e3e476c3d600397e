// The register's actions on its rows: finish, edit, delete, open, print, move between the lists, and
// the files of the side grids.

#include "EditDocument_frame.h"
#include "MyDocuments_frame.h"
#include "RegisterModel.h"
#include "RegisterMoves.h"
#include "RegisterRows.h"
#include "estimate/DocumentFile.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QTableView>
#include <QUrl>

namespace {

const QString kSimFilter = QStringLiteral("Файлы Вирн-Смета 7-8 (*.sim)");

bool sameFile(const QString &a, const QString &b) {
    if (a.isEmpty() || b.isEmpty())
        return false;
    const QFileInfo fa(a), fb(b);
    if (fa.exists() && fb.exists())
        return fa.canonicalFilePath() == fb.canonicalFilePath();
    return QDir::cleanPath(fa.absoluteFilePath()) == QDir::cleanPath(fb.absoluteFilePath());
}

} // namespace

void TMyDocuments::tellFailure(const QString &text) {
    dialogs().tell(Captions::error, text, Dialogs::Icon::Error);
}

bool TMyDocuments::selected(const Page &page, RegisterRow *row) {
    const int index = page.grid->currentIndex().row();
    if (!page.model->hasRow(index))
        return false; // an empty grid or no row chosen: nothing to do
    // The row as the register holds it now: another copy of the program may have changed it.
    *row = page.model->page().row(index);
    QSqlDatabase db = registerDb();
    QString error;
    if (!db.isOpen() || !RegisterRows::readOne(db, page.list, row->id, row, &error)) {
        tellFailure(QStringLiteral("Запись «%1»: %2")
                        .arg(row->name, db.isOpen() ? error : m_module.failure(Db::MyDoc)));
        return false;
    }
    return true;
}

void TMyDocuments::changed(Page &page, qlonglong keepId) {
    page.yearsKnown = false;
    readPage(page, keepId);
    emit registerChanged();
}

void TMyDocuments::writeRow(Page &page, qlonglong keepId, const QString &failure,
                            const std::function<bool(QSqlDatabase, QString *)> &write) {
    QSqlDatabase db = registerDb();
    QString error = db.isOpen() ? QString() : m_module.failure(Db::MyDoc);
    if (!db.isOpen() || !write(db, &error))
        tellFailure(failure + QStringLiteral(": ") + error);
    changed(page, keepId);
}

// ----- Documents page

void TMyDocuments::NFinishClick() {
    RegisterRow row;
    if (!selected(m_doc, &row) || row.finished)
        return;
    writeRow(m_doc, row.id, QStringLiteral("Смета «%1» не завершена").arg(row.name),
             [&row](QSqlDatabase db, QString *error) {
                 return Registration::finish(db, row.id, QDate::currentDate(), error);
             });
}

void TMyDocuments::NEditClick() {
    editRow(m_doc);
}

void TMyDocuments::MEditDraftClick() {
    editRow(m_draft);
}

void TMyDocuments::editRow(Page &page) {
    RegisterRow row;
    if (!selected(page, &row))
        return;
    TEditDocument dialog(!isDrafts(page), this);
    Registration::Edit values;
    values.date = TextValues::parseShortDate(row.data);
    values.name = row.name;
    values.finished = row.finished;
    values.finishDate = TextValues::parseShortDate(row.dataend);
    dialog.setValues(values);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const Registration::Edit edited = dialog.values();
    writeRow(page, row.id, QStringLiteral("Изменения записи «%1» не сохранены").arg(row.name),
             [&](QSqlDatabase db, QString *error) {
                 return Registration::edit(db, page.list, row.id, edited, error);
             });
}

void TMyDocuments::NDeleteClick() {
    deleteRow(m_doc);
}

void TMyDocuments::MDelDraftClick() {
    deleteRow(m_draft);
}

void TMyDocuments::deleteRow(Page &page) {
    RegisterRow row;
    if (!selected(page, &row))
        return;
    if (dialogs().ask(Captions::deletion, QStringLiteral("Удалить запись от ") + row.data + QLatin1Char('?'),
                      Dialogs::Buttons::YesNo, Dialogs::Icon::Question) != Dialogs::Answer::Yes)
        return;
    const int next = page.grid->currentIndex().row();
    writeRow(
        page, 0, QStringLiteral("Запись «%1» не удалена").arg(row.name),
        [&](QSqlDatabase db, QString *error) { return Registration::remove(db, page.list, row.id, error); });
    if (page.model->rowCount() > 0)
        page.grid->selectRow(std::min(next, page.model->rowCount() - 1));
}

void TMyDocuments::ToolSetDraftsClick() {
    RegisterRow row;
    if (!selected(m_doc, &row))
        return;
    if (dialogs().ask(QStringLiteral("Действие"),
                      QStringLiteral("Переместить ") + row.name + QStringLiteral(" в черновики?"),
                      Dialogs::Buttons::YesNo, Dialogs::Icon::Question) != Dialogs::Answer::Yes)
        return;
    const QString drafts = DocumentFile::draftsFolder(m_module.dataFolder());
    moveRow(m_doc, RegisterMoves::draftTarget(drafts, row));
}

void TMyDocuments::MMoveToDocClick() {
    RegisterRow row;
    if (!selected(m_draft, &row))
        return;
    if (dialogs().ask(QStringLiteral("Перемещение"),
                      QStringLiteral("Переместить черновик от ") + row.data + QStringLiteral(" в документы?"),
                      Dialogs::Buttons::YesNo, Dialogs::Icon::Question) != Dialogs::Answer::Yes)
        return;
    const QString folder =
        RegisterMoves::documentFolder(m_module, row, CustomerFolder::Options::fromFlags(m_options.get));
    QString target =
        dialogs().saveFile(QStringLiteral("Переместить черновик в документы"), folder,
                           QFileInfo(row.fileName).fileName(), kSimFilter, DocumentFile::kExtension);
    if (target.isEmpty())
        return;
    if (QFileInfo(target).suffix().isEmpty())
        target += QLatin1Char('.') + DocumentFile::kExtension;
    if (!moveRow(m_draft, target))
        return;
    BtnClearFiltersClick();
    dialogs().tell(QStringLiteral("Сообщение"), QStringLiteral("Операция прошла успешно"),
                   Dialogs::Icon::Information);
}

bool TMyDocuments::moveRow(Page &page, const QString &target) {
    RegisterRow row;
    if (!selected(page, &row))
        return false;
    // The estimate open in the main window moves too: its unsaved edits are settled first, and it is
    // opened again from its new place.
    const bool wasOpen = sameFile(row.fileName, m_commands.openDocument());
    if (wasOpen && !m_commands.settleOpenDocument())
        return false;
    const RegisterMoves::Outcome moved = RegisterMoves::move(m_module, page.list, row.id, target);
    m_doc.yearsKnown = m_draft.yearsKnown = false;
    Page &other = isDrafts(page) ? m_doc : m_draft;
    readPage(page, moved.ok ? 0 : row.id);
    readPage(other, moved.ok ? moved.newId : 0);
    emit registerChanged();
    if (!moved.ok) {
        tellFailure(moved.error);
        return false;
    }
    if (wasOpen)
        m_commands.openEstimate(moved.newPath);
    if (!moved.warning.isEmpty())
        dialogs().tell(Captions::warning, moved.warning, Dialogs::Icon::Warning);
    return true;
}

// ----- Opening and printing

void TMyDocuments::ToolOpenClick() {
    openRow(current());
}

bool TMyDocuments::openRow(const Page &page) {
    RegisterRow row;
    if (!selected(page, &row))
        return false;
    if (row.fileName.isEmpty() || !QFileInfo(row.fileName).isFile()) {
        dialogs().tell(Captions::error, QStringLiteral("Файл не найден"), Dialogs::Icon::Error);
        return false;
    }
    if (sameFile(row.fileName, m_commands.openDocument()))
        return true; // it is the estimate open already
    return m_commands.settleOpenDocument() && m_commands.openEstimate(row.fileName);
}

void TMyDocuments::outputClick(RegisterCommands::Output kind) {
    // The chosen row's estimate is printed: it is opened in the main window first.
    Page &page = current();
    if (page.model->hasRow(page.grid->currentIndex().row()) && !openRow(page))
        return;
    m_commands.output(kind);
}

void TMyDocuments::openOutputFile(const QString &path) {
    if (path.isEmpty() || !QFileInfo(path).isFile()) {
        dialogs().tell(Captions::error, QStringLiteral("Отсутствует файл ") + QDir::toNativeSeparators(path),
                       Dialogs::Icon::Error);
        return;
    }
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath())))
        tellFailure(QStringLiteral("Не удалось открыть файл «%1»: для него нет программы.")
                        .arg(QDir::toNativeSeparators(path)));
}

void TMyDocuments::popup(Page &page, const QPoint &at) {
    const QModelIndex index = page.grid->indexAt(at);
    if (!page.model->hasRow(index.row()))
        return;
    page.grid->selectRow(index.row());
    QMenu menu(this);
    if (isDrafts(page)) {
        menu.addActions({ToolOpenDraft, MMoveToDoc, MEditDraft, MDelDraft});
    } else {
        menu.addAction(ToolOpen);
        // Finishing is offered only for an estimate in work.
        if (!page.model->page().finished(index.row()))
            menu.addAction(NFinish);
        menu.addActions({NEdit, NDelete});
        menu.addSeparator();
        menu.addAction(ToolSetDrafts);
    }
    menu.exec(page.grid->viewport()->mapToGlobal(at));
}
