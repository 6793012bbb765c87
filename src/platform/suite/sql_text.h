// Small helpers for the few statements the suite services write themselves. Values go beside
// the text as bound parameters; a table name, which is SQL syntax, is checked here first.
#pragma once

#include <string>
#include <string_view>

namespace kivmovfrec::suite {

// True for a table or setting name made only of ASCII letters, digits and '_' (1..64 chars).
bool IsPlainName(std::string_view name);

// ASCII lower case (setting and table names are ASCII).
std::string AsciiLower(std::string_view text);

// Leading and trailing blanks (spaces and tabs) removed.
std::string TrimBlanks(std::string_view text);

}  // namespace kivmovfrec::suite
