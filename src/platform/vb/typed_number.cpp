#include "platform/vb/typed_number.h"

#include "kivmovfrec/vb.h"

#include <charconv>
#include <optional>

#include "platform/vb/excerpt.h"

namespace kivmovfrec::vb {
namespace {

bool Digits(std::string_view s) {
  if (s.empty()) return false;
  for (char c : s) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

// Appends the digits of an integer part written plainly ("1500") or with `group` between
// thousands ("1.500.000": 1 to 3 digits, then groups of exactly 3).
bool IntegerPart(std::string_view s, char group, std::string& out) {
  const size_t first = s.find(group);
  if (first == std::string_view::npos) {
    if (!s.empty() && !Digits(s)) return false;
    out.append(s);
    return true;
  }
  const std::string_view head = s.substr(0, first);
  if (!Digits(head) || head.size() > 3) return false;
  out.append(head);
  for (s.remove_prefix(first); !s.empty(); s.remove_prefix(4)) {
    if (s.size() < 4 || s[0] != group || !Digits(s.substr(1, 3))) return false;
    out.append(s.substr(1, 3));
  }
  return true;
}

// The number written with `decimal` and `group` as "digits[.digits]", or nothing when the text
// is not written that way.
std::optional<std::string> Read(std::string_view s, char decimal, char group) {
  const size_t d = s.find(decimal);
  const std::string_view ip = s.substr(0, d);
  std::string out;
  if (!IntegerPart(ip, group, out)) return std::nullopt;
  if (d == std::string_view::npos) {
    if (out.empty()) return std::nullopt;
    return out;
  }
  const std::string_view fp = s.substr(d + 1);
  if (!Digits(fp)) return std::nullopt;
  return (out.empty() ? "0" : out) + "." + std::string(fp);
}

// "1,500": one comma, 1 to 3 digits before it (not all zeros), exactly 3 after, no point.
bool CommaMayGroupThousands(std::string_view s) {
  const size_t c = s.find(',');
  if (c == std::string_view::npos || c == 0 || c > 3 || s.size() != c + 4) return false;
  if (s.find('.') != std::string_view::npos) return false;
  return s.substr(0, c).find_first_not_of('0') != std::string_view::npos;
}

std::string Swapped(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = c == '.' ? ',' : c == ',' ? '.' : c;
  return out;
}

TypedNumber Refused(TypedNumber::Status status, std::string explanation) {
  TypedNumber r;
  r.status = status;
  r.explanation = std::move(explanation);
  return r;
}

}  // namespace

TypedNumber ReadTypedNumber(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  const std::string shown = "«" + ShortForMessage(text) + "»";
  if (text.empty()) return Refused(TypedNumber::kNotANumber, "Ingrese un número.");

  std::string_view body = text;
  const std::string_view sign = body.front() == '-' || body.front() == '+' ? body.substr(0, 1) : "";
  body.remove_prefix(sign.size());

  if (const auto digits = Read(body, ',', '.')) {
    if (CommaMayGroupThousands(body)) {
      const size_t c = body.find(',');
      std::string decimals(body.substr(c + 1));
      if (decimals.back() == '0') {
        while (!decimals.empty() && decimals.back() == '0') decimals.pop_back();
      } else {
        decimals += '0';
      }
      const std::string miles = std::string(sign) + std::string(body.substr(0, c)) + "." +
                                std::string(body.substr(c + 1));
      const std::string coma = std::string(sign) + std::string(body.substr(0, c)) +
                               (decimals.empty() ? "" : "," + decimals);
      return Refused(TypedNumber::kAmbiguous, shown + " puede leerse de dos maneras: escriba " +
                                                  miles + " si son miles o " + coma +
                                                  " si son decimales.");
    }
    double value = 0;
    const auto [end, ec] = std::from_chars(digits->data(), digits->data() + digits->size(), value);
    if (ec != std::errc() || end != digits->data() + digits->size()) {
      return Refused(TypedNumber::kNotANumber, shown + " está fuera del rango de los números.");
    }
    TypedNumber r;
    r.status = TypedNumber::kNumber;
    r.value = sign == "-" ? -value : value;
    return r;
  }
  if (Read(body, '.', ',')) {
    return Refused(TypedNumber::kAmbiguous,
                   shown + " no está escrito a la manera castellana (el punto separa los miles " +
                       "y la coma los decimales): escriba " + ShortForMessage(Swapped(text)) + ".");
  }
  return Refused(TypedNumber::kNotANumber, shown + " no es un número.");
}

std::optional<double> LeerNumeroTecleado(std::string_view texto, std::string* explicacion) {
  const TypedNumber n = ReadTypedNumber(texto);
  if (n.status == TypedNumber::kNumber) return n.value;
  if (explicacion) *explicacion = n.explanation;
  return std::nullopt;
}

}  // namespace kivmovfrec::vb
