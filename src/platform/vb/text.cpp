#include "platform/vb/text.h"

#include <algorithm>
#include <cctype>

#include "kivmovfrec/variant.h"
#include "platform/vb/utf8.h"

namespace kivmovfrec::vb {

namespace {

std::u32string Folded(std::string_view s) {
  std::u32string cps = utf8::Decode(s);
  for (char32_t& c : cps) c = utf8::ToLower(c);
  return cps;
}

std::u32string Decoded(std::string_view s, bool fold) {
  return fold ? Folded(s) : utf8::Decode(s);
}

// 0-based index of `find` in `s` at or after `from`, or npos.
size_t FindFrom(const std::u32string& s, const std::u32string& find, size_t from) {
  if (from > s.size()) return std::u32string::npos;
  return s.find(find, from);
}

}  // namespace

std::string Trim(std::string_view s) {
  return LTrim(RTrim(s));
}

std::string LTrim(std::string_view s) {
  const size_t first = s.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string() : std::string(s.substr(first));
}

std::string RTrim(std::string_view s) {
  const size_t last = s.find_last_not_of(' ');
  return last == std::string_view::npos ? std::string() : std::string(s.substr(0, last + 1));
}

std::string LCase(std::string_view s) {
  std::u32string cps = utf8::Decode(s);
  for (char32_t& c : cps) c = utf8::ToLower(c);
  return utf8::Encode(cps);
}

std::string UCase(std::string_view s) {
  std::u32string cps = utf8::Decode(s);
  for (char32_t& c : cps) c = utf8::ToUpper(c);
  return utf8::Encode(cps);
}

size_t Len(std::string_view s) {
  return utf8::Decode(s).size();
}

std::string Left(std::string_view s, size_t n) {
  return std::string(s.substr(0, utf8::OffsetOf(s, n)));
}

std::string Right(std::string_view s, size_t n) {
  const size_t len = Len(s);
  if (n >= len) return std::string(s);
  return std::string(s.substr(utf8::OffsetOf(s, len - n)));
}

std::string Mid(std::string_view s, size_t start, size_t n) {
  if (start < 1) throw VbError(5);
  const size_t begin = utf8::OffsetOf(s, start - 1);
  const std::string_view rest = s.substr(begin);
  if (n == std::string_view::npos) return std::string(rest);
  return std::string(rest.substr(0, utf8::OffsetOf(rest, n)));
}

size_t InStr(std::string_view s, std::string_view find, size_t start, bool ignore_case) {
  if (start < 1) throw VbError(5);
  const std::u32string hay = Decoded(s, ignore_case);
  const std::u32string needle = Decoded(find, ignore_case);
  if (needle.empty()) return start <= hay.size() + 1 ? start : 0;
  const size_t at = FindFrom(hay, needle, start - 1);
  return at == std::u32string::npos ? 0 : at + 1;
}

std::string Replace(std::string_view s, std::string_view find, std::string_view with,
                    bool ignore_case, long count) {
  if (find.empty() || count == 0) return std::string(s);
  const std::u32string original = utf8::Decode(s);
  const std::u32string hay = ignore_case ? Folded(s) : original;
  const std::u32string needle = Decoded(find, ignore_case);
  std::string out;
  out.reserve(s.size());
  size_t pos = 0;
  long done = 0;
  while (count < 0 || done < count) {
    const size_t at = FindFrom(hay, needle, pos);
    if (at == std::u32string::npos) break;
    out += utf8::Encode(std::u32string_view(original).substr(pos, at - pos));
    out += with;
    pos = at + needle.size();
    ++done;
  }
  out += utf8::Encode(std::u32string_view(original).substr(pos));
  return out;
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  // Plain ASCII on both sides (names, keywords, format words) folds byte by byte: its letters
  // are the only ones that change, and nothing changes length.
  const auto ascii = [](std::string_view s) {
    return std::all_of(s.begin(), s.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  };
  if (ascii(a) && ascii(b)) {
    const auto menor = [](char c) {
      return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [&](char x, char y) { return menor(x) == menor(y); });
  }
  return Folded(a) == Folded(b);
}

bool StartsWithIgnoreCase(std::string_view s, std::string_view prefix) {
  // Only the start of `s` can match: as many bytes as the prefix's code points could take (at
  // most 4 each), so that scanning a long text position by position stays linear.
  if (!s.empty() && !prefix.empty()) {
    // Two ASCII first letters settle most calls without decoding anything.
    const auto a = static_cast<unsigned char>(s[0]);
    const auto b = static_cast<unsigned char>(prefix[0]);
    if (a < 0x80 && b < 0x80 && std::tolower(a) != std::tolower(b)) return false;
  }
  const std::u32string fs = Folded(s.substr(0, 4 * prefix.size()));
  const std::u32string fp = Folded(prefix);
  return fs.size() >= fp.size() && std::equal(fp.begin(), fp.end(), fs.begin());
}

std::vector<std::string> Split(std::string_view s, std::string_view sep) {
  std::vector<std::string> parts;
  if (sep.empty()) {
    parts.emplace_back(s);
    return parts;
  }
  size_t pos = 0;
  while (true) {
    const size_t at = s.find(sep, pos);
    if (at == std::string_view::npos) break;
    parts.emplace_back(s.substr(pos, at - pos));
    pos = at + sep.size();
  }
  parts.emplace_back(s.substr(pos));
  return parts;
}

bool IsValidUtf8(std::string_view s) {
  for (char32_t c : utf8::Decode(s)) {
    if (c >= 0xDC80 && c <= 0xDCFF) return false;
  }
  return true;
}

}  // namespace kivmovfrec::vb
