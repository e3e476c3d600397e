#include "FileServerSettings_frame.h"

#include "ConnectionProbe.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

TFileServerSettings::TFileServerSettings(const FileServerSettings &settings, QWidget *parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("FServerSettings"));
    setWindowTitle(QStringLiteral("Файловый сервер"));
    m_url = new QLineEdit(settings.url, this);
    m_url->setObjectName(QStringLiteral("EditServerUrl"));
    m_url->setPlaceholderText(QStringLiteral("https://server.example.ru:8080"));
    m_key = new QLineEdit(settings.key, this);
    m_key->setObjectName(QStringLiteral("EditAccountKey"));
    m_key->setMaxLength(64);
    m_check = new QPushButton(QStringLiteral("Проверить связь"), this);
    m_check->setObjectName(QStringLiteral("ButtonCheck"));
    m_result = new QLabel(this);
    m_result->setObjectName(QStringLiteral("LabelCheck"));
    m_result->setWordWrap(true);

    auto *note =
        new QLabel(QStringLiteral("С этого сервера программа узнаёт о новых версиях, получает новости и "
                                  "модуль площадей фигур; по ключу учётной записи обменивается кассой "
                                  "с мобильной кассой и хранит картинки. Без адреса сервера программа "
                                  "ничего не запрашивает."),
                   this);
    note->setWordWrap(true);
    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("Адрес сервера:"), m_url);
    form->addRow(QStringLiteral("Ключ учётной записи:"), m_key);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("ButtonOk"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Отмена"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("ButtonCancel"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(note);
    layout->addLayout(form);
    layout->addWidget(m_check, 0, Qt::AlignLeft);
    layout->addWidget(m_result);
    layout->addStretch(1);
    layout->addWidget(buttons);
    connect(m_check, &QPushButton::clicked, this, &TFileServerSettings::ButtonCheckClick);
    connect(buttons, &QDialogButtonBox::accepted, this, &TFileServerSettings::ButtonOkClick);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    resize(520, sizeHint().height());
}

FileServerSettings TFileServerSettings::settings() const {
    return {m_url->text().trimmed(), m_key->text().trimmed()};
}

void TFileServerSettings::ButtonCheckClick() {
    if (m_probe)
        return;
    m_check->setEnabled(false);
    m_result->setText(QStringLiteral("Проверка…"));
    auto *probe = new ConnectionProbe(settings(), this);
    m_probe = probe;
    connect(probe, &ConnectionProbe::finished, this, [this, probe](bool ok, const QString &text) {
        m_result->setText(text);
        m_result->setStyleSheet(ok ? QString() : QStringLiteral("color: #b00020;"));
        m_check->setEnabled(true);
        probe->deleteLater();
        m_probe.clear(); // the next check may start at once
        emit checkFinished(ok);
    });
    probe->start();
}

void TFileServerSettings::ButtonOkClick() {
    const QString problem = settings().problem();
    if (!problem.isEmpty()) {
        m_result->setText(problem);
        m_result->setStyleSheet(QStringLiteral("color: #b00020;"));
        return;
    }
    accept();
}
