// Writing results for people: text tables and dates in the Spanish short form.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "kivmovfrec/variant.h"

namespace kivmovfrec::cli {

// "dd/mm/aaaa", followed by " hh:nn" (and ":ss" when not zero) when the date has a time of day.
std::string FechaTexto(Date d);

// A database value that should be a date (a Date, or date text as stored): its FechaTexto;
// "" for Null / Empty; text that is not a date is returned as it is.
std::string FechaTexto(const Variant& v);
// The same for JSON: a string, or null for Null / Empty.
nlohmann::ordered_json FechaJson(const Variant& v);

// A plain text table: a header line, a rule and one line per row, columns separated by two
// blanks and padded by characters (not bytes). Columns listed in `right` are right-aligned.
struct TextTable {
  std::vector<std::string> headers;
  std::vector<std::vector<std::string>> rows;
  std::vector<bool> right;  // per column; missing entries mean left-aligned

  void Print(std::ostream& out) const;
};

}  // namespace kivmovfrec::cli
