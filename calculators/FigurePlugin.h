#pragma once
// The figure-area plug-in square_shapes.so: a library of its own, built with the program, that the
// program fetches from its file server on first use and keeps in the folder of IniFile.db. Only the
// plug-in this build made is ever loaded: its SHA-256 is built into the program, and a file with any
// other content is removed instead. The library exports "ShowForm" (one argument, the id of the
// parent window), which shows the plug-in's window.

#include <QByteArray>
#include <QString>
#include <QtGlobal>

class FigurePlugin {
public:
    // "square_shapes.so" ("square_shapes.dll" on Windows).
    static QString fileName();
    // The SHA-256 (hex) of the plug-in this build made.
    static QByteArray builtSha256();
    // The largest plug-in accepted from the server.
    static constexpr qint64 kMaxBytes = 32 << 20;

    // folder: the folder of IniFile.db.
    explicit FigurePlugin(const QString &folder);
    QString filePath() const;

    enum class State { Missing, Ours, Foreign };
    // Missing, the build's own plug-in, or a file with other content.
    State state() const;

    enum class Shown { Shown, LoadFailed, NoEntry };
    // Loads the library and calls ShowForm(parentWindow). LoadFailed: the library would not load (the
    // message "Ошибка загрузки библиотеки "square_shapes.so"" goes into *error); NoEntry: it has no
    // ShowForm. A loaded library stays loaded: its windows live in it.
    Shown show(quintptr parentWindow, QString *error) const;

    // Keeps bytes fetched from the server as the plug-in when they are the build's own; otherwise
    // nothing is written and a file already there is removed. False with *error.
    bool install(const QByteArray &bytes, QString *error) const;
    // Removes the plug-in file.
    bool remove() const;

private:
    QString m_folder;
};
