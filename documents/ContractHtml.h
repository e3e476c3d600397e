#pragma once
// The contract's text between the office engine and the window's editor, as HTML. The two read HTML
// differently: the engine writes lengths in centimetres and keeps paragraph looks in classes, which the
// editor does not read; the editor writes properties of its own and cell borders in parts, which the
// engine does not read. These translations keep what the contract looks like both ways: fonts,
// sizes, bold, italic, underline, colours, alignment, indents, spacing, tables and their borders,
// pictures (as data: addresses).

#include <QString>

class QTextDocument;

namespace ContractHtml {

// The engine's HTML of a document body as the editor reads it.
QString forEditor(const QString &engineHtml);

// The editor's document as HTML for the engine to paste in place of the body.
QString forEngine(const QTextDocument &document);

// "1cm", "2.5mm", "0.5in" in a piece of CSS or attributes turned into pixels (96 per inch).
QString lengthsInPixels(const QString &text);

} // namespace ContractHtml
