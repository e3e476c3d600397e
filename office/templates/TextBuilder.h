#pragma once
// Builds a word-processor document as flat OpenDocument XML (".fodt"): A4 pages, a page header and a
// footer with page numbers, paragraphs (with **bold** parts) and simple ruled tables. The template
// generator writes the default contract with it; the engine turns it into ".docx".

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

class TextBuilder {
public:
    enum class Align { Left, Center, Right, Justify };

    struct Para {
        Align align = Align::Justify;
        double size = 11;
        bool bold = false;
        double firstIndentCm = 0;
        double spaceBeforeCm = 0;
        double spaceAfterCm = 0.1;
    };

    // text: "**…**" marks bold parts.
    void paragraph(const QString &text, const Para &look);
    void paragraph(const QString &text) { paragraph(text, body()); }
    // A table of cells; each cell's text may hold several lines separated by "\n".
    // aligns: per column (missing columns are left-aligned).
    void table(const QVector<QStringList> &rows, const QVector<double> &widthsCm, bool ruled,
               double size = 10, const QVector<Align> &aligns = {});
    void setHeader(const QString &text) { m_header = text; }
    void setFont(const QString &family) { m_font = family; }

    static Para body();
    static Para title();

    QByteArray fodt() const;

private:
    QString paragraphXml(const QString &text, const Para &look) const;
    QString styleFor(const Para &look) const;

    QString m_body;
    QString m_header;
    QString m_font = QStringLiteral("Times New Roman");
    mutable QStringList m_paraKeys;
    int m_tables = 0;
    QString m_tableStyles;
};
