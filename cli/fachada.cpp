#include "fachada.h"

#include <ostream>
#include <string>

namespace kivmovfrec::cli {

std::unique_ptr<clsMovFrecuente> AbrirFachada(Context& ctx, std::shared_ptr<Connection> cn) {
  auto mf = std::make_unique<clsMovFrecuente>();
  mf->Servicios(ctx.services());
  mf->Connect(cn ? cn : ctx.connection());
  mf->Empresa(ctx.options().empresa);
  return mf;
}

std::optional<clsMFTipo> MovimientoGuardado(Context& ctx, int32_t id) {
  clsMFTipo mf(ctx.services().clock);
  if (!mf.Load(*ctx.connection(), id)) return std::nullopt;
  return mf;
}

std::string NoExiste(int32_t id) {
  return "no existe el movimiento frecuente " + std::to_string(id);
}

int Rechazo(Context& ctx, const std::string& comando, const std::string& texto) {
  ctx.err() << "movfrec " << comando << ": " << texto << '\n';
  ctx.FalloJson(std::nullopt, "movfrec " + comando, texto);
  return kExitFailed;
}

}  // namespace kivmovfrec::cli
