#include "storage/consulta_lookup.h"

#include "platform/vb/text.h"
#include "storage/sql_texto.h"

namespace kivmovfrec::storage {
namespace {

std::string Poner(std::string_view sql, std::string_view marca, std::string_view valor) {
  return vb::Replace(sql, marca, valor, /*ignore_case=*/true);
}

}  // namespace

std::string ReemplazarContexto(std::string_view sql, const ContextoLookup& ctx) {
  std::string s = Poner(sql, "[pEmp]", std::to_string(ctx.empresa));
  s = Poner(s, "[pIDMov]", std::to_string(ctx.id_mov));
  s = Poner(s, "[pPreID]", std::to_string(ctx.pre_id));
  s = Poner(s, "[pCodCta]", ctx.mostrar_codigo_cta ? "rTrim(CueCodigo) + ' ' + " : "");
  return s;
}

std::string PrepararBusquedaPorID(std::string_view sql, const ContextoLookup& ctx, int64_t id) {
  std::string s = ReemplazarContexto(sql, ctx);
  s = Poner(s, "[pFindID]", " = " + std::to_string(id));
  return Poner(s, "[pFindKey]", kNoCoincide);
}

std::string PrepararBusquedaPorClave(std::string_view sql, const ContextoLookup& ctx,
                                     std::string_view clave) {
  std::string s = ReemplazarContexto(sql, ctx);
  // The search text is replaced last, so a placeholder-looking text typed by the user is never
  // expanded.
  s = Poner(s, "[pFindID]", kNoCoincide);
  return Poner(s, "[pFindKey]", " = " + LiteralTexto(clave));
}

}  // namespace kivmovfrec::storage
