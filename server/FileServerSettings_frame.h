#pragma once
// The window "Файловый сервер" (menu "Настройки"): the server's address and the account key, a
// connection check, OK and Cancel. OK writes them into IniFile.db when they are valid.

#include "FileServerSettings.h"

#include <QDialog>
#include <QPointer>

class ConnectionProbe;
class QLabel;
class QLineEdit;
class QPushButton;

class TFileServerSettings : public QDialog {
    Q_OBJECT
public:
    TFileServerSettings(const FileServerSettings &settings, QWidget *parent = nullptr);

    // The values as typed.
    FileServerSettings settings() const;

    // "Проверить связь": the result appears under the fields.
    void ButtonCheckClick();
    // OK: refused with the problem shown when the values are wrong.
    void ButtonOkClick();

signals:
    void checkFinished(bool ok);

private:
    QLineEdit *m_url;
    QLineEdit *m_key;
    QLabel *m_result;
    QPushButton *m_check;
    QPointer<ConnectionProbe> m_probe;
};
