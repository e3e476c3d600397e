#include "Options.h"

#include "Protocol.h"

#include <cstdlib>
#include <utility>

namespace {
bool number(const std::string &text, int low, int high, int *out) {
    if (text.empty() || text.size() > 9)
        return false;
    for (char c : text)
        if (c < '0' || c > '9')
            return false;
    const int v = std::atoi(text.c_str());
    if (v < low || v > high)
        return false;
    *out = v;
    return true;
}
} // namespace

bool parseOptions(const std::vector<std::string> &args, ServerOptions *o, std::string *error) {
    // Options that take a text, and options that take a whole number in a range.
    const std::pair<const char *, std::string ServerOptions::*> texts[] = {
        {"--listen", &ServerOptions::listen},     {"--port-file", &ServerOptions::portFile},
        {"--accounts", &ServerOptions::accounts}, {"--cert", &ServerOptions::certificate},
        {"--key", &ServerOptions::privateKey},    {"--log", &ServerOptions::log},
    };
    struct NumberOption {
        const char *name;
        int ServerOptions::*field;
        int low, high;
        const char *rule;
    };
    const NumberOption numbers[] = {
        {"--port", &ServerOptions::port, 0, 65535, "порт должен быть числом от 0 до 65535: "},
        {"--timeout", &ServerOptions::timeoutSeconds, 1, 3600,
         "время ожидания должно быть числом секунд от 1 до 3600: "},
    };
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string &a = args[i];
        auto value = [&](std::string *out) {
            if (i + 1 >= args.size()) {
                *error = "после " + a + " нужно значение";
                return false;
            }
            *out = args[++i];
            return true;
        };
        if (a == "--help" || a == "-h") {
            o->help = true;
            continue;
        }
        if (a == "--version") {
            o->version = true;
            continue;
        }
        bool known = false;
        for (const auto &[name, field] : texts)
            if (a == name) {
                if (!value(&(o->*field)))
                    return false;
                known = true;
            }
        for (const NumberOption &n : numbers)
            if (a == n.name) {
                std::string v;
                if (!value(&v))
                    return false;
                if (!number(v, n.low, n.high, &(o->*n.field))) {
                    *error = n.rule + v;
                    return false;
                }
                known = true;
            }
        if (known)
            continue;
        if (!a.empty() && a[0] == '-') {
            *error = "неизвестный параметр " + a;
            return false;
        }
        if (!o->data.empty()) {
            *error = "папка данных указана дважды: " + a;
            return false;
        }
        o->data = a;
    }
    if (o->help || o->version)
        return true;
    if (o->data.empty()) {
        *error = "не указана папка данных";
        return false;
    }
    if (o->certificate.empty() != o->privateKey.empty()) {
        *error = "для HTTPS нужны оба файла: --cert и --key";
        return false;
    }
    return true;
}

std::string usageText() {
    return std::string(
               "virn-fileserver — файловый сервер программы Вирн-Смета.\n"
               "\n"
               "Использование: virn-fileserver [параметры] ПАПКА_ДАННЫХ\n"
               "\n"
               "Сервер отвечает на постоянные адреса программы: обмен кассой с мобильной кассой и\n"
               "картинки (/files/base_virn_s/…), проверка версии, история версий, новости и модуль\n"
               "площадей фигур (/files/virn_8/…). Всё хранится в папке данных:\n"
               "  accounts.txt                    ключи учётных записей, по одному в строке (# — "
               "комментарий)\n"
               "  base_virn_s/КЛЮЧ/cashbase.db    касса учётной записи\n"
               "  base_virn_s/КЛЮЧ/Picture/…      её картинки\n"
               "  virn_8/version.txt              номер последней версии программы\n"
               "  virn_8/version8.txt             история версий\n"
               "  virn_8/info_stamp.txt           отметка (дата) последней новости\n"
               "  virn_8/info.txt                 текст новости\n"
               "  virn_8/square_shapes.so         модуль площадей фигур\n"
               "  virn_8/virn-smeta.tar.gz        новая версия для загрузчика обновлений (+ .sha256)\n"
               "\n"
               "Параметры:\n"
               "  --listen АДРЕС      адрес, на котором слушать (по умолчанию 127.0.0.1;\n"
               "                      0.0.0.0 — все адреса)\n"
               "  --port ПОРТ         порт (по умолчанию 8080; 0 — любой свободный)\n"
               "  --port-file ФАЙЛ    записать в файл порт, когда сервер готов\n"
               "  --accounts ФАЙЛ     файл ключей (по умолчанию ПАПКА_ДАННЫХ/accounts.txt);\n"
               "                      перечитывается при изменении\n"
               "  --cert ФАЙЛ         сертификат PEM: сервер работает по HTTPS\n"
               "  --key ФАЙЛ          закрытый ключ PEM к сертификату\n"
               "  --log ФАЙЛ          журнал запросов (по умолчанию — stderr)\n"
               "  --timeout СЕКУНДЫ   сколько ждать медленного клиента (по умолчанию 30)\n"
               "  --version           версия сервера\n"
               "  --help              эта справка\n"
               "\n"
               "Неизвестный ключ получает ответ 403. Загружаемый файл — не больше ") +
           std::to_string(Protocol::kUploadLimit) +
           " байт;\n"
           "он пишется во временный файл и заменяет прежний, только когда получен целиком.\n";
}
