#include "TemplatePackage.h"

#include <QDir>
#include <QFile>

#include <memory>
#include <zip.h>

namespace TemplatePackage {

namespace {

struct ArchiveCloser {
    void operator()(zip_t *z) const { zip_discard(z); }
};
struct EntryCloser {
    void operator()(zip_file_t *f) const { zip_fclose(f); }
};
using Archive = std::unique_ptr<zip_t, ArchiveCloser>;
using Entry = std::unique_ptr<zip_file_t, EntryCloser>;

Archive openArchive(const QString &path) {
    int code = 0;
    return Archive(zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, &code));
}

// A name that would leave the folder the package is unpacked into.
bool escapes(const QString &name) {
    if (name.startsWith(u'/') || name.startsWith(u'\\') || (name.size() > 1 && name.at(1) == u':'))
        return true;
    const QStringList parts = QString(name).replace(u'\\', u'/').split(u'/');
    return parts.contains(QStringLiteral(".."));
}

bool isXml(const QString &name) {
    const QString n = name.toLower();
    return n.endsWith(QLatin1String(".xml")) || n.endsWith(QLatin1String(".rels")) ||
           n.endsWith(QLatin1String(".vml"));
}

} // namespace

QString check(const QString &path) {
    const QString why = problem(path);
    return why.isEmpty() ? why
                         : QStringLiteral("Шаблон %1 не открыт: %2").arg(QDir::toNativeSeparators(path), why);
}

QString problem(const QString &path) {
    Archive archive = openArchive(path);
    if (!archive)
        return QStringLiteral("файл повреждён (архив документа не читается).");
    const zip_int64_t count = zip_get_num_entries(archive.get(), 0);
    if (count <= 0)
        return QStringLiteral("архив документа пуст.");
    if (count > kMaxEntries)
        return QStringLiteral("в архиве документа %1 частей, допустимо не более %2.")
            .arg(count)
            .arg(kMaxEntries);

    const QString tooLarge = QStringLiteral("архив документа распаковывается в слишком большой объём "
                                            "(более %1 МБ); возможно, это архивная бомба.")
                                 .arg(kMaxInflatedBytes / (1024 * 1024));
    qint64 total = 0;
    // First what the archive says: names, and sizes that are refused without unpacking anything.
    for (zip_int64_t i = 0; i < count; ++i) {
        zip_stat_t st;
        if (zip_stat_index(archive.get(), static_cast<zip_uint64_t>(i), 0, &st) != 0 || !st.name)
            return QStringLiteral("файл повреждён (часть %1 архива не читается).").arg(i + 1);
        const QString name = QString::fromUtf8(st.name);
        if (escapes(name))
            return QStringLiteral("в архиве документа есть часть с недопустимым путём «%1».").arg(name);
        if ((st.valid & ZIP_STAT_SIZE) && st.size > static_cast<zip_uint64_t>(kMaxInflatedBytes))
            return tooLarge;
        total += (st.valid & ZIP_STAT_SIZE) ? static_cast<qint64>(st.size) : 0;
        if (total > kMaxInflatedBytes)
            return tooLarge;
    }

    // Then what the entries really hold: an archive may state sizes it does not keep to.
    QByteArray buffer(64 * 1024, Qt::Uninitialized);
    static const QByteArray entity("<!ENTITY");
    total = 0;
    for (zip_int64_t i = 0; i < count; ++i) {
        zip_stat_t st;
        zip_stat_index(archive.get(), static_cast<zip_uint64_t>(i), 0, &st);
        const QString name = QString::fromUtf8(st.name);
        if (name.endsWith(u'/'))
            continue; // a folder
        Entry entry(zip_fopen_index(archive.get(), static_cast<zip_uint64_t>(i), 0));
        if (!entry)
            return QStringLiteral("часть «%1» архива документа не читается (повреждена или "
                                  "зашифрована).")
                .arg(name);
        const qint64 packed = (st.valid & ZIP_STAT_COMP_SIZE) ? static_cast<qint64>(st.comp_size) : 0;
        const qint64 entryLimit = qMax<qint64>(1024 * 1024, packed * kMaxRatio);
        const bool xml = isXml(name);
        QByteArray tail; // the end of the previous piece, so that a declaration split between pieces is seen
        qint64 unpacked = 0;
        for (;;) {
            const zip_int64_t n =
                zip_fread(entry.get(), buffer.data(), static_cast<zip_uint64_t>(buffer.size()));
            if (n < 0)
                return QStringLiteral("часть «%1» архива документа повреждена.").arg(name);
            if (n == 0)
                break;
            unpacked += n;
            total += n;
            if (total > kMaxInflatedBytes || unpacked > entryLimit ||
                ((st.valid & ZIP_STAT_SIZE) && unpacked > static_cast<qint64>(st.size)))
                return tooLarge;
            if (xml) {
                const QByteArray piece =
                    tail + QByteArray::fromRawData(buffer.constData(), static_cast<int>(n));
                if (piece.contains(entity))
                    return QStringLiteral("часть «%1» объявляет сущности XML, которых в документах не "
                                          "бывает.")
                        .arg(name);
                tail = piece.right(entity.size() - 1);
            }
        }
    }
    return {};
}

bool readEntry(const QString &path, const QString &name, QByteArray *data, qint64 maxBytes) {
    data->clear();
    Archive archive = openArchive(path);
    if (!archive)
        return false;
    const zip_int64_t index = zip_name_locate(archive.get(), name.toUtf8().constData(), 0);
    if (index < 0)
        return false;
    Entry entry(zip_fopen_index(archive.get(), static_cast<zip_uint64_t>(index), 0));
    if (!entry)
        return false;
    QByteArray buffer(64 * 1024, Qt::Uninitialized);
    for (;;) {
        const zip_int64_t n = zip_fread(entry.get(), buffer.data(), static_cast<zip_uint64_t>(buffer.size()));
        if (n < 0)
            return false;
        if (n == 0)
            return true;
        if (data->size() + n > maxBytes)
            return false;
        data->append(buffer.constData(), static_cast<int>(n));
    }
}

} // namespace TemplatePackage
