// Money and exact decimals: the number rule, rounding half away from zero, the range a user can have,
// products and shares, and the refusals instead of wrapped numbers.

#include "storage/Money.h"
#include "storage/TextValues.h"

#include <gtest/gtest.h>

namespace {

Decimal dec(const char *text) {
    const auto v = TextValues::parseAmount(QString::fromUtf8(text));
    EXPECT_TRUE(v.has_value()) << text;
    return v.value_or(Decimal());
}

// "refused" for a refused result, else its text.
QString shown(const MoneyResult &r) {
    return r.ok() ? r->text() : QStringLiteral("refused");
}

TEST(Money, ParsesByTheNumberRule) {
    struct Case {
        const char *text;
        const char *amount; // Money::text, or "refused"
        NumberProblem problem;
    };
    const Case cases[] = {
        {"1 234,5", "1234,50", NumberProblem::None},
        {"1.5", "1,50", NumberProblem::None},
        {"-3", "-3,00", NumberProblem::None},
        {"\u22127,25", "-7,25", NumberProblem::None}, // a typographic minus
        {"12-15", "12,00", NumberProblem::None},      // a range counts its low end
        {"1\u00a0000", "1000,00", NumberProblem::None},
        {",5", "0,50", NumberProblem::None},
        {"7.", "7,00", NumberProblem::None},
        {"0,005", "0,01", NumberProblem::None},   // half a kopeck goes up
        {"-0,005", "-0,01", NumberProblem::None}, // and away from zero when negative
        {"0,0049", "0,00", NumberProblem::None},
        {"abc", "refused", NumberProblem::NotANumber},
        {"", "refused", NumberProblem::Blank},
        {"   ", "refused", NumberProblem::Blank},
        {"-", "refused", NumberProblem::NotANumber},
        {"--1", "refused", NumberProblem::NotANumber},
        {"12,5,1", "refused", NumberProblem::NotANumber},
        {"1e5", "refused", NumberProblem::NotANumber},
        {"١٢", "refused", NumberProblem::NotANumber}, // digits of another script are not ours
        {"999 999 999 999,99", "999999999999,99", NumberProblem::None},
        {"-999999999999,99", "-999999999999,99", NumberProblem::None},
        {"1 000 000 000 000", "refused", NumberProblem::TooLarge},
        {"999999999999,995", "refused", NumberProblem::TooLarge}, // rounds past the maximum
        {"1234567890123456789", "refused", NumberProblem::TooManyDigits},
        {"0,0000000000000000001", "refused", NumberProblem::TooManyDigits},
        {"000000000000000000000012,50000000000000000000", "12,50", NumberProblem::None},
    };
    for (const Case &c : cases) {
        const MoneyResult r = Money::parse(QString::fromUtf8(c.text));
        EXPECT_EQ(shown(r), QString::fromUtf8(c.amount)) << c.text;
        EXPECT_EQ(r.problem(), c.problem) << c.text;
    }
}

TEST(Money, PricesAndQuantitiesStayExact) {
    struct Case {
        const char *text;
        bool signAllowed;
        const char *quantity; // formatQuantity, or "" when not a number
        const char *price;    // formatPrice
    };
    const Case cases[] = {
        {"0,125", false, "0,125", "0,125"},
        {"1 250.50", false, "1250,5", "1250,50"},
        {"1200-1500", false, "1200", "1200,00"},
        {"-2,5", true, "-2,5", "-2,50"},
        {"-2,5", false, "", ""}, // a price has no sign: "-2,5" is cut at its "-"
        {"0,33335", true, "0,333", "0,33335"},
        {"2,0005", true, "2,001", "2,0005"},
        {"-2,0005", true, "-2,001", "-2,0005"},
        {"0", true, "0", "0,00"},
    };
    for (const Case &c : cases) {
        const auto r = TextValues::readNumber(QString::fromUtf8(c.text), c.signAllowed);
        if (!*c.quantity) {
            EXPECT_FALSE(r.value) << c.text;
            continue;
        }
        ASSERT_TRUE(r.value) << c.text;
        EXPECT_EQ(TextValues::formatQuantity(*r.value), QString::fromUtf8(c.quantity)) << c.text;
        EXPECT_EQ(TextValues::formatPrice(*r.value), QString::fromUtf8(c.price)) << c.text;
    }
    EXPECT_EQ(dec("1,50"), dec("1,5"));
    EXPECT_LT(dec("-0,1"), dec("0,05"));
    EXPECT_EQ(*dec("0,1").plus(dec("0,2")), dec("0,3"));
    EXPECT_EQ(*dec("1,25").times(dec("3,333"), 3), dec("4,166")); // 4,16625 rounds to 4,166
    EXPECT_FALSE(dec("999999999999999999").plus(dec("1")));
}

TEST(Money, ProductsRoundOnceHalfAwayFromZero) {
    struct Case {
        const char *price, *quantity, *amount;
    };
    const Case cases[] = {
        {"0,125", "1000", "125,00"}, // the price is not rounded before multiplying
        {"0,125", "1", "0,13"},
        {"0,125", "-1", "-0,13"},
        {"99,99", "1,5", "149,99"}, // 149,985
        {"2,675", "1", "2,68"},
        {"1,005", "-1", "-1,01"},
        {"0,285", "1", "0,29"},
        {"380", "12,5", "4750,00"},
        {"0,0001", "0,0001", "0,00"},
        {"999999999999,99", "1", "999999999999,99"},
        {"999999999999,99", "-1", "-999999999999,99"},
        {"499999999999,995", "2", "999999999999,99"},
        {"1000000000", "1000", "refused"},
        {"100", "999999999999999999", "refused"},
        {"0,01", "999999999999999999", "refused"},
        {"999999999999999999", "999999999999999999", "refused"},
        {"999999999999,99", "1,00000001", "refused"},
    };
    for (const Case &c : cases) {
        const MoneyResult r = Money::product(dec(c.price), dec(c.quantity));
        EXPECT_EQ(shown(r), QString::fromUtf8(c.amount)) << c.price << " × " << c.quantity;
        if (!r.ok()) {
            EXPECT_EQ(r.problem(), NumberProblem::TooLarge);
        }
    }
}

TEST(Money, SharesAndCoefficients) {
    struct Case {
        const char *what, *base;
        std::function<MoneyResult(Money)> op;
        const char *amount;
    };
    const std::vector<Case> cases = {
        {"10 % of 1000", "1000", [](Money m) { return m.percent(dec("10")); }, "100,00"},
        {"33,333 % of 1000", "1000", [](Money m) { return m.percent(dec("33,333")); }, "333,33"},
        {"12,5 % of 0,04 (0,005)", "0,04", [](Money m) { return m.percent(dec("12,5")); }, "0,01"},
        {"12,5 % of -0,04", "-0,04", [](Money m) { return m.percent(dec("12,5")); }, "-0,01"},
        {"× 1,2", "10000", [](Money m) { return m.times(dec("1,2")); }, "12000,00"},
        {"÷ 3", "100", [](Money m) { return m.dividedBy(dec("3")); }, "33,33"},
        {"÷ 0,000000000000000001", "1", [](Money m) { return m.dividedBy(dec("0,000000000000000001")); },
         "refused"},
        {"÷ 0", "100", [](Money m) { return m.dividedBy(dec("0")); }, "refused"},
        {"VAT 20 included in 1500", "1500", [](Money m) { return m.scaled(dec("20"), dec("120")); },
         "250,00"},
        {"huge percentage", "1000", [](Money m) { return m.percent(dec("999999999999999999")); }, "refused"},
        {"× maximum stays", "999999999999,99", [](Money m) { return m.times(dec("1")); }, "999999999999,99"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(shown(c.op(*Money::parse(QString::fromUtf8(c.base)))), QString::fromUtf8(c.amount))
            << c.what;
    EXPECT_EQ(Money::parse("100")->dividedBy(dec("0")).problem(), NumberProblem::DivisionByZero);
}

TEST(Money, SumsAreRefusedAtTheLimitNeverWrapped) {
    const Money max = Money::maximum();
    const Money kopeck = *Money::fromKopecks(1);
    struct Case {
        const char *what;
        MoneyResult sum;
        const char *amount;
    };
    const Case cases[] = {
        {"maximum + 0", max + Money(), "999999999999,99"},
        {"maximum + 1 kopeck", max + kopeck, "refused"},
        {"-maximum - 1 kopeck", -max - kopeck, "refused"},
        {"maximum - maximum", max - max, "0,00"},
        {"a refused part refuses the sum", MoneyResult::refused(NumberProblem::TooLarge) + kopeck, "refused"},
        {"and stays refused", (max + max) - max, "refused"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(shown(c.sum), QString::fromUtf8(c.amount)) << c.what;
    EXPECT_EQ(Money::fromKopecks(Money::kMaxKopecks), max);
    EXPECT_FALSE(Money::fromKopecks(Money::kMaxKopecks + 1));
    EXPECT_FALSE(Money::fromKopecks(std::numeric_limits<qint64>::min()));
    // A running total past the limit keeps the first reason.
    MoneyResult total = Money();
    for (int i = 0; i < 3; ++i)
        total += max;
    EXPECT_EQ(total.problem(), NumberProblem::TooLarge);
    EXPECT_EQ(total.text(), QString());
}

TEST(Money, Formats) {
    const std::pair<const char *, std::pair<const char *, const char *>> cases[] = {
        {"0", {"0,00", "0,00"}},
        {"-0,001", {"0,00", "0,00"}}, // no "-0,00"
        {"-0,07", {"-0,07", "-0,07"}},
        {"999,5", {"999,50", "999,50"}},
        {"1234567,891", {"1234567,89", "1 234 567,89"}},
        {"-12345,6", {"-12345,60", "-12 345,60"}},
        {"999999999999,99", {"999999999999,99", "999 999 999 999,99"}},
    };
    for (const auto &[text, forms] : cases) {
        const MoneyResult m = Money::parse(QString::fromUtf8(text));
        ASSERT_TRUE(m.ok()) << text;
        EXPECT_EQ(m->text(), QString::fromUtf8(forms.first)) << text;
        EXPECT_EQ(m->grouped(), QString::fromUtf8(forms.second)) << text;
    }
    EXPECT_TRUE(numberProblemText(NumberProblem::TooLarge).contains(QStringLiteral("999 999 999 999,99")));
}

} // namespace
