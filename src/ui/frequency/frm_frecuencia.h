// frmFrecuencia: the frequency editor behind the date calculator's EditarFrecuencia ("Definido
// ..." in the frequency lists). Titled "Frecuencia".
//
// cfUnidad "&Repetir:" chooses the kind: every so many days, weeks (7-day steps), months or
// years, a weekday of the month, or the last business day of the month; tCada "C&ada:" the step
// (1..99999; months for the last two kinds). For a weekday of the month, cfOrdinal "&El:"
// (primer .. cuarto, último) and cfDiaSemana "&Día:" (lunes .. domingo); for the plain kinds,
// cfFinDeSemana "Si cae en &fin de semana:" (leave it, next or previous business day). Every
// change redraws lDescripcion (the frequency in words) and lProximos (the first five due dates
// from dtDesde "&Desde:", today by the context's clock to begin with). bfFinish "&Aceptar" refuses a step that is not
// a whole number in range ("El campo ingresado no es válido.", focus on tCada with its text
// selected) and hands the frequency back; bfCancel "&Cancelar" and the close box hand nothing.
#pragma once

#include <optional>

#include "kivmovfrec/contexto.h"
#include "schedule/date_calculator.h"

namespace kivmovfrec::ui {

class frmFrecuencia final : public schedule::IFrequencyEditor {
 public:
  // Uses the context's form factory, messages, clock and language at each Edit (without a clock
  // dtDesde starts empty); the context outlives the editor.
  explicit frmFrecuencia(const ContextoMF& ctx) : ctx_(ctx) {}

  // Shows the editor on `initial` (a once-only or unreadable frequency starts as monthly).
  // Nothing when cancelled. Throws std::logic_error when the context has no form factory.
  std::optional<schedule::Frequency> Edit(const schedule::Frequency& initial) override;

 private:
  const ContextoMF& ctx_;
};

// The first `n` due dates of `f` for a schedule started on `desde` ("dd/mm/yyyy" each, joined by
// ", "); one date for a once-only frequency.
std::string ProximosVencimientos(const schedule::Frequency& f, Date desde, int n = 5);

}  // namespace kivmovfrec::ui
