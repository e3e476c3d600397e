#define LOK_USE_UNSTABLE_API
#include "LokSession.h"

#include <LibreOfficeKit/LibreOfficeKit.hxx>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

// The value of "commandName" in a result payload such as
// { "commandName": ".uno:GoToCell", "success": true, … }.
std::string commandNameOf(const std::string &payload) {
    const std::string key = "\"commandName\"";
    size_t at = payload.find(key);
    if (at == std::string::npos)
        return {};
    size_t open = payload.find('"', payload.find(':', at + key.size()) + 1);
    if (open == std::string::npos)
        return {};
    size_t close = payload.find('"', open + 1);
    return close == std::string::npos ? std::string() : payload.substr(open + 1, close - open - 1);
}

bool successOf(const std::string &payload) {
    size_t at = payload.find("\"success\"");
    return at != std::string::npos && payload.compare(payload.find(':', at) + 1, 5, " true") == 0;
}

} // namespace

LokSession::LokSession() = default;

LokSession::~LokSession() {
    // The office instance is never destroyed: its shutdown can hang, and the process ends right
    // after the session anyway.
    close();
    m_office.release();
}

bool LokSession::init(const std::string &installDir, const std::string &profileUrl, std::string *error) {
    lok::Office *office = lok::lok_cpp_init(installDir.c_str(), profileUrl.c_str());
    if (!office) {
        *error = "no-libreoffice";
        return false;
    }
    m_office.reset(office);
    if (char *info = m_office->getVersionInfo()) {
        m_version = info;
        m_office->freeError(info);
    }
    return true;
}

std::string LokSession::takeError() {
    std::string text;
    if (char *e = m_office->getError()) {
        text = e;
        m_office->freeError(e);
    }
    return text;
}

bool LokSession::load(const std::string &url, std::string *error) {
    close();
    takeError();
    // The language is the engine's, not the document's: set with the first document, it stays for the
    // later ones. Set again at every load it makes the engine rebuild its tables of currencies and
    // number formats, half of the time a small template takes to load.
    lok::Document *doc = m_office->documentLoad(url.c_str(), m_languageSet ? "" : "Language=ru-RU");
    if (!doc) {
        std::string why = takeError();
        *error = why.empty() ? std::string("документ не открывается") : why;
        return false;
    }
    m_doc.reset(doc);
    m_languageSet = true;
    switch (m_doc->getDocumentType()) {
    case LOK_DOCTYPE_TEXT:
        m_type = DocType::Text;
        break;
    case LOK_DOCTYPE_SPREADSHEET:
        m_type = DocType::Spreadsheet;
        break;
    case LOK_DOCTYPE_PRESENTATION:
        m_type = DocType::Presentation;
        break;
    case LOK_DOCTYPE_DRAWING:
        m_type = DocType::Drawing;
        break;
    default:
        m_type = DocType::Other;
    }
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_results.clear();
        m_cellAddress.clear();
    }
    m_doc->registerCallback(&LokSession::documentCallback, this);
    return true;
}

void LokSession::close() {
    m_doc.reset();
    m_type = DocType::None;
}

void LokSession::documentCallback(int type, const char *payload, void *data) {
    static_cast<LokSession *>(data)->onCallback(type, payload);
}

void LokSession::onCallback(int type, const char *payload) {
    if (type != LOK_CALLBACK_UNO_COMMAND_RESULT && type != LOK_CALLBACK_CELL_ADDRESS)
        return;
    std::string text = payload ? payload : "";
    std::lock_guard<std::mutex> lock(m_mutex);
    if (type == LOK_CALLBACK_CELL_ADDRESS) {
        m_cellAddress = text;
        return;
    }
    m_results.push_back({commandNameOf(text), successOf(text)});
    m_wake.notify_all();
}

bool LokSession::uno(const std::string &command, const std::string &argsJson, int timeoutMs,
                     std::string *error) {
    if (!m_doc) {
        *error = "нет открытого документа";
        return false;
    }
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_results.clear();
    }
    // Right after a load the dispatcher may not be ready yet: the post then fails with
    // "Failed to dispatch …" and succeeds a moment later.
    for (;;) {
        takeError();
        m_doc->postUnoCommand(command.c_str(), argsJson.empty() ? nullptr : argsJson.c_str(), true);
        std::string why = takeError();
        if (why.empty())
            break;
        if (why.find("Failed to dispatch") == std::string::npos || Clock::now() > deadline) {
            *error = command + ": " + why;
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        while (!m_results.empty()) {
            Result r = m_results.front();
            m_results.pop_front();
            if (r.command == command)
                return true; // the flag is not trustworthy for every command: callers verify results
        }
        if (m_wake.wait_until(lock, deadline) == std::cv_status::timeout && m_results.empty()) {
            *error = command + ": нет ответа за отведённое время";
            return false;
        }
    }
}

bool LokSession::saveAs(const std::string &url, const std::string &format, const std::string &filterOptions,
                        std::string *error) {
    if (!m_doc) {
        *error = "нет открытого документа";
        return false;
    }
    takeError();
    if (!m_doc->saveAs(url.c_str(), format.c_str(),
                       filterOptions.empty() ? nullptr : filterOptions.c_str())) {
        std::string why = takeError();
        *error = why.empty() ? std::string("не удалось сохранить документ") : why;
        return false;
    }
    return true;
}

std::string LokSession::commandValues(const std::string &command) {
    if (!m_doc)
        return {};
    char *values = m_doc->getCommandValues(command.c_str());
    std::string text = values ? values : "";
    std::free(values);
    return text;
}

std::string LokSession::cellAddress() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_cellAddress;
}

bool LokSession::selection(const std::string &mimeType, std::string *data, std::string *error) {
    if (!m_doc) {
        *error = "нет открытого документа";
        return false;
    }
    takeError();
    char *used = nullptr;
    char *text = m_doc->getTextSelection(mimeType.c_str(), &used);
    data->assign(text ? text : "");
    std::free(text);
    std::free(used);
    const std::string why = takeError();
    if (!why.empty()) {
        *error = why;
        return false;
    }
    return true;
}

bool LokSession::selectBody(std::string *error) {
    // In a table each press takes in more: the cell, the table, then the whole body; a press that
    // adds nothing may still turn a table selection into the body's. Pressed until two presses in a
    // row add nothing.
    std::string before;
    int still = 0;
    for (int press = 0; press < 6 && still < 2; ++press) {
        if (!uno(".uno:SelectAll", "", 20000, error))
            return false;
        std::string now;
        if (!selection("text/plain;charset=utf-8", &now, error))
            return false;
        still = now.size() > before.size() ? 0 : still + 1;
        before.swap(now);
    }
    return true;
}

bool LokSession::paste(const std::string &mimeType, const std::string &data, std::string *error) {
    if (!m_doc) {
        *error = "нет открытого документа";
        return false;
    }
    takeError();
    if (!m_doc->paste(mimeType.c_str(), data.data(), data.size())) {
        const std::string why = takeError();
        *error = why.empty() ? std::string("вставка не удалась") : why;
        return false;
    }
    return true;
}

bool LokSession::setClipboard(const std::string &mimeType, const std::string &data, std::string *error) {
    if (!m_doc) {
        *error = "нет открытого документа";
        return false;
    }
    takeError();
    const char *types[] = {mimeType.c_str()};
    const size_t sizes[] = {data.size()};
    const char *streams[] = {data.data()};
    if (!m_doc->setClipboard(1, types, sizes, streams)) {
        const std::string why = takeError();
        *error = why.empty() ? std::string("буфер обмена не принял данные") : why;
        return false;
    }
    return true;
}
