#include "ui/user_picker/eleccion_usuarios.h"

#include <algorithm>
#include <limits>

#include "platform/vb/convert.h"
#include "platform/vb/locale.h"
#include "platform/vb/text.h"
#include "ui/texto_numeros.h"

namespace kivmovfrec::ui {

std::vector<int32_t> LeerCodigosUsuario(std::string_view texto) {
  std::vector<int32_t> out;
  for (std::string_view resto = texto;;) {
    const size_t coma = resto.find(',');
    if (auto codigo =
            LeerEnteroPositivo(resto.substr(0, coma), std::numeric_limits<int32_t>::max()))
      out.push_back(*codigo);
    if (coma == std::string_view::npos) break;
    resto.remove_prefix(coma + 1);
  }
  return out;
}

std::vector<FilaUsuario> CargarUsuarios(Connection& cn, std::string_view codigos) {
  const std::vector<int32_t> dados = LeerCodigosUsuario(codigos);
  std::vector<FilaUsuario> filas;
  auto rs = cn.OpenReadOnly(kSqlUsuarios);
  // Stored values, not typed ones: converted with the invariant locale; NULL reads as "".
  const auto texto = [&](std::string_view col) {
    const Variant v = rs->Get(col);
    return v.IsNull() || v.IsEmpty() ? std::string()
                                     : vb::Trim(vb::CStr(v, vb::Locale::Invariant()));
  };
  for (; !rs->Eof(); rs->MoveNext()) {
    FilaUsuario fila;
    fila.codigo = vb::CLng(rs->Get("UsuCodigo"), vb::Locale::Invariant());
    fila.identificacion = texto("UsuIdentificacion");
    fila.nombre = texto("UsuNombres") + " " + texto("UsuApellidos");
    fila.para = std::find(dados.begin(), dados.end(), fila.codigo) != dados.end();
    filas.push_back(std::move(fila));
  }
  return filas;
}

EleccionUsuarios Elegidos(const std::vector<FilaUsuario>& filas) {
  EleccionUsuarios out;
  for (const FilaUsuario& fila : filas) {
    if (!fila.para) continue;
    if (!out.codigos.empty()) {
      out.codigos += ", ";
      out.identificaciones += "; ";
    }
    out.codigos += std::to_string(fila.codigo);
    out.identificaciones += fila.identificacion;
  }
  return out;
}

}  // namespace kivmovfrec::ui
