#include "EngineProfile.h"

#include <QRegularExpression>

namespace EngineProfile {

namespace {

const QByteArray kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         "<oor:items xmlns:oor=\"http://openoffice.org/2001/registry\" "
                         "xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
                         "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">\n";
const QByteArray kEnd = "</oor:items>";

const QByteArray kNoPasteQuestion =
    "<item oor:path=\"/org.openoffice.Office.Calc/Input\"><prop oor:name=\"ReplaceCellsWarning\" "
    "oor:op=\"fuse\"><value>false</value></prop></item>\n";

// The sidebar's window (10336) of a module, hidden.
QByteArray hiddenSidebar(const char *module) {
    return QByteArray("<item oor:path=\"/org.openoffice.Office.Views/Windows\"><node oor:name=\"") + module +
           "/10336\" oor:op=\"replace\"><prop oor:name=\"Visible\" "
           "oor:op=\"fuse\"><value>false</value></prop>"
           "<node oor:name=\"UserData\"><prop oor:name=\"Data\" oor:op=\"fuse\" oor:type=\"xs:string\">"
           "<value>V2,H,0</value></prop></node><prop oor:name=\"WindowState\" oor:op=\"fuse\"><value></value>"
           "</prop></node></item>\n";
}

// The last word of the file on the question, or on the module's sidebar: set as wanted.
bool pasteQuestionOff(const QString &text) {
    static const QRegularExpression setting(
        QStringLiteral(R"(ReplaceCellsWarning" oor:op="fuse"><value>(true|false)<)"));
    QString last;
    for (auto it = setting.globalMatch(text); it.hasNext();)
        last = it.next().captured(1);
    return last == QLatin1String("false");
}

bool sidebarHidden(const QString &text, const QString &module) {
    // The window's data in either form the engine writes: a node of Windows, or a path naming it.
    const QRegularExpression data(QRegularExpression::escape(module + QStringLiteral("/10336")) +
                                  QStringLiteral(R"([^\n]*?<value>V2,([VH]))"));
    QString last;
    for (auto it = data.globalMatch(text); it.hasNext();)
        last = it.next().captured(1);
    return last == QLatin1String("H");
}

} // namespace

QByteArray settled(const QByteArray &xcu) {
    const QString text = QString::fromUtf8(xcu);
    QByteArray missing;
    if (!pasteQuestionOff(text))
        missing += kNoPasteQuestion;
    for (const char *module : {"scalc", "swriter"})
        if (!sidebarHidden(text, QLatin1String(module)))
            missing += hiddenSidebar(module);
    if (missing.isEmpty())
        return xcu;
    const qsizetype end = xcu.lastIndexOf(kEnd);
    if (xcu.trimmed().isEmpty() || end < 0)
        return kHead + missing + kEnd + '\n'; // a new profile, or a file the engine could not read
    return xcu.left(end) + missing + xcu.mid(end);
}

} // namespace EngineProfile
