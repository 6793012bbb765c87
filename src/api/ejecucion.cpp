#include "api/ejecucion.h"

#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "api/avance_agenda.h"
#include "api/grupo_vinculado.h"
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
#include "storage/tabla_cuentas.h"
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
  Ejecutor(clsMovFrecuente& mf, Connection& cn, int32_t empresa)
      : ctx_(mf.Contexto()), cn_(cn), monedas_(ctx_.servicios.clock, ctx_.parametros) {
    const SuiteServices& sv = ctx_.servicios;
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
    monedas_.Load();
  }

  // Runs one occurrence in its own transaction. Throws Detencion when the database cannot be
  // used any more.
  OcurrenciaEjecutada Ocurrencia(const Vencimiento& v) {
    OcurrenciaEjecutada r;
    r.movimiento = v.id;
    r.nombre = v.nombre;
    r.fecha = v.fecha;
    bool fila = false;  // the failure, if any, came from claiming the movement's row
    try {
      Transaccion transaccion(cn_);
      cn_.Execute(kSqlTomarTabla);
      AvanceAgenda avance(ctx_, cn_, *calendario_);
      fila = true;
      avance.Reservar(v.id);
      fila = false;
      clsMFTipo mov(ctx_.servicios.clock);
      const bool existe = mov.Load(cn_, v.id);
      if (existe) r.nombre = mov.MovFrecuente()->Nombre();
      r.detalle = Cambio(existe, mov, v.fecha, r.proxima);
      if (!r.detalle.empty()) {
        r.estado = EstadoOcurrencia::HechaEnOtraParte;
        return r;
      }
      const std::vector<MiembroGrupo> grupo = GrupoEnOrden(cn_, v.id).miembros;
      r.documentos = Generados(grupo, v.fecha);
      r.estado = EstadoOcurrencia::YaGenerada;
      if (r.documentos.empty()) {
        r.estado = EstadoOcurrencia::Ejecutada;
        for (const MiembroGrupo& m : grupo) {
          if (m.id == v.id || (m.estado == 0 && EsAsientoOComprobante(m.tipo))) {
            r.documentos.push_back(Documento(m, v.fecha, r.documentos));
          }
        }
      }
      const ResultadoOcurrencia hecho = avance.Realizar(v.id);
      if (hecho == ResultadoOcurrencia::NoAplica) {
        throw std::runtime_error("no se pudo avanzar su agenda");
      }
      r.terminada = hecho == ResultadoOcurrencia::Terminada;
      // The next due date is read before the commit: once committed, the occurrence is
      // reported whatever happens afterwards. Only the schedule's row is read again: the
      // advance changes nothing else this needs.
      clsRegRecurrencia despues = *mov.Recurrencia();
      if (!r.terminada && storage::CargarRecurrencia(cn_, despues) &&
          vb::IsDate(Variant(despues.FechaProxima()))) {
        r.proxima = vb::CDate(Variant(despues.FechaProxima()));
      }
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

 private:
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
  static std::string Cambio(bool existe, const clsMFTipo& mov, Date fecha, Date& proxima) {
    if (!existe) return "el movimiento ya no existe";
    const int16_t estado = mov.MovFrecuente()->Estado();
    if (estado == ToInt(enuEstadoMF::Realizado)) {
      return "otra ejecución ya la hizo: el movimiento quedó realizado";
    }
    if (estado != 0)
      return "el movimiento ya no está en proceso (estado " + std::to_string(estado) + ")";
    const std::string& texto = mov.Recurrencia()->FechaProxima();
    if (mov.Recurrencia()->ID() == 0 || !vb::IsDate(Variant(texto))) {
      return "el movimiento ya no está agendado";
    }
    const Date ahora = vb::CDate(Variant(texto));
    if (Dia(ahora) == Dia(fecha)) return "";
    proxima = ahora;
    return Dia(ahora) > Dia(fecha)
               ? "otra ejecución ya la hizo: ahora vence el " + FechaCorta(ahora)
               : "su agenda cambió: ahora vence el " + FechaCorta(ahora);
  }

  // The documents of the group's members dated on the day of `fecha`, in execution order.
  std::vector<DocumentoGenerado> Generados(const std::vector<MiembroGrupo>& grupo, Date fecha) {
    std::string ids;
    for (const MiembroGrupo& m : grupo) ids += (ids.empty() ? "" : ", ") + std::to_string(m.id);
    // The day as a bound range [midnight, next midnight).
    const DbParams dia{Variant(SoloDia(fecha)), Variant(Date{SoloDia(fecha).serial + 1})};
    std::multimap<int32_t, int32_t> asientos, comprobantes;  // movement -> document
    for (auto rs = cn_.OpenResultset(
             "Select AsiID, AsiMovFrecuente From cceAsientos Where AsiMovFrecuente In (" + ids +
                 ") And AsiFecha >= ? And AsiFecha < ? Order By AsiID",
             dia);
         !rs->Eof(); rs->MoveNext()) {
      asientos.emplace(storage::ALong(rs->Get(1)), storage::ALong(rs->Get(0)));
    }
    for (auto rs = cn_.OpenResultset(
             "Select ComID, ComMovFrecuente From cceComprobantes Where ComMovFrecuente In (" + ids +
                 ") And ComFecha >= ? And ComFecha < ? Order By ComID",
             dia);
         !rs->Eof(); rs->MoveNext()) {
      comprobantes.emplace(storage::ALong(rs->Get(1)), storage::ALong(rs->Get(0)));
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
  MonedaDocumento Moneda(int16_t id) {
    const formula::MonedaFx* m = monedas_.Moneda(id);
    const formula::MonedaFx datos = m != nullptr ? *m : formula::MonedaFx{};
    return {formula::DecimalesFormato(datos.formato_importe), datos.formato_importe,
            m != nullptr ? datos.simbolo : "moneda " + std::to_string(id)};
  }

  // Computes member `m` as of `fecha` and writes its document. `previos` are the documents the
  // members before it generated in this occurrence: a value taken from another movement's
  // document ([CuentaProyectoCentroCosto]) must come from one of them.
  DocumentoGenerado Documento(const MiembroGrupo& m, Date fecha,
                              const std::vector<DocumentoGenerado>& previos) {
    const std::string quien = Quien(m.id, m.nombre);
    const SuiteServices& sv = ctx_.servicios;
    formula::clsCalculoFx calculo(std::shared_ptr<Connection>(std::shared_ptr<Connection>{}, &cn_),
                                  empresa_, {sv.input, sv.clock, sv.balance}, ctx_.parametros);
    calculo.Funciones().Ocurrencia([&previos](int32_t id) -> std::optional<int32_t> {
      for (const DocumentoGenerado& d : previos) {
        if (d.movimiento == id) return d.id;
      }
      return std::nullopt;
    });
    clsMFTipo mov(ctx_.servicios.clock);
    Date dia = SoloDia(fecha);
    // Prompts are allowed: a movement that needs a typed value cannot run unattended.
    if (!calculo.SetCalculoFormulasMF(mov, m.id, false, dia)) {
      const std::string& error = calculo.Traza().error;
      throw std::runtime_error(quien + ": " + (error.empty() ? "fórmula sin resultado" : error));
    }
    const TrazaCalculoFx& traza = calculo.Traza();
    for (const TrazaLineaFx& t : traza.lineas) {
      if (t.reintento_tras_error.empty()) continue;
      throw std::runtime_error(
          quien + ": la línea " + std::to_string(t.indice) + " (cuenta " +
          std::to_string(t.cuenta) +
          ") solo tiene valor porque su expresión se evaluó de nuevo leyendo cada \",\" como "
          "\".\" después de un error (" +
          t.reintento_tras_error + "); revise la fórmula antes de ejecutarlo");
    }
    const clsRegMovimientoFrecuente& cab = *mov.MovFrecuente();
    DocumentoGenerado doc;
    doc.movimiento = m.id;
    doc.tipo = static_cast<int16_t>(ToInt(cab.Tipo()));

    const MonedaDocumento moneda = Moneda(cab.Moneda());
    const auto no_se_expresa = [&](int16_t i, double importe, const MonedaDocumento& en) {
      return std::runtime_error(quien + ": el importe " + vb::CStr(Variant(importe)) +
                                " de la línea " + std::to_string(i) + " no se expresa con " +
                                std::to_string(en.decimales) + " decimales, los de " + en.simbolo);
    };
    std::vector<Linea> lineas;
    int64_t debe = 0, haber = 0;
    const clsRenglonesMF& renglones = *mov.Renglones();
    for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
      const clsRegRenglonMF& r = *renglones.Renglon(i);
      const std::optional<int64_t> u = EnUnidades(r.ImporteMF(), moneda);
      if (!u) throw no_se_expresa(i, r.ImporteMF(), moneda);
      if (*u == 0) continue;
      if (auto problema = storage::ProblemaCuentaRenglon(cn_, cab.Empresa(), r.Cuenta())) {
        throw std::runtime_error(quien + ": línea " + std::to_string(i) + ": " + *problema);
      }
      const MonedaDocumento de_cuenta = Moneda(r.Moneda());
      const std::optional<int64_t> u_cta = EnUnidades(r.ImporteCta(), de_cuenta);
      if (!u_cta) throw no_se_expresa(i, r.ImporteCta(), de_cuenta);
      // A negative amount belongs on the other side.
      const bool al_debe = (*u > 0) == r.AlDebe();
      lineas.push_back({&r, al_debe, DeUnidades(std::llabs(*u), moneda),
                        DeUnidades(std::llabs(*u_cta), de_cuenta)});
      (al_debe ? debe : haber) += std::llabs(*u);
    }
    if (debe != haber) {
      throw std::runtime_error(quien + ": no balancea: Debe " + Mostrar(debe, moneda) + ", Haber " +
                               Mostrar(haber, moneda) + " (diferencia " +
                               Mostrar(std::llabs(debe - haber), moneda) + ")");
    }
    doc.total = DeUnidades(debe, moneda);
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
        throw std::runtime_error(quien +
                                 ": el asiento está en otra moneda que la de la contabilidad");
      }
      doc.id = Asiento(cab, lineas, SoloDia(fecha), leyenda);
    }
    return doc;
  }

  Date Ahora() const { return reloj_ ? reloj_->Now() : Date{}; }

  int32_t Asiento(const clsRegMovimientoFrecuente& cab, const std::vector<Linea>& lineas,
                  Date fecha, const std::string& leyenda) {
    const int32_t id = storage::NuevoID(*dbf_, "cceAsientos", ctx_.parametros.idioma);
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
      ls->Set("ACuImporteMC", l.importe_cta);
      ls->Set("ACuDebe", l.al_debe ? l.importe : 0.0);
      ls->Set("ACuHaber", l.al_debe ? 0.0 : l.importe);
      ls->Set("ACuDetalle", storage::NuloSiVacio(r.Detalle()));
      ls->Update();
    }
    return id;
  }

  int32_t Comprobante(const clsRegMovimientoFrecuente& cab, const std::vector<Linea>& lineas,
                      Date fecha, const std::string& leyenda) {
    const int32_t id = storage::NuevoID(*dbf_, "cceComprobantes", ctx_.parametros.idioma);
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
      ls->Set("CCuImporteCuenta", l.importe_cta);
      ls->Set("CCuDebe", l.al_debe ? l.importe : 0.0);
      ls->Set("CCuHaber", l.al_debe ? 0.0 : l.importe);
      // The rate the account's amount was worked out with, account currency per voucher unit.
      ls->Set("CCuTipoCambio", Variant(l.importe_cta / l.importe));
      ls->Update();
    }
    return id;
  }

  const ContextoMF& ctx_;
  Connection& cn_;
  formula::clsMonedas monedas_;
  IDBFncs* dbf_ = nullptr;
  IClock* reloj_ = nullptr;
  int32_t usuario_ = 0;
  IDateCalculator* calendario_ = nullptr;
  std::unique_ptr<IDateCalculator> propio_;
  int16_t moneda_contable_ = 0;
  clsEmpresa empresa_;
};

}  // namespace

ResultadoEjecucion EjecutarVencidos(clsMovFrecuente& mf, Connection& cn, int32_t empresa,
                                    Date hasta, const AlTerminarOcurrencia& al_terminar) {
  ResultadoEjecucion out;
  if (!mf.Conectado() || !mf.Servicios().db) return out;
  // Due occurrences by date, then movement: the earliest runs first, and a movement whose
  // schedule advanced comes back with its next date.
  std::multimap<std::pair<int64_t, int32_t>, Vencimiento> cola;
  std::unique_ptr<Ejecutor> ejecutor;
  try {
    ejecutor = std::make_unique<Ejecutor>(mf, cn, empresa);
    for (Vencimiento& v : Vencimientos(cn, empresa)) {
      if (Dia(v.fecha) <= Dia(hasta)) cola.emplace(std::make_pair(Dia(v.fecha), v.id), v);
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
    out.ocurrencias.push_back(std::move(r));
    if (al_terminar) {
      al_terminar(out.ocurrencias.back(),
                  {out.ocurrencias.size(), out.ocurrencias.size() + cola.size()});
    }
  }
  return out;
}

}  // namespace kivmovfrec::api
