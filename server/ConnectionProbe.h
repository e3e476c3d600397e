#pragma once
// "Проверить связь" of the server settings: asks the server with the address and key being edited
// whether it answers and knows the key (the cash book's "exists" path answers 403 to an unknown key).

#include "FileServerSettings.h"

#include <QObject>

class RemoteClient;

class ConnectionProbe : public QObject {
    Q_OBJECT
public:
    ConnectionProbe(const FileServerSettings &settings, QObject *parent = nullptr);
    // finished follows in every case.
    void start();

signals:
    void finished(bool ok, const QString &text);

private:
    void end(bool ok, const QString &text);

    FileServerSettings m_settings;
    RemoteClient *m_client;
};
