#include "kivmovfrec/mov_frecuente.h"

#include <stdexcept>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "api/avance_agenda.h"
#include "api/derechos.h"
#include "api/grupo_vinculado.h"
#include "formula/reglas_fx.h"
#include "kivmovfrec/errors.h"
#include "platform/db/error_text.h"
#include "platform/vb/convert.h"
#include "platform/vb/excerpt.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "schedule/date_calculator.h"
#include "storage/contador.h"
#include "storage/parametros.h"
#include "storage/tabla_movimientos.h"
#include "ui/frequency/frm_frecuencia.h"

namespace kivmovfrec {
namespace {

// Values of the current movement's records, to put back after a rolled-back save: the save
// writes keys, positions and line numbers into the records as it goes, and those would
// otherwise point at rows the rollback removed.
class CopiaEstructura {
 public:
  explicit CopiaEstructura(const clsMFTipo& mf)
      : mov_(mf.MovFrecuente()), rec_(mf.Recurrencia()), mov_valor_(*mov_), rec_valor_(*rec_) {
    const auto& renglones = *mf.Renglones();
    for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
      auto r = renglones.Renglon(i);
      lineas_.emplace_back(r, *r);
    }
  }
  void Restaurar() const {
    *mov_ = mov_valor_;
    *rec_ = rec_valor_;
    for (const auto& [r, valor] : lineas_) *r = valor;
  }

 private:
  std::shared_ptr<clsRegMovimientoFrecuente> mov_;
  std::shared_ptr<clsRegRecurrencia> rec_;
  clsRegMovimientoFrecuente mov_valor_;
  clsRegRecurrencia rec_valor_;
  std::vector<std::pair<std::shared_ptr<clsRegRenglonMF>, clsRegRenglonMF>> lineas_;
};

// The schedule as the save needs it: a start date that is not a date takes the next due date.
void CompletarRecurrencia(clsRegRecurrencia& rec) {
  if (!rec.FechaProxima().empty() && !vb::IsDate(Variant(rec.FechaInicio()))) {
    rec.FechaInicio(rec.FechaProxima());
  }
}

// Refuses lines of which more than one holds the difference formula, before anything is written:
// the wizard checks it, and a save repeats it for every other way lines reach the database.
void RechazarVariasDiferencias(const clsRenglonesMF& renglones, int idioma) {
  std::vector<formula::LineaRegla> lineas;
  for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
    const clsRegRenglonMF& r = *renglones.Renglon(i);
    lineas.push_back(
        {{r.Cuenta(), r.Proyecto(), r.Departamento()}, r.AlDebe(), r.Formula(), r.ImporteMF()});
  }
  if (const auto fallo = formula::ReglaUnaDiferencia(lineas)) {
    throw std::invalid_argument(fallo->Texto(idioma));
  }
}

// Why an operation failed, for people: the component's own refusals as they are, the counter
// failure with its number, a database error named in plain words with the engine's message,
// cut when long.
std::string DescribirError(const std::exception& e) {
  std::string texto = e.what();
  if (const auto* c = dynamic_cast<const ComponentError*>(&e)) {
    texto = fmt::format("error {} ({}): {}", c->number(), c->source(), c->what());
  } else if (const auto* v = dynamic_cast<const VbError*>(&e)) {
    texto = fmt::format("error {}: {}", v->number(), v->what());
  } else if (const auto* d = dynamic_cast<const DbError*>(&e)) {
    texto = sql::DescribirErrorDb(*d);
  }
  return vb::ShortForMessage(texto, 300);
}

}  // namespace

clsMovFrecuente::clsMovFrecuente() : estructura_(std::make_shared<clsMFTipo>()) {}

clsMovFrecuente::~clsMovFrecuente() = default;

void clsMovFrecuente::Servicios(SuiteServices s) {
  dados_ = std::move(s);
  ctx_.servicios = dados_;
  if (!ctx_.cn) return;
  SuiteServices& sv = ctx_.servicios;
  if (!sv.db || !sv.rights || !sv.messages || !sv.input || !sv.clock || !sv.balance) {
    const SuiteServices defecto = SuiteServices::Defaults(ctx_.cn);
    if (!sv.db) sv.db = defecto.db;
    if (!sv.rights) sv.rights = defecto.rights;
    if (!sv.messages) sv.messages = defecto.messages;
    if (!sv.input) sv.input = defecto.input;
    if (!sv.clock) sv.clock = defecto.clock;
    if (!sv.balance) sv.balance = defecto.balance;
  }
}

void clsMovFrecuente::EstructuraMovFrec(std::shared_ptr<clsMFTipo> v) {
  if (!v) throw std::invalid_argument("clsMovFrecuente: EstructuraMovFrec nula");
  estructura_ = std::move(v);
}

void clsMovFrecuente::Empresa(int32_t v) {
  if (v != empresa_) empresa_ctx_.reset();
  empresa_ = v;
}

void clsMovFrecuente::Connect(std::shared_ptr<Connection> cn) {
  // Everything bound to the previous connection goes: the services completed over it, its
  // settings and the company context read from it.
  ctx_ = ContextoMF{};
  ctx_.servicios = dados_;
  empresa_ctx_.reset();
  if (!cn) return;
  ctx_.cn = cn;
  Servicios(dados_);  // fills the missing services over the new connection
  try {
    ParametrosBD parametros;
    parametros.idioma = storage::LeerIdioma(*ctx_.servicios.db);
    storage::CargarParametros(*cn, parametros);
    ctx_.parametros = std::move(parametros);
  } catch (...) {
    ctx_ = ContextoMF{};
    ctx_.servicios = dados_;
    throw;
  }
}

int clsMovFrecuente::Idioma() const {
  return ctx_.parametros.idioma;
}

void clsMovFrecuente::Reportar(int accion, const std::exception& e) {
  ultimo_error_ = DescribirError(e);
  if (!ctx_.servicios.messages) return;
  try {
    MessageRequest m = resources::Mensaje({accion}, msg::kTituloMovimientosFrecuentes,
                                          MsgIcon::Critical, MsgButtons::OK, Idioma());
    m.text += "\n" + ultimo_error_;
    ctx_.servicios.messages->Show(m);
  } catch (const std::exception&) {
  }
}

clsEmpresa& clsMovFrecuente::EmpresaContexto() {
  if (!empresa_ctx_) {
    auto ctx = std::make_unique<clsEmpresa>();
    ctx->Load(empresa_, *ctx_.cn);
    empresa_ctx_ = std::move(ctx);
  }
  return *empresa_ctx_;
}

IDateCalculator& clsMovFrecuente::Calendario() {
  if (ctx_.servicios.calendar) return *ctx_.servicios.calendar;
  if (!calendario_propio_)
    calendario_propio_ =
        std::make_unique<schedule::DateCalculator>(std::make_shared<ui::frmFrecuencia>(ctx_));
  return *calendario_propio_;
}

void clsMovFrecuente::CleanEstructura() {
  if (!ctx_.cn) return;
  estructura_ = std::make_shared<clsMFTipo>(ctx_.servicios.clock);
}

int32_t clsMovFrecuente::SaveMovimientoFrecuente() {
  if (!ctx_.cn) return 0;
  RechazarVariasDiferencias(*estructura_->Renglones(), Idioma());
  CompletarRecurrencia(*estructura_->Recurrencia());
  const int16_t libro = EmpresaContexto().Libro();
  return estructura_->Save(*ctx_.cn, *ctx_.servicios.db, libro, ctx_.parametros);
}

int32_t clsMovFrecuente::SaveMovimientoFrecuenteConBloqueo(bool /*bDisplayMsgError*/) {
  ultimo_error_.clear();
  if (!ctx_.cn) return 0;
  const CopiaEstructura copia(*estructura_);
  try {
    Transaccion transaccion(*ctx_.cn);
    const int32_t id = GuardarEnTransaccion(*estructura_, *ctx_.servicios.db);
    transaccion.Commit();
    return id;
  } catch (const std::exception& e) {
    copia.Restaurar();
    ultimo_error_ = DescribirError(e);
    return 0;
  }
}

int32_t clsMovFrecuente::GuardarEnTransaccion(clsMFTipo& mf, IDBFncs& dbf) {
  RechazarVariasDiferencias(*mf.Renglones(), Idioma());
  clsRegRecurrencia& rec = *mf.Recurrencia();
  CompletarRecurrencia(rec);
  if (rec.ID() == 0 && rec.CadaCuanto() == 0 && rec.CantidadVeces() == 1 &&
      rec.NumOcurrencia() > 1) {
    rec.NumOcurrencia(1);
  }
  const int16_t libro = EmpresaContexto().Libro();
  return mf.Save(*ctx_.cn, dbf, libro, ctx_.parametros);
}

std::vector<int32_t> clsMovFrecuente::SaveMovimientosFrecuentesConBloqueo(
    const std::vector<std::shared_ptr<clsMFTipo>>& lote, size_t* fallido) {
  ultimo_error_.clear();
  if (fallido) *fallido = 0;
  if (!ctx_.cn) return {};
  for (const auto& mf : lote) {
    if (!mf) throw std::invalid_argument("clsMovFrecuente: movimiento nulo en el lote");
  }
  std::vector<CopiaEstructura> copias;
  copias.reserve(lote.size());
  for (const auto& mf : lote) copias.emplace_back(*mf);
  size_t actual = 0;
  try {
    // One level for the whole run: a failure anywhere undoes all of it, so the saves need no
    // level (savepoint) of their own.
    Transaccion transaccion(*ctx_.cn);
    // Keys the saves will draw, as clsMFTipo::Save draws them: a header without a key, and a
    // schedule without a key that is kept. A row missing under a given key draws one more from
    // the counter itself.
    int32_t movimientos = 0, agendas = 0;
    for (const auto& mf : lote) {
      movimientos += mf->MovFrecuente()->ID() == 0;
      const clsRegRecurrencia& rec = *mf->Recurrencia();
      agendas += rec.ID() == 0 && !rec.FechaProxima().empty();
    }
    storage::ClavesReservadas claves(*ctx_.servicios.db);
    claves.Reservar("genMovimientosFrecuentes", movimientos);
    claves.Reservar("genRecurrencias", agendas);
    std::vector<int32_t> ids;
    ids.reserve(lote.size());
    for (; actual < lote.size(); ++actual)
      ids.push_back(GuardarEnTransaccion(*lote[actual], claves));
    transaccion.Commit();
    return ids;
  } catch (const std::exception& e) {
    for (const CopiaEstructura& c : copias) c.Restaurar();
    if (fallido) *fallido = actual;
    ultimo_error_ = DescribirError(e);
    return {};
  }
}

bool clsMovFrecuente::LoadMF(int32_t lIDMF) {
  if (!ctx_.cn) return false;
  return estructura_->Load(*ctx_.cn, lIDMF, ctx_.Reloj());
}

void clsMovFrecuente::DeleteMF(int32_t lIDMF) {
  if (!ctx_.cn) return;
  clsMFTipo::Delete(*ctx_.cn, lIDMF);
}

bool clsMovFrecuente::CambiarEstadoMF(int32_t lIDMF, enuEstadoMF iEstado,
                                      bool bDisplayMsgQuestion) {
  ultimo_error_.clear();
  if (!ctx_.cn) return false;
  try {
    const int idioma = Idioma();
    if (bDisplayMsgQuestion) {
      const int pregunta = iEstado == enuEstadoMF::Papelera ? msg::kConfirmaEnviarPapelera
                                                            : msg::kConfirmaCambiarEstado;
      if (ctx_.servicios.messages->Show(
              resources::Mensaje({pregunta}, msg::kTituloMovimientosFrecuentes, MsgIcon::Question,
                                 MsgButtons::YesNo, idioma)) == kMsgNo) {
        return false;
      }
    }
    clsRegMovimientoFrecuente mov(ctx_.Reloj());
    if (!storage::CargarMovimiento(*ctx_.cn, lIDMF, mov)) return false;
    const int16_t tipo = ToInt(mov.Tipo());
    if (mov.Tipo() != enuTipoMovFrec::Calendario) {
      const char letra = iEstado == enuEstadoMF::Papelera ? 'E' : 'M';
      if (!api::TieneDerecho(*ctx_.servicios.rights, empresa_, api::OpcionDeTipo(tipo), letra)) {
        api::MostrarSinDerechos(*ctx_.servicios.messages, tipo, idioma);
        return false;
      }
      if (mov.MovVinculado() >= 1) {
        ctx_.servicios.messages->Show(
            resources::Mensaje({msg::kNoEliminarVinculado}, msg::TituloDeTipo(tipo),
                               MsgIcon::Exclamation, MsgButtons::OK, idioma));
        return false;
      }
    }
    mov.Estado(iEstado);
    mov.FechaEstado(ctx_.Reloj().Now());
    storage::GuardarMovimiento(*ctx_.cn, *ctx_.servicios.db, mov, ctx_.parametros);
    return true;
  } catch (const std::exception& e) {
    Reportar(msg::kErrorCambiarEstado, e);
    return false;
  }
}

bool clsMovFrecuente::DeleteRegistroMFConfirmar(int32_t lIDMF) {
  ultimo_error_.clear();
  if (!ctx_.cn) return false;
  try {
    const int idioma = Idioma();
    clsRegMovimientoFrecuente mov(ctx_.Reloj());
    if (!storage::CargarMovimiento(*ctx_.cn, lIDMF, mov)) return false;
    if (!api::TieneDerecho(*ctx_.servicios.rights, empresa_, "Papelera", 'e')) {
      api::MostrarSinDerechos(*ctx_.servicios.messages, ToInt(mov.Tipo()), idioma);
      return false;
    }
    if (ctx_.servicios.messages->Show(
            resources::Mensaje({msg::kConfirmaEliminarRegistro}, msg::kTituloMovimientosFrecuentes,
                               MsgIcon::Question, MsgButtons::YesNo, idioma, 2)) == kMsgNo) {
      return false;
    }
    Transaccion transaccion(*ctx_.cn);
    clsMFTipo::Delete(*ctx_.cn, lIDMF);
    transaccion.Commit();
    return true;
  } catch (const std::exception& e) {
    Reportar(msg::kErrorEliminarMovimiento, e);
    return false;
  }
}

bool clsMovFrecuente::DarRealizadaFechaAgenda(int32_t lIDMF, bool& bPorUnicaVez) {
  bPorUnicaVez = false;
  ultimo_error_.clear();
  if (!ctx_.cn) return false;
  try {
    Transaccion transaccion(*ctx_.cn);
    api::AvanceAgenda avance(ctx_, *ctx_.cn, Calendario());
    const api::ResultadoOcurrencia r = avance.Realizar(lIDMF);
    if (r == api::ResultadoOcurrencia::NoAplica) return false;
    // When lIDMF heads a linked group, the rest of it in execution order (lIDMF itself is not
    // marked twice); a member marked alone does not drag its group along.
    const api::GrupoVinculado grupo = api::GrupoEnOrden(*ctx_.cn, lIDMF);
    for (const api::MiembroGrupo& m : grupo.miembros) {
      if (grupo.id == lIDMF) avance.Realizar(m.id);
    }
    transaccion.Commit();
    bPorUnicaVez = r == api::ResultadoOcurrencia::Terminada;
    return true;
  } catch (const std::exception& e) {
    Reportar(msg::kErrorDarRealizada, e);
    return false;
  }
}

bool clsMovFrecuente::DarRealizadaFechaAgenda(int32_t lIDMF) {
  bool por_unica_vez = false;
  return DarRealizadaFechaAgenda(lIDMF, por_unica_vez);
}

}  // namespace kivmovfrec
