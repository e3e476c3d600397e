// virn-office-templates: rebuilds the default templates. Lays each one out as a flat OpenDocument file
// and lets the office engine save it as ".xls" or ".docx" into the output folder (normally
// resources/templates of the source tree):
//     virn-office-templates /path/to/repo/resources/templates [--sources]
// With --sources the flat files are kept beside the results, for looking at the layout itself.

#include "office/OfficeEngine.h"
#include "office/SheetTemplate.h"
#include "office/templates/DefaultTemplates.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cstdio>

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.isEmpty() || args.first().startsWith(u'-')) {
        std::fprintf(stderr, "usage: virn-office-templates OUTPUT_FOLDER [--sources]\n");
        return 2;
    }
    const QString out = QFileInfo(args.first()).absoluteFilePath();
    const bool keepSources = args.contains(QStringLiteral("--sources"));
    QDir().mkpath(out);
    QTemporaryDir scratch;
    OfficeEngine engine(scratch.path());
    int failures = 0;
    for (const DefaultTemplates::Template &t : DefaultTemplates::all()) {
        const QString base = QFileInfo(t.fileName).completeBaseName();
        const QString source =
            (keepSources ? QDir(out) : QDir(scratch.path())).filePath(base + u'.' + t.sourceSuffix);
        QFile f(source);
        if (!f.open(QIODevice::WriteOnly) || f.write(t.build()) < 0) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(source));
            ++failures;
            continue;
        }
        f.close();
        const QString target = QDir(out).filePath(t.fileName);
        const QString format = QFileInfo(t.fileName).suffix();
        QFile::remove(target);
        if (!engine.load(source) || !engine.saveAs(target, format)) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(t.fileName), qPrintable(engine.error()));
            ++failures;
            engine.close();
            continue;
        }
        // What the template asks for, as the engine reads it back.
        QStringList names;
        SheetText::Grid grid;
        if (format == QLatin1String("xls") && engine.sheet(&grid)) {
            for (const QStringList &row : grid)
                for (const QString &cell : row)
                    for (const QString &n : SheetTemplate::placeholders(cell))
                        if (!names.contains(n))
                            names << n;
        }
        engine.close();
        std::printf("%s  %lld bytes  %s\n", qPrintable(t.fileName),
                    static_cast<long long>(QFileInfo(target).size()),
                    qPrintable(names.join(QStringLiteral(", "))));
    }
    return failures == 0 ? 0 : 1;
}
