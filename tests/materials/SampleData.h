#pragma once
// The sample data folder's scripts (resources/sample) for the materials' window tests: the lists and
// the warehouse, the register of customers, and the sample estimate opened in the main window.

#include "SqlRows.h"
#include "TestFolder.h"
#include "app/TForm1.h"
#include "storage/Schema.h"

#include <QFile>
#include <gtest/gtest.h>

// Runs the statements of a sample file (comments and the transaction lines of the script left out).
inline void runSampleScript(QSqlDatabase db, const QString &file) {
    QFile f(QStringLiteral(VIRN_SOURCE_DIR "/resources/sample/") + file);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << file.toStdString();
    QSqlQuery q(db);
    for (const QString &statement : QString::fromUtf8(f.readAll()).split(QStringLiteral(";\n"))) {
        QString sql;
        for (const QString &line : statement.split(u'\n'))
            if (!line.startsWith(QStringLiteral("--")) && line != "BEGIN;" && line != "BEGIN" &&
                line != "COMMIT;" && line != "COMMIT")
                sql += line + u'\n';
        if (!sql.trimmed().isEmpty()) {
            ASSERT_TRUE(q.exec(sql)) << sql.toStdString();
        }
    }
}

// "Sm/Образец сметы.sim" made from the sample script and opened in the window.
inline void openSampleEstimate(const TestFolder &folder, TForm1 &window) {
    const QString path = folder.file("Sm/Образец сметы.sim");
    {
        DatabaseFile file(path);
        ASSERT_TRUE(Schema::upgrade(file.db(), Db::Smeta).isEmpty());
        runSampleScript(file.db(), "estimate.sql");
    }
    ASSERT_TRUE(window.OpenMyFile(path));
}
