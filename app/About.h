#pragma once
// "О программе": the program's name, its version and the day it was built, the data folder.

#include <QDate>
#include <QString>

namespace About {
// The project's version ("8.0.0").
QString version();
// The day the program was built.
QDate buildDate();
// The text of the "О программе" box.
QString text(const QString &dataFolder);
} // namespace About
