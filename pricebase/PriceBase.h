#pragma once
// The price base as the main window uses it: which list is current (tab, crew switch, currency), the
// rate grid model with its section index, the live-search names (FDQueryFindPrice), reading and
// writing the current list, local or remote, and section navigation.

#include "LiveSearch.h"
#include "PriceStore.h"
#include "RateGridModel.h"
#include "RemotePriceList.h"
#include "estimate/CrewSheet.h"

#include <QFutureWatcher>
#include <QObject>
#include <memory>

class TModuleSQL;

// Tabs above the rate grid, in order.
enum class PriceTab { MyPrice = 0, Price2 = 1, Material = 2, Server = 3 };

class PriceBase : public QObject {
    Q_OBJECT
public:
    // The data module may come later (the main window gets it after it is built).
    explicit PriceBase(TModuleSQL *module, QObject *parent = nullptr);
    // Waits for reads still running on a worker: they use the SQL driver, which must outlive them.
    ~PriceBase() override;
    void setModule(TModuleSQL *module) { m_module = module; }
    bool hasModule() const { return m_module != nullptr; }

    RateGridModel &model() { return m_model; }
    const LiveSearch &liveSearch() const { return m_search; }
    const SectionIndex &sections() const { return m_sections; }
    RemotePriceList &remote() { return m_remote; }

    // State that chooses the current list. Setting it does not read; call read().
    void setTab(PriceTab tab) { m_tab = tab; }
    PriceTab tab() const { return m_tab; }
    void setCrewMode(bool on) { m_crew = on; }
    bool crewMode() const { return m_crew; }
    void setCurrency(int index) { m_currency = index; }
    int currency() const { return m_currency; }
    // With live search off the names are not kept (FDQueryFindPrice stays closed).
    void setLiveSearchEnabled(bool on);

    // Price list 1 with the tab "Мои расценки" or the crew switch down, price list 2 with "Расценки 2",
    // the remote list with "Расценки на сервере Вирн"; the materials tab has no rate list.
    bool showsRates() const { return m_crew || m_tab != PriceTab::Material; }
    bool isRemote() const { return !m_crew && m_tab == PriceTab::Server; }
    QString table() const;
    QString resourcesTable() const;

    // ReadSqlRAS / ReadMySqlRAS: the whole current list into the model, the section index rebuilt, the
    // live-search names reloaded.
    bool read(QString *error = nullptr);
    // The same for a local list on a thread of its own (its own connection to price.db; the
    // live-search names are made there too): the window is usable at once and the grid fills when the
    // list is there (listRead, or readFailed). A read() meanwhile leaves this one's rows unused. The
    // remote list is read at once.
    void readInBackground();
    bool reading() const { return m_pending != nullptr; }
    // Waits for a read in the background and takes its rows (nothing to do when none runs).
    void waitForRead();
    // ComboBox2Select: section S (1..) or all (0). Local lists filter the grid; the remote list is read
    // again with "Rascenka LIKE 'S-%'" (and rebuilt for 0).
    bool showSection(int section, QString *error = nullptr);
    // A subsection node "S-P".
    bool showSubsection(const QString &number, QString *error = nullptr);

    // WriteSqlPrice, then the list is read again.
    bool write(QString *error = nullptr);
    // UpdateSqlPriceBrig with the crew coefficient text.
    bool updateCrewPrices(const QString &koefText, QString *error = nullptr, int *statements = nullptr);
    // The crew prices of an estimate's rates from price list 1 as the grid holds it, without asking
    // the file (CrewSheet::PriceLookup): false when the grid does not hold price list 1 as read from
    // its file (another list, a read still running, an edit not written), and the file must answer.
    bool crewPrices(const QList<CrewSheet::Rate> &rates, std::vector<std::optional<Decimal>> &out) const;
    // The rate of that name in the current list (the look-up of a live-search choice).
    bool findRate(const QString &name, RateRow &out, QString *error = nullptr);

    bool connectServer(const ServerSettings &settings, QString *error = nullptr);
    void disconnectServer();
    bool serverConnected() const { return m_remote.isConnected(); }

signals:
    // The model was filled again; `rebuilt` tells whether the section index was rebuilt too.
    void listRead(bool rebuilt);
    // A read in the background failed (the grid stays empty).
    void readFailed(const QString &error);

private:
    struct Loaded;
    static std::shared_ptr<Loaded> loadList(const QString &path, const QString &table, int currency,
                                            bool withSearch);
    // search: live-search names made with the rows (null: made here when live search is on).
    void take(PriceListData &data, bool rebuild, LiveSearch *search = nullptr);
    void takeLoaded();
    void overtakePending();
    // price.db, or an invalid handle (and *error) without a data module.
    QSqlDatabase priceDb(QString *error);

    TModuleSQL *m_module = nullptr;
    RateGridModel m_model;
    LiveSearch m_search;
    SectionIndex m_sections;
    RemotePriceList m_remote;
    PriceTab m_tab = PriceTab::MyPrice;
    bool m_crew = false;
    int m_currency = 0;
    bool m_liveSearch = true;
    bool m_remoteFiltered = false;
    QFutureWatcher<std::shared_ptr<Loaded>> *m_pending = nullptr;
    // Reads overtaken by a later one: their rows are dropped, but they run to their end.
    QList<QFuture<std::shared_ptr<Loaded>>> m_overtaken;
};
