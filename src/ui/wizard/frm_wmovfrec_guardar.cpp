// frmWMovFrec, the save after the confirmation: the link checks, the panels moved into the
// movement's records, a private contact made public, the movement saved through the façade's
// save, the group's rows rewritten from the link text, and a notice linked to its users. All of
// it runs in one transaction: a refusal or an error leaves the database and the records as they
// were.
#include <string>

#include "kivmovfrec/vb.h"
#include "resources/msg.h"
#include "ui/links/grupo_vinculos.h"
#include "ui/links/texto_vinculos.h"
#include "ui/user_picker/eleccion_usuarios.h"
#include "ui/wizard/frm_wmovfrec_partes.h"

namespace kivmovfrec::ui {

namespace {

// Two schedules that fall due alike: same code, next due moment and last date.
bool MismaAgenda(const clsRegRecurrencia& a, const clsRegRecurrencia& b) {
  const auto dia = [](const std::string& t) {
    const std::optional<Date> d = vb::ParseDate(t);
    return d ? d->serial : -1.0;
  };
  return a.Frecuencia() == b.Frecuencia() && dia(a.FechaProxima()) == dia(b.FechaProxima()) &&
         dia(a.FechaFinal()) == dia(b.FechaFinal());
}

}  // namespace

bool frmWMovFrec::Estado::RevisarVinculos() {
  const std::vector<int> rechazo =
      RevisarGrupo(*ctx.cn, mf->MovFrecuente()->ID(), EsAgendado(), vinculos);
  if (rechazo.empty()) return true;
  Rechazar({rechazo[0], rechazo[1]}, *vincular);
  return false;
}

void frmWMovFrec::Estado::PanelesARegistros() {
  clsRegMovimientoFrecuente& m = *mf->MovFrecuente();
  if (m.ID() == 0) m.UsuarioAlta(usuario);
  m.Nombre(vb::Trim(nombre->Text()));
  m.Memo(leyenda->Text());
  if (tipo == 3) {
    m.Empresa(static_cast<int16_t>(sin_empresa->Marcada() ? empresa : 0));
  } else {
    if (m.Empresa() == 0) m.Empresa(static_cast<int16_t>(empresa));
    m.TipoImporte(static_cast<int16_t>(DatoElegido(*tipo_importe)));
    m.UsuarioAutoriza(static_cast<int16_t>(DatoElegido(*autoriza)));
  }
  if (tipo == 1) {
    m.Modalidad(static_cast<int16_t>(DatoElegido(*libro)));
    m.Imagen(static_cast<int16_t>(DatoElegido(*imagen)));
  } else if (tipo == 2) {
    m.Ente(static_cast<int16_t>(contacto.value_or(0)));
    m.Modalidad(static_cast<int16_t>(DatoElegido(*tipo_comprobante)));
    m.Moneda(static_cast<int16_t>(DatoElegido(*moneda)));
  }
  if (EsAgendado()) {
    AgendaARegistro(*mf->Recurrencia());
  } else {
    m.Recurrencia(0);  // the save deletes a schedule the movement had
    mf->Recurrencia()->FechaProxima("");
  }
}

int32_t frmWMovFrec::Estado::Guardar() {
  if (tipo != 3 && !RevisarVinculos()) return 0;
  const clsRegMovimientoFrecuente cabecera = *mf->MovFrecuente();
  const clsRegRecurrencia agenda = *mf->Recurrencia();
  // A schedule changed or removed: the linked movements that shared it may follow.
  std::vector<int32_t> iguales;
  bool eliminar = false;
  if (tipo != 3 && agenda.ID() > 0) {
    clsRegRecurrencia nueva = agenda;
    if (EsAgendado()) AgendaARegistro(nueva);
    eliminar = !EsAgendado();
    if (eliminar || !MismaAgenda(nueva, agenda)) iguales = AgendasIguales(agenda);
    const int aviso = eliminar ? msg::kSeEliminoAgenda : msg::kSeCambioAgenda;
    const int pregunta =
        eliminar ? msg::kEliminarAgendasVinculadas : msg::kCambiarAgendasVinculadas;
    if (!iguales.empty() && !Preguntar({aviso, pregunta})) iguales.clear();
  }
  auto restaurar = [&] {
    *mf->MovFrecuente() = cabecera;
    *mf->Recurrencia() = agenda;
  };
  try {
    Connection& cn = *ctx.cn;
    Transaccion transaccion(cn);
    PanelesARegistros();
    if (tipo == 2 && contacto && contacto_a_publico) {
      auto rs =
          cn.OpenResultset("Select * from genEntes Where EntID = " + std::to_string(*contacto));
      if (!rs->Eof()) {
        rs->Edit();
        rs->Set("EntOwner", Variant::Null());
        rs->Update();
      }
      rs->Close();
    }
    const int32_t id = dep.guardar(*mf);
    if (tipo == 3) {
      std::string codigos;
      for (int32_t u : LeerCodigosUsuario(ente->Text()))
        codigos += (codigos.empty() ? "" : ",") + std::to_string(u);
      if (!ctx.servicios.db->VincularAvisos(id, codigos)) {
        transaccion.Rollback();
        restaurar();
        Rechazar(msg::kCampoNoValido, *ente);  // a receiver who is unknown or disabled
        return 0;
      }
    } else {
      RegrabarGrupo(id, cabecera.MovVinculado() > 0 ? cabecera.MovVinculado() : cabecera.ID());
      AgendasVinculadas(iguales, eliminar);
    }
    transaccion.Commit();
    if (!EsAgendado() && mf->Recurrencia()->ID() > 0)
      mf->Recurrencia(std::make_shared<clsRegRecurrencia>());
    return id;
  } catch (...) {
    restaurar();
    throw;
  }
}

void frmWMovFrec::Estado::RegrabarGrupo(int32_t id, int32_t grupo_antes) {
  const auto puesto =
      ui::RegrabarGrupo(*ctx.cn, id, mf->MovFrecuente()->ID(), grupo_antes, vinculos);
  if (!puesto) return;
  mf->MovFrecuente()->MovVinculado(puesto->grupo);
  mf->MovFrecuente()->OrdenMovVinculado(static_cast<uint8_t>(puesto->orden));
}

std::vector<int32_t> frmWMovFrec::Estado::AgendasIguales(const clsRegRecurrencia& antes) {
  const int32_t propio = mf->MovFrecuente()->ID();
  std::vector<int32_t> iguales;
  for (const Vinculo& v : LeerVinculos(vinculos).vinculos) {
    if (v.id <= 0 || v.id == propio) continue;
    clsMFTipo otro(ctx.servicios.clock);
    if (otro.Load(*ctx.cn, v.id) && otro.Recurrencia()->ID() > 0 &&
        MismaAgenda(*otro.Recurrencia(), antes)) {
      iguales.push_back(v.id);
    }
  }
  return iguales;
}

void frmWMovFrec::Estado::AgendasVinculadas(const std::vector<int32_t>& ids, bool eliminar) {
  const clsRegRecurrencia& nueva = *mf->Recurrencia();
  for (int32_t id : ids) {
    clsMFTipo otro(ctx.servicios.clock);
    if (!otro.Load(*ctx.cn, id)) continue;
    if (eliminar) {
      otro.MovFrecuente()->Recurrencia(0);  // the save deletes the schedule row
    } else {
      clsRegRecurrencia& r = *otro.Recurrencia();
      r.Frecuencia(nueva.Frecuencia());
      r.TipoRecurrencia(nueva.TipoRecurrencia());
      r.CadaCuanto(nueva.CadaCuanto());
      r.FechaInicio(nueva.FechaInicio());
      r.FechaProxima(nueva.FechaProxima());
      r.FechaFinal(nueva.FechaFinal());
      r.CantidadVeces(nueva.CantidadVeces());
      r.SinVencimiento(nueva.SinVencimiento());
      r.NotificarDias(nueva.NotificarDias());
      r.Notificar(nueva.Notificar());
    }
    dep.guardar(otro);
  }
}

}  // namespace kivmovfrec::ui
