#include "FileServerSettings.h"

#include "storage/SettingsStore.h"
#include "storage/TextValues.h"

namespace {
const QString kSection = QStringLiteral("Server");
}

FileServerSettings FileServerSettings::read(const SettingsStore &store) {
    FileServerSettings s;
    s.url = store.text(kSection, QStringLiteral("Url")).trimmed();
    s.key = store.text(kSection, QStringLiteral("Key")).trimmed();
    return s;
}

void FileServerSettings::write(SettingsStore &store) const {
    store.setText(kSection, QStringLiteral("Url"), url.trimmed());
    store.setText(kSection, QStringLiteral("Key"), key.trimmed());
}

QString FileServerSettings::problem() const {
    const QString u = url.trimmed();
    if (!u.isEmpty()) {
        const QUrl parsed(u, QUrl::StrictMode);
        const QString scheme = parsed.scheme().toLower();
        if (!parsed.isValid() || (scheme != QLatin1String("http") && scheme != QLatin1String("https")))
            return QStringLiteral("Адрес сервера должен начинаться с http:// или https://, например "
                                  "https://server.example.ru:8080");
        if (parsed.host().isEmpty())
            return QStringLiteral("В адресе сервера не указано имя компьютера.");
        if (parsed.hasQuery() || parsed.hasFragment() || !parsed.userInfo().isEmpty())
            return QStringLiteral("Адрес сервера не должен содержать «?», «#» или имя пользователя.");
    }
    const QString k = key.trimmed();
    if (!k.isEmpty() && (k.size() > 64 || !TextValues::isSafeTableName(k)))
        return QStringLiteral("Ключ учётной записи может содержать только латинские буквы, цифры и «_» "
                              "(до 64 знаков).");
    return {};
}

QUrl FileServerSettings::baseUrl() const {
    if (url.trimmed().isEmpty() || !problem().isEmpty())
        return {};
    return QUrl(url.trimmed(), QUrl::StrictMode);
}
