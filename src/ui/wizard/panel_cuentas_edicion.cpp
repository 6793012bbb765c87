// The accounts panel's edit strip: loading a line into it, choosing its formula, and the checks
// and the write when a row is confirmed.
#include <memory>
#include <optional>

#include "formula/corrida_fx.h"
#include "formula/funciones_fx.h"
#include "kivmovfrec/vb.h"
#include "platform/vb/format.h"
#include "platform/vb/typed_number.h"
#include "resources/msg.h"
#include "storage/tabla_cuentas.h"
#include "ui/wizard/panel_cuentas_estado.h"

namespace kivmovfrec::ui {

using namespace controles;

namespace {

std::string Recortado(const ITexto& t) {
  return vb::Trim(t.Text());
}

// What an amount or rate field holds: nothing, a number, or text that is no number.
struct Numero {
  bool escrito = false;
  bool valido = true;
  double valor = 0;
};

Numero LeerNumero(const ITexto& t) {
  const std::string texto = Recortado(t);
  if (texto.empty()) return {};
  const vb::TypedNumber n = vb::ReadTypedNumber(texto);
  if (n.status != vb::TypedNumber::kNumber) return {true, false, 0};
  return {true, true, n.value};
}

}  // namespace

void PanelCuentas::Estado::LimpiarEdicion() {
  for (ITexto* t : {cuenta, debe, haber, valor_tc, detalle}) t->Text("");
  tipo_cambio->Indice(-1);
  formula.clear();
  cuenta_cargada.clear();
  editando = false;
}

void PanelCuentas::Estado::CargarFila(int f) {
  LimpiarEdicion();
  const clsRenglonesMF& lineas = *mf.Renglones();
  fila = f >= 0 && f < lineas.QRenglones() ? f : -1;
  if (fila < 0) {
    grilla->Fila(-1);
    return;
  }
  const clsRegRenglonMF& r = *lineas.Renglon(static_cast<int16_t>(fila + 1));
  cuenta_cargada = !r.CuentaCodigo().empty() ? r.CuentaCodigo() : std::to_string(r.Cuenta());
  cuenta->Text(cuenta_cargada);
  const std::string importe =
      vb::FormatNumberPattern(r.ImporteMF(), FormatoImporte(mf.MovFrecuente()->Moneda()));
  (r.AlDebe() ? debe : haber)->Text(importe);
  for (int i = 0; i < tipo_cambio->Cantidad(); ++i)
    if (r.TipoCambio() != 0 && tipo_cambio->Dato(i) == r.TipoCambio()) tipo_cambio->Indice(i);
  if (r.ValorTC() != 0)
    valor_tc->Text(vb::FormatNumberPattern(r.ValorTC(), FormatoCotizacion(r.Moneda())));
  detalle->Text(r.Detalle());
  formula = r.Formula();
  editando = false;
}

void PanelCuentas::Estado::ElegirFormula() {
  if (!formula.empty() && !Preguntar(msg::kReemplazarFormula)) return;
  const int posicion = fila >= 0 ? fila : mf.Renglones()->QRenglones();
  const std::optional<std::string> nueva =
      editar_formula ? editar_formula(posicion, formula) : std::nullopt;
  if (!nueva) return;
  formula = *nueva;
  editando = true;
}

void PanelCuentas::Estado::Aplicar() {
  clsRenglonesMF& lineas = *mf.Renglones();
  std::shared_ptr<clsRegRenglonMF> actual =
      fila >= 0 ? lineas.Renglon(static_cast<int16_t>(fila + 1)) : nullptr;

  // An existing row emptied: the person may mean to remove it.
  if (actual && Recortado(*cuenta).empty() && Recortado(*debe).empty() &&
      Recortado(*haber).empty()) {
    if (Preguntar(msg::kEliminarFilaEditada)) {
      QuitarLinea(fila);
    } else {
      cuenta->SetFocus();
    }
    return;
  }

  // Amounts: text that is no number, both sides, or neither side without a formula.
  const Numero d = LeerNumero(*debe);
  const Numero h = LeerNumero(*haber);
  if (!d.valido) return Rechazar(msg::kCampoNoValido, *debe);
  if (!h.valido) return Rechazar(msg::kCampoNoValido, *haber);
  if (d.valor != 0 && h.valor != 0) return Rechazar(msg::kIngreseValorDebeHaber, *haber);
  if (d.valor == 0 && h.valor == 0 && formula.empty())
    return Rechazar(msg::kIngreseValorDebeHaber, *debe);
  if (static_cast<int>(vb::Len(detalle->Text())) > detalle->MaxLength() && detalle->MaxLength() > 0)
    return Rechazar(msg::kErrorTamanoPermitido, *detalle);

  // The account: the line's own while its text is the one loaded, else looked up.
  std::optional<storage::CuentaElegible> elegida;
  const std::string texto_cuenta = Recortado(*cuenta);
  if (actual && !texto_cuenta.empty() && texto_cuenta == cuenta_cargada) {
    elegida = storage::CuentaElegible{actual->Cuenta(), actual->CuentaCodigo(),
                                      actual->CuentaNombre(), actual->Moneda()};
  } else if (!texto_cuenta.empty()) {
    elegida = storage::BuscarCuentaElegible(*ctx.cn, empresa, texto_cuenta);
  }

  // A line in another currency than the movement's needs a rate: a type or a typed value.
  const bool otra_moneda = elegida && Resolver(elegida->moneda) != MonedaMovimiento();
  const Numero tasa = LeerNumero(*valor_tc);
  const bool tasa_escrita = tasa.valido && tasa.valor > 0;
  if (otra_moneda && tipo_cambio->Indice() < 0 && !tasa_escrita)
    return Rechazar(msg::kSeleccioneTipoCambio, *tipo_cambio);
  if (!elegida) return Rechazar(msg::kIngreseCuenta, *cuenta);
  for (int16_t i = 1; i <= lineas.QRenglones(); ++i) {
    const clsRegRenglonMF& otra = *lineas.Renglon(i);
    if (i - 1 == fila) continue;
    const int16_t proyecto = actual ? actual->Proyecto() : 0;
    const int16_t departamento = actual ? actual->Departamento() : 0;
    if (otra.Cuenta() == elegida->id && otra.Proyecto() == proyecto &&
        otra.Departamento() == departamento)
      return Rechazar(msg::kCuentaYaIngresada, *cuenta);
  }

  // Every check passed: the line is written whole (a copy replaces the record, so a failure on
  // the way leaves the old one in place).
  auto r = std::make_shared<clsRegRenglonMF>(actual ? *actual : clsRegRenglonMF{});
  r->Cuenta(elegida->id);
  r->CuentaCodigo(elegida->codigo);
  r->CuentaNombre(elegida->nombre);
  r->Moneda(elegida->moneda);
  const bool al_debe = d.escrito ? true : h.escrito ? false : actual ? actual->AlDebe() : true;
  r->AlDebe(al_debe);
  const int16_t m = MonedaMovimiento();
  r->ImporteMF(formula::RedondearFormato(al_debe ? d.valor : h.valor, FormatoImporte(m)));
  r->TipoCambio(otra_moneda && tipo_cambio->Indice() >= 0
                    ? static_cast<uint8_t>(tipo_cambio->Dato(tipo_cambio->Indice()))
                    : 0);
  r->ValorTC(otra_moneda && tasa_escrita ? tasa.valor : 0);
  if (!otra_moneda) {
    r->ImporteCta(r->ImporteMF());
  } else if (r->ValorTC() != 0) {
    const formula::ParConversion par =
        formula::ParDeConversion(m, Resolver(r->Moneda()), moneda_contabilidad);
    const double bruto =
        par.dividir ? r->ImporteMF() / r->ValorTC() : r->ImporteMF() * r->ValorTC();
    r->ImporteCta(formula::RedondearFormato(bruto, FormatoImporte(r->Moneda())));
  } else {
    r->ImporteCta(0);  // converted with the type's rate when the movement is executed
  }
  r->Detalle(detalle->Text());
  r->Formula(formula);
  if (actual) {
    lineas.SetRenglon(static_cast<int16_t>(fila + 1), r);
    LlenarFila(fila);
  } else {
    lineas.AddRenglon(r);
    grilla->AgregarFila();
    LlenarFila(lineas.QRenglones() - 1);
  }
  Renumerar();
  fila = -1;
  grilla->Fila(-1);
  LimpiarEdicion();
  cuenta->SetFocus();
}

}  // namespace kivmovfrec::ui
