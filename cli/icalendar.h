// Writing iCalendar files (RFC 5545) for the agenda: one VCALENDAR with one VEVENT per due
// date and one VTODO per task-list item that falls due; a notified due date carries its notice
// as a VALARM of its event (ACTION:DISPLAY, TRIGGER a duration before the event's start).
//
// Lines end in CRLF and are folded at 75 octets (continuation lines start with one blank; a
// UTF-8 character is never split). TEXT values escape "\", ";", "," and line breaks.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/variant.h"

namespace kivmovfrec::cli {

struct EventoIcs {
  std::string uid;             // unique and stable for the same occurrence (UidVencimiento)
  Date inicio;                 // local time; at midnight it is written as an all-day date
  std::string resumen;         // SUMMARY
  std::string descripcion;     // DESCRIPTION ("" = none)
  std::optional<Date> alarma;  // the notice moment, local time; nothing = no VALARM
  std::string alarma_texto;    // the VALARM's DESCRIPTION
};

// The UID of the event of one due date: the movement, the due date's day, the company and the
// database, so every export of that occurrence gives it the same UID and no other occurrence,
// company or database shares it. `base` names the database (a hash of it goes in the UID).
std::string UidVencimiento(int32_t movimiento, Date vencimiento, int32_t empresa,
                           std::string_view base);

// A TRIGGER duration: `segundos` from the event's start, "-P2DT12H", "PT0S", "PT1H".
std::string Duracion(int64_t segundos);

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
