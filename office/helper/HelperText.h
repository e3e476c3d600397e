#pragma once
// What the helper's requests say to the engine: file URLs and arguments of its commands.

#include <QByteArray>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QUrl>

#include <string>

inline std::string toUrl(const QString &path) {
    return QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toString(QUrl::FullyEncoded).toStdString();
}

// {"name":{"type":"string","value":"…"}}
inline QByteArray stringArg(const char *name, const QString &value) {
    QJsonObject v{{QStringLiteral("type"), QStringLiteral("string")}, {QStringLiteral("value"), value}};
    return QJsonDocument(QJsonObject{{QLatin1String(name), v}}).toJson(QJsonDocument::Compact);
}
