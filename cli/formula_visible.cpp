#include "formula_visible.h"

#include <exception>
#include <string>

#include "formula/formula_mf.h"

namespace kivmovfrec::cli {

void AgregarFormulaVisible(nlohmann::ordered_json& mov, const clsMFTipo& mf,
                           std::shared_ptr<Connection> cn) {
  clsEmpresa empresa;
  try {
    if (cn) empresa.Load(mf.MovFrecuente()->Empresa(), *cn);
  } catch (const std::exception&) {
  }
  const formula::clsFormulaMF fm(cn,
                                 formula::ContextoFormula::De(empresa, mf.MovFrecuente()->ID()));
  auto& renglones = mov["Renglones"];
  const clsRenglonesMF& lineas = *mf.Renglones();
  for (int16_t i = 1; i <= lineas.QRenglones() && static_cast<size_t>(i) <= renglones.size(); ++i) {
    const std::string& guardada = lineas.Renglon(i)->Formula();
    std::string visible = guardada;
    try {
      if (!guardada.empty()) visible = fm.AVisible(guardada);
    } catch (const std::exception&) {
    }
    renglones[static_cast<size_t>(i - 1)]["FormulaVisible"] = visible;
  }
}

}  // namespace kivmovfrec::cli
