#pragma once
// The package being made: its documents one after another, each prepared and registered on this
// (the document's) thread and written on the office engine's thread, so that the window stays
// responsive and the engine stays warm for the whole package. One document that fails does not stop
// the others; a cancel takes effect between two documents.

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
    void itemFinished(const PackageItem &item);
    void finished();

private:
    void next();
    void rendered(int index, const PackageItem &item);
    void finish();

    const EstimateDocument &m_document;
    PackageRequest m_request;
    PackageSettings m_settings;
    OfficeService &m_office;
    QVector<PackageItem> m_items;
    int m_current = -1;
    bool m_running = false;
    bool m_cancelled = false;
};
