#pragma once
// One file of the document store as its row describes it, and the rules of the values the program
// writes into a row: the upload's time and the file's own time as "dd.MM.yyyy HH:mm:ss", the name and
// address with double quotes as backticks, who uploaded it, and the size a file may have.

#include <QDateTime>
#include <QMetaType>
#include <QString>

struct StoredFile {
    QString data;     // when it was uploaded; with name, the row's identity
    QString name;     // file name with extension
    QString type;     // ".sim", ".png", …
    QString datefile; // the file's own last change
    QString address;  // the object address it belongs to
    QString user;     // who uploaded it
};
Q_DECLARE_METATYPE(StoredFile)

namespace StoredFiles {

// The largest file the store takes: 40 bytes short of 15 MiB.
inline constexpr qint64 kSizeLimit = 15728600;

enum class SizeProblem { None, Empty, TooLarge };
SizeProblem sizeProblem(qint64 size);
// The message for a problem: "Не могу сохранить, файл повреждён", "Размер файла больше 15 Мб".
QString sizeMessage(SizeProblem problem);

// The text form of data and datefile, and back (an invalid date when the text is none).
QString timeText(const QDateTime &time);
QDateTime parseTime(const QString &text);

// "login@computer" of the person running the program.
QString currentUser();

// The row of a local file to upload: its name and address in the stored form, its type and its own
// time; data is the time of now.
StoredFile describe(const QString &path, const QString &address);

// The local file of a restored database: "peoplebase.db" and "cashbase.db" (in any case) are the
// user's own customers and cash book.
bool isPeopleBase(const QString &name);
bool isCashBase(const QString &name);

} // namespace StoredFiles
