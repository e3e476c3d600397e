#pragma once
// The program's own version, as the version check sends and compares it: the project's version.

#include <QString>

QString programVersion();
