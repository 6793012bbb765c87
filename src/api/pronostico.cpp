#include "api/pronostico.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "api/ejecucion.h"
#include "api/saldos_memoria.h"
#include "api/simulacion.h"
#include "formula/catalogo_fx.h"
#include "formula/elementos.h"
#include "formula/funciones_fx.h"
#include "platform/db/error_text.h"
#include "platform/suite/balance.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "platform/vb/text.h"
#include "storage/columnas.h"
#include "storage/tabla_cuentas.h"

namespace kivmovfrec::api {
namespace {

int64_t Dia(Date d) {
  return static_cast<int64_t>(std::floor(d.serial));
}

Date DeDia(int64_t dia) {
  return Date{static_cast<double>(dia)};
}

bool SoloCifras(const std::string& s) {
  return !s.empty() && s.size() < 10 &&
         std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string Recortado(const std::string& s) {
  const auto a = s.find_first_not_of(' ');
  if (a == std::string::npos) return "";
  return s.substr(a, s.find_last_not_of(' ') - a + 1);
}

// The accounts asked for, in the order given (each once), or why one cannot be forecast.
std::string CuentasPedidas(Connection& cn, int32_t empresa, const std::vector<std::string>& textos,
                           std::vector<CuentaPronostico>& out) {
  std::set<int32_t> vistas;
  for (const std::string& crudo : textos) {
    const std::string texto = Recortado(crudo);
    std::optional<storage::CuentaElegible> c = storage::BuscarCuentaElegible(cn, empresa, texto);
    if (!c && SoloCifras(texto)) {
      const int32_t id = std::stoi(texto);
      if (auto problema = storage::ProblemaCuentaRenglon(cn, empresa, id)) return *problema;
      auto rs = cn.OpenResultset("Select CueCodigo, CueNombre From cceCuentas Where CueID = ?",
                                 {Variant(id)});
      if (!rs->Eof()) {
        c = storage::CuentaElegible{id, Recortado(storage::ATexto(rs->Get(0))),
                                    Recortado(storage::ATexto(rs->Get(1))), 0};
      }
    }
    if (!c) return "no hay una cuenta de la empresa con el código o el nombre «" + texto + "»";
    if (vistas.insert(c->id).second) out.push_back({c->id, c->codigo, c->nombre, {}});
  }
  return "";
}

// Every account the lines of the company's pending entries and vouchers name (folders and other
// companies' accounts left out), by code.
std::vector<CuentaPronostico> CuentasAgendadas(Connection& cn, int32_t empresa) {
  std::vector<CuentaPronostico> out;
  auto rs = cn.OpenResultset(
      "Select CueID, CueCodigo, CueNombre From cceCuentas Where CueIDEmpresa = ? And "
      "CueEsCarpeta = 0 And CueID In (Select RMFCuenta From genRenglonMovFrecuentes, "
      "genMovimientosFrecuentes Where RMFMovimiento = MFrID And MFrEmpresa = ? And MFrEstado = 0 "
      "And MFrTipo In (1, 2, 4)) Order By CueCodigo, CueID",
      {Variant(empresa), Variant(empresa)});
  for (; !rs->Eof(); rs->MoveNext()) {
    out.push_back({storage::ALong(rs->Get(0)),
                   Recortado(storage::ATexto(rs->Get(1))),
                   Recortado(storage::ATexto(rs->Get(2))),
                   {}});
  }
  return out;
}

double Cuatro(double v) {
  return vb::RoundHalfEven(v, 4);
}

// Why `formula` gives the in-memory run another value than the dry run may: a query or a script
// (which may read the documents and schedules the run changes) or another movement's document;
// "" when every piece of it is worked out alike by both.
std::string FueraDeMemoria(const std::string& formula, const formula::clsFxMovFrec& catalogo) {
  for (const formula::ElementoFx& e : formula::DividirFormula(formula)) {
    if (e.tipo == formula::ElementoFx::Tipo::Bloque) return "un bloque " + vb::Trim(e.texto);
    if (e.tipo != formula::ElementoFx::Tipo::Referencia) continue;
    const formula::EntradaFx* entrada = catalogo.BuscarEntrada(e.id);
    if (entrada == nullptr) continue;
    if (entrada->consulta2 == formula::kPalabraCuentaOtroMov) {
      return e.texto + ", que lee el documento de otro movimiento";
    }
    const std::string palabra = vb::LCase(std::string(entrada->palabra));
    if (palabra.starts_with("[query]") || palabra.starts_with("[codescript]")) {
      return e.texto + ", que lee la base de datos";
    }
  }
  return "";
}

// Why the forecast must take the dry run: the first formula that FueraDeMemoria names among the
// lines of the pending entries and vouchers the main job can run — those with a schedule and
// every member of a linked group, of any company since a group may reach one; "" when none.
std::string MotivoSimulacion(Connection& cn) {
  const formula::clsFxMovFrec catalogo;
  std::map<std::string, std::string> vistas;  // formula -> FueraDeMemoria, each read once
  for (auto rs = cn.OpenResultset(
           "Select RMFMovimiento, RMFFormula From genRenglonMovFrecuentes, "
           "genMovimientosFrecuentes Where RMFMovimiento = MFrID And MFrEstado = 0 And MFrTipo "
           "In (1, 2, 4) And RMFFormula Is Not Null And (MFrRecurrencia > 0 Or MFrMovVinculado "
           "> 0 Or MFrID In (Select MFrMovVinculado From genMovimientosFrecuentes Where "
           "MFrMovVinculado > 0)) Order By RMFMovimiento");
       !rs->Eof(); rs->MoveNext()) {
    const std::string formula = storage::ATexto(rs->Get(1));
    auto v = vistas.find(formula);
    if (v == vistas.end()) v = vistas.emplace(formula, FueraDeMemoria(formula, catalogo)).first;
    if (!v->second.empty()) {
      return "el movimiento " + std::to_string(storage::ALong(rs->Get(0))) + " tiene " + v->second;
    }
  }
  return "";
}

// Fills each account's periods: balances by the account-balance service's definition at the
// edges, debits and credits of the posted entries within, and those of `memoria` when given
// (the entries an in-memory run worked out).
void Cifras(Connection& cn, Date desde, Date hasta, PeriodoPronostico por,
            std::vector<CuentaPronostico>& cuentas, const SaldosEnMemoria* memoria) {
  if (cuentas.empty()) return;
  std::string ids;
  DbParams params = {Variant(desde), Variant(DeDia(Dia(hasta) + 1))};
  for (const CuentaPronostico& c : cuentas) {
    ids += ids.empty() ? "?" : ", ?";
    params.emplace_back(c.cuenta);
  }
  // cuenta -> day -> (debits, credits)
  std::map<int32_t, std::map<int64_t, std::pair<double, double>>> diario;
  for (auto rs = cn.OpenResultset(
           "Select ACuCuenta, AsiFecha, Sum(Coalesce(ACuDebe, 0)), Sum(Coalesce(ACuHaber, 0)) "
           "From cceAsientoCuenta, cceAsientos Where ACuIDAsiento = AsiID And AsiEstado = 1 And "
           "AsiFecha >= ? And AsiFecha < ? And ACuCuenta In (" +
               ids + ") Group By ACuCuenta, AsiFecha",
           params);
       !rs->Eof(); rs->MoveNext()) {
    auto& dia = diario[storage::ALong(rs->Get(0))][Dia(storage::AFecha(rs->Get(1)))];
    dia.first += storage::ADouble(rs->Get(2));
    dia.second += storage::ADouble(rs->Get(3));
  }
  if (memoria != nullptr) {
    for (CuentaPronostico& c : cuentas) {
      const SaldosEnMemoria::PorDia& agregados = memoria->Diario(c.cuenta);
      for (auto d = agregados.lower_bound(Dia(desde));
           d != agregados.end() && d->first <= Dia(hasta); ++d) {
        auto& dia = diario[c.cuenta][d->first];
        dia.first += d->second.first;
        dia.second += d->second.second;
      }
    }
  }
  suite::DbAccountBalance guardado(std::shared_ptr<Connection>(std::shared_ptr<Connection>{}, &cn));
  const auto saldo = [&](int32_t cuenta, Date fecha) {
    const double base = guardado.Saldo(cuenta, fecha);
    return memoria == nullptr ? base : Cuatro(base + memoria->Neto(cuenta, Dia(fecha)));
  };
  const std::vector<SaldoPeriodo> periodos = Periodos(desde, hasta, por);
  for (CuentaPronostico& c : cuentas) {
    const auto& dias = diario[c.cuenta];
    double anterior = saldo(c.cuenta, DeDia(Dia(desde) - 1));
    for (SaldoPeriodo p : periodos) {
      p.apertura = anterior;
      for (auto d = dias.lower_bound(Dia(p.desde)); d != dias.end() && d->first <= Dia(p.hasta);
           ++d) {
        p.entradas += d->second.first;
        p.salidas += d->second.second;
      }
      p.entradas = Cuatro(p.entradas);
      p.salidas = Cuatro(p.salidas);
      p.cierre = saldo(c.cuenta, p.hasta);
      anterior = p.cierre;
      c.periodos.push_back(p);
    }
  }
}

}  // namespace

std::vector<SaldoPeriodo> Periodos(Date desde, Date hasta, PeriodoPronostico por) {
  std::vector<SaldoPeriodo> out;
  for (int64_t a = Dia(desde); a <= Dia(hasta);) {
    int64_t b = a;
    if (por == PeriodoPronostico::Semana) {
      b = a + (8 - vb::Weekday(DeDia(a))) % 7;  // to Sunday
    } else if (por == PeriodoPronostico::Mes) {
      const Date d = DeDia(a);
      b = Dia(vb::DateSerial(vb::Year(d), vb::Month(d) + 1, 0));
    }
    b = std::min(b, Dia(hasta));
    SaldoPeriodo p;
    p.desde = DeDia(a);
    p.hasta = DeDia(b);
    out.push_back(p);
    a = b + 1;
  }
  return out;
}

ResultadoPronostico Pronosticar(clsMovFrecuente& mf, Connection& cn, int32_t empresa,
                                const SolicitudPronostico& solicitud, MotorPronostico motor,
                                const FechasAgenda& agenda) {
  ResultadoPronostico out;
  if (!mf.Conectado()) return out;
  IClock* reloj = mf.Servicios().clock.get();
  out.desde = solicitud.desde ? vb::DateOnly(*solicitud.desde) : reloj ? reloj->Today() : Date{};
  out.hasta = vb::DateOnly(solicitud.hasta);
  if (Dia(out.hasta) < Dia(out.desde)) {
    out.rechazo = "el pronóstico termina el " + formula::FechaCorta(out.hasta) +
                  ", antes de empezar (" + formula::FechaCorta(out.desde) + ")";
    return out;
  }
  try {
    out.rechazo = CuentasPedidas(cn, empresa, solicitud.cuentas, out.cuentas);
    if (!out.rechazo.empty()) {
      out.cuentas.clear();
      return out;
    }
    if (solicitud.cuentas.empty()) out.cuentas = CuentasAgendadas(cn, empresa);
    // Notices and task lists move no money: only their due dates are listed.
    const ResultadoAgenda fechas =
        agenda ? agenda(out.desde, out.hasta) : mf.Agenda(out.desde, out.hasta);
    for (const OcurrenciaAgenda& o : fechas.ocurrencias) {
      if (o.aviso || (o.tipo != ToInt(enuTipoMovFrec::Calendario) &&
                      o.tipo != ToInt(enuTipoMovFrec::CheckList))) {
        continue;
      }
      out.recordatorios.push_back({o.fecha, o.movimiento, o.tipo, o.nombre});
    }
    out.por_simulacion = motor == MotorPronostico::Simulacion
                             ? "pedida por quien pidió el pronóstico"
                             : MotivoSimulacion(cn);
  } catch (const DbError& e) {
    out.detenida = "no se pudo leer lo agendado (" + sql::DescribirErrorDb(e) + ")";
    return out;
  }
  if (out.por_simulacion.empty()) {
    SaldosEnMemoria memoria(mf.Servicios().balance);
    const ResultadoEjecucion r = CalcularVencidos(mf, cn, empresa, out.hasta, memoria);
    for (const OcurrenciaEjecutada& o : r.ocurrencias) {
      if (!o.ok()) out.fallidas.push_back(o);
    }
    out.detenida = r.detenida;
    try {
      Cifras(cn, out.desde, out.hasta, solicitud.por, out.cuentas, &memoria);
    } catch (const DbError& e) {
      const std::string motivo =
          "no se pudieron leer los saldos (" + sql::DescribirErrorDb(e) + ")";
      out.detenida = out.detenida.empty() ? motivo : out.detenida + "; " + motivo;
    }
    return out;
  }
  const ResultadoSimulacion sim =
      SimularVencidos(mf, cn, empresa, out.hasta, [&](const ResultadoSimulacion&) {
        Cifras(cn, out.desde, out.hasta, solicitud.por, out.cuentas, nullptr);
      });
  for (const OcurrenciaSimulada& o : sim.ocurrencias) {
    if (!o.ocurrencia.ok()) out.fallidas.push_back(o.ocurrencia);
  }
  out.detenida = sim.detenida;
  return out;
}

}  // namespace kivmovfrec::api
