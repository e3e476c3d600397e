#include "EstimateExport.h"

#include "estimate/DocumentFile.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateOutput.h"
#include "office/OfficeEngine.h"
#include "office/OfficeTemplates.h"
#include "storage/DataFolder.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <memory>

namespace EstimateExport {

bool load(const QString &documentPath, EstimatePrint *print, QString *error, QString *warning) {
    if (!QFileInfo::exists(documentPath) && !QFileInfo(documentPath).isSymLink()) {
        *error = QStringLiteral("Отсутствует файл ") + QDir::toNativeSeparators(documentPath);
        return false;
    }
    // A folder, a pipe or a device is told as what it is (and a pipe is never opened).
    if (const QString what = DocumentFile::notAFile(documentPath); !what.isEmpty()) {
        *error = what;
        return false;
    }
    QTemporaryDir work;
    if (!work.isValid()) {
        *error = QStringLiteral("Не удаётся создать временную папку для чтения документа.");
        return false;
    }
    const QString tree = DataFolder::ensureTree(work.path());
    if (!tree.isEmpty()) {
        *error = tree;
        return false;
    }
    TModuleSQL module(work.path());
    {
        EstimateDocument document;
        document.attach(&module, nullptr, nullptr);
        const EstimateDocument::Result r = document.open(documentPath);
        if (!r) {
            *error = r.error;
            return false;
        }
        if (warning)
            *warning = r.warning;
        *print = document.print();
    }
    module.closeAll();
    return true;
}

bool exportFile(const QString &documentPath, const QString &outPath, const QString &dataFolder,
                QString *error, OfficeEngine *engine, QString *warning) {
    const QString format = QFileInfo(outPath).suffix().toLower();
    if (format != QLatin1String("pdf") && format != QLatin1String("xls")) {
        *error = QStringLiteral("Документ выводится в файл .pdf или .xls: %1")
                     .arg(QDir::toNativeSeparators(outPath));
        return false;
    }
    EstimatePrint print;
    QString opened;
    if (!load(documentPath, &print, error, &opened))
        return false;
    QString templatesError;
    OfficeTemplates::ensureDefaults(dataFolder, &templatesError);
    // The sheet titles the user set; a data folder without settings prints the defaults.
    ViewTitles titles;
    const QString ini = QDir(dataFolder).filePath(QStringLiteral("IniFile.db"));
    if (QFileInfo::exists(ini)) {
        const SettingsStore settings(ini);
        if (settings.isOpen())
            titles = ViewTitles::read(settings);
    }
    std::unique_ptr<OfficeEngine> own;
    if (!engine) {
        own = std::make_unique<OfficeEngine>(dataFolder);
        engine = own.get();
    }
    if (warning)
        *warning = QStringList({opened, EstimateOutput::leftOutWarning(print)}).join(u'\n').trimmed();
    return EstimateOutput::produce(*engine, dataFolder, print, titles, {{outPath, format}}, error);
}

} // namespace EstimateExport
