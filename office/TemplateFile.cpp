#include "TemplateFile.h"

#include "office/OfficeEngine.h"
#include "office/TemplatePackage.h"
#include "office/TemplateStructure.h"
#include "storage/FileKind.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

namespace TemplateFile {

namespace {

bool startsWith(const QByteArray &head, const char *magic, int size) {
    return head.size() >= size && memcmp(head.constData(), magic, static_cast<size_t>(size)) == 0;
}

} // namespace

QString check(const QString &path) {
    const QFileInfo info(path);
    const QString shown = QDir::toNativeSeparators(path);
    const FileKind::Kind kind = FileKind::of(path);
    if (kind == FileKind::Kind::Missing)
        return QStringLiteral("Отсутствует файл ") + shown;
    // A folder or a pipe in the template's place is told as what it is (a pipe is never opened).
    if (kind != FileKind::Kind::File)
        return QStringLiteral("Шаблон %1 не открывается: %2.").arg(shown, FileKind::problem(path));
    if (info.size() > kMaxBytes)
        return QStringLiteral("Файл шаблона %1 больше 50 МБ и не может быть открыт.").arg(shown);
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return QStringLiteral("Файл шаблона %1 не читается: %2").arg(shown, f.errorString());
    const QByteArray head = f.read(4096);
    const QString ext = info.suffix().toLower();
    bool ok = false;
    if (ext == QLatin1String("xls") || ext == QLatin1String("doc"))
        ok = startsWith(head, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8); // compound file of the old formats
    else if (ext == QLatin1String("xlsx") || ext == QLatin1String("docx") || ext == QLatin1String("odt") ||
             ext == QLatin1String("ods"))
        ok = startsWith(head, "PK\x03\x04", 4); // zip package
    else if (ext == QLatin1String("rtf"))
        ok = startsWith(head, "{\\rtf", 5);
    else if (ext == QLatin1String("txt"))
        ok = !head.contains('\0');
    if (!ok)
        return QStringLiteral("Файл %1 не является документом Word, Excel, OpenDocument, RTF или текстом; "
                              "шаблон не открыт.")
            .arg(shown);
    if (startsWith(head, "PK\x03\x04", 4))
        return TemplatePackage::check(path); // what the zip package holds, before the engine unpacks it
    // An old Office file or RTF: its structure is checked before the engine, which trusts it, takes it.
    QString why;
    if (ext == QLatin1String("xls") || ext == QLatin1String("doc"))
        why = TemplateStructure::checkCompound(path, ext == QLatin1String("xls"));
    else if (ext == QLatin1String("rtf"))
        why = TemplateStructure::checkRtf(path);
    if (!why.isEmpty())
        return QStringLiteral(
                   "Шаблон %1 повреждён или опасен для открытия: %2. Шаблон не открыт; замените его.")
            .arg(shown, why);
    return {};
}

QString formatFor(const QString &path) {
    static const QStringList known{QStringLiteral("xls"),  QStringLiteral("xlsx"), QStringLiteral("ods"),
                                   QStringLiteral("pdf"),  QStringLiteral("docx"), QStringLiteral("rtf"),
                                   QStringLiteral("odt"),  QStringLiteral("txt"),  QStringLiteral("csv"),
                                   QStringLiteral("fods"), QStringLiteral("fodt")};
    const QString ext = QFileInfo(path).suffix().toLower();
    return known.contains(ext) ? ext : QString();
}

bool save(OfficeEngine &engine, const QVector<Output> &outputs, QString *error, const QString &madePdf) {
    for (const Output &out : outputs) {
        const QString format = out.format.isEmpty() ? formatFor(out.path) : out.format;
        const QString shown = QDir::toNativeSeparators(out.path);
        if (format.isEmpty()) {
            *error = QStringLiteral("Неизвестный формат файла %1.").arg(shown);
            return false;
        }
        const QFileInfo target(out.path);
        if (!QDir().mkpath(target.absolutePath())) {
            *error = QStringLiteral("Не удаётся создать папку %1.")
                         .arg(QDir::toNativeSeparators(target.absolutePath()));
            return false;
        }
        const QString temp =
            target.absoluteDir().filePath(QStringLiteral(".~%1-%2.%3.tmp")
                                              .arg(target.completeBaseName())
                                              .arg(QRandomGenerator::global()->generate(), 0, 16)
                                              .arg(target.suffix()));
        if (format == QLatin1String("pdf") && !madePdf.isEmpty()) {
            if (!QFile::copy(madePdf, temp)) {
                QFile::remove(temp);
                *error =
                    QStringLiteral("Не удалось сохранить %1: нет места или нет прав на папку.").arg(shown);
                return false;
            }
        } else if (!engine.saveAs(temp, format)) {
            QFile::remove(temp);
            *error = QStringLiteral("Не удалось сохранить %1.\n%2").arg(shown, engine.error());
            return false;
        }
        if (!QFileInfo::exists(temp)) {
            *error = QStringLiteral("Не удалось сохранить %1: файл не записан.").arg(shown);
            return false;
        }
        QFile::remove(out.path);
        if (!QFile::rename(temp, out.path)) {
            QFile::remove(temp);
            *error = QStringLiteral("Не удаётся записать %1: файл занят другой программой или нет прав.")
                         .arg(shown);
            return false;
        }
    }
    return true;
}

bool open(OfficeEngine &engine, const QString &path, const QString &type, QString *error) {
    *error = check(path);
    if (!error->isEmpty())
        return false;
    QString loaded;
    if (!engine.load(path, &loaded)) {
        // The engine did not take the file within its time (it was stopped and starts again at the next
        // request), or refused it: the user learns which template it was.
        *error =
            QStringLiteral("Шаблон %1 не открылся: %2").arg(QDir::toNativeSeparators(path), engine.error());
        engine.close();
        return false;
    }
    if (loaded != type) {
        engine.close();
        *error = (type == QLatin1String("spreadsheet")
                      ? QStringLiteral("Шаблон %1 не является таблицей.")
                      : QStringLiteral("Шаблон %1 не является текстовым документом."))
                     .arg(QDir::toNativeSeparators(path));
        return false;
    }
    return true;
}

bool finish(OfficeEngine &engine, const QString &templatePath, const QStringList &left,
            const QVector<Output> &outputs, QString *error, const QString &madePdf) {
    bool ok = true;
    if (!left.isEmpty()) {
        *error = QStringLiteral("После заполнения шаблона %1 в нём остались незаполненные поля: %2")
                     .arg(QDir::toNativeSeparators(templatePath), left.join(QStringLiteral(", ")));
        ok = false;
    } else {
        ok = save(engine, outputs, error, madePdf);
    }
    engine.close();
    return ok;
}

} // namespace TemplateFile
