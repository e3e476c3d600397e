#pragma once
// A job of the office engine run on the engine's thread behind a modal progress window of the parent
// (shown when the job lasts over 300 ms); done runs on the window's thread once the job has ended and
// the progress window is gone.

#include "office/OfficeService.h"

#include <QString>
#include <functional>

class QWidget;

namespace OfficeJobWindow {

void run(QWidget *parent, OfficeService &office, const QString &title, const QString &text,
         OfficeService::Job job, std::function<void(const OfficeService::Result &)> done);

} // namespace OfficeJobWindow
