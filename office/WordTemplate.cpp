#include "WordTemplate.h"

#include "office/OfficeEngine.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace WordTemplate {

bool fill(OfficeEngine &engine, const QString &templatePath, const Replacements &replacements,
          const QVector<TemplateFile::Output> &outputs, QString *error) {
    if (!TemplateFile::open(engine, templatePath, QStringLiteral("text"), error))
        return false;
    auto engineFailed = [&]() {
        *error = engine.error();
        engine.close();
        return false;
    };
    Replacements given;
    for (const auto &r : replacements) {
        if (!r.first.isEmpty() && r.first != r.second)
            given << r;
    }
    if (!engine.replaceAll(given))
        return engineFailed();

    // The replace-all command does not say what it found: read the text back and look for leftovers.
    QTemporaryDir scratch;
    const QString textCopy = scratch.filePath(QStringLiteral("check.txt"));
    if (!engine.saveAs(textCopy, QStringLiteral("txt")))
        return engineFailed();
    QFile f(textCopy);
    const QString text = f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    QStringList left;
    for (const auto &r : given) {
        // A value that holds its own placeholder would always look unreplaced.
        if (text.contains(r.first) && !r.second.contains(r.first))
            left << r.first;
    }
    return TemplateFile::finish(engine, templatePath, left, outputs, error);
}

} // namespace WordTemplate
