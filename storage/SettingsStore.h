#pragma once
// IniFile.db: the settings store of the data folder, sections of keys with text values.
// Typed reads take a default that is returned when the key is absent or not of the type.

#include <QString>
#include <QStringList>

class SettingsStore {
public:
    explicit SettingsStore(const QString &filePath);
    ~SettingsStore();
    SettingsStore(const SettingsStore &) = delete;
    SettingsStore &operator=(const SettingsStore &) = delete;

    bool isOpen() const { return m_open; }
    QString error() const { return m_error; }
    QString filePath() const { return m_path; }

    bool contains(const QString &section, const QString &key) const;
    QString text(const QString &section, const QString &key, const QString &def = {}) const;
    int integer(const QString &section, const QString &key, int def = 0) const;
    double number(const QString &section, const QString &key, double def = 0) const;
    bool flag(const QString &section, const QString &key, bool def = false) const;
    QStringList keys(const QString &section) const;

    void setText(const QString &section, const QString &key, const QString &value);
    void setInteger(const QString &section, const QString &key, int value);
    void setNumber(const QString &section, const QString &key, double value);
    void setFlag(const QString &section, const QString &key, bool value);
    void remove(const QString &section, const QString &key);

private:
    QString m_path;
    QString m_connection;
    bool m_open = false;
    QString m_error;
};
