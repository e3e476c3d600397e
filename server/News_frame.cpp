#include "News_frame.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

TNews::TNews(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("TNews"));
    auto *picture = new QLabel(this);
    picture->setObjectName(QStringLiteral("Image1"));
    picture->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(48, 48));
    picture->setAlignment(Qt::AlignTop);
    m_memo = new QPlainTextEdit(this);
    m_memo->setObjectName(QStringLiteral("Memo1"));
    m_memo->setReadOnly(true);
    m_memo->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    m_receive = new QCheckBox(QStringLiteral("Получать информацию"), this);
    m_receive->setObjectName(QStringLiteral("CheckBoxInfo"));
    m_close = new QPushButton(QStringLiteral("Закрыть"), this);
    m_close->setObjectName(QStringLiteral("ButtonClose"));
    m_close->setDefault(true);

    auto *top = new QHBoxLayout;
    top->addWidget(picture);
    top->addWidget(m_memo, 1);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_receive);
    bottom->addStretch(1);
    bottom->addWidget(m_close);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(bottom);
}

FNews::FNews(const QString &caption, const QString &text, bool receiveInfo, QWidget *parent)
    : QDialog(parent), m_frame(new TNews(this)) {
    setObjectName(QStringLiteral("News"));
    setWindowTitle(caption);
    m_frame->memo()->setPlainText(text);
    m_frame->receiveInfo()->setChecked(receiveInfo);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_frame);
    connect(m_frame->receiveInfo(), &QCheckBox::toggled, this, &FNews::receiveInfoChanged);
    connect(m_frame->closeButton(), &QPushButton::clicked, this, &QDialog::accept);
    resize(560, 400);
}
