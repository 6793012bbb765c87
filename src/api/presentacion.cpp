#include "kivmovfrec/presentacion.h"

#include <exception>
#include <vector>

#include "formula/formula_mf.h"
#include "formula/monedas.h"
#include "formula/reglas_fx.h"
#include "platform/vb/format.h"

namespace kivmovfrec {

struct clsPresentacionMF::Impl {
  // Only the currencies' formats and symbols are read; no rate is looked up, so neither the
  // clock nor the database's date settings play a part and the standard settings do.
  formula::clsMonedas monedas{nullptr, ParametrosBD{}};
  std::unique_ptr<formula::clsFormulaMF> formulas;
};

clsPresentacionMF::clsPresentacionMF(std::shared_ptr<Connection> cn, const clsMFTipo& mf)
    : impl_(std::make_unique<Impl>()) {
  try {
    if (!cn) return;
    impl_->monedas.Connect(cn);
    impl_->monedas.Load();
    clsEmpresa empresa;
    if (!empresa.Load(mf.MovFrecuente()->Empresa(), *cn)) return;
    impl_->monedas.Empresa(empresa);
    impl_->formulas = std::make_unique<formula::clsFormulaMF>(
        cn, formula::ContextoFormula::De(empresa, mf.MovFrecuente()->ID()));
    std::vector<formula::LineaVisible> lineas;
    const clsRenglonesMF& r = *mf.Renglones();
    for (int16_t i = 1; i <= r.QRenglones(); ++i) {
      const clsRegRenglonMF& l = *r.Renglon(i);
      lineas.push_back({{l.Cuenta(), l.Proyecto(), l.Departamento()},
                        l.CuentaCodigo(),
                        l.CuentaNombre(),
                        l.ProyectoAbreviacion(),
                        l.DepartamentoAbreviacion()});
    }
    impl_->formulas->LineasEnMemoria(std::move(lineas));
  } catch (const std::exception&) {
    impl_->formulas.reset();
  }
}

clsPresentacionMF::~clsPresentacionMF() = default;

std::string clsPresentacionMF::FormulaVisible(std::string_view guardada) const {
  if (guardada.empty() || !impl_->formulas) return std::string(guardada);
  try {
    return impl_->formulas->AVisible(guardada);
  } catch (const std::exception&) {
    return std::string(guardada);
  }
}

LecturaFormulaVisible clsPresentacionMF::LeerFormulaVisible(std::string_view visible) const {
  // Without the company no reference can be resolved: read with an empty context.
  const formula::clsFormulaMF sin_empresa(nullptr, formula::ContextoFormula{});
  return (impl_->formulas ? *impl_->formulas : sin_empresa).LeerVisible(visible);
}

std::optional<std::string> clsPresentacionMF::ReglaIncumplida(const clsMFTipo& mf,
                                                              int idioma) const {
  std::vector<formula::LineaRegla> reglas;
  const clsRenglonesMF& lineas = *mf.Renglones();
  for (int16_t i = 1; i <= lineas.QRenglones(); ++i) {
    const clsRegRenglonMF& l = *lineas.Renglon(i);
    reglas.push_back(
        {{l.Cuenta(), l.Proyecto(), l.Departamento()}, l.AlDebe(), l.Formula(), l.ImporteMF()});
  }
  const auto fallo = formula::ValidarFormulas(reglas, impl_->formulas.get());
  if (!fallo) return std::nullopt;
  std::string texto = fallo->Texto(idioma);
  if (fallo->linea >= 0) texto += " (renglón " + std::to_string(fallo->linea + 1) + ")";
  return texto;
}

std::string clsPresentacionMF::Importe(double valor, int16_t moneda) const {
  const formula::MonedaFx* m = nullptr;
  try {
    m = impl_->monedas.Moneda(moneda);
  } catch (const std::exception&) {
  }
  return vb::Format(Variant(valor), m != nullptr ? m->formato_importe : "#,##0.00");
}

std::string clsPresentacionMF::SimboloMoneda(int16_t moneda) const {
  const formula::MonedaFx* m = nullptr;
  try {
    m = impl_->monedas.Moneda(moneda);
  } catch (const std::exception&) {
  }
  return m != nullptr ? m->simbolo : std::to_string(moneda);
}

}  // namespace kivmovfrec
