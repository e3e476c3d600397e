#pragma once
// Amounts in test expectations: "1234,50", or "refused" for an amount that was refused.

#include "storage/Money.h"

#include <string>

inline std::string rub(const MoneyResult &m) {
    return m.ok() ? m->text().toStdString() : std::string("refused");
}
