#include "CustomerFolder.h"

#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>

namespace CustomerFolder {

namespace {

// File systems allow 255 bytes per name; leave room for a suffix the dialog may add.
constexpr int kMaxNameBytes = 200;

QString cutToBytes(const QString &text, int maxBytes) {
    if (text.toUtf8().size() <= maxBytes)
        return text;
    QString out;
    int bytes = 0;
    // Walk by code points so that a character outside the basic plane is never split.
    for (int i = 0; i < text.size();) {
        const int len = (text.at(i).isHighSurrogate() && i + 1 < text.size()) ? 2 : 1;
        const QString piece = text.mid(i, len);
        const int pieceBytes = piece.toUtf8().size();
        if (bytes + pieceBytes > maxBytes)
            break;
        out += piece;
        bytes += pieceBytes;
        i += len;
    }
    return out.trimmed();
}

} // namespace

Options Options::fromFlags(const std::function<bool(const QString &key)> &flag) {
    Options o;
    o.bossDir = flag(QStringLiteral("CheckBossDir"));
    o.detailAddress = flag(QStringLiteral("CheckBoxDetailAddress"));
    o.region = flag(QStringLiteral("CheckBoxRegion"));
    o.area = flag(QStringLiteral("CheckBoxArea"));
    o.city = flag(QStringLiteral("CheckBoxCity"));
    o.street = flag(QStringLiteral("CheckBoxStreet"));
    o.house = flag(QStringLiteral("CheckBoxHouse"));
    o.apartment = flag(QStringLiteral("CheckBoxApartment"));
    return o;
}

QString cleanPart(const QString &text, QChar backslashReplacement) {
    QString s;
    s.reserve(text.size());
    for (QChar c : text) {
        switch (c.unicode()) {
        case '"':
        case '/':
        case '|':
        case '*':
        case '?':
        case ':':
        case '<':
        case '>':
            s += QLatin1Char('`');
            break;
        case '%':
            break;
        case '\\':
            s += backslashReplacement;
            break;
        default:
            s += (c.category() == QChar::Other_Control) ? QChar(QLatin1Char(' ')) : c;
        }
    }
    s = cutToBytes(s.trimmed(), kMaxNameBytes);
    // "." and ".." name the folder itself and its parent.
    if (!s.isEmpty() && s.count(QLatin1Char('.')) == s.size())
        s.fill(QLatin1Char('`'));
    return s;
}

QString SetDirectoryCustomerAndObject(const QString &documentsFolder, const QString &customer,
                                      const QString &object, const AddressParts &address,
                                      const Options &options) {
    const QString base = QDir::cleanPath(documentsFolder);
    const QString customerPart = cleanPart(TextValues::nameFromStored(customer));
    if (!options.bossDir || customerPart.isEmpty())
        return base;

    QStringList levels{customerPart};
    bool fromAddress = false;
    if (options.detailAddress) {
        // Region and district are folder levels; the rest of the address names the last folder.
        auto level = [&](bool on, const QString &value, const QString &suffix) {
            if (on && !value.trimmed().isEmpty()) {
                const QString part = cleanPart(value.trimmed() + suffix);
                if (!part.isEmpty()) {
                    levels << part;
                    fromAddress = true;
                }
            }
        };
        level(options.region, address.region, QStringLiteral(" обл."));
        level(options.area, address.area, QStringLiteral(" р-он."));

        QStringList last;
        auto piece = [&](bool on, const QString &prefix, const QString &value, QChar backslash) {
            if (on && !value.trimmed().isEmpty())
                last << prefix + value.trimmed().replace(QLatin1Char('\\'), backslash);
        };
        piece(options.city, QStringLiteral("г."), address.city, QLatin1Char('`'));
        piece(options.street, QStringLiteral("ул. "), address.street, QLatin1Char('`'));
        piece(options.house, QStringLiteral("д."), address.house, QLatin1Char('-'));
        piece(options.apartment, QStringLiteral("кв."), address.apartment, QLatin1Char('-'));
        if (!last.isEmpty()) {
            const QString part = cleanPart(last.join(QStringLiteral(", ")));
            if (!part.isEmpty()) {
                levels << part;
                fromAddress = true;
            }
        }
    }
    if (!fromAddress) {
        const QString objectPart = cleanPart(TextValues::nameFromStored(object));
        if (!objectPart.isEmpty())
            levels << objectPart;
    }
    return base + QLatin1Char('/') + levels.join(QLatin1Char('/'));
}

AddressParts readAddress(TModuleSQL &module, const QString &customer) {
    AddressParts a;
    QSqlDatabase db = module.database(Db::Cash);
    if (!db.isOpen())
        return a;
    QSqlQuery q(db);
    // By column name: an older table may still lack numroom.
    q.prepare(QStringLiteral("SELECT * FROM customer WHERE fio=?"));
    q.addBindValue(TextValues::nameToStored(customer));
    if (q.exec() && q.next()) {
        const QSqlRecord r = q.record();
        a.region = r.value(QStringLiteral("Region")).toString();
        a.area = r.value(QStringLiteral("Area")).toString();
        a.city = r.value(QStringLiteral("City")).toString();
        a.street = r.value(QStringLiteral("Street")).toString();
        a.house = r.value(QStringLiteral("House")).toString();
        a.apartment = r.value(QStringLiteral("numroom")).toString();
    }
    return a;
}

QString makeFolderForDocument(TModuleSQL &module, const QString &documentsFolder, const QString &customer,
                              const QString &object, const Options &options) {
    const AddressParts address =
        options.bossDir && options.detailAddress ? readAddress(module, customer) : AddressParts{};
    const QString folder = SetDirectoryCustomerAndObject(documentsFolder, customer, object, address, options);
    if (QDir().mkpath(folder))
        return folder;
    return QDir::cleanPath(documentsFolder);
}

} // namespace CustomerFolder
