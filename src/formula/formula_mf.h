// clsFormulaMF: a line formula between its stored form and the form shown to the user.
//
// Stored form: "[" id ":" arguments "]" references (see formula/elementos.h), numbers,
// operators and [query] / [codescript] blocks. Display form: each reference whose id is in the
// catalogue becomes its caption followed by the arguments' display texts in double quotes,
// separated by "; ", in parentheses: `Saldo al día de hoy("1.1.01 Caja")`; an entry without
// arguments is shown as `Diferencia()`. A double quote inside a shown text is written twice.
//
// How each argument is shown depends on the catalogue column it belongs to. The arguments of a
// reference fill the entry's parameters in order:
//   * a lookup query (first column, then second column): one argument, the id of a row; shown
//     as the row's display text (third column of the query run with [pFindID] = id);
//   * a line marker ([CuentaMovFrecuente], [CuentaProyectoCentroCosto]): three arguments,
//     account; project; department, naming a line of a movement (for "Cuenta Ingresada" the
//     movement being edited, for the other-movement entries the movement chosen in the first
//     argument); shown as account code and name, then the project's and the department's
//     abbreviations when the line has them, joined by blanks, read in one UNION ALL statement
//     (SqlTextoLinea);
//   * another marker word ([PedirDato], [RestoCuenta], ...): every remaining argument shown as
//     it is stored (the prompt of "Pedir valor", for instance).
// An argument that cannot be shown (no row found, database error, not a number) is shown as it
// is stored, so nothing is lost; reading such a display text back then fails.
//
// Reading a display text back (LeerVisible) scans it left to right. Outside brackets and
// quotes the characters " ()+-*/\" separate elements. At the start of an element a catalogue
// caption (compared without regard to case, the longest one that ends at a separator) followed
// by "(" starts a function: its arguments are quoted texts separated by ";" up to ")". Each
// argument is resolved through the entry's parameter:
//   * lookup: the query runs with [pFindKey] = the shown text and [pFindID] = the match-nothing
//     comparison; the first column of the first row is the id. When that finds nothing, the
//     rows of the query are compared with the text (key and display columns, trimmed, without
//     regard to case), so a display text such as "Dólar estadounidense (U$S)" reads back too.
//     A text holding a single quote is refused before any SQL is built;
//   * line: the lines of the movement (the lines given with LineasEnMemoria first when the
//     movement is the one being edited, then the stored ones) are shown as above and the first
//     whose text equals the shown text (trimmed, without regard to case) gives account;
//     project; department;
//   * other: the text as typed ("[", "]" and ";" are refused, they would break the reference).
// [query] / [codescript] blocks are copied untouched; numbers, operators and other words are
// copied as they are. Failures: an unknown or unclosed bracket, a quote outside a function, a
// caption without "(", a wrong number of arguments, an argument that resolves to nothing, a NUL
// character or bytes that are not UTF-8 (the text is then refused as a whole, before any
// lookup). The
// result then carries the 1-based character position (code points) where reading failed and a
// Spanish explanation; Resultado() gives ":e:" + position. Nothing here throws and nothing is
// written to the database.
//
// Lifetime: the object shares the connection; it keeps no state between calls besides the
// context and the in-memory lines. Not thread-safe (one per editor or wizard).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formula/catalogo_fx.h"
#include "formula/elementos.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/presentacion.h"

namespace kivmovfrec::formula {

struct ContextoFormula {
  int32_t empresa = 0;              // [pEmp]
  int32_t id_mov = 0;               // [pIDMov]: the movement being edited (0 = new)
  bool mostrar_codigo_cta = false;  // [pCodCta]: accounts shown with their codes

  // Company number and its MostrarCodigoCta (not 0 = codes shown).
  static ContextoFormula De(const clsEmpresa& empresa, int32_t id_mov);
};

// A line of the movement being edited as the editor holds it (it may not be saved yet).
struct LineaVisible {
  ClaveLinea clave;
  std::string codigo;        // account code
  std::string nombre;        // account name
  std::string proyecto;      // project abbreviation ("" = none)
  std::string departamento;  // department abbreviation ("" = none)

  // Code, name and the abbreviations present, trimmed and joined by blanks.
  std::string Texto() const;
};

// A display text read back (the struct is public: kivmovfrec/presentacion.h).
using LecturaFormula = kivmovfrec::LecturaFormulaVisible;

class clsFormulaMF {
 public:
  // `cn` may be null: every lookup then finds nothing.
  clsFormulaMF(std::shared_ptr<Connection> cn, ContextoFormula ctx);

  const ContextoFormula& Contexto() const { return ctx_; }
  void Contexto(ContextoFormula ctx) { ctx_ = ctx; }
  // Lines of the movement being edited, used for "Cuenta Ingresada" before the stored ones.
  void LineasEnMemoria(std::vector<LineaVisible> lineas) { lineas_ = std::move(lineas); }

  // The display form of a stored formula (see above). Text without references is returned
  // unchanged; references with an id outside the catalogue are left as typed.
  std::string AVisible(std::string_view guardada) const;

  // The stored form of a display text, or where and why reading failed.
  LecturaFormula LeerVisible(std::string_view visible) const;
  // LeerVisible(...).Resultado(): the stored form or ":e:" + position.
  std::string AGuardada(std::string_view visible) const { return LeerVisible(visible).Resultado(); }

  // Display text of row `id` of a lookup query (third column), nothing when there is no row or
  // the query fails. `pre_id` fills [pPreID].
  std::optional<std::string> TextoConsulta(std::string_view consulta, int64_t id,
                                           int32_t pre_id = 0) const;
  // Id (first column) of the row of a lookup query shown as `texto` (see LeerVisible). Nothing
  // when no row matches, the query fails or the text holds a single quote.
  std::optional<int64_t> BuscarConsulta(std::string_view consulta, std::string_view texto,
                                        int32_t pre_id = 0) const;
  // Display text of a line of movement `movimiento` (SqlTextoLinea); nothing when the movement
  // has no line with that account or the statement fails.
  std::optional<std::string> TextoLinea(int32_t movimiento, const ClaveLinea& linea) const;
  // The line of movement `movimiento` shown as `texto`.
  std::optional<ClaveLinea> BuscarLinea(int32_t movimiento, std::string_view texto) const;

  // True when movement `movimiento` has that line (the in-memory lines when it is the movement
  // being edited and they were given, else the stored ones).
  bool LineaExiste(int32_t movimiento, const ClaveLinea& linea) const;

  // True when every reference of a stored formula names a catalogue entry and every argument
  // still names an existing row: lookups found by id, lines found in their movement (for
  // "Cuenta Ingresada" among the in-memory lines when given, else the stored ones).
  bool ArgumentosValidos(std::string_view guardada) const;

  // The statement that reads a line's display parts: rows (1, code, name), (2, 0, project
  // abbreviation), (3, 0, department abbreviation).
  static std::string SqlTextoLinea(int32_t cuenta, int32_t movimiento, int32_t proyecto,
                                   int32_t departamento);

 private:
  std::optional<std::vector<ClaveLinea>> LineasGuardadas(int32_t movimiento) const;
  std::string MostrarReferencia(const EntradaFx& e, const std::vector<std::string>& args) const;

  std::shared_ptr<Connection> cn_;
  ContextoFormula ctx_;
  std::vector<LineaVisible> lineas_;
  clsFxMovFrec catalogo_;
};

}  // namespace kivmovfrec::formula
