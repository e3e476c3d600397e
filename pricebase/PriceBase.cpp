#include "PriceBase.h"

#include "storage/ModuleSQL.h"

PriceBase::PriceBase(TModuleSQL *module, QObject *parent) : QObject(parent), m_module(module) {}

QSqlDatabase PriceBase::priceDb(QString *error) {
    if (!m_module) {
        if (error)
            *error = QStringLiteral("База расценок не открыта.");
        return {};
    }
    QSqlDatabase db = m_module->database(Db::Price);
    if (!db.isOpen() && error)
        *error = m_module->failure(Db::Price);
    return db;
}

void PriceBase::setLiveSearchEnabled(bool on) {
    if (m_liveSearch == on)
        return;
    m_liveSearch = on;
    if (on)
        m_search.load(m_model.allRows());
    else
        m_search.clear();
}

QString PriceBase::table() const {
    if (isRemote())
        return m_remote.table();
    if (m_crew || m_tab == PriceTab::MyPrice)
        return QStringLiteral("price1");
    if (m_tab == PriceTab::Price2)
        return QStringLiteral("price2");
    return {};
}

QString PriceBase::resourcesTable() const {
    if (isRemote())
        return QStringLiteral("resurs_s");
    if (m_crew || m_tab == PriceTab::MyPrice)
        return QStringLiteral("resurs1");
    if (m_tab == PriceTab::Price2)
        return QStringLiteral("resurs2");
    return {};
}

void PriceBase::take(PriceListData &data, bool rebuild) {
    if (rebuild)
        m_sections = std::move(data.sections);
    m_remoteFiltered = isRemote() && !rebuild;
    m_model.setRows(std::move(data.rows));
    // FDQueryFindPrice always holds the whole current list; a filtered remote read leaves it alone.
    if (rebuild && m_liveSearch)
        m_search.load(m_model.allRows());
    emit listRead(rebuild);
}

bool PriceBase::read(QString *error) {
    PriceListData data;
    if (!showsRates()) {
        take(data, true);
        return true;
    }
    bool ok = isRemote() ? m_remote.readList(QString(), data, error)
                         : PriceStore::readList(priceDb(error), table(), m_currency, data, error);
    if (!ok)
        data = PriceListData();
    take(data, true);
    return ok;
}

bool PriceBase::showSection(int section, QString *error) {
    if (section <= 0) {
        if (isRemote())
            return read(error);
        m_model.clearFilter();
        return true;
    }
    const QString s = QString::number(section);
    if (isRemote()) {
        PriceListData data;
        if (!m_remote.readList(s + QStringLiteral("-%"), data, error))
            return false;
        take(data, false);
        return true;
    }
    // "S-*": the section's rows without its own title.
    m_model.setNumberFilter(s, false);
    return true;
}

bool PriceBase::showSubsection(const QString &number, QString *error) {
    if (isRemote()) {
        PriceListData data;
        if (!m_remote.readList(number + QStringLiteral("-%"), data, error))
            return false;
        take(data, false);
        return true;
    }
    m_model.setNumberFilter(number, true);
    return true;
}

bool PriceBase::write(QString *error) {
    if (!showsRates())
        return true;
    if (m_remoteFiltered) {
        // The grid holds one section only; writing it would replace the whole server list.
        if (error)
            *error =
                QStringLiteral("На экране только часть списка. Выберите «Все» разделы и сохраните снова.");
        return false;
    }
    m_model.fillMissingRecs();
    const bool ok =
        isRemote() ? m_remote.writeList(m_model.allRows(), error)
                   : PriceStore::writeList(priceDb(error), table(), m_currency, m_model.allRows(), error);
    if (!ok)
        return false;
    return read(error);
}

bool PriceBase::updateCrewPrices(const QString &koefText, QString *error, int *statements) {
    return PriceStore::updateCrewPrices(priceDb(error), m_currency, koefText, error, statements);
}

bool PriceBase::findRate(const QString &name, RateRow &out, QString *error) {
    if (isRemote())
        return m_remote.findRateByName(name, out, error);
    return PriceStore::findRateByName(priceDb(error), table(), m_currency, name, out, error);
}

bool PriceBase::connectServer(const ServerSettings &settings, QString *error) {
    return m_remote.connectTo(settings, error);
}

void PriceBase::disconnectServer() {
    m_remote.disconnect();
}
