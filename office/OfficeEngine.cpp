#include "OfficeEngine.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLockFile>
#include <QProcess>
#include <cstdio>

#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace {

constexpr int kStartLimitMs = 90000; // a fresh profile takes a few seconds; slow disks more
constexpr int kDefaultLimitMs = 30000;
// The longest reply the helper may send: a sheet of 100,000 rows or a contract with its pictures is a
// few tens of MB; a longer line means a document the program cannot hold, and reading on would take
// the machine's memory.
constexpr qsizetype kMaxReplyBytes = 256 * 1024 * 1024;
constexpr int kSaveLimitMs = 120000;
// A start and a load take about 0.5 GB of address space; a document of 100 000 rows about 1.5 GB.
constexpr int kDefaultMemoryMb = 3072;

QString envPath(const char *name) {
    return QString::fromLocal8Bit(qgetenv(name));
}

} // namespace

QString OfficeEngine::helperPath() {
    const QString fromEnv = envPath("VIRN_OFFICE_HELPER");
    if (!fromEnv.isEmpty())
        return fromEnv;
    const QString dir =
        QCoreApplication::instance() ? QCoreApplication::applicationDirPath() : QDir::currentPath();
    return QDir(dir).filePath(QStringLiteral("virn-office"));
}

QString OfficeEngine::installDir() {
    const QString fromEnv = envPath("VIRN_LIBREOFFICE_DIR");
    return fromEnv.isEmpty() ? QStringLiteral("/usr/lib/libreoffice/program") : fromEnv;
}

QString OfficeEngine::missingEngineMessage() {
    return QStringLiteral("Не найден LibreOffice, через который программа заполняет шаблоны, печатает и "
                          "выгружает документы (PDF, Excel, Word).\nУстановите пакеты libreoffice-writer и "
                          "libreoffice-calc, например командой:\nsudo apt install libreoffice-writer "
                          "libreoffice-calc\nОстальная работа с программой от этого не зависит.");
}

OfficeEngine::OfficeEngine(const QString &dataFolder, int lane) {
    QString base = dataFolder.isEmpty()
                       ? QDir::temp().filePath(QStringLiteral("virn-office-%1").arg(getuid()))
                       : QDir(dataFolder).filePath(QStringLiteral("Temp/virn-office"));
    QDir().mkpath(base);
    // Scratch folders and private profiles of programs that ended without tidying up.
    for (const QFileInfo &entry : QDir(base).entryInfoList(
             {QStringLiteral("work-*"), QStringLiteral("profile-*")}, QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool ok = false;
        const qint64 pid = entry.fileName().section(u'-', 1, 1).toLongLong(&ok);
        if (ok && pid > 0 && ::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH)
            QDir(entry.filePath()).removeRecursively();
    }
    // Each engine of the program has scratch folders of its own (several may run at once).
    static std::atomic<int> engines{0};
    const int serial = engines++;
    const qint64 pid = QCoreApplication::applicationPid();
    m_tempDir = QDir(base).filePath(serial == 0 ? QStringLiteral("work-%1").arg(pid)
                                                : QStringLiteral("work-%1-%2").arg(pid).arg(serial));
    // One profile a lane is reused so that later starts are quick; a second engine of the lane (another
    // program running on the same data folder) gets a profile of its own for as long as it runs.
    const QString shared = lane == 0 ? QStringLiteral("profile") : QStringLiteral("profile.%1").arg(lane);
    m_lock = std::make_unique<QLockFile>(QDir(base).filePath(shared + QStringLiteral(".lock")));
    m_lock->setStaleLockTime(0);
    if (m_lock->tryLock(100)) {
        m_profileDir = QDir(base).filePath(shared);
    } else {
        m_lock.reset();
        m_privateProfile = true;
        m_profileDir =
            QDir(base).filePath(serial == 0 ? QStringLiteral("profile-%1").arg(pid)
                                            : QStringLiteral("profile-%1-%2").arg(pid).arg(serial));
    }
}

int OfficeEngine::memoryLimitMb() {
    bool ok = false;
    const int mb = qEnvironmentVariableIntValue("VIRN_OFFICE_MEMORY_MB", &ok);
    return ok && mb > 0 ? mb : kDefaultMemoryMb;
}

QString OfficeEngine::cutText(const QString &text) {
    if (text.size() <= kMaxTextChars)
        return text;
    return text.left(kMaxTextChars - 1) + QChar(0x2026);
}

QString OfficeEngine::engineTempDir() const {
    return QDir(m_tempDir).filePath(QStringLiteral("engine"));
}

void OfficeEngine::setBudget(int ms, std::shared_ptr<const std::atomic<bool>> cancel) {
    m_budget = QDeadlineTimer(ms);
    m_budgetMs = ms;
    m_cancel = std::move(cancel);
}

void OfficeEngine::clearBudget() {
    m_budget = QDeadlineTimer(QDeadlineTimer::Forever);
    m_budgetMs = 0;
    m_cancel.reset();
}

OfficeEngine::~OfficeEngine() {
    stop();
    QDir(m_tempDir).removeRecursively();
    if (m_privateProfile)
        QDir(m_profileDir).removeRecursively();
}

bool OfficeEngine::available(QString *why) {
    QString reason;
    const QDir install(installDir());
    if (!install.exists(QStringLiteral("libmergedlo.so")) &&
        !install.exists(QStringLiteral("libsofficeapp.so")))
        reason = missingEngineMessage();
    else if (!QFileInfo(helperPath()).isExecutable())
        reason = QStringLiteral("Не найдена программа офисного модуля %1: переустановите программу.")
                     .arg(QDir::toNativeSeparators(helperPath()));
    if (why)
        *why = reason;
    return reason.isEmpty();
}

bool OfficeEngine::running() const {
    return m_proc && m_proc->state() == QProcess::Running;
}

qint64 OfficeEngine::processId() const {
    return running() ? m_proc->processId() : 0;
}

bool OfficeEngine::fail(const QString &message) {
    m_error = message;
    return false;
}

void OfficeEngine::kill() {
    if (!m_proc)
        return;
    m_proc->kill();
    m_proc->waitForFinished(5000);
    m_proc.reset();
    m_buffer.clear();
    QDir(engineTempDir()).removeRecursively();
}

void OfficeEngine::stop() {
    if (!m_proc)
        return;
    // Closing stdin tells the helper to end; it is killed when it does not.
    m_proc->closeWriteChannel();
    if (!m_proc->waitForFinished(3000))
        kill();
    m_proc.reset();
    m_buffer.clear();
    // What the engine left in its temporary folder goes with it.
    QDir(engineTempDir()).removeRecursively();
}

bool OfficeEngine::start() {
    if (running())
        return true;
    kill();
    QString why;
    if (!available(&why))
        return fail(why);
    QDir().mkpath(m_tempDir);
    m_proc = std::make_unique<QProcess>();
    m_proc->setProgram(helperPath());
    m_proc->setArguments({QStringLiteral("--install"), installDir(), QStringLiteral("--profile"),
                          m_profileDir, QStringLiteral("--temp"), m_tempDir, QStringLiteral("--engine-temp"),
                          engineTempDir(), QStringLiteral("--memory-mb"), QString::number(memoryLimitMb())});
    if (qEnvironmentVariableIsSet("VIRN_OFFICE_DEBUG"))
        m_proc->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    else
        m_proc->setStandardErrorFile(QProcess::nullDevice());
    m_proc->start();
    if (!m_proc->waitForStarted(10000)) {
        kill();
        return fail(QStringLiteral("Не удалось запустить офисный модуль %1.").arg(helperPath()));
    }
    ++m_starts;
    QByteArray line;
    if (!readLine(kStartLimitMs, &line))
        return false;
    const QJsonObject hello = QJsonDocument::fromJson(line).object();
    if (hello.value(QStringLiteral("event")).toString() != QLatin1String("ready")) {
        const QString detail = hello.value(QStringLiteral("error")).toString();
        kill();
        if (detail == QLatin1String("no-libreoffice"))
            return fail(missingEngineMessage());
        return fail(QStringLiteral("Офисный модуль не запустился: %1").arg(detail));
    }
    return true;
}

bool OfficeEngine::readLine(int timeoutMs, QByteArray *line) {
    if (m_limitMs > 0)
        timeoutMs = qMin(timeoutMs, m_limitMs);
    QElapsedTimer clock;
    clock.start();
    qsizetype searched = 0; // the end of a line is looked for in what came since, not the whole reply again
    for (;;) {
        const qsizetype eol = m_buffer.indexOf('\n', searched);
        if (eol >= 0) {
            *line = m_buffer.left(eol);
            m_buffer.remove(0, eol + 1);
            return true;
        }
        searched = m_buffer.size();
        if (m_buffer.size() > kMaxReplyBytes) {
            kill();
            return fail(QStringLiteral("Ответ офисного модуля длиннее %1 МБ: документ слишком велик, работа "
                                       "остановлена.")
                            .arg(kMaxReplyBytes / (1024 * 1024)));
        }
        const qint64 left = timeoutMs - clock.elapsed();
        if (m_proc->state() != QProcess::Running && m_proc->bytesAvailable() == 0) {
            kill();
            return fail(QStringLiteral("Офисный модуль завершился аварийно; он будет перезапущен при "
                                       "следующей операции."));
        }
        if (cancelled()) {
            kill();
            return fail(QStringLiteral("Работа офисного модуля отменена."));
        }
        if (m_budget.hasExpired()) {
            kill();
            return fail(QStringLiteral("Документ не сделан за отведённые ему %1 с: работа остановлена.")
                            .arg((m_budgetMs + 999) / 1000));
        }
        if (left <= 0) {
            kill();
            return fail(QStringLiteral("Офисный модуль не ответил за %1 с и перезапущен. Повторите "
                                       "операцию.")
                            .arg((timeoutMs + 999) / 1000));
        }
        // Short waits: a cancel or the end of the budget is seen within a tenth of a second.
        qint64 slice = qMin<qint64>(left, 100);
        if (!m_budget.isForever())
            slice = qMin<qint64>(slice, qMax<qint64>(1, m_budget.remainingTime()));
        if (m_proc->waitForReadyRead(static_cast<int>(slice)) || m_proc->bytesAvailable())
            m_buffer += m_proc->readAllStandardOutput();
    }
}

bool OfficeEngine::request(QJsonObject req, int timeoutMs, QJsonObject *answer) {
    if (!start())
        return false;
    const qint64 id = m_nextId++;
    req[QStringLiteral("id")] = id;
    QByteArray line = QJsonDocument(req).toJson(QJsonDocument::Compact);
    line += '\n';
    if (m_proc->write(line) != line.size()) {
        kill();
        return fail(QStringLiteral("Офисный модуль не принимает запросы; он будет перезапущен."));
    }
    for (;;) {
        QByteArray reply;
        if (!readLine(timeoutMs, &reply))
            return false;
        const QJsonObject o = QJsonDocument::fromJson(reply).object();
        if (o.value(QStringLiteral("id")).toInteger() != id)
            continue; // the late answer of an abandoned request
        if (!o.value(QStringLiteral("ok")).toBool())
            return fail(QStringLiteral("Ошибка офисного модуля: %1")
                            .arg(o.value(QStringLiteral("error")).toString()));
        if (answer)
            *answer = o;
        m_error.clear();
        return true;
    }
}

bool OfficeEngine::load(const QString &path, QString *type) {
    QJsonObject answer;
    if (!request({{QStringLiteral("op"), QStringLiteral("load")},
                  {QStringLiteral("path"), QFileInfo(path).absoluteFilePath()}},
                 kLoadLimitMs, &answer))
        return false;
    if (type)
        *type = answer.value(QStringLiteral("type")).toString();
    return true;
}

bool OfficeEngine::replaceAll(const QVector<QPair<QString, QString>> &pairs) {
    QJsonArray list;
    for (const auto &p : pairs)
        list.append(QJsonArray{p.first, cutText(p.second)});
    return request({{QStringLiteral("op"), QStringLiteral("replaceAll")}, {QStringLiteral("pairs"), list}},
                   kDefaultLimitMs + 200 * static_cast<int>(pairs.size()));
}

bool OfficeEngine::saveAs(const QString &path, const QString &format) {
    return request({{QStringLiteral("op"), QStringLiteral("saveAs")},
                    {QStringLiteral("path"), QFileInfo(path).absoluteFilePath()},
                    {QStringLiteral("format"), format}},
                   kSaveLimitMs);
}

bool OfficeEngine::keepTogether(const QString &path, const SheetText::Grid &grid,
                                const QVector<int> &headings, int closingRow, int maxExports,
                                QVector<int> *breaks) {
    QJsonArray rows;
    for (int r : headings)
        rows.append(r);
    QJsonArray text;
    for (const QStringList &cells : grid)
        text.append(QJsonArray::fromStringList(cells));
    QJsonObject answer;
    if (!request({{QStringLiteral("op"), QStringLiteral("keepTogether")},
                  {QStringLiteral("path"), QFileInfo(path).absoluteFilePath()},
                  {QStringLiteral("rows"), text},
                  {QStringLiteral("headings"), rows},
                  {QStringLiteral("closing"), closingRow},
                  {QStringLiteral("exports"), maxExports}},
                 kSaveLimitMs * qMax(1, maxExports), &answer))
        return false;
    if (qEnvironmentVariableIsSet("VIRN_PAGES_TRACE"))
        fprintf(stderr, "keepTogether: %s\n",
                QJsonDocument(answer).toJson(QJsonDocument::Compact).constData());
    if (breaks) {
        breaks->clear();
        for (const QJsonValue &v : answer.value(QStringLiteral("breaks")).toArray())
            breaks->append(v.toInt());
    }
    return true;
}

bool OfficeEngine::bodyHtml(QString *html) {
    QJsonObject answer;
    if (!request({{QStringLiteral("op"), QStringLiteral("bodyHtml")}}, kDefaultLimitMs, &answer))
        return false;
    *html = answer.value(QStringLiteral("html")).toString();
    return true;
}

bool OfficeEngine::replaceBody(const QString &html) {
    return request({{QStringLiteral("op"), QStringLiteral("replaceBody")}, {QStringLiteral("html"), html}},
                   kLoadLimitMs);
}

bool OfficeEngine::setPage(const Page &page) {
    return request({{QStringLiteral("op"), QStringLiteral("setPage")},
                    {QStringLiteral("width"), page.width},
                    {QStringLiteral("height"), page.height},
                    {QStringLiteral("landscape"), page.landscape},
                    {QStringLiteral("left"), page.left},
                    {QStringLiteral("right"), page.right},
                    {QStringLiteral("top"), page.top},
                    {QStringLiteral("bottom"), page.bottom}},
                   kDefaultLimitMs);
}

bool OfficeEngine::close() {
    if (!running())
        return true; // nothing is open in a helper that is not running
    return request({{QStringLiteral("op"), QStringLiteral("close")}}, kDefaultLimitMs);
}

bool OfficeEngine::sheet(SheetText::Grid *grid) {
    QJsonObject answer;
    if (!request({{QStringLiteral("op"), QStringLiteral("sheet")}}, kDefaultLimitMs, &answer))
        return false;
    grid->clear();
    for (const QJsonValue &row : answer.value(QStringLiteral("rows")).toArray()) {
        QStringList cells;
        for (const QJsonValue &c : row.toArray())
            cells << c.toString();
        grid->append(cells);
    }
    return true;
}

bool OfficeEngine::findCell(const QString &text, bool exact, QString *cell) {
    QJsonObject answer;
    if (!request({{QStringLiteral("op"), QStringLiteral("findCell")},
                  {QStringLiteral("text"), text},
                  {QStringLiteral("exact"), exact}},
                 kDefaultLimitMs, &answer))
        return false;
    *cell = answer.value(QStringLiteral("found")).toBool() ? answer.value(QStringLiteral("cell")).toString()
                                                           : QString();
    return true;
}

bool OfficeEngine::goTo(const QString &range) {
    return request({{QStringLiteral("op"), QStringLiteral("goTo")}, {QStringLiteral("range"), range}},
                   kDefaultLimitMs);
}

bool OfficeEngine::insertRows(int row, int count) {
    return request({{QStringLiteral("op"), QStringLiteral("insertRows")},
                    {QStringLiteral("row"), row},
                    {QStringLiteral("count"), count}},
                   kDefaultLimitMs);
}

bool OfficeEngine::deleteRows(int row, int count) {
    return request({{QStringLiteral("op"), QStringLiteral("deleteRows")},
                    {QStringLiteral("row"), row},
                    {QStringLiteral("count"), count}},
                   kDefaultLimitMs);
}

bool OfficeEngine::fitRows(const QVector<QPair<int, int>> &ranges) {
    QJsonArray list;
    for (const auto &r : ranges)
        list.append(QJsonArray{r.first, r.second});
    return request({{QStringLiteral("op"), QStringLiteral("fitRows")}, {QStringLiteral("ranges"), list}},
                   kDefaultLimitMs + 20 * static_cast<int>(ranges.size()));
}

bool OfficeEngine::copy(const QString &range) {
    return request({{QStringLiteral("op"), QStringLiteral("copy")}, {QStringLiteral("range"), range}},
                   kDefaultLimitMs);
}

bool OfficeEngine::paste(const QString &range) {
    return request({{QStringLiteral("op"), QStringLiteral("paste")}, {QStringLiteral("range"), range}},
                   kDefaultLimitMs);
}

bool OfficeEngine::insertImage(const QString &cell, const QString &path) {
    return request({{QStringLiteral("op"), QStringLiteral("insertImage")},
                    {QStringLiteral("cell"), cell},
                    {QStringLiteral("path"), path}},
                   kDefaultLimitMs);
}

bool OfficeEngine::enter(const QVector<Input> &cells) {
    // Sent in parts, so that each request stays well inside its time limit.
    constexpr int kPart = 1000;
    for (int from = 0; from < cells.size(); from += kPart) {
        QJsonArray list;
        for (int i = from; i < qMin<int>(from + kPart, cells.size()); ++i) {
            const Input &in = cells.at(i);
            QJsonObject c{{QStringLiteral("cell"), in.cell}};
            switch (in.type) {
            case Input::Type::Number:
                c[QStringLiteral("type")] = QStringLiteral("number");
                c[QStringLiteral("value")] = in.number;
                break;
            case Input::Type::Formula:
                c[QStringLiteral("type")] = QStringLiteral("formula");
                c[QStringLiteral("value")] = cutText(in.text);
                break;
            case Input::Type::Text:
                c[QStringLiteral("type")] = QStringLiteral("text");
                c[QStringLiteral("value")] = cutText(in.text);
                break;
            }
            list.append(c);
        }
        if (!request({{QStringLiteral("op"), QStringLiteral("enter")}, {QStringLiteral("cells"), list}},
                     kDefaultLimitMs + 50 * static_cast<int>(list.size())))
            return false;
    }
    return true;
}
