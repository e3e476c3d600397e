#include "RegisterReport.h"

#include "ui/Dialogs.h"

bool reportRegisterStatus(RegisterStatus status, const RegisterTexts &texts, const QString &lastError) {
    switch (status) {
    case RegisterStatus::Ok:
        return true;
    case RegisterStatus::BlankName:
        dialogs().tell(Captions::warning, QStringLiteral("Пустая затея"), Dialogs::Icon::Warning);
        break;
    case RegisterStatus::Duplicate:
        dialogs().tell(Captions::warning, texts.duplicate, Dialogs::Icon::Warning);
        break;
    case RegisterStatus::NotFound:
        dialogs().tell(Captions::warning, texts.notFound, Dialogs::Icon::Warning);
        break;
    case RegisterStatus::Failed:
        dialogs().tell(Captions::error, texts.failed.arg(lastError), Dialogs::Icon::Error);
        break;
    }
    return false;
}
