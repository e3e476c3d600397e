#pragma once
// A private virn-fileserver for one test: its own data folder (seeded like the one `make test`
// starts: the program's version, release notes, news, the plug-in), the account "test_key", a free
// port on 127.0.0.1, its request log; stopped when the object goes.

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>

class FileServerProcess {
public:
    FileServerProcess();
    ~FileServerProcess();

    // Starts the server (extra arguments such as --cert/--key); false with error() when it does not
    // come up within 10 s.
    bool start(const QStringList &extraArguments = {});
    void stop();
    QString error() const { return m_error; }

    QUrl url() const;
    QString key() const { return QStringLiteral("test_key"); }
    QString dataFolder() const { return m_data.path(); }
    QString file(const QString &relative) const { return m_data.filePath(relative); }
    // Writes a file of the server's data folder (folders made as needed).
    void put(const QString &relative, const QByteArray &bytes);
    QByteArray read(const QString &relative) const;
    // The request log so far.
    QString log() const;
    // Whether the log holds text within ms: a request's line is written just after its reply is sent.
    bool logged(const QString &text, int ms = 5000) const;

    // A self-signed certificate for 127.0.0.1 with its key: folder/cert.pem and folder/key.pem (made
    // by the openssl command); false with *error.
    static bool makeTestCertificate(const QString &folder, QString *error);

    // The built server and plug-in.
    static QString executable();
    static QString seedFolder();

private:
    QTemporaryDir m_data;
    QTemporaryDir m_run;
    QProcess m_process;
    int m_port = 0;
    bool m_https = false;
    QString m_error;
};
