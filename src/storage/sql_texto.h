// Building blocks of SQL text: the guard against quotes in text a person typed, and literals
// of texts being looked up. Dates in the component's own statements are bound values.
//
// The component writes its statements as concatenated text in the suite's dialect. Values that
// a person typed reach SQL text only through the helpers here: names and comments holding a
// single quote are refused before any statement is built (RechazarComilla); texts being looked
// up are written as literals with their quotes doubled (LiteralTexto). Values written through a
// result set are bound as parameters and never become SQL text.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec::storage {

// Why a typed text was refused.
enum class MotivoRechazo {
  Comilla,    // a single quote, which would break the SQL built from the text
  NoEsTexto,  // a NUL or bytes that are not UTF-8
  Largo,      // more characters than the column holds
};

// Refusal of a typed text that cannot be saved as typed. `campo` names the field as the user
// knows it ("Nombre", "Memo"); what() is a Spanish sentence for the message box.
class TextoRechazado : public std::invalid_argument {
 public:
  TextoRechazado(std::string campo, std::string texto,
                 MotivoRechazo motivo = MotivoRechazo::Comilla, size_t largo_maximo = 0);
  const std::string& campo() const { return campo_; }
  const std::string& texto() const { return texto_; }
  MotivoRechazo motivo() const { return motivo_; }

 private:
  std::string campo_;
  std::string texto_;
  MotivoRechazo motivo_;
};

// True when `texto` holds a single quote (').
bool TieneComilla(std::string_view texto);

// Throws TextoRechazado when `texto` holds a single quote; does nothing otherwise.
void RechazarComilla(std::string_view texto, std::string_view campo);

// Throws TextoRechazado when `texto` cannot be stored as typed in a text column that holds
// `largo_maximo` characters (0: no limit): it holds a NUL or bytes that are not UTF-8, or it is
// longer than the column. Checked before a save writes anything, so that both engines behave
// alike: one would cut or keep such text silently, the other refuse it halfway through a save.
void RechazarTextoNoAlmacenable(std::string_view texto, std::string_view campo,
                                size_t largo_maximo = 0);

// `texto` as an SQL string literal: between single quotes, each quote inside doubled, so
// "O'Brien" becomes 'O''Brien'. For texts being looked up, which may legitimately hold quotes.
std::string LiteralTexto(std::string_view texto);

}  // namespace kivmovfrec::storage
