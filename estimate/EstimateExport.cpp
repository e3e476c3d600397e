#include "EstimateExport.h"

#include "storage/DataFolder.h"
#include "storage/SettingsStore.h"
#include "estimate/EstimateHeader.h"
#include "estimate/CrewGrid.h"
#include "estimate/DocumentFile.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStore.h"
#include "estimate/EstimateOutput.h"
#include "office/OfficeEngine.h"
#include "office/OfficeTemplates.h"
#include "storage/ModuleSQL.h"

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
    const QString opened = DocumentFile::open(module, documentPath);
    if (!opened.isEmpty()) {
        *error = opened;
        return false;
    }
    {
        QSqlDatabase db = module.database(Db::Smeta);
        EstimateGrid grid;
        CrewGrid crew;
        if (!EstimateStore::readSmeta(db, grid, crew, error))
            return false;
        EstimateEditor editor(&grid, &crew, [&module](Db which) { return module.database(which); });
        editor.reset();

        const EstimateHeader::Values v =
            EstimateHeader::fromParameters(EstimateStore::readParameters(db), EstimateHeader::Values());
        print->title = v.title;
        print->customer = v.customer;
        print->object = v.object;
        print->contractor = v.contractor;
        print->nameOfWorks = v.nameWork;
        print->number = v.numberWord.trimmed().isEmpty()
                            ? QString::number(v.number)
                            : v.numberWord.trimmed() + u'-' + QString::number(v.number);
        print->date = v.date;
        print->currency = v.currency;
        const Fields requisites = EstimateHeader::contractorRequisitesCopy(db);
        print->contractorAddress = requisites.value(QStringLiteral("adres"));
        EstimatePrintBuilder::fillBody(*print, editor, db);
        print->act = EstimatePrintBuilder::readAct(db);
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
