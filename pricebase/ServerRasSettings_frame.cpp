#include "ServerRasSettings_frame.h"

#include "ui/Dialogs.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

TServerRasSettings::TServerRasSettings(const ServerSettings &s, QWidget *parent) : QDialog(parent) {
    setObjectName(QStringLiteral("ServerRasSettings"));
    setWindowTitle(QStringLiteral("Сервер MySQL"));
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    auto line = [this](const QString &name, const QString &text) {
        auto *e = new QLineEdit(text, this);
        e->setObjectName(name);
        return e;
    };
    EditHost = line(QStringLiteral("EditHost"), s.host);
    EditPort = new QSpinBox(this);
    EditPort->setObjectName(QStringLiteral("EditPort"));
    EditPort->setRange(1, 65535);
    EditPort->setValue(s.port);
    EditDatabase = line(QStringLiteral("EditDatabase"), s.database);
    EditUser = line(QStringLiteral("EditUser"), s.user);
    EditPassword = line(QStringLiteral("EditPassword"), s.password);
    EditPassword->setEchoMode(QLineEdit::Password);
    EditTable = line(QStringLiteral("EditTable"), s.table);
    EditTable->setToolTip(QStringLiteral("Латинские буквы, цифры и знак подчёркивания"));
    EditFilesDatabase = line(QStringLiteral("EditFilesDatabase"), s.filesDatabase);
    EditFilesDatabase->setPlaceholderText(QStringLiteral("та же, что для расценок"));
    EditFilesDatabase->setToolTip(QStringLiteral("База, где хранятся файлы пользователя (таблица с именем "
                                                 "ключа учётной записи)"));
    form->addRow(QStringLiteral("Адрес сервера:"), EditHost);
    form->addRow(QStringLiteral("Порт:"), EditPort);
    form->addRow(QStringLiteral("База данных:"), EditDatabase);
    form->addRow(QStringLiteral("Пользователь:"), EditUser);
    form->addRow(QStringLiteral("Пароль:"), EditPassword);
    form->addRow(QStringLiteral("Таблица расценок:"), EditTable);
    form->addRow(QStringLiteral("База файлов:"), EditFilesDatabase);
    layout->addLayout(form);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Отмена"));
    connect(buttons, &QDialogButtonBox::accepted, this, &TServerRasSettings::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &TServerRasSettings::reject);
    layout->addWidget(buttons);
}

ServerSettings TServerRasSettings::settings() const {
    ServerSettings s;
    s.host = EditHost->text().trimmed();
    s.port = EditPort->value();
    s.database = EditDatabase->text().trimmed();
    s.user = EditUser->text();
    s.password = EditPassword->text();
    s.table = EditTable->text().trimmed();
    s.filesDatabase = EditFilesDatabase->text().trimmed();
    return s;
}

void TServerRasSettings::accept() {
    const QString problem = settings().problem();
    if (!problem.isEmpty()) {
        dialogs().tell(Captions::warning, problem, Dialogs::Icon::Warning);
        return;
    }
    QDialog::accept();
}
