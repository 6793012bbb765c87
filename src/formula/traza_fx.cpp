#include "kivmovfrec/traza_fx.h"

namespace kivmovfrec {

const char* NombreOrigenFx(enuOrigenFx o) {
  switch (o) {
    case enuOrigenFx::Linea:
      return "renglón";
    case enuOrigenFx::OtroMovimiento:
      return "otro movimiento";
    case enuOrigenFx::Saldo:
      return "saldo";
    case enuOrigenFx::Indice:
      return "índice";
    case enuOrigenFx::Cotizacion:
      return "cotización";
    case enuOrigenFx::Consulta:
      return "consulta";
    case enuOrigenFx::Script:
      return "script";
    case enuOrigenFx::ImporteTotal:
      return "importe total";
    case enuOrigenFx::PedirDato:
      return "dato pedido";
    case enuOrigenFx::Diferencia:
      return "diferencia";
    case enuOrigenFx::Desconocido:
      break;
  }
  return "desconocido";
}

}  // namespace kivmovfrec
