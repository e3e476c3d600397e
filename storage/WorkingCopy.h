#pragma once
// The working databases of one running program. The open estimate (Sp/smeta.db) and the undo journal
// of its grid (Sp/actions.db) belong to the program that has the estimate open, not to the data
// folder: a second program started on the same folder (a document opened from the file manager) gets
// a working copy of its own, Sp/smeta-2.db and Sp/actions-2.db, and so on. Each copy is held with a
// lock file for as long as its program runs.
//
// While it runs, the program notes beside its copy which document the copy holds and whether it has
// changes that are not in the document file. A program that ends normally removes the note; a note
// found beside a copy that no running program holds was left by a program that crashed: its copy is
// moved out of the way (into Temp) at the next start and offered for recovery there.

#include "Catalogue.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <memory>

class QLockFile;
class TModuleSQL;

class WorkingCopy {
public:
    static constexpr int kMaxSlots = 32;

    // A copy left by a program that crashed with changes in it.
    struct Leftover {
        QString file;      // where it lies now (in Temp, for this program only)
        QString document;  // the document it was a copy of; empty for a document never saved
        QDateTime written; // when it was last written
    };

    explicit WorkingCopy(const QString &dataFolder);
    ~WorkingCopy(); // release()
    WorkingCopy(const WorkingCopy &) = delete;
    WorkingCopy &operator=(const WorkingCopy &) = delete;

    // Takes the first copy no running program holds, and collects what crashed programs left.
    // False with a Russian reason when no copy can be held (a folder without write rights, or all
    // copies in use).
    bool claim(QString *error);
    bool isClaimed() const { return m_slot > 0; }
    // 1 for Sp/smeta.db, 2 for Sp/smeta-2.db, ...
    int slot() const { return m_slot; }
    // The file of Db::Smeta or Db::ReturnAction for this program; other databases are shared.
    QString path(Db db) const;
    // Points the data module's working connections at this program's copy.
    void applyTo(TModuleSQL &module) const;

    // Copies of crashed programs, newest first. Each is this program's to offer and then to remove.
    QList<Leftover> leftovers() const { return m_leftovers; }
    // Removes a leftover (offered, and recovered or declined).
    void removeLeftover(const Leftover &leftover);

    // What the working copy holds now: the document (empty for a new one) and whether the copy or the
    // program has changes that the document file does not.
    void note(const QString &document, bool changed);

    // The program ends normally: the note goes, and a copy other than the first is removed (the data
    // module must have closed it).
    void release();

    // Paths of the files of a slot, below the data folder.
    static QString relativePath(Db db, int slot);

private:
    QString notePath(int slot) const;
    QString lockPath(int slot) const;
    void collect(int slot);
    void collectStale();

    QString m_folder;
    int m_slot = 0;
    std::unique_ptr<QLockFile> m_lock;
    QList<Leftover> m_leftovers;
};
