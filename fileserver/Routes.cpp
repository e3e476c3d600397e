#include "Routes.h"

#include "FileStore.h"
#include "Protocol.h"
#include "RequestLog.h"

#include <algorithm>
#include <fstream>
#include <httplib.h>
#include <memory>

namespace {

const char *const kText = "text/plain; charset=utf-8";
// A multipart body carries the file and a few short fields: this much room is left for them.
constexpr size_t kFormRoom = 64 * 1024;
constexpr size_t kFieldLimit = 1024;

// The account key of the request being answered on this thread, for its log line (a multipart
// body's fields are read by the handler, not by the library).
thread_local std::string t_key;

std::string contentType(const std::filesystem::path &file) {
    std::string ext = file.extension().string();
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (ext == ".txt")
        return kText;
    if (ext == ".png")
        return "image/png";
    if (ext == ".jpg" || ext == ".jpeg")
        return "image/jpeg";
    if (ext == ".gif")
        return "image/gif";
    if (ext == ".bmp")
        return "image/bmp";
    return "application/octet-stream";
}

void answer(httplib::Response &res, const Reply &r) {
    res.status = r.status;
    if (!r.isFile()) {
        res.set_content(r.text, kText);
        return;
    }
    // The file is opened now: a file replaced by an upload meanwhile is sent whole, as it was.
    auto in = std::make_shared<std::ifstream>(r.file, std::ios::binary);
    if (!*in) {
        res.status = 404;
        res.set_content("Файл не найден", kText);
        return;
    }
    in->seekg(0, std::ios::end);
    const auto size = static_cast<size_t>(in->tellg());
    in->seekg(0);
    res.set_content_provider(
        size, contentType(r.file), [in](size_t offset, size_t length, httplib::DataSink &sink) {
            char buffer[64 * 1024];
            in->seekg(static_cast<std::streamoff>(offset));
            in->read(buffer, static_cast<std::streamsize>(std::min(length, sizeof buffer)));
            const std::streamsize got = in->gcount();
            if (got <= 0)
                return false;
            return sink.write(buffer, static_cast<size_t>(got));
        });
}

std::string formKey(const httplib::Request &req) {
    t_key = req.get_param_value(Protocol::kFieldKey);
    return t_key;
}

// The account key a request names: the form's, the multipart body's, or the first name of the path.
std::string keyOf(const httplib::Request &req) {
    std::string key = t_key;
    t_key.clear();
    if (!key.empty())
        return key;
    if (req.has_param(Protocol::kFieldKey))
        return req.get_param_value(Protocol::kFieldKey);
    const std::string root = Protocol::kAccountsRoot;
    if (req.path.compare(0, root.size(), root) == 0 && req.method == "GET") {
        const std::string rest = req.path.substr(root.size());
        return rest.substr(0, std::min<size_t>(rest.find('/'), 64));
    }
    return {};
}

// post_cashbase.php: the body is read as it arrives; the file goes straight into a temporary file.
void receiveUpload(FileStore &store, const httplib::Request &req, httplib::Response &res,
                   const httplib::ContentReader &reader) {
    if (!req.is_multipart_form_data()) {
        answer(res, {400, "Нужна форма multipart/form-data с полями key и file", {}});
        return;
    }
    Upload upload(store.incomingFolder(), Protocol::kUploadLimit);
    if (!upload.isOpen()) {
        answer(res, {500, "Файл не сохранён: " + upload.error(), {}});
        return;
    }
    std::string key, folder, fileName, field;
    int files = 0;
    size_t total = 0;
    bool failed = false;
    const bool whole = reader(
        [&](const httplib::MultipartFormData &part) {
            field = part.name;
            if (field == Protocol::kFieldFile) {
                ++files;
                fileName = part.filename;
            }
            return true;
        },
        [&](const char *data, size_t length) {
            total += length;
            if (total > Protocol::kUploadLimit + kFormRoom)
                return false; // far past the limit: stop reading
            auto append = [&](std::string &to) {
                if (to.size() + length > kFieldLimit)
                    return false;
                to.append(data, length);
                return true;
            };
            if (field == Protocol::kFieldFile) {
                if (files == 1 && !upload.write(data, length))
                    failed = true;
                return !failed;
            }
            if (field == Protocol::kFieldKey)
                return append(key);
            if (field == Protocol::kFieldFolder)
                return append(folder);
            return true;
        });
    t_key = key;
    if (failed) {
        answer(res, {500, "Файл не сохранён: " + upload.error(), {}});
        return;
    }
    if (!whole) {
        // A broken or oversized body: the temporary file goes, the old file stays.
        answer(res, {total > Protocol::kUploadLimit ? 413 : 400, "Загрузка прервана, файл не сохранён", {}});
        return;
    }
    if (files != 1) {
        answer(res, {400, "Нужен ровно один файл в поле file", {}});
        return;
    }
    answer(res, store.storeUpload(key, fileName, folder, upload));
}

} // namespace

void installRoutes(httplib::Server &server, FileStore &store, RequestLog &log, int timeoutSeconds) {
    server.set_read_timeout(timeoutSeconds, 0);
    server.set_write_timeout(timeoutSeconds, 0);
    server.set_keep_alive_timeout(5);
    server.set_payload_max_length(Protocol::kUploadLimit + kFormRoom);

    server.Post(Protocol::kExistsCashbase, [&store](const httplib::Request &req, httplib::Response &res) {
        answer(res, store.cashbaseExists(formKey(req)));
    });
    server.Post(Protocol::kPostCashbase,
                [&store](const httplib::Request &req, httplib::Response &res,
                         const httplib::ContentReader &reader) { receiveUpload(store, req, res, reader); });
    server.Post(Protocol::kDeleteFile, [&store](const httplib::Request &req, httplib::Response &res) {
        answer(res, store.deleteFile(formKey(req), req.get_param_value(Protocol::kFieldPath)));
    });
    server.Post(Protocol::kVersionInfo, [&store](const httplib::Request &, httplib::Response &res) {
        answer(res, store.latestVersion());
    });
    server.Post(Protocol::kReadInfo, [&store](const httplib::Request &, httplib::Response &res) {
        answer(res, store.newsStamp());
    });
    server.Get(R"(/files/base_virn_s/(.*))", [&store](const httplib::Request &req, httplib::Response &res) {
        answer(res, store.accountFile(req.matches[1]));
    });
    server.Get(R"(/files/virn_8/(.*))", [&store](const httplib::Request &req, httplib::Response &res) {
        answer(res, store.programFile(req.matches[1]));
    });
    // A path the server does not have, and errors the library answers itself, get a text too.
    server.set_error_handler(
        httplib::Server::HandlerWithResponse([](const httplib::Request &, httplib::Response &res) {
            if (!res.body.empty() || res.content_length_ > 0)
                return httplib::Server::HandlerResponse::Unhandled;
            res.set_content(res.status == 404 ? "Нет такого адреса" : "Запрос не выполнен", kText);
            return httplib::Server::HandlerResponse::Handled;
        }));
    server.set_logger([&log](const httplib::Request &req, const httplib::Response &res) {
        log.request(req.remote_addr, keyOf(req), req.method, req.path, res.status,
                    res.content_length_ ? res.content_length_ : res.body.size());
    });
}
