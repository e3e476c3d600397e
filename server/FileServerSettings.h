#pragma once
// Where the program's file server is and which account the user has there: kept in IniFile.db,
// section "Server", keys "Url" and "Key", edited in the window "Файловый сервер". Without an address
// no remote feature requests anything.

#include <QString>
#include <QUrl>

class SettingsStore;

struct FileServerSettings {
    QString url; // "https://host:port"
    QString key; // the account key: letters, digits and "_", up to 64

    static FileServerSettings read(const SettingsStore &store);
    void write(SettingsStore &store) const;

    // What is wrong with the address or the key, in Russian; empty when both may be used. An empty
    // address is allowed (no server); an empty key too (no account).
    QString problem() const;
    // The address as a URL; invalid when it is empty or wrong.
    QUrl baseUrl() const;
    bool hasServer() const { return baseUrl().isValid(); }
};
