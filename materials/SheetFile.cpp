#include "SheetFile.h"

#include "office/FlatOds.h"
#include "office/OfficeEngine.h"
#include "office/TemplatePackage.h"
#include "office/TemplateStructure.h"
#include "storage/FileKind.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QUuid>
#include <QXmlStreamWriter>

namespace SheetFile {

namespace {

bool fail(QString *error, const QString &text) {
    if (error)
        *error = text;
    return false;
}

void report(const Progress &progress, int value) {
    if (progress)
        progress(value);
}

QString shown(const QString &path) {
    return QDir::toNativeSeparators(path);
}

QString scratchName(const QString &dir, const QString &suffix) {
    return QDir(dir).filePath(
        QStringLiteral("sheet-%1.%2").arg(QUuid::createUuid().toString(QUuid::WithoutBraces), suffix));
}

// Removes a scratch file however the work ends.
struct Scratch {
    QString path;
    ~Scratch() {
        if (!path.isEmpty())
            QFile::remove(path);
    }
};

using FlatOds::kFo;
using FlatOds::kOffice;
using FlatOds::kStyle;
using FlatOds::kSvg;
using FlatOds::kTable;
using FlatOds::kText;

void textProperties(QXmlStreamWriter &x, const QString &font, bool bold) {
    x.writeEmptyElement(kStyle, QStringLiteral("text-properties"));
    if (!font.isEmpty()) {
        x.writeAttribute(kStyle, QStringLiteral("font-name"), font);
        x.writeAttribute(kFo, QStringLiteral("font-family"), font);
    }
    if (bold)
        x.writeAttribute(kFo, QStringLiteral("font-weight"), QStringLiteral("bold"));
}

void styles(QXmlStreamWriter &x, const Table &t) {
    if (!t.font.isEmpty()) {
        x.writeStartElement(kOffice, QStringLiteral("font-face-decls"));
        x.writeEmptyElement(kStyle, QStringLiteral("font-face"));
        x.writeAttribute(kStyle, QStringLiteral("name"), t.font);
        x.writeAttribute(kSvg, QStringLiteral("font-family"), QStringLiteral("'%1'").arg(t.font));
        x.writeEndElement();
        // Every cell in the font, including those the user adds later.
        x.writeStartElement(kOffice, QStringLiteral("styles"));
        x.writeStartElement(kStyle, QStringLiteral("default-style"));
        x.writeAttribute(kStyle, QStringLiteral("family"), QStringLiteral("table-cell"));
        textProperties(x, t.font, false);
        x.writeEndElement();
        x.writeStartElement(kStyle, QStringLiteral("style"));
        x.writeAttribute(kStyle, QStringLiteral("name"), QStringLiteral("Default"));
        x.writeAttribute(kStyle, QStringLiteral("family"), QStringLiteral("table-cell"));
        textProperties(x, t.font, false);
        x.writeEndElement();
        x.writeEndElement();
    }
    x.writeStartElement(kOffice, QStringLiteral("automatic-styles"));
    for (size_t c = 0; c < t.widthsCm.size(); ++c) {
        x.writeStartElement(kStyle, QStringLiteral("style"));
        x.writeAttribute(kStyle, QStringLiteral("name"), QStringLiteral("co%1").arg(c));
        x.writeAttribute(kStyle, QStringLiteral("family"), QStringLiteral("table-column"));
        x.writeEmptyElement(kStyle, QStringLiteral("table-column-properties"));
        x.writeAttribute(kStyle, QStringLiteral("column-width"), QStringLiteral("%1cm").arg(t.widthsCm[c]));
        x.writeEndElement();
    }
    x.writeStartElement(kStyle, QStringLiteral("style"));
    x.writeAttribute(kStyle, QStringLiteral("name"), QStringLiteral("ceTitle"));
    x.writeAttribute(kStyle, QStringLiteral("family"), QStringLiteral("table-cell"));
    textProperties(x, t.font, true);
    x.writeEndElement();
    x.writeStartElement(kStyle, QStringLiteral("style"));
    x.writeAttribute(kStyle, QStringLiteral("name"), QStringLiteral("ceText"));
    x.writeAttribute(kStyle, QStringLiteral("family"), QStringLiteral("table-cell"));
    textProperties(x, t.font, false);
    x.writeEndElement();
    x.writeEndElement();
}

} // namespace

QString cleanNumber(const QString &text) {
    const QString t = text.trimmed();
    if (t.isEmpty() || TextValues::parseAmount(t))
        return t;
    static const QRegularExpression currency(QStringLiteral("\\s*(₽|р\\.|руб\\.?|rub)\\s*$"),
                                             QRegularExpression::CaseInsensitiveOption);
    QString stripped = t;
    stripped.remove(currency);
    return !stripped.isEmpty() && TextValues::parseAmount(stripped) ? stripped.trimmed() : t;
}

bool checkFile(const QString &path, QString *error) {
    const QFileInfo info(path);
    const FileKind::Kind kind = FileKind::of(path);
    if (kind == FileKind::Kind::Missing)
        return fail(error, QStringLiteral("Файл %1 не найден.").arg(shown(path)));
    // A folder or a pipe is told as what it is (a pipe is never opened: reading it would wait for ever).
    if (kind != FileKind::Kind::File)
        return fail(error,
                    QStringLiteral("%1 не загружается: %2.").arg(shown(path), FileKind::problem(path)));
    if (info.size() == 0)
        return fail(error, QStringLiteral("Файл %1 пуст.").arg(shown(path)));
    if (info.size() > kMaxFileBytes)
        return fail(error, QStringLiteral("Файл %1 больше %2 МБ: такой файл не загружается.")
                               .arg(shown(path))
                               .arg(kMaxFileBytes / (1024 * 1024)));
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return fail(error,
                    QStringLiteral("Не удалось открыть файл %1: %2").arg(shown(path), f.errorString()));
    const QByteArray head = f.read(8);
    // ".xlsx" and ".ods" are ZIP packages, ".xls" an OLE compound file.
    const bool zip = head.startsWith("PK\x03\x04");
    const bool ole = head.startsWith("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
    if (!zip && !ole)
        return fail(error,
                    QStringLiteral("Файл %1 не является таблицей Excel или OpenOffice (.xls, .xlsx, .ods).")
                        .arg(shown(path)));
    f.close();
    // What the package or the compound file holds, before the engine, which trusts it, unpacks it: an
    // archive bomb or sector tables that point anywhere would keep it busy for minutes.
    const QString why =
        zip ? TemplatePackage::problem(path) : TemplateStructure::checkCompound(path, /*spreadsheet=*/true);
    if (!why.isEmpty())
        return fail(error, QStringLiteral("Файл %1 повреждён или опасен для открытия: %2 Файл не загружен.")
                               .arg(shown(path), why.endsWith(u'.') ? why : why + u'.'));
    return true;
}

bool readCells(OfficeEngine &engine, const QString &path, const QString &scratchDir, SheetText::Grid &cells,
               QString *error, const Progress &progress) {
    cells.clear();
    report(progress, 0);
    if (!checkFile(path, error))
        return false;
    QString type;
    report(progress, 5);
    if (!engine.load(path, &type)) {
        // A helper still running refused the file itself; a crash or a timeout stopped it and says so.
        if (engine.running())
            return fail(error,
                        QStringLiteral("Файл %1 повреждён или не является таблицей Excel или OpenOffice.")
                            .arg(shown(path)));
        return fail(error, QStringLiteral("Файл %1 не прочитан: %2").arg(shown(path), engine.error()));
    }
    auto closeEngine = qScopeGuard([&engine] { engine.close(); });
    if (type != QLatin1String("spreadsheet"))
        return fail(error,
                    QStringLiteral("Файл %1 не является таблицей Excel или OpenOffice.").arg(shown(path)));
    report(progress, 40);
    QDir().mkpath(scratchDir);
    Scratch csv{scratchName(scratchDir, QStringLiteral("csv"))};
    if (!engine.saveAs(csv.path, QStringLiteral("csv")))
        return fail(
            error, QStringLiteral("Не удалось прочитать лист файла %1: %2").arg(shown(path), engine.error()));
    report(progress, 65);
    QFile f(csv.path);
    if (!f.open(QIODevice::ReadOnly))
        return fail(error, QStringLiteral("Не удалось прочитать лист файла %1.").arg(shown(path)));
    if (f.size() > kMaxTextBytes)
        return fail(error,
                    QStringLiteral("Первый лист файла %1 больше %2 МБ текста: такой файл не загружается.")
                        .arg(shown(path))
                        .arg(kMaxTextBytes / (1024 * 1024)));
    const QString text = QString::fromUtf8(f.readAll());
    f.close();
    cells = SheetText::parseCsv(text);
    // A cell of megabytes would freeze every grid that shows it: such a file is refused, naming the cell.
    for (int r = 0; r < cells.size(); ++r) {
        for (int c = 0; c < cells.at(r).size(); ++c) {
            if (cells.at(r).at(c).size() > kMaxCellChars) {
                const QString cell = SheetText::cellName(r, c);
                cells.clear();
                return fail(error, QStringLiteral("В файле %1 ячейка %2 (строка %3) длиннее %4 знаков: такой "
                                                  "файл не загружается. Сократите текст ячейки.")
                                       .arg(shown(path), cell)
                                       .arg(r + 1)
                                       .arg(QLocale(QLocale::Russian).toString(kMaxCellChars)));
            }
        }
    }
    report(progress, 75);
    return true;
}

QByteArray flatOds(const Table &t) {
    QByteArray out;
    QXmlStreamWriter x(&out);
    FlatOds::startSpreadsheet(x);
    styles(x, t);
    x.writeStartElement(kOffice, QStringLiteral("body"));
    x.writeStartElement(kOffice, QStringLiteral("spreadsheet"));
    x.writeStartElement(kTable, QStringLiteral("table"));
    x.writeAttribute(kTable, QStringLiteral("name"), t.sheetName);
    const int columns = std::max<int>(t.titles.size(), static_cast<int>(t.widthsCm.size()));
    for (int c = 0; c < columns; ++c) {
        x.writeEmptyElement(kTable, QStringLiteral("table-column"));
        if (c < static_cast<int>(t.widthsCm.size()))
            x.writeAttribute(kTable, QStringLiteral("style-name"), QStringLiteral("co%1").arg(c));
    }
    auto cell = [&](const QString &value, const QString &style, bool number) {
        x.writeStartElement(kTable, QStringLiteral("table-cell"));
        x.writeAttribute(kTable, QStringLiteral("style-name"), style);
        const auto parsed = number ? TextValues::parseAmount(value) : std::nullopt;
        if (parsed) {
            // A number the spreadsheet can count with; shown as typed.
            x.writeAttribute(kOffice, QStringLiteral("value-type"), QStringLiteral("float"));
            x.writeAttribute(kOffice, QStringLiteral("value"), parsed->text().replace(u',', u'.'));
            x.writeTextElement(kText, QStringLiteral("p"), value.trimmed());
        } else if (!value.isEmpty()) {
            x.writeAttribute(kOffice, QStringLiteral("value-type"), QStringLiteral("string"));
            x.writeTextElement(kText, QStringLiteral("p"), value);
        }
        x.writeEndElement();
    };
    if (!t.titles.isEmpty()) {
        x.writeStartElement(kTable, QStringLiteral("table-row"));
        for (const QString &title : t.titles)
            cell(title, QStringLiteral("ceTitle"), false);
        x.writeEndElement();
    }
    for (const QStringList &row : t.rows) {
        x.writeStartElement(kTable, QStringLiteral("table-row"));
        for (int c = 0; c < row.size(); ++c)
            cell(row.at(c), QStringLiteral("ceText"),
                 c < static_cast<int>(t.number.size()) && t.number[static_cast<size_t>(c)]);
        x.writeEndElement();
    }
    x.writeEndDocument();
    return out;
}

bool write(OfficeEngine &engine, const Table &table, const QString &path, const QString &scratchDir,
           QString *error, const Progress &progress) {
    report(progress, 0);
    QDir().mkpath(scratchDir);
    Scratch ods{scratchName(scratchDir, QStringLiteral("fods"))};
    {
        QFile f(ods.path);
        if (!f.open(QIODevice::WriteOnly) || f.write(flatOds(table)) < 0)
            return fail(error,
                        QStringLiteral("Не удалось записать временный файл в %1.").arg(shown(scratchDir)));
    }
    report(progress, 20);
    if (!engine.load(ods.path))
        return fail(error, QStringLiteral("Таблица не передана в файл: %1").arg(engine.error()));
    auto closeEngine = qScopeGuard([&engine] { engine.close(); });
    report(progress, 60);
    // The file the user chose is replaced only by a complete one.
    Scratch part{QFileInfo(path).absoluteDir().filePath(
        QStringLiteral(".%1.%2.part")
            .arg(QFileInfo(path).fileName(), QUuid::createUuid().toString(QUuid::Id128)))};
    if (!engine.saveAs(part.path, QStringLiteral("xlsx")))
        return fail(error,
                    QStringLiteral("Не удалось сохранить файл %1: %2").arg(shown(path), engine.error()));
    if ((QFile::exists(path) && !QFile::remove(path)) || !QFile::rename(part.path, path))
        return fail(error, QStringLiteral("Не удалось заменить файл %1.").arg(shown(path)));
    part.path.clear();
    report(progress, 100);
    return true;
}

} // namespace SheetFile
