#include "kivmovfrec/empresa.h"

#include <cmath>
#include <limits>
#include <optional>

#include "kivmovfrec/variant.h"
#include "platform/vb/convert.h"
#include "platform/vb/text.h"

namespace kivmovfrec {
namespace {

// The value of a parameter item after its prefix: numeric text (as a person writes it) that
// fits a 16-bit integer, rounded as VB's integer conversion does.
std::optional<int16_t> ValorEntero(const std::string& resto) {
  const Variant v(resto);
  if (resto.empty() || !vb::IsNumeric(v)) return std::nullopt;
  const double x = std::nearbyint(vb::CDbl(v));
  if (!(x >= std::numeric_limits<int16_t>::min() && x <= std::numeric_limits<int16_t>::max())) {
    return std::nullopt;
  }
  return static_cast<int16_t>(x);
}

}  // namespace

void clsEmpresa::AplicarPrms(std::string_view prms) {
  static constexpr std::string_view kLibro = "lib:";
  static constexpr std::string_view kTipoComprobante = "tcom:";
  for (const std::string& item : vb::Split(prms, "|")) {
    if (vb::StartsWithIgnoreCase(item, kLibro)) {
      if (auto n = ValorEntero(vb::Replace(item, kLibro, "", /*ignore_case=*/true))) libro_ = *n;
    } else if (vb::StartsWithIgnoreCase(item, kTipoComprobante)) {
      if (auto n = ValorEntero(vb::Replace(item, kTipoComprobante, "", /*ignore_case=*/true))) {
        tipo_comprobante_ = *n;
      }
    }
  }
}

}  // namespace kivmovfrec
