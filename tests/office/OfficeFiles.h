#pragma once
// Reading what the engine wrote, for the checks of the tests: a sheet saved as flat OpenDocument
// (".fods"), the formatting of a text in a flat text document (".fodt"), and the text of a PDF.

#include <QHash>
#include <QString>
#include <QVector>

struct FlatCell {
    QString type;     // "float", "string", "date", … ; empty for an empty cell
    double value = 0; // office:value of numbers
    QString text;     // the shown text, paragraphs joined by "\n"
    int columnSpan = 1;
    int rowSpan = 1;
    bool covered = false; // part of a merged area
};

using FlatSheet = QVector<QVector<FlatCell>>;

// The first table of a flat OpenDocument spreadsheet. Repeated empty rows and cells are expanded up to
// a sane bound.
FlatSheet readFlatSheet(const QString &fodsPath);

struct TextLook {
    bool found = false;
    bool bold = false;
    bool italic = false;
};
// How the first text chunk holding `text` is formatted in a flat OpenDocument text document.
TextLook lookOfText(const QString &fodtPath, const QString &text);

// pdftotext of a PDF (empty when it fails).
QString pdfText(const QString &pdfPath);
// Number of pages according to pdfinfo (0 when it fails).
int pdfPages(const QString &pdfPath);
