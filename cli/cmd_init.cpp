// movfrec init [--demo]: creates the suite tables (idempotent) and optionally the demo company.
#include <memory>
#include <ostream>

#include <CLI/CLI.hpp>

#include "command.h"
#include "kivmovfrec/install.h"
#include "kivmovfrec/vb.h"

namespace kivmovfrec::cli {
namespace {

int64_t MovementsOf(Connection& cn, int32_t empresa) {
  auto rs = cn.OpenResultset("Select Count(*) From genMovimientosFrecuentes Where MFrEmpresa = " +
                             std::to_string(empresa));
  return rs->Eof() ? 0 : vb::CLng(rs->Get(0));
}

Action Setup(CLI::App& app) {
  auto demo = std::make_shared<bool>(false);
  app.add_flag("--demo", *demo,
               "Carga también la empresa de demostración (solo si la empresa 1 no existe)");
  return [demo](Context& ctx) {
    auto cn = ctx.connection();
    InstallOptions opts;
    opts.demo = *demo;
    InstallSchema(*cn, opts);
    const int32_t empresa = ctx.options().empresa;
    const int64_t movimientos = MovementsOf(*cn, empresa);
    if (ctx.json()) {
      ctx.PrintJson({{"Demo", *demo}, {"Empresa", empresa}, {"Movimientos", movimientos}});
    } else {
      ctx.out() << "Tablas de la suite listas; la empresa " << empresa << " tiene " << movimientos
                << (movimientos == 1 ? " movimiento.\n" : " movimientos.\n");
    }
    return kExitOk;
  };
}

const bool registered = RegisterCommand(
    {"init", "Crea las tablas de la suite que falten (--demo: con datos de demostración)", 10,
     Setup, /*empresa=*/false});

}  // namespace
}  // namespace kivmovfrec::cli
