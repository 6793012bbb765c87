// Reading command-line values: whole numbers, dates and yes/no answers, with Spanish messages.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "kivmovfrec/variant.h"

namespace kivmovfrec::cli {

// A whole number within [min, max]; nothing otherwise.
std::optional<int64_t> ParseInteger(std::string_view text, int64_t min, int64_t max);

// A calendar date written "aaaa-mm-dd" or "dd/mm/aaaa" (day and month may have one digit in the
// second form); nothing when the text is neither or names no real day.
std::optional<Date> ParseFecha(std::string_view text);

// "si"/"sí"/"s" -> true, "no"/"n" -> false (case ignored); nothing otherwise.
std::optional<bool> ParseSiNo(std::string_view text);

// CLI11 validators whose failures read in Spanish ("--empresa: se esperaba ...").
CLI::Validator EnteroEntre(int64_t min, int64_t max);
CLI::Validator FechaValida();
CLI::Validator SiNo();

}  // namespace kivmovfrec::cli
