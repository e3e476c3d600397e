// One owner per table, checked in the program's sources: tables are made only by the catalogue's
// upgrade steps, never dropped outside the few scratch and remote tables, and the estimate's
// materials are written only by their store.

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

// The program's .cpp files (tests and benchmarks build old layouts on purpose), relative paths.
QStringList programSources() {
    const QDir top(QStringLiteral(VIRN_SOURCE_DIR));
    QStringList out;
    QDirIterator it(top.path(), {QStringLiteral("*.cpp")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString rel = top.relativeFilePath(it.next());
        const QString first = rel.section(QLatin1Char('/'), 0, 0);
        if (!rel.contains(QLatin1Char('/')) || first == QLatin1String("tests") ||
            first == QLatin1String("bench") || first.startsWith(QLatin1String("build")) ||
            first.startsWith(QLatin1Char('.')))
            continue;
        out << rel;
    }
    return out;
}

TEST(TableOwners, OnlyTheOwnersWriteWhatTheyOwn) {
    struct Rule {
        const char *what;
        const char *pattern; // on the text of string literals' beginnings
        QStringList allowed;
    };
    const std::vector<Rule> rules = {
        {"tables are made by the catalogue's steps",
         R"("\s*CREATE\s+(TEMP\s+)?TABLE)",
         // the settings store's own file; the insertion's scratch table; the remote MySQL list; the sums
         // a document file carries (written into the file, never into the working database); the user's
         // table of the remote document store.
         {"storage/Catalogue.cpp", "storage/SettingsStore.cpp", "pricebase/RateInsertion.cpp",
          "pricebase/RemotePriceList.cpp", "estimate/DocumentChecksum.cpp", "server/DocumentStore.cpp"}},
        {"tables of the catalogue are emptied, not dropped",
         R"("\s*DROP\s+TABLE)",
         // the scratch table, the remote list, a leftover table of old documents; the tables of an
         // earlier cash book's layout once the upgrade has carried their rows to their owners.
         {"pricebase/RateInsertion.cpp", "pricebase/RemotePriceList.cpp", "estimate/EstimateStore.cpp",
          "cashbook/BookUpgrade.cpp"}},
        {"the estimate's materials are written by their store",
         R"("\s*(INSERT\s+INTO|UPDATE|DELETE\s+FROM|DROP\s+TABLE(\s+IF\s+EXISTS)?|ALTER\s+TABLE)\s+materials\b)",
         {"estimate/MaterialsStore.cpp"}},
        {"the clipboard of the grid is written by the clipboard",
         R"("\s*(INSERT\s+INTO|UPDATE|DELETE\s+FROM)\s+PopupMenuEdit\b)",
         {"estimate/RowClipboard.cpp"}},
        {"the act data of the document is written by its store",
         R"("\s*(INSERT\s+INTO|UPDATE|DELETE\s+FROM)\s+ks2\b)",
         {"estimate/ActFields.cpp"}},
        {"the acts' register rows are written by the acts",
         R"("\s*(INSERT\s+INTO|UPDATE|DELETE\s+FROM)\s+act\b)",
         {"documents/ActRegister.cpp"}},
        {"the acts by volumes are written by their store",
         R"("\s*(INSERT\s+INTO|UPDATE|DELETE\s+FROM)\s+(actlist|actvolume)\b)",
         {"documents/ActVolumes.cpp"}},
    };
    const QStringList sources = programSources();
    ASSERT_GT(sources.size(), 20) << VIRN_SOURCE_DIR;
    for (const Rule &rule : rules) {
        SCOPED_TRACE(rule.what);
        const QRegularExpression re(QString::fromUtf8(rule.pattern),
                                    QRegularExpression::CaseInsensitiveOption);
        QStringList offenders, owners;
        for (const QString &rel : sources) {
            QFile f(QDir(QStringLiteral(VIRN_SOURCE_DIR)).filePath(rel));
            ASSERT_TRUE(f.open(QIODevice::ReadOnly));
            if (re.match(QString::fromUtf8(f.readAll())).hasMatch())
                (rule.allowed.contains(rel) ? owners : offenders) << rel;
        }
        EXPECT_TRUE(offenders.isEmpty()) << offenders.join(", ").toStdString();
        // Every owner named still does it: the rule is not out of date, nor its pattern blind.
        for (const QString &owner : rule.allowed)
            EXPECT_TRUE(owners.contains(owner)) << owner.toStdString();
    }
}

} // namespace
