// sim_corpus DIR COUNT [SEED]: writes a sound estimate DIR/base.sim and COUNT damaged and hostile
// document files beside it (see HostileDocuments.h), one line "path<TAB>kind" per file on stdout.
// Each file can then be tried with "docfile_helper open FILE" (time and memory of one open).

#include "HostileDocuments.h"

#include <QCoreApplication>
#include <QDir>
#include <cstdio>

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3) {
        std::fprintf(stderr, "usage: sim_corpus DIR COUNT [SEED]\n");
        return 1;
    }
    const QString dir = QDir(args[1]).absolutePath();
    QDir().mkpath(dir);
    const QString base = QDir(dir).filePath(QStringLiteral("base.sim"));
    const QString why = HostileDocuments::makeBase(base);
    if (!why.isEmpty()) {
        std::fprintf(stderr, "base: %s\n", qPrintable(why));
        return 2;
    }
    const quint32 seed = args.size() > 3 ? args[3].toUInt() : 1;
    for (const HostileDocuments::Sample &s : HostileDocuments::generate(dir, base, seed, args[2].toInt()))
        std::printf("%s\t%s\n", qPrintable(s.path), qPrintable(s.kind));
    return 0;
}
