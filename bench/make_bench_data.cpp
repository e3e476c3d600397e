// Lays out a data folder of real size for trying the program by hand or timing it as a whole process:
//     ./bench/make_bench_data DIR [LIST_ROWS]
// DIR gets price list 1 of LIST_ROWS rows (100,000 by default) with the resources of every rate, and
// the estimates Sm/смета-250.sim, -500 and -5000. The same folder comes out on every run.

#include "BenchData.h"

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout), err(stderr);
    const QStringList args = app.arguments();
    if (args.size() < 2) {
        err << "make_bench_data DIR [LIST_ROWS]" << Qt::endl;
        return 2;
    }
    const int rows = args.size() > 2 ? args.at(2).toInt() : BenchData::kListRows;
    QString error;
    if (!BenchData::makeFolder(args.at(1), {250, 500, 5000}, &error,
                               rows > 0 ? rows : BenchData::kListRows)) {
        err << error << Qt::endl;
        return 1;
    }
    out << args.at(1) << Qt::endl;
    return 0;
}
