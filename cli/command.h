// The movfrec command registry and the context every command runs in.
//
// A command lives in its own file (cmd_<name>.cpp) and registers itself at start-up:
//
//   const bool registered = cli::RegisterCommand({"listar", "Lista los movimientos", 20,
//       [](CLI::App& app) -> cli::Action {
//         auto tipo = std::make_shared<int>(0);
//         app.add_option("--tipo", *tipo, "...");
//         return [tipo](cli::Context& ctx) { ...; return cli::kExitOk; };
//       }});
//
// main parses the global options, lets each registered command declare its own options (and
// nested subcommands) on its CLI11 subcommand, and runs the action of the one chosen. Commands
// reach the database, the suite services and the output only through the Context.
#pragma once

#include <chrono>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "kivmovfrec/db.h"
#include "kivmovfrec/services.h"

namespace CLI {
class App;
}

namespace kivmovfrec::cli {

// Exit status of the program.
inline constexpr int kExitOk = 0;      // done
inline constexpr int kExitFailed = 1;  // refused or failed (also database errors)
inline constexpr int kExitUsage = 2;   // the command line is wrong

// A wrong command line detected by a command after parsing (exit 2). The text is Spanish and
// says what is wrong.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A command refused before its own work began (exit 1), such as a company that does not exist.
// The text is Spanish and says why.
class Refused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The global options, standing before the command.
struct GlobalOptions {
  std::string db = "sqlite:movfrec.db";  // --db, else MOVFREC_DB
  int32_t empresa = 1;                   // --empresa
  int32_t usuario = 1;                   // --usuario
  std::optional<Date> hoy;               // --hoy: fixes "today"
  std::optional<bool> responder;         // --responder si|no
  bool json = false;                     // --json
  // --limite-consultas: longest run of a statement from a formula or a script.
  std::chrono::milliseconds limite_consultas = kDefaultQueryLimit;
};

// What a command works with. The connection is opened on first use and the suite services are
// built from the options on first use, so a command that needs neither never touches the
// database.
class Context {
 public:
  Context(GlobalOptions options, std::ostream& out, std::ostream& err);
  ~Context();

  const GlobalOptions& options() const { return options_; }
  bool json() const { return options_.json; }

  // Opens the database named by --db (DbError when it cannot be opened). For a command that
  // works on a company (RequireCompany), the company of --empresa is then looked up in
  // cceEmpresas, and Refused ("la empresa N no existe") is thrown when there is none.
  std::shared_ptr<Connection> connection();
  void RequireCompany(bool required) { require_company_ = required; }
  // Default suite services over the connection, for --usuario, with --responder and --hoy.
  SuiteServices& services();

  std::ostream& out() { return out_; }
  std::ostream& err() { return err_; }

  // Writes `value` as indented JSON and a newline on the output (invalid UTF-8 replaced). Keys
  // keep the order in which they were added (the order of the record's properties).
  void PrintJson(const nlohmann::ordered_json& value);
  // A command that writes its JSON result piece by piece says so before the first piece.
  void SalidaJsonIniciada() { salida_json_ = true; }
  // With --json, a failure is also written on the output, unless the command's result was
  // (partly) written already: {"Ok": false, "Error": ErrorJson(...)}. Without --json, nothing.
  void FalloJson(std::optional<int> numero, const std::string& origen, const std::string& texto);

 private:
  GlobalOptions options_;
  std::ostream& out_;
  std::ostream& err_;
  std::shared_ptr<Connection> cn_;
  std::unique_ptr<SuiteServices> services_;
  bool require_company_ = false;
  bool salida_json_ = false;
};

// The one shape of an error in JSON results: {"Numero": n or null, "Origen": "...", "Texto":
// "..."}. Numero is the component's or VB's error number when there is one; Origen the
// component's error source, "VB", "VBScript", "base de datos" or "movfrec COMANDO".
nlohmann::ordered_json ErrorJson(std::optional<int> numero, const std::string& origen,
                                 const std::string& texto);

// Runs the chosen command; returns the exit status.
using Action = std::function<int(Context&)>;

struct CommandDef {
  std::string name;         // as typed on the command line
  std::string description;  // one line, Spanish
  int order = 100;          // place in the help listing
  // Declares the command's options on its subcommand and returns its action.
  std::function<Action(CLI::App&)> setup;
  // The command works on the company of --empresa: when no such company exists the command is
  // refused (exit 1) as soon as it opens the database (Context::RequireCompany).
  bool empresa = true;
};

// Adds a command; returns true so it can initialise a namespace-scope constant.
bool RegisterCommand(CommandDef def);
// Registered commands in help order.
std::vector<CommandDef> RegisteredCommands();

}  // namespace kivmovfrec::cli
