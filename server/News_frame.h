#pragma once
// The news dialog "News" with its frame TNews: a picture, the text pane Memo1 with the saved text,
// the check box "Получать информацию" (whether news is fetched at all) and the button "Закрыть". The
// same dialog captioned "История версий" shows the release notes.

#include <QDialog>
#include <QWidget>

class QCheckBox;
class QPlainTextEdit;
class QPushButton;

class TNews : public QWidget {
    Q_OBJECT
public:
    explicit TNews(QWidget *parent = nullptr);
    QPlainTextEdit *memo() const { return m_memo; }
    QCheckBox *receiveInfo() const { return m_receive; }
    QPushButton *closeButton() const { return m_close; }

private:
    QPlainTextEdit *m_memo;
    QCheckBox *m_receive;
    QPushButton *m_close;
};

class FNews : public QDialog {
    Q_OBJECT
public:
    // receiveInfo: the state of "Получать информацию".
    FNews(const QString &caption, const QString &text, bool receiveInfo, QWidget *parent = nullptr);
    TNews *frame() const { return m_frame; }

signals:
    void receiveInfoChanged(bool on);

private:
    TNews *m_frame;
};
