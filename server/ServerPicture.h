#pragma once
// Where a picture of the document store lives on the file server: the account's folder "Picture",
// then the object address as a folder name, then the file's name. The address's characters that a
// folder name cannot hold ("/", "\", double quote, "|", "*", "?", ":", "<", ">", and control
// characters) become backticks.

#include <QString>

namespace ServerPicture {

// The folder of an address; empty for an empty address.
QString folderOf(const QString &address);
// "Picture/<folder>/<name>", or "Picture/<name>" for an empty address: the path the file server's
// delete request takes.
QString relativePath(const QString &name, const QString &address);
// "/files/base_virn_s/<key>/Picture/…": the path of the picture's GET request.
QString urlPath(const QString &key, const QString &name, const QString &address);

} // namespace ServerPicture
