// movfrec calcular ID [--fecha F] [--sin-pedir] [--traza]: works out the amounts of a movement's
// lines with SetCalculoFormulasMF and prints the date used, every line's amount and the debit
// and credit totals. --traza adds, for each line, every element of its formula with its value
// and where it came from (the balance and its date, the rate and the date of the quotation used,
// the query or script, the other movement's document, the line referred to), the expression
// finally reduced and how the amount was converted to the account's currency.
//
// Without --fecha the movement's next due date is used, or today for a movement without one;
// --fecha puts that date in the movement's schedule text before the call, as the host does.
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>

#include <CLI/CLI.hpp>

#include "args.h"
#include "calculo_salida.h"
#include "command.h"
#include "fachada.h"
#include "kivmovfrec/vb.h"
#include "output.h"

namespace kivmovfrec::cli {
namespace {

struct Opciones {
  int32_t id = 0;
  std::string fecha;
  bool sin_pedir = false;
  bool traza = false;
};

Action Setup(CLI::App& app) {
  auto o = std::make_shared<Opciones>();
  app.add_option("ID", o->id, "Número del movimiento")
      ->required()
      ->check(EnteroEntre(1, INT32_MAX));
  OpcionFecha(app, "--fecha", o->fecha, "Fecha del cálculo (dd/mm/aaaa o aaaa-mm-dd)");
  app.add_flag("--sin-pedir", o->sin_pedir,
               "No pide datos: el importe total vale 0 y los datos a pedir no se piden");
  app.add_flag("--traza", o->traza, "Muestra de dónde sale cada valor de cada fórmula");
  return [o](Context& ctx) {
    const auto guardado = MovimientoGuardado(ctx, o->id);
    if (!guardado) return Rechazo(ctx, "calcular", NoExiste(o->id));
    auto mf = AbrirFachada(ctx);
    if (!o->fecha.empty()) {
      const std::optional<Date> f = ParseFecha(o->fecha);
      mf->EstructuraMovFrec()->Recurrencia()->FechaProxima(vb::CStr(Variant(*f)));
    }
    const bool ok = mf->SetCalculoFormulasMF(o->id, o->sin_pedir);
    const TrazaCalculoFx& traza = mf->UltimaTrazaFx();
    ResultadoCalculo r{*mf->EstructuraMovFrec(), traza, ctx.connection()};
    if (ctx.json()) {
      ctx.PrintJson(CalculoJson(r, o->traza));
    } else {
      ImprimirCalculo(ctx.out(), r, o->traza);
    }
    if (!ok) return Rechazo(ctx, "calcular", traza.error.empty() ? "sin resultado" : traza.error);
    return kExitOk;
  };
}

const bool registered = RegisterCommand(
    {"calcular", "Calcula los importes de un movimiento (--traza: de dónde sale cada valor)", 45,
     Setup});

}  // namespace
}  // namespace kivmovfrec::cli
