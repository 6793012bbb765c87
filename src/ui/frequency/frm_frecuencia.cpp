#include "ui/frequency/frm_frecuencia.h"

#include <stdexcept>
#include <string>

#include "kivmovfrec/vb.h"
#include "platform/vb/convert.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "ui/texto_numeros.h"

namespace kivmovfrec::ui {

using schedule::Frequency;
using schedule::FrequencyUnit;
using schedule::WeekendShift;

std::string ProximosVencimientos(const Frequency& f, Date desde, int n) {
  Date fecha = schedule::FirstDueDate(f, desde);
  std::string out = vb::Format(Variant(fecha), "dd/mm/yyyy");
  for (int i = 1; i < n && !f.once(); ++i) {
    fecha = schedule::NextDate(f, desde, fecha);
    out += ", " + vb::Format(Variant(fecha), "dd/mm/yyyy");
  }
  return out;
}

std::optional<Frequency> frmFrecuencia::Edit(const Frequency& initial) {
  const SuiteServices& s = ctx_.servicios;
  if (!s.formularios) throw std::logic_error("no hay dónde mostrar el editor de frecuencias");
  const int idioma = ctx_.parametros.idioma;
  const auto texto = [&](int n) { return std::string(resources::Texto(n, idioma)); };
  Frequency inicial = initial;
  if (inicial.once() || schedule::FrequencyFromCode(inicial.code()) != inicial)
    inicial = Frequency{FrequencyUnit::Months, 1};

  auto f = s.formularios->Crear("frmFrecuencia");
  f->Titulo(texto(msg::kTituloFrecuencia));
  const auto lista = [&](const char* nombre, int caption,
                         std::initializer_list<std::pair<int, int32_t>> entradas,
                         int32_t elegido) -> controles::ILista& {
    controles::ILista& l = f->CrearLista(nombre);
    l.Caption(texto(caption));
    for (const auto& [t, dato] : entradas) {
      l.Agregar(texto(t), dato);
      if (dato == elegido) l.Indice(l.Cantidad() - 1);
    }
    if (l.Indice() < 0) l.Indice(0);
    return l;
  };
  controles::ILista& unidad = lista("cfUnidad", msg::kCapRepetir,
                                    {{msg::kUnidadDias, 0},
                                     {msg::kUnidadSemanas, 1},
                                     {msg::kUnidadMeses, 2},
                                     {msg::kUnidadAnios, 3},
                                     {msg::kUnidadDiaDeLaSemana, 4},
                                     {msg::kUnidadUltimoDiaHabil, 5}},
                                    static_cast<int32_t>(inicial.unit));
  controles::ITexto& cada = f->CrearTexto("tCada");
  cada.Caption(texto(msg::kCapCada));
  cada.Hint(texto(msg::kAyudaCada));
  cada.MaxLength(5);
  cada.Text(std::to_string(inicial.step));
  controles::ILista& ordinal = lista("cfOrdinal", msg::kCapOrdinal,
                                     {{msg::kOrdinalPrimer, 1},
                                      {msg::kOrdinalSegundo, 2},
                                      {msg::kOrdinalTercer, 3},
                                      {msg::kOrdinalCuarto, 4},
                                      {msg::kOrdinalUltimo, schedule::kLastWeekday}},
                                     inicial.ordinal);
  controles::ILista& dia = lista("cfDiaSemana", msg::kCapDiaSemana,
                                 {{msg::kLunes, 1},
                                  {msg::kMartes, 2},
                                  {msg::kMiercoles, 3},
                                  {msg::kJueves, 4},
                                  {msg::kViernes, 5},
                                  {msg::kSabado, 6},
                                  {msg::kDomingo, 7}},
                                 inicial.weekday);
  controles::ILista& fin_de_semana =
      lista("cfFinDeSemana", msg::kCapFinDeSemana,
            {{msg::kNoMover, 0},
             {msg::kDiaHabilSiguiente, static_cast<int32_t>(WeekendShift::NextBusinessDay)},
             {msg::kDiaHabilAnterior, static_cast<int32_t>(WeekendShift::PreviousBusinessDay)}},
            static_cast<int32_t>(inicial.shift));
  controles::ITexto& desde = f->CrearTexto("dtDesde", 0, controles::ClaseControl::Fecha);
  desde.Caption(texto(msg::kCapDesde));
  if (s.clock) desde.Text(vb::Format(Variant(s.clock->Today()), "dd/mm/yyyy"));
  controles::IControl& descripcion = f->CrearEtiqueta("lDescripcion");
  controles::IControl& proximos = f->CrearEtiqueta("lProximos");
  controles::IBoton& aceptar = f->CrearBoton("bfFinish");
  aceptar.Caption(texto(msg::kCapAceptar));
  aceptar.PorDefecto(true);
  controles::IBoton& cancelar = f->CrearBoton("bfCancel");
  cancelar.Caption(texto(msg::kCapCancelar));
  cancelar.Cancela(true);

  // The frequency as the controls hold it, when they hold a valid one.
  const auto compuesta = [&]() -> std::optional<Frequency> {
    const auto paso = LeerEnteroPositivo(cada.Text(), schedule::kMaxStep);
    if (!paso) return std::nullopt;
    Frequency r;
    r.unit = static_cast<FrequencyUnit>(unidad.Dato(unidad.Indice()));
    r.step = *paso;
    if (r.unit == FrequencyUnit::WeekdayOfMonth) {
      r.ordinal = ordinal.Dato(ordinal.Indice());
      r.weekday = dia.Dato(dia.Indice());
    } else if (r.unit != FrequencyUnit::LastBusinessDay) {
      r.shift = static_cast<WeekendShift>(fin_de_semana.Dato(fin_de_semana.Indice()));
    }
    if (schedule::FrequencyFromCode(r.code()) != r) return std::nullopt;
    return r;
  };
  const auto redibujar = [&] {
    const auto u = static_cast<FrequencyUnit>(unidad.Dato(unidad.Indice()));
    ordinal.Enabled(u == FrequencyUnit::WeekdayOfMonth);
    dia.Enabled(u == FrequencyUnit::WeekdayOfMonth);
    fin_de_semana.Enabled(u != FrequencyUnit::WeekdayOfMonth &&
                          u != FrequencyUnit::LastBusinessDay);
    const auto fr = compuesta();
    descripcion.Caption(fr ? schedule::Describe(*fr) : "");
    const Variant d(desde.Text());
    proximos.Caption(fr && vb::IsDate(d)
                         ? texto(msg::kCapProximos) + " " + ProximosVencimientos(*fr, vb::CDate(d))
                         : "");
  };
  for (controles::ILista* l : {&unidad, &ordinal, &dia, &fin_de_semana}) l->AlElegir(redibujar);
  cada.AlCambiar(redibujar);
  desde.AlCambiar(redibujar);

  std::optional<Frequency> resultado;
  aceptar.AlPulsar([&] {
    resultado = compuesta();
    if (!resultado) {
      if (s.messages)
        s.messages->Show(resources::Mensaje({msg::kCampoNoValido}, msg::kTituloFrecuencia,
                                            MsgIcon::Exclamation, MsgButtons::OK, idioma));
      cada.SetFocus();
      cada.SeleccionarTodo();
      return;
    }
    f->Cerrar(1);
  });
  cancelar.AlPulsar([&] { f->Cerrar(0); });
  f->AlPedirCierre([&] { f->Cerrar(0); });

  redibujar();
  unidad.SetFocus();
  if (f->MostrarModal() != 1) return std::nullopt;
  return resultado;
}

}  // namespace kivmovfrec::ui
