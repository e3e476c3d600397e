#include "Dialogs.h"

#include "WidgetDialogs.h"

namespace {
std::unique_ptr<Dialogs> &current() {
    static std::unique_ptr<Dialogs> impl;
    return impl;
}
} // namespace

Dialogs &dialogs() {
    if (!current())
        current() = std::make_unique<WidgetDialogs>();
    return *current();
}

std::unique_ptr<Dialogs> installDialogs(std::unique_ptr<Dialogs> impl) {
    std::unique_ptr<Dialogs> previous = std::move(current());
    current() = std::move(impl);
    return previous;
}
