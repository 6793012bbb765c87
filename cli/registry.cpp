#include <algorithm>

#include "command.h"

namespace kivmovfrec::cli {
namespace {

std::vector<CommandSpec>& Registry() {
  static std::vector<CommandSpec> commands;
  return commands;
}

}  // namespace

bool RegisterCommand(CommandSpec spec) {
  Registry().push_back(std::move(spec));
  return true;
}

std::vector<CommandSpec> RegisteredCommands() {
  std::vector<CommandSpec> commands = Registry();
  std::stable_sort(commands.begin(), commands.end(),
                   [](const CommandSpec& a, const CommandSpec& b) { return a.order < b.order; });
  return commands;
}

}  // namespace kivmovfrec::cli
