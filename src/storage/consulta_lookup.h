// Preparation of the lookup queries of the formula catalogue and of user-defined formulas.
//
// A lookup query is stored with placeholders; before it runs they are replaced (placeholder
// names are matched without regard to case):
//   [pEmp]     the current company
//   [pIDMov]   the movement being edited
//   [pPreID]   the movement chosen as first argument (lookups of another movement's lines)
//   [pCodCta]  "rTrim(CueCodigo) + ' ' + " when account codes are shown, otherwise nothing
//   [pFindID]  " = ?" with the id when a known id is resolved
//   [pFindKey] " = ?" with the text when a shown text is resolved
// The context values are whole numbers written into the text. The searched id and text go
// beside it as bound values, so nothing a person typed becomes SQL. Of the two search
// placeholders the one not in use is compared with a Null value, which matches no row whatever
// the column's type, so only the other alternative of the query's "or" can succeed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kivmovfrec/db.h"

namespace kivmovfrec::storage {

struct ContextoLookup {
  int32_t empresa = 0;              // [pEmp]
  int32_t id_mov = 0;               // [pIDMov]
  int32_t pre_id = 0;               // [pPreID]
  bool mostrar_codigo_cta = false;  // [pCodCta]
};

// A lookup ready to run: Connection::OpenResultset(sql, valores).
struct ConsultaLookup {
  std::string sql;
  DbParams valores;  // one per search placeholder, in the order they appear
};

// Replaces [pEmp], [pIDMov], [pPreID] and [pCodCta]; the search placeholders stay.
std::string ReemplazarContexto(std::string_view sql, const ContextoLookup& ctx);

// The query that finds the row with id `id`; [pFindKey] matches nothing.
ConsultaLookup PrepararBusquedaPorID(std::string_view sql, const ContextoLookup& ctx, int64_t id);

// The query that finds the row shown as `clave` (compared as it is); [pFindID] matches nothing.
ConsultaLookup PrepararBusquedaPorClave(std::string_view sql, const ContextoLookup& ctx,
                                        std::string_view clave);

// The query that offers every row: [pFindID] becomes " Is Not Null", [pFindKey] matches
// nothing.
ConsultaLookup PrepararTodas(std::string_view sql, const ContextoLookup& ctx);

}  // namespace kivmovfrec::storage
