#!/usr/bin/env bash
# download_update_s8: the updater of Вирн-Смета. The program starts it when the user accepts an
# update, then closes. The updater waits for the program to end, fetches the new version from the
# program's file server, checks its SHA-256, puts its files into the program's folder (each file
# replaced whole by a rename) and starts the program again in the folder it worked in. On any failure
# the installed files stay as they were and the program is started again as it was.
#
#   download_update_s8 --server URL [--folder DIR] [--cwd DIR] [--wait PID] [--no-restart]
#
# The server holds /files/virn_8/virn-smeta.tar.gz (the program's files, plain relative names) and
# /files/virn_8/virn-smeta.tar.gz.sha256 ("<sha256>  virn-smeta.tar.gz"). What happened is written
# to download_update_s8.log in the program's folder.
set -uo pipefail

server=""
folder="$(cd "$(dirname "$0")" && pwd)"
cwd=""
wait_pid=""
restart=1
while [[ $# -gt 0 ]]; do
    case "$1" in
    --server) server="${2:-}"; shift 2 ;;
    --folder) folder="${2:-}"; shift 2 ;;
    --cwd) cwd="${2:-}"; shift 2 ;;
    --wait) wait_pid="${2:-}"; shift 2 ;;
    --no-restart) restart=0; shift ;;
    *) echo "download_update_s8: неизвестный параметр $1" >&2; exit 2 ;;
    esac
done
if [[ -z "$server" || ! -d "$folder" ]]; then
    echo "использование: download_update_s8 --server URL [--folder DIR] [--cwd DIR] [--wait PID] [--no-restart]" >&2
    exit 2
fi
server="${server%/}"
[[ -n "$cwd" && -d "$cwd" ]] || cwd="$folder"

exec >>"$folder/download_update_s8.log" 2>&1
say() { echo "$(date '+%Y-%m-%d %H:%M:%S') $*"; }

program_running=0
if [[ "$wait_pid" =~ ^[0-9]+$ ]]; then
    for _ in $(seq 1 1200); do
        kill -0 "$wait_pid" 2>/dev/null || break
        sleep 0.1
    done
    kill -0 "$wait_pid" 2>/dev/null && program_running=1
fi

restart_program() {
    # A program still running (the user kept it open) is not started twice.
    if [[ $restart -eq 1 && $program_running -eq 0 && -x "$folder/virn-smeta" ]]; then
        (cd "$cwd" && setsid "$folder/virn-smeta" </dev/null >/dev/null 2>&1 &)
    fi
}
fail() {
    say "обновление не выполнено: $*"
    restart_program
    exit 1
}

say "обновление с $server в $folder"
tmp=$(mktemp -d "$folder/.update.XXXXXX") || fail "не удаётся создать временную папку в $folder"
trap 'rm -rf "$tmp"' EXIT

fetch() {
    curl --fail --silent --show-error --location --proto '=http,https' --connect-timeout 15 \
        --max-time "$3" --max-filesize "$4" -o "$2" "$server$1"
}
fetch /files/virn_8/virn-smeta.tar.gz "$tmp/package.tar.gz" 1800 1073741824 ||
    fail "не удалось загрузить новую версию"
fetch /files/virn_8/virn-smeta.tar.gz.sha256 "$tmp/package.sha256" 60 4096 ||
    fail "не удалось загрузить контрольную сумму"
expected=$(head -c 200 "$tmp/package.sha256" | awk 'NR==1 {print tolower($1)}')
[[ "$expected" =~ ^[0-9a-f]{64}$ ]] || fail "контрольная сумма на сервере повреждена"
actual=$(sha256sum "$tmp/package.tar.gz" | awk '{print $1}')
[[ "$actual" == "$expected" ]] || fail "контрольная сумма загруженного файла не совпала"

# Only plain files and folders with relative names inside the program's folder.
tar -tzvf "$tmp/package.tar.gz" >"$tmp/list" 2>/dev/null || fail "пакет новой версии повреждён"
while read -r mode _ _ _ _ name; do
    case "$mode" in -* | d*) ;; *) fail "в пакете недопустимый элемент: $name" ;; esac
    case "/$name/" in */../* | //*) fail "в пакете недопустимое имя: $name" ;; esac
done <"$tmp/list"
mkdir "$tmp/new" && tar -xzf "$tmp/package.tar.gz" -C "$tmp/new" --no-same-owner ||
    fail "пакет новой версии не распаковался"
[[ -f "$tmp/new/virn-smeta" && -x "$tmp/new/virn-smeta" ]] || fail "в пакете нет программы virn-smeta"

count=0
while IFS= read -r -d '' file; do
    rel="${file#"$tmp/new/"}"
    mkdir -p "$folder/$(dirname "$rel")" && mv -f "$file" "$folder/$rel" || fail "не удалось заменить $rel"
    count=$((count + 1))
done < <(find "$tmp/new" -type f -print0)
say "установлено файлов: $count"
restart_program
exit 0
