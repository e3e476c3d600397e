#pragma once
// Autosave: while the document is changed, a copy of the working database goes to Sm/Autosave every
// few minutes. The window answers the timer by writing the grid into the working database and
// calling startCopy; the copy itself runs on a worker thread with its own read-only connection, so
// that the interface never waits and a later edit cannot tear the copy (SqliteSnapshot::copyFile).
// A second timer removes old copies.

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>

class QThread;
class QTimer;

namespace AutosaveName {
// The characters a file name cannot hold; each becomes a backtick.
inline const QString kForbidden = QStringLiteral("/\\\"|*?:<>%");
// The document's identification: customer (else the fallback, e.g. the file's name), object, and
// " №" with the number.
QString identification(const QString &customer, const QString &object, const QString &number,
                       const QString &fallback);
// "YYYY-MM-DD  HH.MM " + identification + ".sim", forbidden characters replaced.
QString fileName(const QDateTime &when, const QString &identification);
} // namespace AutosaveName

class Autosave : public QObject {
    Q_OBJECT
public:
    static constexpr int kDefaultInterval = 180000;
    static constexpr int kDefaultKeepDays = 30;
    static constexpr int kDefaultMaxCopies = 50;
    static constexpr int kCleanupInterval = 30 * 60 * 1000;

    explicit Autosave(QObject *parent = nullptr);
    ~Autosave() override; // waits for a copy in progress

    QTimer *TimerAutosave = nullptr;         // one tick, restarted by the next edit
    QTimer *TimerDelAutosaveTimer = nullptr; // removal of old copies

    void setFolder(const QString &folder) { m_folder = folder; }
    QString folder() const { return m_folder; }
    void setInterval(int ms);
    void setRetention(int keepDays, int maxCopies);

    // Starts the tick timer unless it runs already.
    void arm();
    void disarm();

    // Copies the database file `sourcePath` to folder/name on a worker thread. False when a copy is
    // still running (the tick is skipped, the next one copies).
    bool startCopy(const QString &sourcePath, const QString &name);
    bool isCopying() const { return m_worker != nullptr; }
    // Blocks until a running copy has finished (closing the program, tests).
    void waitForCopy();

    // Keeps `copy` (a working copy a crashed program left, not recovered) in `folder` as an autosave
    // copy of `document`. Empty string on success, else the reason.
    static QString keep(const QString &copy, const QString &document, const QString &folder);

    // Removes copies (*.sim) older than keepDays and all but the newest maxCopies. Returns the removed
    // paths.
    static QStringList removeOldCopies(const QString &folder, const QDateTime &now, int keepDays,
                                       int maxCopies);

signals:
    // TimerAutosave fired: the window writes the working database and calls startCopy.
    void tick();
    void copied(const QString &path);
    void copyFailed(const QString &message);
    // TimerDelAutosaveTimer fired; old copies are removed right after this signal.
    void cleanupDue();

private:
    void cleanup();
    void finishCopy();

    QString m_folder;
    int m_keepDays = kDefaultKeepDays;
    int m_maxCopies = kDefaultMaxCopies;
    QThread *m_worker = nullptr;
    QString m_target;
    std::shared_ptr<QString> m_result;
};
