#!/usr/bin/env bash
# Checks what the shared library offers its hosts:
#   check_exports.sh LIBRARY.so INCLUDE_DIR
# - every dynamic symbol it defines is a name of the public headers: of namespace kivmovfrec
#   itself or of a sub-namespace a public header opens, never of an internal one
#   (kivmovfrec::storage, ::formula, ::sql, ...) nor of the standard library's template code;
# - the public entry points and the vtables and typeinfo hosts derive from and catch are there;
# - no public header includes the database engines' headers.
# Prints what is wrong and exits 1.
set -euo pipefail
lib=$1
include=$2
symbols=$(nm -D --defined-only -C "$lib" | sed -E 's/^[0-9a-f]* +[A-Za-z] //')
status=0

# A lower-case namespace is internal unless a public header opens it (kivmovfrec::vb,
# kivmovfrec::schedule), and then only for the names those headers declare.
internal=$(grep -E 'kivmovfrec::\(anonymous namespace\)' <<<"$symbols" || true)
while IFS= read -r sym; do
  [[ $sym =~ kivmovfrec::([a-z_][a-z0-9_]*)::([A-Za-z_][A-Za-z0-9_]*) ]] || continue
  ns=${BASH_REMATCH[1]}
  name=${BASH_REMATCH[2]}
  headers=$(grep -lE "^namespace kivmovfrec::$ns \{" "$include"/kivmovfrec/*.h || true)
  if [ -z "$headers" ] || ! grep -qw -- "$name" $headers; then
    internal+=$'\n'"$sym"
  fi
done <<<"$symbols"
internal=$(sed '/^$/d' <<<"$internal")
if [ -n "$internal" ]; then
  echo "$lib exports internal names:" >&2
  echo "$internal" >&2
  status=1
fi
foreign=$(grep -vE '^((typeinfo( name)?|vtable) for |(non-)?virtual thunk to )?kivmovfrec::' \
  <<<"$symbols" || true)
if [ -n "$foreign" ]; then
  echo "$lib exports names outside kivmovfrec::" >&2
  echo "$foreign" >&2
  status=1
fi

required=(
  "kivmovfrec::OpenConnection("
  "kivmovfrec::InstallSchema("
  "kivmovfrec::SuiteServices::Defaults("
  "kivmovfrec::clsMovFrecuente::LoadMF("
  "kivmovfrec::Variant::type() const"
  "typeinfo for kivmovfrec::DbError"
  "typeinfo for kivmovfrec::ComponentError"
  "typeinfo for kivmovfrec::VbError"
  "vtable for kivmovfrec::Connection"
  "typeinfo for kivmovfrec::Connection"
  "typeinfo for kivmovfrec::IMessages"
)
for name in "${required[@]}"; do
  if ! grep -qF "$name" <<<"$symbols"; then
    echo "$lib does not export $name" >&2
    status=1
  fi
done

engines=$(grep -rnE '#\s*include\s*[<"](sqlite3|libpq-fe|postgres[a-z_]*)\.h[>"]' "$include" || true)
if [ -n "$engines" ]; then
  echo "public headers include a database engine's header:" >&2
  echo "$engines" >&2
  status=1
fi
exit $status
