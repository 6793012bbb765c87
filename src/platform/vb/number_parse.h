// Reading numbers from text, with the outcome ParseNumber's optional cannot tell apart: text
// that is not a number (VB error 13) versus a number beyond the range of a double (error 6).
#pragma once

#include <string_view>

#include "platform/vb/locale.h"

namespace kivmovfrec::vb {

struct NumberReading {
  enum Status { kOk, kNotANumber, kOverflow } status = kNotANumber;
  double value = 0;
};

// The whole text (blanks around it allowed) as a number, as ParseNumber describes.
NumberReading ReadNumber(std::string_view text, const Locale& loc);

}  // namespace kivmovfrec::vb
