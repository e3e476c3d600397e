#include "Autosave.h"

#include "DocumentChecksum.h"
#include "storage/SqliteSnapshot.h"

#include <QDir>
#include <QFileInfo>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <memory>

namespace AutosaveName {

namespace {
// Room for the date and the extension within the usual 255-byte limit of a file name.
constexpr int kMaxIdentification = 80;
} // namespace

QString identification(const QString &customer, const QString &object, const QString &number,
                       const QString &fallback) {
    QStringList parts;
    const QString c = customer.simplified();
    parts << (c.isEmpty() ? fallback.simplified() : c);
    if (!object.simplified().isEmpty())
        parts << object.simplified();
    parts.removeAll(QString());
    QString id = parts.join(QLatin1Char('-'));
    if (!number.simplified().isEmpty())
        id += QStringLiteral(" №") + number.simplified();
    return id.trimmed();
}

QString fileName(const QDateTime &when, const QString &identification) {
    QString id = identification.left(kMaxIdentification);
    for (QChar &ch : id) {
        if (kForbidden.contains(ch))
            ch = QLatin1Char('`');
        else if (ch.category() == QChar::Other_Control)
            ch = QLatin1Char(' ');
    }
    QString name = when.toString(QStringLiteral("yyyy-MM-dd  HH.mm"));
    if (!id.trimmed().isEmpty())
        name += QLatin1Char(' ') + id.trimmed();
    return name + QStringLiteral(".sim");
}

} // namespace AutosaveName

Autosave::Autosave(QObject *parent) : QObject(parent) {
    setObjectName(QStringLiteral("Autosave"));
    TimerAutosave = new QTimer(this);
    TimerAutosave->setObjectName(QStringLiteral("TimerAutosave"));
    TimerAutosave->setInterval(kDefaultInterval);
    // A copy is due only after an edit: the tick does not repeat by itself.
    TimerAutosave->setSingleShot(true);
    connect(TimerAutosave, &QTimer::timeout, this, &Autosave::tick);

    TimerDelAutosaveTimer = new QTimer(this);
    TimerDelAutosaveTimer->setObjectName(QStringLiteral("TimerDelAutosaveTimer"));
    TimerDelAutosaveTimer->setInterval(kCleanupInterval);
    connect(TimerDelAutosaveTimer, &QTimer::timeout, this, [this] {
        emit cleanupDue(); // listeners may set the retention from their settings first
        cleanup();
    });
}

Autosave::~Autosave() {
    // The copy must not outlive the object; its result is no longer reported.
    if (m_worker) {
        m_worker->wait();
        delete m_worker;
    }
}

void Autosave::setInterval(int ms) {
    TimerAutosave->setInterval(ms > 0 ? ms : kDefaultInterval);
}

void Autosave::setRetention(int keepDays, int maxCopies) {
    m_keepDays = keepDays > 0 ? keepDays : kDefaultKeepDays;
    m_maxCopies = maxCopies > 0 ? maxCopies : kDefaultMaxCopies;
}

void Autosave::arm() {
    if (!TimerAutosave->isActive())
        TimerAutosave->start();
}

void Autosave::disarm() {
    TimerAutosave->stop();
}

bool Autosave::startCopy(const QString &sourcePath, const QString &name) {
    if (m_worker)
        return false;
    QDir().mkpath(m_folder);
    m_target = QDir(m_folder).filePath(name);
    m_result = std::make_shared<QString>();
    auto result = m_result;
    const QString target = m_target;
    m_worker = QThread::create([sourcePath, target, result] {
        // A copy is a document file like any other: it carries the sums of its content.
        *result = SqliteSnapshot::copyFile(sourcePath, target, &DocumentChecksum::write);
    });
    connect(m_worker, &QThread::finished, this, &Autosave::finishCopy);
    m_worker->start();
    return true;
}

void Autosave::finishCopy() {
    if (!m_worker || !m_worker->isFinished())
        return;
    m_worker->deleteLater();
    m_worker = nullptr;
    if (m_result->isEmpty())
        emit copied(m_target);
    else
        emit copyFailed(QStringLiteral("Автосохранение не удалось. %1").arg(*m_result));
}

void Autosave::waitForCopy() {
    if (!m_worker)
        return;
    m_worker->wait();
    finishCopy();
}

void Autosave::cleanup() {
    removeOldCopies(m_folder, QDateTime::currentDateTime(), m_keepDays, m_maxCopies);
}

QString Autosave::keep(const QString &copy, const QString &document, const QString &folder) {
    QDir().mkpath(folder);
    const QString id =
        QStringLiteral("Восстановление ") +
        (document.isEmpty() ? QStringLiteral("Новый документ") : QFileInfo(document).completeBaseName());
    const QString target = QDir(folder).filePath(AutosaveName::fileName(QFileInfo(copy).lastModified(), id));
    return SqliteSnapshot::copyFile(copy, target, &DocumentChecksum::write);
}

QStringList Autosave::removeOldCopies(const QString &folder, const QDateTime &now, int keepDays,
                                      int maxCopies) {
    QStringList removed;
    if (folder.isEmpty())
        return removed;
    QFileInfoList copies = QDir(folder).entryInfoList({QStringLiteral("*.sim")}, QDir::Files, QDir::Time);
    const QDateTime limit = now.addDays(-keepDays);
    int kept = 0;
    for (const QFileInfo &fi : copies) { // newest first
        if (fi.lastModified() < limit || kept >= maxCopies) {
            if (QFile::remove(fi.absoluteFilePath()))
                removed << fi.absoluteFilePath();
        } else {
            ++kept;
        }
    }
    return removed;
}
