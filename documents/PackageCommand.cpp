#include "PackageCommand.h"

#include "PackageRun.h"
#include "estimate/EstimateDocument.h"
#include "estimate/Registration.h"
#include "office/OfficeEngine.h"
#include "office/OfficeService.h"
#include "office/OfficeTemplates.h"
#include "storage/DataFolder.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>

namespace PackageCommand {

namespace {

struct Arguments {
    QString document;
    QString folder;
    bool pdf = false;
    QDate date = QDate::currentDate();
};

// False with the reason.
bool parse(const QStringList &args, Arguments *a, QString *error) {
    QStringList positional;
    for (int i = 0; i < args.size(); ++i) {
        const QString &arg = args.at(i);
        if (arg == QLatin1String("--pdf")) {
            a->pdf = true;
        } else if (arg == QLatin1String("--date")) {
            if (i + 1 >= args.size()) {
                *error = QStringLiteral("После --date нужна дата ДД.ММ.ГГГГ.");
                return false;
            }
            a->date = TextValues::parseShortDate(args.at(++i));
            if (!a->date.isValid()) {
                *error = QStringLiteral("Неверная дата «%1»: нужна дата ДД.ММ.ГГГГ.").arg(args.at(i));
                return false;
            }
        } else if (arg.startsWith(QLatin1String("--"))) {
            *error = QStringLiteral("Неизвестный параметр %1.").arg(arg);
            return false;
        } else {
            positional << arg;
        }
    }
    if (positional.size() != 2) {
        *error = QStringLiteral("Нужны файл сметы и папка пакета: ") + usage();
        return false;
    }
    a->document = QFileInfo(positional.at(0)).absoluteFilePath();
    a->folder = QFileInfo(positional.at(1)).absoluteFilePath();
    return true;
}

} // namespace

QString usage() {
    return QStringLiteral("virn-smeta --package FILE.sim OUTDIR [--pdf] [--date ДД.ММ.ГГГГ]");
}

int run(const QStringList &arguments, const QString &dataFolder, QTextStream &out, QTextStream &err) {
    Arguments a;
    QString why;
    if (!parse(arguments, &a, &why)) {
        err << why << Qt::endl;
        return NotStarted;
    }
    if (!QFileInfo(a.document).isFile()) {
        err << QStringLiteral("Отсутствует файл ") << QDir::toNativeSeparators(a.document) << Qt::endl;
        return NotStarted;
    }
    if (!OfficeEngine::available(&why)) {
        err << why << Qt::endl;
        return NotStarted;
    }
    why = DataFolder::ensureTree(dataFolder);
    if (why.isEmpty())
        why = PackageJob::checkFolder(a.folder);
    if (!why.isEmpty()) {
        err << why << Qt::endl;
        return NotStarted;
    }
    // The default templates the program itself would put into Sh at start.
    OfficeTemplates::ensureDefaults(dataFolder, &why);
    if (!why.isEmpty())
        err << why << Qt::endl;

    SettingsStore store(QDir(dataFolder).filePath(QStringLiteral("IniFile.db")));
    MainSettings settings;
    if (store.isOpen())
        settings.read(store);
    // The working database of this run is its own: a program running on the data folder keeps its.
    QTemporaryDir work;
    if (!work.isValid()) {
        err << QStringLiteral("Не удаётся создать временную папку для чтения документа.") << Qt::endl;
        return NotStarted;
    }
    TModuleSQL module(dataFolder);
    module.setFilePath(Db::Smeta, QDir(work.path()).filePath(QStringLiteral("smeta.db")));
    int exit = Done;
    {
        EstimateDocument document;
        document.attach(&module, &settings, store.isOpen() ? &store : nullptr);
        bool heldElsewhere = false;
        const EstimateDocument::Result opened = document.open(a.document, [&](const QString &) {
            heldElsewhere = true; // read only: the package does not change the file then
            return true;
        });
        if (!opened) {
            err << opened.error << Qt::endl;
            return NotStarted;
        }
        if (!opened.warning.isEmpty())
            err << opened.warning << Qt::endl;
        // Every document row links to the estimate's row: an estimate never entered is entered now.
        if (Registration::link(module.database(Db::Smeta)).id <= 0) {
            if (heldElsewhere) {
                err << QStringLiteral("Смета «%1» открыта в другой копии программы и ещё не внесена в реестр "
                                      "документов: сохраните её там и повторите.")
                           .arg(QDir::toNativeSeparators(a.document))
                    << Qt::endl;
                return NotStarted;
            }
            const EstimateDocument::Result saved = document.save();
            if (!saved) {
                err << saved.error << Qt::endl;
                return NotStarted;
            }
            if (!saved.warning.isEmpty())
                err << saved.warning << Qt::endl;
        }

        const PackageNumbering numbering =
            PackageNumbering::read(&settings, store.isOpen() ? &store : nullptr);
        PackageRequest request =
            PackageDefaults::make(document, module.database(Db::People), numbering, a.date);
        request.folder = a.folder;
        if (a.pdf)
            request.allPdf();
        const PackageSettings packageSettings =
            PackageSettings::read(&settings, store.isOpen() ? &store : nullptr, dataFolder);

        OfficeService office(dataFolder);
        PackageRun run(document, request, packageSettings, office);
        QEventLoop loop;
        QObject::connect(&run, &PackageRun::finished, &loop, &QEventLoop::quit);
        QObject::connect(&run, &PackageRun::itemFinished, &run, [&](const PackageItem &item) {
            if (item.made)
                out << QDir::toNativeSeparators(item.path) << Qt::endl;
            else
                err << QStringLiteral("Не создан: %1: %2").arg(PackageDocs::caption(item.doc), item.error)
                    << Qt::endl;
            if (!item.warning.isEmpty())
                err << item.warning << Qt::endl;
        });
        run.start();
        if (run.running())
            loop.exec();
        if (!PackageRun::complete(run.items()))
            exit = Incomplete;

        // An act by volumes is kept in the document.
        const bool changed = std::any_of(run.items().cbegin(), run.items().cend(),
                                         [](const PackageItem &item) { return item.documentChanged; });
        if (changed && !heldElsewhere) {
            const EstimateDocument::Result saved = document.save();
            if (!saved) {
                err << saved.error << Qt::endl;
                exit = Incomplete;
            }
        }
    }
    module.closeAll();
    return exit;
}

} // namespace PackageCommand
