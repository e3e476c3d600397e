#pragma once
// The words of the materials filter cmbFilterRas, kept one a line in "Sp/filter mat.txt" of the data
// folder: the last word used first, each word once.

#include <QString>
#include <QStringList>

namespace FilterWords {

// Enough for years of filtering; older words fall off the end.
constexpr int kMaxWords = 100;

QString path(const QString &dataFolder);
// The words of the file (none when it does not exist). False with a Russian *error.
bool load(const QString &dataFolder, QStringList *words, QString *error = nullptr);
// Puts the word first (moving it when it is there already; a blank word changes nothing) and
// writes the file.
bool add(const QString &dataFolder, const QString &word, QStringList *words, QString *error = nullptr);
// Writes the words as they are (the list edited by the user).
bool save(const QString &dataFolder, const QStringList &words, QString *error = nullptr);

} // namespace FilterWords
