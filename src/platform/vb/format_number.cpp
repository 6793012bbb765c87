// FormatNumberPattern and FormatNumber.
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "platform/vb/convert.h"
#include "platform/vb/decimal.h"
#include "platform/vb/format.h"
#include "platform/vb/format_detail.h"
#include "platform/vb/text.h"

namespace kivmovfrec::vb {

namespace {

struct Item {
  char kind = 0;  // '0' or '#' for a digit placeholder, 0 for literal text
  std::string text;
};

// One section of a number pattern ("#,##0.00" or a part between ';').
struct Section {
  std::vector<Item> int_items;
  std::vector<Item> frac_items;
  bool has_point = false;
  bool grouping = false;
  int thousands = 0;  // "," right before the point or the end: divide by 1000 each
  bool percent = false;

  int FracPlaces() const {
    int n = 0;
    for (const Item& it : frac_items) n += it.kind != 0 ? 1 : 0;
    return n;
  }
};

void AddLiteral(std::vector<Item>& items, std::string_view text) {
  if (items.empty() || items.back().kind != 0) items.push_back(Item{});
  items.back().text.append(text);
}

Section ParseSection(std::string_view p) {
  Section s;
  for (size_t i = 0; i < p.size();) {
    std::vector<Item>& items = s.has_point ? s.frac_items : s.int_items;
    const char c = p[i];
    if (c == '"') {
      const size_t close = p.find('"', i + 1);
      const size_t end = close == std::string_view::npos ? p.size() : close;
      AddLiteral(items, p.substr(i + 1, end - i - 1));
      i = end + 1;
    } else if (c == '\\' && i + 1 < p.size()) {
      AddLiteral(items, p.substr(i + 1, 1));
      i += 2;
    } else if (c == '0' || c == '#') {
      items.push_back(Item{c, {}});
      ++i;
    } else if (c == '.' && !s.has_point) {
      s.has_point = true;
      ++i;
    } else if (c == ',') {
      if (!s.has_point) {
        const bool digit_follows = i + 1 < p.size() && (p[i + 1] == '0' || p[i + 1] == '#');
        if (digit_follows) {
          s.grouping = true;
        } else {
          ++s.thousands;
        }
      }
      ++i;
    } else if (c == '%') {
      s.percent = true;
      AddLiteral(items, "%");
      ++i;
    } else {
      AddLiteral(items, p.substr(i, 1));
      ++i;
    }
  }
  return s;
}

std::vector<std::string_view> SplitSections(std::string_view pattern) {
  std::vector<std::string_view> sections;
  bool quoted = false;
  size_t start = 0;
  for (size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == '"') quoted = !quoted;
    if (pattern[i] == '\\') ++i;
    if (!quoted && i < pattern.size() && pattern[i] == ';') {
      sections.push_back(pattern.substr(start, i - start));
      start = i + 1;
    }
  }
  sections.push_back(pattern.substr(start));
  return sections;
}

std::string Group(const std::string& digits, char separator) {
  std::string out;
  const size_t n = digits.size();
  for (size_t i = 0; i < n; ++i) {
    if (i > 0 && (n - i) % 3 == 0) out += separator;
    out += digits[i];
  }
  return out;
}

// The integer part: digits fill the placeholders from the right, the leftmost placeholder
// takes any digits left over, "0" pads and "#" does not.
std::string IntegerPart(const Section& s, std::string digits, const Locale& loc) {
  if (digits == "0") digits.clear();
  std::vector<size_t> placeholders;
  int zeros = 0;
  for (size_t i = 0; i < s.int_items.size(); ++i) {
    if (s.int_items[i].kind != 0) placeholders.push_back(i);
    if (s.int_items[i].kind == '0') ++zeros;
  }
  std::string out;
  if (placeholders.empty()) {
    for (const Item& it : s.int_items) out += it.text;
    return out + digits;
  }
  if (s.grouping) {
    // Literals between placeholders make no sense with grouping; keep the ones around them.
    std::string padded = digits;
    if (padded.size() < static_cast<size_t>(zeros)) {
      padded.insert(0, static_cast<size_t>(zeros) - padded.size(), '0');
    }
    for (size_t i = 0; i < placeholders.front(); ++i) out += s.int_items[i].text;
    out += Group(padded, loc.group_separator);
    for (size_t i = placeholders.back() + 1; i < s.int_items.size(); ++i) {
      out += s.int_items[i].text;
    }
    return out;
  }
  std::vector<std::string> pieces(s.int_items.size());
  size_t remaining = digits.size();
  for (size_t k = placeholders.size(); k-- > 0;) {
    const size_t idx = placeholders[k];
    if (k == 0) {
      pieces[idx] = digits.substr(0, remaining);
      if (remaining == 0 && s.int_items[idx].kind == '0') pieces[idx] = "0";
    } else if (remaining > 0) {
      pieces[idx] = digits.substr(remaining - 1, 1);
      --remaining;
    } else if (s.int_items[idx].kind == '0') {
      pieces[idx] = "0";
    }
  }
  for (size_t i = 0; i < s.int_items.size(); ++i) {
    out += s.int_items[i].kind != 0 ? pieces[i] : s.int_items[i].text;
  }
  return out;
}

// The fraction: digits fill the placeholders from the left; trailing zeros under "#" are
// dropped.
std::string FractionPart(const Section& s, const std::string& frac) {
  std::vector<char> kinds;
  for (const Item& it : s.frac_items) {
    if (it.kind != 0) kinds.push_back(it.kind);
  }
  size_t shown = kinds.size();
  while (shown > 0 && kinds[shown - 1] == '#' && frac[shown - 1] == '0') --shown;
  std::string out;
  size_t k = 0;
  for (const Item& it : s.frac_items) {
    if (it.kind == 0) {
      out += it.text;
    } else {
      if (k < shown) out += frac[k];
      ++k;
    }
  }
  return out;
}

std::string FormatSection(double x, const Section& s, bool show_sign, const Locale& loc) {
  const int shift = (s.percent ? 2 : 0) - 3 * s.thousands;
  const RoundedDecimal r = RoundDecimal(x, s.FracPlaces(), HalfRule::AwayFromZero, shift);
  std::string out = show_sign && r.negative ? "-" : "";
  out += IntegerPart(s, r.IntegerDigits(), loc);
  if (s.has_point) {
    out += loc.decimal_separator;
    out += FractionPart(s, r.FractionDigits());
  }
  return out;
}

std::optional<std::string> NamedNumber(double x, std::string_view name, const Locale& loc) {
  if (EqualsIgnoreCase(name, "General Number")) return NumberToText(x, loc);
  if (EqualsIgnoreCase(name, "Fixed")) return FormatNumberPattern(x, "0.00", loc);
  if (EqualsIgnoreCase(name, "Standard")) return FormatNumberPattern(x, "#,##0.00", loc);
  if (EqualsIgnoreCase(name, "Percent")) return FormatNumberPattern(x, "0.00%", loc);
  if (EqualsIgnoreCase(name, "Yes/No")) return std::string(x != 0 ? "Sí" : "No");
  if (EqualsIgnoreCase(name, "True/False")) return x != 0 ? loc.true_text : loc.false_text;
  if (EqualsIgnoreCase(name, "On/Off")) return std::string(x != 0 ? "Activado" : "Desactivado");
  return std::nullopt;
}

}  // namespace

bool IsNamedNumberFormat(std::string_view pattern) {
  return NamedNumber(0, pattern, Locale::Invariant()).has_value();
}

std::string FormatNumberPattern(double x, std::string_view pattern, const Locale& loc) {
  if (!std::isfinite(x)) throw VbError(6);
  if (pattern.empty()) return NumberToText(x, loc);
  if (auto named = NamedNumber(x, pattern, loc)) return *named;
  const std::vector<std::string_view> sections = SplitSections(pattern);
  // Second section for negatives (written without a sign), third for zero; an empty or
  // missing section falls back to the first.
  if (x < 0 && sections.size() >= 2 && !sections[1].empty()) {
    return FormatSection(-x, ParseSection(sections[1]), false, loc);
  }
  if (x == 0 && sections.size() >= 3 && !sections[2].empty()) {
    return FormatSection(x, ParseSection(sections[2]), false, loc);
  }
  return FormatSection(x, ParseSection(sections[0]), true, loc);
}

std::string FormatNumber(double x, int digits, const Locale& loc) {
  if (digits == -1) digits = 2;  // the locale's default
  if (digits < 0) throw VbError(5);
  const RoundedDecimal r = RoundDecimal(x, digits, HalfRule::AwayFromZero);
  std::string out = r.negative ? "-" : "";
  out += Group(r.IntegerDigits(), loc.group_separator);
  if (digits > 0) {
    out += loc.decimal_separator;
    out += r.FractionDigits();
  }
  return out;
}

}  // namespace kivmovfrec::vb
