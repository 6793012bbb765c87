// The link text: how the movement wizard and the link dialog exchange a group of linked
// movements. It is a list of pairs "id:orden" separated by "|", one pair per movement of the
// group, e.g. "12:1|15:2|7:3" (movement 12 runs first, then 15, then 7).
//
// Reading is strict, because the text decides what is written to MFrMovVinculado and
// MFrMVOrden: blanks around the numbers are allowed, anything else that is not a pair of whole
// numbers is refused with a message naming the offending pair. An order must fit the stored
// byte (1..255) and a movement may appear only once. Orders are not checked for uniqueness
// here: that is the order step's rule (PrimerOrdenIncorrecto), applied before a text is built.
//
// Nothing here touches a database and nothing throws.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivmovfrec::ui {

// The highest execution order a movement can have (MFrMVOrden is a byte; 0 means unplaced).
inline constexpr int32_t kOrdenMaximo = 255;

struct Vinculo {
  int32_t id = 0;     // MFrID; 0 only for the movement being edited while it is new
  int32_t orden = 0;  // MFrMVOrden, 1..kOrdenMaximo
  friend bool operator==(const Vinculo&, const Vinculo&) = default;
};

// Outcome of reading a link text: the pairs in text order, or the reason it was refused (a
// catalogue text naming the pair by its position, 1-based).
struct LecturaVinculos {
  std::vector<Vinculo> vinculos;
  std::string error;
  bool ok() const { return error.empty(); }
};

// Reads a link text. An empty or blank text is an empty group.
LecturaVinculos LeerVinculos(std::string_view texto);

// Writes pairs as a link text, in the order given ("" for none). Reading the result gives the
// same pairs back whenever they are valid.
std::string EscribirVinculos(const std::vector<Vinculo>& vinculos);

// Reads one order as typed in the order grid: a whole number 1..kOrdenMaximo, blanks around it
// allowed; nothing for an empty cell or any other text.
std::optional<int32_t> LeerOrden(std::string_view celda);

// The order step's rule: every row needs an order and no two rows may share one (they need not
// be consecutive). Returns the index of the first offending row in grid order (a row without a
// valid order, or one repeating an order of an earlier row), or nothing when all are valid.
std::optional<size_t> PrimerOrdenIncorrecto(const std::vector<std::string>& celdas);

}  // namespace kivmovfrec::ui
