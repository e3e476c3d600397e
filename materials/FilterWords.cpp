#include "FilterWords.h"

#include "storage/TextFile.h"

#include <QDir>
#include <QRegularExpression>

namespace FilterWords {

namespace {
// One word per line, blank lines and repeats dropped, at most kMaxWords.
QStringList cleaned(const QStringList &words) {
    QStringList out;
    for (const QString &w : words) {
        const QString word = w.trimmed();
        if (!word.isEmpty() && !out.contains(word) && out.size() < kMaxWords)
            out << word;
    }
    return out;
}
} // namespace

QString path(const QString &dataFolder) {
    return QDir(dataFolder).filePath(QStringLiteral("Sp/filter mat.txt"));
}

bool load(const QString &dataFolder, QStringList *words, QString *error) {
    QString text;
    words->clear();
    if (!TextFile::read(path(dataFolder), 256 * 1024, &text, error))
        return false;
    static const QRegularExpression lines(QStringLiteral("[\r\n]+"));
    *words = cleaned(text.split(lines));
    return true;
}

bool add(const QString &dataFolder, const QString &word, QStringList *words, QString *error) {
    const QString w = word.trimmed();
    if (w.isEmpty())
        return true;
    QStringList next = *words;
    next.removeAll(w);
    next.prepend(w);
    if (!save(dataFolder, next, error))
        return false;
    *words = cleaned(next);
    return true;
}

bool save(const QString &dataFolder, const QStringList &words, QString *error) {
    const QStringList clean = cleaned(words);
    return TextFile::write(path(dataFolder), clean.isEmpty() ? QString() : clean.join(u'\n') + u'\n', error);
}

} // namespace FilterWords
