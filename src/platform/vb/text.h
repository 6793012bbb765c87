// VB string functions over UTF-8 text. Positions and lengths count characters (code points),
// not bytes. Case folding covers ASCII and the Latin-1 letters Spanish uses (á é í ó ú ü ñ ç
// and their capitals).
// Trim, LCase, Len, Left, Mid and Split are public (kivmovfrec/vb.h).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/vb.h"

namespace kivmovfrec::vb {

// Spaces only (not tabs), as VB's Trim.
std::string LTrim(std::string_view s);
std::string RTrim(std::string_view s);
std::string UCase(std::string_view s);

std::string Right(std::string_view s, size_t n);

// 1-based position of `find` in `s` at or after `start`, 0 when absent. An empty `find` gives
// `start` (0 when start is past the end + 1). Start 0 -> VbError(5).
size_t InStr(std::string_view s, std::string_view find, size_t start = 1, bool ignore_case = false);
// Replaces up to `count` occurrences (all when count < 0), scanning left to right without
// overlap. An empty `find` leaves `s` unchanged. (VB's start argument: Replace(Mid(s, start)).)
std::string Replace(std::string_view s, std::string_view find, std::string_view with,
                    bool ignore_case = false, long count = -1);

bool EqualsIgnoreCase(std::string_view a, std::string_view b);
bool StartsWithIgnoreCase(std::string_view s, std::string_view prefix);

// True when `s` is valid UTF-8. The other functions accept invalid text: each byte that is not
// part of a valid sequence counts as one character and is copied through unchanged.
bool IsValidUtf8(std::string_view s);

}  // namespace kivmovfrec::vb
