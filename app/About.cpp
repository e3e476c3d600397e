#include "About.h"

#include "server/ProgramVersion.h"
#include "storage/TextValues.h"
#include "virn_build_date.h"

#include <QDir>

namespace About {

QString version() {
    return programVersion();
}

QDate buildDate() {
    return QDate::fromString(QStringLiteral(VIRN_BUILD_DATE), Qt::ISODate);
}

QString text(const QString &dataFolder) {
    return QStringLiteral(
               "Вирн-Смета\nСметы на строительные и ремонтные работы.\n\nВерсия %1, сборка от %2.\n"
               "Папка данных: %3")
        .arg(version(), TextValues::shortDate(buildDate()), QDir::toNativeSeparators(dataFolder));
}

} // namespace About
