#include "ServerFileKinds.h"

#include <QFileInfo>

namespace ServerFileKinds {

const QList<FileKind> &all() {
    static const QList<FileKind> kinds = {
        {QStringLiteral("Сметы"), {QStringLiteral(".sim")}},
        {QStringLiteral("Таблицы"), {QStringLiteral(".xls"), QStringLiteral(".xlsx")}},
        {QStringLiteral("Тексты"),
         {QStringLiteral(".doc"), QStringLiteral(".docx"), QStringLiteral(".rtf"), QStringLiteral(".txt")}},
        {QStringLiteral("PDF"), {QStringLiteral(".pdf")}},
        {QStringLiteral("Архивы"), {QStringLiteral(".zip"), QStringLiteral(".rar")}},
        {QStringLiteral("Базы данных"), {QStringLiteral(".db")}},
        {QStringLiteral("Картинки"),
         {QStringLiteral(".jpg"), QStringLiteral(".jpeg"), QStringLiteral(".bmp"), QStringLiteral(".gif"),
          QStringLiteral(".png")}},
        {QStringLiteral("Программы"), {QStringLiteral(".exe")}},
    };
    return kinds;
}

int kindOf(const QString &type) {
    const QString t = type.toLower();
    const QList<FileKind> &kinds = all();
    for (int i = 0; i < kinds.size(); ++i)
        if (kinds[i].extensions.contains(t))
            return i;
    return -1;
}

bool isPicture(const QString &type) {
    return kindOf(type) == Pictures;
}

QString typeOf(const QString &fileName) {
    const QString suffix = QFileInfo(fileName).suffix();
    return suffix.isEmpty() ? QString() : QStringLiteral(".") + suffix.toLower();
}

} // namespace ServerFileKinds

BoundStatement fileListStatement(const QString &table, const FileFilter &filter) {
    BoundStatement s;
    s.sql = QStringLiteral("SELECT data,name,type,address FROM ") + table;
    QString condition;
    if (filter.types.size() == 1) {
        condition = QStringLiteral("type=?");
        s.values << filter.types.first();
    } else if (filter.types.size() > 1) {
        QStringList each;
        for (const QString &t : filter.types) {
            each << QStringLiteral("type=?");
            s.values << t;
        }
        condition = QStringLiteral("(") + each.join(QStringLiteral(" or ")) + QStringLiteral(")");
    }
    if (filter.byAddress) {
        if (!condition.isEmpty())
            condition += QStringLiteral(" and ");
        condition += QStringLiteral("address=?");
        s.values << filter.address;
    }
    s.sql += condition.isEmpty() ? QStringLiteral(" WHERE 1") : QStringLiteral(" WHERE ") + condition;
    return s;
}
