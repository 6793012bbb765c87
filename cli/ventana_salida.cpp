// Dialog commands without a script: the dialog in a real window, or rendered to a PNG.
#include <cstdlib>
#include <memory>
#include <string>

#include "fachada.h"
#include "guion_salida.h"
#include "kivmovfrec/guion.h"
#ifdef KMF_CON_QT
#include "ventanas_qt.h"
#endif

namespace kivmovfrec::cli {

std::shared_ptr<OpcionesDialogo> AgregarOpcionesDialogo(CLI::App& app) {
  auto o = std::make_shared<OpcionesDialogo>();
  auto* guion = app.add_option("--guion", o->guion,
                               "Guion de pasos (JSON) que juega el diálogo sin pantalla");
  auto* captura = app.add_option("--captura", o->captura,
                                 "Dibuja el diálogo en este PNG, sin pantalla, y termina");
  app.add_option("--panel", o->panel, "Panel que muestra la captura (el primero si falta)")
      ->check(CLI::Range(1, 99))
      ->needs(captura);
  guion->excludes(captura);
  return o;
}

int CorrerDialogo(Context& ctx, const std::string& comando, const OpcionesDialogo& opciones,
                  const std::function<ResultadoDialogo(clsMovFrecuente&)>& mostrar) {
  if (!opciones.guion.empty()) return CorrerGuion(ctx, comando, opciones.guion, mostrar);
#ifdef KMF_CON_QT
  const auto definida = [](const char* variable) {
    const char* v = std::getenv(variable);
    return v && *v;
  };
  // Without a display Qt would end the process; say what to do instead.
  if (opciones.captura.empty() && !definida("QT_QPA_PLATFORM") && !definida("DISPLAY") &&
      !definida("WAYLAND_DISPLAY"))
    return Rechazo(ctx, comando, "no hay pantalla: use --guion ARCHIVO o --captura PNG");
  qt::OpcionesVentanas ventanas;
  ventanas.captura = opciones.captura;
  ventanas.panel_captura = opciones.panel;
  const auto captura = qt::Instalar(ctx.services(), ventanas);
  auto fachada = AbrirFachada(ctx);
  const ResultadoDialogo r = mostrar(*fachada);
  if (!fachada->UltimoError().empty())
    ctx.err() << "movfrec " << comando << ": " << fachada->UltimoError() << "\n";
  if (r.rechazo) return Rechazo(ctx, comando, *r.rechazo);
  if (!opciones.captura.empty()) {
    if (!captura->hecha)
      return Rechazo(ctx, comando,
                     captura->error.empty() ? "el diálogo no se mostró" : captura->error);
    if (ctx.json())
      ctx.PrintJson({{"Captura", opciones.captura}});
    else
      ctx.out() << "Captura: " << opciones.captura << "\n";
    return kExitOk;
  }
  if (ctx.json()) {
    nlohmann::ordered_json j = {{"Resultado", r.resultado},
                                {"Valor", r.valor ? nlohmann::ordered_json(*r.valor) : nullptr}};
    j.update(r.extra);
    ctx.PrintJson(j);
  } else {
    if (r.valor)
      ctx.out() << "Valor: " << *r.valor << "\n";
    else
      ctx.out() << "Resultado: " << r.resultado << "\n";
    ctx.out() << r.lineas_extra;
  }
  return r.resultado != 0 || r.valor ? kExitOk : kExitFailed;
#else
  throw UsageError(comando + ": esta compilación no muestra ventanas; use --guion ARCHIVO");
#endif
}

}  // namespace kivmovfrec::cli
