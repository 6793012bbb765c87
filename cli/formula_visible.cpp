#include "formula_visible.h"

#include <string>

#include "kivmovfrec/presentacion.h"

namespace kivmovfrec::cli {

void AgregarFormulaVisible(nlohmann::ordered_json& mov, const clsMFTipo& mf,
                           std::shared_ptr<Connection> cn) {
  const clsPresentacionMF presentacion(std::move(cn), mf);
  auto& renglones = mov["Renglones"];
  const clsRenglonesMF& lineas = *mf.Renglones();
  for (int16_t i = 1; i <= lineas.QRenglones() && static_cast<size_t>(i) <= renglones.size(); ++i) {
    renglones[static_cast<size_t>(i - 1)]["FormulaVisible"] =
        presentacion.FormulaVisible(lineas.Renglon(i)->Formula());
  }
}

}  // namespace kivmovfrec::cli
