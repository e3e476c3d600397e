#pragma once
// What a server's reply must look like before the program shows it or acts on it: a version string,
// a news stamp, a text. Anything else (an HTML error page, binary bytes, a reply far too long) is
// garbage and gives an empty result.

#include <QByteArray>
#include <QString>

namespace ReplyText {

// A version: 1 to 32 letters, digits, ".", "-", "_", "+" or blanks, surrounding blanks dropped.
QString version(const QByteArray &body);
// A news stamp (a date as the server writes it): 1 to 64 printable characters, no "<" or ">".
QString stamp(const QByteArray &body);
// A text to show: valid UTF-8 without NUL or other control characters than tab and line ends, and
// not an HTML page. Empty when it is not such a text.
QString text(const QByteArray &body);

} // namespace ReplyText
