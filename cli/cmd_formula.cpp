// movfrec formula ver ID ORDEN: the display form of the formula of a movement's line (the line
// whose Orden is ORDEN).
// movfrec formula guardar ID ORDEN TEXTO: reads TEXTO as a display form back to the stored form
// and saves it as that line's formula. When the text cannot be read, ":e:" and the position
// where reading stopped are printed, the text is shown with a caret under that position and
// nothing is saved (exit 1). The movement's formula rules (own line, references, difference
// line, cross references, sides) are checked before saving; the save is the locked one (one
// transaction). An empty TEXTO removes the line's formula.
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"
#include "kivmovfrec/presentacion.h"
#include "kivmovfrec/vb.h"

namespace kivmovfrec::cli {
namespace {

struct Opciones {
  int32_t id = 0;
  int orden = 0;
  std::string texto;
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
  linea->Formula(lectura.formula);
  if (const auto regla = presentacion.ReglaIncumplida(mf, fachada->Idioma())) {
    return Rechazo(ctx, "formula guardar", *regla);
  }
  if (fachada->SaveMovimientoFrecuenteConBloqueo() == 0) {
    return Rechazo(
        ctx, "formula guardar",
        "no se pudo grabar el movimiento " + std::to_string(o.id) + ": " + fachada->UltimoError());
  }
  Imprimir(ctx, o.id, o.orden, lectura.formula, presentacion.FormulaVisible(lectura.formula));
  return kExitOk;
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
  app.require_subcommand(1);
  return [o, ver](Context& ctx) { return ver->parsed() ? Ver(ctx, *o) : Guardar(ctx, *o); };
}

const bool registered = RegisterCommand(
    {"formula", "Muestra (ver) o graba (guardar) la fórmula de un renglón", 47, Setup});

}  // namespace
}  // namespace kivmovfrec::cli
