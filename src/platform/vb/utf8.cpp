#include "platform/vb/utf8.h"

namespace kivmovfrec::vb::utf8 {

namespace {

constexpr char32_t kInvalidByteBase = 0xDC80 - 0x80;  // byte 0x80 -> U+DC80 ... 0xFF -> U+DCFF

// Length of the valid UTF-8 sequence at s[i], or 0 when the byte there does not start one.
size_t SequenceLength(std::string_view s, size_t i, char32_t& cp) {
  const auto b0 = static_cast<unsigned char>(s[i]);
  if (b0 < 0x80) {
    cp = b0;
    return 1;
  }
  size_t len = 0;
  char32_t min = 0;
  if (b0 >= 0xC2 && b0 <= 0xDF) {
    len = 2;
    cp = b0 & 0x1F;
    min = 0x80;
  } else if (b0 >= 0xE0 && b0 <= 0xEF) {
    len = 3;
    cp = b0 & 0x0F;
    min = 0x800;
  } else if (b0 >= 0xF0 && b0 <= 0xF4) {
    len = 4;
    cp = b0 & 0x07;
    min = 0x10000;
  } else {
    return 0;
  }
  if (i + len > s.size()) return 0;
  for (size_t k = 1; k < len; ++k) {
    const auto b = static_cast<unsigned char>(s[i + k]);
    if ((b & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (b & 0x3F);
  }
  if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  return len;
}

}  // namespace

std::u32string Decode(std::string_view s) {
  std::u32string out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size();) {
    char32_t cp = 0;
    const size_t len = SequenceLength(s, i, cp);
    if (len == 0) {
      out.push_back(kInvalidByteBase + static_cast<unsigned char>(s[i]));
      ++i;
    } else {
      out.push_back(cp);
      i += len;
    }
  }
  return out;
}

void Append(std::string& out, char32_t cp) {
  if (cp >= 0xDC80 && cp <= 0xDCFF) {
    out.push_back(static_cast<char>(cp - kInvalidByteBase));
  } else if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

std::string Encode(std::u32string_view cps) {
  std::string out;
  out.reserve(cps.size());
  for (char32_t cp : cps) Append(out, cp);
  return out;
}

char32_t ToLower(char32_t c) {
  if (c >= 'A' && c <= 'Z') return c + 32;
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 32;
  return c;
}

char32_t ToUpper(char32_t c) {
  if (c >= 'a' && c <= 'z') return c - 32;
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 32;
  return c;
}

size_t OffsetOf(std::string_view s, size_t index) {
  size_t i = 0;
  for (size_t n = 0; n < index && i < s.size(); ++n) {
    char32_t cp = 0;
    const size_t len = SequenceLength(s, i, cp);
    i += len == 0 ? 1 : len;
  }
  return i;
}

}  // namespace kivmovfrec::vb::utf8
