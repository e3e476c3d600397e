#pragma once
// Access to the main window's options (checkable menu items whose names are settings keys) for the
// windows of this folder, whose own check boxes show and change the same options.

#include <QHash>
#include <QString>
#include <functional>
#include <memory>

struct OptionFlags {
    std::function<bool(const QString &key)> get;
    std::function<void(const QString &key, bool on)> set;

    // Options kept only in memory, starting from defaults (a window used on its own, tests).
    static OptionFlags inMemory(const QHash<QString, bool> &defaults = {}) {
        auto values = std::make_shared<QHash<QString, bool>>(defaults);
        return {[values](const QString &k) { return values->value(k, false); },
                [values](const QString &k, bool on) { values->insert(k, on); }};
    }
};
