#pragma once
// TServerRasSettings: the program's MySQL server (address, port, user, password), the database and
// table of the remote price list and the database of the user's files on the server. The values are
// kept in IniFile.db, section "Server".

#include "RemotePriceList.h"

#include <QDialog>

class QLineEdit;
class QSpinBox;

class TServerRasSettings : public QDialog {
    Q_OBJECT
public:
    explicit TServerRasSettings(const ServerSettings &settings, QWidget *parent = nullptr);
    ServerSettings settings() const;

    QLineEdit *EditHost = nullptr;
    QSpinBox *EditPort = nullptr;
    QLineEdit *EditDatabase = nullptr;
    QLineEdit *EditUser = nullptr;
    QLineEdit *EditPassword = nullptr;
    QLineEdit *EditTable = nullptr;
    QLineEdit *EditFilesDatabase = nullptr;

    // Refuses settings that cannot work (no address, a table name with other characters).
    void accept() override;
};
