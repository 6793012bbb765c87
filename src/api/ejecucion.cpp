#include "api/ejecucion.h"

#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>

#include "api/avance_agenda.h"
#include "api/grupo_vinculado.h"
#include "api/saldos_memoria.h"
#include "formula/calculo_fx.h"
#include "formula/funciones_fx.h"
#include "formula/leyenda.h"
#include "formula/monedas.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/mf_tipo.h"
#include "platform/db/error_text.h"
#include "platform/vb/convert.h"
#include "platform/vb/format.h"
#include "platform/vb/text.h"
#include "schedule/date_calculator.h"
#include "storage/columnas.h"
#include "storage/contador.h"
#include "storage/fila.h"
#include "storage/tabla_cuentas.h"
#include "storage/tabla_movimientos.h"
#include "storage/tabla_recurrencias.h"

namespace kivmovfrec::api {
namespace {

constexpr size_t kLargoLeyenda = 255;

// A write on the movements table that touches no row: it waits only for a lock on the table or
// on the whole database, never for a row another transaction holds.
constexpr const char* kSqlTomarTabla =
    "Update genMovimientosFrecuentes Set MFrEstado = MFrEstado Where 1 = 0";

int64_t Dia(Date d) {
  return static_cast<int64_t>(std::floor(d.serial));
}

Date SoloDia(Date d) {
  return Date{static_cast<double>(Dia(d))};
}

using formula::FechaCorta;

// Carries the reason the run stops out of an occurrence.
struct Detencion {
  std::string motivo;
};

// Failures after which no further occurrence could be run either.
bool InutilizaLaBase(DbErrorKind kind) {
  switch (kind) {
    case DbErrorKind::Busy:
    case DbErrorKind::Timeout:
    case DbErrorKind::ConnectionLost:
    case DbErrorKind::ReadOnly:
    case DbErrorKind::MissingTable:
      return true;
    case DbErrorKind::Constraint:
    case DbErrorKind::Other:
      return false;
  }
  return false;
}

// ---- Money in a currency's minor units ------------------------------------------------------

struct MonedaDocumento {
  int decimales = 2;
  std::string formato;  // MonRedondeo
  std::string simbolo;
};

double Escala(int decimales) {
  // The powers a currency uses, exact as literals (and as pow gives them), without calling pow
  // for each amount.
  static constexpr double kPotencias[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
  if (decimales >= 0 && decimales < 10) return kPotencias[decimales];
  return std::pow(10.0, decimales);
}

// `importe` as a whole number of the currency's minor units, or nothing when it has more
// decimals than the currency (allowing for the binary representation of a decimal amount).
std::optional<int64_t> EnUnidades(double importe, const MonedaDocumento& m) {
  const double x = importe * Escala(m.decimales);
  if (!std::isfinite(x) || std::fabs(x) > 9e15) return std::nullopt;
  const double n = std::nearbyint(x);
  if (std::fabs(x - n) > 1e-6 + std::fabs(x) * 1e-15) return std::nullopt;
  return static_cast<int64_t>(n);
}

double DeUnidades(int64_t unidades, const MonedaDocumento& m) {
  return static_cast<double>(unidades) / Escala(m.decimales);
}

std::string Mostrar(int64_t unidades, const MonedaDocumento& m) {
  return vb::Format(Variant(DeUnidades(unidades, m)), m.formato) + " " + m.simbolo;
}

// ---- What is due ----------------------------------------------------------------------------

struct Vencimiento {
  Date fecha;
  int32_t id = 0;
  std::string nombre;
};

// The pending scheduled entries and vouchers of `empresa` with their next due date.
std::vector<Vencimiento> Vencimientos(Connection& cn, int32_t empresa) {
  std::vector<Vencimiento> out;
  auto rs = cn.OpenReadOnly(
      "Select MFrID, MFrNombre, RecFechaProxima From genMovimientosFrecuentes, genRecurrencias "
      "Where MFrRecurrencia = RecID And MFrEstado = 0 And MFrTipo In (1, 2, 4) And MFrEmpresa = " +
      std::to_string(empresa) + " Order By MFrID");
  for (; !rs->Eof(); rs->MoveNext()) {
    const Variant fecha = rs->Get("RecFechaProxima");
    if (storage::EsNulo(fecha) || !vb::IsDate(fecha)) continue;
    out.push_back({vb::CDate(fecha), storage::ALong(rs->Get("MFrID")),
                   storage::ATexto(rs->Get("MFrNombre"))});
  }
  return out;
}

Variant NuloSiCero(int32_t v) {
  return v == 0 ? Variant::Null() : Variant(v);
}

bool EsAsientoOComprobante(int16_t tipo) {
  return tipo == 1 || tipo == 2 || tipo == 4;
}

std::string Quien(int32_t id, const std::string& nombre) {
  return "movimiento " + std::to_string(id) + " (" + nombre + ")";
}

struct Linea {
  const clsRegRenglonMF* renglon;
  bool al_debe;
  double importe;      // in the movement's currency, positive
  double importe_cta;  // in the account's currency, positive
};

class Ejecutor {
 public:
  // `memoria`: work the occurrences out in memory, their entries added there (CalcularVencidos).
  Ejecutor(clsMovFrecuente& mf, Connection& cn, int32_t empresa, int nivel,
           SaldosEnMemoria* memoria)
      : ctx_(mf.Contexto()),
        cn_(cn),
        nivel_(nivel),
        memoria_(memoria),
        monedas_(ctx_.servicios.clock, ctx_.parametros) {
    const SuiteServices& sv = ctx_.servicios;
    saldos_ = memoria_ != nullptr
                  ? std::shared_ptr<IAccountBalance>(std::shared_ptr<IAccountBalance>{}, memoria_)
                  : sv.balance;
    dbf_ = sv.db.get();
    reloj_ = sv.clock.get();
    usuario_ = sv.rights ? sv.rights->Usuario() : 0;
    if (sv.calendar) {
      calendario_ = sv.calendar.get();
    } else {
      propio_ = std::make_unique<schedule::DateCalculator>();
      calendario_ = propio_.get();
    }
    if (empresa_.Load(empresa, cn)) moneda_contable_ = empresa_.MonedaContabilidad();
    // The currencies as the formula evaluator rounds with them (0 = the accounting currency).
    monedas_.Connect(std::shared_ptr<Connection>(std::shared_ptr<Connection>{}, &cn));
    monedas_.MonedaContabilidad(moneda_contable_);
    monedas_leidas_ = monedas_.Load();
  }

  // Runs one occurrence in its own transaction. Throws Detencion when the database cannot be
  // used any more.
  OcurrenciaEjecutada Ocurrencia(const Vencimiento& v) {
    if (memoria_ != nullptr) return EnMemoria(v);
    OcurrenciaEjecutada r;
    r.movimiento = v.id;
    r.nombre = v.nombre;
    r.fecha = v.fecha;
    bool fila = false;  // the failure, if any, came from claiming the movement's row
    // A dry run writes only inside the caller's transaction: once that is gone, a further
    // occurrence would be written for good.
    if (nivel_ > 0 && cn_.TransactionDepth() != nivel_) {
      throw Detencion{"la transacción de la simulación ya no está abierta (nivel " +
                      std::to_string(cn_.TransactionDepth()) + " en lugar de " +
                      std::to_string(nivel_) + "); la simulación se detiene"};
    }
    try {
      Transaccion transaccion(cn_);
      cn_.Execute(kSqlTomarTabla);
      AvanceAgenda avance(ctx_, cn_, *calendario_);
      fila = true;
      avance.Reservar(v.id);
      fila = false;
      // Read once, after the claim: the header and schedule decide whether the occurrence is
      // still due and then advance, the lines are what the evaluator works out. Nothing the
      // occurrence does before the advance writes them.
      clsMFTipo mov(ctx_.servicios.clock);
      const bool existe = mov.Load(cn_, v.id);
      if (existe) r.nombre = mov.MovFrecuente()->Nombre();
      r.detalle = Cambio(existe, mov, v.fecha, r.proxima);
      if (!r.detalle.empty()) {
        r.estado = EstadoOcurrencia::HechaEnOtraParte;
        return r;
      }
      const clsRegMovimientoFrecuente cabecera = *mov.MovFrecuente();
      const clsRegRecurrencia agenda = *mov.Recurrencia();
      const std::vector<MiembroGrupo> grupo =
          GrupoEnOrden(cn_, v.id, cabecera.MovVinculado()).miembros;
      r.documentos = Generados(grupo, v.fecha);
      r.estado = EstadoOcurrencia::YaGenerada;
      if (r.documentos.empty()) {
        r.estado = EstadoOcurrencia::Ejecutada;
        for (const MiembroGrupo& m : grupo) {
          if (m.id == v.id || (m.estado == 0 && EsAsientoOComprobante(m.tipo))) {
            r.documentos.push_back(
                Documento(m, v.fecha, r.documentos, m.id == v.id ? &mov : nullptr));
          }
        }
      }
      // The next due date as written, before the commit: once committed, the occurrence is
      // reported whatever happens afterwards.
      Date proxima{};
      const ResultadoOcurrencia hecho = avance.Realizar(v.id, cabecera, agenda, &proxima);
      if (hecho == ResultadoOcurrencia::NoAplica) {
        throw std::runtime_error("no se pudo avanzar su agenda");
      }
      r.terminada = hecho == ResultadoOcurrencia::Terminada;
      if (!r.terminada) r.proxima = proxima;
      transaccion.Commit();
    } catch (const DbError& e) {
      const bool fila_tomada = fila && e.kind() == DbErrorKind::Busy;
      if (!fila_tomada && InutilizaLaBase(e.kind())) {
        throw Detencion{"la base de datos no se puede usar (" + sql::DescribirErrorDb(e) +
                        "); lo que falta queda vencido para la próxima ejecución"};
      }
      Fallar(r, fila_tomada ? "otra transacción tiene tomado el movimiento; queda vencido (" +
                                  sql::DescribirErrorDb(e) + ")"
                            : sql::DescribirErrorDb(e));
    } catch (const std::exception& e) {
      Fallar(r, e.what());
    }
    return r;
  }

  // The documents of the company's movements dated from day `desde` to day `hasta`, read once
  // for an in-memory run: the occurrences it works out find them there instead of in a read
  // of their own.
  void LeerGenerados(int64_t desde, int64_t hasta) {
    const DbParams dias = {Variant(Date{static_cast<double>(desde)}),
                           Variant(Date{static_cast<double>(hasta + 1)})};
    DbParams params = dias;
    params.insert(params.end(), dias.begin(), dias.end());
    for (auto rs = cn_.OpenResultset(
             "Select 1, AsiID, AsiMovFrecuente, AsiFecha From cceAsientos Where AsiMovFrecuente "
             "Is Not Null And AsiFecha >= ? And AsiFecha < ? Union All Select 2, ComID, "
             "ComMovFrecuente, ComFecha From cceComprobantes Where ComMovFrecuente Is Not Null "
             "And ComFecha >= ? And ComFecha < ? Order By 1, 2",
             params);
         !rs->Eof(); rs->MoveNext()) {
      generados_[{storage::ALong(rs->Get(2)), Dia(storage::AFecha(rs->Get(3)))}].push_back(
          {storage::ALong(rs->Get(2)), static_cast<int16_t>(storage::ALong(rs->Get(0))),
           storage::ALong(rs->Get(1)), 0});
    }
  }

 private:
  // A movement as an in-memory run read it once: its records then follow the occurrences it
  // works out (the schedule advanced, Realizado after the last), and the stored amounts of its
  // lines are put back before each computation, as a fresh read would give them.
  struct Leido {
    bool existe = false;
    clsMFTipo mov;
    std::vector<std::pair<double, double>> importes;  // ImporteMF, ImporteCta as stored
    std::optional<std::vector<MiembroGrupo>> grupo;
    // Its schedule as AgendaDe reads it from the records, kept in step with them once read.
    std::optional<std::optional<schedule::Schedule>> agenda;
  };

  Leido& Leer(int32_t id) {
    std::unique_ptr<Leido>& l = leidos_[id];
    if (!l) {
      l = std::make_unique<Leido>();
      l->mov = clsMFTipo(ctx_.servicios.clock);
      Guardar(*l, l->mov.Load(cn_, id));
    }
    return *l;
  }

  void Guardar(Leido& l, bool existe) {
    l.existe = existe;
    if (!existe) return;
    const clsRenglonesMF& renglones = *l.mov.Renglones();
    for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
      l.importes.emplace_back(renglones.Renglon(i)->ImporteMF(),
                              renglones.Renglon(i)->ImporteCta());
    }
  }

 public:
  // Reads the scheduled movements `ids` of an in-memory run together, before it starts.
  void Precargar(const std::vector<int32_t>& ids) {
    std::map<int32_t, int32_t> vinculados;
    for (auto& [id, mov] : storage::CargarMovimientos(cn_, ids, ctx_.servicios.clock)) {
      auto l = std::make_unique<Leido>();
      l->mov = std::move(mov);
      Guardar(*l, true);
      vinculados[id] = l->mov.MovFrecuente()->MovVinculado();
      leidos_[id] = std::move(l);
    }
    for (auto& [id, grupo] : GruposEnOrden(cn_, vinculados)) {
      leidos_.at(id)->grupo = std::move(grupo.miembros);
    }
  }

 private:
  void Restituir(clsMFTipo& mov) {
    const Leido& l = *leidos_.at(mov.MovFrecuente()->ID());
    const clsRenglonesMF& renglones = *mov.Renglones();
    for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
      renglones.Renglon(i)->ImporteMF(l.importes[i - 1].first);
      renglones.Renglon(i)->ImporteCta(l.importes[i - 1].second);
    }
  }

  // The problem of an account a line would be written to, for an in-memory run, which reads
  // each account once.
  const std::optional<std::string>& Problema(int32_t empresa, int32_t cuenta) {
    auto p = problemas_.find({empresa, cuenta});
    if (p == problemas_.end()) {
      auto leido = storage::ProblemasCuentasRenglones(cn_, empresa, {cuenta});
      p = problemas_.emplace(std::make_pair(empresa, cuenta), std::move(leido.at(cuenta))).first;
    }
    return p->second;
  }

  // One occurrence of the in-memory run: the steps of the real one on the movement as read
  // once, its entries added to memoria_ (kept when it succeeds) instead of written, the
  // schedule advanced on the records kept here.
  OcurrenciaEjecutada EnMemoria(const Vencimiento& v) {
    OcurrenciaEjecutada r;
    r.movimiento = v.id;
    r.nombre = v.nombre;
    r.fecha = v.fecha;
    try {
      Leido& leido = Leer(v.id);
      clsMFTipo& mov = leido.mov;
      if (leido.existe) r.nombre = mov.MovFrecuente()->Nombre();
      if (leido.existe && !leido.agenda) leido.agenda = AgendaDe(*mov.Recurrencia());
      r.detalle =
          Cambio(leido.existe, mov, v.fecha, r.proxima, leido.agenda ? &*leido.agenda : nullptr);
      if (!r.detalle.empty()) {
        r.estado = EstadoOcurrencia::HechaEnOtraParte;
        return r;
      }
      if (!leido.grupo) {
        leido.grupo = GrupoEnOrden(cn_, v.id, mov.MovFrecuente()->MovVinculado()).miembros;
      }
      const int64_t dia = Dia(v.fecha);
      for (const MiembroGrupo& m : *leido.grupo) {
        const auto g = generados_.find({m.id, dia});
        if (g == generados_.end()) continue;
        for (DocumentoGenerado d : g->second) {
          if (d.tipo == 1 && m.tipo == 4) d.tipo = 4;
          r.documentos.push_back(d);
        }
      }
      r.estado = EstadoOcurrencia::YaGenerada;
      if (r.documentos.empty()) {
        r.estado = EstadoOcurrencia::Ejecutada;
        for (const MiembroGrupo& m : *leido.grupo) {
          const bool pendiente = m.estado == 0 && terminados_.count(m.id) == 0;
          if (m.id == v.id || (pendiente && EsAsientoOComprobante(m.tipo))) {
            r.documentos.push_back(
                Documento(m, v.fecha, r.documentos, m.id == v.id ? &mov : nullptr));
          }
        }
      }
      // Advanced on the records kept, as the commit would keep them (nothing is changed there
      // before the next date has been worked out, which is what can fail).
      Date proxima{};
      r.terminada = AvanzarRegistros(ctx_, *calendario_, *mov.MovFrecuente(), *mov.Recurrencia(),
                                     *leido.agenda, &proxima);
      if (!r.terminada) r.proxima = proxima;
      if (r.terminada) terminados_.insert(v.id);
      // Another occurrence on the same day can only find them through another member of a
      // group: a movement alone never comes back on the same day.
      for (const DocumentoGenerado& d : r.documentos) {
        if (d.id != 0 && r.estado == EstadoOcurrencia::Ejecutada && leido.grupo->size() > 1) {
          generados_[{d.movimiento, dia}].push_back({d.movimiento, d.tipo, d.id, 0});
        }
      }
      memoria_->Confirmar();
    } catch (const DbError& e) {
      memoria_->Descartar();
      if (InutilizaLaBase(e.kind())) {
        throw Detencion{"la base de datos no se puede usar (" + sql::DescribirErrorDb(e) +
                        "); lo que falta queda vencido para la próxima ejecución"};
      }
      Fallar(r, sql::DescribirErrorDb(e));
    } catch (const std::exception& e) {
      memoria_->Descartar();
      Fallar(r, e.what());
    }
    return r;
  }

  static void Fallar(OcurrenciaEjecutada& r, std::string error) {
    r.estado = EstadoOcurrencia::Fallida;
    r.error = std::move(error);
    r.documentos.clear();
    r.terminada = false;
    r.proxima = Date{};
  }

  // What became of the occurrence due on `fecha` when another run or a user got there first;
  // "" when it is still due that day. `proxima`: the due date the schedule holds now, when the
  // movement is still pending with one.
  // `agenda`: AgendaDe of the movement's schedule row, when the caller keeps it.
  static std::string Cambio(bool existe, const clsMFTipo& mov, Date fecha, Date& proxima,
                            const std::optional<schedule::Schedule>* agenda = nullptr) {
    if (!existe) return "el movimiento ya no existe";
    const int16_t estado = mov.MovFrecuente()->Estado();
    if (estado == ToInt(enuEstadoMF::Realizado)) {
      return "otra ejecución ya la hizo: el movimiento quedó realizado";
    }
    if (estado != 0)
      return "el movimiento ya no está en proceso (estado " + std::to_string(estado) + ")";
    std::optional<Date> leida;
    if (mov.Recurrencia()->ID() != 0) {
      if (agenda == nullptr) {
        leida = vb::ParseDate(mov.Recurrencia()->FechaProxima());
      } else if (*agenda) {
        leida = (*agenda)->due;
      }
    }
    if (!leida) return "el movimiento ya no está agendado";
    const Date ahora = *leida;
    if (Dia(ahora) == Dia(fecha)) return "";
    proxima = ahora;
    return Dia(ahora) > Dia(fecha)
               ? "otra ejecución ya la hizo: ahora vence el " + FechaCorta(ahora)
               : "su agenda cambió: ahora vence el " + FechaCorta(ahora);
  }

  // The documents of the group's members dated on the day of `fecha`, in execution order.
  std::vector<DocumentoGenerado> Generados(const std::vector<MiembroGrupo>& grupo, Date fecha) {
    // The members' IDs and the day, as a range [midnight, next midnight), bound: the text
    // depends only on the size of the group.
    std::string ids;
    DbParams miembros;
    for (const MiembroGrupo& m : grupo) {
      ids += ids.empty() ? "?" : ", ?";
      miembros.emplace_back(m.id);
    }
    const Variant desde(SoloDia(fecha)), hasta(Date{SoloDia(fecha).serial + 1});
    DbParams dos_dias = miembros;
    dos_dias.insert(dos_dias.end(), {desde, hasta});
    dos_dias.insert(dos_dias.end(), miembros.begin(), miembros.end());
    dos_dias.insert(dos_dias.end(), {desde, hasta});
    std::multimap<int32_t, int32_t> asientos, comprobantes;  // movement -> document
    for (auto rs = cn_.OpenResultset(
             "Select 1, AsiID, AsiMovFrecuente From cceAsientos Where AsiMovFrecuente In (" + ids +
                 ") And AsiFecha >= ? And AsiFecha < ? Union All "
                 "Select 2, ComID, ComMovFrecuente From cceComprobantes Where ComMovFrecuente In "
                 "(" +
                 ids + ") And ComFecha >= ? And ComFecha < ? Order By 1, 2",
             dos_dias);
         !rs->Eof(); rs->MoveNext()) {
      (storage::ALong(rs->Get(0)) == 1 ? asientos : comprobantes)
          .emplace(storage::ALong(rs->Get(2)), storage::ALong(rs->Get(1)));
    }
    std::vector<DocumentoGenerado> out;
    for (const MiembroGrupo& m : grupo) {
      for (auto [a, b] = asientos.equal_range(m.id); a != b; ++a) {
        out.push_back({m.id, static_cast<int16_t>(m.tipo == 4 ? 4 : 1), a->second, 0});
      }
      for (auto [a, b] = comprobantes.equal_range(m.id); a != b; ++a) {
        out.push_back({m.id, 2, a->second, 0});
      }
    }
    return out;
  }

  // How amounts of currency `id` (0 = the accounting currency) are rounded, as the formula
  // evaluator rounds them.
  // Worked out once per currency: the currencies are read when the run starts.
  const MonedaDocumento& Moneda(int16_t id) {
    const auto [hecha, nueva] = monedas_documento_.try_emplace(id);
    if (nueva) {
      const formula::MonedaFx* m = monedas_.Moneda(id);
      const formula::MonedaFx datos = m != nullptr ? *m : formula::MonedaFx{};
      hecha->second = {formula::DecimalesFormato(datos.formato_importe), datos.formato_importe,
                       m != nullptr ? datos.simbolo : "moneda " + std::to_string(id)};
    }
    return hecha->second;
  }

  // Computes member `m` as of `fecha` and writes its document. `previos` are the documents the
  // members before it generated in this occurrence: a value taken from another movement's
  // document ([CuentaProyectoCentroCosto]) must come from one of them.
  // `cargado`: the member as the occurrence has just read it (the scheduled movement), not read
  // again.
  DocumentoGenerado Documento(const MiembroGrupo& m, Date fecha,
                              const std::vector<DocumentoGenerado>& previos, clsMFTipo* cargado) {
    // Who the messages of a refusal name (only built for one).
    const auto quien = [&m] { return Quien(m.id, m.nombre); };
    // An in-memory run keeps one evaluator for all its documents: it only reads, and every call
    // starts its own trace.
    std::optional<formula::clsCalculoFx> propio_fx;
    if (memoria_ != nullptr && !evaluador_memoria_) evaluador_memoria_.emplace(Evaluador());
    formula::clsCalculoFx& calculo =
        memoria_ != nullptr ? *evaluador_memoria_ : propio_fx.emplace(Evaluador());
    calculo.Funciones().Ocurrencia([&previos](int32_t id) -> std::optional<int32_t> {
      for (const DocumentoGenerado& d : previos) {
        if (d.movimiento == id) return d.id;
      }
      return std::nullopt;
    });
    if (memoria_ != nullptr && cargado == nullptr) {
      Leido& leido = Leer(m.id);
      if (leido.existe) cargado = &leido.mov;
    }
    if (memoria_ != nullptr && cargado != nullptr) Restituir(*cargado);
    // A record of its own only for a member the occurrence has not read.
    std::optional<clsMFTipo> propio;
    clsMFTipo& mov = cargado != nullptr ? *cargado : propio.emplace(ctx_.servicios.clock);
    Date dia = SoloDia(fecha);
    // Prompts are allowed: a movement that needs a typed value cannot run unattended.
    const bool calculado = cargado != nullptr ? calculo.CalcularCargado(mov, false, dia)
                                              : calculo.SetCalculoFormulasMF(mov, m.id, false, dia);
    if (!calculado) {
      const std::string& error = calculo.Traza().error;
      throw std::runtime_error(quien() + ": " + (error.empty() ? "fórmula sin resultado" : error));
    }
    const TrazaCalculoFx& traza = calculo.Traza();
    for (const TrazaLineaFx& t : traza.lineas) {
      if (t.reintento_tras_error.empty()) continue;
      throw std::runtime_error(
          quien() + ": la línea " + std::to_string(t.indice) + " (cuenta " +
          std::to_string(t.cuenta) +
          ") solo tiene valor porque su expresión se evaluó de nuevo leyendo cada \",\" como "
          "\".\" después de un error (" +
          t.reintento_tras_error + "); revise la fórmula antes de ejecutarlo");
    }
    const clsRegMovimientoFrecuente& cab = *mov.MovFrecuente();
    DocumentoGenerado doc;
    doc.movimiento = m.id;
    doc.tipo = static_cast<int16_t>(ToInt(cab.Tipo()));

    const MonedaDocumento& moneda = Moneda(cab.Moneda());
    const auto no_se_expresa = [&](int16_t i, double importe, const MonedaDocumento& en) {
      return std::runtime_error(quien() + ": el importe " + vb::CStr(Variant(importe)) +
                                " de la línea " + std::to_string(i) + " no se expresa con " +
                                std::to_string(en.decimales) + " decimales, los de " + en.simbolo);
    };
    std::vector<Linea> lineas;
    int64_t debe = 0, haber = 0;
    const clsRenglonesMF& renglones = *mov.Renglones();
    // The accounts of the lines that are written, read at once (an in-memory run has read
    // them before).
    std::map<int32_t, std::optional<std::string>> problemas;
    if (memoria_ == nullptr) {
      std::set<int32_t> cuentas;
      for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
        const clsRegRenglonMF& r = *renglones.Renglon(i);
        const std::optional<int64_t> u = EnUnidades(r.ImporteMF(), moneda);
        if (u && *u != 0) cuentas.insert(r.Cuenta());
      }
      problemas = storage::ProblemasCuentasRenglones(cn_, cab.Empresa(), cuentas);
    }
    for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
      const clsRegRenglonMF& r = *renglones.Renglon(i);
      const std::optional<int64_t> u = EnUnidades(r.ImporteMF(), moneda);
      if (!u) throw no_se_expresa(i, r.ImporteMF(), moneda);
      if (*u == 0) continue;
      const std::optional<std::string>& problema =
          memoria_ != nullptr ? Problema(cab.Empresa(), r.Cuenta()) : problemas.at(r.Cuenta());
      if (problema) {
        throw std::runtime_error(quien() + ": línea " + std::to_string(i) + ": " + *problema);
      }
      const MonedaDocumento& de_cuenta = Moneda(r.Moneda());
      const std::optional<int64_t> u_cta = EnUnidades(r.ImporteCta(), de_cuenta);
      if (!u_cta) throw no_se_expresa(i, r.ImporteCta(), de_cuenta);
      // A negative amount belongs on the other side.
      const bool al_debe = (*u > 0) == r.AlDebe();
      lineas.push_back({&r, al_debe, DeUnidades(std::llabs(*u), moneda),
                        DeUnidades(std::llabs(*u_cta), de_cuenta)});
      (al_debe ? debe : haber) += std::llabs(*u);
    }
    if (debe != haber) {
      throw std::runtime_error(quien() + ": no balancea: Debe " + Mostrar(debe, moneda) +
                               ", Haber " + Mostrar(haber, moneda) + " (diferencia " +
                               Mostrar(std::llabs(debe - haber), moneda) + ")");
    }
    doc.total = DeUnidades(debe, moneda);
    if (lineas.empty()) return doc;

    // The movement's memo is its legend template ("Alquiler de oficina &[FFAñoMes]"); a
    // movement without one is described by its name.
    const std::string& plantilla = cab.Memo().empty() ? cab.Nombre() : cab.Memo();
    if (memoria_ != nullptr) {
      // Nothing in memory shows the legend, but a legend whose date macros cannot be worked
      // out refuses the occurrence; whether it can depends only on the template and the day.
      auto por_dia = leyendas_.find(plantilla);
      if (por_dia == leyendas_.end()) por_dia = leyendas_.emplace(plantilla, PorDia{}).first;
      const auto [l, nueva] = por_dia->second.try_emplace(Dia(fecha));
      if (nueva) {
        try {
          formula::InterpretarFormulaLeyenda(plantilla, SoloDia(fecha), reloj_);
        } catch (const std::exception& e) {
          l->second = e.what();
        }
      }
      if (l->second) throw std::runtime_error(*l->second);
    }
    const std::string leyenda =
        memoria_ != nullptr
            ? std::string()
            : vb::Left(formula::InterpretarFormulaLeyenda(plantilla, SoloDia(fecha), reloj_),
                       kLargoLeyenda);
    if (cab.Tipo() == enuTipoMovFrec::Comprobante) {
      doc.id = memoria_ != nullptr ? --ultimo_en_memoria_
                                   : Comprobante(cab, lineas, SoloDia(fecha), leyenda);
    } else {
      if (cab.Moneda() != 0 && moneda_contable_ != 0 && cab.Moneda() != moneda_contable_) {
        throw std::runtime_error(quien() +
                                 ": el asiento está en otra moneda que la de la contabilidad");
      }
      if (memoria_ != nullptr) {
        doc.id = --ultimo_en_memoria_;
        for (const Linea& l : lineas) {
          memoria_->Agregar(l.renglon->Cuenta(), SoloDia(fecha), l.al_debe ? l.importe : 0.0,
                            l.al_debe ? 0.0 : l.importe);
        }
      } else {
        doc.id = Asiento(cab, lineas, SoloDia(fecha), leyenda);
      }
    }
    return doc;
  }

  Date Ahora() const { return reloj_ ? reloj_->Now() : Date{}; }

  // The evaluator of one member, in the company context the first one read (EmpPrms and the
  // currencies: nothing an occurrence does changes them).
  formula::clsCalculoFx Evaluador() {
    const SuiteServices& sv = ctx_.servicios;
    const auto cn = std::shared_ptr<Connection>(std::shared_ptr<Connection>{}, &cn_);
    if (!contexto_fx_) {
      formula::clsCalculoFx primero(cn, empresa_, {sv.input, sv.clock, saldos_}, ctx_.parametros);
      contexto_fx_ = primero.Funciones().Contexto();
      if (monedas_leidas_) contexto_fx_->monedas = monedas_.Monedas();
    }
    return formula::clsCalculoFx(cn, *contexto_fx_, {sv.input, sv.clock, saldos_}, ctx_.parametros);
  }

  int32_t Asiento(const clsRegMovimientoFrecuente& cab, const std::vector<Linea>& lineas,
                  Date fecha, const std::string& leyenda) {
    const int32_t id = storage::NuevoID(*dbf_, "cceAsientos", ctx_.parametros.idioma);
    std::vector<DbStatement> insertar = storage::SentenciasInsertar(
        "cceAsientos", {{{"AsiID", id},
                         {"AsiEmpresa", static_cast<int32_t>(cab.Empresa())},
                         {"AsiFecha", Variant(fecha)},
                         {"AsiLibro", static_cast<int32_t>(cab.Modalidad())},
                         {"AsiLeyenda", leyenda},
                         {"AsiEstado", int32_t{1}},
                         {"AsiMovFrecuente", cab.ID()},
                         {"AsiUsuario", usuario_},
                         {"AsiFechaModificado", Variant(Ahora())}}});
    std::vector<storage::ValoresFila> filas;
    int32_t orden = 0;
    for (const Linea& l : lineas) {
      const clsRegRenglonMF& r = *l.renglon;
      filas.push_back({{"ACuIDAsiento", id},
                       {"ACuOrden", ++orden},
                       {"ACuCuenta", r.Cuenta()},
                       {"ACuProyecto", NuloSiCero(r.Proyecto())},
                       {"ACuDepartamento", NuloSiCero(r.Departamento())},
                       {"ACuImporteMC", l.importe_cta},
                       {"ACuDebe", l.al_debe ? l.importe : 0.0},
                       {"ACuHaber", l.al_debe ? 0.0 : l.importe},
                       {"ACuDetalle", storage::NuloSiVacio(r.Detalle())}});
    }
    for (DbStatement& st : storage::SentenciasInsertar("cceAsientoCuenta", filas)) {
      insertar.push_back(std::move(st));
    }
    cn_.ExecuteAll(insertar);
    return id;
  }

  int32_t Comprobante(const clsRegMovimientoFrecuente& cab, const std::vector<Linea>& lineas,
                      Date fecha, const std::string& leyenda) {
    const int32_t id = storage::NuevoID(*dbf_, "cceComprobantes", ctx_.parametros.idioma);
    std::vector<DbStatement> insertar = storage::SentenciasInsertar(
        "cceComprobantes", {{{"ComID", id},
                             {"ComEmpresa", static_cast<int32_t>(cab.Empresa())},
                             {"ComTipoComprobante", static_cast<int32_t>(cab.Modalidad())},
                             {"ComFecha", Variant(fecha)},
                             {"ComEnte", NuloSiCero(cab.Ente())},
                             {"ComMoneda", static_cast<int32_t>(cab.Moneda())},
                             {"ComDetalle", leyenda},
                             {"ComEstado", int32_t{1}},
                             {"ComMovFrecuente", cab.ID()},
                             {"ComUsuario", usuario_},
                             {"ComFechaModificacion", Variant(Ahora())}}});
    std::vector<storage::ValoresFila> filas;
    int32_t orden = 0;
    for (const Linea& l : lineas) {
      const clsRegRenglonMF& r = *l.renglon;
      filas.push_back({{"CCuIDComprobante", id},
                       {"CCuOrden", ++orden},
                       {"CCuIDCuenta", r.Cuenta()},
                       {"CCuIDProyecto", NuloSiCero(r.Proyecto())},
                       {"CCuIDDepartamento", NuloSiCero(r.Departamento())},
                       {"CCuMoneda", static_cast<int32_t>(r.Moneda())},
                       {"CCuImporteCuenta", l.importe_cta},
                       {"CCuDebe", l.al_debe ? l.importe : 0.0},
                       {"CCuHaber", l.al_debe ? 0.0 : l.importe},
                       // The rate the account's amount was worked out with, account currency
                       // per voucher unit.
                       {"CCuTipoCambio", Variant(l.importe_cta / l.importe)}});
    }
    for (DbStatement& st : storage::SentenciasInsertar("cceComprobanteCuenta", filas)) {
      insertar.push_back(std::move(st));
    }
    cn_.ExecuteAll(insertar);
    return id;
  }

  const ContextoMF& ctx_;
  Connection& cn_;
  int nivel_ = 0;  // the caller's transaction level in a dry run, 0 in a real one
  SaldosEnMemoria* memoria_ = nullptr;       // an in-memory run's entries; null in the others
  std::shared_ptr<IAccountBalance> saldos_;  // the balances the formulas read
  // The in-memory run's reads, once each: movements, accounts' problems by (company, account),
  // and the documents generated by (movement, day), those it worked out included.
  std::map<int32_t, std::unique_ptr<Leido>> leidos_;
  std::map<std::pair<int32_t, int32_t>, std::optional<std::string>> problemas_;
  std::map<std::pair<int32_t, int64_t>, std::vector<DocumentoGenerado>> generados_;
  std::optional<formula::clsCalculoFx> evaluador_memoria_;
  std::set<int32_t> terminados_;  // schedules it ended
  // Why the legend of a template cannot be worked out on a day, by template and day.
  using PorDia = std::map<int64_t, std::optional<std::string>>;
  std::map<std::string, PorDia, std::less<>> leyendas_;
  std::map<int16_t, MonedaDocumento> monedas_documento_;
  int32_t ultimo_en_memoria_ = 0;  // documents it works out get -1, -2, ...
  formula::clsMonedas monedas_;
  IDBFncs* dbf_ = nullptr;
  IClock* reloj_ = nullptr;
  int32_t usuario_ = 0;
  IDateCalculator* calendario_ = nullptr;
  std::unique_ptr<IDateCalculator> propio_;
  int16_t moneda_contable_ = 0;
  bool monedas_leidas_ = false;
  clsEmpresa empresa_;
  std::optional<formula::ContextoEmpresaFx> contexto_fx_;
};

// The run, real, dry (nivel > 0) or in memory (memoria set).
ResultadoEjecucion Correr(clsMovFrecuente& mf, Connection& cn, int32_t empresa, Date hasta,
                          const AlTerminarOcurrencia& al_terminar, int nivel,
                          SaldosEnMemoria* memoria) {
  ResultadoEjecucion out;
  if (!mf.Conectado() || !mf.Servicios().db) return out;
  // Due occurrences by date, then movement: the earliest runs first, and a movement whose
  // schedule advanced comes back with its next date.
  std::multimap<std::pair<int64_t, int32_t>, Vencimiento> cola;
  std::unique_ptr<Ejecutor> ejecutor;
  try {
    ejecutor = std::make_unique<Ejecutor>(mf, cn, empresa, nivel, memoria);
    for (Vencimiento& v : Vencimientos(cn, empresa)) {
      if (Dia(v.fecha) <= Dia(hasta)) cola.emplace(std::make_pair(Dia(v.fecha), v.id), v);
    }
    if (memoria != nullptr && !cola.empty()) {
      ejecutor->LeerGenerados(cola.begin()->first.first, Dia(hasta));
      std::vector<int32_t> ids;
      for (const auto& [clave, v] : cola) ids.push_back(v.id);
      ejecutor->Precargar(ids);
    }
  } catch (const DbError& e) {
    out.detenida = "no se pudo leer lo vencido (" + sql::DescribirErrorDb(e) + ")";
    return out;
  }
  while (!cola.empty()) {
    const Vencimiento v = cola.begin()->second;
    cola.erase(cola.begin());
    OcurrenciaEjecutada r;
    try {
      r = ejecutor->Ocurrencia(v);
    } catch (const Detencion& d) {
      out.detenida = d.motivo;
      break;
    }
    // The schedule must move forward; a date that does not would repeat the occurrence.
    const Date proxima = r.proxima;
    if (r.ok() && !r.terminada && Dia(proxima) > Dia(v.fecha) && Dia(proxima) <= Dia(hasta)) {
      cola.emplace(std::make_pair(Dia(proxima), v.id), Vencimiento{proxima, v.id, r.nombre});
    }
    // An in-memory run reports only what did not run (its caller lists the refusals).
    if (memoria != nullptr &&
        (r.estado == EstadoOcurrencia::Ejecutada || r.estado == EstadoOcurrencia::YaGenerada)) {
      continue;
    }
    out.ocurrencias.push_back(std::move(r));
    if (al_terminar) {
      al_terminar(out.ocurrencias.back(),
                  {out.ocurrencias.size(), out.ocurrencias.size() + cola.size()});
    }
  }
  return out;
}

}  // namespace

ResultadoEjecucion EjecutarVencidos(clsMovFrecuente& mf, Connection& cn, int32_t empresa,
                                    Date hasta, const AlTerminarOcurrencia& al_terminar,
                                    int nivel) {
  return Correr(mf, cn, empresa, hasta, al_terminar, nivel, nullptr);
}

ResultadoEjecucion CalcularVencidos(clsMovFrecuente& mf, Connection& cn, int32_t empresa,
                                    Date hasta, SaldosEnMemoria& saldos) {
  return Correr(mf, cn, empresa, hasta, {}, 0, &saldos);
}

}  // namespace kivmovfrec::api
