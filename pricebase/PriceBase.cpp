#include "PriceBase.h"

#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"

#include <QSqlError>
#include <QUuid>
#include <QtConcurrent>

struct PriceBase::Loaded {
    PriceListData data;
    LiveSearch search;
    bool withSearch = false;
    bool ok = false;
    QString error;
};

PriceBase::PriceBase(TModuleSQL *module, QObject *parent) : QObject(parent), m_module(module) {}

PriceBase::~PriceBase() {
    if (m_pending)
        m_pending->waitForFinished();
    for (QFuture<std::shared_ptr<Loaded>> &f : m_overtaken)
        f.waitForFinished();
}

void PriceBase::overtakePending() {
    if (!m_pending)
        return;
    m_pending->disconnect(this);
    // Finished ones are forgotten; the list stays as short as the reads still running.
    m_overtaken.removeIf([](const QFuture<std::shared_ptr<Loaded>> &f) { return f.isFinished(); });
    m_overtaken.append(m_pending->future());
    m_pending->deleteLater();
    m_pending = nullptr;
}

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

void PriceBase::take(PriceListData &data, bool rebuild, LiveSearch *search) {
    if (rebuild)
        m_sections = std::move(data.sections);
    m_remoteFiltered = isRemote() && !rebuild;
    m_model.setRows(std::move(data.rows), data.listOne, std::move(data.byRec));
    // FDQueryFindPrice always holds the whole current list; a filtered remote read leaves it alone.
    if (rebuild && m_liveSearch) {
        if (search)
            m_search = std::move(*search);
        else
            m_search.load(m_model.allRows());
    }
    emit listRead(rebuild);
}

void PriceBase::readInBackground() {
    QString error;
    QSqlDatabase db = isRemote() || !showsRates() ? QSqlDatabase() : priceDb(&error);
    if (!db.isOpen()) {
        // The remote list, the materials tab, or no price base: as a read always does.
        if (!read(&error))
            emit readFailed(error);
        return;
    }
    // The data module's connection has brought the file up to date; the worker only reads.
    overtakePending();
    m_pending = new QFutureWatcher<std::shared_ptr<Loaded>>(this);
    connect(m_pending, &QFutureWatcherBase::finished, this, &PriceBase::takeLoaded);
    m_pending->setFuture(QtConcurrent::run(loadList, db.databaseName(), table(), m_currency, m_liveSearch));
}

void PriceBase::waitForRead() {
    if (!m_pending)
        return;
    m_pending->waitForFinished();
    takeLoaded();
}

void PriceBase::takeLoaded() {
    if (!m_pending)
        return;
    const std::shared_ptr<Loaded> loaded = m_pending->result();
    m_pending->deleteLater();
    m_pending = nullptr;
    if (!loaded->ok) {
        emit readFailed(loaded->error);
        return;
    }
    take(loaded->data, true, loaded->withSearch ? &loaded->search : nullptr);
}

bool PriceBase::read(QString *error) {
    // A read in the background is overtaken: its rows would be older than these.
    overtakePending();
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
    // The file's crew prices change behind the rows until the list is read again.
    m_model.dropRecIndex();
    return PriceStore::updateCrewPrices(priceDb(error), m_currency, koefText, error, statements);
}

bool PriceBase::crewPrices(const QList<CrewSheet::Rate> &rates,
                           std::vector<std::optional<Decimal>> &out) const {
    if (!m_model.answersByRec())
        return false;
    const RateTable &rows = m_model.allRows();
    out.assign(static_cast<size_t>(rates.size()), std::nullopt);
    for (int i = 0; i < rates.size(); ++i) {
        const QString rec = CrewSheet::listOneRec(rates.at(i));
        if (rec.isEmpty())
            continue;
        const int row = *m_model.findRec(rec.toUtf8());
        if (row >= 0)
            out[static_cast<size_t>(i)] = TextValues::parsePositivePrice(
                QString::fromUtf8(rows.utf8(static_cast<size_t>(row), PriceCol::Link)));
    }
    return true;
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

// Runs on a worker thread: the list read through a connection of that thread's own.
std::shared_ptr<PriceBase::Loaded> PriceBase::loadList(const QString &path, const QString &table,
                                                       int currency, bool withSearch) {
    auto out = std::make_shared<Loaded>();
    const QString name =
        QStringLiteral("virn-price-reader-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=5000"));
        if (!db.open()) {
            out->error = db.lastError().text();
        } else {
            out->ok = PriceStore::readList(db, table, currency, out->data, &out->error);
            // Price list 1 is looked up by record number (the crew prices of an estimate's rates):
            // its index is made here rather than at the first document opened.
            if (out->ok && out->data.listOne)
                out->data.byRec = RecIndex(out->data.rows);
            if (out->ok && withSearch) {
                out->search.load(out->data.rows);
                out->search.prepare(); // here rather than at the first keystroke
                out->withSearch = true;
            }
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return out;
}
