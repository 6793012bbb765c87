#include "formula/catalogo_fx.h"

#include <array>

#include "platform/vb/text.h"

namespace kivmovfrec::formula {
namespace {

// Lookup queries, byte for byte as the suite stores them.
constexpr std::string_view kQOcurr =
    "[query]Select RecNumOcurrencia From genMovimientosFrecuentes, genRecurrencias Where MFrID = "
    "[pIDMov] And MFrRecurrencia = RecID[/query]";
constexpr std::string_view kQTipo =
    "Select TCMCodigo, TCMNombre, TCMNombre From genTipoCotizacionMoneda Where (TCMCodigo "
    "[pFindID] or TCMNombre [pFindKey]) And (TCMIndice = 0 or TCMIndice Is Null) Order by "
    "TCMNombre";
constexpr std::string_view kQMoneda =
    "Select MonID, RTrim(MonSimbolo), MonNombre + ' (' + RTrim(MonSimbolo) + ')' From genMonedas "
    "Where MonTipo = 1 And (MonID [pFindID] or MonSimbolo [pFindKey]) Order by MonNombre";
constexpr std::string_view kQIndice =
    "Select MonID, RTrim(MonSimbolo), MonNombre + ' (' + RTrim(MonSimbolo) + ')' From genMonedas "
    "Where MonTipo = 2 And (MonID [pFindID] or MonSimbolo [pFindKey]) Order by MonNombre";
constexpr std::string_view kQCuenta =
    "Select CueID, [pCodCta]CueNombre, [pCodCta]CueNombre From cceCuentas Where CueIDEmpresa = "
    "[pEmp] And (CueID [pFindID] or [pCodCta]CueNombre [pFindKey]) And CueEsCarpeta = 0 Order by "
    "CueNombre";
constexpr std::string_view kQMovCAF =
    "Select MFrID, MFrNombre as Key, MFrNombre From genMovimientosFrecuentes Where MFrTipo = 1 "
    "And MFrID <> [pIDMov] And  (MFrNombre [pFindKey] or MFrID [pFindID]) And MFrEstado = 0 And "
    "MFrEmpresa = [pEmp] And MFrRecurrencia Is Null Order by MFrNombre";
constexpr std::string_view kQMovCCF =
    "Select MFrID, MFrNombre as Key, MFrNombre From genMovimientosFrecuentes Where MFrTipo = 2 "
    "And MFrID <> [pIDMov] And (MFrNombre [pFindKey] or MFrID [pFindID]) And MFrEstado = 0 And "
    "MFrEmpresa = [pEmp] And MFrRecurrencia Is Null Order by MFrNombre";
constexpr std::string_view kQMovCAA =
    "Select MFrID, MFrNombre as Key, MFrNombre From genMovimientosFrecuentes Where MFrTipo = 1 "
    "And MFrID <> [pIDMov] And  (MFrNombre [pFindKey] or MFrID [pFindID]) And MFrEstado = 0 And "
    "MFrEmpresa = [pEmp] And MFrRecurrencia Is Not Null Order by MFrNombre";
constexpr std::string_view kQMovCCA =
    "Select MFrID, MFrNombre as Key, MFrNombre From genMovimientosFrecuentes Where MFrTipo = 2 "
    "And MFrID <> [pIDMov] And (MFrNombre [pFindKey] or MFrID [pFindID]) And MFrEstado = 0 And "
    "MFrEmpresa = [pEmp] And MFrRecurrencia Is not Null Order by MFrNombre";

constexpr std::array<EntradaFx, 22> kEntradas = {{
    {1, "Cuenta Ingresada", "CI", 0,
     "Seleccione una de las cuentas ya ingresadas en este movimiento.", "",
     kPalabraCuentaMovFrecuente, ""},
    {11, "Pedir valor", "Valor", 0, "Solicita el dato al momento de cumplir el movimiento.", "",
     "[PedirDato]", "[PedirDato]"},
    {15, "Cotizaciones o Índices", "", 0, "Fórmulas que devuelven el valor de una cotización.", "",
     "", ""},
    {16, "Saldo de una Cuenta", "", 0, "Fórmulas que devuelven el saldo de una cuenta.", "", "",
     ""},
    {10, "Diferencia", "xDif", 0, "Diferencia de las cuentas del asiento.", "", "[RestoCuenta]",
     ""},
    {14, "Importe total", "ImpTotal", 0, "Solicita o calcula el monto total del movimiento.", "",
     "[ImpMov]", "[ImpMov]"},
    {17, "Cuentas de un movimiento frecuente", "", 0,
     "Fórmulas de asientos y comprobantes frecuentes.", "", "", ""},
    {18, "Cuentas de un movimiento agendado", "", 0,
     "Fórmulas de asientos y comprobantes Agendados.", "", "", ""},
    {12, "Ocurrencia", "Ocurr", 0, "Número de veces que sucedió la ocurrencia.", "",
     "[CantidadOcurrencia]", kQOcurr},
    {13, "Cotización del día", "CotHoy", 15,
     "Retorna la cotización para el tipo y moneda seleccionada al día del movimiento.", kQTipo,
     kQMoneda, "[CotizacionMonedaHoy]"},
    {8, "Cotización al día anterior", "CotAyer", 15,
     "Retorna la cotización para el tipo y moneda seleccionada al día de ayer.", kQTipo, kQMoneda,
     "[CotizacionMonedaAyer]"},
    {7, "Cotización al mes anterior", "CotMesAnt", 15,
     "Retorna la cotización para el tipo y moneda seleccionada al último día del mes anterior.",
     kQTipo, kQMoneda, "[CotizacionMonedaMesAnterior]"},
    {6, "Índice al día de hoy", "IndHoy", 15, "Retorna el valor del índice a la fecha del cálculo.",
     "", kQIndice, "[IndiceHoy]"},
    {21, "Índice al día anterior", "IndAyer", 15,
     "Retorna el valor del índice al día anterior al cálculo.", "", kQIndice, "[IndiceAyer]"},
    {22, "Índice al mes anterior", "IndMesAnt", 15,
     "Retorna el valor del índice al último día del mes anterior al cálculo.", "", kQIndice,
     "[IndiceMes]"},
    {5, "Saldo al día de hoy", "SCta", 16, "Devuelve el saldo de la cuenta al día del movimiento.",
     "", kQCuenta, "[SaldoCtaDia]"},
    {3, "Saldo al día anterior", "SCtaAyer", 16,
     "Devuelve el saldo de la cuenta al día anterior al cálculo.", "", kQCuenta,
     "[SaldoCtaDiaAnterior]"},
    {4, "Saldo al mes anterior", "SCtaMesAnt", 16,
     "Devuelve el saldo de la cuenta al último día del mes anterior al cálculo.", "", kQCuenta,
     "[SaldoCtaMesAnterior]"},
    {2, "Asiento Frecuente", "CAF", 17,
     "Devuelve el valor de la cuenta para el asiento frecuente seleccionado.", kQMovCAF,
     kPalabraCuentaOtroMov, ""},
    {9, "Comprobante frecuente", "CCF", 17,
     "Devuelve el valor de la cuenta para el comprobante frecuente seleccionado.", kQMovCCF,
     kPalabraCuentaOtroMov, ""},
    {19, "Asiento agendado", "CAA", 18,
     "Devuelve el valor de la cuenta para el asiento seleccionado.", kQMovCAA,
     kPalabraCuentaOtroMov, ""},
    {20, "Comprobante agendado", "CCA", 18,
     "Devuelve el valor de la cuenta para el comprobante seleccionado.", kQMovCCA,
     kPalabraCuentaOtroMov, ""},
}};

const EntradaFx kVacia{};

}  // namespace

std::span<const EntradaFx> clsFxMovFrec::Entradas() {
  return kEntradas;
}

int clsFxMovFrec::Cantidad() const {
  return static_cast<int>(kEntradas.size());
}

const EntradaFx& clsFxMovFrec::Entrada(int indice) const {
  if (indice < 0 || indice >= Cantidad()) return kVacia;
  return kEntradas[static_cast<size_t>(indice)];
}

int clsFxMovFrec::Buscar(int id) const {
  for (int i = 0; i < Cantidad(); ++i) {
    if (kEntradas[static_cast<size_t>(i)].id == id) return i;
  }
  return -1;
}

const EntradaFx* clsFxMovFrec::BuscarEntrada(int id) const {
  int i = Buscar(id);
  return i < 0 ? nullptr : &kEntradas[static_cast<size_t>(i)];
}

int clsFxMovFrec::BuscarTitulo(std::string_view titulo) const {
  for (int i = 0; i < Cantidad(); ++i) {
    const EntradaFx& e = kEntradas[static_cast<size_t>(i)];
    if (!e.EsGrupo() && vb::EqualsIgnoreCase(e.titulo, titulo)) return i;
  }
  return -1;
}

}  // namespace kivmovfrec::formula
