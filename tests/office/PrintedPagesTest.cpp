// The printed estimate against the real engine: the closing block (the grand total, the amount in
// words, the signatures) is never split between pages, no page ends with a section's title, and an
// estimate whose pages already keep that is printed exactly as the engine lays it out. Each case is
// also printed without keeping pages together, as the program did before, to show the fault is there.

#include "EngineFixture.h"
#include "OfficeFiles.h"

#include "estimate/EstimateOutput.h"
#include "office/OfficeTemplates.h"
#include "office/SheetTemplate.h"

#include <QRegularExpression>

namespace {

const QString kGrand = QStringLiteral("ВСЕГО по смете");
const QString kSeal = QStringLiteral("М. П.");
const QString kSection = QStringLiteral("Раздел второй");

EstimatePrint::Row work(int n) {
    EstimatePrint::Row r;
    r.number = QString::number(n);
    r.name = QStringLiteral("Работа %1").arg(n, 3, 10, QLatin1Char('0'));
    r.unit = QStringLiteral("м2");
    r.quantity = QStringLiteral("1");
    r.price = QStringLiteral("100,00");
    r.sum = QStringLiteral("100,00");
    return r;
}

EstimatePrint::Row section(const QString &name) {
    EstimatePrint::Row r;
    r.kind = EstimatePrint::Kind::Section;
    r.name = name;
    return r;
}

// n works, with a section's title before work `sectionBefore` (none when 0).
QVector<EstimatePrint::Row> works(int n, int sectionBefore = 0) {
    QVector<EstimatePrint::Row> rows;
    for (int i = 1; i <= n; ++i) {
        if (i == sectionBefore)
            rows << section(kSection);
        rows << work(i);
    }
    return rows;
}

int pageWith(const QStringList &pages, const QString &text, bool last = false) {
    int found = -1;
    for (int i = 0; i < pages.size(); ++i)
        if (pages.at(i).contains(text)) {
            found = i;
            if (!last)
                break;
        }
    return found;
}

int worksOn(const QString &page) {
    static const QRegularExpression re(QStringLiteral("Работа \\d{3}"));
    return static_cast<int>(page.count(re));
}

class PrintedPages : public Engine {
protected:
    void SetUp() override {
        Engine::SetUp();
        m_data = m_folder.file(QStringLiteral("data"));
        QString error;
        OfficeTemplates::ensureDefaults(m_data, &error);
        ASSERT_TRUE(error.isEmpty()) << error.toStdString();
    }

    // The estimate as a PDF, the text of each page.
    QStringList print(const QVector<EstimatePrint::Row> &rows, bool keepTogether) {
        EstimatePrint p;
        p.title = QStringLiteral("СМЕТА");
        p.customer = QStringLiteral("Заказчик");
        p.number = QStringLiteral("1");
        p.date = QDate(2026, 3, 16);
        p.rows = rows;
        Money total;
        for (const EstimatePrint::Row &r : rows)
            if (r.kind == EstimatePrint::Kind::Work)
                total = (total + *Money::parse(r.sum)).value();
        p.worksRaw = p.worksTotal = p.grand = total;
        const EstimateOutput::Sheet sheet = EstimateOutput::sheetFor(p.title, ViewTitles());
        SheetData data = EstimateOutput::sheetData(p, sheet, ViewTitles());
        data.keepTogether = keepTogether;
        const QString pdf = m_folder.file(QStringLiteral("pages-%1.pdf").arg(++m_made));
        QString error;
        EXPECT_TRUE(SheetTemplate::fill(engine(), OfficeTemplates::path(m_data, sheet.templateFile), data,
                                        {{pdf, QStringLiteral("pdf")}}, &error))
            << error.toStdString();
        QStringList pages = pdfText(pdf).split(u'\f');
        while (!pages.isEmpty() && pages.last().trimmed().isEmpty())
            pages.removeLast();
        return pages;
    }

    // How many one-line works the first page and a later page hold.
    void measure(int *first, int *later) {
        const QStringList pages = print(works(150), false);
        ASSERT_GE(pages.size(), 3);
        *first = worksOn(pages.at(0));
        *later = worksOn(pages.at(1));
        ASSERT_GT(*first, 5);
    }

    QString m_data;
    int m_made = 0;
};

TEST_F(PrintedPages, TheClosingBlockIsNeverSplit) {
    int first = 0, later = 0;
    measure(&first, &later);
    // Tables ending a few rows above the foot of page 2: the closing block (six rows) falls across the
    // break for some of them.
    int split = 0;
    for (int k = 0; k <= 6; ++k) {
        const int n = first + later - k;
        const QStringList before = print(works(n), false);
        const QStringList kept = print(works(n), true);
        const bool wasSplit = pageWith(before, kGrand) != pageWith(before, kSeal, true);
        split += wasSplit;
        const int grand = pageWith(kept, kGrand);
        ASSERT_GE(grand, 0) << n;
        EXPECT_EQ(grand, pageWith(kept, kSeal, true)) << n << " works: the closing block on one page";
        EXPECT_EQ(grand, kept.size() - 1) << n;
        EXPECT_TRUE(kept.at(grand).contains(QStringLiteral("Всего по смете:"))) << n;
        int all = 0;
        for (const QString &page : kept)
            all += worksOn(page);
        EXPECT_EQ(all, n) << "every work printed once";
        if (!wasSplit) {
            EXPECT_EQ(kept, before) << n << " works: pages that keep the rules are left as they are";
        }
    }
    EXPECT_GT(split, 0) << "no table length split the closing block: the case was not tried";
}

TEST_F(PrintedPages, ASectionTitleNeverEndsAPage) {
    int first = 0, later = 0;
    measure(&first, &later);
    // A section's title placed where the first page ends: it goes to the second page with its works.
    int orphaned = 0;
    for (int at = first - 2; at <= first + 1; ++at) {
        const QVector<EstimatePrint::Row> rows = works(first + 20, at);
        const QStringList before = print(rows, false);
        const QStringList kept = print(rows, true);
        const QString next = work(at).name;
        const bool alone = pageWith(before, kSection) == 0 && pageWith(before, next) == 1;
        orphaned += alone;
        const int title = pageWith(kept, kSection);
        ASSERT_GE(title, 0) << at;
        EXPECT_EQ(title, pageWith(kept, next)) << "the title before work " << at << " stays with it";
        if (!alone) {
            EXPECT_EQ(kept, before) << at;
        }
    }
    EXPECT_GT(orphaned, 0) << "no title fell at the end of a page: the case was not tried";
}

// The last work or section's title printed on a page: a title there is a page that ends with it.
QString lastItem(const QString &page) {
    static const QRegularExpression re(QStringLiteral("Работа \\d{3}|Раздел \\d+|Раздел второй"));
    QString last;
    for (auto it = re.globalMatch(page); it.hasNext();)
        last = it.next().captured();
    return last;
}

TEST_F(PrintedPages, ALongEstimateKeepsEveryPage) {
    // Longer than the pages the engine shows first: the breaks are planned from them and the row
    // heights, then the whole export is checked. A title ends the first page, more follow every ten
    // works, wherever the pages fall; some works take two or three lines.
    int first = 0, later = 0;
    measure(&first, &later);
    QVector<EstimatePrint::Row> rows = works(14 * later, first);
    for (int i = first + 3; i < rows.size(); i += 7)
        rows[i].name +=
            QStringLiteral(" с разборкой старого покрытия, выносом мусора и подготовкой основания")
                .repeated(1 + i % 2);
    for (int i = rows.size() - 10, n = 3; i > first + 10; i -= 10)
        rows.insert(i, section(QStringLiteral("Раздел %1").arg(n++)));
    const QStringList before = print(rows, false);
    ASSERT_GT(before.size(), 13);
    ASSERT_EQ(lastItem(before.at(0)), kSection) << "the first page ends with a title";
    const QStringList kept = print(rows, true);
    int all = 0;
    for (int p = 0; p < kept.size(); ++p) {
        all += worksOn(kept.at(p));
        if (p + 1 < kept.size()) {
            EXPECT_TRUE(lastItem(kept.at(p)).startsWith(QStringLiteral("Работа"))) << "page " << p + 1;
        }
    }
    EXPECT_EQ(all, 14 * later);
    EXPECT_EQ(pageWith(kept, kGrand), kept.size() - 1);
    EXPECT_EQ(pageWith(kept, kSeal, true), kept.size() - 1);
}

TEST_F(PrintedPages, AOnePageEstimateIsPrintedAsTheEngineLaysItOut) {
    const QStringList before = print(works(10, 4), false);
    ASSERT_EQ(before.size(), 1);
    EXPECT_EQ(print(works(10, 4), true), before);
}

} // namespace
