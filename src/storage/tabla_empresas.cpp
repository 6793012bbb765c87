#include "storage/tabla_empresas.h"

#include <utility>

#include "kivmovfrec/variant.h"
#include "platform/vb/convert.h"
#include "platform/vb/text.h"
#include "storage/columnas.h"

namespace kivmovfrec::storage {

std::string SqlEmpresaPorID(int32_t empresa) {
  return "Select * from cceEmpresas Where EmpID = " + std::to_string(empresa);
}

void LeerEmpresa(const Resultset& rs, clsEmpresa& emp) {
  SiNoNulo(rs, "EmpNombre", ATexto, [&](const std::string& v) { emp.Nombre(vb::Trim(v)); });
  SiNoNulo(rs, "EmpMostrarCodigoCta", ALong, [&](int32_t v) { emp.MostrarCodigoCta(v); });
  SiNoNulo(rs, "EmpMonedaContabilidad", AInteger, [&](int16_t v) { emp.MonedaContabilidad(v); });
  SiNoNulo(rs, "EmpValoresUsuarioYAuroriza", ATexto,
           [&](const std::string& v) { emp.ValoresUsuarioYAutoriza(vb::Trim(v)); });
  SiNoNulo(rs, "EmpTipoTCComprobantes", ALong, [&](int32_t v) { emp.TipoTCComprobantes(v); });
  SiNoNulo(rs, "EmpClase", ALong, [&](int32_t v) { emp.Clase(v); });
  SiNoNulo(rs, "EmpPrms", ATexto, [&](const std::string& v) { emp.AplicarPrms(v); });
}

}  // namespace kivmovfrec::storage

namespace kivmovfrec {

// The company's own Load reads through the table code above; it is defined here so that the
// in-memory class (core) does not depend on the tables.
bool clsEmpresa::Load(int32_t empresa, Connection& cn) {
  auto rs = cn.OpenResultset(storage::SqlEmpresaPorID(empresa));
  if (rs->Eof()) {
    rs->Close();
    return false;
  }
  clsEmpresa leida = *this;
  leida.ID(vb::CInt(Variant(empresa)));
  storage::LeerEmpresa(*rs, leida);
  rs->Close();
  *this = std::move(leida);
  return true;
}

}  // namespace kivmovfrec
