#include "EstimateExport.h"

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

bool load(const QString &documentPath, EstimatePrint *print, QString *error) {
    if (!QFileInfo(documentPath).isFile()) {
        *error = QStringLiteral("Отсутствует файл ") + QDir::toNativeSeparators(documentPath);
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
    if (!load(documentPath, &print, error))
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
        *warning = EstimateOutput::leftOutWarning(print);
    return EstimateOutput::produce(*engine, dataFolder, print, titles, {{outPath, format}}, error);
}

} // namespace EstimateExport
