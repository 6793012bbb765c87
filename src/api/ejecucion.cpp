#include "api/ejecucion.h"

#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>

#include "api/avance_agenda.h"
#include "formula/leyenda.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/mf_tipo.h"
#include "platform/vb/convert.h"
#include "platform/vb/text.h"
#include "schedule/date_calculator.h"
#include "storage/columnas.h"
#include "storage/contador.h"

namespace kivmovfrec::api {
namespace {

constexpr size_t kLargoLeyenda = 255;

int64_t Dia(Date d) {
  return static_cast<int64_t>(std::floor(d.serial));
}

Date SoloDia(Date d) {
  return Date{static_cast<double>(Dia(d))};
}

// An amount in cents, half away from zero (after the four decimals money is held with).
int64_t Centavos(double importe) {
  const int64_t unidades = Currency::FromDouble(importe).units;
  const int64_t paso = Currency::kScale / 100;
  return (unidades + (unidades < 0 ? -paso / 2 : paso / 2)) / paso;
}

double DeCentavos(int64_t c) {
  return static_cast<double>(c) / 100.0;
}

std::string Importe(int64_t c) {
  return vb::CStr(Variant(Currency::FromUnits(c * (Currency::kScale / 100))));
}

Variant NuloSiCero(int32_t v) {
  return v == 0 ? Variant::Null() : Variant(v);
}

// The pending scheduled entries and vouchers of `empresa` with their next due date.
std::vector<std::pair<Date, int32_t>> Vencimientos(Connection& cn, int32_t empresa) {
  std::vector<std::pair<Date, int32_t>> out;
  auto rs = cn.OpenReadOnly(
      "Select MFrID, RecFechaProxima From genMovimientosFrecuentes, genRecurrencias "
      "Where MFrRecurrencia = RecID And MFrEstado = 0 And MFrTipo In (1, 2, 4) And MFrEmpresa = " +
      std::to_string(empresa) + " Order By MFrID");
  for (; !rs->Eof(); rs->MoveNext()) {
    const Variant fecha = rs->Get("RecFechaProxima");
    if (storage::EsNulo(fecha) || !vb::IsDate(fecha)) continue;
    out.emplace_back(vb::CDate(fecha), storage::ALong(rs->Get("MFrID")));
  }
  return out;
}

// The ids to run for an occurrence of `mov`: its linked group in execution order, or itself.
std::vector<int32_t> Miembros(Connection& cn, const clsRegMovimientoFrecuente& mov) {
  if (mov.MovVinculado() < 1) return {mov.ID()};
  std::vector<int32_t> ids;
  auto rs =
      cn.OpenResultset("Select MFrID From genMovimientosFrecuentes Where MFrMovVinculado = " +
                       std::to_string(mov.MovVinculado()) +
                       " And MFrEstado = 0 And MFrTipo In (1, 2, 4) Order By MFrMVOrden, MFrID");
  for (; !rs->Eof(); rs->MoveNext()) ids.push_back(storage::ALong(rs->Get("MFrID")));
  return ids;
}

struct Linea {
  const clsRegRenglonMF* renglon;
  bool al_debe;
  int64_t centavos;      // in the movement's currency, positive
  int64_t centavos_cta;  // in the account's currency, positive
};

class Ejecutor {
 public:
  Ejecutor(clsMovFrecuente& mf, Connection& cn, int32_t empresa) : mf_(mf), cn_(cn) {
    const SuiteServices& sv = mf.Servicios();
    dbf_ = sv.db.get();
    reloj_ = sv.clock.get();
    usuario_ = sv.rights ? sv.rights->Usuario() : 0;
    if (sv.calendar) {
      calendario_ = sv.calendar.get();
    } else {
      propio_ = std::make_unique<schedule::DateCalculator>();
      calendario_ = propio_.get();
    }
    clsEmpresa contexto;
    if (contexto.Load(empresa, cn)) moneda_contable_ = contexto.MonedaContabilidad();
  }

  // Runs one occurrence of `id` due on `fecha` in its own transaction.
  OcurrenciaEjecutada Ocurrencia(int32_t id, Date fecha) {
    OcurrenciaEjecutada r;
    r.movimiento = id;
    r.fecha = fecha;
    bool iniciada = false;
    try {
      cn_.BeginTrans();
      iniciada = true;
      cn_.Execute(AvanceAgenda::SqlReservar(id));
      clsMFTipo mov;
      if (!mov.Load(cn_, id) || mov.MovFrecuente()->Estado() != 0 || mov.Recurrencia()->ID() == 0 ||
          !vb::IsDate(Variant(mov.Recurrencia()->FechaProxima())) ||
          Dia(vb::CDate(Variant(mov.Recurrencia()->FechaProxima()))) != Dia(fecha)) {
        throw std::runtime_error("ya fue ejecutado o cambió su agenda");
      }
      r.nombre = mov.MovFrecuente()->Nombre();
      for (int32_t miembro : Miembros(cn_, *mov.MovFrecuente())) {
        r.documentos.push_back(Documento(miembro, miembro == id, fecha));
      }
      AvanceAgenda avance(cn_, *dbf_, *calendario_);
      const ResultadoOcurrencia hecho = avance.Realizar(id);
      if (hecho == ResultadoOcurrencia::NoAplica) {
        throw std::runtime_error("no se pudo avanzar su agenda");
      }
      r.terminada = hecho == ResultadoOcurrencia::Terminada;
      // The next due date is read before the commit: once committed, the occurrence is
      // reported whatever happens afterwards.
      clsMFTipo despues;
      if (!r.terminada && despues.Load(cn_, id) &&
          vb::IsDate(Variant(despues.Recurrencia()->FechaProxima()))) {
        r.proxima = vb::CDate(Variant(despues.Recurrencia()->FechaProxima()));
      }
      cn_.CommitTrans();
    } catch (const std::exception& e) {
      if (iniciada && cn_.InTransaction()) {
        try {
          cn_.RollbackTrans();
        } catch (const std::exception&) {
          // The connection is gone; nothing was committed.
        }
      }
      r.error = e.what();
      r.documentos.clear();
    }
    return r;
  }

 private:
  // Computes member `id` as of `fecha` and writes its document.
  DocumentoGenerado Documento(int32_t id, bool agendado, Date fecha) {
    mf_.CleanEstructura();
    // A member without a schedule of its own is computed as of the group's due date.
    if (!agendado) {
      mf_.EstructuraMovFrec()->Recurrencia()->FechaProxima(vb::CStr(Variant(SoloDia(fecha))));
    }
    if (!mf_.SetCalculoFormulasMF(id, false)) {
      const std::string& error = mf_.UltimaTrazaFx().error;
      throw std::runtime_error("movimiento " + std::to_string(id) + ": " +
                               (error.empty() ? "fórmula sin resultado" : error));
    }
    const clsMFTipo& mov = *mf_.EstructuraMovFrec();
    const clsRegMovimientoFrecuente& cab = *mov.MovFrecuente();
    if (Dia(mf_.UltimaTrazaFx().fecha) != Dia(fecha)) {
      throw std::runtime_error("movimiento " + std::to_string(id) + ": se calculó para otra fecha");
    }
    DocumentoGenerado doc;
    doc.movimiento = id;
    doc.tipo = static_cast<int16_t>(ToInt(cab.Tipo()));

    std::vector<Linea> lineas;
    int64_t debe = 0, haber = 0;
    const clsRenglonesMF& renglones = *mov.Renglones();
    for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
      const clsRegRenglonMF& r = *renglones.Renglon(i);
      const int64_t c = Centavos(r.ImporteMF());
      if (c == 0) continue;
      // A negative amount belongs on the other side.
      const bool al_debe = (c > 0) == r.AlDebe();
      lineas.push_back({&r, al_debe, std::llabs(c), std::llabs(Centavos(r.ImporteCta()))});
      (al_debe ? debe : haber) += std::llabs(c);
    }
    if (debe != haber) {
      throw std::runtime_error("movimiento " + std::to_string(id) + ": no balancea (debe " +
                               Importe(debe) + ", haber " + Importe(haber) + ")");
    }
    doc.total = DeCentavos(debe);
    if (lineas.empty()) return doc;

    // The movement's memo is its legend template ("Alquiler de oficina &[FFAñoMes]"); a
    // movement without one is described by its name.
    const std::string& plantilla = cab.Memo().empty() ? cab.Nombre() : cab.Memo();
    const std::string leyenda = vb::Left(
        formula::InterpretarFormulaLeyenda(plantilla, SoloDia(fecha), reloj_), kLargoLeyenda);
    if (cab.Tipo() == enuTipoMovFrec::Comprobante) {
      doc.id = Comprobante(cab, lineas, SoloDia(fecha), leyenda);
    } else {
      if (cab.Moneda() != 0 && moneda_contable_ != 0 && cab.Moneda() != moneda_contable_) {
        throw std::runtime_error("movimiento " + std::to_string(id) +
                                 ": el asiento está en otra moneda que la de la contabilidad");
      }
      doc.id = Asiento(cab, lineas, SoloDia(fecha), leyenda);
    }
    return doc;
  }

  Date Ahora() const { return reloj_ ? reloj_->Now() : Date{}; }

  int32_t Asiento(const clsRegMovimientoFrecuente& cab, const std::vector<Linea>& lineas,
                  Date fecha, const std::string& leyenda) {
    const int32_t id = storage::NuevoID(*dbf_, "cceAsientos");
    auto rs = cn_.OpenResultset("Select * From cceAsientos Where AsiID = " + std::to_string(id));
    rs->AddNew();
    rs->Set("AsiID", id);
    rs->Set("AsiEmpresa", static_cast<int32_t>(cab.Empresa()));
    rs->Set("AsiFecha", Variant(fecha));
    rs->Set("AsiLibro", static_cast<int32_t>(cab.Modalidad()));
    rs->Set("AsiLeyenda", leyenda);
    rs->Set("AsiEstado", int32_t{1});
    rs->Set("AsiMovFrecuente", cab.ID());
    rs->Set("AsiUsuario", usuario_);
    rs->Set("AsiFechaModificado", Variant(Ahora()));
    rs->Update();
    auto ls = cn_.OpenResultset("Select * From cceAsientoCuenta Where ACuIDAsiento = " +
                                std::to_string(id));
    int32_t orden = 0;
    for (const Linea& l : lineas) {
      const clsRegRenglonMF& r = *l.renglon;
      ls->AddNew();
      ls->Set("ACuIDAsiento", id);
      ls->Set("ACuOrden", ++orden);
      ls->Set("ACuCuenta", r.Cuenta());
      ls->Set("ACuProyecto", NuloSiCero(r.Proyecto()));
      ls->Set("ACuDepartamento", NuloSiCero(r.Departamento()));
      ls->Set("ACuImporteMC", DeCentavos(l.centavos_cta));
      ls->Set("ACuDebe", l.al_debe ? DeCentavos(l.centavos) : 0.0);
      ls->Set("ACuHaber", l.al_debe ? 0.0 : DeCentavos(l.centavos));
      ls->Set("ACuDetalle", r.Detalle().empty() ? Variant::Null() : Variant(r.Detalle()));
      ls->Update();
    }
    return id;
  }

  int32_t Comprobante(const clsRegMovimientoFrecuente& cab, const std::vector<Linea>& lineas,
                      Date fecha, const std::string& leyenda) {
    const int32_t id = storage::NuevoID(*dbf_, "cceComprobantes");
    auto rs =
        cn_.OpenResultset("Select * From cceComprobantes Where ComID = " + std::to_string(id));
    rs->AddNew();
    rs->Set("ComID", id);
    rs->Set("ComEmpresa", static_cast<int32_t>(cab.Empresa()));
    rs->Set("ComTipoComprobante", static_cast<int32_t>(cab.Modalidad()));
    rs->Set("ComFecha", Variant(fecha));
    rs->Set("ComEnte", NuloSiCero(cab.Ente()));
    rs->Set("ComMoneda", static_cast<int32_t>(cab.Moneda()));
    rs->Set("ComDetalle", leyenda);
    rs->Set("ComEstado", int32_t{1});
    rs->Set("ComMovFrecuente", cab.ID());
    rs->Set("ComUsuario", usuario_);
    rs->Set("ComFechaModificacion", Variant(Ahora()));
    rs->Update();
    auto ls = cn_.OpenResultset("Select * From cceComprobanteCuenta Where CCuIDComprobante = " +
                                std::to_string(id));
    int32_t orden = 0;
    for (const Linea& l : lineas) {
      const clsRegRenglonMF& r = *l.renglon;
      ls->AddNew();
      ls->Set("CCuIDComprobante", id);
      ls->Set("CCuOrden", ++orden);
      ls->Set("CCuIDCuenta", r.Cuenta());
      ls->Set("CCuIDProyecto", NuloSiCero(r.Proyecto()));
      ls->Set("CCuIDDepartamento", NuloSiCero(r.Departamento()));
      ls->Set("CCuMoneda", static_cast<int32_t>(r.Moneda()));
      ls->Set("CCuImporteCuenta", DeCentavos(l.centavos_cta));
      ls->Set("CCuDebe", l.al_debe ? DeCentavos(l.centavos) : 0.0);
      ls->Set("CCuHaber", l.al_debe ? 0.0 : DeCentavos(l.centavos));
      // The rate the account's amount was worked out with, account currency per voucher unit.
      ls->Set("CCuTipoCambio",
              Variant(static_cast<double>(l.centavos_cta) / static_cast<double>(l.centavos)));
      ls->Update();
    }
    return id;
  }

  clsMovFrecuente& mf_;
  Connection& cn_;
  IDBFncs* dbf_ = nullptr;
  IClock* reloj_ = nullptr;
  int32_t usuario_ = 0;
  IDateCalculator* calendario_ = nullptr;
  std::unique_ptr<IDateCalculator> propio_;
  int16_t moneda_contable_ = 0;
};

}  // namespace

std::vector<OcurrenciaEjecutada> EjecutarVencidos(clsMovFrecuente& mf, Connection& cn,
                                                  int32_t empresa, Date hasta) {
  std::vector<OcurrenciaEjecutada> out;
  if (!mf.Conectado() || !mf.Servicios().db) return out;
  Ejecutor ejecutor(mf, cn, empresa);
  // Due occurrences by date, then movement: the earliest runs first, and a movement whose
  // schedule advanced comes back with its next date.
  std::multimap<std::pair<int64_t, int32_t>, Date> cola;
  for (const auto& [fecha, id] : Vencimientos(cn, empresa)) {
    if (Dia(fecha) <= Dia(hasta)) cola.emplace(std::make_pair(Dia(fecha), id), fecha);
  }
  while (!cola.empty()) {
    const auto [clave, fecha] = *cola.begin();
    cola.erase(cola.begin());
    const int32_t id = clave.second;
    OcurrenciaEjecutada r = ejecutor.Ocurrencia(id, fecha);
    const Date proxima = r.proxima;
    // The schedule must move forward; a date that does not would repeat the occurrence.
    const bool seguir = r.ok() && !r.terminada && Dia(proxima) > Dia(fecha);
    out.push_back(std::move(r));
    if (seguir && Dia(proxima) <= Dia(hasta)) {
      cola.emplace(std::make_pair(Dia(proxima), id), proxima);
    }
  }
  return out;
}

}  // namespace kivmovfrec::api
