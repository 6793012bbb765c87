// Building blocks of SQL text: date literals, numbers, and the guard against quotes in text a
// person typed.
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

#include "kivmovfrec/variant.h"
#include "storage/parametros.h"

namespace kivmovfrec::storage {

// `d` in the database's date format (defBDDateFormat), without delimiters.
std::string FormatoFechaBD(Date d, const ParametrosBD& p = Parametros());

// A date literal: `d` formatted with defBDDateFormat between two defBDDateCharSQLs, e.g.
// '2024-03-01 00:00:00' with the demo settings.
std::string FechaSQL(Date d, const ParametrosBD& p = Parametros());

// Refusal of a typed text that would break the SQL built from it. `campo` names the field as
// the user knows it ("Nombre", "Memo"); what() is a Spanish sentence for the message box.
class TextoRechazado : public std::invalid_argument {
 public:
  TextoRechazado(std::string campo, std::string texto);
  const std::string& campo() const { return campo_; }
  const std::string& texto() const { return texto_; }

 private:
  std::string campo_;
  std::string texto_;
};

// True when `texto` holds a single quote (').
bool TieneComilla(std::string_view texto);

// Throws TextoRechazado when `texto` holds a single quote; does nothing otherwise.
void RechazarComilla(std::string_view texto, std::string_view campo);

// `texto` as an SQL string literal: between single quotes, each quote inside doubled, so
// "O'Brien" becomes 'O''Brien'. For texts being looked up, which may legitimately hold quotes.
std::string LiteralTexto(std::string_view texto);

}  // namespace kivmovfrec::storage
