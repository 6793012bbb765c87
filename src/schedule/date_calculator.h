// The suite's date calculator: every calendar step of a schedule goes through it, so the
// wizard, the task lists and the façade agree on the calendar.
//
// Calendar rules:
// - Day and week steps add whole days; the time of day is kept.
// - Month and year steps keep the day of the month and fall back to the last day of a shorter
//   month; a date that is the last day of its month steps to the last day of the target month.
//   So monthly from 31/01/2024 gives 29/02/2024, 31/03/2024, 30/04/2024.
// - A once-only code (step 0) has no next date: ProximaFecha returns the date it was given.
// - CalcularFinal works on dates without their time of day.
// An unreadable code makes ProximaFecha and CalcularFinal throw VbError(5); DescribirFrecuencia
// returns "" for it.
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

// Date after `fecha` under `f` (the rules above).
Date NextDate(const Frequency& f, Date fecha);
// `fecha` moved by `months` calendar months with the end-of-month rule above.
Date AddMonthsKeepingMonthEnd(Date fecha, int months);
// The frequency in words: "Una sola vez", "Todos los días", "Cada 15 días", "Todas las
// semanas", "Todos los meses", "Cada 2 meses", "Todos los años", ...
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
  std::string DescribirFrecuencia(std::string_view code) override;

  // The frequency the editor starts from on the next EditarFrecuencia.
  void Inicial(const Frequency& f) { initial_ = f; }

 private:
  std::shared_ptr<IFrequencyEditor> editor_;
  Frequency initial_{FrequencyUnit::Months, 1};
};

}  // namespace kivmovfrec::schedule
