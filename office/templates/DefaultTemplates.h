#pragma once
// The layouts of the default templates, as flat OpenDocument files ready for the engine. The template
// generator (virn-office-templates) converts them into the ".xls" and ".docx" files kept in
// resources/templates, which the program copies into the data folder's Sh when they are missing.

#include <QByteArray>
#include <QString>
#include <QVector>
#include <functional>

namespace DefaultTemplates {

struct Template {
    QString fileName;     // as it lies in Sh: "Шаблон Смета.xls"
    QString sourceSuffix; // "fods" or "fodt"
    std::function<QByteArray()> build;
};

// Every default template.
const QVector<Template> &all();

// The layouts, one per template.
QByteArray estimateSheet();    // "Шаблон Смета.xls"
QByteArray offerSheet();       // "Шаблон КП.xls"
QByteArray localSheet();       // "Шаблон Локальная.xls"
QByteArray cooperativeSheet(); // "Шаблон Стройкооператив.xls"
QByteArray ks2Sheet();         // "Шаблон КС-2.xls"
QByteArray ks3Sheet();         // "Шаблон КС-3.xls"
QByteArray invoiceSheet();     // "Шаблон Счет на оплату.xls"
QByteArray contractText();     // "ДОГОВОР НА РЕМОНТ.docx"

} // namespace DefaultTemplates
