#include "kivmovfrec/nombres.h"

#include "kivmovfrec/enums.h"
#include "resources/catalogue.h"
#include "resources/msg.h"

namespace kivmovfrec {

std::string NombreTipoMovFrec(int tipo) {
  switch (tipo) {
    case ToInt(enuTipoMovFrec::Asiento):
      return "Asiento";
    case ToInt(enuTipoMovFrec::Comprobante):
      return "Comprobante";
    case ToInt(enuTipoMovFrec::Calendario):
      return "Aviso";
    case ToInt(enuTipoMovFrec::AsientoSistema):
      return "Asiento del sistema";
    case ToInt(enuTipoMovFrec::CheckList):
      return "Lista de tareas";
    case kTipoItemCheckList:
      return "Tarea";
    default:
      return "";
  }
}

std::string NombreEstadoMF(int estado) {
  switch (estado) {
    case ToInt(enuEstadoMF::EnProceso):
      return "En proceso";
    case ToInt(enuEstadoMF::Realizado):
      return "Realizado";
    case ToInt(enuEstadoMF::Papelera):
      return "Papelera";
    default:
      return "";
  }
}

std::string NombreTipoImporte(int tipo_importe) {
  // The captions the wizard offers for the amount types.
  if (tipo_importe < 1 || tipo_importe > 3) return "";
  return std::string(resources::Texto(msg::kImporteEstimado + tipo_importe - 1));
}

}  // namespace kivmovfrec
