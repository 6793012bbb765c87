// The direct rate look-up, built from its literals exactly as the rate service concatenates
// them: the quotation of currency a in b, then the one of b in a inverted by the database.
#pragma once

#include <string>

namespace kivmovfrec::testing {

inline std::string DirectRateSql(const std::string& date, int a, int b, int t) {
  auto rest = [&](int x, int y) {
    return std::string(" From genCotizacionesMoneda ") +
           " Where CMoFecha IN (Select MAX(CMoFecha) from genCotizacionesMoneda " +
           " Where CMoFecha <= " + date + " And CMoMoneda = " + std::to_string(x) +
           " And CMoCotizaEn = " + std::to_string(y) +
           " And CMoTipoCotizacion = " + std::to_string(t) + ")" +
           " And CMoMoneda = " + std::to_string(x) + " And CMoCotizaEn = " + std::to_string(y) +
           " And CMoTipoCotizacion = " + std::to_string(t);
  };
  return "Select Top 1 CMoFecha, CMoCompra, CMoVenta " + rest(a, b) + " UNION ALL " +
         "Select Top 1 CMoFecha, 1/CMoCompra, 1/CMoVenta " + rest(b, a);
}

}  // namespace kivmovfrec::testing
