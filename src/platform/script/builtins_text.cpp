// Text functions: Len Left Right Mid InStr InStrRev Replace Trim LTrim RTrim LCase UCase Space
// String StrReverse Chr Asc FormatNumber. Text is UTF-8; positions and lengths count characters.
// Chr and Asc use the Windows-1252 code page, as VBScript does on a Spanish system.
#include <string>

#include "platform/script/builtins.h"
#include "platform/script/coerce.h"
#include "platform/vb/format.h"
#include "platform/vb/text.h"

namespace kivmovfrec::script {

namespace {

// Code points of Windows-1252 bytes 0x80..0x9F (undefined bytes map to themselves).
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void AppendUtf8(std::string& out, uint32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

// Byte length of the UTF-8 character starting at s[i] (1 for a stray byte).
size_t CharBytes(std::string_view s, size_t i) {
  const unsigned char c = static_cast<unsigned char>(s[i]);
  size_t n = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 1;
  if (i + n > s.size()) return 1;
  for (size_t k = 1; k < n; ++k) {
    if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return 1;
  }
  return n;
}

uint32_t DecodeFirst(std::string_view s) {
  const size_t n = CharBytes(s, 0);
  const unsigned char c = static_cast<unsigned char>(s[0]);
  if (n == 1) return c;
  uint32_t cp = c & (0x7F >> n);
  for (size_t k = 1; k < n; ++k) cp = (cp << 6) | (static_cast<unsigned char>(s[k]) & 0x3F);
  return cp;
}

std::string ChrText(int32_t code) {
  if (code < 0 || code > 255) throw VbError(5);
  std::string out;
  AppendUtf8(out,
             code >= 0x80 && code < 0xA0 ? kCp1252High[code - 0x80] : static_cast<uint32_t>(code));
  return out;
}

// Byte offset where character number `chars` (0-based) starts; the size when past the end.
size_t ByteOffset(std::string_view s, int64_t chars) {
  size_t i = 0;
  for (int64_t c = 0; c < chars && i < s.size(); ++c) i += CharBytes(s, i);
  return i;
}

int64_t CharCount(std::string_view s) {
  int64_t n = 0;
  for (size_t i = 0; i < s.size(); i += CharBytes(s, i)) ++n;
  return n;
}

bool TextCompare(const Variant& v, const CallContext& cx) {
  const int32_t mode = ToLongRounded(v, cx.loc);
  if (mode != 0 && mode != 1) throw VbError(5);
  return mode == 1;
}

int64_t NonNegative(const Variant& v, const CallContext& cx) {
  const int64_t n = ToCount(v, cx.loc);
  if (n < 0) throw VbError(5);
  return n;
}

Variant Len(std::span<Variant> a, const CallContext& cx) {
  if (a[0].IsNull()) return Variant::Null();
  if (a[0].IsString()) return Variant(static_cast<int32_t>(CharCount(a[0].AsString())));
  return Variant(static_cast<int32_t>(CharCount(ToText(a[0], cx.loc))));
}

Variant Left(std::span<Variant> a, const CallContext& cx) {
  const int64_t n = NonNegative(a[1], cx);
  if (a[0].IsNull()) return Variant::Null();
  const std::string s = ToText(a[0], cx.loc);
  return Variant(s.substr(0, ByteOffset(s, n)));
}

Variant Right(std::span<Variant> a, const CallContext& cx) {
  const int64_t n = NonNegative(a[1], cx);
  if (a[0].IsNull()) return Variant::Null();
  const std::string s = ToText(a[0], cx.loc);
  const int64_t total = CharCount(s);
  return Variant(s.substr(ByteOffset(s, n >= total ? 0 : total - n)));
}

Variant Mid(std::span<Variant> a, const CallContext& cx) {
  const int64_t start = ToCount(a[1], cx.loc);
  if (start < 1) throw VbError(5);
  const int64_t len = a.size() > 2 ? NonNegative(a[2], cx) : -1;
  if (a[0].IsNull()) return Variant::Null();
  const std::string s = ToText(a[0], cx.loc);
  const size_t from = ByteOffset(s, start - 1);
  if (len < 0) return Variant(s.substr(from));
  const std::string_view rest = std::string_view(s).substr(from);
  return Variant(std::string(rest.substr(0, ByteOffset(rest, len))));
}

Variant InStr(std::span<Variant> a, const CallContext& cx) {
  // InStr(s1, s2) or InStr(start, s1, s2[, compare])
  int64_t start = 1;
  size_t i = 0;
  if (a.size() >= 3) {
    start = ToCount(a[0], cx.loc);
    if (start < 1) throw VbError(5);
    i = 1;
  }
  const bool text = a.size() == 4 && TextCompare(a[3], cx);
  if (a[i].IsNull() || a[i + 1].IsNull()) return Variant::Null();
  const std::string s1 = ToText(a[i], cx.loc), s2 = ToText(a[i + 1], cx.loc);
  const int64_t total = CharCount(s1);
  if (total == 0) return Variant(int32_t{0});
  if (s2.empty()) return Variant(static_cast<int32_t>(start <= total + 1 ? start : 0));
  if (start > total) return Variant(int32_t{0});
  return Variant(static_cast<int32_t>(vb::InStr(s1, s2, static_cast<size_t>(start), text)));
}

Variant InStrRev(std::span<Variant> a, const CallContext& cx) {
  int64_t start = a.size() > 2 ? ToCount(a[2], cx.loc) : -1;
  if (start == 0 || start < -1) throw VbError(5);
  const bool text = a.size() > 3 && TextCompare(a[3], cx);
  if (a[0].IsNull() || a[1].IsNull()) return Variant::Null();
  std::string s1 = ToText(a[0], cx.loc), s2 = ToText(a[1], cx.loc);
  if (text) {
    s1 = vb::LCase(s1);
    s2 = vb::LCase(s2);
  }
  const int64_t total = CharCount(s1);
  if (start == -1) start = total;
  if (start > total) return Variant(int32_t{0});
  if (s2.empty()) return Variant(static_cast<int32_t>(start));
  const std::string_view window = std::string_view(s1).substr(0, ByteOffset(s1, start));
  const size_t pos = window.rfind(s2);
  if (pos == std::string_view::npos) return Variant(int32_t{0});
  return Variant(static_cast<int32_t>(CharCount(window.substr(0, pos)) + 1));
}

Variant Replace(std::span<Variant> a, const CallContext& cx) {
  const std::string s = ToText(a[0], cx.loc);
  const std::string find = ToText(a[1], cx.loc);
  const std::string with = ToText(a[2], cx.loc);
  const int64_t start = a.size() > 3 ? ToCount(a[3], cx.loc) : 1;
  if (start < 1) throw VbError(5);
  const int64_t count = a.size() > 4 ? ToCount(a[4], cx.loc) : -1;
  if (count < -1) throw VbError(5);
  const bool text = a.size() > 5 && TextCompare(a[5], cx);
  // Characters before `start` are not part of the result.
  const std::string rest = s.substr(ByteOffset(s, start - 1));
  if (find.empty() || count == 0) return Variant(rest);
  if (with.size() > find.size()) {
    size_t most = rest.size() / find.size();
    if (count > 0 && static_cast<size_t>(count) < most) most = static_cast<size_t>(count);
    CheckStringSize(rest.size() + most * (with.size() - find.size()));
  }
  return Variant(vb::Replace(rest, find, with, text, static_cast<long>(count)));
}

template <std::string (*F)(std::string_view)>
Variant Transform(std::span<Variant> a, const CallContext& cx) {
  if (a[0].IsNull()) return Variant::Null();
  if (a[0].IsString()) return Variant(F(a[0].AsString()));
  return Variant(F(ToText(a[0], cx.loc)));
}

std::string TrimOf(std::string_view s) {
  return vb::Trim(s);
}
std::string LTrimOf(std::string_view s) {
  return vb::LTrim(s);
}
std::string RTrimOf(std::string_view s) {
  return vb::RTrim(s);
}
std::string LCaseOf(std::string_view s) {
  return vb::LCase(s);
}
std::string UCaseOf(std::string_view s) {
  return vb::UCase(s);
}

Variant Space(std::span<Variant> a, const CallContext& cx) {
  const int64_t n = NonNegative(a[0], cx);
  CheckStringSize(static_cast<size_t>(n));
  return Variant(std::string(static_cast<size_t>(n), ' '));
}

Variant String(std::span<Variant> a, const CallContext& cx) {
  const int64_t n = NonNegative(a[0], cx);
  if (a[1].IsNull()) return Variant::Null();
  std::string unit;
  if (a[1].IsString()) {
    const std::string& s = a[1].AsString();
    if (s.empty()) throw VbError(5);
    unit = s.substr(0, CharBytes(s, 0));
  } else {
    unit = ChrText(ToLongRounded(a[1], cx.loc) & 0xFF);
  }
  CheckStringSize(static_cast<size_t>(n) * unit.size());
  std::string out;
  out.reserve(static_cast<size_t>(n) * unit.size());
  for (int64_t i = 0; i < n; ++i) out += unit;
  return Variant(std::move(out));
}

Variant StrReverse(std::span<Variant> a, const CallContext& cx) {
  const std::string s = ToText(a[0], cx.loc);
  std::string out(s.size(), '\0');
  size_t w = s.size();
  for (size_t i = 0; i < s.size();) {
    const size_t n = CharBytes(s, i);
    w -= n;
    s.copy(out.data() + w, n, i);
    i += n;
  }
  return Variant(std::move(out));
}

Variant Chr(std::span<Variant> a, const CallContext& cx) {
  return Variant(ChrText(ToLongRounded(a[0], cx.loc)));
}

Variant Asc(std::span<Variant> a, const CallContext& cx) {
  const std::string s = ToText(a[0], cx.loc);
  if (s.empty()) throw VbError(5);
  const uint32_t cp = DecodeFirst(s);
  if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return Variant(static_cast<int16_t>(cp));
  for (int i = 0; i < 32; ++i) {
    if (kCp1252High[i] == cp) return Variant(static_cast<int16_t>(0x80 + i));
  }
  return Variant(int16_t{'?'});  // not in the code page
}

// FormatNumber(x[, digits[, leading_zero[, parentheses[, grouping]]]]); the last three are
// tristates: -1 yes, 0 no, -2 the locale's default (leading zero, minus sign, grouping).
Variant FormatNumber(std::span<Variant> a, const CallContext& cx) {
  const double x = ToDouble(a[0], cx.loc);
  int32_t digits = a.size() > 1 && !a[1].IsEmpty() ? ToLongRounded(a[1], cx.loc) : -1;
  if (digits < -1 || digits > 255) throw VbError(5);
  if (digits == -1) digits = 2;
  auto tristate = [&](size_t i) {
    if (i >= a.size() || a[i].IsEmpty()) return -2;
    const int32_t t = ToLongRounded(a[i], cx.loc);
    if (t != -1 && t != 0 && t != -2) throw VbError(5);
    return static_cast<int>(t);
  };
  const int leading = tristate(2), parens = tristate(3), grouping = tristate(4);
  std::string s = vb::FormatNumber(x, digits, cx.loc);
  if (grouping == 0) std::erase(s, cx.loc.group_separator);
  const bool negative = !s.empty() && s[0] == '-';
  if (leading == 0) {
    const size_t zero = negative ? 1 : 0;
    if (s.size() > zero + 1 && s[zero] == '0' && s[zero + 1] == cx.loc.decimal_separator) {
      s.erase(zero, 1);
    }
  }
  if (parens == -1 && negative) s = "(" + s.substr(1) + ")";
  return Variant(std::move(s));
}

const Builtin kText[] = {
    {"Len", 1, 1, 0, Len},
    {"Left", 2, 2, 0, Left},
    {"Right", 2, 2, 0, Right},
    {"Mid", 2, 3, 0, Mid},
    {"InStr", 2, 4, 0, InStr},
    {"InStrRev", 2, 4, 0, InStrRev},
    {"Replace", 3, 6, 0, Replace},
    {"Trim", 1, 1, 0, Transform<TrimOf>},
    {"LTrim", 1, 1, 0, Transform<LTrimOf>},
    {"RTrim", 1, 1, 0, Transform<RTrimOf>},
    {"LCase", 1, 1, 0, Transform<LCaseOf>},
    {"UCase", 1, 1, 0, Transform<UCaseOf>},
    {"Space", 1, 1, 0, Space},
    {"String", 2, 2, 0, String},
    {"StrReverse", 1, 1, 0, StrReverse},
    {"Chr", 1, 1, 0, Chr},
    {"Asc", 1, 1, 0, Asc},
    {"FormatNumber", 1, 5, 0, FormatNumber},
};

}  // namespace

std::span<const Builtin> TextBuiltins() {
  return kText;
}

}  // namespace kivmovfrec::script
