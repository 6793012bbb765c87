#include "storage/tabla_empresas.h"

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
