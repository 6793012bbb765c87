#include <algorithm>

#include "command.h"

namespace kivmovfrec::cli {
namespace {

std::vector<CommandDef>& Registry() {
  static std::vector<CommandDef> commands;
  return commands;
}

}  // namespace

bool RegisterCommand(CommandDef def) {
  Registry().push_back(std::move(def));
  return true;
}

std::vector<CommandDef> RegisteredCommands() {
  std::vector<CommandDef> commands = Registry();
  std::stable_sort(commands.begin(), commands.end(),
                   [](const CommandDef& a, const CommandDef& b) { return a.order < b.order; });
  return commands;
}

}  // namespace kivmovfrec::cli
