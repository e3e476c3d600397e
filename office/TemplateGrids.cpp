#include "TemplateGrids.h"

#include "storage/Sha256.h"

#include <QFile>
#include <QMutex>
#include <QMutexLocker>
#include <QVector>

#include <utility>

namespace TemplateGrids {

namespace {

constexpr int kMostSheets = 32;
constexpr qsizetype kMostCells = 20000;

struct Kept {
    QMutex mutex;
    QVector<std::pair<QByteArray, SheetText::Grid>> sheets; // the newest last
};

Kept &kept() {
    static Kept k;
    return k;
}

} // namespace

QByteArray contentKey(const QString &path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    Sha256 hash;
    if (!hash.addData(&f))
        return {};
    return hash.result();
}

bool find(const QByteArray &key, SheetText::Grid *grid) {
    if (key.isEmpty())
        return false;
    Kept &k = kept();
    QMutexLocker lock(&k.mutex);
    for (const auto &sheet : k.sheets) {
        if (sheet.first == key) {
            *grid = sheet.second;
            return true;
        }
    }
    return false;
}

void keep(const QByteArray &key, const SheetText::Grid &grid) {
    qsizetype cells = 0;
    for (const QStringList &row : grid)
        cells += row.size();
    if (key.isEmpty() || cells > kMostCells)
        return;
    Kept &k = kept();
    QMutexLocker lock(&k.mutex);
    for (qsizetype i = 0; i < k.sheets.size(); ++i) {
        if (k.sheets.at(i).first == key) {
            k.sheets.removeAt(i);
            break;
        }
    }
    if (k.sheets.size() >= kMostSheets)
        k.sheets.removeFirst();
    k.sheets.append({key, grid});
}

} // namespace TemplateGrids
