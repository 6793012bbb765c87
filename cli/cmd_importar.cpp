// movfrec importar ARCHIVO: creates or updates movements from the JSON that exportar writes.
//
// All or nothing. Every movement of the file is read and checked first (movement_json.h lists
// the checks; here also: the company, that an ID above 0 names an existing movement of that
// company, that no ID appears twice, and that every line's account can take it:
// storage::ProblemaCuentaRenglon). Any problem: every problem found is listed and nothing is
// written. Then the movements are saved, in the order of the file, by the façade's locked save
// of a run (keys drawn in one block per table), inside ONE transaction of the import: a save
// that fails midway rolls back the ones before it as well, and the table counters too.
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "command.h"
#include "fachada.h"
#include "kivmovfrec/cuentas.h"
#include "kivmovfrec/frecuencia.h"
#include "kivmovfrec/vb.h"
#include "movement_json.h"

namespace kivmovfrec::cli {
namespace {

using Json = nlohmann::ordered_json;

struct Entrada {
  MovimientoLeido leido;
  std::string ruta;
  int32_t recurrencia_guardada = 0;  // schedule key of the stored movement (updates)
};

// Every line's account must be able to take it (each account is asked once).
void ComprobarCuentas(Context& ctx, const std::vector<Entrada>& entradas,
                      std::vector<std::string>& errores) {
  std::map<int32_t, std::optional<std::string>> problemas;
  for (const Entrada& e : entradas) {
    const clsRenglonesMF& lineas = *e.leido.mf->Renglones();
    for (int16_t i = 1; i <= lineas.QRenglones(); ++i) {
      const int32_t cuenta = lineas.Renglon(i)->Cuenta();
      auto it = problemas.find(cuenta);
      if (it == problemas.end()) {
        it = problemas
                 .emplace(cuenta,
                          ProblemaCuentaRenglon(*ctx.connection(), ctx.options().empresa, cuenta))
                 .first;
      }
      if (it->second) {
        errores.push_back(fmt::format("{}.Renglones[{}].Cuenta: {}", e.ruta, i - 1, *it->second));
      }
    }
  }
}

// Checks against the database: company, existence, duplicates, accounts. Fills
// recurrencia_guardada.
void Comprobar(Context& ctx, std::vector<Entrada>& entradas, std::vector<std::string>& errores) {
  const int32_t empresa = ctx.options().empresa;
  if (empresa > std::numeric_limits<int16_t>::max()) {
    errores.push_back(
        fmt::format("--empresa {}: un movimiento guarda la empresa en 16 bits (hasta {})", empresa,
                    std::numeric_limits<int16_t>::max()));
    return;
  }
  std::set<int32_t> vistos;
  for (Entrada& e : entradas) {
    clsRegMovimientoFrecuente& m = *e.leido.mf->MovFrecuente();
    if (m.Empresa() == 0) {
      m.Empresa(static_cast<int16_t>(empresa));
    } else if (m.Empresa() != empresa) {
      errores.push_back(fmt::format(
          "{}.MovFrecuente.Empresa: el movimiento es de la empresa {} y se importa en la "
          "empresa {} (use --empresa o ponga 0)",
          e.ruta, m.Empresa(), empresa));
    }
    if (m.ID() == 0) continue;
    if (!vistos.insert(m.ID()).second) {
      errores.push_back(fmt::format("{}.MovFrecuente.ID: el movimiento {} aparece más de una vez",
                                    e.ruta, m.ID()));
      continue;
    }
    const auto guardado = MovimientoGuardado(ctx, m.ID());
    if (!guardado) {
      errores.push_back(fmt::format("{}.MovFrecuente.ID: {} (use ID 0 para crear uno nuevo)",
                                    e.ruta, NoExiste(m.ID())));
      continue;
    }
    if (guardado->MovFrecuente()->Empresa() != empresa) {
      errores.push_back(fmt::format("{}.MovFrecuente.ID: el movimiento {} es de la empresa {}",
                                    e.ruta, m.ID(), guardado->MovFrecuente()->Empresa()));
    }
    e.recurrencia_guardada = guardado->Recurrencia()->ID();
  }
  ComprobarCuentas(ctx, entradas, errores);
}

// The whole text of the file, or why it cannot be read.
std::optional<std::string> LeerArchivo(const std::string& archivo, std::string& motivo) {
  std::error_code ec;
  if (std::filesystem::is_directory(archivo, ec)) {
    motivo = archivo + " es una carpeta, no un archivo";
    return std::nullopt;
  }
  std::ifstream in(archivo, std::ios::binary);
  if (!in) {
    const int error = errno;
    motivo = "no se puede leer el archivo " + archivo + ": " +
             (error == ENOENT   ? std::string("no existe")
              : error == EACCES ? std::string("no tiene permiso para leerlo")
                                : std::string(std::strerror(error)));
    return std::nullopt;
  }
  std::ostringstream texto;
  texto << in.rdbuf();
  if (in.bad()) {
    motivo = "no se pudo terminar de leer el archivo " + archivo;
    return std::nullopt;
  }
  return std::move(texto).str();
}

// The keys tying the header to its schedule come from the database: a new movement gets a new
// schedule row; an existing one keeps its row (or loses it when the file has no Recurrencia).
void EnlazarAgenda(Entrada& e) {
  clsRegMovimientoFrecuente& m = *e.leido.mf->MovFrecuente();
  clsRegRecurrencia& r = *e.leido.mf->Recurrencia();
  r.ID(e.recurrencia_guardada);
  m.Recurrencia(e.leido.con_agenda ? e.recurrencia_guardada : 0);
}

Action Setup(CLI::App& app) {
  auto archivo = std::make_shared<std::string>();
  app.add_option("ARCHIVO", *archivo, "Archivo JSON: un movimiento o una lista (como exportar)")
      ->required();
  app.footer(
      "Un movimiento con \"ID\": 0 se crea; con otro ID se reemplaza el movimiento existente\n"
      "(cabecera, agenda y renglones; una clave que falta toma el valor de un registro nuevo).\n"
      "Se ignoran al leer: los campos de la cuenta, proyecto y departamento de los renglones\n"
      "(CuentaCodigo, CuentaNombre, ProyectoAbreviacion, DepartamentoAbreviacion, Moneda),\n"
      "FormulaVisible, idMF y las claves de la agenda (MovFrecuente.Recurrencia, Recurrencia.ID),\n"
      "que se toman de la base de datos. MovFrecuente.Empresa debe ser 0 o la de --empresa;\n"
      "un ID distinto de 0 debe ser un movimiento existente de esa empresa; cada renglón debe\n"
      "ir a una cuenta de esa empresa que exista y no sea una carpeta.\n"
      "De la agenda se guardan la Frecuencia, las fechas, los días de aviso y lo postergado:\n"
      "TipoRecurrencia y CadaCuanto deben coincidir con la Frecuencia, Notificar con\n"
      "NotificarDias y Posponer con Postergado; CantidadVeces se guarda como la FechaFinal que\n"
      "le corresponde (o debe coincidir con la FechaFinal dada).\n"
      "Una clave desconocida o repetida es un error.\n"
      "Todo o nada: primero se revisa el archivo entero y, si algún movimiento tiene un error,\n"
      "se listan todos los errores y no se graba ninguno. Después se graban todos dentro de\n"
      "una sola transacción: si uno falla no queda grabado ninguno.\n"
      "Muestra los números de los movimientos grabados, en el orden del archivo.");
  return [archivo](Context& ctx) {
    std::string motivo;
    const auto texto = LeerArchivo(*archivo, motivo);
    if (!texto) return Rechazo(ctx, "importar", motivo);
    std::vector<std::string> errores;
    Json j;
    try {
      j = ParseSinClavesRepetidas(*texto, errores);
    } catch (const Json::parse_error& e) {
      return Rechazo(ctx, "importar",
                     fmt::format("{} no es JSON válido (byte {}): {}", *archivo, e.byte, e.what()));
    }

    const std::unique_ptr<IDateCalculator> propio = CalculadoraFechasSuite();
    IDateCalculator& calendario = ctx.services().calendar ? *ctx.services().calendar : *propio;
    std::vector<Entrada> entradas;
    if (j.is_array()) {
      for (size_t i = 0; i < j.size(); ++i) {
        const std::string ruta = fmt::format("$[{}]", i);
        entradas.push_back(
            {LeerMovimiento(j[i], ruta, calendario, ctx.services().clock, errores), ruta, 0});
      }
    } else {
      entradas.push_back(
          {LeerMovimiento(j, "$", calendario, ctx.services().clock, errores), "$", 0});
    }
    if (errores.empty()) Comprobar(ctx, entradas, errores);
    if (!errores.empty()) {
      for (const std::string& e : errores) ctx.err() << "movfrec importar: " << e << '\n';
      return Rechazo(ctx, "importar",
                     fmt::format("{} error{} en {}; no se importó ningún movimiento",
                                 errores.size(), errores.size() == 1 ? "" : "es", *archivo));
    }

    auto conexion = ctx.connection();
    auto fachada = AbrirFachada(ctx, conexion);
    std::vector<std::shared_ptr<clsMFTipo>> lote;
    std::vector<bool> nuevos;
    for (Entrada& e : entradas) {
      EnlazarAgenda(e);
      nuevos.push_back(e.leido.mf->MovFrecuente()->ID() == 0);
      lote.push_back(e.leido.mf);
    }
    size_t fallido = 0;
    std::vector<int32_t> ids;
    {
      Transaccion importacion(*conexion);
      ids = fachada->SaveMovimientosFrecuentesConBloqueo(lote, &fallido);
      if (ids.empty() && !lote.empty()) {
        const std::string cual =
            fallido < entradas.size()
                ? fmt::format(
                      "el movimiento {} ({})", entradas[fallido].ruta,
                      vb::ShortForMessage(entradas[fallido].leido.mf->MovFrecuente()->Nombre()))
                : std::string("la importación");
        return Rechazo(ctx, "importar",
                       fmt::format("no se pudo grabar {}; se deshizo la importación y no se "
                                   "grabó ninguno. Motivo: {}",
                                   cual,
                                   fachada->UltimoError().empty() ? "la grabación se deshizo"
                                                                  : fachada->UltimoError()));
      }
      importacion.Commit();
    }
    std::vector<std::pair<int32_t, bool>> guardados;
    for (size_t i = 0; i < ids.size(); ++i) guardados.emplace_back(ids[i], nuevos[i]);

    if (ctx.json()) {
      Json lista = Json::array();
      for (const auto& [id, nuevo] : guardados) lista.push_back({{"ID", id}, {"Nuevo", nuevo}});
      ctx.PrintJson(lista);
    } else {
      for (const auto& [id, nuevo] : guardados) {
        ctx.out() << "Movimiento " << id << (nuevo ? " creado" : " actualizado") << ".\n";
      }
    }
    return kExitOk;
  };
}

const bool registered = RegisterCommand(
    {"importar", "Crea o actualiza movimientos desde un archivo JSON (todo o nada)", 32, Setup});

}  // namespace
}  // namespace kivmovfrec::cli
