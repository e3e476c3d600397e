#include "WordTemplate.h"

#include "office/OfficeEngine.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace WordTemplate {

namespace {

// Values go in with their square brackets masked, so that a value that looks like a placeholder
// ("ООО [заказчик]") is neither replaced again by a later pair nor taken for a placeholder left
// unfilled; the masks turn back into brackets at the end. Line ends become the engine's line breaks.
const QChar kOpenMask(0xE000);
const QChar kCloseMask(0xE001);

QString masked(QString value) {
    value.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    return value.replace(u'[', kOpenMask).replace(u']', kCloseMask);
}

} // namespace

bool fill(OfficeEngine &engine, const QString &templatePath, const Replacements &replacements,
          const QVector<TemplateFile::Output> &outputs, QString *error) {
    return TemplateFile::open(engine, templatePath, QStringLiteral("text"), error) &&
           fillLoaded(engine, templatePath, replacements, outputs, error);
}

bool fillLoaded(OfficeEngine &engine, const QString &templatePath, const Replacements &replacements,
                const QVector<TemplateFile::Output> &outputs, QString *error) {
    auto engineFailed = [&]() {
        *error = engine.error();
        engine.close();
        return false;
    };
    Replacements given;
    bool masks = false;
    for (const auto &r : replacements) {
        if (!r.first.isEmpty() && r.first != r.second) {
            given << qMakePair(r.first, masked(r.second));
            masks = masks || given.constLast().second != r.second;
        }
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
        if (text.contains(r.first))
            left << r.first;
    }
    if (left.isEmpty() && masks &&
        !engine.replaceAll(
            {{QString(kOpenMask), QStringLiteral("[")}, {QString(kCloseMask), QStringLiteral("]")}}))
        return engineFailed();
    return TemplateFile::finish(engine, templatePath, left, outputs, error);
}

} // namespace WordTemplate
