#include "TestFolder.h"

#include <QApplication>
#include <QLocale>
#include <QSettings>
#include <QTemporaryDir>

namespace {
QString scratchRoot() {
    const QByteArray env = qgetenv("VIRN_TEST_SCRATCH");
    return env.isEmpty() ? QString() : QString::fromLocal8Bit(env);
}
} // namespace

TestFolder::TestFolder() {
    const QString root = scratchRoot();
    m_dir = root.isEmpty() ? std::make_unique<QTemporaryDir>()
                           : std::make_unique<QTemporaryDir>(root + QStringLiteral("/data-XXXXXX"));
}

void ensureApplication() {
    if (QApplication::instance())
        return;
    static int argc = 1;
    static char name[] = "virn-tests";
    static char *argv[] = {name, nullptr};
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    new QApplication(argc, argv);
    // Per-user program settings of tests go to a private folder, never the developer's own.
    static QTemporaryDir userSettings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, userSettings.path());
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
}
