#include "PackageEngine.h"

#include "office/OfficeService.h"

#include <QDir>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

namespace {

std::unique_ptr<OfficeService> g_service;

class Environment : public ::testing::Environment {
public:
    void TearDown() override { g_service.reset(); }
};
const auto *const kEnvironment = ::testing::AddGlobalTestEnvironment(new Environment);

} // namespace

OfficeService &packageEngine() {
    if (!g_service)
        g_service = std::make_unique<OfficeService>(
            QDir::temp().filePath(QStringLiteral("virn-office-tests-%1").arg(getuid())));
    return *g_service;
}
