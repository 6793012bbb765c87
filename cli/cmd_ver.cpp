// movfrec ver ID: one movement with its schedule and lines, for a person or (--json) as the
// JSON that exportar writes and importar reads.
#include <algorithm>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"
#include "formula_visible.h"
#include "kivmovfrec/frecuencia.h"
#include "kivmovfrec/vb.h"
#include "movement_json.h"
#include "output.h"

namespace kivmovfrec::cli {
namespace {

std::string Numero(double v) {
  return vb::NumberToText(v);
}

std::string Fecha(const std::string& texto) {
  return texto.empty() ? "" : FechaTexto(Variant(texto));
}

void Campos(std::ostream& out, const std::vector<std::pair<std::string, std::string>>& campos) {
  size_t ancho = 0;
  for (const auto& [clave, valor] : campos) ancho = std::max(ancho, vb::Len(clave));
  for (const auto& [clave, valor] : campos) {
    out << "  " << clave << std::string(ancho - vb::Len(clave) + 2, ' ') << valor << '\n';
  }
}

void Mostrar(std::ostream& out, const clsMFTipo& mf) {
  const clsRegMovimientoFrecuente& m = *mf.MovFrecuente();
  const int tipo = ToInt(m.Tipo());
  out << "Movimiento " << m.ID() << ": " << m.Nombre() << '\n';
  std::vector<std::pair<std::string, std::string>> cab = {
      {"Tipo", fmt::format("{} {}", tipo, NombreTipoMovFrec(tipo))},
      {"Estado", fmt::format("{} {}, desde {}", m.Estado(), NombreEstadoMF(m.Estado()),
                             FechaTexto(m.FechaEstado()))},
      {"Memo", m.Memo()},
      {"Empresa", std::to_string(m.Empresa())},
      {"DelSistema", m.DelSistema() == enuClasificacionMF::Sistema ? "1 Sistema" : "0 Normal"},
      {"Ente", std::to_string(m.Ente())},
      {"Modalidad", std::to_string(m.Modalidad())},
      {"TipoImporte", std::to_string(m.TipoImporte())},
      {"Moneda", std::to_string(m.Moneda())},
      {"MovVinculado", m.MovVinculado() > 0
                           ? fmt::format("{} (orden {})", m.MovVinculado(), m.OrdenMovVinculado())
                           : "no"},
      {"UsuarioAlta", std::to_string(m.UsuarioAlta())},
      {"UsuarioAutoriza", std::to_string(m.UsuarioAutoriza())},
      {"Vista", std::to_string(m.Vista())},
      {"Imagen", std::to_string(m.Imagen())},
  };
  Campos(out, cab);

  const clsRegRecurrencia& r = *mf.Recurrencia();
  if (r.ID() > 0 || !r.FechaProxima().empty()) {
    const std::unique_ptr<IDateCalculator> calculadora = CalculadoraFechasSuite();
    std::string fin = r.SinVencimiento() != 0 ? "sin vencimiento" : "";
    if (r.SinVencimiento() == 0) {
      fin = r.FechaFinal().empty() ? "sin fecha final" : "hasta el " + Fecha(r.FechaFinal());
      if (r.CantidadVeces() > 0) fin += fmt::format(", {} veces", r.CantidadVeces());
    }
    std::string aviso = "no";
    if (r.NotificarDias() > 0) {
      aviso = fmt::format("{} días antes", vb::SingleToText(r.NotificarDias()));
      if (r.Postergado() > 0) {
        aviso += fmt::format(", postergado {} días", vb::SingleToText(r.Postergado()));
      }
    }
    out << "Agenda " << r.ID() << '\n';
    Campos(out, {
                    {"Frecuencia",
                     r.Frecuencia() + " " + calculadora->DescribirFrecuencia(r.Frecuencia())},
                    {"FechaProxima", Fecha(r.FechaProxima())},
                    {"NumOcurrencia", std::to_string(r.NumOcurrencia())},
                    {"FechaInicio", Fecha(r.FechaInicio())},
                    {"Fin", fin},
                    {"Aviso", aviso},
                });
  } else {
    out << "Sin agenda (movimiento frecuente)\n";
  }

  const clsRenglonesMF& lineas = *mf.Renglones();
  if (lineas.QRenglones() == 0) {
    out << "Sin renglones\n";
    return;
  }
  out << "Renglones\n";
  TextTable tabla{{"Orden", "Cuenta", "Nombre", "Proy", "Depto", "D/H", "Fórmula", "ImporteCta",
                   "ImporteMF", "Mon", "TC", "Detalle"},
                  {},
                  {true, false, false, false, false, false, false, true, true, true, true}};
  for (int16_t i = 1; i <= lineas.QRenglones(); ++i) {
    const clsRegRenglonMF& l = *lineas.Renglon(i);
    std::string tc;
    if (l.TipoCambio() > 0) tc = "tipo " + std::to_string(l.TipoCambio());
    if (l.ValorTC() != 0) tc += (tc.empty() ? "" : " ") + Numero(l.ValorTC());
    tabla.rows.push_back({std::to_string(l.Orden()),
                          l.CuentaCodigo().empty() ? std::to_string(l.Cuenta()) : l.CuentaCodigo(),
                          l.CuentaNombre(), l.ProyectoAbreviacion(), l.DepartamentoAbreviacion(),
                          l.AlDebe() ? "Debe" : "Haber", l.Formula(), Numero(l.ImporteCta()),
                          Numero(l.ImporteMF()), std::to_string(l.Moneda()), tc, l.Detalle()});
  }
  std::ostringstream texto;
  tabla.Print(texto);
  std::istringstream filas(texto.str());
  for (std::string fila; std::getline(filas, fila);) out << "  " << fila << '\n';
}

Action Setup(CLI::App& app) {
  auto id = std::make_shared<int32_t>(0);
  app.add_option("ID", *id, "Número del movimiento")->required()->check(EnteroEntre(1, INT32_MAX));
  return [id](Context& ctx) {
    const auto mf = MovimientoGuardado(ctx, *id);
    if (!mf) return Rechazo(ctx, "ver", NoExiste(*id));
    if (ctx.json()) {
      nlohmann::ordered_json mov = MovimientoJson(*mf);
      AgregarFormulaVisible(mov, *mf, ctx.connection());
      ctx.PrintJson(mov);
    } else {
      Mostrar(ctx.out(), *mf);
    }
    return kExitOk;
  };
}

const bool registered = RegisterCommand(
    {"ver", "Muestra un movimiento con su agenda y sus renglones (--json: como exportar)", 30,
     Setup});

}  // namespace
}  // namespace kivmovfrec::cli
