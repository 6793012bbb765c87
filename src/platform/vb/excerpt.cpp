#include "platform/vb/excerpt.h"

namespace kivmovfrec::vb {

std::string ShortForMessage(std::string_view text, size_t max_chars) {
  // A character starts at every byte that is not a UTF-8 continuation byte (10xxxxxx).
  size_t chars = 0;
  size_t cut = text.size();
  for (size_t i = 0; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) == 0x80) continue;
    if (chars == max_chars) cut = i;
    ++chars;
  }
  if (chars <= max_chars) return std::string(text);
  return std::string(text.substr(0, cut)) + "… (" + std::to_string(chars) + " caracteres)";
}

}  // namespace kivmovfrec::vb
