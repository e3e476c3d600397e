#pragma once
// A private server per test and a raw HTTP client of cpp-httplib, which sends paths exactly as given
// (a browser or Qt would tidy "../" away before sending).

#include "FileServerProcess.h"
#include "TestFolder.h"
#include "fileserver/Protocol.h"

#include <QFile>
#include <gtest/gtest.h>
#include <httplib.h>
#include <memory>

class FileServerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        restart();
    }
    // (Re)starts the server with these arguments and a client for it.
    void restart(const QStringList &arguments = {}) {
        server.stop();
        ASSERT_TRUE(server.start(arguments)) << server.error().toStdString();
        client = std::make_unique<httplib::Client>("127.0.0.1", server.url().port());
        client->set_read_timeout(20, 0);
    }

    httplib::Result post(const char *path, const httplib::Params &form) { return client->Post(path, form); }
    httplib::Result upload(const std::string &key, const std::string &fileName, const std::string &bytes,
                           const std::string &folder = {}) {
        httplib::MultipartFormDataItems items = {{"key", key, "", ""},
                                                 {"file", bytes, fileName, "application/octet-stream"}};
        if (!folder.empty())
            items.push_back({"folder", folder, "", ""});
        return client->Post(Protocol::kPostCashbase, items);
    }
    std::string key() const { return server.key().toStdString(); }

    FileServerProcess server;
    std::unique_ptr<httplib::Client> client;
};
