#pragma once
// Filling a word-processor template (".docx", ".rtf", ".odt", ".txt"): every placeholder that has data
// is replaced everywhere (body, tables, headers, footers), keeping the placeholder's formatting, also
// where the word processor split it over several runs. A placeholder without data stays as it is.

#include "office/TemplateFile.h"

#include <QPair>
#include <QString>
#include <QVector>

class OfficeEngine;

namespace WordTemplate {

// placeholder text with its brackets ("[заказчик]") -> value
using Replacements = QVector<QPair<QString, QString>>;

// Loads the template, replaces, checks the body for placeholders with data that were not replaced,
// and saves the outputs (".docx", ".rtf", ".pdf", ".odt", ".txt"). False with a Russian message.
bool fill(OfficeEngine &engine, const QString &templatePath, const Replacements &replacements,
          const QVector<TemplateFile::Output> &outputs, QString *error);
// The same on a template already loaded into the engine (TemplateFile::open), for callers that tell
// a template that cannot be loaded from a filling that fails.
bool fillLoaded(OfficeEngine &engine, const QString &templatePath, const Replacements &replacements,
                const QVector<TemplateFile::Output> &outputs, QString *error);

} // namespace WordTemplate
