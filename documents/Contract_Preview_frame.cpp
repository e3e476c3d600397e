#include "Contract_Preview_frame.h"

TContract_Preview::TContract_Preview(QWidget *parent) : TFCustomPreview(parent) {
    setObjectName(QStringLiteral("Сontract_Preview")); // the first letter is the Cyrillic "С"
    setWindowTitle(QStringLiteral("Предварительный просмотр"));
}
