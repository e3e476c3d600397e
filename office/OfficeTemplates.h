#pragma once
// The default templates the program brings along (built into the program from resources/templates).
// At start they are put into the data folder's Sh where missing; a file the user already has there,
// changed or not, is never overwritten.

#include <QString>
#include <QStringList>

namespace OfficeTemplates {

// File names of the default templates, as they lie in Sh.
QStringList fileNames();

// <dataFolder>/Sh/<fileName>.
QString path(const QString &dataFolder, const QString &fileName);

// Writes every default template missing from <dataFolder>/Sh. Returns the names written; *error gets a
// Russian message naming the files that could not be written (empty when all went well).
QStringList ensureDefaults(const QString &dataFolder, QString *error = nullptr);

} // namespace OfficeTemplates
