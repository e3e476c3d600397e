#pragma once
// "Предварительный просмотр" of the contract: the pages of the contract as the engine lays them out,
// with printing (copies) and "save as" (the PDF or the word-processor file beside it). The window's
// component name begins with a Cyrillic "С", as the program has always named it.

#include "office/FCustomPreview_frame.h"

class TContract_Preview : public TFCustomPreview {
    Q_OBJECT
public:
    explicit TContract_Preview(QWidget *parent = nullptr);
};
