// A second program for the document-file tests:
//   save-loop DATA DOCUMENT ROWS: opens DOCUMENT (when it exists) into the working database of DATA,
//     then saves versions v+1, v+2, ... of a ROWS-row estimate to it forever, printing "ready" and
//     then "saved N" after each save that returned;
//   lock DOCUMENT: holds the document's lock file, prints "locked" and waits to be killed.

#include "estimate/CrewGrid.h"
#include "estimate/DocumentFile.h"
#include "estimate/DocumentLock.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStore.h"
#include "storage/ModuleSQL.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QThread>
#include <cstdio>

namespace {

int saveLoop(const QString &data, const QString &document, int rows) {
    TModuleSQL module(data);
    if (QFileInfo::exists(document)) {
        const QString error = DocumentFile::open(module, document);
        if (!error.isEmpty()) {
            std::fprintf(stderr, "open: %s\n", qPrintable(error));
            return 2;
        }
    }
    // Without a document the versions start again from 0, whatever a killed run left in the working
    // database.
    long long version =
        QFileInfo::exists(document)
            ? EstimateStore::readParameters(module.database(Db::Smeta)).value("Version").toLongLong()
            : 0;
    EstimateGrid grid;
    CrewGrid crew;
    std::printf("ready\n");
    std::fflush(stdout);
    for (;;) {
        ++version;
        std::vector<QStringList> cells;
        for (int r = 0; r < rows; ++r) {
            QStringList row;
            for (int c = 0; c < EstimateCol::Count; ++c)
                row << QString();
            row[EstimateCol::Name] = QStringLiteral("v%1-r%2 Устройство перегородок").arg(version).arg(r);
            row[EstimateCol::Qty] = QString::number(r);
            cells.push_back(row);
        }
        grid.setAllRows(std::move(cells));
        crew.setGridRowCount(rows + 1);
        QString error;
        if (!EstimateStore::writeSmeta(module.database(Db::Smeta), grid, crew,
                                       {{QStringLiteral("Version"), QString::number(version)}}, &error)) {
            std::fprintf(stderr, "write: %s\n", qPrintable(error));
            return 3;
        }
        error = DocumentFile::save(module, document);
        if (!error.isEmpty()) {
            std::fprintf(stderr, "save: %s\n", qPrintable(error));
            return 4;
        }
        std::printf("saved %lld\n", version);
        std::fflush(stdout);
    }
}

int holdLock(const QString &document) {
    DocumentLock lock;
    if (lock.acquire(document) != DocumentLock::State::Locked)
        return 5;
    std::printf("locked\n");
    std::fflush(stdout);
    for (;;)
        QThread::sleep(1);
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() >= 5 && args[1] == QLatin1String("save-loop"))
        return saveLoop(args[2], args[3], args[4].toInt());
    if (args.size() >= 3 && args[1] == QLatin1String("lock"))
        return holdLock(args[2]);
    std::fprintf(stderr, "usage: docfile_helper save-loop DATA DOCUMENT ROWS | lock DOCUMENT\n");
    return 1;
}
