#pragma once
// The document store of the tests and benchmarks: the MariaDB that scripts/services/mariadb.sh starts
// (`make test` does), named by VIRN_TEST_MYSQL_*.

#include "server/DocumentStore.h"

inline StoreAccess testStoreAccess() {
    StoreAccess a;
    a.host = qEnvironmentVariable("VIRN_TEST_MYSQL_HOST");
    a.port = qEnvironmentVariable("VIRN_TEST_MYSQL_PORT").toInt();
    a.user = qEnvironmentVariable("VIRN_TEST_MYSQL_USER");
    a.password = qEnvironmentVariable("VIRN_TEST_MYSQL_PASSWORD");
    a.database = qEnvironmentVariable("VIRN_TEST_MYSQL_DB");
    return a;
}
