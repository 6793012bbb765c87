// movfrec: the command-line host of the frequent-movements component.
//
// Parses the global options, hands the rest of the command line to the registered commands
// (command.h) and runs the one chosen. Every failure ends here with a Spanish message on stderr
// and exit status 1 (refused or failed) or 2 (wrong command line); nothing escapes main.
#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "kivmovfrec/errors.h"

namespace kivmovfrec::cli {

// Reports an error that ended the program on stderr and, with --json, as the error object on
// stdout; returns the exit status (1).
int ReportError(std::exception_ptr error, Context* ctx) {
  auto json = [ctx](std::optional<int> numero, const std::string& origen,
                    const std::string& texto) {
    if (ctx != nullptr) ctx->FalloJson(numero, origen, texto);
  };
  try {
    std::rethrow_exception(error);
  } catch (const DbError& e) {
    std::cerr << "movfrec: " << DescribirErrorDb(e) << '\n';
    if (e.kind() == DbErrorKind::MissingTable) {
      std::cerr << "Si la base de datos es nueva, cree las tablas con «movfrec init».\n";
    }
    json(std::nullopt, "base de datos", e.what());
  } catch (const ComponentError& e) {
    std::cerr << "movfrec: error " << e.number() << " (" << e.source() << "): " << e.what() << '\n';
    json(e.number(), e.source(), e.what());
  } catch (const VbError& e) {
    std::cerr << "movfrec: error " << e.number() << ": " << e.what() << '\n';
    json(e.number(), "VB", e.what());
  } catch (const std::exception& e) {
    std::cerr << "movfrec: error: " << e.what() << '\n';
    json(std::nullopt, "movfrec", e.what());
  } catch (...) {
    std::cerr << "movfrec: error desconocido\n";
    json(std::nullopt, "movfrec", "error desconocido");
  }
  return kExitFailed;
}

namespace {

// The text after the first ": " of a CLI11 message (the arguments it names).
std::string Detail(const std::string& message) {
  const size_t colon = message.find(": ");
  return colon == std::string::npos ? message : message.substr(colon + 2);
}

// A CLI11 parse error in Spanish.
std::string SpanishParseError(const CLI::ParseError& e, bool command_chosen) {
  const std::string what = e.what();
  if (dynamic_cast<const CLI::ExtrasError*>(&e)) {
    return (command_chosen ? "argumento no esperado: " : "comando desconocido: ") + Detail(what);
  }
  if (dynamic_cast<const CLI::RequiredError*>(&e)) {
    if (what.find("subcommand") != std::string::npos) {
      return "falta el comando (use --help para ver la lista)";
    }
    const size_t is = what.find(" is required");
    return "falta un dato obligatorio: " + (is == std::string::npos ? what : what.substr(0, is));
  }
  if (dynamic_cast<const CLI::ValidationError*>(&e)) return what;  // our validators: Spanish
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&e)) {
    return "cantidad de valores incorrecta: " + what;
  }
  if (dynamic_cast<const CLI::ConversionError*>(&e)) return "valor no válido: " + Detail(what);
  return "línea de comandos no válida: " + what;
}

void Spanish(CLI::App& app) {
  auto formatter = app.get_formatter();
  formatter->label("Usage", "Uso");
  formatter->label("OPTIONS", "OPCIONES");
  formatter->label("SUBCOMMAND", "COMANDO");
  formatter->label("SUBCOMMANDS", "COMANDOS");
  formatter->label("POSITIONALS", "ARGUMENTOS");
  formatter->label("Positionals", "Argumentos");
  formatter->label("REQUIRED", "OBLIGATORIO");
  formatter->label("Env", "Variable");
  formatter->label("Needs", "Requiere");
  formatter->label("Excludes", "Excluye");
  formatter->column_width(34);
}

int Run(int argc, char** argv) {
  CLI::App app{
      "movfrec: movimientos frecuentes (asientos, comprobantes, avisos y listas de "
      "tareas) de la empresa.",
      "movfrec"};
  Spanish(app);
  app.option_defaults()->group("Opciones");  // inherited by the commands
  app.set_help_flag("-h,--help", "Muestra la ayuda y termina");
  app.require_subcommand(1);
  app.fallthrough(false);

  GlobalOptions options;
  if (const char* env = std::getenv("MOVFREC_DB"); env != nullptr && *env != '\0') {
    options.db = env;
  }
  std::string hoy;
  std::string responder;
  app.add_option("--db", options.db,
                 "Base de datos: sqlite:ARCHIVO, sqlite::memory: o postgresql://... "
                 "(si falta, MOVFREC_DB; si no, sqlite:movfrec.db)")
      ->type_name("URI");
  app.add_option("--empresa", options.empresa, "Empresa (1 si falta)")
      ->type_name("N")
      ->check(EnteroEntre(1, INT32_MAX));
  app.add_option("--usuario", options.usuario, "Usuario (1 si falta)")
      ->type_name("N")
      ->check(EnteroEntre(0, INT32_MAX));
  OpcionFecha(app, "--hoy", hoy,
              "Fija la fecha de hoy para toda la ejecución (aaaa-mm-dd o dd/mm/aaaa)");
  app.add_option("--responder", responder,
                 "Responde si o no a toda pregunta (sin terminal se responde no)")
      ->type_name("si|no")
      ->check(SiNo());
  app.add_flag("--json", options.json, "Resultado en JSON por la salida estándar");
  std::string limite;
  app.add_option("--limite-consultas", limite,
                 "Tiempo máximo de cada consulta de una fórmula o un script ([query], "
                 "rdoCBase.OpenResultset); 0 sin límite (10 si falta)")
      ->type_name("SEGUNDOS")
      ->check(SegundosValidos());

  std::map<const CLI::App*, std::pair<Action, bool>> actions;  // and whether it needs a company
  for (const CommandDef& def : RegisteredCommands()) {
    CLI::App* sub = app.add_subcommand(def.name, def.description);
    sub->group("Comandos");
    sub->set_help_flag("-h,--help", "Muestra la ayuda del comando y termina");
    actions[sub] = {def.setup(*sub), def.empresa};
  }

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e, std::cout, std::cerr);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e, std::cout, std::cerr);
  } catch (const CLI::ParseError& e) {
    std::string message = SpanishParseError(e, !app.get_subcommands().empty());
    // A word that is no command leaves the command missing; name the word instead.
    if (app.get_subcommands().empty() && !app.remaining().empty()) {
      message = "comando desconocido: " + app.remaining().front();
    }
    std::cerr << "movfrec: " << message << '\n' << "Use «movfrec --help» para ver la ayuda.\n";
    // The flag may stand anywhere before the error; look for it in the words typed.
    if (std::find(argv + 1, argv + argc, std::string_view("--json")) != argv + argc) {
      GlobalOptions con_json = options;
      con_json.json = true;
      Context salida(con_json, std::cout, std::cerr);
      salida.FalloJson(std::nullopt, "movfrec", message);
    }
    return kExitUsage;
  }
  if (!hoy.empty()) options.hoy = ParseFecha(hoy);
  if (!responder.empty()) options.responder = ParseSiNo(responder);
  if (!limite.empty()) options.limite_consultas = *ParseSegundos(limite);

  const CLI::App* chosen = app.get_subcommands().front();
  Context ctx(options, std::cout, std::cerr);
  const auto& [action, company] = actions.at(chosen);
  ctx.RequireCompany(company);
  const std::string origen = "movfrec " + chosen->get_name();
  try {
    return action(ctx);
  } catch (const UsageError& e) {
    std::cerr << origen << ": " << e.what() << '\n';
    ctx.FalloJson(std::nullopt, origen, e.what());
    return kExitUsage;
  } catch (const Refused& e) {
    std::cerr << origen << ": " << e.what() << '\n';
    ctx.FalloJson(std::nullopt, origen, e.what());
    return kExitFailed;
  } catch (...) {
    return ReportError(std::current_exception(), &ctx);
  }
}

}  // namespace
}  // namespace kivmovfrec::cli

int main(int argc, char** argv) {
  try {
    return kivmovfrec::cli::Run(argc, argv);
  } catch (...) {
    return kivmovfrec::cli::ReportError(std::current_exception(), nullptr);
  }
}
