#include "DefaultTemplates.h"

namespace DefaultTemplates {

const QVector<Template> &all() {
    static const QVector<Template> list{
        {QStringLiteral("ДОГОВОР НА РЕМОНТ.docx"), QStringLiteral("fodt"), contractText},
        {QStringLiteral("Шаблон Счет на оплату.xls"), QStringLiteral("fods"), invoiceSheet},
        {QStringLiteral("Шаблон Смета.xls"), QStringLiteral("fods"), estimateSheet},
        {QStringLiteral("Шаблон КП.xls"), QStringLiteral("fods"), offerSheet},
        {QStringLiteral("Шаблон Локальная.xls"), QStringLiteral("fods"), localSheet},
        {QStringLiteral("Шаблон Стройкооператив.xls"), QStringLiteral("fods"), cooperativeSheet},
        {QStringLiteral("Шаблон КС-2.xls"), QStringLiteral("fods"), ks2Sheet},
        {QStringLiteral("Шаблон КС-3.xls"), QStringLiteral("fods"), ks3Sheet},
    };
    return list;
}

} // namespace DefaultTemplates
