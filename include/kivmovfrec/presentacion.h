// How one movement's formulas and amounts are shown to people and read back from their typing:
// the display form of the stored formulas (references by account code and name instead of
// keys), the rules a formula must keep before it is saved, and amounts in each currency's own
// format.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "kivmovfrec/db.h"
#include "kivmovfrec/export.h"
#include "kivmovfrec/mf_tipo.h"

namespace kivmovfrec {

// A display text read back to the stored form.
struct KMF_API LecturaFormulaVisible {
  bool ok = false;
  std::string formula;  // the stored form, when ok
  int posicion = 0;     // when !ok: 1-based character position where reading stopped
  std::string error;    // when !ok: what went wrong, in Spanish
  // The stored form, or ":e:" followed by the position.
  std::string Resultado() const;
};

class KMF_API clsPresentacionMF {
 public:
  // Reads the company of `mf` (its header's Empresa) and the currencies through `cn`, and takes
  // the lines of `mf` as the lines being edited (references to "the account typed" resolve to
  // them first). A null connection, or a failure to read, never throws: formulas then keep
  // their stored form and amounts use "#,##0.00". `mf` is copied from; it is not kept.
  clsPresentacionMF(std::shared_ptr<Connection> cn, const clsMFTipo& mf);
  ~clsPresentacionMF();
  clsPresentacionMF(const clsPresentacionMF&) = delete;
  clsPresentacionMF& operator=(const clsPresentacionMF&) = delete;

  // The display form of a stored formula; the stored form itself when it cannot be shown ("" for
  // ""). Never throws.
  std::string FormulaVisible(std::string_view guardada) const;

  // Reads a display text back to the stored form; on failure, where and why. An empty text
  // reads as "" (no formula). Database errors while resolving a reference propagate.
  LecturaFormulaVisible LeerFormulaVisible(std::string_view visible) const;

  // The first rule that the formulas of `mf`'s lines break (own line, references, difference
  // line, cross references, sides), as the catalogue's text in language `idioma` followed by
  // " (renglón N)" when it is about one line; nothing when they keep them all.
  std::optional<std::string> ReglaIncumplida(const clsMFTipo& mf, int idioma) const;

  // An amount in currency `moneda`'s format (MonRedondeo; "#,##0.00" when unknown), Spanish
  // separators ("1.234,56").
  std::string Importe(double valor, int16_t moneda) const;
  // The currency's symbol (MonSimbolo), or its number when unknown.
  std::string SimboloMoneda(int16_t moneda) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace kivmovfrec
