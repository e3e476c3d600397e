#include "ScriptedDialogs.h"

#include <stdexcept>

bool ScriptedDialogs::wasShown(const QString &text) const {
    for (const auto &s : m_shown)
        if (s.text == text || s.text.contains(text))
            return true;
    return false;
}

Dialogs::Answer ScriptedDialogs::ask(const QString &caption, const QString &text, Buttons, Icon) {
    m_shown.append({QStringLiteral("ask"), caption, text});
    if (m_answers.isEmpty())
        throw std::logic_error(("unexpected question: " + text).toStdString());
    return static_cast<Answer>(m_answers.dequeue().toInt());
}

void ScriptedDialogs::tell(const QString &caption, const QString &text, Icon) {
    m_shown.append({QStringLiteral("tell"), caption, text});
}

bool ScriptedDialogs::input(const QString &caption, const QString &prompt, QString *value) {
    m_shown.append({QStringLiteral("input"), caption, prompt});
    if (m_texts.isEmpty())
        throw std::logic_error(("unexpected input box: " + prompt).toStdString());
    const QString t = m_texts.dequeue();
    if (t.isNull())
        return false;
    if (value)
        *value = t;
    return true;
}

QString ScriptedDialogs::openFile(const QString &caption, const QString &, const QString &filter) {
    m_shown.append({QStringLiteral("openFile"), caption, filter});
    if (m_files.isEmpty())
        throw std::logic_error("unexpected open dialog");
    return m_files.dequeue();
}

QString ScriptedDialogs::saveFile(const QString &caption, const QString &, const QString &,
                                  const QString &filter, const QString &) {
    m_shown.append({QStringLiteral("saveFile"), caption, filter});
    if (m_files.isEmpty())
        throw std::logic_error("unexpected save dialog");
    return m_files.dequeue();
}

QString ScriptedDialogs::chooseFolder(const QString &caption, const QString &) {
    m_shown.append({QStringLiteral("chooseFolder"), caption, QString()});
    if (m_files.isEmpty())
        throw std::logic_error("unexpected folder dialog");
    return m_files.dequeue();
}

ScriptedDialogsGuard::ScriptedDialogsGuard() {
    auto d = std::make_unique<ScriptedDialogs>();
    m_dialogs = d.get();
    m_previous = installDialogs(std::move(d));
}

ScriptedDialogsGuard::~ScriptedDialogsGuard() {
    installDialogs(std::move(m_previous));
}
