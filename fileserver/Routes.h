#pragma once
// The server's paths on cpp-httplib: each handler reads the request's fields and answers with the
// FileStore's reply; every request, answered or not, goes into the log.

namespace httplib {
class Server;
}
class FileStore;
class RequestLog;

void installRoutes(httplib::Server &server, FileStore &store, RequestLog &log, int timeoutSeconds);
