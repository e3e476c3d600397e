#include "office/InWord.h"

#include <gtest/gtest.h>

namespace {

struct AmountCase {
    const char *value; // as typed
    int currency;
    const char *expected;
};

// Test names show the amount and the currency rather than the bytes of the case.
void PrintTo(const AmountCase &c, std::ostream *os) {
    *os << c.value << " (" << c.currency << ")";
}

class InWordAmount : public ::testing::TestWithParam<AmountCase> {};

TEST_P(InWordAmount, Words) {
    const AmountCase &c = GetParam();
    const MoneyResult value = Money::parse(QString::fromUtf8(c.value));
    ASSERT_TRUE(value.ok()) << c.value;
    EXPECT_EQ(TInWord::amount(*value, c.currency).toStdString(), std::string(c.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Roubles, InWordAmount,
    ::testing::Values(
        AmountCase{"1", TInWord::Rub, "Один рубль 00 копеек"},
        AmountCase{"2", TInWord::Rub, "Два рубля 00 копеек"},
        AmountCase{"5", TInWord::Rub, "Пять рублей 00 копеек"},
        AmountCase{"11", TInWord::Rub, "Одиннадцать рублей 00 копеек"},
        AmountCase{"12", TInWord::Rub, "Двенадцать рублей 00 копеек"},
        AmountCase{"13", TInWord::Rub, "Тринадцать рублей 00 копеек"},
        AmountCase{"14", TInWord::Rub, "Четырнадцать рублей 00 копеек"},
        AmountCase{"21", TInWord::Rub, "Двадцать один рубль 00 копеек"},
        AmountCase{"101", TInWord::Rub, "Сто один рубль 00 копеек"},
        AmountCase{"111", TInWord::Rub, "Сто одиннадцать рублей 00 копеек"},
        AmountCase{"1000", TInWord::Rub, "Одна тысяча рублей 00 копеек"},
        AmountCase{"2000", TInWord::Rub, "Две тысячи рублей 00 копеек"},
        AmountCase{"5000", TInWord::Rub, "Пять тысяч рублей 00 копеек"},
        AmountCase{"11000", TInWord::Rub, "Одиннадцать тысяч рублей 00 копеек"},
        AmountCase{"21000", TInWord::Rub, "Двадцать одна тысяча рублей 00 копеек"},
        AmountCase{"1000000", TInWord::Rub, "Один миллион рублей 00 копеек"},
        AmountCase{"2000000", TInWord::Rub, "Два миллиона рублей 00 копеек"},
        AmountCase{"5000000000.0", TInWord::Rub, "Пять миллиардов рублей 00 копеек"},
        AmountCase{"12345.67", TInWord::Rub, "Двенадцать тысяч триста сорок пять рублей 67 копеек"},
        AmountCase{"0.01", TInWord::Rub, "Ноль рублей 01 копейка"},
        AmountCase{"0.02", TInWord::Rub, "Ноль рублей 02 копейки"},
        AmountCase{"0.11", TInWord::Rub, "Ноль рублей 11 копеек"},
        AmountCase{"0.21", TInWord::Rub, "Ноль рублей 21 копейка"},
        AmountCase{"0", TInWord::Rub, "Ноль рублей 00 копеек"},
        AmountCase{"-100", TInWord::Rub, "Минус сто рублей 00 копеек"},
        AmountCase{"0.285", TInWord::Rub, "Ноль рублей 29 копеек"},
        AmountCase{"1001001", TInWord::Rub, "Один миллион одна тысяча один рубль 00 копеек"},
        AmountCase{"999999999999.99", TInWord::Rub,
                   "Девятьсот девяносто девять миллиардов девятьсот девяносто девять миллионов "
                   "девятьсот девяносто девять тысяч девятьсот девяносто девять рублей 99 копеек"}));

INSTANTIATE_TEST_SUITE_P(
    OtherCurrencies, InWordAmount,
    ::testing::Values(AmountCase{"1", TInWord::Dol, "Один доллар 00 центов"},
                      AmountCase{"2.01", TInWord::Dol, "Два доллара 01 цент"},
                      AmountCase{"5.03", TInWord::Dol, "Пять долларов 03 цента"},
                      AmountCase{"1", TInWord::Grn, "Одна гривна 00 копеек"},
                      AmountCase{"2", TInWord::Grn, "Две гривны 00 копеек"},
                      AmountCase{"5", TInWord::Grn, "Пять гривен 00 копеек"},
                      AmountCase{"22", TInWord::Grn, "Двадцать две гривны 00 копеек"},
                      AmountCase{"1", TInWord::Br, "Один белорусский рубль 00 копеек"},
                      AmountCase{"3", TInWord::Br, "Три белорусских рубля 00 копеек"},
                      AmountCase{"12", TInWord::Br, "Двенадцать белорусских рублей 00 копеек"},
                      AmountCase{"1", TInWord::Tenge, "Один тенге 00 тиынов"},
                      AmountCase{"2.01", TInWord::Tenge, "Два тенге 01 тиын"},
                      AmountCase{"1000.04", TInWord::Tenge, "Одна тысяча тенге 04 тиына"}));

TEST(InWord, PluralForms) {
    struct Case {
        qint64 n;
        const char *form;
    } cases[] = {{0, "many"},  {1, "one"},    {2, "few"},    {4, "few"},    {5, "many"},
                 {11, "many"}, {12, "many"},  {14, "many"},  {21, "one"},   {22, "few"},
                 {101, "one"}, {111, "many"}, {112, "many"}, {1001, "one"}, {-2, "few"}};
    for (const Case &c : cases)
        EXPECT_EQ(TInWord::plural(c.n, "one", "few", "many").toStdString(), std::string(c.form)) << c.n;
}

TEST(InWord, NumberGenders) {
    EXPECT_EQ(TInWord::number(1, TInWord::Gender::Masculine), QStringLiteral("один"));
    EXPECT_EQ(TInWord::number(1, TInWord::Gender::Feminine), QStringLiteral("одна"));
    EXPECT_EQ(TInWord::number(2, TInWord::Gender::Feminine), QStringLiteral("две"));
    EXPECT_EQ(TInWord::number(2002, TInWord::Gender::Masculine), QStringLiteral("две тысячи два"));
    EXPECT_EQ(TInWord::number(1000000000, TInWord::Gender::Feminine), QStringLiteral("один миллиард"));
    EXPECT_EQ(TInWord::number(0, TInWord::Gender::Feminine), QStringLiteral("ноль"));
}

TEST(InWord, TheWholeRangeOfMoneyIsWrittenInWords) {
    EXPECT_EQ(TInWord::amount(-Money::maximum(), TInWord::Grn),
              QStringLiteral("Минус девятьсот девяносто девять миллиардов девятьсот девяносто девять "
                             "миллионов девятьсот девяносто девять тысяч девятьсот девяносто девять гривен "
                             "99 копеек"));
}

} // namespace
