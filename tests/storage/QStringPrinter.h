#pragma once
// Failed comparisons of QString show the text, not its bytes.

#include <QString>
#include <ostream>

inline void PrintTo(const QString &s, std::ostream *os) {
    *os << '"' << s.toStdString() << '"';
}
