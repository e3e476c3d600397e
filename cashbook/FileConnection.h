#pragma once
// A connection of its own to a database file that is not one of the data module's (a book being
// upgraded, the mobile companion's copy), closed and removed with the object. A book is opened for
// writing with the busy timeout of shared files; a foreign file read-only and untrusted (no functions
// from its schema, every cell's size checked).

#include <QSqlDatabase>
#include <QString>

class FileConnection {
public:
    enum class Mode { Book, Foreign };

    FileConnection(const QString &path, Mode mode);
    ~FileConnection();
    FileConnection(const FileConnection &) = delete;
    FileConnection &operator=(const FileConnection &) = delete;

    QSqlDatabase db() const { return QSqlDatabase::database(m_name, false); }
    // Why the file did not open; empty when it did.
    QString error() const { return m_error; }

private:
    QString m_name;
    QString m_error;
};
