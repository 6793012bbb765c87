// Reading command-line values: whole numbers, dates and yes/no answers, with Spanish messages.
#pragma once

#include <chrono>
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

// A number of seconds, whole or with a decimal point or comma ("10", "0.5", "2,5"), from 0 up to
// one day, as milliseconds (rounded); nothing otherwise.
std::optional<std::chrono::milliseconds> ParseSegundos(std::string_view text);

// "si"/"sí"/"s" -> true, "no"/"n" -> false (case ignored); nothing otherwise.
std::optional<bool> ParseSiNo(std::string_view text);

// CLI11 validators whose failures read in Spanish ("--empresa: se esperaba ...").
CLI::Validator EnteroEntre(int64_t min, int64_t max);
CLI::Validator FechaValida();
CLI::Validator SiNo();
CLI::Validator SegundosValidos();

// A date option: shown as FECHA in the help, checked by FechaValida. Every date option of the
// program is declared through it, so they all read and show alike.
CLI::Option* OpcionFecha(CLI::App& app, const std::string& nombre, std::string& destino,
                         const std::string& descripcion);

}  // namespace kivmovfrec::cli
