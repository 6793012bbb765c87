// Running an SQL script (a file of statements separated by semicolons) on a connection.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/db.h"

namespace kivmovfrec::install {

struct ScriptStatement {
  std::string text;  // the statement without its terminating semicolon
  int line = 0;      // 1-based line of the script on which it starts
};

// Cuts `script` into statements at the semicolons outside quotes and comments; comment-only
// and empty pieces are dropped. Throws DbError for text that cannot be cut (an unclosed quote).
std::vector<ScriptStatement> SplitScript(std::string_view script);

// Executes every statement of `script` in order on `cn`. A failing statement throws DbError
// "<name>, line <n>: <engine message>"; statements before it stay executed (the caller owns the
// transaction).
void RunScript(Connection& cn, std::string_view name, std::string_view script);

}  // namespace kivmovfrec::install
