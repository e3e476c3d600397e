#include "Startup.h"

#include "About.h"
#include "TForm1.h"
#include "documents/PackageCommand.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateExport.h"
#include "storage/DataFolder.h"
#include "storage/ModuleSQL.h"
#include "ui/Dialogs.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QLocale>
#include <QTextStream>
#include <QTimer>
#include <QTranslator>

namespace {

QTextStream &err() {
    static QTextStream s(stderr);
    return s;
}

// --prepare-data DIR: creates the folder tree and every database with its tables, then exits.
int prepareData(const QString &folder) {
    const QString problem = DataFolder::ensureTree(folder);
    if (!problem.isEmpty()) {
        err() << problem << Qt::endl;
        return 1;
    }
    // A prepared folder becomes the program's folder, so that a document opened from the file
    // manager finds its data there.
    DataFolder::storeFolder(QDir(folder).absolutePath());
    TModuleSQL module(folder);
    int failures = 0;
    for (Db db : kAllDatabases) {
        if (!module.database(db).isOpen()) {
            err() << module.failure(db) << Qt::endl;
            ++failures;
        }
    }
    return failures == 0 ? 0 : 1;
}

// --export FILE.sim OUT.pdf|OUT.xls: renders the document's estimate without a window, with the
// templates of the data folder the program would use for that document.
int exportDocument(const QString &document, const QString &out) {
    const QString folder =
        DataFolder::decide({document}, DataFolder::storedFolder(), QDir::currentPath()).folder;
    QString error, warning;
    if (!EstimateExport::exportFile(document, out, folder, &error, nullptr, &warning)) {
        err() << error << Qt::endl;
        return 1;
    }
    if (!warning.isEmpty())
        err() << warning << Qt::endl;
    QTextStream(stdout) << QDir::toNativeSeparators(QFileInfo(out).absoluteFilePath()) << Qt::endl;
    return 0;
}

// --package FILE.sim OUTDIR [--pdf] [--date DD.MM.YYYY]: the estimate's contract, invoice and acts without
// a window, registered in the data folder's register.
int makePackage(const QStringList &arguments) {
    const QString folder =
        DataFolder::decide(arguments.mid(0, 1), DataFolder::storedFolder(), QDir::currentPath()).folder;
    QTextStream out(stdout);
    return PackageCommand::run(arguments, folder, out, err());
}

void usage() {
    QTextStream(stdout) << "virn-smeta [FILE.sim]                  открыть программу (и документ)\n"
                           "virn-smeta --export FILE.sim OUT.pdf   вывести смету документа в PDF без окна\n"
                           "virn-smeta --export FILE.sim OUT.xls   то же в таблицу Excel\n"
                           "virn-smeta --package FILE.sim OUTDIR [--pdf] [--date ДД.ММ.ГГГГ]\n"
                           "                                       договор, счёт и акты сметы без окна\n"
                           "virn-smeta --prepare-data DIR          создать папку данных с базами\n";
}

} // namespace

bool prepareApplication(QApplication &app) {
    QApplication::setApplicationName(QStringLiteral("Вирн-Смета"));
    QApplication::setOrganizationName(QStringLiteral("Вирн"));
    QApplication::setApplicationDisplayName(QStringLiteral("Вирн-Смета"));
    QApplication::setApplicationVersion(About::version());
    QApplication::setDesktopFileName(QStringLiteral("virn-smeta"));
    const QLocale russian(QLocale::Russian, QLocale::Russia);
    QLocale::setDefault(russian);
    // Qt's own texts: "Отмена", "Сохранить", the file and print dialogs, the overwrite question.
    auto *translator = new QTranslator(&app);
    if (!translator->load(russian, QStringLiteral("qtbase"), QStringLiteral("_"),
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return false;
    }
    return QApplication::installTranslator(translator);
}

int virnMain(int argc, char **argv) {
    if (argc >= 2 && (qstrcmp(argv[1], "--help") == 0 || qstrcmp(argv[1], "-h") == 0)) {
        QCoreApplication core(argc, argv);
        usage();
        return 0;
    }
    if (argc >= 4 && qstrcmp(argv[1], "--export") == 0) {
        // No window: works on machines without a display.
        QCoreApplication core(argc, argv);
        QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
        return exportDocument(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]));
    }
    if (argc >= 2 && qstrcmp(argv[1], "--package") == 0) {
        // No window: works on machines without a display.
        QCoreApplication core(argc, argv);
        QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
        return makePackage(core.arguments().mid(2));
    }
    if (argc >= 3 && qstrcmp(argv[1], "--prepare-data") == 0) {
        // No window: works on machines without a display.
        QCoreApplication core(argc, argv);
        return prepareData(QString::fromLocal8Bit(argv[2]));
    }
    QApplication app(argc, argv);
    if (!prepareApplication(app))
        err() << "Переводы Qt на русский (qtbase_ru.qm, пакет qt6-translations-l10n) не найдены: "
                 "стандартные окна Qt будут на английском."
              << Qt::endl;

    QStringList args = app.arguments().mid(1);
    QString screenshot;
    if (int i = args.indexOf(QStringLiteral("--screenshot")); i >= 0 && i + 1 < args.size()) {
        screenshot = args.at(i + 1);
        args.remove(i, 2);
    }

    TForm1 window(args);
    dialogs().setParentWidget(&window);
    if (!window.startupError().isEmpty()) {
        dialogs().tell(Captions::error, window.startupError(), Dialogs::Icon::Error);
        err() << window.startupError() << Qt::endl;
        return 1;
    }
    TModuleSQL module(window.dataFolder());
    window.attachModule(&module);
    window.show();
    window.FormShow();

    if (!screenshot.isEmpty()) {
        // Draw the window once at the size of a common laptop screen (the offscreen screen is a small
        // square), save the picture and leave without questions.
        window.setWindowState(Qt::WindowNoState);
        window.resize(1366, 768);
        QTimer::singleShot(300, &window, [&window, screenshot] {
            const bool ok = window.grab().save(screenshot);
            err() << (ok ? "screenshot: " : "screenshot failed: ") << screenshot << Qt::endl;
            window.document().setChanged(false);
            QApplication::exit(ok ? 0 : 1);
        });
    }
    return app.exec();
}
