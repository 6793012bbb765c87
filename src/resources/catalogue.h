// The message catalogue: every text the component shows (messages, questions, titles, captions,
// button captions, hints, list entries, grid headers) is a numbered entry.
//
// Numbering. Code asks for a number n (0..999, the constants of resources/msg.h) and the text
// shown is entry n + 1000 × language, where language is the suite setting "Idioma" and 0 counts
// as 1. The Spanish texts are therefore entries 1000–1999; they are the only ones shipped. An
// entry missing in another language falls back to the Spanish one.
//
// Entry blocks (Spanish):
//   1000–1005  window titles; the title for a movement of type t is asked as t − 1
//              (1000 entries, 1001 vouchers, 1002 notices, 1003 system entries, 1004 task lists,
//              1005 task-list items)
//   1007       "Movimientos Frecuentes", the caption of the component's messages
//   1027–1089  wizard list entries and captions whose numbers the suite fixed
//   1101–1103  amount types; 1300–1304 wizard buttons; 1400–1410 frequency list
//   1472–1473  prompts of the formula evaluator
//   1500–1699  texts numbered by this component, by subsystem:
//                1500–1509 shared messages (1501–1506: the "Error al…" texts of the
//                façade's members), 1510–1529 shared captions,
//                1530–1539 formula engine, 1540–1549 schedule summaries,
//                1550–1599 movement wizard, 1600–1649 task lists, 1650–1679 linked movements,
//                1680–1689 formula editor, 1690–1699 user picker
//   1700–1729  frequency editor; 1730–1731 who owns an entry (wizard)
//   1800–1871  validation messages and questions (1801–1803 save questions, 800 + type)
//   1904–1954  error texts
//
// Multi-line messages. A message whose second line has a number of its own is shown by joining
// the lines with one "\n" (see Lineas): kSinDerechos + kConsulteAdministrador,
// kVinculadoEliminado + kVerifiqueAntesDeGrabar, kMasDeUnAgendado + kAgendadoVidaPropia,
// kOrdenIncorrecto + kVerifiqueOrden, kVinculadoEsAgendado + kConvertirAAgendado,
// kSeCambioAgenda + kCambiarAgendasVinculadas, kSeEliminoAgenda + kEliminarAgendasVinculadas.
// The only entry that holds line breaks itself is kContactoPrivado (three lines).
//
// Placeholders. "[p]" in a text stands for a value supplied by the caller (Texto with p).
// Captions keep their "&" access-key markers; texts keep their blanks (some begin or end with
// one on purpose and are marked in the table).
//
// Nothing here throws: an unknown number gives the empty text.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "kivmovfrec/services.h"

namespace kivmovfrec::resources {

// One row of the catalogue. `bordes` marks a text that begins or ends with a blank on purpose
// (it is concatenated with other text by its caller).
struct EntradaCatalogo {
  int entrada;
  std::string_view texto;
  bool bordes = false;
};

// Every entry, sorted by entry number, each number once. Static storage.
std::span<const EntradaCatalogo> Entradas();

// Entry number for asked number n in language `idioma` (idioma ≤ 1 counts as 1).
constexpr long long NumeroEntrada(int n, int idioma) {
  return n + 1000LL * (idioma < 1 ? 1 : idioma);
}

// The text of the entry itself (1000–1999 for Spanish); "" when there is none.
std::string_view Entrada(int entrada);

// The text asked as number n (0..999) in language `idioma`; the Spanish text when the language
// lacks it; "" for a number outside 0..999 or without a text. Callers always pass the asked
// number, never the entry number (Texto(870), not Texto(1870)).
std::string_view Texto(int n, int idioma = 1);

// The same with every "[p]" replaced by `p` (inserted text is not scanned again).
std::string Texto(int n, int idioma, std::string_view p);

// Several texts joined by "\n", for messages shown on more than one line.
std::string Lineas(std::initializer_list<int> numeros, int idioma = 1);

// A catalogue message as the message service takes it: the lines `lineas` (see Lineas) under
// the caption numbered `titulo`, with its icon, buttons and default button; the request carries
// the number of its first line.
MessageRequest Mensaje(std::initializer_list<int> lineas, int titulo, MsgIcon icono,
                       MsgButtons botones, int idioma, int boton_por_defecto = 1);

}  // namespace kivmovfrec::resources
