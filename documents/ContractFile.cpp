#include "ContractFile.h"

#include "office/TemplatePackage.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QXmlStreamReader>

namespace ContractFile {

namespace {

QString formatOf(const TemplateFile::Output &out) {
    return out.format.isEmpty() ? TemplateFile::formatFor(out.path) : out.format;
}

// A copy that never leaves a half-written target: written beside it, then renamed over it.
bool copyFile(const QString &source, const QString &target, QString *error) {
    const QFileInfo info(target);
    const QString shown = QDir::toNativeSeparators(target);
    if (!QDir().mkpath(info.absolutePath())) {
        *error =
            QStringLiteral("Не удаётся создать папку %1.").arg(QDir::toNativeSeparators(info.absolutePath()));
        return false;
    }
    const QString temp = info.absoluteDir().filePath(QStringLiteral(".~%1-%2.%3")
                                                         .arg(info.completeBaseName())
                                                         .arg(QRandomGenerator::global()->generate(), 0, 16)
                                                         .arg(info.suffix()));
    if (!QFile::copy(source, temp)) {
        QFile::remove(temp);
        *error = QStringLiteral("Не удалось сохранить %1: нет места или прав на запись.").arg(shown);
        return false;
    }
    QFile::setPermissions(temp, QFile::permissions(temp) | QFileDevice::WriteOwner);
    QFile::remove(target);
    if (!QFile::rename(temp, target)) {
        QFile::remove(temp);
        *error =
            QStringLiteral("Не удаётся записать %1: файл занят другой программой или нет прав.").arg(shown);
        return false;
    }
    return true;
}

// Twentieths of a point (the unit of ".docx") to hundredths of a millimetre, to the tenth of a
// millimetre that twips can tell apart (11906 twips are 210,0 mm).
int fromTwips(const QStringView value) {
    return qRound(value.toDouble() * 254.0 / 1440.0) * 10;
}

} // namespace

bool fill(OfficeEngine &engine, const QString &templatePath, const WordTemplate::Replacements &replacements,
          const Outputs &outputs, QString *error, bool *notLoaded) {
    const bool loaded = TemplateFile::open(engine, templatePath, QStringLiteral("text"), error);
    if (notLoaded)
        *notLoaded = !loaded;
    return loaded && WordTemplate::fillLoaded(engine, templatePath, replacements, outputs, error);
}

bool readBody(OfficeEngine &engine, const QString &path, QString *html, QString *error, bool *notLoaded) {
    const bool loaded = TemplateFile::open(engine, path, QStringLiteral("text"), error);
    if (notLoaded)
        *notLoaded = !loaded;
    if (!loaded)
        return false;
    const bool ok = engine.bodyHtml(html);
    if (!ok)
        *error = engine.error();
    engine.close();
    return ok;
}

bool write(OfficeEngine &engine, const QString &base, const Edits &edits, const Outputs &outputs,
           QString *error) {
    Outputs rest;
    const QString baseFormat = TemplateFile::formatFor(base);
    for (const TemplateFile::Output &out : outputs) {
        if (!edits.any() && formatOf(out) == baseFormat &&
            QFileInfo(out.path).suffix().compare(QFileInfo(base).suffix(), Qt::CaseInsensitive) == 0) {
            if (QFileInfo(out.path).absoluteFilePath() != QFileInfo(base).absoluteFilePath() &&
                !copyFile(base, out.path, error))
                return false;
        } else {
            rest << out;
        }
    }
    if (rest.isEmpty())
        return true;
    if (!TemplateFile::open(engine, base, QStringLiteral("text"), error))
        return false;
    bool ok = true;
    if (edits.body && !engine.replaceBody(edits.html))
        ok = false;
    if (ok && edits.page && !engine.setPage(edits.pageSetup))
        ok = false;
    if (!ok)
        *error = QStringLiteral("Не удалось перенести правки в документ: %1").arg(engine.error());
    else
        ok = TemplateFile::save(engine, rest, error);
    engine.close();
    return ok;
}

PageInfo pageOf(const QString &docxPath) {
    PageInfo info;
    QByteArray xml;
    if (!TemplatePackage::readEntry(docxPath, QStringLiteral("word/document.xml"), &xml))
        return info;
    // The body's own section properties are the last ones of the document.
    QXmlStreamReader r(xml);
    bool inSection = false;
    PageInfo current;
    QString headerDistance, footerDistance, topMargin, bottomMargin;
    bool hasHeader = false, hasFooter = false;
    while (!r.atEnd()) {
        r.readNext();
        if (r.isStartElement()) {
            const QStringView name = r.name();
            const QXmlStreamAttributes a = r.attributes();
            if (name == QLatin1String("sectPr")) {
                inSection = true;
                current = PageInfo();
                current.ok = true;
                hasHeader = hasFooter = false;
                headerDistance.clear();
                footerDistance.clear();
                topMargin.clear();
                bottomMargin.clear();
            } else if (inSection && name == QLatin1String("pgSz")) {
                if (a.hasAttribute(QStringLiteral("w:w")))
                    current.page.width = fromTwips(a.value(QStringLiteral("w:w")));
                if (a.hasAttribute(QStringLiteral("w:h")))
                    current.page.height = fromTwips(a.value(QStringLiteral("w:h")));
                current.page.landscape = a.value(QStringLiteral("w:orient")) == QLatin1String("landscape");
            } else if (inSection && name == QLatin1String("pgMar")) {
                current.page.left = fromTwips(a.value(QStringLiteral("w:left")));
                current.page.right = fromTwips(a.value(QStringLiteral("w:right")));
                topMargin = a.value(QStringLiteral("w:top")).toString();
                bottomMargin = a.value(QStringLiteral("w:bottom")).toString();
                headerDistance = a.value(QStringLiteral("w:header")).toString();
                footerDistance = a.value(QStringLiteral("w:footer")).toString();
            } else if (inSection && name == QLatin1String("headerReference")) {
                hasHeader = true;
            } else if (inSection && name == QLatin1String("footerReference")) {
                hasFooter = true;
            }
        } else if (r.isEndElement() && r.name() == QLatin1String("sectPr") && inSection) {
            inSection = false;
            // With a header the page style's top margin is where the header starts.
            current.page.top = fromTwips(hasHeader && !headerDistance.isEmpty() ? headerDistance : topMargin);
            current.page.bottom =
                fromTwips(hasFooter && !footerDistance.isEmpty() ? footerDistance : bottomMargin);
            info = current;
        }
    }
    return info;
}

} // namespace ContractFile
