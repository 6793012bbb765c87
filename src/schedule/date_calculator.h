// The suite's date calculator: every calendar step of a schedule goes through it, so the
// wizard, the task lists and the façade agree on the calendar.
//
// Calendar rules:
// - Day and week steps add whole days. Every step keeps the time of day.
// - Month and year steps land on the schedule's anchor day in the target month, or on that
//   month's last day when it is shorter. The anchor is the day of the month of the start date
//   as long as the current due date lies on it (its day is the start's day, or the last day of
//   its month when that month has fewer days); otherwise - a due date moved by hand, or no
//   start date - it is the current due date's own day. So monthly from 31/01/2024 gives 29/02,
//   31/03, 30/04; from 30/01/2024 29/02, 30/03, 30/04; from 28/01/2023 28/02, 28/03; yearly
//   from 29/02/2024 28/02/2025, 28/02/2026, 28/02/2027, 29/02/2028. A due date of a schedule
//   started on the 31st that was moved to the 15th steps to the 15th from then on.
// - Rule units 4 and 5 (n-th weekday, last business day of every k months): from a date on the
//   rule, the rule's date k months on; from any other date (a start, a date moved by hand) the
//   rule's first date after it. The start plays no part.
// - Units 6 and 7 (a plain unit moved off the weekend): the due date's unmoved date is found
//   among itself and the weekend days moved onto it - the earliest that belongs to the series
//   started on the start date, or the due date itself when none does - and the plain series
//   steps on from it until its moved date falls after the due date. Every 1 or 2 days, two
//   unmoved dates can move onto one day; it is one due date.
// - ProximaFecha, which is given no start, anchors on the date it steps from.
// - A once-only code (step 0) has no next date: the date given comes back.
// - CalcularFinal steps from its start date, anchored on it, and works on dates without their
//   time of day. Its first occurrence is FirstDueDate(start) (kivmovfrec/frecuencia.h).
// An unreadable code makes ProximaFecha, ProximaFechaAnclada and CalcularFinal throw
// VbError(5); DescribirFrecuencia returns "" for it.
#pragma once

#include <memory>
#include <optional>

#include "kivmovfrec/services.h"
#include "schedule/frequency.h"

namespace kivmovfrec::schedule {

// The dialog in which a user composes a frequency of his own (unit and step). Implemented by
// the console host and by the Qt front end; tests script it.
class IFrequencyEditor {
 public:
  virtual ~IFrequencyEditor() = default;
  // Shows the dialog starting from `initial`; nothing when the user cancels.
  virtual std::optional<Frequency> Edit(const Frequency& initial) = 0;
};

// Due date after `fecha` under `f` for a schedule started on `inicio` (the rules above; only
// the day of the month of `inicio` matters).
Date NextDate(const Frequency& f, Date inicio, Date fecha);
// The frequency in words: "Una sola vez", "Todos los días", "Cada 15 días", "Todas las
// semanas", "Todos los meses", "Cada 2 meses", "Todos los años", "El segundo lunes de cada mes",
// "El último día hábil de cada 3 meses", "Todos los meses, o el día hábil siguiente si cae en
// sábado o domingo", ...
std::string Describe(const Frequency& f);

class DateCalculator : public IDateCalculator {
 public:
  // `editor` may be null: EditarFrecuencia then behaves as a cancelled dialog.
  explicit DateCalculator(std::shared_ptr<IFrequencyEditor> editor = nullptr)
      : editor_(std::move(editor)) {}

  // Returns the composed code and its description ("200002 Cada 2 meses"), or "" on cancel.
  std::string EditarFrecuencia() override;
  void CalcularFinal(std::string_view code, Date inicio, int32_t& cantidad, Date& final_) override;
  Date ProximaFecha(std::string_view code, Date fecha) override;
  Date ProximaFechaAnclada(std::string_view code, Date inicio, Date fecha) override;
  std::string DescribirFrecuencia(std::string_view code) override;

  // The frequency the editor starts from on the next EditarFrecuencia.
  void Inicial(const Frequency& f) { initial_ = f; }

 private:
  std::shared_ptr<IFrequencyEditor> editor_;
  Frequency initial_{FrequencyUnit::Months, 1};
};

}  // namespace kivmovfrec::schedule
