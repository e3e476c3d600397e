#include "FigurePlugin.h"

#include "calculators/SquareShapesHash.h"
#include "storage/Sha256.h"

#include <QDir>
#include <QFile>
#include <QLibrary>
#include <QSaveFile>

#include <map>
#include <memory>

namespace {

QByteArray sha256Hex(const QByteArray &bytes) {
    return Sha256::hash(bytes).toHex();
}

// Loaded plug-ins by path: never unloaded while the program runs (a QLibrary that goes leaves its
// library loaded); the objects themselves go at exit.
QLibrary *libraryFor(const QString &path) {
    static std::map<QString, std::unique_ptr<QLibrary>> loaded;
    std::unique_ptr<QLibrary> &lib = loaded[path];
    if (!lib)
        lib = std::make_unique<QLibrary>(path);
    return lib.get();
}

} // namespace

QString FigurePlugin::fileName() {
#ifdef Q_OS_WIN
    return QStringLiteral("square_shapes.dll");
#else
    return QStringLiteral("square_shapes.so");
#endif
}

QByteArray FigurePlugin::builtSha256() {
    return QByteArrayLiteral(VIRN_SQUARE_SHAPES_SHA256);
}

FigurePlugin::FigurePlugin(const QString &folder) : m_folder(folder) {}

QString FigurePlugin::filePath() const {
    return QDir(m_folder).filePath(fileName());
}

FigurePlugin::State FigurePlugin::state() const {
    QFile file(filePath());
    if (!file.exists())
        return State::Missing;
    if (file.size() > kMaxBytes || !file.open(QIODevice::ReadOnly))
        return State::Foreign;
    Sha256 hash;
    if (!hash.addData(&file))
        return State::Foreign;
    return hash.result().toHex() == builtSha256() ? State::Ours : State::Foreign;
}

FigurePlugin::Shown FigurePlugin::show(quintptr parentWindow, QString *error) const {
    QLibrary *library = libraryFor(filePath());
    // Nothing but the build's own plug-in is ever loaded.
    if (!library->isLoaded() && (state() != State::Ours || !library->load())) {
        if (error)
            *error = QStringLiteral("Ошибка загрузки библиотеки \"%1\"").arg(fileName());
        return Shown::LoadFailed;
    }
    using ShowForm = void (*)(quintptr);
    auto showForm = reinterpret_cast<ShowForm>(library->resolve("ShowForm"));
    if (!showForm)
        return Shown::NoEntry;
    showForm(parentWindow);
    return Shown::Shown;
}

bool FigurePlugin::install(const QByteArray &bytes, QString *error) const {
    if (bytes.size() > kMaxBytes || sha256Hex(bytes) != builtSha256()) {
        remove();
        if (error)
            *error =
                QStringLiteral("Полученный файл не является модулем площадей фигур этой версии программы.");
        return false;
    }
    QSaveFile file(filePath());
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        if (error)
            *error = QStringLiteral("Не удаётся записать «%1»: %2")
                         .arg(QDir::toNativeSeparators(filePath()), file.errorString());
        return false;
    }
    return true;
}

bool FigurePlugin::remove() const {
    return !QFile::exists(filePath()) || QFile::remove(filePath());
}
