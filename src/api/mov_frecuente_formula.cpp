// clsMovFrecuente::EditarFormula: the formula editor opened on one stored line.
#include <exception>
#include <string>

#include "kivmovfrec/mov_frecuente.h"
#include "resources/msg.h"
#include "ui/formula_editor/frm_def_formula.h"

namespace kivmovfrec {

std::optional<std::string> clsMovFrecuente::EditarFormula(int32_t lIDMF, int16_t orden) {
  ultimo_error_.clear();
  if (!ctx_.cn) return std::nullopt;
  try {
    if (!ctx_.servicios.formularios) {
      ultimo_error_ = "no hay dónde mostrar el editor de fórmulas (sin formularios)";
      return std::nullopt;
    }
    clsMFTipo mf(ctx_.servicios.clock);
    if (!mf.Load(*ctx_.cn, lIDMF)) {
      ultimo_error_ = "no existe el movimiento " + std::to_string(lIDMF);
      return std::nullopt;
    }
    const clsRenglonesMF& lineas = *mf.Renglones();
    for (int16_t i = 1; i <= lineas.QRenglones(); ++i) {
      if (lineas.Renglon(i)->Orden() != orden) continue;
      ContextoMF ctx = ctx_;
      ctx.parametros.idioma = static_cast<int16_t>(Idioma());
      ui::frmDefFormula editor(ctx, mf, i - 1, false);
      return editor.Mostrar(lineas.Renglon(i)->Formula());
    }
    ultimo_error_ = "el movimiento " + std::to_string(lIDMF) + " no tiene el renglón de orden " +
                    std::to_string(orden);
    return std::nullopt;
  } catch (const std::exception& e) {
    Reportar(msg::kErrorCargarFormulas, e);
    return std::nullopt;
  }
}

}  // namespace kivmovfrec
