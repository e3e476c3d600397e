// The printed estimate against the real engine: the closing block (totals, the amount in words, the
// signatures) never stands alone under the repeated table heading, nor is it split between pages.

#include "EngineFixture.h"
#include "OfficeFiles.h"

#include "estimate/EstimateOutput.h"
#include "office/OfficeTemplates.h"
#include "office/SheetTemplate.h"

#include <QRegularExpression>

namespace {

class PrintedPages : public Engine {
protected:
    void SetUp() override {
        Engine::SetUp();
        m_data = m_folder.file(QStringLiteral("data"));
        QString error;
        OfficeTemplates::ensureDefaults(m_data, &error);
        ASSERT_TRUE(error.isEmpty()) << error.toStdString();
    }
    // An estimate of n works of one line each, as a PDF; the text of each page.
    QStringList pages(int n, bool keepTogether) {
        EstimatePrint p;
        p.title = QStringLiteral("СМЕТА");
        p.customer = QStringLiteral("Заказчик");
        p.number = QStringLiteral("1");
        p.date = QDate(2026, 3, 16);
        Money total;
        for (int i = 1; i <= n; ++i) {
            EstimatePrint::Row r;
            r.number = QString::number(i);
            r.name = QStringLiteral("Работа %1").arg(i, 3, 10, QLatin1Char('0'));
            r.unit = QStringLiteral("м2");
            r.quantity = QStringLiteral("1");
            r.price = QStringLiteral("100,00");
            r.sum = QStringLiteral("100,00");
            p.rows << r;
            total = (total + *Money::parse(QStringLiteral("100"))).value();
        }
        p.worksRaw = p.worksTotal = p.grand = total;
        const EstimateOutput::Sheet sheet = EstimateOutput::sheetFor(p.title, ViewTitles());
        SheetData data = EstimateOutput::sheetData(p, sheet, ViewTitles());
        data.keepTogether = keepTogether;
        const QString pdf = m_folder.file(QStringLiteral("pages-%1-%2.pdf").arg(n).arg(keepTogether));
        QString error;
        EXPECT_TRUE(SheetTemplate::fill(engine(), OfficeTemplates::path(m_data, sheet.templateFile), data,
                                        {{pdf, QStringLiteral("pdf")}}, &error))
            << error.toStdString();
        QStringList out = pdfText(pdf).split(u'\f');
        while (!out.isEmpty() && out.last().trimmed().isEmpty())
            out.removeLast();
        return out;
    }
    static int works(const QString &page) {
        static const QRegularExpression re(QStringLiteral("Работа \\d{3}"));
        return static_cast<int>(page.count(re));
    }
    static int pageWith(const QStringList &pages, const QString &text) {
        for (int i = 0; i < pages.size(); ++i)
            if (pages[i].contains(text))
                return i;
        return -1;
    }
    QString m_data;
};

TEST_F(PrintedPages, TheClosingBlockStaysWithTheLastRowsOfTheTable) {
    // How many one-line works the engine puts on the first and on a later page.
    const QStringList plain = pages(150, false);
    ASSERT_GE(plain.size(), 3);
    const int first = works(plain[0]), later = works(plain[1]);
    ASSERT_GT(first, 5);
    ASSERT_GT(later, first);

    // The table ending at the foot of page 2: without keeping together the last page shows the repeated
    // heading and the closing block, with no row of the table.
    const int exact = first + later;
    const QStringList before = pages(exact, false);
    ASSERT_EQ(before.size(), 3) << "the table fills two pages exactly";
    EXPECT_EQ(works(before[2]), 0);
    EXPECT_TRUE(before[2].contains(QStringLiteral("ВСЕГО по смете")));

    // Kept together: whatever the length, the page of the totals holds rows of the table, the amount in
    // words and the signatures.
    for (int n : {exact, exact - 1, exact - 2, exact - 3, exact + 1}) {
        const QStringList kept = pages(n, true);
        const int total = pageWith(kept, QStringLiteral("ВСЕГО по смете"));
        ASSERT_GE(total, 0) << n;
        EXPECT_EQ(total, kept.size() - 1) << n << ": the totals are on the last page";
        EXPECT_GE(works(kept[total]), 2) << n << ": rows of the table go with the totals";
        EXPECT_TRUE(kept[total].contains(QStringLiteral("Всего по смете:"))) << n;
        EXPECT_TRUE(kept[total].contains(QStringLiteral("М. П.")))
            << n << ": the signatures are not split off";
        int all = 0;
        for (const QString &page : kept)
            all += works(page);
        EXPECT_EQ(all, n) << "every row printed once";
    }
}

} // namespace
