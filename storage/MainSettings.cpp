#include "MainSettings.h"

#include "SettingsStore.h"

const QVector<MainSettingKey> &MainSettings::keys() {
    static const QVector<MainSettingKey> k = {
        // Folders and files.
        {"Path", "Path", ""},
        {"Path", "LastDir", ""},
        {"Path", "Cashbook", ""},
        // Current choices of the estimate header.
        {"Currency", "Currency", "0"},
        {"Customer", "Customer", ""},
        {"Customer", "Object", ""},
        {"Contractor", "Contractor", ""},
        // Document saving.
        {"Param", "AutosaveTime", "180000"},
        {"Param", "AutosaveKeepDays", "30"},
        {"Param", "AutosaveMaxCopies", "50"},
        {"Param", "CheckBoxAutosave", "1"},
        {"Param", "CheckBoxAutosaveServer", "0"},
        {"Param", "CheckBoxLoadLastDoc", "0"},
        {"Param", "CheckBossDir", "1"},
        {"Param", "CheckBoxBoss", "1"},
        {"Param", "CheckBoxDetailAddress", "0"},
        {"Param", "CheckBoxRegion", "0"},
        {"Param", "CheckBoxCity", "1"},
        {"Param", "CheckBoxArea", "0"},
        {"Param", "CheckBoxStreet", "1"},
        {"Param", "CheckBoxHouse", "1"},
        {"Param", "CheckBoxApartment", "1"},
        {"Param", "CheckBoxDraft", "1"},
        // Estimate grid options.
        {"Param", "CheckBoxGotoFocus", "1"},
        {"Param", "CheckBoxLiveSearch", "1"},
        {"Param", "CheckBoxControlPrice", "0"},
        {"Param", "CheckBoxAllControlPrice", "0"},
        {"Param", "CheckBoxSortWork", "0"},
        {"Param", "CheckMatLiveSearch", "0"},
        {"Param", "CheckRowMat", "0"},
        {"Param", "ToolCheckRow", "0"},
        {"Param", "ToolCheckRowListMat", "0"},
        {"Param", "TypeStore", "Склад"},
        {"Param", "ZCheckBoxUridDan", "0"},
        {"Param", "PodryadCheckBoxUridDan", "0"},
        {"Param", "spdDateNumericSmetaWord", "0"},
        // Which windows are offered.
        {"Param", "CheckBoxPicture", "1"},
        {"Param", "CheckBoxMail", "1"},
        {"Param", "CheckBoxAccount", "1"},
        {"Param", "CheckBoxContract", "1"},
        {"Param", "CheckBoxActRequest", "1"},
        {"Param", "CheckBoxKassaBook", "1"},
        {"Param", "CheckBoxCalc", "1"},
        // Crew sheet.
        {"Smeta", "spdRasBrig", "0"},
        {"Smeta", "RadioButtonKoefBrig", "0"},
        {"Smeta", "EditKoefBrig", "0,7"},
        // Appearance and layout.
        {"View", "ComboBoxShablon", "ЛОКАЛЬНЫЙ РЕСУРСНЫЙ СМЕТНЫЙ РАСЧЕТ"},
        {"View", "EditLocal", "ЛОКАЛЬНЫЙ РЕСУРСНЫЙ СМЕТНЫЙ РАСЧЕТ"},
        {"View", "FontSizeTable", "10"},
        {"View", "ViewInfo", "1"},
        {"View", "LastInfo", "14.09.2018"},
        {"View", "ListMat", "0"},
        {"View", "ListMatWidth", "300"},
        {"View", "tabSkladListMat", "0"},
        {"View", "PanelRasLeft", "220"},
        {"View", "PanelRasRight", "520"},
        {"View", "PanelDocLeft", "0"},
        {"View", "PanelDocRight", "0"},
        {"View", "CoolBar1BandsWidth", ""},
        {"View", "CoolBar1BandsBreak", ""},
        {"View", "CoolBar1Bands1Break", ""},
        {"View", "CoolBar1Bands1Width", ""},
    };
    return k;
}

const MainSettingKey *MainSettings::find(const QString &key) {
    for (const auto &k : keys())
        if (k.key == key)
            return &k;
    return nullptr;
}

QString MainSettings::defaultOf(const QString &key) {
    const MainSettingKey *k = find(key);
    return k ? k->def : QString();
}

QString MainSettings::sectionOf(const QString &key) {
    for (const auto &k : keys())
        if (k.key == key)
            return k.section;
    return QStringLiteral("Param");
}

void MainSettings::read(const SettingsStore &store) {
    m_values.clear();
    for (const auto &k : keys())
        m_values.insert(k.key, store.text(k.section, k.key, k.def));
}

void MainSettings::write(SettingsStore &store) const {
    for (const auto &k : keys())
        store.setText(k.section, k.key, m_values.value(k.key, k.def));
}

QString MainSettings::text(const QString &key) const {
    auto it = m_values.constFind(key);
    if (it != m_values.constEnd())
        return *it;
    for (const auto &k : keys())
        if (k.key == key)
            return k.def;
    return {};
}

bool MainSettings::flag(const QString &key) const {
    const QString t = text(key).trimmed();
    return t == QLatin1String("1") || t == QLatin1String("-1") ||
           t.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
}

int MainSettings::integer(const QString &key, int def) const {
    bool ok = false;
    const int v = text(key).trimmed().toInt(&ok);
    return ok ? v : def;
}
