#pragma once
// The settings the main window reads at show and writes back at close: where each key lives in
// IniFile.db and its default. Options whose checkable action carries the key as its objectName are
// bound to it; every other key is carried through unchanged until its window uses it.

#include <QHash>
#include <QString>
#include <QVector>

class SettingsStore;

struct MainSettingKey {
    QString section;
    QString key;
    QString def;
};

class MainSettings {
public:
    static const QVector<MainSettingKey> &keys();
    // The section of a key ("Param" for a key the table does not list).
    static QString sectionOf(const QString &key);
    // The key's entry in the table, or null; its default ("" for a key not listed).
    static const MainSettingKey *find(const QString &key);
    static QString defaultOf(const QString &key);

    void read(const SettingsStore &store);
    void write(SettingsStore &store) const;

    QString text(const QString &key) const;
    bool flag(const QString &key) const;
    int integer(const QString &key, int def = 0) const;
    void set(const QString &key, const QString &value) { m_values.insert(key, value); }
    void setFlag(const QString &key, bool on) { set(key, on ? QStringLiteral("1") : QStringLiteral("0")); }
    void setInteger(const QString &key, int v) { set(key, QString::number(v)); }

private:
    QHash<QString, QString> m_values;
};
