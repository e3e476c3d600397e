#pragma once
// The text of each page of a PDF the engine wrote, for PageFlow: the words from the top of the page
// down, a line from left to right, spaces left out.

#include "office/PageFlow.h"

#include <string>

namespace PdfPages {

bool read(const QString &path, PageFlow::Pages *pages, std::string *error);

} // namespace PdfPages
