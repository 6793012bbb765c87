// UTF-8 decoding and encoding for the VB string functions. Invalid bytes are not an error: each
// one decodes as a single character of its own (U+DC80 + byte, kept apart from real text) and
// encodes back to the same byte, so text that is not valid UTF-8 passes through unchanged.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kivmovfrec::vb::utf8 {

// Decodes `s` into code points, mapping each invalid byte to U+DC80 + byte.
std::u32string Decode(std::string_view s);
// Encodes code points back to UTF-8 (the stand-ins for invalid bytes become those bytes).
std::string Encode(std::u32string_view cps);
void Append(std::string& out, char32_t cp);

// Simple case mapping of ASCII and the Latin-1 letters (á é í ó ú ü ñ ç and the rest of
// U+00C0-U+00FE, except × and ÷); every other code point is returned unchanged.
char32_t ToLower(char32_t c);
char32_t ToUpper(char32_t c);

// Byte offset of the code point `index` (0-based) in s; s.size() when past the end.
size_t OffsetOf(std::string_view s, size_t index);

}  // namespace kivmovfrec::vb::utf8
