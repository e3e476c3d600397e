#pragma once
// A temporary data folder for one test, removed afterwards; and a QApplication for widget tests.

#include <QString>
#include <QTemporaryDir>
#include <memory>

class TestFolder {
public:
    TestFolder();
    QString path() const { return m_dir->path(); }
    QString file(const QString &relative) const { return m_dir->filePath(relative); }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
};

// Creates the QApplication once for the test binary (offscreen in tests).
void ensureApplication();
