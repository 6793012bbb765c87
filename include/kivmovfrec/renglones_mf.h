// clsRenglonesMF: the ordered lines of a movement, indexed from 1.
//
// The collection holds shared references: Renglon(i) hands out the stored record itself, so a
// change made through it is a change of the line in the collection, and AddRenglon / SetRenglon
// store the record given (not a copy). Positions are 16-bit, as the suite numbers them.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kivmovfrec/export.h"
#include "kivmovfrec/reg_renglon_mf.h"

namespace kivmovfrec {

class KMF_API clsRenglonesMF {
 public:
  // Appends `r` at the end. A null record throws std::invalid_argument and adds nothing.
  // Past 32767 lines throws VbError(6), overflow.
  void AddRenglon(std::shared_ptr<clsRegRenglonMF> r);
  // Removes the line at position `iIndex` (1-based); later lines move up by one. A position
  // outside 1..QRenglones throws VbError(9), subscript out of range, and removes nothing.
  void RemoveRenglon(int16_t iIndex);
  // Number of lines.
  int16_t QRenglones() const { return static_cast<int16_t>(lineas_.size()); }
  // The line at position `iIndex` (1-based); VbError(9) outside 1..QRenglones.
  std::shared_ptr<clsRegRenglonMF> Renglon(int16_t iIndex) const;
  // Replaces the line at position `iIndex` with `oRenglon`; VbError(9) outside 1..QRenglones,
  // std::invalid_argument for a null record.
  void SetRenglon(int16_t iIndex, std::shared_ptr<clsRegRenglonMF> oRenglon);

 private:
  size_t Posicion(int16_t iIndex) const;
  std::vector<std::shared_ptr<clsRegRenglonMF>> lineas_;
};

}  // namespace kivmovfrec
