#include "output.h"

#include <algorithm>
#include <ostream>

#include <fmt/format.h>

#include "kivmovfrec/vb.h"

namespace kivmovfrec::cli {

std::string FechaTexto(Date d) {
  const vb::DateParts p = vb::Split(d);
  std::string text = fmt::format("{:02}/{:02}/{:04}", p.day, p.month, p.year);
  if (p.hour != 0 || p.minute != 0 || p.second != 0) {
    text += fmt::format(" {:02}:{:02}", p.hour, p.minute);
    if (p.second != 0) text += fmt::format(":{:02}", p.second);
  }
  return text;
}

std::string FechaTexto(const Variant& v) {
  if (v.IsNull() || v.IsEmpty()) return "";
  if (v.type() == VarType::Date) return FechaTexto(v.AsDate());
  const std::string text = vb::CStr(v);
  if (vb::Trim(text).empty()) return "";
  if (const auto d = vb::ParseDate(text)) return FechaTexto(*d);
  return text;
}

nlohmann::ordered_json FechaJson(const Variant& v) {
  const std::string text = FechaTexto(v);
  if (text.empty()) return nullptr;
  return text;
}

void TextTable::Print(std::ostream& out) const {
  std::vector<size_t> width(headers.size(), 0);
  for (size_t c = 0; c < headers.size(); ++c) width[c] = vb::Len(headers[c]);
  for (const auto& row : rows) {
    for (size_t c = 0; c < row.size() && c < width.size(); ++c) {
      width[c] = std::max(width[c], vb::Len(row[c]));
    }
  }
  auto line = [&](const std::vector<std::string>& cells) {
    std::string text;
    for (size_t c = 0; c < width.size(); ++c) {
      const std::string cell = c < cells.size() ? cells[c] : std::string();
      const std::string pad(width[c] - std::min(width[c], vb::Len(cell)), ' ');
      const bool align_right = c < right.size() && right[c];
      if (c > 0) text += "  ";
      text += align_right ? pad + cell : cell + pad;
    }
    while (!text.empty() && text.back() == ' ') text.pop_back();
    out << text << '\n';
  };
  line(headers);
  std::vector<std::string> rule;
  for (size_t w : width) rule.emplace_back(w, '-');
  line(rule);
  for (const auto& row : rows) line(row);
}

}  // namespace kivmovfrec::cli
