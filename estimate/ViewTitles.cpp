#include "ViewTitles.h"

#include "storage/SettingsStore.h"

const QString ViewTitles::section = QStringLiteral("View");

const QStringList &ViewTitles::keys() {
    static const QStringList k{QStringLiteral("EditSmetaName"), QStringLiteral("EditSmeta"),
                               QStringLiteral("EditAktName"),   QStringLiteral("EditAkt"),
                               QStringLiteral("EditLocal"),     QStringLiteral("EditAfterLocal"),
                               QStringLiteral("EditPodryad")};
    return k;
}

QString ViewTitles::value(const QString &key) const {
    const QString *fields[] = {&smetaName, &smeta, &aktName, &akt, &local, &afterLocal, &podryad};
    const int i = keys().indexOf(key);
    return i >= 0 ? *fields[i] : QString();
}

void ViewTitles::set(const QString &key, const QString &text) {
    QString *fields[] = {&smetaName, &smeta, &aktName, &akt, &local, &afterLocal, &podryad};
    const int i = keys().indexOf(key);
    if (i >= 0)
        *fields[i] = text;
}

ViewTitles ViewTitles::read(const std::function<QString(const QString &, const QString &)> &get) {
    ViewTitles t;
    const ViewTitles defaults;
    for (const QString &key : keys()) {
        const QString v = get(key, defaults.value(key));
        t.set(key, v.trimmed().isEmpty() ? defaults.value(key) : v);
    }
    return t;
}

ViewTitles ViewTitles::read(const SettingsStore &store) {
    return read([&store](const QString &key, const QString &def) { return store.text(section, key, def); });
}

void ViewTitles::write(SettingsStore &store) const {
    for (const QString &key : keys())
        store.setText(section, key, value(key));
}
