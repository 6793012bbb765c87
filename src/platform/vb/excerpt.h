// A value quoted in a message for people, cut when it is long: a 10 MB text pasted into a field
// must not come back whole in the message that refuses it (nor fill a log or a terminal).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kivmovfrec::vb {

inline constexpr size_t kMaxCharsInMessage = 60;

// `text` when it has at most `max_chars` characters; otherwise its first `max_chars` characters
// (a UTF-8 sequence is never split) followed by "… (N caracteres)", N being the length of the
// whole text in characters. Runs in one pass over the bytes, without copying the text.
std::string ShortForMessage(std::string_view text, size_t max_chars = kMaxCharsInMessage);

}  // namespace kivmovfrec::vb
