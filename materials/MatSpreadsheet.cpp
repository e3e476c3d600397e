#include "MatSpreadsheet.h"

#include "office/OfficeEngine.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QUuid>
#include <QXmlStreamWriter>
#include <algorithm>

namespace MatSpreadsheet {

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

// A first row that names the columns rather than a material.
bool isHeader(const QStringList &row) {
    const QString name = row.value(0).trimmed().toLower();
    const QString price = row.value(2).trimmed().toLower();
    if (!price.isEmpty() && TextValues::parsePrice(price))
        return false;
    return name.startsWith(QStringLiteral("наимен")) || name.startsWith(QStringLiteral("назван")) ||
           name == QStringLiteral("материал") || price.startsWith(QStringLiteral("цена"));
}

// Spreadsheets show prices with the currency: "1 250,50 ₽", "99 руб." are kept as their number.
QString cleanPrice(const QString &text) {
    const QString t = text.trimmed();
    if (t.isEmpty() || TextValues::parsePrice(t))
        return t;
    static const QRegularExpression currency(QStringLiteral("\\s*(₽|р\\.|руб\\.?|rub)\\s*$"),
                                             QRegularExpression::CaseInsensitiveOption);
    QString stripped = t;
    stripped.remove(currency);
    return !stripped.isEmpty() && TextValues::parsePrice(stripped) ? stripped.trimmed() : t;
}

QString scratchName(const QString &dir, const QString &suffix) {
    return QDir(dir).filePath(
        QStringLiteral("matlist-%1.%2").arg(QUuid::createUuid().toString(QUuid::WithoutBraces), suffix));
}

// Removes a scratch file however the work ends.
struct Scratch {
    QString path;
    ~Scratch() {
        if (!path.isEmpty())
            QFile::remove(path);
    }
};

} // namespace

bool checkFile(const QString &path, QString *error) {
    const QFileInfo info(path);
    if (!info.isFile())
        return fail(error, QStringLiteral("Файл %1 не найден.").arg(shown(path)));
    if (info.size() == 0)
        return fail(error, QStringLiteral("Файл %1 пуст.").arg(shown(path)));
    if (info.size() > kMaxFileBytes)
        return fail(error, QStringLiteral("Файл %1 больше %2 МБ: такой список не загружается.")
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
    return true;
}

bool rowsFromCells(const SheetText::Grid &cells, std::vector<MatRow> &rows, QString *error) {
    rows.clear();
    int widest = 0;
    bool first = true;
    for (const QStringList &cellRow : cells) {
        int used = 0;
        for (int c = 0; c < cellRow.size(); ++c)
            if (!cellRow.at(c).trimmed().isEmpty())
                used = c + 1;
        if (used == 0)
            continue;
        widest = std::max(widest, std::max(used, static_cast<int>(cellRow.size())));
        if (first) {
            first = false;
            if (isHeader(cellRow))
                continue;
        }
        if (static_cast<int>(rows.size()) >= kMaxRows)
            return fail(error, QStringLiteral("В файле больше %1 строк: такой список не загружается.")
                                   .arg(QLocale(QLocale::Russian).toString(kMaxRows)));
        MatRow r;
        r.name = cellRow.value(0).trimmed();
        r.unit = cellRow.value(1).trimmed();
        r.price = cleanPrice(cellRow.value(2));
        rows.push_back(std::move(r));
    }
    if (widest == 0)
        return fail(error, QStringLiteral("В файле нет ни одной заполненной строки."));
    if (widest < 3)
        return fail(error, QStringLiteral(
                               "В файле не хватает столбцов: нужны три — наименование, единица измерения и "
                               "цена (столбцы A, B и C)."));
    const bool anyMaterial = std::any_of(rows.begin(), rows.end(),
                                         [](const MatRow &r) { return matRowKind(r) != MatRowKind::Empty; });
    if (!anyMaterial)
        return fail(error, QStringLiteral("В столбце A файла нет ни одного наименования материала."));
    return true;
}

bool readFile(OfficeEngine &engine, const QString &path, const QString &scratchDir, std::vector<MatRow> &rows,
              QString *error, const Progress &progress) {
    rows.clear();
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
                    QStringLiteral("Первый лист файла %1 больше %2 МБ текста: такой список не загружается.")
                        .arg(shown(path))
                        .arg(kMaxTextBytes / (1024 * 1024)));
    const QString text = QString::fromUtf8(f.readAll());
    f.close();
    report(progress, 75);
    const SheetText::Grid cells = SheetText::parseCsv(text);
    if (!rowsFromCells(cells, rows, error)) {
        if (error)
            *error = QStringLiteral("Файл %1: %2").arg(shown(path), *error);
        return false;
    }
    report(progress, 90);
    return true;
}

QByteArray flatOds(const std::vector<MatRow> &rows, const QString &sheetName) {
    QByteArray out;
    QXmlStreamWriter x(&out);
    x.writeStartDocument();
    const QString office = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:office:1.0");
    const QString table = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:table:1.0");
    const QString text = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:text:1.0");
    x.writeNamespace(office, QStringLiteral("office"));
    x.writeNamespace(table, QStringLiteral("table"));
    x.writeNamespace(text, QStringLiteral("text"));
    x.writeStartElement(office, QStringLiteral("document"));
    x.writeAttribute(office, QStringLiteral("version"), QStringLiteral("1.2"));
    x.writeAttribute(office, QStringLiteral("mimetype"),
                     QStringLiteral("application/vnd.oasis.opendocument.spreadsheet"));
    x.writeStartElement(office, QStringLiteral("body"));
    x.writeStartElement(office, QStringLiteral("spreadsheet"));
    x.writeStartElement(table, QStringLiteral("table"));
    x.writeAttribute(table, QStringLiteral("name"), sheetName);
    x.writeEmptyElement(table, QStringLiteral("table-column"));
    x.writeAttribute(table, QStringLiteral("number-columns-repeated"), QStringLiteral("3"));
    auto cell = [&](const QString &value) {
        x.writeStartElement(table, QStringLiteral("table-cell"));
        if (!value.isEmpty()) {
            x.writeAttribute(office, QStringLiteral("value-type"), QStringLiteral("string"));
            x.writeTextElement(text, QStringLiteral("p"), value);
        }
        x.writeEndElement();
    };
    auto row = [&](const QString &name, const QString &unit, const QString &price, bool numbers) {
        x.writeStartElement(table, QStringLiteral("table-row"));
        cell(name);
        cell(unit);
        const auto value = numbers ? TextValues::parsePrice(price) : std::nullopt;
        if (value) {
            // A number the spreadsheet can count with; shown as typed.
            x.writeStartElement(table, QStringLiteral("table-cell"));
            x.writeAttribute(office, QStringLiteral("value-type"), QStringLiteral("float"));
            x.writeAttribute(office, QStringLiteral("value"), value->text().replace(u',', u'.'));
            x.writeTextElement(text, QStringLiteral("p"), price.trimmed());
            x.writeEndElement();
        } else {
            cell(price);
        }
        x.writeEndElement();
    };
    row(QStringLiteral("Наименование материала"), QStringLiteral("Ед. изм."), QStringLiteral("Цена"), false);
    for (const MatRow &r : rows)
        if (matRowKind(r) != MatRowKind::Empty)
            row(r.name, r.unit, r.price, true);
    x.writeEndDocument();
    return out;
}

bool writeFile(OfficeEngine &engine, const std::vector<MatRow> &rows, const QString &sheetName,
               const QString &path, const QString &scratchDir, QString *error, const Progress &progress) {
    report(progress, 0);
    QDir().mkpath(scratchDir);
    Scratch ods{scratchName(scratchDir, QStringLiteral("fods"))};
    {
        QFile f(ods.path);
        if (!f.open(QIODevice::WriteOnly) || f.write(flatOds(rows, sheetName)) < 0)
            return fail(error,
                        QStringLiteral("Не удалось записать временный файл в %1.").arg(shown(scratchDir)));
    }
    report(progress, 20);
    if (!engine.load(ods.path))
        return fail(error, QStringLiteral("Список не передан в таблицу: %1").arg(engine.error()));
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

} // namespace MatSpreadsheet
