#pragma once
// A corpus of damaged and hostile document files for the open path: a sound estimate made by the
// program, then changed in the ways a file from elsewhere may be changed: flipped and cut bytes,
// schema tricks (generated columns, expression defaults, checks, views, triggers, virtual tables,
// expression indexes), huge cells, many rows and columns, odd values, false versions, companion files
// (a stray -wal, a hot -journal) and things that are not files at all. The same seed gives the same
// corpus.

#include <QString>
#include <QVector>

namespace HostileDocuments {

struct Sample {
    QString path;
    QString kind; // what was done to it, e.g. "generated-column"
};

// The kinds, in the order generate() cycles through them.
QStringList kinds();

// Writes `count` files into `folder` (created when missing): file i is of kind i modulo kinds().size(),
// its details drawn from the seed. `base` is a sound document to start from (made with makeBase).
QVector<Sample> generate(const QString &folder, const QString &base, quint32 seed, int count);

// A sound estimate of `rows` works with materials, coefficients and parameters, saved by the program
// to `path` (through a private data folder beside it). Empty string on success, else why not.
QString makeBase(const QString &path, int rows = 40);

} // namespace HostileDocuments
