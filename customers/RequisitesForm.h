#pragma once
// RequisitesForm: the legal details (requisites) of a customer or of a contractor, as both register
// windows show them. Each detail that can go into the legal-data line has a tick ("Check_" + its
// column) that the settings store keeps; the window decides where the composed line goes.

#include "Records.h"

#include <QHash>
#include <QWidget>

class QCheckBox;
class QGridLayout;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class SettingsStore;

class RequisitesForm : public QWidget {
    Q_OBJECT
public:
    // A labelled row of the window's own.
    struct Row {
        QString label;
        QWidget *field;
    };

    // The ticks are kept in the store's section ticksSection under tickPrefix + column, so that the
    // customer's and the contractor's ticks stay apart (store may be null: every tick set).
    // ogrnName: the objectName of the OGRN field, whose value is kept in okpo. leadingRows stand above
    // the details in the same grid, so that their fields line up.
    RequisitesForm(SettingsStore *store, const QString &ticksSection, const QString &tickPrefix,
                   const QString &ogrnName, const QList<Row> &leadingRows = {}, QWidget *parent = nullptr);

    // The details by requisites column: certificate, pasport, inn, kpp, boss, glavbuh, account, bank,
    // bik, koraccount and okpo (the OGRN field).
    Fields fields() const;
    // Shows the details of those columns; a missing column clears its field.
    void setFields(const Fields &requisites);
    // "ИНН 123, БИК 456": the ticked details that are filled in.
    QString legalLine() const;

    // A further row below the details: a labelled field, or one widget across both columns.
    void addRow(const QString &label, QWidget *field);
    void addWideRow(QWidget *widget, Qt::Alignment alignment = {});

    QLineEdit *EditINN = nullptr;
    QLineEdit *EditOGRN = nullptr;
    QLineEdit *EditBank = nullptr;
    QLineEdit *EditAccount = nullptr;
    QLineEdit *EditKorAccount = nullptr;
    QLineEdit *EditBIK = nullptr;
    QLineEdit *EditKPP = nullptr;
    QLineEdit *EditCertificate = nullptr;
    QPlainTextEdit *MemoPasport = nullptr;
    QLineEdit *EditBoss = nullptr;
    QLineEdit *EditGlavbuh = nullptr;
    // Composes the legal-data line; the window connects it to where the line goes.
    QPushButton *spdUridDan = nullptr;

private:
    void addTicked(const QString &column, const QString &label, QWidget *field);

    SettingsStore *m_store;
    QString m_ticksSection;
    QString m_tickPrefix;
    QGridLayout *m_grid;
    int m_row = 0;
    QHash<QString, QCheckBox *> m_ticks; // requisites column -> its tick
};
