#include "storage/install/sql_script.h"

#include <algorithm>

#include <fmt/format.h>

#include "platform/db/dialect.h"

namespace kivmovfrec::install {

std::vector<ScriptStatement> SplitScript(std::string_view script) {
  std::vector<ScriptStatement> out;
  // The statements come back as pieces of the script, in order, so each one is found again
  // after the end of the previous one to know its line.
  size_t pos = 0;
  int line = 1;
  auto advance = [&](size_t to) {
    line += static_cast<int>(std::count(script.begin() + static_cast<std::ptrdiff_t>(pos),
                                        script.begin() + static_cast<std::ptrdiff_t>(to), '\n'));
    pos = to;
  };
  for (auto& text : sql::SplitStatements(script)) {
    const size_t at = script.find(text, pos);
    if (at != std::string_view::npos) advance(at);
    const int first_line = line;
    if (at != std::string_view::npos) advance(at + text.size());
    out.push_back(ScriptStatement{std::move(text), first_line});
  }
  return out;
}

void RunScript(Connection& cn, std::string_view name, std::string_view script) {
  std::vector<ScriptStatement> statements;
  try {
    statements = SplitScript(script);
  } catch (const DbError& e) {
    throw DbError(fmt::format("{}: {}", name, e.what()));
  }
  for (const auto& st : statements) {
    try {
      cn.Execute(st.text);
    } catch (const std::exception& e) {
      throw DbError(fmt::format("{}, line {}: {}", name, st.line, e.what()));
    }
  }
}

}  // namespace kivmovfrec::install
