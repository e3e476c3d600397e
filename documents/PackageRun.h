#pragma once
// The package being made: its documents begun in their order, each prepared and registered on this
// (the document's) thread and written on an office engine's thread, so that the window stays
// responsive and the engines stay warm for the whole package. The documents are independent files, so
// as many are written at once as the office service has lanes; the acts name the package's contract
// as the package gives it, and an act by volumes waits for every document before it (it reads the
// acts kept before it). One document that fails does not stop the others; a cancel takes effect
// between documents: those begun are finished, the others skipped.

#include "PackageJob.h"

#include <QObject>
#include <QVector>

class EstimateDocument;
class OfficeService;

class PackageRun : public QObject {
    Q_OBJECT
public:
    // The document and the office service must outlive the run.
    PackageRun(const EstimateDocument &document, const PackageRequest &request,
               const PackageSettings &settings, OfficeService &office, QObject *parent = nullptr);

    // Starts with the first ticked document (returns at once; the end comes with finished()).
    void start();
    // The documents not begun yet are skipped.
    void cancel();
    bool running() const { return m_running; }
    bool cancelled() const { return m_cancelled; }
    const QVector<PackageItem> &items() const { return m_items; }

    // What became of the package, for the user: the files made, and each document that failed or was
    // not registered, by name.
    static QString report(const QVector<PackageItem> &items, const QString &folder);
    // True when every document was made and registered.
    static bool complete(const QVector<PackageItem> &items);

signals:
    // A document is begun: its index among the ticked ones and "Создаётся... Договор".
    void stageStarted(int index, int count, const QString &text);
    // The whole package's progress, 0..100.
    void progressChanged(int percent);
    // Each document once it is written and registered (or failed), in the package's order.
    void itemFinished(const PackageItem &item);
    void finished();

private:
    // Working: on an engine's thread; Rendered: written (or failed), not yet registered; Done: registered.
    enum class State { Waiting, Working, Rendered, Done };
    // Registers what is written and begins the next documents while a lane is free and what they need
    // is done; finishes the package when all are done.
    void pump();
    bool settle();
    bool beginNext();
    bool allBeforeDone(int index) const;
    void begin(int index, int lane);
    void rendered(int index, int lane, const PackageItem &item);
    void reportProgress();
    void finish();

    const EstimateDocument &m_document;
    PackageRequest m_request;
    PackageSettings m_settings;
    OfficeService &m_office;
    QVector<PackageItem> m_items;
    QVector<State> m_states;
    QVector<int> m_percent; // each document's own progress
    QVector<bool> m_busy;   // the office service's lanes at work
    int m_next = 0;         // the first document not begun
    int m_settled = 0;      // the documents registered and told by itemFinished, in order
    bool m_running = false;
    bool m_cancelled = false;
};
