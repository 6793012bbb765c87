// movfrec listar [--tipo N] [--estado N]: the movements of the company.
#include <memory>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "kivmovfrec/vb.h"
#include "movement_json.h"
#include "output.h"

namespace kivmovfrec::cli {
namespace {

struct Filters {
  int tipo = 0;     // 0 = every type but task-list items
  int estado = -1;  // -1 = every state
};

std::string ListSql(int32_t empresa, const Filters& f) {
  std::string sql =
      "Select MFrID, MFrTipo, MFrNombre, MFrEstado, RecFechaProxima From "
      "genMovimientosFrecuentes Left Join genRecurrencias On RecID = MFrRecurrencia Where "
      "MFrEmpresa = " +
      std::to_string(empresa);
  sql += f.tipo > 0 ? " And MFrTipo = " + std::to_string(f.tipo) : " And MFrTipo <> 6";
  if (f.estado >= 0) sql += " And MFrEstado = " + std::to_string(f.estado);
  return sql + " Order By MFrID";
}

int32_t Number(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? 0 : vb::CLng(v);
}

std::string Text(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? "" : vb::CStr(v);
}

Action Setup(CLI::App& app) {
  auto filters = std::make_shared<Filters>();
  app.add_option("--tipo", filters->tipo,
                 "Solo ese tipo: 1 asiento, 2 comprobante, 3 aviso, 4 asiento del sistema, "
                 "5 lista de tareas, 6 tarea (sin --tipo se omiten las tareas)")
      ->type_name("N")
      ->check(EnteroEntre(1, 6));
  app.add_option("--estado", filters->estado,
                 "Solo ese estado: 0 en proceso, 1 realizado, 9 papelera")
      ->type_name("N")
      ->check(EnteroEntre(0, 9));
  return [filters](Context& ctx) {
    if (filters->estado != -1 && filters->estado != 0 && filters->estado != 1 &&
        filters->estado != 9) {
      throw UsageError(
          "--estado: el estado debe ser 0 (en proceso), 1 (realizado) o 9 "
          "(papelera)");
    }
    auto rs = ctx.connection()->OpenResultset(ListSql(ctx.options().empresa, *filters));
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    TextTable table{
        {"ID", "Tipo", "Nombre", "Estado", "Próxima"}, {}, {true, false, false, false, false}};
    for (; !rs->Eof(); rs->MoveNext()) {
      const int32_t id = Number(rs->Get("MFrID"));
      const int32_t tipo = Number(rs->Get("MFrTipo"));
      const std::string nombre = vb::Trim(Text(rs->Get("MFrNombre")));
      const int32_t estado = Number(rs->Get("MFrEstado"));
      const Variant proxima = rs->Get("RecFechaProxima");
      list.push_back({{"ID", id},
                      {"Tipo", tipo},
                      {"Nombre", nombre},
                      {"Estado", estado},
                      {"FechaProxima", FechaJson(proxima)}});
      table.rows.push_back(
          {std::to_string(id), std::to_string(tipo) + " " + NombreTipoMovFrec(tipo), nombre,
           std::to_string(estado) + " " + NombreEstadoMF(estado), FechaTexto(proxima)});
    }
    if (ctx.json()) {
      ctx.PrintJson(list);
    } else if (table.rows.empty()) {
      ctx.out() << "No hay movimientos en la empresa " << ctx.options().empresa << ".\n";
    } else {
      table.Print(ctx.out());
    }
    return kExitOk;
  };
}

const bool registered = RegisterCommand(
    {"listar", "Lista los movimientos de la empresa (--tipo, --estado)", 20, Setup});

}  // namespace
}  // namespace kivmovfrec::cli
