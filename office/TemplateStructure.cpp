#include "TemplateStructure.h"

#include <QFile>
#include <QStringList>
#include <QVector>
#include <QtEndian>

namespace TemplateStructure {

namespace {

// An old Office compound file, read from its bytes (at most the template size limit).
class Compound {
public:
    explicit Compound(QByteArray bytes) : m_b(std::move(bytes)) {}

    QString check(bool spreadsheet) {
        if (m_b.size() < 512)
            return QStringLiteral("файл короче заголовка");
        const quint16 major = u16(26), order = u16(28), shift = u16(30), miniShift = u16(32);
        if (order != 0xFFFE || !((major == 3 && shift == 9) || (major == 4 && shift == 12)) || miniShift != 6)
            return QStringLiteral("заголовок файла повреждён");
        m_sectorSize = 1 << shift;
        m_sectors = (static_cast<qint64>(m_b.size()) - m_sectorSize) / m_sectorSize; // whole sectors only
        const quint32 fatSectors = u32(44), directory = u32(48), difatFirst = u32(68), difatSectors = u32(72);
        if (fatSectors == 0 || fatSectors > m_sectors || difatSectors > m_sectors)
            return QStringLiteral("таблица размещения не соответствует размеру файла");

        // The sectors of the allocation table: 109 in the header, the rest in a chain of DIFAT sectors.
        QVector<quint32> fatList;
        for (int i = 0; i < 109 && fatList.size() < static_cast<int>(fatSectors); ++i)
            fatList << u32(76 + 4 * i);
        quint32 next = difatFirst;
        for (quint32 step = 0; fatList.size() < static_cast<int>(fatSectors); ++step) {
            if (step >= difatSectors || !inFile(next))
                return QStringLiteral("цепочка таблицы размещения повреждена");
            const qint64 at = offset(next);
            const int perSector = m_sectorSize / 4 - 1;
            for (int i = 0; i < perSector && fatList.size() < static_cast<int>(fatSectors); ++i)
                fatList << u32(at + 4 * i);
            next = u32(at + 4 * perSector);
        }
        for (quint32 s : fatList) {
            if (!inFile(s))
                return QStringLiteral("таблица размещения указывает за конец файла");
            const qint64 at = offset(s);
            for (int i = 0; i < m_sectorSize / 4; ++i)
                m_fat << u32(at + 4 * i);
        }

        // The directory: a chain of sectors of 128-byte entries.
        const QVector<quint32> dir = chain(directory);
        if (dir.isEmpty())
            return QStringLiteral("каталог файла повреждён");
        const QStringList wanted = spreadsheet
                                       ? QStringList{QStringLiteral("Workbook"), QStringLiteral("Book")}
                                       : QStringList{QStringLiteral("WordDocument")};
        for (quint32 s : dir) {
            for (int e = 0; e < m_sectorSize / 128; ++e) {
                const qint64 at = offset(s) + 128 * e;
                const int nameBytes = u16(at + 64);
                if (m_b.at(static_cast<int>(at + 66)) != 2 || nameBytes < 2 || nameBytes > 64)
                    continue; // not a stream
                const QString name = QString::fromUtf16(
                    reinterpret_cast<const char16_t *>(m_b.constData() + at), nameBytes / 2 - 1);
                if (!wanted.contains(name))
                    continue;
                const quint64 size =
                    major == 3 ? u32(at + 120) : qFromLittleEndian<quint64>(m_b.constData() + at + 120);
                if (size == 0 || size > static_cast<quint64>(m_b.size()))
                    return QStringLiteral("поток «%1» длиннее файла").arg(name);
                if (size >= u32(56)) { // in regular sectors: its chain must hold it
                    const QVector<quint32> sectors = chain(u32(at + 116));
                    if (static_cast<quint64>(sectors.size()) * m_sectorSize < size)
                        return QStringLiteral("поток «%1» повреждён").arg(name);
                }
                return {};
            }
        }
        return spreadsheet ? QStringLiteral("в файле нет книги Excel")
                           : QStringLiteral("в файле нет документа Word");
    }

private:
    quint16 u16(qint64 at) const { return qFromLittleEndian<quint16>(m_b.constData() + at); }
    quint32 u32(qint64 at) const { return qFromLittleEndian<quint32>(m_b.constData() + at); }
    bool inFile(quint32 sector) const { return sector < m_sectors; }
    qint64 offset(quint32 sector) const { return (static_cast<qint64>(sector) + 1) * m_sectorSize; }
    // The sectors of a chain; empty when it leaves the file or loops.
    QVector<quint32> chain(quint32 first) const {
        QVector<quint32> out;
        constexpr quint32 kEnd = 0xFFFFFFFE;
        for (quint32 s = first; s != kEnd; s = m_fat.at(static_cast<int>(s))) {
            if (!inFile(s) || static_cast<int>(s) >= m_fat.size() || out.size() > m_sectors)
                return {};
            out << s;
        }
        return out;
    }

    QByteArray m_b;
    int m_sectorSize = 512;
    qint64 m_sectors = 0;
    QVector<quint32> m_fat;
};

} // namespace

QString checkCompound(const QString &path, bool spreadsheet) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return f.errorString();
    return Compound(f.readAll()).check(spreadsheet);
}

QString checkRtf(const QString &path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return f.errorString();
    const QByteArray b = f.readAll();
    int depth = 0;
    for (qsizetype i = 0; i < b.size(); ++i) {
        const char c = b.at(i);
        if (c == '\\') {
            ++i; // an escaped brace or backslash is text
        } else if (c == '{') {
            if (++depth > kMaxRtfDepth)
                return QStringLiteral("группы текста вложены глубже %1 уровней").arg(kMaxRtfDepth);
        } else if (c == '}') {
            --depth;
        }
    }
    return {};
}

} // namespace TemplateStructure
