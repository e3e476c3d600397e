#include "WidgetDialogs.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFontMetrics>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>

#include <algorithm>

namespace {

constexpr int kInputWidth = 420;

QMessageBox::Icon boxIcon(Dialogs::Icon icon) {
    switch (icon) {
    case Dialogs::Icon::Information:
        return QMessageBox::Information;
    case Dialogs::Icon::Warning:
        return QMessageBox::Warning;
    case Dialogs::Icon::Error:
        return QMessageBox::Critical;
    case Dialogs::Icon::Question:
        return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}

} // namespace

QWidget *WidgetDialogs::owner() const {
    if (QWidget *modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget *active = QApplication::activeWindow())
        return active;
    return m_parent;
}

Dialogs::Answer WidgetDialogs::ask(const QString &caption, const QString &text, Buttons buttons, Icon icon) {
    QMessageBox box(boxIcon(icon), caption, text, QMessageBox::NoButton, owner());
    QPushButton *yes = nullptr, *no = nullptr, *cancel = nullptr, *ok = nullptr;
    switch (buttons) {
    case Buttons::Ok:
        ok = box.addButton(QStringLiteral("ОК"), QMessageBox::AcceptRole);
        break;
    case Buttons::YesNoCancel:
        cancel = box.addButton(QStringLiteral("Отмена"), QMessageBox::RejectRole);
        [[fallthrough]];
    case Buttons::YesNo:
        yes = box.addButton(QStringLiteral("Да"), QMessageBox::YesRole);
        no = box.addButton(QStringLiteral("Нет"), QMessageBox::NoRole);
        break;
    }
    if (yes)
        box.setDefaultButton(yes);
    if (cancel)
        box.setEscapeButton(cancel);
    else if (no)
        box.setEscapeButton(no);
    box.exec();
    QAbstractButton *clicked = box.clickedButton();
    if (clicked && clicked == yes)
        return Answer::Yes;
    if (clicked && clicked == no)
        return Answer::No;
    if (clicked && clicked == ok)
        return Answer::Ok;
    return buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
}

void WidgetDialogs::tell(const QString &caption, const QString &text, Icon icon) {
    QMessageBox box(boxIcon(icon), caption, text, QMessageBox::NoButton, owner());
    box.addButton(QStringLiteral("ОК"), QMessageBox::AcceptRole);
    box.exec();
}

bool WidgetDialogs::input(const QString &caption, const QString &prompt, QString *value) {
    QInputDialog dlg(owner());
    dlg.setWindowTitle(caption);
    dlg.setLabelText(prompt);
    dlg.setTextValue(value ? *value : QString());
    dlg.setOkButtonText(QStringLiteral("ОК"));
    dlg.setCancelButtonText(QStringLiteral("Отмена"));
    // Room for a name of a few words and for the caption in the title bar (the dialog's layout takes
    // its size from its widgets).
    const QFontMetrics metrics = dlg.fontMetrics();
    if (auto *edit = dlg.findChild<QLineEdit *>())
        edit->setMinimumWidth(std::max(
            {kInputWidth, metrics.horizontalAdvance(prompt) + 40, metrics.horizontalAdvance(caption) + 140}));
    if (dlg.exec() != QDialog::Accepted)
        return false;
    if (value)
        *value = dlg.textValue();
    return true;
}

QString WidgetDialogs::openFile(const QString &caption, const QString &folder, const QString &filter) {
    // A filter whose caption shows its own pattern text, e.g. "Файлы (*.sim,*.sme) (*.sim *.sme)",
    // gives Qt the patterns in a last group, which the dialog then reads without showing it.
    static const QRegularExpression shownPatterns(QStringLiteral("\\([^()]*\\)\\s*\\([^()]*\\)\\s*$"));
    QFileDialog::Options options;
    for (const QString &f : filter.split(QStringLiteral(";;")))
        if (shownPatterns.match(f).hasMatch())
            options |= QFileDialog::HideNameFilterDetails;
    return QFileDialog::getOpenFileName(owner(), caption, folder, filter, nullptr, options);
}

QString WidgetDialogs::saveFile(const QString &caption, const QString &folder, const QString &fileName,
                                const QString &filter, const QString &defaultSuffix) {
    QFileDialog dlg(owner(), caption, folder, filter);
    dlg.setAcceptMode(QFileDialog::AcceptSave);
    dlg.setFileMode(QFileDialog::AnyFile);
    dlg.setDefaultSuffix(defaultSuffix);
    dlg.setOption(QFileDialog::DontConfirmOverwrite, false);
    if (!fileName.isEmpty())
        dlg.selectFile(QDir(folder).filePath(fileName));
    if (dlg.exec() != QDialog::Accepted || dlg.selectedFiles().isEmpty())
        return {};
    return dlg.selectedFiles().first();
}

QString WidgetDialogs::chooseFolder(const QString &caption, const QString &folder) {
    return QFileDialog::getExistingDirectory(owner(), caption, folder);
}
