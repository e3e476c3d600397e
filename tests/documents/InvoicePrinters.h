#pragma once
// Failed comparisons of the invoice's values show their text, not their bytes.

#include "documents/AccountTable.h"
#include "documents/InvoiceForm.h"

#include <QString>
#include <ostream>

inline void PrintTo(const QString &s, std::ostream *os) {
    *os << '"' << s.toStdString() << '"';
}
inline void PrintTo(const InvoiceService &s, std::ostream *os) {
    *os << '{' << s.name.toStdString() << " = " << s.price.toStdString() << '}';
}
namespace AccountTable {
inline void PrintTo(const Item &i, std::ostream *os) {
    *os << '{' << i.name.toStdString() << " = " << i.value.toStdString() << '}';
}
} // namespace AccountTable
