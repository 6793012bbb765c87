// frmWMovFrec, the checks made when finishing: general panel, lines, frequency fields, notice
// form. Each stops at the first refusal, which is shown on the panel holding the field at fault
// with the focus on it (Rechazar).
#include <set>
#include <string>

#include "kivmovfrec/vb.h"
#include "resources/msg.h"
#include "storage/sql_texto.h"
#include "ui/user_picker/eleccion_usuarios.h"
#include "ui/wizard/frm_wmovfrec_partes.h"

namespace kivmovfrec::ui {

using namespace controles;

namespace {

constexpr double kMaxDiasNotificar = 255;

// What a date or time field holds: blank, a valid value, or text that is not one.
enum class Lectura { Vacio, Valido, Invalido };

Lectura LeerFecha(const ITexto& t, Date& d) {
  const std::string s = vb::Trim(t.Text());
  if (s.empty()) return Lectura::Vacio;
  const std::optional<Date> v = vb::ParseDate(s);
  if (!v || v->serial < 1) return Lectura::Invalido;
  d = vb::DateOnly(*v);
  return Lectura::Valido;
}

// A time of day "hh:mm": its fraction of a day.
Lectura LeerHora(const ITexto& t, double& fraccion) {
  const std::string s = vb::Trim(t.Text());
  fraccion = 0;
  if (s.empty()) return Lectura::Vacio;
  const std::optional<Date> v = vb::ParseDate(s);
  if (!v || v->serial < 0 || v->serial >= 1 || s.find(':') == std::string::npos)
    return Lectura::Invalido;
  fraccion = v->serial;
  return Lectura::Valido;
}

bool ConComilla(const ITexto& t) {
  return storage::TieneComilla(t.Text());
}

}  // namespace

// The name (required) and the legend or comment: neither may hold a single quote.
bool frmWMovFrec::Estado::ValidarNombreYLeyenda() {
  if (vb::Trim(nombre->Text()).empty() || ConComilla(*nombre)) {
    Rechazar(msg::kCampoNoValido, *nombre);
    return false;
  }
  if (ConComilla(*leyenda)) {
    Rechazar(msg::kCampoNoValido, *leyenda);
    return false;
  }
  return true;
}

bool frmWMovFrec::Estado::ValidarGeneral() {
  if (!ValidarNombreYLeyenda()) return false;
  if (tipo == 2) {
    if (!contacto) {
      Rechazar(msg::kCampoNoValido, *ente);
      return false;
    }
    if (tipo_comprobante->Indice() < 0) {
      Rechazar(msg::kCampoNoValido, *tipo_comprobante);
      return false;
    }
  }
  if (tipo_importe->Indice() < 0) {
    Rechazar(msg::kCampoNoValido, *tipo_importe);
    return false;
  }
  if (tipo == 2) {
    auto rs = ctx.cn->OpenReadOnly(SqlTipoComprobante(DatoElegido(*tipo_comprobante)));
    const bool obligatoria = !rs->Eof() && Entero(rs->Get("TCoNumeroObligatorio")) != 0;
    rs->Close();
    if (!ImportePermitido(obligatoria, DatoElegido(*tipo_importe))) {
      Rechazar(msg::kTipoImporteNumeracion, *tipo_importe);
      return false;
    }
  }
  if (autoriza->Indice() < 0) {
    Rechazar(msg::kCampoNoValido, *autoriza);
    return false;
  }
  if (tipo == 2 && moneda->Indice() < 0) {
    Rechazar(msg::kCampoNoValido, *moneda);
    return false;
  }
  return true;
}

bool frmWMovFrec::Estado::ValidarCuentas() {
  if (form->PanelVisible() != kPanelCuentas) MostrarPanel(kPanelCuentas);
  return cuentas->ValidarRenglones() &&
         cuentas->ValidarTotales(EsAgendado(), static_cast<int16_t>(DatoElegido(*tipo_importe, 0)));
}

bool frmWMovFrec::Estado::ValidarFrecuencia() {
  if (FrecuenciaElegida() < 0) {
    Rechazar(msg::kCampoNoValido, *frecuencia);
    return false;
  }
  Date dia_vence{}, dia_aviso{}, dia_hasta{};
  if (LeerFecha(*vence, dia_vence) != Lectura::Valido) {
    Rechazar(msg::kCampoNoValido, *vence);
    return false;
  }
  const Lectura aviso = LeerFecha(*notificar, dia_aviso);
  if (aviso == Lectura::Invalido) {
    Rechazar(msg::kCampoNoValido, *notificar);
    return false;
  }
  const std::string veces = vb::Trim(q_ocurre->Text());
  if (!veces.empty() &&
      (veces.size() > 5 || veces.find_first_not_of("0123456789") != std::string::npos)) {
    Rechazar(msg::kCampoNoValido, *q_ocurre);
    return false;
  }
  const Lectura final_ = LeerFecha(*hasta, dia_hasta);
  if (final_ == Lectura::Invalido) {
    Rechazar(msg::kCampoNoValido, *hasta);
    return false;
  }
  if (final_ == Lectura::Valido && dia_hasta.serial < dia_vence.serial) {
    Rechazar(msg::kFechaHastaMenor, *hasta);
    return false;
  }
  double f_hora = 0, f_hora_not = 0;
  if (LeerHora(*hora, f_hora) == Lectura::Invalido) {
    Rechazar(msg::kCampoNoValido, *hora);
    return false;
  }
  const Lectura hora_aviso = LeerHora(*hora_not, f_hora_not);
  if (aviso == Lectura::Valido) {
    const int32_t importe = tipo == 3 ? 0 : DatoElegido(*tipo_importe, 0);
    if (importe == kImporteFijo || importe == kImporteAutomatico) {
      Rechazar(msg::kNotificacionImporteFijo, *notificar);
      return false;
    }
    if (dia_aviso.serial + f_hora_not >= dia_vence.serial + f_hora) {
      Rechazar(msg::kNotificacionAntesDeVencimiento, *notificar);
      return false;
    }
    if (dia_vence.serial - dia_aviso.serial > kMaxDiasNotificar) {
      Rechazar(msg::kDiferenciaNotificar, *notificar);
      return false;
    }
  }
  if (hora_aviso == Lectura::Invalido) {
    Rechazar(msg::kCampoNoValido, *hora_not);
    return false;
  }
  return true;
}

bool frmWMovFrec::Estado::ValidarAviso() {
  if (!ValidarNombreYLeyenda()) return false;
  // Every piece of the receivers' text must be a user code.
  const std::vector<int32_t> codigos = LeerCodigosUsuario(ente->Text());
  size_t piezas = 0;
  for (const std::string& p : vb::Split(ente->Text(), ","))
    if (!vb::Trim(p).empty()) ++piezas;
  if (codigos.empty() || codigos.size() != piezas) {
    Rechazar(msg::kCampoNoValido, *ente);
    return false;
  }
  if (std::set<int32_t>(codigos.begin(), codigos.end()).size() != codigos.size()) {
    Rechazar(msg::kUsuariosDuplicados, *ente);
    return false;
  }
  return ValidarFrecuencia();
}

}  // namespace kivmovfrec::ui
