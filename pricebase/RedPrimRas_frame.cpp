#include "RedPrimRas_frame.h"

#include "PriceNote.h"
#include "ui/Dialogs.h"

#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

TRedPrimRas::TRedPrimRas(const QString &dataFolder, QWidget *parent)
    : QDialog(parent), m_dataFolder(dataFolder) {
    setObjectName(QStringLiteral("RedPrimRas"));
    setWindowTitle(QStringLiteral("Примечание к расценкам"));
    resize(560, 420);
    auto *layout = new QVBoxLayout(this);
    MemoPrim = new QPlainTextEdit(this);
    MemoPrim->setObjectName(QStringLiteral("MemoPrim"));
    layout->addWidget(MemoPrim, 1);
    auto *bar = new QHBoxLayout;
    bar->addStretch(1);
    ButtonSave = new QPushButton(QStringLiteral("Сохранить"), this);
    ButtonSave->setObjectName(QStringLiteral("ButtonSave"));
    ButtonClose = new QPushButton(QStringLiteral("Закрыть"), this);
    ButtonClose->setObjectName(QStringLiteral("ButtonClose"));
    bar->addWidget(ButtonSave);
    bar->addWidget(ButtonClose);
    layout->addLayout(bar);
    connect(ButtonSave, &QPushButton::clicked, this, &TRedPrimRas::ButtonSaveClick);
    connect(ButtonClose, &QPushButton::clicked, this, &QDialog::reject);

    QString text, error;
    m_loaded = PriceNote::read(m_dataFolder, &text, &error);
    if (!m_loaded) {
        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
        ButtonSave->setEnabled(false); // a file that could not be read is not overwritten
    }
    MemoPrim->setPlainText(text);
    MemoPrim->document()->setModified(false);
}

void TRedPrimRas::ButtonSaveClick() {
    QString error;
    if (!PriceNote::write(m_dataFolder, MemoPrim->toPlainText(), &error)) {
        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
        return;
    }
    MemoPrim->document()->setModified(false);
}
