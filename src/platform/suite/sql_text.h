// Small helpers for the few statements the suite services write themselves. Names and texts that
// reach SQL text are checked here, so a service never splices a quote into a statement.
#pragma once

#include <string>
#include <string_view>

namespace kivmovfrec::suite {

// True for a table or setting name made only of ASCII letters, digits and '_' (1..64 chars).
bool IsPlainName(std::string_view name);

// `text` between single quotes. The caller has already refused texts holding a quote; one that
// still holds one is rejected with std::invalid_argument rather than escaped.
std::string QuoteLiteral(std::string_view text);

// ASCII lower case (setting and table names are ASCII).
std::string AsciiLower(std::string_view text);

// Leading and trailing blanks (spaces and tabs) removed.
std::string TrimBlanks(std::string_view text);

}  // namespace kivmovfrec::suite
