// Reading the stored form of a formula into its pieces.
//
// A stored formula is plain text in which three kinds of pieces stand side by side:
//   * references "[" id ":" arguments "]": id is 1 to 3 decimal digits, the arguments run to
//     the next "]" and are separated by ";" (brackets do not nest);
//   * blocks "[query]" ... "[/query]" and "[codescript]" ... "[/codescript]" (tags in any letter
//     case): handed whole to the evaluator and never looked into here; a block without its
//     closing tag runs to the end of the text;
//   * everything else (numbers, operators, blanks, words such as "[ImpMov]", stray brackets),
//     kept as text.
// Concatenating the pieces' texts in order gives the formula back exactly.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivmovfrec::formula {

struct ElementoFx {
  enum class Tipo { Texto, Referencia, Bloque };
  Tipo tipo = Tipo::Texto;
  size_t inicio = 0;       // byte offset of the piece in the formula
  std::string texto;       // the piece as written (brackets and tags included)
  int id = 0;              // Referencia: the number before ":"
  std::string argumentos;  // Referencia: the text between ":" and "]"
};

// The pieces of `formula`, in order. Never throws.
std::vector<ElementoFx> DividirFormula(std::string_view formula);

// The arguments of a reference split at ";": "" gives none, "a;;b" gives "a", "", "b".
std::vector<std::string> SepararArgumentos(std::string_view argumentos);

// The line a line argument names: account id, project code, department code (0 = none).
struct ClaveLinea {
  int32_t cuenta = 0;
  int32_t proyecto = 0;
  int32_t departamento = 0;
  friend bool operator==(const ClaveLinea&, const ClaveLinea&) = default;
  // "cuenta;proyecto;departamento", the form stored in references.
  std::string Texto() const;
};

// Reads a line key from three argument texts (an empty or missing project / department counts
// as 0). Nothing when the account is missing or a part is not a whole number.
std::optional<ClaveLinea> LeerClaveLinea(const std::vector<std::string>& partes, size_t desde = 0);
// The same from "cuenta;proyecto;departamento".
std::optional<ClaveLinea> LeerClaveLinea(std::string_view texto);

// True when `formula` holds a reference of entry 1 ("Cuenta Ingresada") naming line `linea`
// (compared as numbers, so "141;0;0", "141;;" and "141" all name account 141 without project
// and department).
bool ReferenciaLinea(std::string_view formula, const ClaveLinea& linea);

// The lines of the same movement that `formula` refers to (entry 1), in order of appearance,
// each once. References whose argument is not a line key are skipped.
std::vector<ClaveLinea> LineasReferidas(std::string_view formula);

// True when `formula` holds a reference with that catalogue id.
bool ContieneReferencia(std::string_view formula, int id);

}  // namespace kivmovfrec::formula
