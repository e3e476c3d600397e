// virn-fileserver: the program's file server (see --help and the README).

#include "Accounts.h"
#include "FileStore.h"
#include "Options.h"
#include "RequestLog.h"
#include "Routes.h"

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <httplib.h>
#include <iostream>
#include <memory>
#include <pthread.h>
#include <thread>

#ifndef VIRN_VERSION
#define VIRN_VERSION "0"
#endif

namespace fs = std::filesystem;

namespace {

// The port goes into the file whole or not at all: a script waiting for it never reads half.
bool writePortFile(const std::string &path, int port) {
    const std::string temp = path + ".tmp";
    {
        std::ofstream out(temp, std::ios::trunc);
        out << port << '\n';
        if (!out)
            return false;
    }
    std::error_code ec;
    fs::rename(temp, path, ec);
    return !ec;
}

int fail(const std::string &text) {
    std::cerr << "virn-fileserver: " << text << '\n';
    return 1;
}

} // namespace

int main(int argc, char **argv) {
    ServerOptions options;
    std::string error;
    if (!parseOptions(std::vector<std::string>(argv + 1, argv + argc), &options, &error)) {
        std::cerr << "virn-fileserver: " << error << "\n\n" << usageText();
        return 2;
    }
    if (options.help) {
        std::cout << usageText();
        return 0;
    }
    if (options.version) {
        std::cout << "virn-fileserver " << VIRN_VERSION << '\n';
        return 0;
    }

    // SIGINT and SIGTERM stop the server through one waiting thread; a closed client never kills it.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    const fs::path data = fs::absolute(options.data);
    RequestLog log(options.log);
    if (!log.isOpen())
        return fail("не удаётся открыть журнал " + options.log);
    Accounts accounts(options.accounts.empty() ? data / "accounts.txt" : fs::path(options.accounts));
    FileStore store(data, accounts);
    if (!store.prepare(&error))
        return fail(error);
    if (!accounts.load(&error))
        log.note("учётные записи: " + error + "; запросы с ключом получат 403");

    std::unique_ptr<httplib::Server> server;
    const bool https = !options.certificate.empty();
    if (https)
        server =
            std::make_unique<httplib::SSLServer>(options.certificate.c_str(), options.privateKey.c_str());
    else
        server = std::make_unique<httplib::Server>();
    if (!server->is_valid())
        return fail("не удаётся прочитать сертификат " + options.certificate + " или ключ " +
                    options.privateKey);
    installRoutes(*server, store, log, options.timeoutSeconds);

    int port = options.port;
    if (port == 0)
        port = server->bind_to_any_port(options.listen);
    else if (!server->bind_to_port(options.listen, port))
        port = -1;
    if (port <= 0)
        return fail("не удаётся занять адрес " + options.listen + ":" + std::to_string(options.port));
    if (!options.portFile.empty() && !writePortFile(options.portFile, port))
        return fail("не удаётся записать файл порта " + options.portFile);

    const std::string url =
        std::string(https ? "https://" : "http://") + options.listen + ":" + std::to_string(port) + "/";
    log.note("сервер слушает " + url + ", папка данных " + data.string() + ", учётных записей " +
             std::to_string(accounts.count()));
    std::cout << url << std::endl;

    std::thread stopper([&server, stopSignals] {
        int signal = 0;
        sigwait(&stopSignals, &signal);
        server->stop();
    });
    stopper.detach();
    const bool ok = server->listen_after_bind();
    log.note("сервер остановлен");
    return ok ? 0 : 1;
}
