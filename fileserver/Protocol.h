#pragma once
// What the program and its file server agree on: the fixed paths, the form fields, the replies the
// program looks for and the upload limit. Plain C++ so that both sides include it.

#include <cstdint>

namespace Protocol {

// The cash book exchange and the pictures of the server files, per account key.
inline constexpr const char *kAccountsRoot = "/files/base_virn_s/";
inline constexpr const char *kExistsCashbase = "/files/base_virn_s/exists_cashbase.php";
inline constexpr const char *kPostCashbase = "/files/base_virn_s/post_cashbase.php";
inline constexpr const char *kDeleteFile = "/files/base_virn_s/delete_file.php";
// The version check, release notes, news and the figure-area plug-in.
inline constexpr const char *kProgramRoot = "/files/virn_8/";
inline constexpr const char *kVersionInfo = "/files/virn_8/version_info.php";
inline constexpr const char *kVersionNotes = "/files/virn_8/version8.txt";
inline constexpr const char *kReadInfo = "/files/virn_8/read_info.php";
inline constexpr const char *kInfoText = "/files/virn_8/info.txt";
inline constexpr const char *kPlugin = "/files/virn_8/square_shapes.so";
// The program's new version for the updater, and its SHA-256 ("<hex>  virn-smeta.tar.gz").
inline constexpr const char *kPackage = "/files/virn_8/virn-smeta.tar.gz";
inline constexpr const char *kPackageSum = "/files/virn_8/virn-smeta.tar.gz.sha256";

// Form fields: the account key; the uploaded file; the address folder of a picture (optional);
// the path of a picture to delete, relative to the account's folder ("Picture/…").
inline constexpr const char *kFieldKey = "key";
inline constexpr const char *kFieldFile = "file";
inline constexpr const char *kFieldFolder = "folder";
inline constexpr const char *kFieldPath = "path";
inline constexpr const char *kFieldInfo = "info";

// Replies the program looks for.
inline constexpr const char *kReplyUploaded = "База загружена на сервер";
inline constexpr const char *kReplyExists = "ok";
inline constexpr const char *kReplyMissing = "no";
inline constexpr const char *kReplyDeleted = "Файл удалён";

// The cash book's file name and the pictures' folder inside an account.
inline constexpr const char *kCashbaseName = "cashbase.db";
inline constexpr const char *kPictureFolder = "Picture";

// The largest file an upload may carry: 40 bytes short of 15 MiB.
inline constexpr std::uintmax_t kUploadLimit = 15728600;

} // namespace Protocol
