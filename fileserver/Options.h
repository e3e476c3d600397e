#pragma once
// The command line of virn-fileserver.

#include <string>
#include <vector>

struct ServerOptions {
    std::string data; // the data folder
    std::string listen = "127.0.0.1";
    int port = 8080;         // 0: any free port
    std::string portFile;    // where the port is written once the server listens
    std::string accounts;    // the accounts file; data/accounts.txt when empty
    std::string certificate; // HTTPS when both are given (PEM)
    std::string privateKey;
    std::string log;         // the log file; stderr when empty
    int timeoutSeconds = 30; // reading or writing a request that stalls longer is dropped
    bool help = false;
    bool version = false;
};

// Parses the arguments (without the program name); false with *error on a bad command line.
bool parseOptions(const std::vector<std::string> &args, ServerOptions *options, std::string *error);

// The text of --help.
std::string usageText();
