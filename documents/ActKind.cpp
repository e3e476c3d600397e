#include "ActKind.h"

#include "estimate/EstimateHeader.h"
#include "estimate/EstimateOutput.h"
#include "estimate/Registration.h"
#include "storage/TextValues.h"

namespace ActKinds {

int status(ActKind kind) {
    switch (kind) {
    case ActKind::Ks2:
        return 2;
    case ActKind::Ks3:
        return 3;
    case ActKind::Plain:
        break;
    }
    return 1;
}

QString view(ActKind kind) {
    switch (kind) {
    case ActKind::Ks2:
        return QStringLiteral("АКТ КС-2");
    case ActKind::Ks3:
        return QStringLiteral("АКТ КС-3");
    case ActKind::Plain:
        break;
    }
    return QStringLiteral("АКТ");
}

QString caption(ActKind kind) {
    switch (kind) {
    case ActKind::Ks2:
        return QStringLiteral("Акт КС-2");
    case ActKind::Ks3:
        return QStringLiteral("Акт КС-3");
    case ActKind::Plain:
        break;
    }
    return QStringLiteral("Акт");
}

QString label(ActKind kind, const QString &number) {
    switch (kind) {
    case ActKind::Ks2:
        return QStringLiteral("КС-2 № ") + number;
    case ActKind::Ks3:
        return QStringLiteral("КС-3 № ") + number;
    case ActKind::Plain:
        break;
    }
    return QStringLiteral("№ ") + number;
}

QString fileBaseName(ActKind kind, const QString &number, const QDate &date) {
    const QString name = caption(kind) + QStringLiteral(" № ") + number.trimmed() + QStringLiteral(" от ") +
                         TextValues::shortDate(date);
    // The output's own rule for names: characters no file name may hold are replaced.
    return EstimateOutput::outputBaseName(QString(), name);
}

bool hasEndDate(ActKind kind) {
    return kind != ActKind::Plain;
}

QString defaultNumber(QSqlDatabase people, const QString &customer, const QString &object, const QDate &date,
                      bool dateNumbering, bool yearFirst) {
    if (dateNumbering)
        return EstimateHeader::dateNumber(date, yearFirst) + QStringLiteral("-1");
    const qlonglong counter = people.isOpen() ? Registration::actCounter(people, customer, object) : 0;
    return QString::number(counter > 0 ? counter : 1);
}

} // namespace ActKinds
