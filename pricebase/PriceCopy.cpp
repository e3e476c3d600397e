#include "PriceCopy.h"

#include "PriceStore.h"
#include "RemotePriceList.h"
#include "ResourceStore.h"
#include "storage/Transaction.h"

#include <QSqlQuery>

namespace PriceCopy {

namespace {
bool fail(QString *error, const QString &text) {
    if (error)
        *error = text;
    return false;
}
} // namespace

QString caption(List list) {
    switch (list) {
    case List::MyPrice:
        return QStringLiteral("Мои расценки");
    case List::Price2:
        return QStringLiteral("Расценки 2");
    case List::Server:
        return QStringLiteral("Расценки на сервере Вирн");
    }
    return {};
}

QString ratesTable(List list) {
    switch (list) {
    case List::MyPrice:
        return QStringLiteral("price1");
    case List::Price2:
        return QStringLiteral("price2");
    case List::Server:
        break;
    }
    return {};
}

QString resourcesTable(List list) {
    switch (list) {
    case List::MyPrice:
        return QStringLiteral("resurs1");
    case List::Price2:
        return QStringLiteral("resurs2");
    case List::Server:
        return QStringLiteral("resurs_s");
    }
    return {};
}

int remoteRows(RemotePriceList &remote, QString *error) {
    PriceListData data;
    if (!remote.readList(QString(), data, error))
        return -1;
    return static_cast<int>(data.rows.size());
}

bool copy(QSqlDatabase price, RemotePriceList *remote, List from, List to, int currency, Outcome *outcome,
          QString *error) {
    if (from == to)
        return fail(error, QStringLiteral("Список нельзя скопировать в самого себя."));
    const bool remoteSide = from == List::Server || to == List::Server;
    if (remoteSide && (!remote || !remote->isConnected()))
        return fail(error, QStringLiteral("Нет подключения к серверу Вирн."));
    PriceListData data;
    const bool read = from == List::Server
                          ? remote->readList(QString(), data, error)
                          : PriceStore::readList(price, ratesTable(from), currency, data, error);
    if (!read)
        return false;
    // The copy holds the rates and their record numbers; crew coefficients and prices stay with the
    // list they were set for.
    for (size_t i = 0; i < data.rows.size(); ++i) {
        data.rows.set(i, PriceCol::Koef, QString());
        data.rows.set(i, PriceCol::Link, QString());
    }
    Transaction t(price);
    if (!t.active())
        return fail(error, t.error());
    int resources = 0;
    if (!ResourceStore::copyAll(price, resourcesTable(from), resourcesTable(to), &resources, error))
        return false;
    if (to == List::Server) {
        // Nothing on the server changes unless the local side is ready to be kept.
        if (!remote->writeList(data.rows, error))
            return false;
    } else if (!PriceStore::writeList(price, ratesTable(to), currency, data.rows, error)) {
        return false;
    }
    if (!t.commit())
        return fail(error, t.error());
    QSqlQuery(price).exec(QStringLiteral("VACUUM;"));
    if (outcome) {
        outcome->rates = 0;
        for (size_t i = 0; i < data.rows.size(); ++i)
            outcome->rates += data.rows.isBlank(i) ? 0 : 1;
        outcome->resources = resources;
    }
    return true;
}

} // namespace PriceCopy
