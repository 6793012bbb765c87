// movfrec evaluar EXPR: evaluates one expression in VBScript syntax, with the open database
// visible as rdoCBase, so a formula author can try a [codescript] before storing it.
//
// When the value exists only because the expression was evaluated again with every "," read as
// "." after a run-time error, the value is printed and stderr warns with the first error
// (number, text, column): "Round(12000/0,2)" gives 60000 only because "0,2" became 0.2. With
// --json the warning is the "ReintentoTrasError" member.
#include <memory>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>

#include "command.h"
#include "platform/script/script_host.h"
#include "platform/vb/text.h"

namespace kivmovfrec::cli {
namespace {

// The expression with a caret under the character at `column` (0-based, in characters).
void PrintCaret(std::ostream& err, const std::string& expression, int column) {
  err << "  " << expression << "\n  ";
  const std::string before = vb::Left(expression, static_cast<size_t>(column));
  for (char c : before) {
    // Keep tabs so the caret lines up; count a multi-byte character as one column.
    if (c == '\t') {
      err << '\t';
    } else if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
      err << ' ';
    }
  }
  err << "^\n";
}

Action Setup(CLI::App& app) {
  auto expression = std::make_shared<std::string>();
  app.add_option("EXPR", *expression, "Expresión a evaluar (sintaxis VBScript)")->required();
  return [expression](Context& ctx) {
    std::shared_ptr<IClock> clock = ctx.services().clock;
    script::HostOptions options;
    options.clock = [clock] { return clock->Now(); };
    const script::HostResult r =
        script::EvaluateScript(ctx.connection().get(), *expression, true, options);
    if (ctx.json()) {
      nlohmann::ordered_json out;
      if (r.ok) {
        out["Resultado"] = r.text;
        if (r.first_error) {
          out["ReintentoTrasError"] = {{"Numero", r.first_error->number},
                                       {"Descripcion", r.first_error->description},
                                       {"Columna", r.first_error->column}};
        }
      } else {
        out["Error"] = {{"Numero", r.error.number},
                        {"Descripcion", r.error.description},
                        {"Columna", r.error.column}};
      }
      ctx.PrintJson(out);
    } else if (r.ok) {
      ctx.out() << r.text << "\n";
      if (r.first_error) {
        ctx.err() << "Aviso: el resultado sale de evaluar de nuevo leyendo cada \",\" como \".\"; "
                     "la expresión tal como está escrita da el error "
                  << r.first_error->number << ": " << r.first_error->description << " (columna "
                  << r.first_error->column << ")\n";
        PrintCaret(ctx.err(), *expression, r.first_error->column);
      }
    } else {
      ctx.err() << "Error " << r.error.number << ": " << r.error.description << " (columna "
                << r.error.column << ")\n";
      PrintCaret(ctx.err(), *expression, r.error.column);
    }
    return r.ok ? kExitOk : kExitFailed;
  };
}

const bool registered = RegisterCommand(
    {"evaluar", "Evalúa una expresión VBScript con rdoCBase sobre la base abierta", 80, Setup,
     /*empresa=*/false});

}  // namespace
}  // namespace kivmovfrec::cli
