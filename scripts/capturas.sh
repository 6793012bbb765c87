#!/usr/bin/env bash
# Draws every dialog of the component, and the main window when movfrec-qt is there, into
# docs/capturas/*.png, with the programs' own --captura (no display needed). Builds nothing.
#
#   scripts/capturas.sh MOVFREC BASE [MOVFREC_QT]
#
# MOVFREC is the movfrec binary; BASE a database URI (sqlite:FILE, postgresql://...) or a SQLite
# file, created with the demo company when it does not exist yet (the pictures are meant for the
# demo company); MOVFREC_QT the main window's binary, by default movfrec-qt beside the build's
# qt/principal/ (cli/../qt/principal/movfrec-qt) or on the PATH; without one the main window is
# skipped with a message. "Today" is fixed (HOY, 2026-11-10 unless given) so that the pictures
# do not change from one day to the next.
set -euo pipefail

if [[ $# -lt 2 || $# -gt 3 ]]; then
  echo "uso: $0 MOVFREC BASE [MOVFREC_QT]" >&2
  exit 2
fi
movfrec=$(realpath "$1")
base=$2
[[ "$base" == *:* ]] || base="sqlite:$(realpath -m "$base")"
if [[ ! -x "$movfrec" ]]; then
  echo "$0: $1 no es un programa" >&2
  exit 2
fi
principal=${3:-}
if [[ -z "$principal" ]]; then
  junto=$(dirname "$movfrec")/../qt/principal/movfrec-qt
  if [[ -x "$junto" ]]; then
    principal=$junto
  else
    principal=$(command -v movfrec-qt || true)
  fi
fi

cd "$(dirname "$0")/.."
destino=docs/capturas
mkdir -p "$destino"
hoy=${HOY:-2026-11-10}
export QT_QPA_PLATFORM=offscreen
# Qt wants a runtime directory of its own; a scratch one keeps its warning off the output.
XDG_RUNTIME_DIR=$(mktemp -d)
export XDG_RUNTIME_DIR
trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT

if [[ "$base" == sqlite:* && ! -e "${base#sqlite:}" ]]; then
  "$movfrec" --db "$base" init --demo >/dev/null
fi

# captura NOMBRE ARGUMENTOS...: one dialog command with --captura docs/capturas/NOMBRE.png.
captura() {
  local nombre=$1
  shift
  "$movfrec" --db "$base" --hoy "$hoy" "$@" --captura "$destino/$nombre.png" >/dev/null
  echo "$destino/$nombre.png"
}

# The wizard on a scheduled entry (1, each panel), a voucher (6) and a notice (8).
captura asistente-asiento-general asistente 1 --panel 1
captura asistente-asiento-cuentas asistente 1 --panel 2
captura asistente-asiento-agenda asistente 1 --panel 3
captura asistente-comprobante-general asistente 6 --panel 1
captura asistente-comprobante-cuentas asistente 6 --panel 2
captura asistente-aviso asistente 8
captura lista-tareas lista-tareas 10
captura vincular vincular 18
captura formula formula editar 2 2
captura usuarios usuarios "1, 2"
captura frecuencia frecuencia

if [[ -n "$principal" && -x "$principal" ]]; then
  # The main window, then each computation window it opens (the forecast with its figures).
  for ventana in "" calcular:27 pronostico ejecutar; do
    if [[ -z $ventana ]]; then
      nombre=movfrec-qt abrir=()
    else
      nombre=movfrec-qt-${ventana%%:*} abrir=(--abrir "$ventana")
    fi
    "$principal" --db "$base" --hoy "$hoy" "${abrir[@]}" --captura "$destino/$nombre.png" >/dev/null
    echo "$destino/$nombre.png"
  done
else
  echo "$0: sin movfrec-qt (ni junto a movfrec ni en el PATH): la ventana principal queda sin captura" >&2
fi
