#include "args.h"

#include <charconv>
#include <chrono>
#include <cmath>

#include <fmt/format.h>

#include "kivmovfrec/vb.h"

namespace kivmovfrec::cli {
namespace {

// Digits only, 1..n of them.
std::optional<int> Digits(std::string_view text, size_t min_len, size_t max_len) {
  if (text.size() < min_len || text.size() > max_len) return std::nullopt;
  int value = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + (c - '0');
  }
  return value;
}

std::optional<Date> DateOf(int y, int m, int d) {
  using namespace std::chrono;
  const year_month_day ymd{year{y}, month{static_cast<unsigned>(m)}, day{static_cast<unsigned>(d)}};
  if (!ymd.ok() || y < 100) return std::nullopt;
  const sys_days epoch{year{1899} / December / 30};
  return Date{static_cast<double>((sys_days{ymd} - epoch).count())};
}

}  // namespace

std::optional<int64_t> ParseInteger(std::string_view text, int64_t min, int64_t max) {
  const std::string trimmed = vb::Trim(text);
  int64_t value = 0;
  const char* first = trimmed.data();
  const char* last = trimmed.data() + trimmed.size();
  if (first != last && *first == '+') ++first;
  const auto [end, ec] = std::from_chars(first, last, value);
  if (trimmed.empty() || ec != std::errc() || end != last) return std::nullopt;
  if (value < min || value > max) return std::nullopt;
  return value;
}

std::optional<Date> ParseFecha(std::string_view text) {
  const std::string t = vb::Trim(text);
  const std::vector<std::string> iso = vb::Split(t, "-");
  if (iso.size() == 3) {
    const auto y = Digits(iso[0], 4, 4);
    const auto m = Digits(iso[1], 2, 2);
    const auto d = Digits(iso[2], 2, 2);
    if (y && m && d) return DateOf(*y, *m, *d);
    return std::nullopt;
  }
  const std::vector<std::string> es = vb::Split(t, "/");
  if (es.size() == 3) {
    const auto d = Digits(es[0], 1, 2);
    const auto m = Digits(es[1], 1, 2);
    const auto y = Digits(es[2], 4, 4);
    if (y && m && d) return DateOf(*y, *m, *d);
  }
  return std::nullopt;
}

std::optional<std::chrono::milliseconds> ParseSegundos(std::string_view text) {
  std::string t = vb::Trim(text);
  const size_t comma = t.find(',');
  if (comma != std::string::npos) t[comma] = '.';
  if (t.empty() || t.find_first_not_of("0123456789.") != std::string::npos ||
      t.find('.') != t.rfind('.') || t == ".") {
    return std::nullopt;
  }
  double seconds = 0;
  const auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), seconds);
  if (ec != std::errc() || end != t.data() + t.size() || seconds > 86400) return std::nullopt;
  return std::chrono::milliseconds(std::llround(seconds * 1000));
}

std::optional<bool> ParseSiNo(std::string_view text) {
  const std::string t = vb::LCase(vb::Trim(text));
  if (t == "si" || t == "sí" || t == "s") return true;
  if (t == "no" || t == "n") return false;
  return std::nullopt;
}

CLI::Validator EnteroEntre(int64_t min, int64_t max) {
  return CLI::Validator(
      [min, max](std::string& value) -> std::string {
        if (ParseInteger(value, INT64_MIN, INT64_MAX) == std::nullopt) {
          return fmt::format("se esperaba un número entero, no «{}»", value);
        }
        if (!ParseInteger(value, min, max)) {
          return fmt::format("{} está fuera del rango {} a {}", vb::Trim(value), min, max);
        }
        return {};
      },
      "");
}

CLI::Validator FechaValida() {
  return CLI::Validator(
      [](std::string& value) -> std::string {
        if (ParseFecha(value)) return {};
        return fmt::format("«{}» no es una fecha válida (use aaaa-mm-dd o dd/mm/aaaa)", value);
      },
      "");
}

CLI::Validator SegundosValidos() {
  return CLI::Validator(
      [](std::string& value) -> std::string {
        if (ParseSegundos(value)) return {};
        return fmt::format("se esperaba una cantidad de segundos entre 0 y 86400, no «{}»", value);
      },
      "");
}

CLI::Validator SiNo() {
  return CLI::Validator(
      [](std::string& value) -> std::string {
        if (ParseSiNo(value)) return {};
        return fmt::format("se esperaba «si» o «no», no «{}»", value);
      },
      "");
}

CLI::Option* OpcionFecha(CLI::App& app, const std::string& nombre, std::string& destino,
                         const std::string& descripcion) {
  return app.add_option(nombre, destino, descripcion)->type_name("FECHA")->check(FechaValida());
}

}  // namespace kivmovfrec::cli
