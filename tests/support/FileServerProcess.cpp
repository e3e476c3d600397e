#include "FileServerProcess.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

FileServerProcess::FileServerProcess() {
    // The seed as `make test` lays it out, and one account.
    QDirIterator it(seedFolder(), QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString from = it.next();
        const QString relative = QDir(seedFolder()).relativeFilePath(from);
        QFile in(from);
        if (in.open(QIODevice::ReadOnly))
            put(relative, in.readAll());
    }
    put(QStringLiteral("accounts.txt"), "# the test's account\ntest_key\n");
}

FileServerProcess::~FileServerProcess() {
    stop();
}

QString FileServerProcess::executable() {
    return QStringLiteral(VIRN_FILESERVER_EXE);
}

QString FileServerProcess::seedFolder() {
    return QStringLiteral(VIRN_FILESERVER_SEED);
}

bool FileServerProcess::start(const QStringList &extraArguments) {
    const QString portFile = m_run.filePath(QStringLiteral("port"));
    QFile::remove(portFile);
    m_https = extraArguments.contains(QStringLiteral("--cert"));
    m_process.setProgram(executable());
    m_process.setArguments(QStringList{QStringLiteral("--listen"), QStringLiteral("127.0.0.1"),
                                       QStringLiteral("--port"), QStringLiteral("0"),
                                       QStringLiteral("--port-file"), portFile, QStringLiteral("--log"),
                                       m_run.filePath(QStringLiteral("log"))} +
                           extraArguments + QStringList{m_data.path()});
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start();
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 10000) {
        QFile f(portFile);
        if (f.open(QIODevice::ReadOnly)) {
            m_port = f.readAll().trimmed().toInt();
            if (m_port > 0)
                return true;
        }
        if (m_process.state() == QProcess::NotRunning)
            break;
        QThread::msleep(20);
    }
    m_process.waitForFinished(100);
    m_error = QStringLiteral("virn-fileserver did not start: ") + QString::fromUtf8(m_process.readAll());
    return false;
}

void FileServerProcess::stop() {
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(5000)) {
        m_process.kill();
        m_process.waitForFinished(2000);
    }
}

QUrl FileServerProcess::url() const {
    return QUrl(QStringLiteral("%1://127.0.0.1:%2").arg(m_https ? "https" : "http").arg(m_port));
}

void FileServerProcess::put(const QString &relative, const QByteArray &bytes) {
    const QString path = m_data.filePath(relative);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(bytes);
}

QByteArray FileServerProcess::read(const QString &relative) const {
    QFile f(m_data.filePath(relative));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QString FileServerProcess::log() const {
    QFile f(m_run.filePath(QStringLiteral("log")));
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

bool FileServerProcess::logged(const QString &text, int ms) const {
    QElapsedTimer timer;
    timer.start();
    while (!log().contains(text)) {
        if (timer.elapsed() > ms)
            return false;
        QThread::msleep(20);
    }
    return true;
}

bool FileServerProcess::makeTestCertificate(const QString &folder, QString *error) {
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=127.0.0.1",
                   "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", QDir(folder).filePath("key.pem"),
                   "-out", QDir(folder).filePath("cert.pem")});
    if (!openssl.waitForFinished(60000) || openssl.exitCode() != 0) {
        *error = QString::fromUtf8(openssl.readAllStandardError()) + openssl.errorString();
        return false;
    }
    return true;
}
