#pragma once
// TRedPrimRas, host caption "Примечание к расценкам": the free-text note to the price lists
// (Sh/prim.txt) in a memo. "Сохранить" writes the memo to the file; "Закрыть" closes without saving.

#include <QDialog>

class QPlainTextEdit;
class QPushButton;

class TRedPrimRas : public QDialog {
    Q_OBJECT
public:
    explicit TRedPrimRas(const QString &dataFolder, QWidget *parent = nullptr);

    // False (the user was told) when the note could not be read.
    bool loaded() const { return m_loaded; }

    void ButtonSaveClick();

    QPlainTextEdit *MemoPrim = nullptr;
    QPushButton *ButtonSave = nullptr;
    QPushButton *ButtonClose = nullptr;

private:
    QString m_dataFolder;
    bool m_loaded = false;
};
