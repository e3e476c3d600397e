#pragma once
// One LibreOfficeKit instance and the one document it has open. Every call comes from the thread
// that created the session: LibreOfficeKit allows one instance per process, driven from one thread.
// Commands posted to a document run asynchronously; uno() posts one and waits for its result
// callback, so the next step always sees the document after the previous one.

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

namespace lok {
class Office;
class Document;
} // namespace lok

class LokSession {
public:
    enum class DocType { None, Text, Spreadsheet, Presentation, Drawing, Other };

    LokSession();
    ~LokSession();
    LokSession(const LokSession &) = delete;
    LokSession &operator=(const LokSession &) = delete;

    // installDir: the "program" folder of LibreOffice; profileUrl: a file:// URL of a private folder.
    bool init(const std::string &installDir, const std::string &profileUrl, std::string *error);
    std::string version() const { return m_version; }

    // Closes the open document first.
    bool load(const std::string &url, std::string *error);
    void close();
    bool isOpen() const { return m_doc != nullptr; }
    DocType docType() const { return m_type; }

    // Posts a UNO command and waits up to timeoutMs for its result. argsJson is the LibreOfficeKit
    // argument object ({"Name":{"type":"string","value":"…"}}) or empty.
    bool uno(const std::string &command, const std::string &argsJson, int timeoutMs, std::string *error);

    // format: "docx", "rtf", "pdf", "xls", "xlsx", "txt", "csv", "fods", …
    bool saveAs(const std::string &url, const std::string &format, const std::string &filterOptions,
                std::string *error);

    // The engine's answer to a query such as ".uno:SheetGeometryData?…" (JSON); empty when it has none.
    std::string commandValues(const std::string &command);

    // The address Calc last reported for the cell cursor ("B5" or "A3:C7").
    std::string cellAddress();

    // Text documents: the whole body (headers, footers and page setup stay apart) selected, as the
    // user's "select all" pressed until the selection stops growing (tables at the start or end of the
    // document are taken in only by the later presses).
    bool selectBody(std::string *error);
    // The selection in a clipboard format ("text/html", "text/plain;charset=utf-8").
    bool selection(const std::string &mimeType, std::string *data, std::string *error);
    // Puts data of that clipboard format on the document's clipboard (for a ".uno:Paste" after).
    bool setClipboard(const std::string &mimeType, const std::string &data, std::string *error);
    // Pastes data of that clipboard format over the selection.
    bool paste(const std::string &mimeType, const std::string &data, std::string *error);

private:
    struct Result {
        std::string command;
        bool success = false;
    };
    static void documentCallback(int type, const char *payload, void *data);
    void onCallback(int type, const char *payload);
    std::string takeError();

    std::unique_ptr<lok::Office> m_office;
    std::unique_ptr<lok::Document> m_doc;
    DocType m_type = DocType::None;
    std::string m_version;
    bool m_languageSet = false;

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Result> m_results;
    std::string m_cellAddress;
};
