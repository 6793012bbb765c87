// The agenda (clsMovFrecuente::Agenda): every due date and notice date of a range for the
// pending scheduled movements, notices and task lists of the façade's company, optionally with
// the amounts each due date of an entry or voucher would post.
//
// Occurrences are stepped from each schedule's stored next due date by the same rule that marks
// an occurrence done and that the main job applies (the façade's date calculator, the schedule's
// end by last date or count), so the agenda shows exactly the due dates those will run. The
// notice of an occurrence falls NotificarDias before its due date; the current occurrence's
// notice is put off by its Postergado days. Dates before the range are stepped over.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kivmovfrec/export.h"
#include "kivmovfrec/traza_fx.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec {

// What one due date would post, computed as of that date without prompts (the movement total
// [ImpMov] counts as 0, [PedirDato] has no value). A formula reading the occurrence count
// ([CantidadOcurrencia]) sees the stored count, which belongs to the next due date.
struct KMF_API ImportesAgenda {
  bool ok = false;       // every line has a result
  TrazaCalculoFx traza;  // lines, amounts, totals and the error when !ok
};

struct KMF_API OcurrenciaAgenda {
  Date fecha{};            // the day it falls on: the due date, or the notice date
  bool aviso = false;      // a notice date (else a due date)
  int32_t movimiento = 0;  // MFrID
  int16_t tipo = 0;        // MFrTipo
  std::string nombre;      // MFrNombre
  std::string memo;        // MFrMemo
  int32_t ocurrencia = 0;  // the schedule's occurrence number of that due date
  Date vencimiento{};      // the due date it belongs to (= fecha for a due date)
  // The notice moment of that due date when the schedule notifies (NotificarDias above 0), on
  // both entries of the occurrence and whether or not it falls in the range.
  std::optional<Date> notificacion;
  // Asked for, on due dates of entries (Tipo 1, 4) and vouchers (Tipo 2) only.
  std::optional<ImportesAgenda> importes;
};

struct KMF_API ResultadoAgenda {
  // By date, then movement; a notice before a due date of the same movement and moment.
  std::vector<OcurrenciaAgenda> ocurrencias;
  // Schedules that could not be stepped, each with the movement and why (an unreadable next due
  // date or frequency code); their occurrences listed before the failure are kept.
  std::vector<std::string> omitidos;
};

}  // namespace kivmovfrec
