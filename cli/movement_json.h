// A frequent movement as JSON, both ways, for ver / exportar (writing) and importar (reading).
//
// Shape: {"MovFrecuente": {...}, "Recurrencia": {...} | null, "Renglones": [{...}, ...]}.
// Keys are the records' property names in property order:
//   MovFrecuente  Estado FechaEstado Vista Detalle Imagen ID Empresa Tipo DelSistema Nombre Memo
//                 Ente Modalidad TipoImporte Moneda Recurrencia MovVinculado OrdenMovVinculado
//                 UsuarioAlta UsuarioAutoriza
//   Recurrencia   ID NotificarDias Notificar SinVencimiento FechaProxima CantidadVeces CadaCuanto
//                 TipoRecurrencia EraNotificacion Postergado Posponer, then the members kept
//                 inside the component: Frecuencia (six digits) FechaInicio FechaFinal
//                 NumOcurrencia
//   Renglones[]   idMF CuentaCodigo CuentaNombre ProyectoAbreviacion DepartamentoAbreviacion
//                 Cuenta Proyecto Departamento Orden AlDebe Formula ImporteCta ImporteMF Moneda
//                 TipoCambio ValorTC Detalle
// Values: dates "dd/mm/aaaa" or "dd/mm/aaaa hh:nn[:ss]" (null when there is none); AlDebe a
// JSON boolean; numbers as JSON numbers (single-precision fields written with their shortest
// decimal form, so 2.6 stays 2.6); texts as strings ("" when empty, never null). The schedule's
// members that have no column of their own are written as the stored ones give them:
// TipoRecurrencia and CadaCuanto are the unit and step of Frecuencia (for the calendar rules of
// units 4 and 5, kivmovfrec/frecuencia.h, the unit is 2: they count months), Notificar is 1 when
// NotificarDias is above 0, Posponer is Postergado rounded, CantidadVeces is 0 (the end of a
// stored schedule is its FechaFinal).
//
// Reading (importar) is strict: nothing given is dropped without a word. Every problem is
// reported with the path of the offending key ("$[2].Renglones[0].Cuenta") and reading goes on
// to find the others:
//   - unknown keys, wrong JSON types, integers out of the property's range, fractional numbers
//     where a whole one is expected (a key given twice: ParseSinClavesRepetidas);
//   - Tipo other than 1..6, Estado other than 0, 1, 9, DelSistema other than 0, 1,
//     TipoRecurrencia other than 0..3, a Frecuencia that is no six-digit code;
//   - dates that do not read (accepted: dd/mm/aaaa or aaaa-mm-dd, optionally followed by
//     hh:nn or hh:nn:ss);
//   - a single quote in Nombre, Memo or a line's Detalle (such texts end up in SQL);
//   - a Recurrencia object without FechaProxima;
//   - schedule members without a column that disagree with the stored ones they are kept
//     through (above): TipoRecurrencia or CadaCuanto other than Frecuencia's (without
//     Frecuencia, the code is made from them), Notificar against NotificarDias, Posponer
//     against Postergado (alone, Posponer sets Postergado). A CantidadVeces above 0 becomes the
//     FechaFinal that IDateCalculator::CalcularFinal gives from the first date (FechaInicio, else
//     FechaProxima, without its time), as the screens work it out; it is refused when a given
//     FechaFinal yields another count, when the code yields another count (once only), and
//     with SinVencimiento 1;
//   - a schedule whose FechaProxima is its first date (no FechaInicio, or the same day) on a
//     date its code does not fall on (schedule::FirstDueDate): a Saturday moved to Monday, the
//     1st for the second Monday of every month.
// Missing keys take the value of a new record (a missing FechaEstado is "now"); "Recurrencia"
// missing is null, "Renglones" missing is []. Null is accepted for texts ("") and dates (none).
// Ignored on input, whatever they hold (their type is still checked): the lines' joined fields
// (CuentaCodigo, CuentaNombre, ProyectoAbreviacion, DepartamentoAbreviacion, Moneda), the
// display form FormulaVisible that ver / exportar add (formula_visible.h) and idMF, and the keys
// that tie the header to its schedule (MovFrecuente.Recurrencia, Recurrencia.ID): those belong
// to the database, and importar takes them from the stored movement.
// Values quoted in messages are cut (vb::ShortForMessage).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "kivmovfrec/mf_tipo.h"
#include "kivmovfrec/nombres.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec::cli {

// The movement as JSON (shape above). Recurrencia is null when the schedule record is empty
// (no ID and no FechaProxima).
nlohmann::ordered_json MovimientoJson(const clsMFTipo& mf);

// A movement read from JSON: the aggregate to save and where it came from.
struct MovimientoLeido {
  std::shared_ptr<clsMFTipo> mf;
  bool con_agenda = false;  // the file gave a Recurrencia object
};

// Reads one movement object found at `ruta` ("$" or "$[2]"); `calendario` turns a CantidadVeces
// into the last date; `reloj` stamps the new header's FechaEstado. Problems are appended to
// `errores` as "ruta.Clave: what is wrong" (Spanish); the result is meaningful only when none were
// added.
MovimientoLeido LeerMovimiento(const nlohmann::ordered_json& j, const std::string& ruta,
                               IDateCalculator& calendario, std::shared_ptr<IClock> reloj,
                               std::vector<std::string>& errores);

// Parses a JSON text as nlohmann::ordered_json::parse does (throwing its parse_error), and also
// appends "ruta.Clave: clave repetida" to `errores` for every key that appears twice in one
// object: the parser would keep only one of the two values.
nlohmann::ordered_json ParseSinClavesRepetidas(const std::string& texto,
                                               std::vector<std::string>& errores);

// A date given in a JSON file: dd/mm/aaaa or aaaa-mm-dd, optionally followed by a blank (or
// "T") and hh:nn or hh:nn:ss. Nothing when it is neither or names no real moment.
std::optional<Date> LeerFechaJson(const std::string& texto);

}  // namespace kivmovfrec::cli
