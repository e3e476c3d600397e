#!/usr/bin/env bash
# Lays out a fresh sample data folder and opens the program on the sample estimate. Without a
# display the program runs offscreen: it renders the sample's documents and says where they are.
set -euo pipefail
build=${1:-build}
top=$(cd "$(dirname "$0")/.." && pwd)
bin="$top/$build/virn-smeta"
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

cd "$data"
if [[ -n "${DISPLAY:-}" || -n "${WAYLAND_DISPLAY:-}" ]]; then
  exec "$bin" "$estimate"
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
