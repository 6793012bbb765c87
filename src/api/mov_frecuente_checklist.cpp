// clsMovFrecuente's task-list members: to the bin, occurrence done, and reading lists. The
// queries live with the task-list editor (ui/checklist); the next due date is the schedule rule
// every other occurrence uses (api/avance_agenda.h, schedule/next_occurrence.h).
#include <algorithm>
#include <string>

#include "api/avance_agenda.h"
#include "api/derechos.h"
#include "kivmovfrec/mov_frecuente.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "storage/tabla_movimientos.h"
#include "ui/checklist/consultas_lista.h"
#include "ui/checklist/frm_check_list.h"

namespace kivmovfrec {
namespace {

// Every live item of list `lista` (query of the state operations) gets `estado`, row by row.
void EstadoDeItems(Connection& cn, int32_t lista, enuEstadoMF estado, Date ahora) {
  auto rs = cn.OpenResultset(checklist::SqlItemsVivos(lista));
  for (; !rs->Eof(); rs->MoveNext()) {
    rs->Edit();
    rs->Set("MFrEstado", ToInt(estado));
    rs->Set("MFrFechaEstado", ahora);
    rs->Update();
  }
  rs->Close();
}

}  // namespace

bool clsMovFrecuente::ConfirmarListaTareas(int pregunta, char letra) {
  const int idioma = Idioma();
  const std::string titulo(resources::Texto(msg::kTituloMovimientosFrecuentes, idioma));
  IMessages& mensajes = *ctx_.servicios.messages;
  if (mensajes.Show({std::string(resources::Texto(pregunta, idioma)), titulo, MsgIcon::Question,
                     MsgButtons::YesNo, 1}) == kMsgNo) {
    return false;
  }
  if (!api::TieneDerecho(*ctx_.servicios.rights, empresa_,
                         api::OpcionDeTipo(ToInt(enuTipoMovFrec::CheckList)), letra)) {
    mensajes.Show({resources::Lineas({msg::kSinDerechos, msg::kConsulteAdministrador}, idioma),
                   titulo, MsgIcon::Exclamation, MsgButtons::OK, 1});
    return false;
  }
  return true;
}

bool clsMovFrecuente::CheckListAPapelera(int32_t lCL) {
  ultimo_error_.clear();
  if (!ctx_.cn) return false;
  try {
    if (!ConfirmarListaTareas(msg::kConfirmaEnviarPapelera, 'E')) return false;
    Connection& cn = *ctx_.cn;
    Transaccion transaccion(cn);
    clsRegMovimientoFrecuente lista(ctx_.Reloj());
    if (!storage::CargarMovimiento(cn, lCL, lista)) return false;
    if (lista.Tipo() != enuTipoMovFrec::CheckList) return false;
    const Date ahora = ctx_.Reloj().Now();
    lista.Estado(enuEstadoMF::Papelera);
    lista.FechaEstado(ahora);
    storage::GuardarMovimiento(cn, *ctx_.servicios.db, lista, ctx_.parametros);
    EstadoDeItems(cn, lCL, enuEstadoMF::Papelera, ahora);
    transaccion.Commit();
    return true;
  } catch (const std::exception& e) {
    Reportar(msg::kErrorCambiarEstado, e);
    return false;
  }
}

bool clsMovFrecuente::CheckListDarPorRealizado(int32_t lID) {
  ultimo_error_.clear();
  if (!ctx_.cn) return false;
  try {
    if (!ConfirmarListaTareas(msg::kConfirmaCumplirLista, 'M')) return false;
    Connection& cn = *ctx_.cn;
    Transaccion transaccion(cn);
    // Claimed before it is read, so that two processes never count one occurrence twice.
    if (cn.Execute(api::AvanceAgenda::kSqlReservar, {Variant(lID)}) == 0) return false;
    clsMFTipo mf(ctx_.servicios.clock);
    if (!mf.Load(cn, lID, ctx_.Reloj())) return false;
    clsRegMovimientoFrecuente& lista = *mf.MovFrecuente();
    clsRegRecurrencia& rec = *mf.Recurrencia();
    if (lista.Tipo() != enuTipoMovFrec::CheckList ||
        lista.Estado() != ToInt(enuEstadoMF::EnProceso) || rec.ID() < 1) {
      return false;
    }

    bool termina = true;
    if (const std::optional<schedule::Schedule> agenda = api::AgendaDe(rec)) {
      const schedule::AfterOccurrence siguiente = schedule::NextOccurrence(*agenda, Calendario());
      termina = siguiente.ended;
      if (!termina) rec.FechaProxima(api::TextoProxima(siguiente.due));
    }
    const Date ahora = ctx_.Reloj().Now();
    rec.NumOcurrencia(std::max(rec.NumOcurrencia(), 1) + 1);
    rec.Posponer(0);
    if (termina) lista.Estado(enuEstadoMF::Realizado);
    lista.FechaEstado(ahora);
    mf.Save(cn, *ctx_.servicios.db, 0, ctx_.parametros);
    EstadoDeItems(cn, lID, enuEstadoMF::Realizado, ahora);
    transaccion.Commit();
    return true;
  } catch (const std::exception& e) {
    Reportar(msg::kErrorDarRealizada, e);
    return false;
  }
}

int32_t clsMovFrecuente::ShowCheckList(int32_t IDCheckList, int16_t UID, bool bNewItem) {
  ultimo_error_.clear();
  if (!ctx_.cn) return 0;
  try {
    const int idioma = Idioma();
    const int16_t tipo = ToInt(enuTipoMovFrec::CheckList);
    IMessages& mensajes = *ctx_.servicios.messages;
    if (!api::TieneDerecho(*ctx_.servicios.rights, empresa_, api::OpcionDeTipo(tipo),
                           IDCheckList > 0 ? 'M' : 'A')) {
      api::MostrarSinDerechos(mensajes, tipo, idioma);
      return 0;
    }
    if (!FormulariosDisponibles(msg::kTituloListaTareas, "la lista de tareas")) return 0;
    checklist::frmCheckList editor(
        ctx_, Calendario(), static_cast<int16_t>(empresa_),
        [this](int accion, const std::exception& e) { Reportar(accion, e); });
    const int32_t id = editor.Mostrar(IDCheckList, UID, bNewItem);
    if (id == 0 && IDCheckList > 0 && !checklist::CargarListaTareas(*ctx_.cn, IDCheckList)) {
      ultimo_error_ = "no existe la lista de tareas " + std::to_string(IDCheckList);
    }
    return id;
  } catch (const std::exception& e) {
    Reportar(msg::kErrorGrabarMovimiento, e);
    return 0;
  }
}

std::optional<ListaTareas> clsMovFrecuente::CargarListaTareas(int32_t lID) {
  if (!ctx_.cn) return std::nullopt;
  return checklist::CargarListaTareas(*ctx_.cn, lID);
}

std::vector<ListaTareas> clsMovFrecuente::ListasTareas() {
  if (!ctx_.cn) return {};
  return checklist::ListasDeEmpresa(*ctx_.cn, empresa_);
}

}  // namespace kivmovfrec
