#include "formula/reglas_fx.h"

#include <algorithm>
#include <cmath>

#include "formula/formula_mf.h"
#include "platform/vb/text.h"
#include "resources/catalogue.h"
#include "resources/msg.h"

namespace kivmovfrec::formula {
namespace {

FalloRegla Fallo(int mensaje, size_t linea) {
  return {mensaje, static_cast<int>(linea)};
}

bool TieneDiferencia(const LineaRegla& l) {
  return ContieneReferencia(l.formula, kFxDiferencia);
}

bool TieneImporteTotal(const LineaRegla& l) {
  return ContieneReferencia(l.formula, kFxImporteTotal);
}

// Amount in ten-thousandths, rounded half away from zero; nothing when not finite or too large.
std::optional<long long> DiezMilesimos(double x) {
  if (!std::isfinite(x) || std::fabs(x) > 9e14) return std::nullopt;
  return std::llround(x * 10000.0);
}

}  // namespace

std::string FalloRegla::Texto(int idioma) const {
  return std::string(resources::Texto(mensaje, idioma));
}

ResultadoRegla ReglaMismaCuenta(std::span<const LineaRegla> lineas) {
  for (size_t i = 0; i < lineas.size(); ++i) {
    if (ReferenciaLinea(lineas[i].formula, lineas[i].clave)) return Fallo(msg::kFxMismaCuenta, i);
  }
  return std::nullopt;
}

ResultadoRegla ReglaReferenciasValidas(std::span<const LineaRegla> lineas,
                                       const clsFormulaMF* formulas) {
  const clsFxMovFrec catalogo;
  for (size_t i = 0; i < lineas.size(); ++i) {
    for (const ElementoFx& e : DividirFormula(lineas[i].formula)) {
      if (e.tipo != ElementoFx::Tipo::Referencia) continue;
      const EntradaFx* entrada = catalogo.BuscarEntrada(e.id);
      if (entrada == nullptr || entrada->EsGrupo()) return Fallo(msg::kFxValorNoValido, i);
      if (e.id != kFxCuentaIngresada) continue;
      auto clave = LeerClaveLinea(e.argumentos);
      if (!clave) return Fallo(msg::kFxValorNoValido, i);
      bool existe = std::any_of(lineas.begin(), lineas.end(),
                                [&](const LineaRegla& l) { return l.clave == *clave; });
      if (!existe) return Fallo(msg::kFxValorNoValido, i);
    }
    if (formulas != nullptr && !formulas->ArgumentosValidos(lineas[i].formula))
      return Fallo(msg::kFxValorNoValido, i);
  }
  return std::nullopt;
}

ResultadoRegla ReglaDiferenciaSola(std::span<const LineaRegla> lineas) {
  for (size_t i = 0; i < lineas.size(); ++i) {
    if (!TieneDiferencia(lineas[i])) continue;
    std::string resto;
    for (const ElementoFx& e : DividirFormula(lineas[i].formula)) {
      if (e.tipo == ElementoFx::Tipo::Referencia && e.id == kFxDiferencia) continue;
      resto += e.texto;
    }
    if (!vb::Trim(resto).empty()) return Fallo(msg::kFxDiferenciaConOtros, i);
  }
  return std::nullopt;
}

ResultadoRegla ReglaUnaDiferencia(std::span<const LineaRegla> lineas) {
  bool vista = false;
  for (size_t i = 0; i < lineas.size(); ++i) {
    if (!TieneDiferencia(lineas[i])) continue;
    if (vista) return Fallo(msg::kFxRestoEnVariasCuentas, i);
    vista = true;
  }
  return std::nullopt;
}

ResultadoRegla ReglaReferenciaCruzada(std::span<const LineaRegla> lineas) {
  for (size_t a = 0; a < lineas.size(); ++a) {
    for (const ClaveLinea& b_clave : LineasReferidas(lineas[a].formula)) {
      if (b_clave == lineas[a].clave) continue;  // its own line: ReglaMismaCuenta
      for (size_t b = 0; b < lineas.size(); ++b) {
        if (b == a || !(lineas[b].clave == b_clave)) continue;
        if (ReferenciaLinea(lineas[b].formula, lineas[a].clave))
          return Fallo(msg::kFxReferenciaCruzada, a);
      }
    }
  }
  return std::nullopt;
}

ResultadoRegla ReglaSumasIguales(std::span<const LineaRegla> lineas) {
  long long debe = 0;
  long long haber = 0;
  for (const LineaRegla& l : lineas) {
    auto v = DiezMilesimos(l.importe);
    if (!v) return FalloRegla{msg::kSumatoriaNoCoincide, -1};
    (l.al_debe ? debe : haber) += *v;
  }
  if (debe != haber) return FalloRegla{msg::kSumatoriaNoCoincide, -1};
  return std::nullopt;
}

ResultadoRegla ReglaDiferenciaEImporteMismaColumna(std::span<const LineaRegla> lineas) {
  for (size_t d = 0; d < lineas.size(); ++d) {
    if (!TieneDiferencia(lineas[d])) continue;
    for (size_t t = 0; t < lineas.size(); ++t) {
      if (TieneImporteTotal(lineas[t]) && lineas[t].al_debe != lineas[d].al_debe)
        return Fallo(msg::kFxDiferenciaEImporteEnColumnas, std::max(d, t));
    }
  }
  return std::nullopt;
}

ResultadoRegla ReglaImportesCero(std::span<const LineaRegla> lineas) {
  for (size_t i = 0; i < lineas.size(); ++i) {
    if (lineas[i].importe == 0) return Fallo(msg::kCuentasImporteCero, i);
  }
  return std::nullopt;
}

ResultadoRegla ValidarFormulas(std::span<const LineaRegla> lineas, const clsFormulaMF* formulas) {
  if (auto f = ReglaMismaCuenta(lineas)) return f;
  if (auto f = ReglaReferenciasValidas(lineas, formulas)) return f;
  if (auto f = ReglaDiferenciaSola(lineas)) return f;
  if (auto f = ReglaUnaDiferencia(lineas)) return f;
  if (auto f = ReglaReferenciaCruzada(lineas)) return f;
  return ReglaDiferenciaEImporteMismaColumna(lineas);
}

}  // namespace kivmovfrec::formula
