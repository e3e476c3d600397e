#pragma once
// Every message box, question, input box and file dialog of the program goes through this one
// interface, so that tests can answer them with a script and read what the user was told.

#include <QString>
#include <memory>

class QWidget;

class Dialogs {
public:
    enum class Icon { Information, Warning, Error, Question };
    enum class Buttons { Ok, YesNo, YesNoCancel };
    enum class Answer { Ok, Yes, No, Cancel };

    virtual ~Dialogs() = default;

    virtual Answer ask(const QString &caption, const QString &text, Buttons buttons = Buttons::YesNo,
                       Icon icon = Icon::Question) = 0;
    virtual void tell(const QString &caption, const QString &text, Icon icon = Icon::Information) = 0;
    // Returns false when the user cancelled; *value holds the text otherwise.
    virtual bool input(const QString &caption, const QString &prompt, QString *value) = 0;
    // Empty string when cancelled. filter uses Qt's "Text (*.a *.b);;Other (*)" form.
    virtual QString openFile(const QString &caption, const QString &folder, const QString &filter) = 0;
    virtual QString saveFile(const QString &caption, const QString &folder, const QString &fileName,
                             const QString &filter, const QString &defaultSuffix) = 0;
    virtual QString chooseFolder(const QString &caption, const QString &folder) = 0;

    // Parent window of the boxes (production implementation only).
    virtual void setParentWidget(QWidget *) {}
};

// The dialogs in force (the widget implementation unless a test installed another).
Dialogs &dialogs();
// Installs an implementation and returns the previous one.
std::unique_ptr<Dialogs> installDialogs(std::unique_ptr<Dialogs> impl);

// Shorthands for the captions every part uses.
namespace Captions {
inline const QString warning = QStringLiteral("Предупреждение");
inline const QString deletion = QStringLiteral("Удаление");
inline const QString error = QStringLiteral("Ошибка");
inline const QString info = QStringLiteral("Сообщаю:");
} // namespace Captions
