#pragma once
// Office work started from a materials window (a spreadsheet read or written): the program's office
// engine when it can take work now (else the user is told why), and one job at a time run on the
// engine's thread behind a window-modal progress window; the result comes back on the window's thread.

#include "office/OfficeService.h"

#include <QObject>
#include <functional>

class QWidget;

class OfficeJobs : public QObject {
    Q_OBJECT
public:
    explicit OfficeJobs(QWidget *owner);

    void setProvider(std::function<OfficeService *()> provider) { m_provider = std::move(provider); }
    bool busy() const { return m_busy; }

    // The engine, or null (busy with another job, or the user was told why there is none).
    OfficeService *ready();
    // Runs the job behind a progress window titled `title`; `done` gets its result.
    void run(OfficeService *office, const QString &title, const QString &text, OfficeService::Job job,
             std::function<void(const OfficeService::Result &)> done);

private:
    QWidget *m_owner;
    std::function<OfficeService *()> m_provider;
    bool m_busy = false;
};
