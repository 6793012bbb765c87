#include "storage/consulta_lookup.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "platform/vb/text.h"

namespace kivmovfrec::storage {
namespace {

std::string Poner(std::string_view sql, std::string_view marca, std::string_view valor) {
  return vb::Replace(sql, marca, valor, /*ignore_case=*/true);
}

// What each search placeholder becomes: " = ?" with the value, or `texto` when given.
struct Busqueda {
  std::optional<Variant> valor;
  std::string_view texto;
};

// Replaces the search placeholders in order of appearance, so the values follow the `?`.
ConsultaLookup PonerBusqueda(std::string_view sql, const Busqueda& id, const Busqueda& clave) {
  ConsultaLookup out;
  // ASCII folding keeps every byte where it was.
  std::string lower(sql);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  size_t desde = 0;
  while (true) {
    const size_t en_id = lower.find("[pfindid]", desde);
    const size_t en_clave = lower.find("[pfindkey]", desde);
    const size_t en = std::min(en_id, en_clave);
    out.sql.append(sql.substr(desde, en == std::string::npos ? std::string::npos : en - desde));
    if (en == std::string::npos) break;
    const Busqueda& b = en == en_id ? id : clave;
    if (b.valor) {
      out.sql += " = ?";
      out.valores.push_back(*b.valor);
    } else {
      out.sql += b.texto;
    }
    desde = en + (en == en_id ? 9 : 10);
  }
  return out;
}

const Busqueda kNinguna{Variant::Null(), {}};

}  // namespace

std::string ReemplazarContexto(std::string_view sql, const ContextoLookup& ctx) {
  std::string s = Poner(sql, "[pEmp]", std::to_string(ctx.empresa));
  s = Poner(s, "[pIDMov]", std::to_string(ctx.id_mov));
  s = Poner(s, "[pPreID]", std::to_string(ctx.pre_id));
  s = Poner(s, "[pCodCta]", ctx.mostrar_codigo_cta ? "rTrim(CueCodigo) + ' ' + " : "");
  return s;
}

ConsultaLookup PrepararBusquedaPorID(std::string_view sql, const ContextoLookup& ctx, int64_t id) {
  const Variant valor = id >= INT32_MIN && id <= INT32_MAX ? Variant(static_cast<int32_t>(id))
                                                           : Variant(static_cast<double>(id));
  return PonerBusqueda(ReemplazarContexto(sql, ctx), {valor, {}}, kNinguna);
}

ConsultaLookup PrepararBusquedaPorClave(std::string_view sql, const ContextoLookup& ctx,
                                        std::string_view clave) {
  return PonerBusqueda(ReemplazarContexto(sql, ctx), kNinguna, {Variant(clave), {}});
}

ConsultaLookup PrepararTodas(std::string_view sql, const ContextoLookup& ctx) {
  return PonerBusqueda(ReemplazarContexto(sql, ctx), {std::nullopt, " Is Not Null"}, kNinguna);
}

}  // namespace kivmovfrec::storage
