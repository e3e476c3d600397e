#include "CupsServer.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <cups/cups.h>

namespace {

bool write(const QString &path, const QByteArray &text) {
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(text) == text.size();
}

int freePort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

} // namespace

CupsServer::CupsServer() {
    const QString root = m_folder.path();
    for (const char *sub : {"conf", "spool", "cache", "state", "tmp", "log"})
        QDir(root).mkpath(QString::fromLatin1(sub));
    // The scheduler gives the spool to an unprivileged account.
    QFile::setPermissions(root, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner |
                                    QFileDevice::ReadOther | QFileDevice::ExeOther | QFileDevice::ReadGroup |
                                    QFileDevice::ExeGroup);
    const int port = freePort();
    m_server = QStringLiteral("127.0.0.1:%1").arg(port);
    const QByteArray conf = "Listen " + m_server.toUtf8() +
                            "\nLogLevel warn\nWebInterface No\nBrowsing No\n"
                            "DefaultAuthType None\nPreserveJobFiles Yes\nPreserveJobHistory Yes\n"
                            "<Location />\n Order allow,deny\n Allow all\n</Location>\n"
                            "<Policy default>\n <Limit All>\n  Order deny,allow\n </Limit>\n</Policy>\n";
    const QByteArray r = root.toUtf8();
    const QByteArray files = "ServerRoot " + r + "/conf\nRequestRoot " + r + "/spool\nCacheDir " + r +
                             "/cache\nStateDir " + r + "/state\nTempDir " + r + "/tmp\nAccessLog " + r +
                             "/log/access_log\nErrorLog " + r + "/log/error_log\nPageLog " + r +
                             "/log/page_log\nFileDevice Yes\nPrintcap\n";
    if (!write(root + "/conf/cupsd.conf", conf) || !write(root + "/conf/cups-files.conf", files)) {
        m_error = QStringLiteral("configuration not written");
        return;
    }
    m_scheduler.setProcessChannelMode(QProcess::MergedChannels);
    m_scheduler.start(QStringLiteral("/usr/sbin/cupsd"),
                      {QStringLiteral("-f"), QStringLiteral("-c"), root + "/conf/cupsd.conf",
                       QStringLiteral("-s"), root + "/conf/cups-files.conf"});
    if (!m_scheduler.waitForStarted(10000)) {
        m_error = QStringLiteral("cupsd: ") + m_scheduler.errorString();
        return;
    }
    bool up = false;
    for (int i = 0; i < 100 && !up && m_scheduler.state() == QProcess::Running; ++i) {
        QTcpSocket s;
        s.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port));
        up = s.waitForConnected(100);
        if (!up)
            QThread::msleep(100);
    }
    if (!up) {
        QFile log(root + "/log/error_log");
        log.open(QIODevice::ReadOnly);
        m_error = QStringLiteral("cupsd did not start: ") +
                  QString::fromUtf8(m_scheduler.readAll() + log.readAll());
        return;
    }
    if (!run(QStringLiteral("/usr/sbin/lpadmin"),
             {QStringLiteral("-h"), m_server, QStringLiteral("-p"), QString::fromLatin1(kQueue),
              QStringLiteral("-E"), QStringLiteral("-v"), QStringLiteral("file:///dev/null")}))
        return;
    qputenv("CUPS_SERVER", m_server.toUtf8());
    cupsSetServer(m_server.toUtf8().constData());
}

CupsServer::~CupsServer() {
    cupsSetServer(nullptr);
    qunsetenv("CUPS_SERVER");
    if (m_scheduler.state() != QProcess::NotRunning) {
        m_scheduler.terminate();
        if (!m_scheduler.waitForFinished(10000))
            m_scheduler.kill();
        m_scheduler.waitForFinished(5000);
    }
}

bool CupsServer::run(const QString &program, const QStringList &arguments) {
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(program, arguments);
    if (!p.waitForFinished(30000) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
        m_error = program + QStringLiteral(": ") + QString::fromUtf8(p.readAll()) + p.errorString();
        return false;
    }
    return true;
}

CupsServer::JobSeen CupsServer::job(int id) const {
    JobSeen seen;
    // The job's file is in the spool as soon as the job is created; wait for the job to be done with it.
    const QString spool = m_folder.file(QStringLiteral("spool/d%1-001").arg(id, 5, 10, QLatin1Char('0')));
    ipp_t *request = ippNewRequest(IPP_OP_GET_JOB_ATTRIBUTES);
    const QByteArray uri = "ipp://" + m_server.toUtf8() + "/jobs/" + QByteArray::number(id);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "job-uri", nullptr, uri.constData());
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", nullptr, "all");
    if (ipp_t *response = cupsDoRequest(CUPS_HTTP_DEFAULT, request, "/")) {
        if (ipp_attribute_t *a = ippFindAttribute(response, "copies", IPP_TAG_INTEGER))
            seen.copies = ippGetInteger(a, 0);
        if (ipp_attribute_t *a = ippFindAttribute(response, "page-ranges", IPP_TAG_RANGE)) {
            int upper = 0;
            const int lower = ippGetRange(a, 0, &upper);
            seen.pageRanges = QStringLiteral("%1-%2").arg(lower).arg(upper);
        }
        if (ipp_attribute_t *a = ippFindAttribute(response, "document-format-supplied", IPP_TAG_MIMETYPE))
            seen.format = QString::fromUtf8(ippGetString(a, 0, nullptr));
        else if (ipp_attribute_t *b = ippFindAttribute(response, "document-format", IPP_TAG_MIMETYPE))
            seen.format = QString::fromUtf8(ippGetString(b, 0, nullptr));
        ippDelete(response);
    }
    QFile f(spool);
    if (f.open(QIODevice::ReadOnly))
        seen.data = f.readAll();
    return seen;
}
