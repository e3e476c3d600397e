#include "PdfPages.h"

#include <poppler/cpp/poppler-document.h>
#include <poppler/cpp/poppler-page.h>

#include <QFile>

#include <algorithm>
#include <memory>

namespace PdfPages {

bool read(const QString &path, PageFlow::Pages *pages, std::string *error, const QSet<int> *only) {
    pages->clear();
    std::unique_ptr<poppler::document> doc(
        poppler::document::load_from_file(QFile::encodeName(path).toStdString()));
    if (!doc) {
        *error = "PDF не читается: " + path.toStdString();
        return false;
    }
    for (int i = 0; i < doc->pages(); ++i) {
        if (only && !only->contains(i)) {
            pages->append(QString());
            continue;
        }
        std::unique_ptr<poppler::page> page(doc->create_page(i));
        if (!page) {
            *error = "страница PDF не читается";
            return false;
        }
        struct Word {
            double top, left;
            QString text;
        };
        std::vector<Word> words;
        for (const poppler::text_box &box : page->text_list()) {
            const poppler::byte_array utf8 = box.text().to_utf8();
            words.push_back({box.bbox().top(), box.bbox().left(),
                             QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()))});
        }
        // The rows of a sheet are printed one under another: every word of a row lies above every word
        // of the next, whatever the order the cells were drawn in.
        std::stable_sort(words.begin(), words.end(), [](const Word &a, const Word &b) {
            return a.top != b.top ? a.top < b.top : a.left < b.left;
        });
        QString text;
        for (const Word &w : words) {
            QString word;
            for (QChar c : w.text)
                if (!c.isSpace())
                    word += c;
            text += PageFlow::printedWord(word);
        }
        pages->append(text);
    }
    return true;
}

} // namespace PdfPages
