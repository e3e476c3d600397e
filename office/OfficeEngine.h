#pragma once
// The program's side of the office engine: starts the helper virn-office, sends it one request at a
// time and waits for the answer within a time limit. The helper keeps running between documents, so
// only the first document pays for the engine's start. A helper that dies or stops answering is
// killed; the request fails with a Russian message and the next request starts a new helper.
//
// An engine object belongs to the thread that created it (it owns a QProcess).

#include "office/SheetText.h"

#include <QDeadlineTimer>
#include <QJsonObject>
#include <QPair>
#include <QString>
#include <QVector>
#include <atomic>
#include <memory>

class QProcess;
class QLockFile;

class OfficeEngine {
public:
    // The helper executable: $VIRN_OFFICE_HELPER, else "virn-office" beside the running program.
    static QString helperPath();
    // The LibreOffice "program" folder: $VIRN_LIBREOFFICE_DIR, else the Debian location.
    static QString installDir();
    // What the user is told when LibreOffice is not installed.
    static QString missingEngineMessage();

    // dataFolder: the engine's profile and scratch files live in its Temp (a private folder). Engines
    // working side by side take different lanes: each lane keeps a profile of its own between runs.
    explicit OfficeEngine(const QString &dataFolder, int lane = 0);
    ~OfficeEngine();
    OfficeEngine(const OfficeEngine &) = delete;
    OfficeEngine &operator=(const OfficeEngine &) = delete;

    // False with a Russian reason when the helper or LibreOffice is missing (nothing is started).
    static bool available(QString *why = nullptr);

    // Every request returns false on failure; error() then holds the Russian reason.
    bool start();
    // type: "text" for word-processor documents, "spreadsheet" for sheets.
    bool load(const QString &path, QString *type = nullptr);
    bool replaceAll(const QVector<QPair<QString, QString>> &pairs);
    bool saveAs(const QString &path, const QString &format);
    // Text documents: the body (without headers, footers and page setup) as HTML, and the body
    // replaced by HTML, the document's page styles, headers and footers kept.
    bool bodyHtml(QString *html);
    bool replaceBody(const QString &html);
    // The page setup of a text document (its first page style), in hundredths of a millimetre. A size
    // of 0 keeps the size and orientation; a pair of margins with one below 0 keeps that pair.
    struct Page {
        int width = 0;
        int height = 0;
        bool landscape = false;
        int left = -1, right = -1, top = -1, bottom = -1;
        bool operator==(const Page &o) const {
            return width == o.width && height == o.height && landscape == o.landscape && left == o.left &&
                   right == o.right && top == o.top && bottom == o.bottom;
        }
    };
    bool setPage(const Page &page);
    bool close();

    // Spreadsheets (the active sheet).
    bool sheet(SheetText::Grid *grid);
    // The address ("B5") of the first cell holding the text; empty when there is none.
    bool findCell(const QString &text, bool exact, QString *cell);
    bool goTo(const QString &range);
    // Rows from 1: inserts count rows above row (rows below move down, merged cells with them).
    bool insertRows(int row, int count);
    bool deleteRows(int row, int count);
    // Rows (first from 1, count) take the height their contents need.
    bool fitRows(const QVector<QPair<int, int>> &ranges);
    bool copy(const QString &range);
    bool paste(const QString &range);
    // A picture file (PNG, …) with its top left corner at the cell ("B5"), in the size its file gives.
    bool insertImage(const QString &cell, const QString &path);

    // Saves the sheet as PDF at path with its pages kept together (PageFlow). grid: the sheet's text as
    // sheet() gives it; rows from 1 that must not end a page; the first row of the closing block (0:
    // none); at most maxExports exports. *breaks (when given) receives the rows a page break was put
    // above. With VIRN_PAGES_TRACE set, what it took (exports, breaks, times) goes to standard error.
    bool keepTogether(const QString &path, const SheetText::Grid &grid, const QVector<int> &headings,
                      int closingRow, int maxExports, QVector<int> *breaks = nullptr);

    struct Input {
        enum class Type { Text, Number, Formula };
        QString cell; // "B5"
        Type type = Type::Text;
        QString text;
        double number = 0;
    };
    // Texts stay texts whatever they look like; numbers are entered as numbers; an empty text clears.
    bool enter(const QVector<Input> &cells);

    QString error() const { return m_error; }
    bool running() const;
    qint64 processId() const;
    int starts() const { return m_starts; }
    QString profileDir() const { return m_profileDir; }
    // Stops the helper (the next request starts it again).
    void stop();
    // Caps the time limit of every request, start included (0: each request's own limit).
    void setTimeLimit(int ms) { m_limitMs = ms; }

    // A time budget for a whole piece of work (a document of many requests), and a flag that cancels
    // it from another thread: past the budget or once cancelled, the request waiting is given up, the
    // helper is stopped (the next request starts it again) and the request fails saying why.
    void setBudget(int ms, std::shared_ptr<const std::atomic<bool>> cancel = {});
    void clearBudget();
    bool hasBudget() const { return m_budgetMs > 0; }
    bool cancelled() const { return m_cancel && m_cancel->load(); }

    // The time one template may take to load; past it the template counts as bad.
    static constexpr int kLoadLimitMs = 20000;
    // The address space the helper may take (MB): a file that makes the engine take more ends the
    // helper instead of the machine's memory.
    static int memoryLimitMb();
    // The longest text entered into one cell or put in place of one placeholder, the most a spreadsheet
    // cell holds; a longer one is cut (the engine takes seconds and gigabytes for a text of megabytes).
    static constexpr int kMaxTextChars = 32767;
    static QString cutText(const QString &text);
    // The helper's scratch folder for the engine's own temporary files (removed when it stops).
    QString engineTempDir() const;

private:
    bool request(QJsonObject req, int timeoutMs, QJsonObject *answer = nullptr);
    bool readLine(int timeoutMs, QByteArray *line);
    bool fail(const QString &message);
    void kill();

    QString m_tempDir;
    QString m_profileDir;
    bool m_privateProfile = false;
    std::unique_ptr<QLockFile> m_lock;
    std::unique_ptr<QProcess> m_proc;
    QByteArray m_buffer;
    QString m_error;
    qint64 m_nextId = 1;
    int m_starts = 0;
    int m_limitMs = 0;
    QDeadlineTimer m_budget = QDeadlineTimer::Forever;
    int m_budgetMs = 0;
    std::shared_ptr<const std::atomic<bool>> m_cancel;
};
