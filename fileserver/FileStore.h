#pragma once
// The server's data folder and the reply to each path. Layout:
//
//   accounts.txt                      the account keys (see Accounts)
//   base_virn_s/<key>/cashbase.db     an account's cash book
//   base_virn_s/<key>/Picture/[<address>/]<name>   its pictures
//   virn_8/version.txt                the latest version string (reply of version_info.php)
//   virn_8/version8.txt               release notes
//   virn_8/info_stamp.txt             the stamp of the latest news (else the day info.txt changed)
//   virn_8/info.txt                   the news text
//   virn_8/square_shapes.so           the figure-area plug-in
//   virn_8/virn-smeta.tar.gz(.sha256) the program's new version for the updater
//   .incoming/                        uploads in progress
//
// Every reply is a status and a short Russian text, or a file to send.

#include "Accounts.h"
#include "Upload.h"

#include <cstdint>
#include <filesystem>
#include <string>

struct Reply {
    int status = 200;
    std::string text;           // the body, when no file is sent
    std::filesystem::path file; // a file to send as the body
    bool isFile() const { return !file.empty(); }
};

class FileStore {
public:
    FileStore(std::filesystem::path data, Accounts &accounts);

    // Makes the folders and removes uploads left by a stopped server; false with *error.
    bool prepare(std::string *error);

    const std::filesystem::path &data() const { return m_data; }
    std::filesystem::path incomingFolder() const { return m_data / ".incoming"; }

    // POST exists_cashbase.php: "ok" when the account's cash book exists, else "no".
    Reply cashbaseExists(const std::string &key);
    // POST post_cashbase.php, once the whole body has arrived: the cash book (file name
    // "cashbase.db") or a picture into Picture/[folder/]; anything else is refused.
    Reply storeUpload(const std::string &key, const std::string &fileName, const std::string &folder,
                      Upload &upload);
    // POST delete_file.php: a picture of the account, by its path inside the account's folder.
    Reply deleteFile(const std::string &key, const std::string &path);
    // GET /files/base_virn_s/<key>/…
    Reply accountFile(const std::string &keyAndPath);
    // GET /files/virn_8/<name>
    Reply programFile(const std::string &name);
    // POST version_info.php and read_info.php.
    Reply latestVersion();
    Reply newsStamp();

    // A forbidden reply for a key that is not an account's.
    static Reply unknownKey();

private:
    std::filesystem::path accountFolder(const std::string &key) const;

    std::filesystem::path m_data;
    Accounts &m_accounts;
};

// True for the picture extensions the program uploads (".jpg", ".jpeg", ".bmp", ".gif", ".png").
bool isPictureName(const std::string &fileName);
