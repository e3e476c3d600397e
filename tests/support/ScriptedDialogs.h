#pragma once
// Dialogs for tests: answers come from a queue, and every caption and text shown is recorded.

#include "ui/Dialogs.h"

#include <QQueue>
#include <QStringList>
#include <QVariant>

class ScriptedDialogs : public Dialogs {
public:
    struct Shown {
        QString kind; // "ask", "tell", "input", "openFile", "saveFile", "chooseFolder"
        QString caption;
        QString text;
    };

    // Queue the answers in the order the code will ask.
    void queueAnswer(Answer a) { m_answers.enqueue(QVariant::fromValue(static_cast<int>(a))); }
    void queueInput(const QString &text) { m_texts.enqueue(text); } // a null QString means "cancel"
    void queueInputCancel() { m_texts.enqueue(QString()); }
    void queueFile(const QString &path) { m_files.enqueue(path); } // empty means "cancel"

    const QList<Shown> &shown() const { return m_shown; }
    QString lastText() const { return m_shown.isEmpty() ? QString() : m_shown.last().text; }
    QString lastCaption() const { return m_shown.isEmpty() ? QString() : m_shown.last().caption; }
    bool wasShown(const QString &text) const;
    void clear() { m_shown.clear(); }
    int pendingAnswers() const { return m_answers.size() + m_texts.size() + m_files.size(); }

    Answer ask(const QString &caption, const QString &text, Buttons buttons, Icon icon) override;
    void tell(const QString &caption, const QString &text, Icon icon) override;
    bool input(const QString &caption, const QString &prompt, QString *value) override;
    QString openFile(const QString &caption, const QString &folder, const QString &filter) override;
    QString saveFile(const QString &caption, const QString &folder, const QString &fileName,
                     const QString &filter, const QString &defaultSuffix) override;
    QString chooseFolder(const QString &caption, const QString &folder) override;

private:
    QQueue<QVariant> m_answers;
    QQueue<QString> m_texts;
    QQueue<QString> m_files;
    QList<Shown> m_shown;
};

// Installs a ScriptedDialogs for the lifetime of the guard and gives access to it.
class ScriptedDialogsGuard {
public:
    ScriptedDialogsGuard();
    ~ScriptedDialogsGuard();
    ScriptedDialogs &operator*() { return *m_dialogs; }
    ScriptedDialogs *operator->() { return m_dialogs; }

private:
    ScriptedDialogs *m_dialogs;
    std::unique_ptr<Dialogs> m_previous;
};
