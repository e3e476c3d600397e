#pragma once
// The user's message for the outcome of a register operation, shared by the customer and contractor
// windows: each gives its own texts for a taken name, a row that is gone and a refused change.

#include "Records.h"

#include <QString>

struct RegisterTexts {
    QString duplicate; // the name is taken already
    QString notFound;  // the row named is not (or no longer) in the register
    QString failed;    // "…: %1" with the database's reason
};

// True for Ok; otherwise tells the user (caption and icon by the kind of outcome) and returns false.
bool reportRegisterStatus(RegisterStatus status, const RegisterTexts &texts, const QString &lastError);
