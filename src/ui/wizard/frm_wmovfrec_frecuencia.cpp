// frmWMovFrec, frequency fields (the frequency panel of an entry or voucher, and the lower half
// of the notice form): the frequency list and the composed frequency, the last date and count
// kept in step through the date calculator, the notice date's limits, the summary labels, and
// the schedule record written from the fields.
#include <algorithm>
#include <cmath>
#include <string>

#include "core/resumen_recurrencia.h"
#include "kivmovfrec/frecuencia.h"
#include "kivmovfrec/vb.h"
#include "platform/vb/format.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "schedule/frequency.h"
#include "ui/wizard/frm_wmovfrec_partes.h"

namespace kivmovfrec::ui {

using namespace controles;

namespace {

constexpr double kMaxDiasNotificar = 255;

std::string Dia(Date d) {
  return vb::FormatDate(d, "dd/mm/yyyy");
}

// A date field's day, nothing when blank or not a date.
std::optional<Date> DiaDe(const ITexto& t) {
  const std::optional<Date> d = vb::ParseDate(vb::Trim(t.Text()));
  return d ? std::optional<Date>(vb::DateOnly(*d)) : std::nullopt;
}

// A count typed in tQOcurre; 0 when blank or not a whole number.
int32_t Cantidad(const ITexto& t) {
  const std::string s = vb::Trim(t.Text());
  if (s.empty() || s.size() > 9 || s.find_first_not_of("0123456789") != std::string::npos) return 0;
  return std::stoi(s);
}

// "hh:nn" of a moment; "" at midnight (a time not given is kept as 00:00).
std::string HoraDe(Date d) {
  const std::string h = vb::FormatDate(d, "hh:nn");
  return h == "00:00" ? "" : h;
}

}  // namespace

void frmWMovFrec::Estado::CrearFrecuencia(int p) {
  IFormulario& f = *form;
  frecuencia = &f.CrearLista("cfFrecuencia", p);
  frecuencia->Caption(Texto(msg::kCapOcurre));
  for (const schedule::FrequencyEntry& e : schedule::FrequencyCatalogue())
    frecuencia->Agregar(schedule::FrequencyCaption(e, idioma), e.code);
  hl_ocurre = &f.CrearBoton("hlOcurre", p, ClaseControl::Enlace);
  vence = &f.CrearTexto("dtVence", p, ClaseControl::Fecha);
  vence->Caption(Texto(msg::kCapPrimerVencimiento));
  hora = &f.CrearTexto("tHora", p, ClaseControl::Hora);
  hora->Caption(Texto(msg::kCapHora));
  q_ocurre = &f.CrearTexto("tQOcurre", p);
  q_ocurre->Caption(Texto(msg::kCapNumeroDeVeces));
  q_ocurre->MaxLength(4);
  hasta = &f.CrearTexto("dtHasta", p, ClaseControl::Fecha);
  hasta->Caption(Texto(msg::kCapUltimaFecha));
  notificar = &f.CrearTexto("dtNotificar", p, ClaseControl::Fecha);
  notificar->Caption(Texto(msg::kCapNotificar));
  hora_not = &f.CrearTexto("tHoraNot", p, ClaseControl::Hora);
  postergado = &f.CrearEtiqueta("lPostergado", p);
  inicio = &f.CrearEtiqueta("lbInicio", p);
  ya_ocurrio = &f.CrearEtiqueta("lbYaOcurrio", p);

  const int error = msg::kErrorSetearPanel;
  frecuencia->AlElegir([this] { Atrapar(error, [this] { ElegirFrecuencia(); }); });
  hl_ocurre->AlPulsar([this] { Atrapar(error, [this] { EditarFrecuencia(); }); });
  vence->AlCambiar([this] { Atrapar(error, [this] { CalcularFinal(); }); });
  q_ocurre->AlCambiar([this] { Atrapar(error, [this] { CalcularFinal(); }); });
  hasta->AlCambiar([this] { Atrapar(error, [this] { CambioHasta(); }); });
  notificar->AlCambiar([this] { Atrapar(error, [this] { CambioNotificar(); }); });
}

void frmWMovFrec::Estado::CargarFrecuencia() {
  const clsRegRecurrencia& rec = *mf->Recurrencia();
  frecuencia->Indice(-1);
  indice_frecuencia = -1;
  CopiarAgenda(rec);
  const std::optional<Date> proxima = vb::ParseDate(rec.FechaProxima());
  postergado->Caption(
      rec.Postergado() > 0 && proxima
          ? Texto(msg::kPostergado) +
                Dia(Date{vb::DateOnly(*proxima).serial - rec.NotificarDias() + rec.Postergado()})
          : "");
  inicio->Caption(rec.ID() > 0 ? core::TextoSeInicio(rec, idioma) : "");
  ya_ocurrio->Caption(
      rec.ID() > 0 && core::MostrarYaOcurrio(rec) ? core::TextoYaOcurrio(rec, idioma) : "");
}

void frmWMovFrec::Estado::CopiarAgenda(const clsRegRecurrencia& rec) {
  const std::optional<schedule::Frequency> f = schedule::ParseFrequency(rec.Frecuencia());
  const std::optional<Date> proxima = vb::ParseDate(rec.FechaProxima());
  if (f && proxima) {
    const int32_t codigo = f->code();
    const std::optional<size_t> i = schedule::FindFrequencyEntry(codigo);
    if (i) {
      frecuencia->Indice(static_cast<int>(*i));
    } else {
      frecuencia_definida = codigo;
      frecuencia->Indice(IndiceDeDato(*frecuencia, schedule::kCodeUserDefined));
    }
    indice_frecuencia = frecuencia->Indice();
  }
  vence->Text(proxima ? Dia(*proxima) : "");
  hora->Text(proxima ? HoraDe(*proxima) : "");
  q_ocurre->Text(rec.CantidadVeces() > 0 ? std::to_string(rec.CantidadVeces()) : "");
  const std::optional<Date> final_ = vb::ParseDate(rec.FechaFinal());
  hasta->Text(final_ ? Dia(*final_) : "");
  if (proxima && rec.NotificarDias() > 0) {
    // Rounded to the minute: the days are kept as a single-precision float.
    const double minutos = std::round((proxima->serial - rec.NotificarDias()) * 1440.0);
    const Date aviso{minutos / 1440.0};
    notificar->Text(Dia(aviso));
    hora_not->Text(HoraDe(aviso));
  } else {
    notificar->Text("");
    hora_not->Text("");
  }
  RotuloVencimiento();
  // The stored schedule keeps its last date, not its count: the count is worked out again.
  if (final_ && rec.CantidadVeces() <= 0) CalcularFinal();
}

int32_t frmWMovFrec::Estado::FrecuenciaElegida() const {
  if (frecuencia->Indice() < 0) return -1;
  const int32_t dato = frecuencia->Dato(frecuencia->Indice());
  return dato == schedule::kCodeUserDefined ? frecuencia_definida : dato;
}

void frmWMovFrec::Estado::RotuloVencimiento() {
  const int32_t codigo = FrecuenciaElegida();
  vence->Caption(Texto(codigo == 0 ? msg::kCapVencimiento : msg::kCapPrimerVencimiento));
  hl_ocurre->Caption(
      codigo >= 0 ? dep.calendario->DescribirFrecuencia(schedule::FormatFrequencyCode(codigo))
                  : "");
}

void frmWMovFrec::Estado::ElegirFrecuencia() {
  if (DatoElegido(*frecuencia, -2) == schedule::kCodeUserDefined) {
    EditarFrecuencia();
    return;
  }
  indice_frecuencia = frecuencia->Indice();
  RotuloVencimiento();
  CalcularFinal();
}

void frmWMovFrec::Estado::EditarFrecuencia() {
  const std::string texto = dep.calendario->EditarFrecuencia();
  const std::optional<schedule::Frequency> f =
      schedule::ParseFrequency(texto.substr(0, std::min<size_t>(texto.size(), 6)));
  if (!f) {
    // Cancelled: the previous choice stays; a list left without one says so.
    frecuencia->Indice(indice_frecuencia);
    if (indice_frecuencia < 0) Rechazar(msg::kEditeFrecuencia, *frecuencia);
    return;
  }
  const std::optional<size_t> i = schedule::FindFrequencyEntry(f->code());
  if (i) {
    frecuencia->Indice(static_cast<int>(*i));
  } else {
    frecuencia_definida = f->code();
    frecuencia->Indice(IndiceDeDato(*frecuencia, schedule::kCodeUserDefined));
  }
  indice_frecuencia = frecuencia->Indice();
  RotuloVencimiento();
  CalcularFinal();
}

void frmWMovFrec::Estado::CalcularFinal() {
  const int32_t codigo = FrecuenciaElegida();
  if (codigo < 0) return;
  std::optional<Date> desde = DiaDe(*vence);
  if (!desde) desde = DiaDe(*notificar);
  if (!desde) return;
  int32_t cantidad = Cantidad(*q_ocurre);
  if (cantidad <= 0 && !vb::Trim(q_ocurre->Text()).empty()) return;  // refused when finishing
  Date final_{};
  if (cantidad <= 0) {
    const std::optional<Date> h = DiaDe(*hasta);
    if (!h) return;  // neither count nor last date: no end
    final_ = *h;
  }
  dep.calendario->CalcularFinal(schedule::FormatFrequencyCode(codigo), *desde, cantidad, final_);
  hasta->Text(Dia(final_));
  const std::string veces = std::to_string(cantidad);
  q_ocurre->MaxLength(std::max<int>(4, static_cast<int>(veces.size())));
  q_ocurre->Text(veces);
}

void frmWMovFrec::Estado::CambioHasta() {
  const std::optional<Date> h = DiaDe(*hasta);
  if (!h) return;
  const std::optional<Date> v = DiaDe(*vence);
  const std::optional<Date> n = DiaDe(*notificar);
  if ((v && h->serial < v->serial) || (!v && n && h->serial < n->serial)) {
    Rechazar(msg::kFechaHastaMenor, *hasta);
    hasta->Text("");
    CalcularFinal();
    return;
  }
  q_ocurre->Text("");  // the count follows the last date typed
  CalcularFinal();
}

void frmWMovFrec::Estado::CambioNotificar() {
  const std::optional<Date> n = DiaDe(*notificar);
  const std::optional<Date> v = DiaDe(*vence);
  if (n && v && v->serial - n->serial > kMaxDiasNotificar)
    Rechazar(msg::kDiferenciaNotificar, *notificar);
}

void frmWMovFrec::Estado::AgendaARegistro(clsRegRecurrencia& rec) {
  const int32_t codigo = FrecuenciaElegida();
  const schedule::Frequency f = *schedule::FrequencyFromCode(codigo);
  const std::string hora_texto = vb::Trim(hora->Text());
  const double fraccion = hora_texto.empty() ? 0.0 : vb::ParseDate(hora_texto)->serial;
  // A calendar rule falls due on its first date on or after the day typed.
  const Date vencimiento = schedule::FirstDueDate(f, Date{DiaDe(*vence)->serial + fraccion});
  const std::string proxima =
      Dia(vencimiento) + " " + (hora_texto.empty() ? std::string("00:00") : hora_texto);
  const std::string texto_codigo = schedule::FormatFrequencyCode(codigo);

  const std::optional<Date> antes = vb::ParseDate(rec.FechaProxima());
  const bool misma = rec.ID() > 0 && rec.Frecuencia() == texto_codigo && antes &&
                     antes->serial == vb::ParseDate(proxima)->serial &&
                     vb::ParseDate(rec.FechaInicio());
  if (!misma) {
    rec.FechaInicio(proxima);
    rec.NumOcurrencia(1);
    rec.Postergado(0.0f);
  }
  rec.Frecuencia(texto_codigo);
  rec.TipoRecurrencia(static_cast<enuTipoRecurrencia>(f.recordUnit()));
  rec.CadaCuanto(static_cast<int16_t>(std::min<int32_t>(f.step, INT16_MAX)));
  rec.FechaProxima(proxima);

  if (const std::optional<Date> aviso = DiaDe(*notificar)) {
    const std::string hn = vb::Trim(hora_not->Text());
    const double fn = hn.empty() ? 0.0 : vb::ParseDate(hn)->serial;
    rec.NotificarDias(static_cast<float>(vb::ParseDate(proxima)->serial - (aviso->serial + fn)));
    rec.Notificar(1);
  } else {
    rec.NotificarDias(0.0f);
    rec.Notificar(0);
  }

  const int32_t cantidad = Cantidad(*q_ocurre);
  const std::optional<Date> final_ = DiaDe(*hasta);
  rec.SinVencimiento(0);
  if (f.once()) {
    rec.FechaFinal(Dia(vencimiento));
    rec.CantidadVeces(1);
  } else if (final_ || cantidad > 0) {
    int32_t veces = cantidad;
    Date ultima = final_ ? *final_ : Date{};
    if (!final_) {
      dep.calendario->CalcularFinal(texto_codigo, vb::DateOnly(vencimiento), veces, ultima);
    }
    rec.FechaFinal(Dia(ultima));
    rec.CantidadVeces(static_cast<int16_t>(std::min<int32_t>(veces, INT16_MAX)));
  } else {
    rec.FechaFinal("");
    rec.CantidadVeces(0);
    rec.SinVencimiento(1);
  }
}

}  // namespace kivmovfrec::ui
