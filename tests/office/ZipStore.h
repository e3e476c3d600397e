#pragma once
// Writes a zip archive with stored (uncompressed) entries: enough to build the ".docx" fixtures byte
// by byte, with the runs laid out exactly as a word processor splits them.

#include <QByteArray>
#include <QString>
#include <QVector>

struct ZipEntry {
    QString name;
    QByteArray data;
};

bool writeStoredZip(const QString &path, const QVector<ZipEntry> &entries);
