// The shared text rules: SQL literals, names, prices, amounts, money and dates.

#include "storage/Money.h"
#include "storage/TextValues.h"

#include <gtest/gtest.h>

using namespace TextValues;

namespace {

TEST(TextValues, SqlLiteralDoublesQuotesAndRefusesNul) {
    const std::pair<QString, QString> cases[] = {
        {"", "''"},       {"Окраска", "'Окраска'"},         {"O'Brien", "'O''Brien'"},
        {"''", "''''''"}, {"back\\slash", "'back\\slash'"}, {"ООО \"Ромашка\"", "'ООО \"Ромашка\"'"},
    };
    for (const auto &[in, out] : cases)
        EXPECT_EQ(sqlLiteral(in), out) << in.toStdString();
    EXPECT_THROW(sqlLiteral(QStringLiteral("a") + QChar(0) + QStringLiteral("b")), SqlTextError);
}

TEST(TextValues, SqlIdentifierQuotesAnyName) {
    const std::pair<QString, QString> cases[] = {
        {"smeta", "\"smeta\""}, {"a\"b", "\"a\"\"b\""}, {"таблица 1", "\"таблица 1\""}, {"", "\"\""}};
    for (const auto &[in, out] : cases)
        EXPECT_EQ(sqlIdentifier(in), out) << in.toStdString();
}

TEST(TextValues, NameRuleRoundTrips) {
    const std::pair<QString, QString> cases[] = {
        {"ООО \"Ромашка\"", "ООО `Ромашка`"},
        {"Иванов", "Иванов"},
        {"\"\"", "``"},
    };
    for (const auto &[shown, stored] : cases) {
        EXPECT_EQ(nameToStored(shown), stored);
        EXPECT_EQ(nameFromStored(stored), shown);
    }
    EXPECT_EQ(sqlName("ИП \"Д'Артаньян\""), QStringLiteral("'ИП `Д''Артаньян`'"));
}

TEST(TextValues, PriceRule) {
    struct Case {
        QString text;
        std::optional<QString> price; // the exact number read
        bool positive;
    };
    const Case cases[] = {
        {"1 250.50", "1250,5", true},
        {"1200-1500", "1200", true},
        {"350 - 450", "350", true},
        {"0", "0", false},
        {"0,00", "0", false},
        {"", std::nullopt, false},
        {"   ", std::nullopt, false},
        {"-", std::nullopt, false},
        {"договорная", std::nullopt, false},
        {"12,5,1", std::nullopt, false},
        {"1\u00a0000", "1000", true}, // a non-breaking blank as thousands separator
        {",5", "0,5", true},
        {"7.", "7", true},
    };
    for (const Case &c : cases) {
        auto v = parsePrice(c.text);
        ASSERT_EQ(v.has_value(), c.price.has_value()) << c.text.toStdString();
        if (v) {
            EXPECT_EQ(v->text(), *c.price) << c.text.toStdString();
        }
        EXPECT_EQ(parsePositivePrice(c.text).has_value(), c.positive) << c.text.toStdString();
    }
}

TEST(TextValues, AmountsKeepTheirSign) {
    const std::pair<QString, std::optional<QString>> cases[] = {
        {"-5", "-5"},      {"-2,5", "-2,5"},      {"3.25", "3,25"},
        {"\u22124", "-4"}, {"--1", std::nullopt}, {"abc", std::nullopt},
    };
    for (const auto &[text, value] : cases) {
        auto v = parseAmount(text);
        ASSERT_EQ(v.has_value(), value.has_value()) << text.toStdString();
        if (v) {
            EXPECT_EQ(v->text(), *value);
        }
    }
}

TEST(TextValues, MoneyIsRoundedToKopecksHalfAwayFromZero) {
    const std::pair<QString, QString> cases[] = {
        {"0", "0,00"},
        {"1,005", "1,01"},
        {"0,285", "0,29"},
        {"2,675", "2,68"},
        {"-1,005", "-1,01"},
        {"-0,001", "0,00"},
        {"1234567,891", "1234567,89"},
    };
    for (const auto &[v, text] : cases)
        EXPECT_EQ(Money::parse(v)->text(), text) << v.toStdString();
    EXPECT_EQ(Money::product(*parseAmount("12,5"), *parseAmount("380"))->text(), QStringLiteral("4750,00"));
    EXPECT_EQ(Money::of(*parseAmount("0,1")->plus(*parseAmount("0,2")))->text(), QStringLiteral("0,30"));
    EXPECT_EQ(Money::parse("1234567,891")->grouped(), QStringLiteral("1 234 567,89"));
    EXPECT_EQ(Money::parse("-999,5")->grouped(), QStringLiteral("-999,50"));
    EXPECT_EQ(formatQuantity(*parseAmount("1,5")), QStringLiteral("1,5"));
    EXPECT_EQ(formatQuantity(*parseAmount("12")), QStringLiteral("12"));
    EXPECT_EQ(formatQuantity(*parseAmount("0,3333333")), QStringLiteral("0,333"));
}

TEST(TextValues, DateForms) {
    const QDate jan(2025, 1, 7), dec(2024, 12, 31);
    EXPECT_EQ(shortDate(jan), QStringLiteral("07.01.2025"));
    EXPECT_EQ(dateCompareDay(jan), QStringLiteral("20250107"));
    EXPECT_EQ(dateCompareSeconds(jan), QStringLiteral("20250107000000"));
    EXPECT_EQ(dateCompareSeconds(QDateTime(dec, QTime(9, 5, 3))), QStringLiteral("20241231090503"));
    EXPECT_EQ(monthText(jan), QStringLiteral("1"));
    EXPECT_EQ(monthText(dec), QStringLiteral("12"));
    EXPECT_EQ(yearText(jan), QStringLiteral("2025"));
    EXPECT_EQ(parseShortDate(QStringLiteral("05.03.2020")), QDate(2020, 3, 5));
    EXPECT_EQ(parseShortDate(QStringLiteral("5.3.2020")), QDate(2020, 3, 5));
    EXPECT_FALSE(parseShortDate(QStringLiteral("31.02.2020")).isValid());
}

TEST(TextValues, TableNamesFromSettings) {
    EXPECT_TRUE(isSafeTableName("price_user_7"));
    for (const char *bad : {"", "price1; DROP TABLE x", "цены", "a-b", "a b", "`x`"})
        EXPECT_FALSE(isSafeTableName(QString::fromUtf8(bad))) << bad;
}

} // namespace
