#include "kivmovfrec/renglones_mf.h"

#include <limits>
#include <stdexcept>
#include <utility>

#include "kivmovfrec/variant.h"

namespace kivmovfrec {
namespace {

void RechazarNulo(const std::shared_ptr<clsRegRenglonMF>& r) {
  if (!r) throw std::invalid_argument("clsRenglonesMF: renglón nulo");
}

}  // namespace

size_t clsRenglonesMF::Posicion(int16_t iIndex) const {
  if (iIndex < 1 || static_cast<size_t>(iIndex) > lineas_.size()) throw VbError(9);
  return static_cast<size_t>(iIndex) - 1;
}

void clsRenglonesMF::AddRenglon(std::shared_ptr<clsRegRenglonMF> r) {
  RechazarNulo(r);
  if (lineas_.size() >= static_cast<size_t>(std::numeric_limits<int16_t>::max())) {
    throw VbError(6);
  }
  lineas_.push_back(std::move(r));
}

void clsRenglonesMF::RemoveRenglon(int16_t iIndex) {
  const size_t i = Posicion(iIndex);
  lineas_.erase(lineas_.begin() + static_cast<std::ptrdiff_t>(i));
}

std::shared_ptr<clsRegRenglonMF> clsRenglonesMF::Renglon(int16_t iIndex) const {
  return lineas_[Posicion(iIndex)];
}

void clsRenglonesMF::SetRenglon(int16_t iIndex, std::shared_ptr<clsRegRenglonMF> oRenglon) {
  const size_t i = Posicion(iIndex);
  RechazarNulo(oRenglon);
  lineas_[i] = std::move(oRenglon);
}

}  // namespace kivmovfrec
