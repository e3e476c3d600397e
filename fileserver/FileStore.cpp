#include "FileStore.h"

#include "Protocol.h"
#include "SafePath.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <fstream>
#include <system_error>

namespace fs = std::filesystem;

namespace {

Reply reply(int status, std::string text) {
    Reply r;
    r.status = status;
    r.text = std::move(text);
    return r;
}

Reply badPath() {
    return reply(400, "Недопустимый путь");
}
Reply notFound() {
    return reply(404, "Файл не найден");
}

Reply sendFile(const fs::path &file) {
    std::error_code ec;
    if (!fs::is_regular_file(file, ec))
        return notFound();
    Reply r;
    r.file = file;
    return r;
}

// A small text file without its surrounding blanks and line ends; nullopt when missing or too long.
std::optional<std::string> smallText(const fs::path &file) {
    std::error_code ec;
    if (!fs::is_regular_file(file, ec) || fs::file_size(file, ec) > 4096 || ec)
        return std::nullopt;
    std::ifstream in(file, std::ios::binary);
    std::string s((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const size_t b = s.find_first_not_of(" \t\r\n");
    if (b == std::string::npos)
        return std::string();
    const size_t e = s.find_last_not_of(" \t\r\n");
    return s.substr(b, e - b + 1);
}

std::string lowerExtension(const std::string &fileName) {
    std::string ext = fs::path(fileName).extension().string();
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ext;
}

} // namespace

bool isPictureName(const std::string &fileName) {
    const std::string ext = lowerExtension(fileName);
    return ext == ".jpg" || ext == ".jpeg" || ext == ".bmp" || ext == ".gif" || ext == ".png";
}

FileStore::FileStore(fs::path data, Accounts &accounts) : m_data(std::move(data)), m_accounts(accounts) {}

bool FileStore::prepare(std::string *error) {
    std::error_code ec;
    for (const fs::path &p : {m_data / "base_virn_s", m_data / "virn_8", incomingFolder()}) {
        fs::create_directories(p, ec);
        if (ec) {
            if (error)
                *error = "не удаётся создать папку " + p.string() + ": " + ec.message();
            return false;
        }
    }
    for (const auto &entry : fs::directory_iterator(incomingFolder(), ec))
        fs::remove(entry.path(), ec);
    return true;
}

Reply FileStore::unknownKey() {
    return reply(403, "Неизвестный ключ учётной записи");
}

fs::path FileStore::accountFolder(const std::string &key) const {
    return m_data / "base_virn_s" / key;
}

Reply FileStore::cashbaseExists(const std::string &key) {
    if (!m_accounts.knows(key))
        return unknownKey();
    std::error_code ec;
    const bool exists = fs::is_regular_file(accountFolder(key) / Protocol::kCashbaseName, ec);
    return reply(200, exists ? Protocol::kReplyExists : Protocol::kReplyMissing);
}

Reply FileStore::storeUpload(const std::string &key, const std::string &fileName, const std::string &folder,
                             Upload &upload) {
    if (!m_accounts.knows(key))
        return unknownKey();
    if (upload.tooLarge())
        return reply(413, "Размер файла больше " + std::to_string(Protocol::kUploadLimit) + " байт");
    if (!SafePath::isSafeName(fileName))
        return reply(400, "Недопустимое имя файла");
    std::vector<std::string> parts;
    if (fileName == Protocol::kCashbaseName) {
        if (!folder.empty())
            return badPath();
        parts = {fileName};
    } else if (isPictureName(fileName)) {
        parts = {Protocol::kPictureFolder};
        if (!folder.empty()) {
            if (!SafePath::isSafeName(folder))
                return badPath();
            parts.push_back(folder);
        }
        parts.push_back(fileName);
    } else {
        return reply(400, "Принимаются только cashbase.db и картинки (.jpg, .jpeg, .bmp, .gif, .png)");
    }
    if (upload.size() == 0)
        return reply(400, "Пустой файл");
    std::error_code ec;
    fs::create_directories(accountFolder(key), ec);
    const auto target = SafePath::resolve(accountFolder(key), parts);
    if (!target)
        return badPath();
    if (!upload.commit(*target))
        return reply(500, "Файл не сохранён: " + upload.error());
    return reply(200, Protocol::kReplyUploaded);
}

Reply FileStore::deleteFile(const std::string &key, const std::string &path) {
    if (!m_accounts.knows(key))
        return unknownKey();
    const auto parts = SafePath::split(path);
    if (!parts || parts->size() < 2 || parts->front() != Protocol::kPictureFolder)
        return badPath();
    const auto target = SafePath::resolve(accountFolder(key), *parts);
    std::error_code ec;
    if (!target || !fs::is_regular_file(*target, ec))
        return notFound();
    if (!fs::remove(*target, ec))
        return reply(500, "Файл не удалён: " + ec.message());
    // An address folder left empty goes too.
    if (parts->size() > 2 && fs::is_empty(target->parent_path(), ec))
        fs::remove(target->parent_path(), ec);
    return reply(200, Protocol::kReplyDeleted);
}

Reply FileStore::accountFile(const std::string &keyAndPath) {
    const size_t slash = keyAndPath.find('/');
    const std::string key = keyAndPath.substr(0, slash);
    if (!m_accounts.knows(key))
        return unknownKey();
    if (slash == std::string::npos)
        return notFound();
    const auto parts = SafePath::split(keyAndPath.substr(slash + 1));
    if (!parts)
        return badPath();
    const bool cashbase = parts->size() == 1 && parts->front() == Protocol::kCashbaseName;
    const bool picture = parts->size() >= 2 && parts->size() <= 3 &&
                         parts->front() == Protocol::kPictureFolder && isPictureName(parts->back());
    if (!cashbase && !picture)
        return notFound();
    const auto target = SafePath::resolve(accountFolder(key), *parts);
    if (!target)
        return badPath();
    return sendFile(*target);
}

Reply FileStore::programFile(const std::string &name) {
    if (!SafePath::isSafeName(name))
        return badPath();
    const auto target = SafePath::resolve(m_data / "virn_8", {name});
    if (!target)
        return badPath();
    return sendFile(*target);
}

Reply FileStore::latestVersion() {
    const auto version = smallText(m_data / "virn_8" / "version.txt");
    if (!version || version->empty())
        return reply(404, "Версия не опубликована");
    return reply(200, *version);
}

Reply FileStore::newsStamp() {
    if (const auto stamp = smallText(m_data / "virn_8" / "info_stamp.txt"); stamp && !stamp->empty())
        return reply(200, *stamp);
    // Without a stamp of its own the news is as new as the day its text last changed.
    std::error_code ec;
    const fs::path info = m_data / "virn_8" / "info.txt";
    const auto changed = fs::last_write_time(info, ec);
    if (ec)
        return reply(404, "Новостей нет");
    const auto system = std::chrono::time_point_cast<std::chrono::system_clock::duration>(
        changed - fs::file_time_type::clock::now() + std::chrono::system_clock::now());
    const std::time_t t = std::chrono::system_clock::to_time_t(system);
    std::tm local{};
    localtime_r(&t, &local);
    char day[16];
    std::strftime(day, sizeof day, "%d.%m.%Y", &local);
    return reply(200, day);
}
