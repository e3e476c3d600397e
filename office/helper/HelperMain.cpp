// virn-office: hosts the office engine for the program. One JSON request per line on stdin, one JSON
// answer per line on stdout ({"id":…,"ok":true,…} or {"id":…,"ok":false,"error":"…"}). The first line
// written is {"event":"ready",…} once the engine has started, or {"event":"fatal",…} when it cannot.
//
// Arguments: --install DIR (LibreOffice "program" folder), --profile DIR (private profile folder),
// --temp DIR (scratch files of this helper), --engine-temp DIR (the engine's own temporary files,
// which the program removes when the helper ends), --memory-mb N (the address space the helper may
// take: past it the engine's allocations fail and the helper ends, not the machine's memory).
// With VIRN_OFFICE_TRACE=FILE in its environment the helper appends a line per request to FILE: its
// process id, the operation, the time it took and the processor time the engine spent on it (ms).

#include "HelperText.h"
#include "LokSession.h"
#include "PageKeeping.h"
#include "office/EngineProfile.h"
#include "office/SheetText.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <map>
#include <set>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace {

int g_answerFd = -1;

void writeLine(const QJsonObject &o) {
    QByteArray line = QJsonDocument(o).toJson(QJsonDocument::Compact);
    line += '\n';
    const char *p = line.constData();
    qsizetype left = line.size();
    while (left > 0) {
        ssize_t n = ::write(g_answerFd, p, static_cast<size_t>(left));
        if (n <= 0)
            _exit(3); // the program has gone
        p += n;
        left -= n;
    }
}

// Calc reads a typed text the way it reads the keyboard: "1,5", "01.02.2025", "12:30", "15%",
// "ИСТИНА" become numbers, dates or truth values. Such texts get the text cell format first so that
// they stay texts. Texts without digits or signs are left alone (one command fewer per cell).
bool mayParseAsNonText(const QString &text) {
    for (QChar c : text) {
        if (c.isDigit())
            return true;
    }
    const QString t = text.trimmed().toUpper();
    static const QStringList words{QStringLiteral("ИСТИНА"), QStringLiteral("ЛОЖЬ"), QStringLiteral("TRUE"),
                                   QStringLiteral("FALSE")};
    return words.contains(t) || t.startsWith(u'=') || t.startsWith(u'\'') || t.startsWith(u'+') ||
           t.startsWith(u'-');
}

// A number as Calc's Russian input reads it: decimal comma, no grouping.
QString numberText(double v) {
    QString s = QString::number(v, 'f', 10);
    if (s.contains(u'.')) {
        while (s.endsWith(u'0'))
            s.chop(1);
        if (s.endsWith(u'.'))
            s.chop(1);
    }
    s.replace(u'.', u',');
    return s == QLatin1String("-0") ? QStringLiteral("0") : s;
}

class Helper {
public:
    Helper(LokSession &s, QString temp) : m_s(s), m_temp(std::move(temp)) {}

    QJsonObject handle(const QJsonObject &req) {
        const QString op = req.value(QStringLiteral("op")).toString();
        QJsonObject answer;
        std::string error;
        bool ok = false;
        if (op == QLatin1String("ping")) {
            answer[QStringLiteral("version")] = QString::fromStdString(m_s.version());
            ok = true;
        } else if (op == QLatin1String("load")) {
            ok = load(req, &answer, &error);
        } else if (op == QLatin1String("close")) {
            m_s.close();
            ok = true;
        } else if (!m_s.isOpen()) {
            error = "нет открытого документа";
        } else if (op == QLatin1String("replaceAll")) {
            ok = replaceAll(req.value(QStringLiteral("pairs")).toArray(), &error);
        } else if (op == QLatin1String("saveAs")) {
            ok = saveAs(req, &error);
        } else if (op == QLatin1String("bodyHtml") || op == QLatin1String("replaceBody")) {
            ok = body(op == QLatin1String("replaceBody"), req, &answer, &error);
        } else if (op == QLatin1String("setPage")) {
            ok = setPage(req, &error);
        } else if (m_s.docType() != LokSession::DocType::Spreadsheet) {
            error = "операция только для таблиц: " + op.toStdString();
        } else if (op == QLatin1String("sheet")) {
            SheetText::Grid grid;
            ok = readSheet(&grid, &error);
            if (ok) {
                QJsonArray rows;
                for (const QStringList &r : grid)
                    rows.append(QJsonArray::fromStringList(r));
                answer[QStringLiteral("rows")] = rows;
            }
        } else if (op == QLatin1String("findCell")) {
            ok = findCell(req, &answer, &error);
        } else if (op == QLatin1String("goTo")) {
            ok = goTo(req.value(QStringLiteral("range")).toString(), &error);
        } else if (op == QLatin1String("insertRows") || op == QLatin1String("deleteRows")) {
            ok = rows(op == QLatin1String("insertRows"), req, &error);
        } else if (op == QLatin1String("fitRows")) {
            ok = fitRows(req.value(QStringLiteral("ranges")).toArray(), &error);
        } else if (op == QLatin1String("copy") || op == QLatin1String("paste")) {
            ok = goTo(req.value(QStringLiteral("range")).toString(), &error) &&
                 m_s.uno(op == QLatin1String("copy") ? ".uno:Copy" : ".uno:Paste", "", kStep, &error);
        } else if (op == QLatin1String("enter")) {
            ok = enterCells(req.value(QStringLiteral("cells")).toArray(), &error);
        } else if (op == QLatin1String("insertImage")) {
            ok = insertImage(req, &error);
        } else if (op == QLatin1String("keepTogether")) {
            ok = PageKeeping::run(m_s, m_temp, req, &answer, &error);
        } else {
            error = "неизвестная операция: " + op.toStdString();
        }
        answer[QStringLiteral("ok")] = ok;
        if (!ok)
            answer[QStringLiteral("error")] = QString::fromStdString(error);
        return answer;
    }

private:
    static constexpr int kStep = 20000; // time limit of one engine command, ms
    static constexpr const char *kSylkType = "application/x-openoffice-sylk;windows_formatname=\"Sylk\"";

    bool load(const QJsonObject &req, QJsonObject *answer, std::string *error) {
        const QString path = req.value(QStringLiteral("path")).toString();
        if (!QFileInfo::exists(path)) {
            *error = "файл не найден: " + path.toStdString();
            return false;
        }
        if (!m_s.load(toUrl(path), error))
            return false;
        static const char *names[] = {"none", "text", "spreadsheet", "presentation", "drawing", "other"};
        (*answer)[QStringLiteral("type")] = QLatin1String(names[static_cast<int>(m_s.docType())]);
        return true;
    }

    bool replaceAll(const QJsonArray &pairs, std::string *error) {
        for (const QJsonValue &p : pairs) {
            const QJsonArray pair = p.toArray();
            QJsonObject args;
            auto put = [&args](const char *name, const char *type, const QJsonValue &value) {
                args[QLatin1String(name)] = QJsonObject{{QStringLiteral("type"), QLatin1String(type)},
                                                        {QStringLiteral("value"), value}};
            };
            put("SearchItem.SearchString", "string", pair.at(0).toString());
            put("SearchItem.ReplaceString", "string", pair.at(1).toString());
            put("SearchItem.Command", "long", 3); // replace all
            put("SearchItem.AlgorithmType", "short", 0);
            put("SearchItem.Backward", "boolean", false);
            const QByteArray json = QJsonDocument(args).toJson(QJsonDocument::Compact);
            if (!m_s.uno(".uno:ExecuteSearch", json.toStdString(), kStep, error))
                return false;
        }
        return true;
    }

    bool saveAs(const QJsonObject &req, std::string *error) {
        const QString path = req.value(QStringLiteral("path")).toString();
        const QString format = req.value(QStringLiteral("format")).toString();
        std::string options;
        if (format == QLatin1String("csv"))
            options = kCsvOptions;
        else if (format == QLatin1String("txt") && m_s.docType() == LokSession::DocType::Text)
            options = "UTF8,LF";
        QFile::remove(path);
        return m_s.saveAs(toUrl(path), format.toStdString(), options, error);
    }

    // The body of a text document as HTML (headers, footers and page setup stay apart), or the body
    // replaced by the HTML given, with the document's page styles, headers and footers kept.
    bool body(bool replace, const QJsonObject &req, QJsonObject *answer, std::string *error) {
        if (m_s.docType() != LokSession::DocType::Text) {
            *error = "операция только для текстовых документов";
            return false;
        }
        if (!m_s.selectBody(error))
            return false;
        if (replace) {
            // The old body goes first, and with it the direct formatting of its first paragraph. The
            // paragraph left behind takes in the first pasted paragraph without that paragraph's own
            // looks (alignment, spacing): a paragraph of one sign goes first instead, then the sign and
            // its paragraph are deleted, and the next paragraph keeps its looks.
            QString html = req.value(QStringLiteral("html")).toString();
            static const QRegularExpression body(QStringLiteral("<body[^>]*>"),
                                                 QRegularExpression::CaseInsensitiveOption);
            const QRegularExpressionMatch m = body.match(html);
            html.insert(m.hasMatch() ? m.capturedEnd() : 0, QStringLiteral("<p>§</p>"));
            return m_s.uno(".uno:Delete", "", kStep, error) &&
                   m_s.uno(".uno:ResetAttributes", "", kStep, error) &&
                   m_s.paste("text/html", html.toUtf8().toStdString(), error) &&
                   m_s.uno(".uno:GoToStartOfDoc", "", kStep, error) &&
                   m_s.uno(".uno:EndOfParaSel", "", kStep, error) &&
                   m_s.uno(".uno:Delete", "", kStep, error) && m_s.uno(".uno:Delete", "", kStep, error);
        }
        std::string html;
        if (!m_s.selection("text/html", &html, error))
            return false;
        (*answer)[QStringLiteral("html")] = QString::fromStdString(html);
        return true;
    }

    // The page style under the cursor (the first page's): size and orientation, margins, in
    // hundredths of a millimetre; what the request leaves at 0 or below 0 stays as it is.
    bool setPage(const QJsonObject &req, std::string *error) {
        if (m_s.docType() != LokSession::DocType::Text) {
            *error = "операция только для текстовых документов";
            return false;
        }
        const auto number = [&req](const char *key) { return req.value(QLatin1String(key)).toInt(-1); };
        const auto args = [](std::initializer_list<std::pair<const char *, QJsonValue>> list) {
            QJsonObject o;
            for (const auto &p : list) {
                const char *type = p.second.isBool() ? "boolean" : "long";
                o[QLatin1String(p.first)] = QJsonObject{{QStringLiteral("type"), QLatin1String(type)},
                                                        {QStringLiteral("value"), p.second}};
            }
            return QJsonDocument(o).toJson(QJsonDocument::Compact).toStdString();
        };
        if (number("width") > 0 && number("height") > 0) {
            const bool landscape = req.value(QStringLiteral("landscape")).toBool();
            if (!m_s.uno(".uno:AttributePage", args({{"AttributePage.Landscape", landscape}}), kStep,
                         error) ||
                !m_s.uno(".uno:AttributePageSize",
                         args({{"AttributePageSize.Width", number("width")},
                               {"AttributePageSize.Height", number("height")}}),
                         kStep, error))
                return false;
        }
        if (number("left") >= 0 && number("right") >= 0 &&
            !m_s.uno(".uno:PageLRMargin",
                     args({{"PageLRMargin.Left", number("left")}, {"PageLRMargin.Right", number("right")}}),
                     kStep, error))
            return false;
        if (number("top") >= 0 && number("bottom") >= 0 &&
            !m_s.uno(".uno:PageULMargin",
                     args({{"PageULMargin.Upper", number("top")}, {"PageULMargin.Lower", number("bottom")}}),
                     kStep, error))
            return false;
        return true;
    }

    // Comma separated, quoted by '"', UTF-8, cells as shown.
    static constexpr const char *kCsvOptions = "44,34,76,1,,0,false,true,true,false,false";

    bool readSheet(SheetText::Grid *grid, std::string *error) {
        const QString path = QDir(m_temp).filePath(QStringLiteral("sheet-%1.csv").arg(::getpid()));
        QFile::remove(path);
        if (!m_s.saveAs(toUrl(path), "csv", kCsvOptions, error))
            return false;
        QFile f(path);
        if (!f.open(QIODevice::ReadOnly)) {
            *error = "не читается текст листа";
            return false;
        }
        *grid = SheetText::parseCsv(QString::fromUtf8(f.readAll()));
        f.close();
        QFile::remove(path);
        return true;
    }

    bool findCell(const QJsonObject &req, QJsonObject *answer, std::string *error) {
        SheetText::Grid grid;
        if (!readSheet(&grid, error))
            return false;
        int row = 0, column = 0;
        const bool found = SheetText::findCell(grid, req.value(QStringLiteral("text")).toString(),
                                               req.value(QStringLiteral("exact")).toBool(), &row, &column);
        (*answer)[QStringLiteral("found")] = found;
        if (found) {
            (*answer)[QStringLiteral("cell")] = SheetText::cellName(row, column);
            (*answer)[QStringLiteral("row")] = row + 1;
            (*answer)[QStringLiteral("column")] = column + 1;
        }
        return true;
    }

    bool goTo(const QString &range, std::string *error) {
        if (range.isEmpty()) {
            *error = "не указана ячейка";
            return false;
        }
        return m_s.uno(".uno:GoToCell", stringArg("ToPoint", range).toStdString(), kStep, error);
    }

    // Rows are counted from 1. Insertion puts count rows above row; Calc moves the rows below,
    // merged cells included.
    bool rows(bool insert, const QJsonObject &req, std::string *error) {
        const int row = req.value(QStringLiteral("row")).toInt();
        const int count = req.value(QStringLiteral("count")).toInt();
        if (row < 1 || count < 1) {
            *error = "неверные строки";
            return false;
        }
        return goTo(SheetText::rangeName(row - 1, 0, row + count - 2, 0), error) &&
               m_s.uno(insert ? ".uno:InsertRows" : ".uno:DeleteRows", "", kStep, error);
    }

    // Each range [first, count] of rows (from 1) gets the height its contents need: rows read from
    // ".xls" keep the heights the file gives them, which fit the placeholders rather than the values.
    bool fitRows(const QJsonArray &ranges, std::string *error) {
        for (const QJsonValue &v : ranges) {
            const QJsonArray r = v.toArray();
            const int first = r.at(0).toInt();
            const int count = r.at(1).toInt();
            if (first < 1 || count < 1)
                continue;
            if (!goTo(SheetText::rangeName(first - 1, 0, first + count - 2, 0), error) ||
                !m_s.uno(".uno:SetOptimalRowHeight",
                         R"({"aExtraHeight":{"type":"unsigned short","value":0}})", kStep, error))
                return false;
        }
        return true;
    }

    // One cell of an "enter" request.
    struct Entry {
        QString cell;
        QString type;
        QString text; // as typed: a number in the Russian form, a formula, a text
        double number = 0;
    };

    static Entry entryOf(const QJsonObject &c) {
        Entry e{c.value(QStringLiteral("cell")).toString(),
                c.value(QStringLiteral("type")).toString(),
                {},
                c.value(QStringLiteral("value")).toDouble()};
        e.text = e.type == QLatin1String("number") ? numberText(c.value(QStringLiteral("value")).toDouble())
                                                   : c.value(QStringLiteral("value")).toString();
        return e;
    }

    // A text a block cannot carry as it is (a block is lines of cells, each text in quotes, and the
    // engine reads a line up to 64 KB of UTF-8): such a cell is entered alone.
    static bool enteredAlone(const QString &text) {
        if (text.size() > 16000)
            return true;
        for (QChar c : text) {
            if (c.unicode() < 0x20)
                return true;
        }
        return text.startsWith(u'"') || text.startsWith(u'\'');
    }

    bool enterOne(const Entry &e, std::string *error) {
        if (!goTo(e.cell, error))
            return false;
        if (e.type == QLatin1String("text")) {
            if (e.text.isEmpty())
                return m_s.uno(".uno:ClearContents", "", kStep, error);
            if (mayParseAsNonText(e.text) && !setTextFormat(error))
                return false;
        }
        return m_s.uno(".uno:EnterString", stringArg("StringName", e.text).toStdString(), kStep, error);
    }

    // The selection gets the built-in text format "@" (100): what is entered there stays a text.
    bool setTextFormat(std::string *error) {
        return m_s.uno(".uno:NumberFormatValue", R"({"NumberFormatValue":{"type":"long","value":100}})",
                       kStep, error);
    }

    // Cells are written by blocks: the cells to clear are cleared by rectangles, and each rectangle of
    // values is pasted at once in the symbolic link format, where a text is set as a text whatever it
    // looks like ("1-2", "01.02", "007", "=A1") and a number as a number, the cells' formats kept.
    // Two engine commands a rectangle instead of two or three a cell. A cell named twice takes its last
    // value. Formulas and cells that cannot go in a block (a text with line breaks, a name other than
    // "B5") are entered one by one, as typed.
    static QString blockText(const SheetText::Block &b, const std::map<std::pair<int, int>, Entry> &values) {
        QString sylk = QStringLiteral("ID;PCALCOOO32\n");
        for (int r = b.firstRow; r <= b.lastRow; ++r) {
            for (int c = b.firstColumn; c <= b.lastColumn; ++c) {
                const Entry &e = values.at({r, c});
                sylk += QStringLiteral("C;Y%1;X%2;K").arg(r - b.firstRow + 1).arg(c - b.firstColumn + 1);
                if (e.type == QLatin1String("number"))
                    sylk += QString::number(e.number, 'g', 17);
                else
                    sylk += u'"' + QString(e.text).replace(u';', QStringLiteral(";;")) + u'"';
                sylk += u'\n';
            }
        }
        return sylk + QStringLiteral("E\n");
    }

    bool enterCells(const QJsonArray &cells, std::string *error) {
        using Pos = std::pair<int, int>; // row, column from 0
        std::map<Pos, Entry> values;
        std::set<Pos> clear;
        std::vector<Entry> single;
        for (const QJsonValue &v : cells) {
            Entry e = entryOf(v.toObject());
            int row = 0, column = 0;
            const bool text = e.type == QLatin1String("text");
            const bool named = SheetText::parseCellName(e.cell, &row, &column);
            const Pos pos{row, column};
            if (named) {
                clear.erase(pos);
                values.erase(pos);
            }
            single.erase(std::remove_if(single.begin(), single.end(),
                                        [&e](const Entry &s) { return s.cell == e.cell; }),
                         single.end());
            if (!named || e.type == QLatin1String("formula") || enteredAlone(e.text)) {
                single.push_back(e);
                continue;
            }
            if (text && e.text.isEmpty()) {
                clear.insert(pos);
                continue;
            }
            values.emplace(pos, std::move(e));
        }
        std::set<Pos> filled;
        for (const auto &v : values)
            filled.insert(v.first);
        for (const SheetText::Block &b : SheetText::blocksOf(clear)) {
            if (!goTo(b.name(), error) || !m_s.uno(".uno:ClearContents", "", kStep, error))
                return false;
        }
        for (const SheetText::Block &b : SheetText::blocksOf(filled)) {
            if (!goTo(SheetText::cellName(b.firstRow, b.firstColumn), error) ||
                !m_s.setClipboard(kSylkType, blockText(b, values).toUtf8().toStdString(), error) ||
                !m_s.uno(".uno:Paste", "", kStep, error))
                return false;
        }
        for (const Entry &e : single) {
            if (!enterOne(e, error))
                return false;
        }
        return true;
    }

    // A picture from a file with its top left corner at the cell, in the size its file gives
    // (pixels and dots per inch).
    bool insertImage(const QJsonObject &req, std::string *error) {
        const QString path = req.value(QStringLiteral("path")).toString();
        if (!QFileInfo::exists(path)) {
            *error = "файл не найден: " + path.toStdString();
            return false;
        }
        return goTo(req.value(QStringLiteral("cell")).toString(), error) &&
               m_s.uno(".uno:InsertGraphic",
                       stringArg("FileName", QString::fromStdString(toUrl(path))).toStdString(), kStep,
                       error);
    }

    LokSession &m_s;
    QString m_temp;
};

// The profile gets the settings the filling relies on (EngineProfile), written whole under another
// name and then renamed, so that the engine never reads half a file.
void prepareProfile(const QString &profileDir) {
    const QString userDir = QDir(profileDir).filePath(QStringLiteral("user"));
    const QString file = QDir(userDir).filePath(QStringLiteral("registrymodifications.xcu"));
    QDir().mkpath(userDir);
    QByteArray xcu;
    QFile in(file);
    if (in.open(QIODevice::ReadOnly)) {
        constexpr qint64 kMostBytes = 16 * 1024 * 1024; // the engine's own file stays far below it
        if (in.size() > kMostBytes)
            return;
        xcu = in.readAll();
        in.close();
    }
    const QByteArray settled = EngineProfile::settled(xcu);
    if (settled == xcu)
        return;
    const QString temp = file + QStringLiteral(".virn");
    QFile out(temp);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(settled) != settled.size()) {
        out.close();
        QFile::remove(temp);
        return;
    }
    out.close();
    ::rename(QFile::encodeName(temp).constData(), QFile::encodeName(file).constData());
}

} // namespace

int main(int argc, char **argv) {
    // Dies with the program that started it.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() == 1)
        return 2;
    // The engine prints to stdout now and then: answers go to a private copy of stdout, and
    // everything else written to stdout lands on stderr.
    g_answerFd = dup(STDOUT_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    setenv("LC_ALL", "C.UTF-8", 1); // the engine's own texts and file names in UTF-8

    QString install = QStringLiteral("/usr/lib/libreoffice/program");
    QString profile;
    QString temp = QDir::tempPath();
    QString engineTemp;
    long memoryMb = 0;
    for (int i = 1; i + 1 < argc; i += 2) {
        const QString key = QString::fromLocal8Bit(argv[i]);
        const QString value = QString::fromUtf8(argv[i + 1]);
        if (key == QLatin1String("--install"))
            install = value;
        else if (key == QLatin1String("--profile"))
            profile = value;
        else if (key == QLatin1String("--temp"))
            temp = value;
        else if (key == QLatin1String("--engine-temp"))
            engineTemp = value;
        else if (key == QLatin1String("--memory-mb"))
            memoryMb = value.toLong();
    }
    if (memoryMb > 0) {
        const rlim_t bytes = static_cast<rlim_t>(memoryMb) * 1024 * 1024;
        rlimit limit{bytes, bytes};
        setrlimit(RLIMIT_AS, &limit);
    }
    // The engine makes folders of its own (lu*.tmp) in the temporary folder: a private one, which the
    // program removes, instead of the system's.
    if (!engineTemp.isEmpty()) {
        QDir().mkpath(engineTemp);
        setenv("TMPDIR", QFile::encodeName(engineTemp).constData(), 1);
    }
    if (profile.isEmpty()) {
        writeLine({{QStringLiteral("event"), QStringLiteral("fatal")},
                   {QStringLiteral("error"), QStringLiteral("не указана папка профиля")}});
        return 2;
    }
    QDir().mkpath(profile);
    QDir().mkpath(temp);
    prepareProfile(profile);

    LokSession session;
    std::string error;
    if (!session.init(install.toStdString(), toUrl(profile), &error)) {
        writeLine({{QStringLiteral("event"), QStringLiteral("fatal")},
                   {QStringLiteral("error"), QString::fromStdString(error)}});
        _exit(2);
    }
    writeLine({{QStringLiteral("event"), QStringLiteral("ready")},
               {QStringLiteral("version"), QString::fromStdString(session.version())}});

    Helper helper(session, temp);
    // VIRN_OFFICE_TRACE=FILE: where each request's time goes (see the top of this file).
    std::FILE *trace = nullptr;
    if (const char *tracePath = getenv("VIRN_OFFICE_TRACE"))
        trace = std::fopen(tracePath, "a");
    std::string line;
    while (std::getline(std::cin, line)) {
        const auto began = std::chrono::steady_clock::now();
        const std::clock_t cpuBegan = std::clock();
        QJsonParseError parseError;
        const QJsonDocument doc = QJsonDocument::fromJson(QByteArray::fromStdString(line), &parseError);
        QJsonObject answer;
        if (!doc.isObject()) {
            answer = {
                {QStringLiteral("ok"), false},
                {QStringLiteral("error"), QStringLiteral("запрос не разобран: ") + parseError.errorString()}};
        } else {
            answer = helper.handle(doc.object());
            answer[QStringLiteral("id")] = doc.object().value(QStringLiteral("id"));
        }
        writeLine(answer);
        if (trace) {
            const double ms =
                std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - began).count();
            std::fprintf(trace, "%d %s %.1f %.1f\n", int(::getpid()),
                         doc.object().value(QStringLiteral("op")).toString().toUtf8().constData(), ms,
                         1000.0 * double(std::clock() - cpuBegan) / CLOCKS_PER_SEC);
            std::fflush(trace);
        }
    }
    // stdin closed: the program is done with the engine. Ending without the engine's own shutdown,
    // which can hang.
    session.close();
    _exit(0);
}
