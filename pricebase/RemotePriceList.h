#pragma once
// The remote price list on a MySQL server (FDConnectionServer / FDQueryServer): one table per list,
// columns Rascenka, Name, Edizm, Price for edras, nameras, edizm and the price.

#include "PriceStore.h"

#include <QString>

class SettingsStore;

// The program's MySQL server: the remote price list and the store of the user's files (server
// files) live on it; kept in IniFile.db, section "Server", edited in one window (TServerRasSettings).
struct ServerSettings {
    QString host;
    int port = 3306;
    QString database; // the price lists'
    QString user;
    QString password;
    QString table;
    QString filesDatabase; // the user's files; empty: the price lists' database

    // The database of the user's files.
    QString filesDatabaseName() const { return filesDatabase.trimmed().isEmpty() ? database : filesDatabase; }

    static ServerSettings load(const SettingsStore &store);
    void save(SettingsStore &store) const;
    // Empty when usable, else the Russian reason (missing address, a table name with other characters).
    QString problem() const;
};

class RemotePriceList {
public:
    RemotePriceList();
    ~RemotePriceList();
    RemotePriceList(const RemotePriceList &) = delete;
    RemotePriceList &operator=(const RemotePriceList &) = delete;

    // Connects, runs "USE <database>;" and creates the table if needed (DEFAULT CHARSET=utf8mb4).
    // On failure *error holds the server's own reason and nothing stays open.
    bool connectTo(const ServerSettings &settings, QString *error = nullptr);
    void disconnect();
    bool isConnected() const;
    QString table() const { return m_settings.table; }

    // ReadMySqlRAS: the whole list, or the rows whose Rascenka is LIKE `likePattern`.
    bool readList(const QString &likePattern, PriceListData &out, QString *error = nullptr);
    // Drops, recreates and fills the table from the grid rows (one transaction for the inserts). Rows
    // are checked first: a value longer than the server's column stops the write before anything is
    // dropped.
    bool writeList(const RateTable &rows, QString *error = nullptr);
    bool findRateByName(const QString &name, RateRow &out, QString *error = nullptr);

    // "CREATE TABLE IF NOT EXISTS" of the remote layout.
    static QString createStatement(const QString &table);

private:
    QString m_connection;
    ServerSettings m_settings;
};
