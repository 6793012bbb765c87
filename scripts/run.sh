#!/usr/bin/env bash
# Builds movfrec (release) and runs the main job, `movfrec ejecutar` (everything due up to today
# becomes a posted document), on the embedded SQLite database movfrec.db, creating it with the
# demo company when it does not exist yet.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DKMF_BUILD_TESTS=OFF >/dev/null
cmake --build build/release --target movfrec
db="${MOVFREC_DB:-sqlite:movfrec.db}"
mf=build/release/cli/movfrec
if [[ "$db" == sqlite:* && ! -e "${db#sqlite:}" ]]; then
  "$mf" --db "$db" init --demo
fi
"$mf" --db "$db" ejecutar
