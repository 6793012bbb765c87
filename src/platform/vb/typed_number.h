// A number a person types at a prompt, read the Spanish way: "," separates the decimals and "."
// groups the thousands. Every numeric prompt of the component reads its answers with this rule
// (the console, the scripted answers of tests and unattended hosts), so an amount is never taken
// for a thousand times less or more than what was meant.
//
//   typed                                   value
//   "1500"   "1.500"   "1.500.000"          1500, 1500, 1500000
//   "1500,25"   "1.500,25"   "-1.234.567,8" 1500.25, 1500.25, -1234567.8
//   "0,125"   "1234,567"   ",5"   "+3"      0.125, 1234.567, 0.5, 3
//
// An entry that could be read two ways is not taken (kAmbiguous); the person is asked again
// after a short explanation:
//   - a point that does not group thousands (groups are 1 to 3 digits, then exactly 3 per
//     point): "1.5", "12.34", "1.50", "1234.5", ".5": an English decimal point;
//   - commas and points the English way: "1,500.25", "1,234,567";
//   - one comma followed by exactly three digits after one to three digits, not all zeros, and
//     no point: "1,500", "-12,345": one and a half, or an English thousand five hundred?
// Anything else (letters, blanks inside the number, exponents, a second comma) is kNotANumber.
// Blanks around the text are ignored; an empty text is kNotANumber (prompts give it their own
// meaning, such as taking the proposed value).
#pragma once

#include <string>
#include <string_view>

namespace kivmovfrec::vb {

struct TypedNumber {
  enum Status { kNumber, kAmbiguous, kNotANumber } status = kNotANumber;
  double value = 0;         // when kNumber
  std::string explanation;  // otherwise: one Spanish sentence to show before asking again
};

TypedNumber ReadTypedNumber(std::string_view text);

}  // namespace kivmovfrec::vb
