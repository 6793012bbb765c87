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
#include "kivmovfrec/evaluar.h"
#include "kivmovfrec/vb.h"

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
    const ResultadoExpresion r =
        EvaluarExpresion(ctx.connection().get(), *expression, [clock] { return clock->Now(); });
    if (ctx.json()) {
      // Script errors in the one error shape, with the column where evaluation stopped.
      const auto error = [](const ErrorExpresion& e) {
        nlohmann::ordered_json j = ErrorJson(e.numero, "VBScript", e.descripcion);
        j["Columna"] = e.columna;
        return j;
      };
      nlohmann::ordered_json out;
      out["Ok"] = r.ok;
      out["Resultado"] = r.ok ? nlohmann::ordered_json(r.texto) : nlohmann::ordered_json(nullptr);
      if (r.primer_error) out["ReintentoTrasError"] = error(*r.primer_error);
      out["Error"] = r.ok ? nlohmann::ordered_json(nullptr) : error(r.error);
      ctx.PrintJson(out);
    } else if (r.ok) {
      ctx.out() << r.texto << "\n";
      if (r.primer_error) {
        ctx.err() << "Aviso: el resultado sale de evaluar de nuevo leyendo cada \",\" como \".\"; "
                     "la expresión tal como está escrita da el error "
                  << r.primer_error->numero << ": " << r.primer_error->descripcion << " (columna "
                  << r.primer_error->columna << ")\n";
        PrintCaret(ctx.err(), *expression, r.primer_error->columna);
      }
    } else {
      ctx.err() << "Error " << r.error.numero << ": " << r.error.descripcion << " (columna "
                << r.error.columna << ")\n";
      PrintCaret(ctx.err(), *expression, r.error.columna);
    }
    return r.ok ? kExitOk : kExitFailed;
  };
}

const bool registered = RegisterCommand(
    {"evaluar", "Evalúa una expresión VBScript con rdoCBase sobre la base abierta", 80, Setup,
     /*empresa=*/false});

}  // namespace
}  // namespace kivmovfrec::cli
