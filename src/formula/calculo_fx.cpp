#include "formula/calculo_fx.h"

#include <exception>
#include <map>
#include <stdexcept>
#include <utility>
#include <vector>

#include "core/clock.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "platform/vb/text.h"
#include "resources/catalogue.h"
#include "resources/msg.h"

namespace kivmovfrec::formula {
namespace {

std::vector<std::shared_ptr<clsRegRenglonMF>> Lineas(const clsRenglonesMF& renglones, bool copiar) {
  std::vector<std::shared_ptr<clsRegRenglonMF>> v;
  for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
    auto r = renglones.Renglon(i);
    v.push_back(copiar ? std::make_shared<clsRegRenglonMF>(*r) : r);
  }
  return v;
}

bool EsperaDato(const std::string& formula) {
  return ContieneReferencia(formula, kFxImporteTotal) || ContieneReferencia(formula, kFxPedirValor);
}

}  // namespace

Date FechaNoIndicada() {
  return vb::DateSerial(1958, 1, 1);
}

clsCalculoFx::clsCalculoFx(std::shared_ptr<Connection> cn, const clsEmpresa& empresa,
                           ServiciosFx servicios, const ParametrosBD& parametros)
    : cn_(std::move(cn)), fx_(cn_, std::move(servicios), parametros) {
  if (!cn_) throw std::invalid_argument("clsCalculoFx: falta la conexión");
  fx_.Empresa(empresa);
}

clsCalculoFx::clsCalculoFx(std::shared_ptr<Connection> cn, const ContextoEmpresaFx& contexto,
                           ServiciosFx servicios, const ParametrosBD& parametros)
    : cn_(std::move(cn)), fx_(cn_, std::move(servicios), parametros) {
  if (!cn_) throw std::invalid_argument("clsCalculoFx: falta la conexión");
  fx_.Empresa(contexto);
}

Date clsCalculoFx::FechaEfectiva(Date fecha, std::string& origen) const {
  if (vb::DateOnly(fecha) == FechaNoIndicada()) {
    origen = "hoy (fecha no indicada)";
    return fx_.Hoy();
  }
  origen = "indicada";
  return fecha;
}

bool clsCalculoFx::SetCalculoFormulasMF(clsMFTipo& mf, int32_t lMovFrec, bool bNoPedirDatos,
                                        Date& fecha) {
  traza_ = TrazaCalculoFx{};
  traza_.movimiento = lMovFrec;
  try {
    if (!mf.Load(*cn_, lMovFrec, core::RelojOSistema(fx_.Servicios().clock.get()))) {
      traza_.error = "no existe el movimiento frecuente " + std::to_string(lMovFrec);
      return false;
    }
  } catch (const std::exception& e) {
    traza_.ok = false;
    traza_.error = e.what();
    return false;
  }
  return Calcular(mf, lMovFrec, bNoPedirDatos, fecha);
}

bool clsCalculoFx::CalcularCargado(clsMFTipo& mf, bool bNoPedirDatos, Date& fecha) {
  traza_ = TrazaCalculoFx{};
  traza_.movimiento = mf.MovFrecuente()->ID();
  return Calcular(mf, traza_.movimiento, bNoPedirDatos, fecha);
}

bool clsCalculoFx::Calcular(clsMFTipo& mf, int32_t lMovFrec, bool bNoPedirDatos, Date& fecha) {
  try {
    Date usada = fecha;
    if (vb::DateOnly(fecha) == FechaNoIndicada()) {
      const clsRegRecurrencia& rec = *mf.Recurrencia();
      if (rec.ID() >= 1 && vb::IsDate(Variant(rec.FechaProxima()))) {
        usada = vb::CDate(Variant(rec.FechaProxima()));
        traza_.origen_fecha = "próximo vencimiento del movimiento";
      } else {
        usada = fx_.Hoy();
        traza_.origen_fecha = "hoy (el movimiento no tiene vencimiento)";
      }
    } else {
      traza_.origen_fecha = "indicada";
    }
    fecha = usada;
    traza_.fecha = usada;
    const clsRegMovimientoFrecuente& cab = *mf.MovFrecuente();
    traza_.moneda = cab.Moneda();
    if (cab.Empresa() != fx_.Empresa().ID() && !fx_.CargarEmpresa(cab.Empresa())) {
      traza_.error = "no existe la empresa " + std::to_string(cab.Empresa()) + " del movimiento";
      return false;
    }
    if (mf.Renglones()->QRenglones() == 0) {
      traza_.ok = true;
      return true;
    }
    OpcionesCorrida op;
    op.id_mov = lMovFrec;
    op.moneda = cab.Moneda();
    op.fecha = usada;
    op.pedir_datos = !bNoPedirDatos;
    CorridaFx corrida(fx_, Lineas(*mf.Renglones(), false), op, traza_);
    if (!corrida.Calcular()) return false;
    corrida.Aplicar();
    return true;
  } catch (const std::exception& e) {
    traza_.ok = false;
    if (traza_.error.empty()) traza_.error = e.what();
    return false;
  }
}

bool clsCalculoFx::GetValueUnaPata(const clsRenglonesMF& renglones, int16_t iMonMF,
                                   int16_t iEmpresaMF, bool& bImporteEditable, double& dbImporte,
                                   Date fecha) {
  traza_ = TrazaCalculoFx{};
  try {
    if (iEmpresaMF != 0 && iEmpresaMF != fx_.Empresa().ID() && !fx_.CargarEmpresa(iEmpresaMF)) {
      traza_.error = "no existe la empresa " + std::to_string(iEmpresaMF);
      return false;
    }
    traza_.fecha = FechaEfectiva(fecha, traza_.origen_fecha);
    const auto lineas = Lineas(renglones, true);
    // The open leg.
    std::vector<size_t> diferencias, debe, haber;
    for (size_t i = 0; i < lineas.size(); ++i) {
      if (ContieneReferencia(lineas[i]->Formula(), kFxDiferencia)) diferencias.push_back(i);
      (lineas[i]->AlDebe() ? debe : haber).push_back(i);
    }
    std::optional<size_t> pata;
    if (diferencias.size() == 1) {
      pata = diferencias[0];
    } else if (diferencias.empty()) {
      if (debe.size() == 1 && haber.size() >= 2) pata = debe[0];
      if (haber.size() == 1 && debe.size() >= 2) pata = haber[0];
      if (debe.size() == 1 && haber.size() == 1) {
        const bool sin_d = vb::Trim(lineas[debe[0]]->Formula()).empty();
        const bool sin_h = vb::Trim(lineas[haber[0]]->Formula()).empty();
        if (sin_d != sin_h) {
          pata = sin_d ? debe[0] : haber[0];
        } else if (!sin_d) {
          const bool esp_d = EsperaDato(lineas[debe[0]]->Formula());
          const bool esp_h = EsperaDato(lineas[haber[0]]->Formula());
          if (esp_d != esp_h) pata = esp_d ? debe[0] : haber[0];
        }
      }
    }
    if (!pata) {
      traza_.error =
          diferencias.size() > 1
              ? std::string(resources::Texto(msg::kFxRestoEnVariasCuentas, fx_.Parametros().idioma))
              : "las líneas no tienen una única pata abierta";
      return false;
    }
    OpcionesCorrida op;
    op.moneda = iMonMF;
    op.fecha = traza_.fecha;
    op.total = dbImporte;
    op.pedir_datos = false;
    op.id_mov = lineas.empty() ? 0 : lineas[0]->idMF();
    CorridaFx corrida(fx_, lineas, op, traza_);
    const bool todas = corrida.Calcular();
    const size_t p = *pata;
    const std::string formula = vb::Trim(lineas[p]->Formula());
    double importe = 0;
    bool editable = false;
    if (formula.empty()) {
      // The proposal is what balances the others; every other line must have its amount.
      double mismo = 0;
      double otro = 0;
      for (size_t i = 0; i < lineas.size(); ++i) {
        if (i == p) continue;
        if (!corrida.Resuelta(i)) return false;
        (lineas[i]->AlDebe() == lineas[p]->AlDebe() ? mismo : otro) += corrida.ImporteMF(i);
      }
      importe = otro - mismo;
      const MonedaFx* m = fx_.Monedas().Moneda(iMonMF == 0 ? fx_.MonedaContabilidad() : iMonMF);
      importe =
          RedondearFormato(importe, m != nullptr ? m->formato_importe : MonedaFx{}.formato_importe);
      editable = true;
    } else {
      if (!todas || !corrida.Resuelta(p)) return false;
      importe = corrida.ImporteMF(p);
      editable = !corrida.EsDiferencia(p) && EsperaDato(formula);
    }
    traza_.ok = true;
    traza_.error.clear();
    bImporteEditable = editable;
    dbImporte = importe;
    return true;
  } catch (const std::exception& e) {
    traza_.ok = false;
    if (traza_.error.empty()) traza_.error = e.what();
    return false;
  }
}

void clsCalculoFx::PedirTasas(clsRenglonesMF& renglones, int16_t moneda, Date fecha) {
  const auto& input = fx_.Servicios().input;
  const int16_t c = fx_.MonedaContabilidad();
  auto resolver = [c](int16_t id) { return id == 0 ? c : id; };
  const int16_t m = resolver(moneda);
  // Lines waiting on a rate, by the pair of currencies the rate quotes.
  std::map<std::pair<int16_t, int16_t>, std::vector<std::shared_ptr<clsRegRenglonMF>>> grupos;
  std::map<std::pair<int16_t, int16_t>, int32_t> tipos;
  for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
    auto r = renglones.Renglon(i);
    const int16_t a = resolver(r->Moneda());
    if (a == m || r->ValorTC() != 0) continue;
    const ParConversion par = ParDeConversion(m, a, c);
    const auto clave = std::make_pair(par.x, par.y);
    grupos[clave].push_back(r);
    if (!tipos.count(clave) || tipos[clave] == 0) {
      tipos[clave] = r->TipoCambio() != 0 ? r->TipoCambio() : fx_.Empresa().TipoTCComprobantes();
    }
  }
  const int idioma = fx_.Parametros().idioma;
  for (const auto& [clave, lineas] : grupos) {
    const MonedaFx* mon = fx_.Monedas().Moneda(clave.first);
    const std::string simbolo = mon != nullptr ? mon->simbolo : std::to_string(clave.first);
    double propuesta = 0;
    if (tipos[clave] != 0) {
      const Date f = UltimoDiaMesAnterior(vb::DateOnly(fecha));
      propuesta =
          fx_.Monedas().Cotizacion(clave.first, clave.second, tipos[clave], f).tasa.ToDouble();
    }
    std::optional<double> v;
    if (input) {
      v = input->PedirNumero(
          "kivcalculator:" + resources::Texto(msg::kTasaDeCambioPara, idioma, simbolo),
          std::string(resources::Texto(msg::kTituloMovimientosFrecuentes, idioma)), propuesta);
    }
    if (!v || !(*v > 0)) continue;
    for (const auto& r : lineas) r->ValorTC(*v);
  }
}

bool clsCalculoFx::RecalcularFormulasMF(clsRenglonesMF& renglones, int16_t iMonMF, bool bNoPedirTC,
                                        Date fecha, int32_t id_mov) {
  traza_ = TrazaCalculoFx{};
  traza_.movimiento = id_mov;
  try {
    traza_.fecha = FechaEfectiva(fecha, traza_.origen_fecha);
    if (!bNoPedirTC) PedirTasas(renglones, iMonMF, traza_.fecha);
    OpcionesCorrida op;
    op.id_mov = id_mov;
    op.moneda = iMonMF;
    op.fecha = traza_.fecha;
    op.pedir_datos = false;
    CorridaFx corrida(fx_, Lineas(renglones, false), op, traza_);
    if (!corrida.Calcular()) return false;
    corrida.Aplicar();
    return true;
  } catch (const std::exception& e) {
    traza_.ok = false;
    if (traza_.error.empty()) traza_.error = e.what();
    return false;
  }
}

}  // namespace kivmovfrec::formula
