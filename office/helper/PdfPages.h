#pragma once
// The text of each page of a PDF the engine wrote, for PageFlow: the words from the top of the page
// down, a line from left to right, spaces left out.

#include "office/PageFlow.h"

#include <QSet>

#include <string>

namespace PdfPages {

// Every page, or only the pages listed in `only` (from 0; the others are left empty).
bool read(const QString &path, PageFlow::Pages *pages, std::string *error, const QSet<int> *only = nullptr);

} // namespace PdfPages
