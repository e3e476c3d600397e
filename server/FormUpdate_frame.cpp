#include "FormUpdate_frame.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

TFormUpdate::TFormUpdate(const QString &newVersion, const QString &ownVersion, QWidget *parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("FormUpdate"));
    auto *picture = new QLabel(this);
    picture->setObjectName(QStringLiteral("Image1"));
    picture->setPixmap(style()->standardIcon(QStyle::SP_BrowserReload).pixmap(48, 48));
    picture->setAlignment(Qt::AlignTop);

    auto *text = new QLabel(QStringLiteral("Доступно обновление программы"), this);
    text->setObjectName(QStringLiteral("Label1"));
    QFont bold = text->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.2);
    text->setFont(bold);
    auto *versions =
        new QLabel(QStringLiteral("Новая версия: %1\nУстановлена: %2").arg(newVersion, ownVersion), this);
    versions->setObjectName(QStringLiteral("LabelVersions"));
    versions->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_load = new QPushButton(QStringLiteral("Загрузить"), this);
    m_load->setObjectName(QStringLiteral("ButtonLoad"));
    m_load->setDefault(true);
    m_cancel = new QPushButton(QStringLiteral("Отмена"), this);
    m_cancel->setObjectName(QStringLiteral("ButtonCancel"));

    auto *texts = new QVBoxLayout;
    texts->addWidget(text);
    texts->addWidget(versions);
    texts->addStretch(1);
    auto *top = new QHBoxLayout;
    top->addWidget(picture);
    top->addSpacing(12);
    top->addLayout(texts, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_load);
    buttons->addWidget(m_cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(buttons);
}

FFormUpdate::FFormUpdate(const QString &newVersion, const QString &ownVersion, QWidget *parent)
    : QDialog(parent), m_frame(new TFormUpdate(newVersion, ownVersion, this)) {
    setObjectName(QStringLiteral("FFormUpdate"));
    setWindowTitle(QStringLiteral("Обновление"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_frame);
    connect(m_frame->loadButton(), &QPushButton::clicked, this, [this] {
        accept();
        emit loadRequested();
    });
    connect(m_frame->cancelButton(), &QPushButton::clicked, this, &QDialog::reject);
    setMinimumWidth(380);
}
