// Preparation of the lookup queries of the formula catalogue and of user-defined formulas.
//
// A lookup query is stored with placeholders; before it runs they are replaced (placeholder
// names are matched without regard to case):
//   [pEmp]     the current company
//   [pIDMov]   the movement being edited
//   [pPreID]   the movement chosen as first argument (lookups of another movement's lines)
//   [pCodCta]  "rTrim(CueCodigo) + ' ' + " when account codes are shown, otherwise nothing
//   [pFindID]  " = " + id when a known id is resolved
//   [pFindKey] " = " + quoted text when a shown text is resolved
// Of the two search placeholders the one not in use becomes kNoCoincide, a comparison that
// matches nothing, so only the other alternative of the query's "or" can succeed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kivmovfrec::storage {

// The match-nothing comparison written for the search placeholder not in use.
inline constexpr std::string_view kNoCoincide = " = 'abc121ptokiv121cba'";

struct ContextoLookup {
  int32_t empresa = 0;              // [pEmp]
  int32_t id_mov = 0;               // [pIDMov]
  int32_t pre_id = 0;               // [pPreID]
  bool mostrar_codigo_cta = false;  // [pCodCta]
};

// Replaces [pEmp], [pIDMov], [pPreID] and [pCodCta]; the search placeholders stay.
std::string ReemplazarContexto(std::string_view sql, const ContextoLookup& ctx);

// The query that finds the row with id `id`: context replaced, [pFindID] = " = " + id,
// [pFindKey] = kNoCoincide.
std::string PrepararBusquedaPorID(std::string_view sql, const ContextoLookup& ctx, int64_t id);

// The query that finds the row shown as `clave`: context replaced, [pFindKey] = " = " + clave
// as an SQL literal (quotes inside doubled), [pFindID] = kNoCoincide.
std::string PrepararBusquedaPorClave(std::string_view sql, const ContextoLookup& ctx,
                                     std::string_view clave);

}  // namespace kivmovfrec::storage
