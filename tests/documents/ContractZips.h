#pragma once
// Zip packages for the template checks: compressed entries, and archives that state false sizes.

#include <QByteArray>
#include <QString>
#include <QVector>

struct PackageEntry {
    QString name;
    QByteArray data;
};

// Writes a zip of deflated entries.
bool writePackage(const QString &path, const QVector<PackageEntry> &entries);

// Rewrites the unpacked size every header of the archive states (local and central) to `size`.
bool stateUnpackedSize(const QString &path, quint32 size);

// A minimal ".docx" whose body is the given paragraphs' text (word/document.xml and what a word
// processor needs around it); extra entries are added as they are.
QVector<PackageEntry> docxEntries(const QStringList &paragraphs, const QVector<PackageEntry> &extra = {});
