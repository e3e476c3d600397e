#pragma once
// The helper's "keepTogether" request: the spreadsheet open in the engine saved as PDF with its pages
// kept together (office/PageFlow.h).
//
// The request gives the path of the PDF, the text of the sheet as the "sheet" request read it
// ("rows"), the rows that must not end a page ("headings", from 1), the first row of the closing block
// ("closing", from 1; 0: none) and the most whole exports to make ("exports"). The answer gives the
// pages, the rows a break was put above ("breaks", from 1) and what it took.

#include <QJsonObject>
#include <QString>

#include <string>

class LokSession;

namespace PageKeeping {

// temp: the helper's scratch folder. False with *error when the engine or the PDF failed.
bool run(LokSession &session, const QString &temp, const QJsonObject &req, QJsonObject *answer,
         std::string *error);

} // namespace PageKeeping
