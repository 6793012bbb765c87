// Pattern classification shared by Format's date and number halves.
#pragma once

#include <string_view>

namespace kivmovfrec::vb {

// True for the named date styles ("Short Date", "Long Date", ...) and for custom patterns that
// hold a date or time letter (d m y h n s w q) outside quotes.
bool IsDatePattern(std::string_view pattern);
// True for the named number formats ("General Number", "Fixed", "Standard", "Percent",
// "Yes/No", "True/False", "On/Off").
bool IsNamedNumberFormat(std::string_view pattern);

}  // namespace kivmovfrec::vb
