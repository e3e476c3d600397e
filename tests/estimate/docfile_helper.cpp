// A second program for the document-file tests:
//   save-loop DATA DOCUMENT ROWS: opens DOCUMENT (when it exists) into the working database of DATA,
//     then saves versions v+1, v+2, ... of a ROWS-row estimate to it forever, printing "ready" and
//     then "saved N" after each save that returned;
//   lock DOCUMENT: holds the document's lock file, prints "locked" and waits to be killed;
//   instance DATA DOCUMENT TAG: a program on the data folder DATA: a new estimate of 12 works named
//     after TAG, 23 materials and overheads of 15 % (the coefficient panel) or, for TAG "Второй", 7 %;
//     prints "edited", waits for a line on stdin, saves as DOCUMENT and prints "saved";
//   hold-copy DATA DOCUMENT: a program that has DOCUMENT open with changes in its working copy; prints
//     "held" and waits to be killed (a crash);
//   open DOCUMENT: reads the document as the program does without a window (checked, brought to
//     today's layout, its estimate taken as the window shows it) and prints one line:
//     "opened" or "refused", the milliseconds it took, the processor milliseconds of the whole run, the
//     peak memory in KB, and the message (the
//     warning of a document that opened).

#include "estimate/CrewGrid.h"
#include "estimate/DocumentFile.h"
#include "estimate/DocumentLock.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateExport.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateMaterials.h"
#include "estimate/EstimateStore.h"
#include "estimate/KoefModel.h"
#include "storage/ModuleSQL.h"
#include "storage/WorkingCopy.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>
#include <QThread>
#include <cstdio>
#include <iostream>
#include <string>
#include <sys/resource.h>

namespace {

int saveLoop(const QString &data, const QString &document, int rows) {
    TModuleSQL module(data);
    // The versions count from the document on disk: without one, from a new document (the working
    // database may hold what a program killed before its first save wrote into it).
    long long version = 0;
    if (QFileInfo::exists(document)) {
        const QString error = DocumentFile::open(module, document);
        if (!error.isEmpty()) {
            std::fprintf(stderr, "open: %s\n", qPrintable(error));
            return 2;
        }
        version = EstimateStore::readParameters(module.database(Db::Smeta)).value("Version").toLongLong();
    }
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

void setCell(QAbstractItemModel *model, int row, int column, const QString &text) {
    model->setData(model->index(row, column), text, Qt::EditRole);
}

int instance(const QString &data, const QString &document, const QString &tag) {
    TModuleSQL module(data);
    EstimateDocument doc;
    doc.attach(&module, nullptr, nullptr);
    if (!doc.newDocument()) {
        std::fprintf(stderr, "new document failed\n");
        return 2;
    }
    std::vector<QStringList> rows;
    for (int r = 0; r < 12; ++r) {
        QStringList row;
        for (int c = 0; c < EstimateCol::Count; ++c)
            row << QString();
        row[EstimateCol::Name] = QStringLiteral("%1: работа %2").arg(tag).arg(r + 1);
        row[EstimateCol::Qty] = QString::number(r + 1);
        row[EstimateCol::Price] = QStringLiteral("100");
        rows.push_back(row);
    }
    doc.grid().setAllRows(std::move(rows));
    doc.crew().setGridRowCount(13);
    // The materials and the coefficients are written into the working database as they are edited.
    EstimateMaterials *materials = doc.editor().materials();
    for (int i = 0; i < 23; ++i) {
        const int row = materials->addRow();
        setCell(materials, row, MatCol::Name, QStringLiteral("%1: материал %2").arg(tag).arg(i + 1));
        setCell(materials, row, MatCol::Qty, QStringLiteral("2"));
        setCell(materials, row, MatCol::Price, QStringLiteral("50"));
    }
    KoefModel *koef = doc.editor().koef();
    for (int row = 0; row < koef->rowCount(); ++row) {
        if (koef->lines().at(static_cast<size_t>(row)).title == QStringLiteral("Накладные расходы, %")) {
            setCell(koef, row, KoefCol::Value,
                    tag == QStringLiteral("Второй") ? QStringLiteral("7") : QStringLiteral("15"));
            koef->setData(koef->index(row, KoefCol::On), Qt::Checked, Qt::CheckStateRole);
        }
    }
    std::printf("edited\n");
    std::fflush(stdout);
    std::string line;
    std::getline(std::cin, line);
    const EstimateDocument::Result r = doc.saveAs(document);
    if (!r) {
        std::fprintf(stderr, "save: %s\n", qPrintable(r.error));
        return 3;
    }
    std::printf("saved\n");
    std::fflush(stdout);
    return 0;
}

int holdCopy(const QString &data, const QString &document) {
    TModuleSQL module(data);
    WorkingCopy copy(data);
    QString error;
    if (!copy.claim(&error)) {
        std::fprintf(stderr, "claim: %s\n", qPrintable(error));
        return 2;
    }
    copy.applyTo(module);
    QSqlQuery q(module.database(Db::Smeta));
    q.exec(QStringLiteral("DELETE FROM smeta"));
    q.exec(QStringLiteral("INSERT INTO smeta (nameras) VALUES ('Несохранённая работа')"));
    copy.note(document, true);
    std::printf("held %d\n", copy.slot());
    std::fflush(stdout);
    for (;;)
        QThread::sleep(1);
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

int openOnce(const QString &document) {
    QElapsedTimer clock;
    clock.start();
    EstimatePrint print;
    QString error, warning;
    const bool ok = EstimateExport::load(document, &print, &error, &warning);
    if (ok)
        error = warning;
    const qint64 ms = clock.elapsed();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    // The peak of this program's own memory (getrusage's carries the parent's over the exec).
    long peakKb = 0;
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly))
        for (const QByteArray &line : status.readAll().split('\n'))
            if (line.startsWith("VmHWM:"))
                peakKb = line.mid(6).trimmed().split(' ').value(0).toLong();
    const long cpu = (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000 +
                     (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1000;
    std::printf("%s\t%lld\t%ld\t%ld\t%s\n", ok ? "opened" : "refused", static_cast<long long>(ms), cpu,
                peakKb, qPrintable(QString(error).replace(u'\n', u' ').left(300)));
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() >= 5 && args[1] == QLatin1String("save-loop"))
        return saveLoop(args[2], args[3], args[4].toInt());
    if (args.size() >= 3 && args[1] == QLatin1String("lock"))
        return holdLock(args[2]);
    if (args.size() >= 3 && args[1] == QLatin1String("open"))
        return openOnce(args[2]);
    if (args.size() >= 5 && args[1] == QLatin1String("instance"))
        return instance(args[2], args[3], args[4]);
    if (args.size() >= 4 && args[1] == QLatin1String("hold-copy"))
        return holdCopy(args[2], args[3]);
    std::fprintf(stderr, "usage: docfile_helper save-loop DATA DOCUMENT ROWS | lock DOCUMENT | open DOCUMENT "
                         "| instance DATA DOCUMENT TAG | hold-copy DATA DOCUMENT\n");
    return 1;
}
