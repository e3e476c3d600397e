#pragma once
// The titles of the printed sheets, kept in section View of IniFile.db under the names of the fields of
// TEditFromAktSmeta.

#include <QString>
#include <QStringList>
#include <functional>

class SettingsStore;

struct ViewTitles {
    QString smetaName = QStringLiteral("СМЕТА");                             // EditSmetaName
    QString smeta = QStringLiteral("На строительно-монтажные работы");       // EditSmeta
    QString aktName = QStringLiteral("АКТ");                                 // EditAktName
    QString akt = QStringLiteral("Выполненных монтажно-строительных работ"); // EditAkt
    QString local = QStringLiteral("ЛОКАЛЬНЫЙ РЕСУРСНЫЙ СМЕТНЫЙ РАСЧЕТ");    // EditLocal
    QString afterLocal = QStringLiteral("(ЛОКАЛЬНАЯ РЕСУРСНАЯ СМЕТА)");      // EditAfterLocal
    QString podryad = QStringLiteral("Подрядчик");                           // EditPodryad

    static const QString section; // "View"
    // The setting keys, in the order above.
    static const QStringList &keys();

    QString value(const QString &key) const;
    void set(const QString &key, const QString &text);

    // Reads each key through get(key, default); a missing or empty value keeps the default.
    static ViewTitles read(const std::function<QString(const QString &key, const QString &def)> &get);
    static ViewTitles read(const SettingsStore &store);
    void write(SettingsStore &store) const;
};
