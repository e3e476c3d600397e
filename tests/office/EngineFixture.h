#pragma once
// The fixture of the tests against the real engine: one helper process for the whole test binary
// (its profile is kept between runs in the system temporary folder).

#include "office/OfficeEngine.h"

#include "TestFolder.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

#include <unistd.h>

// The engine shared by every case of the binary, started on first use and stopped at the end.
OfficeEngine &sharedEngine();

class Engine : public ::testing::Test {
protected:
    void SetUp() override { ensureApplication(); }
    OfficeEngine &engine() { return sharedEngine(); }
    // Opens a file written by the engine and saves it again in another format, for the checks.
    QString convert(const QString &path, const QString &format) {
        const QString out =
            m_folder.file(QFileInfo(path).completeBaseName() + QStringLiteral("-check.") + format);
        EXPECT_TRUE(engine().load(path)) << engine().error().toStdString();
        EXPECT_TRUE(engine().saveAs(out, format)) << engine().error().toStdString();
        engine().close();
        return out;
    }
    TestFolder m_folder;
};
