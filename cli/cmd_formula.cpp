// movfrec formula ver ID ORDEN: the display form of the formula of a movement's line (the line
// whose Orden is ORDEN).
// movfrec formula guardar ID ORDEN TEXTO: reads TEXTO as a display form back to the stored form
// and saves it as that line's formula. When the text cannot be read, ":e:" and the position
// where reading stopped are printed, the text is shown with a caret under that position and
// nothing is saved (exit 1). The movement's formula rules (own line, references, difference
// line, cross references, sides) are checked before saving; the save is the locked one (one
// transaction). An empty TEXTO removes the line's formula.
// movfrec formula editar ID ORDEN [--guion ARCHIVO | --captura PNG]: the formula editor
// (EditarFormula) on that line in a window, rendered to a PNG, or played by a step script; the
// report is printed as lista-tareas prints it, and a formula
// accepted in the editor is checked and saved as guardar saves it (then printed as "Fórmula:" or,
// with --json, as Formula / FormulaVisible beside the report). Exit 0 when every step ran and the
// formula was saved, 1 when the editor was cancelled, the script stopped or the save was refused,
// 2 when the script cannot be read.
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"
#include "guion_salida.h"
#include "kivmovfrec/guion.h"
#include "kivmovfrec/presentacion.h"
#include "kivmovfrec/vb.h"

namespace kivmovfrec::cli {
namespace {

struct Opciones {
  int32_t id = 0;
  int orden = 0;
  std::string texto;
  std::shared_ptr<OpcionesDialogo> dialogo;
};

// The line with that Orden, or null.
std::shared_ptr<clsRegRenglonMF> Renglon(const clsMFTipo& mf, int orden) {
  const clsRenglonesMF& lineas = *mf.Renglones();
  for (int16_t i = 1; i <= lineas.QRenglones(); ++i) {
    if (lineas.Renglon(i)->Orden() == orden) return lineas.Renglon(i);
  }
  return nullptr;
}

std::string SinRenglon(int32_t id, int orden) {
  return "el movimiento " + std::to_string(id) + " no tiene el renglón de orden " +
         std::to_string(orden);
}

void Imprimir(Context& ctx, int32_t id, int orden, const std::string& guardada,
              const std::string& visible) {
  if (ctx.json()) {
    ctx.PrintJson(
        {{"ID", id}, {"Orden", orden}, {"Formula", guardada}, {"FormulaVisible", visible}});
  } else {
    ctx.out() << visible << '\n';
  }
}

// Gives `linea` of the loaded movement `mf` its new stored formula, checks the movement's rules
// and saves it with the lock. The refusal's text when a rule is broken or the save fails.
std::optional<std::string> Grabar(clsMovFrecuente& fachada, clsMFTipo& mf, clsRegRenglonMF& linea,
                                  const std::string& formula,
                                  const clsPresentacionMF& presentacion) {
  linea.Formula(formula);
  if (auto regla = presentacion.ReglaIncumplida(mf, fachada.Idioma())) return regla;
  if (fachada.SaveMovimientoFrecuenteConBloqueo() == 0)
    return "no se pudo grabar el movimiento " + std::to_string(mf.MovFrecuente()->ID()) + ": " +
           fachada.UltimoError();
  return std::nullopt;
}

int Ver(Context& ctx, const Opciones& o) {
  const auto mf = MovimientoGuardado(ctx, o.id);
  if (!mf) return Rechazo(ctx, "formula ver", NoExiste(o.id));
  const auto linea = Renglon(*mf, o.orden);
  if (!linea) return Rechazo(ctx, "formula ver", SinRenglon(o.id, o.orden));
  const clsPresentacionMF presentacion(ctx.connection(), *mf);
  Imprimir(ctx, o.id, o.orden, linea->Formula(), presentacion.FormulaVisible(linea->Formula()));
  return kExitOk;
}

int Guardar(Context& ctx, const Opciones& o) {
  auto fachada = AbrirFachada(ctx);
  if (!fachada->LoadMF(o.id)) return Rechazo(ctx, "formula guardar", NoExiste(o.id));
  clsMFTipo& mf = *fachada->EstructuraMovFrec();
  const auto linea = Renglon(mf, o.orden);
  if (!linea) return Rechazo(ctx, "formula guardar", SinRenglon(o.id, o.orden));
  const clsPresentacionMF presentacion(ctx.connection(), mf);
  const LecturaFormulaVisible lectura = presentacion.LeerFormulaVisible(o.texto);
  if (!lectura.ok) {
    ctx.out() << lectura.Resultado() << '\n';
    // The text with a caret under the position; a long one only from a little before it.
    const size_t posicion = static_cast<size_t>(lectura.posicion > 0 ? lectura.posicion - 1 : 0);
    const size_t desde = posicion > 20 ? posicion - 20 : 0;
    const std::string previo = desde > 0 ? "…" : "";
    ctx.err() << "movfrec formula guardar: no se puede leer la fórmula en la posición "
              << lectura.posicion << ": " << vb::ShortForMessage(lectura.error, 200) << "\n  "
              << previo << vb::ShortForMessage(vb::Mid(o.texto, desde + 1)) << "\n  "
              << std::string(posicion - desde + (desde > 0 ? 1 : 0), ' ') << "^\n";
    return kExitFailed;
  }
  if (const auto rechazo = Grabar(*fachada, mf, *linea, lectura.formula, presentacion))
    return Rechazo(ctx, "formula guardar", *rechazo);
  Imprimir(ctx, o.id, o.orden, lectura.formula, presentacion.FormulaVisible(lectura.formula));
  return kExitOk;
}

int Editar(Context& ctx, const Opciones& o) {
  return CorrerDialogo(ctx, "formula editar", *o.dialogo, [&](clsMovFrecuente& fachada) {
    ResultadoDialogo r;
    if (!fachada.LoadMF(o.id)) {
      r.rechazo = NoExiste(o.id);
      return r;
    }
    clsMFTipo& mf = *fachada.EstructuraMovFrec();
    const auto linea = Renglon(mf, o.orden);
    if (!linea) {
      r.rechazo = SinRenglon(o.id, o.orden);
      return r;
    }
    r.valor = fachada.EditarFormula(o.id, static_cast<int16_t>(o.orden));
    const clsPresentacionMF presentacion(ctx.connection(), mf);
    if (r.valor) r.rechazo = Grabar(fachada, mf, *linea, *r.valor, presentacion);
    const bool grabada = r.valor && !r.rechazo;
    const std::string visible = grabada ? presentacion.FormulaVisible(*r.valor) : "";
    r.extra["Formula"] = grabada ? nlohmann::ordered_json(*r.valor) : nullptr;
    r.extra["FormulaVisible"] = grabada ? nlohmann::ordered_json(visible) : nullptr;
    if (grabada) r.lineas_extra = "Fórmula: " + visible + "\n";
    return r;
  });
}

Action Setup(CLI::App& app) {
  auto o = std::make_shared<Opciones>();
  CLI::App* ver =
      app.add_subcommand("ver", "Muestra la fórmula de un renglón como la ve el usuario");
  ver->add_option("ID", o->id, "Número del movimiento")
      ->required()
      ->check(EnteroEntre(1, INT32_MAX));
  ver->add_option("ORDEN", o->orden, "Orden del renglón")->required()->check(EnteroEntre(1, 255));
  CLI::App* guardar =
      app.add_subcommand("guardar", "Lee una fórmula escrita como la ve el usuario y la graba");
  guardar->add_option("ID", o->id, "Número del movimiento")
      ->required()
      ->check(EnteroEntre(1, INT32_MAX));
  guardar->add_option("ORDEN", o->orden, "Orden del renglón")
      ->required()
      ->check(EnteroEntre(1, 255));
  guardar->add_option("TEXTO", o->texto, "Fórmula como la ve el usuario")->required();
  CLI::App* editar = app.add_subcommand(
      "editar", "Editor de fórmulas (ventana, --guion o --captura); graba la fórmula aceptada");
  editar->add_option("ID", o->id, "Número del movimiento")
      ->required()
      ->check(EnteroEntre(1, INT32_MAX));
  editar->add_option("ORDEN", o->orden, "Orden del renglón")
      ->required()
      ->check(EnteroEntre(1, 255));
  o->dialogo = AgregarOpcionesDialogo(*editar);
  app.require_subcommand(1);
  return [o, ver, editar](Context& ctx) {
    if (ver->parsed()) return Ver(ctx, *o);
    return editar->parsed() ? Editar(ctx, *o) : Guardar(ctx, *o);
  };
}

const bool registered = RegisterCommand(
    {"formula", "Muestra (ver), graba (guardar) o edita (editar) la fórmula de un renglón", 47,
     Setup});

}  // namespace
}  // namespace kivmovfrec::cli
