#!/usr/bin/env bash
# Lays out a fresh sample data folder and opens the program on the sample estimate. Without a
# display the program runs offscreen: it renders the sample's documents and says where they are.
# The program's file server runs on 127.0.0.1 for the sample (account "virn_sample", a news text,
# the figure-area plug-in) while the program runs, and stops with it.
set -euo pipefail
build=${1:-build}
top=$(cd "$(dirname "$0")/.." && pwd)
case "$build" in /*) ;; *) build="$top/$build" ;; esac
export VIRN_BUILD_DIR="$build"
bin="$build/virn-smeta"
data="${VIRN_SAMPLE_DIR:-$top/.run/sample}"
sample="$top/resources/sample"
estimate="$data/Sm/Образец сметы.sim"

rm -rf "$data"
mkdir -p "$data"
"$bin" --prepare-data "$data"
sqlite3 -bail "$data/Sp/price.db" < "$sample/price.sql"
sqlite3 -bail "$data/Sp/peoplebase.db" < "$sample/people.sql"
sqlite3 -bail "$data/Sp/cashbase.db" < "$sample/cash.sql"
sqlite3 -bail "$data/Sp/listmat.db" < "$sample/listmat.sql"
# A document file is a copy of the working database: start from the empty one the program made.
cp "$data/Sp/smeta.db" "$estimate"
sqlite3 -bail "$estimate" < "$sample/estimate.sql"
echo "Папка данных примера: $data"

# The file server of the sample, and the program's settings pointing at it.
services="$top/.run"
eval "$(VIRN_FILESERVER_KEY=virn_sample "$top/scripts/services/fileserver.sh" start "$services")"
trap '"$top/scripts/services/fileserver.sh" stop "$services"' EXIT
sqlite3 -bail "$data/IniFile.db" <<SQL
CREATE TABLE IF NOT EXISTS settings (section TEXT NOT NULL, key TEXT NOT NULL, value TEXT, PRIMARY KEY (section, key));
INSERT OR REPLACE INTO settings (section, key, value) VALUES ('Server', 'Url', '$VIRN_TEST_FILESERVER_URL');
INSERT OR REPLACE INTO settings (section, key, value) VALUES ('Server', 'Key', '$VIRN_TEST_FILESERVER_KEY');
SQL
echo "Файловый сервер примера: $VIRN_TEST_FILESERVER_URL (ключ $VIRN_TEST_FILESERVER_KEY, журнал $VIRN_TEST_FILESERVER_LOG)"

cd "$data"
if [[ -n "${DISPLAY:-}" || -n "${WAYLAND_DISPLAY:-}" ]]; then
  "$bin" "$estimate"
  exit
fi

echo "Экрана нет: программа работает без окна."
out="$data/Вывод"
mkdir -p "$out"
QT_QPA_PLATFORM=offscreen "$bin" "$estimate" --screenshot "$out/Главное окно.png"
if "$bin" --help 2>/dev/null | grep -q -- '--export'; then
  QT_QPA_PLATFORM=offscreen "$bin" --export "$estimate" "$out/Образец сметы.pdf"
  QT_QPA_PLATFORM=offscreen "$bin" --export "$estimate" "$out/Образец сметы.xls"
fi
echo "Документы примера: $out"
ls -1 "$out"
