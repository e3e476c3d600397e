// IniFile.db: typed values with defaults, kept across reopening.

#include "TestFolder.h"
#include "storage/MainSettings.h"
#include "storage/SettingsStore.h"

#include <gtest/gtest.h>

namespace {

TEST(SettingsStore, TypedValuesDefaultsAndPersistence) {
    ensureApplication();
    TestFolder folder;
    const QString path = folder.file("IniFile.db");
    {
        SettingsStore s(path);
        ASSERT_TRUE(s.isOpen());
        EXPECT_EQ(s.text("View", "LastInfo", "нет"), QStringLiteral("нет"));
        EXPECT_EQ(s.integer("Param", "AutosaveTime", 180000), 180000);
        EXPECT_TRUE(s.flag("Param", "CheckBoxAutosave", true));
        s.setText("View", "LastInfo", "Строка с 'кавычкой' и \"двойной\"");
        s.setInteger("Param", "AutosaveTime", 60000);
        s.setFlag("Param", "CheckBoxAutosave", false);
        s.setNumber("Smeta", "EditKoefBrig", 0.75);
        s.setText("Param", "Broken", "abc");
        s.setText("View", "LastInfo", "заменено"); // a key is stored once
    }
    SettingsStore s(path);
    EXPECT_EQ(s.text("View", "LastInfo"), QStringLiteral("заменено"));
    EXPECT_EQ(s.integer("Param", "AutosaveTime", 1), 60000);
    EXPECT_FALSE(s.flag("Param", "CheckBoxAutosave", true));
    EXPECT_DOUBLE_EQ(s.number("Smeta", "EditKoefBrig"), 0.75);
    EXPECT_EQ(s.integer("Param", "Broken", 7), 7);
    EXPECT_TRUE(s.flag("Param", "Broken", true));
    EXPECT_EQ(s.keys("View"), QStringList{"LastInfo"});
    // The same key in two sections is two settings.
    s.setText("Other", "LastInfo", "x");
    EXPECT_EQ(s.text("View", "LastInfo"), QStringLiteral("заменено"));
    s.remove("Other", "LastInfo");
    EXPECT_FALSE(s.contains("Other", "LastInfo"));
}

TEST(SettingsStore, AnUnreadableFileGivesDefaults) {
    ensureApplication();
    TestFolder folder;
    SettingsStore s(folder.file("no/such/folder/IniFile.db"));
    EXPECT_FALSE(s.isOpen());
    EXPECT_FALSE(s.error().isEmpty());
    EXPECT_EQ(s.text("View", "FontSizeTable", "10"), QStringLiteral("10"));
    s.setText("View", "FontSizeTable", "12"); // ignored, no crash
}

TEST(MainSettings, EveryKeyRoundTripsThroughTheStore) {
    ensureApplication();
    TestFolder folder;
    MainSettings m;
    {
        SettingsStore s(folder.file("IniFile.db"));
        m.read(s);
        EXPECT_EQ(m.text("ComboBoxShablon"), QStringLiteral("ЛОКАЛЬНЫЙ РЕСУРСНЫЙ СМЕТНЫЙ РАСЧЕТ"));
        EXPECT_EQ(m.integer("AutosaveTime"), 180000);
        for (const auto &k : MainSettings::keys())
            m.set(k.key, k.key + "-value");
        m.write(s);
    }
    SettingsStore s(folder.file("IniFile.db"));
    MainSettings again;
    again.read(s);
    for (const auto &k : MainSettings::keys()) {
        EXPECT_EQ(again.text(k.key), k.key + "-value") << k.key.toStdString();
        EXPECT_EQ(s.text(k.section, k.key), k.key + "-value");
    }
}

} // namespace
