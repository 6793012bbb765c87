// The formula members of clsMovFrecuente: context preparation and hand-over to the evaluator.
#include <exception>
#include <string>

#include "formula/calculo_fx.h"
#include "formula/leyenda.h"
#include "kivmovfrec/mov_frecuente.h"
#include "platform/vb/convert.h"
#include "resources/catalogue.h"
#include "resources/msg.h"

namespace kivmovfrec {
namespace {

constexpr const char* kFechaNoIndicada = "01/01/1958";

formula::ServiciosFx ServiciosCalculo(const SuiteServices& s) {
  return {s.input, s.clock, s.balance};
}

}  // namespace

Date clsMovFrecuente::PrepararCalculoFx() {
  clsRegRecurrencia& rec = *estructura_->Recurrencia();
  if (rec.FechaProxima().empty()) {
    rec.FechaProxima(fecha_hoy_calculo_fx_ ? vb::CStr(Variant(ctx_.Reloj().Today()))
                                           : std::string(kFechaNoIndicada));
  }
  ctx_.parametros.moneda_contabilidad = EmpresaContexto().MonedaContabilidad();
  return vb::CDate(Variant(rec.FechaProxima()));
}

void clsMovFrecuente::AvisarSinResultado(int mensaje) {
  if (!ctx_.servicios.messages) return;
  try {
    ctx_.servicios.messages->Show(resources::Mensaje({mensaje}, msg::kTituloMovimientosFrecuentes,
                                                     MsgIcon::Exclamation, MsgButtons::OK,
                                                     Idioma()));
  } catch (const std::exception&) {
  }
}

bool clsMovFrecuente::SetCalculoFormulasMF(int32_t lMovFrec, bool bNoPedirDatos) {
  ultimo_error_.clear();
  if (!ctx_.cn) return false;
  traza_fx_ = TrazaCalculoFx{};
  try {
    Date fecha = PrepararCalculoFx();
    const std::string marca = estructura_->Recurrencia()->FechaProxima();
    formula::clsCalculoFx calculo(ctx_.cn, EmpresaContexto(), ServiciosCalculo(ctx_.servicios),
                                  ctx_.parametros);
    const bool ok = calculo.SetCalculoFormulasMF(*estructura_, lMovFrec, bNoPedirDatos, fecha);
    traza_fx_ = calculo.Traza();
    // The load replaced the schedule: one without due date keeps the text of step 1.
    clsRegRecurrencia& rec = *estructura_->Recurrencia();
    if (rec.FechaProxima().empty()) rec.FechaProxima(marca);
    if (!ok) AvisarSinResultado(msg::kFormulaSinResultado);
    return ok;
  } catch (const std::exception& e) {
    traza_fx_.error = e.what();
    Reportar(msg::kErrorCalcularFormulas, e);
    return false;
  }
}

bool clsMovFrecuente::GetValueUnaPata(const clsRenglonesMF& RenglonesMF, int16_t iMonMF,
                                      int16_t iEmpresaMF, bool& bImporteEditable,
                                      double& dbImporte) {
  ultimo_error_.clear();
  if (!ctx_.cn) return false;
  traza_fx_ = TrazaCalculoFx{};
  try {
    const Date fecha = PrepararCalculoFx();
    formula::clsCalculoFx calculo(ctx_.cn, EmpresaContexto(), ServiciosCalculo(ctx_.servicios),
                                  ctx_.parametros);
    const bool ok = calculo.GetValueUnaPata(RenglonesMF, iMonMF, iEmpresaMF, bImporteEditable,
                                            dbImporte, fecha);
    traza_fx_ = calculo.Traza();
    if (!ok) AvisarSinResultado(msg::kFormulaSinResultadoPata);
    return ok;
  } catch (const std::exception& e) {
    traza_fx_.error = e.what();
    Reportar(msg::kErrorCalcularFormulas, e);
    return false;
  }
}

bool clsMovFrecuente::RecalcularFormulasMF(clsRenglonesMF& RenglonesMF, int16_t iMonMF,
                                           bool bNoPedirTC) {
  ultimo_error_.clear();
  if (!ctx_.cn) return false;
  traza_fx_ = TrazaCalculoFx{};
  try {
    const Date fecha = PrepararCalculoFx();
    int32_t id_mov = estructura_->MovFrecuente()->ID();
    if (id_mov == 0 && RenglonesMF.QRenglones() > 0) id_mov = RenglonesMF.Renglon(1)->idMF();
    formula::clsCalculoFx calculo(ctx_.cn, EmpresaContexto(), ServiciosCalculo(ctx_.servicios),
                                  ctx_.parametros);
    const bool ok = calculo.RecalcularFormulasMF(RenglonesMF, iMonMF, bNoPedirTC, fecha, id_mov);
    traza_fx_ = calculo.Traza();
    if (!ok) AvisarSinResultado(msg::kFormulaSinResultado);
    return ok;
  } catch (const std::exception& e) {
    traza_fx_.error = e.what();
    Reportar(msg::kErrorCalcularFormulas, e);
    return false;
  }
}

std::string clsMovFrecuente::InterpretarFormulaLeyenda(std::string_view sLeyenda, Date dFechaMF) {
  ultimo_error_.clear();
  if (!ctx_.cn) return {};
  try {
    return formula::InterpretarFormulaLeyenda(sLeyenda, dFechaMF, ctx_.servicios.clock.get());
  } catch (const std::exception& e) {
    Reportar(msg::kErrorInterpretarLeyenda, e);
    return {};
  }
}

}  // namespace kivmovfrec
