// Writing iCalendar files (RFC 5545) for the agenda: one VCALENDAR with one VEVENT per entry
// and one VTODO per task-list item that falls due.
//
// Lines end in CRLF and are folded at 75 octets (continuation lines start with one blank; a
// UTF-8 character is never split). TEXT values escape "\", ";", "," and line breaks.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/variant.h"

namespace kivmovfrec::cli {

struct EventoIcs {
  std::string uid;          // unique and stable for the same occurrence
  Date inicio;              // local time; at midnight it is written as an all-day date
  std::string resumen;      // SUMMARY
  std::string descripcion;  // DESCRIPTION ("" = none)
};

// One item of a task list on one due date of its list.
struct TareaIcs {
  std::string uid;          // unique and stable for the same item and occurrence
  Date vence;               // DUE: a date alone at midnight, else local date and time
  std::string resumen;      // SUMMARY
  std::string descripcion;  // DESCRIPTION ("" = none)
  int prioridad = 0;        // PRIORITY 1 (highest) .. 9; 0 = none
  bool completada = false;  // STATUS:COMPLETED, otherwise NEEDS-ACTION
};

// The whole file: the events, then the to-dos. `sello` is the DTSTAMP in UTC,
// "aaaammddThhmmssZ".
std::string Calendario(const std::vector<EventoIcs>& eventos, std::string_view sello,
                       const std::vector<TareaIcs>& tareas = {});

// The current moment in UTC as DTSTAMP wants it.
std::string SelloUtcAhora();

// TEXT escaping and folding, exposed for their own sake.
std::string EscaparTexto(std::string_view texto);
std::string Plegar(std::string_view linea);  // one content line -> folded, CRLF-terminated

}  // namespace kivmovfrec::cli
