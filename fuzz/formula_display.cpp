// libFuzzer target for the formula language over the demo company: any text read back as a
// display formula must give a stored formula or ":e:" with a position inside the text, any
// text shown as a stored formula must come back without crashing, and legend macros must
// expand any text for any valid date. Nothing may throw.
//
// The first byte chooses what the rest is: 0-1 a display text, 2-3 a stored formula (also
// read back from its display form), 4 a legend (two more bytes pick the date).
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "formula/formula_mf.h"
#include "formula/leyenda.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/install.h"
#include "platform/suite/clock.h"
#include "platform/vb/dates.h"
#include "platform/vb/text.h"

namespace {

using kivmovfrec::formula::clsFormulaMF;
using kivmovfrec::formula::LecturaFormula;

void Check(bool condition) {
  if (!condition) std::abort();
}

std::shared_ptr<kivmovfrec::Connection> Demo() {
  static std::shared_ptr<kivmovfrec::Connection> cn = [] {
    auto c = kivmovfrec::OpenConnection("sqlite::memory:");
    kivmovfrec::InstallSchema(*c, {.demo = true});
    return c;
  }();
  return cn;
}

void CheckLectura(const LecturaFormula& r, std::string_view texto) {
  if (r.ok) return;
  Check(r.posicion >= 1);
  Check(static_cast<size_t>(r.posicion) <= kivmovfrec::vb::Len(texto) + 1);
  Check(!r.error.empty());
  Check(r.Resultado() == ":e:" + std::to_string(r.posicion));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const uint8_t modo = data[0] % 5;
  std::string_view texto(reinterpret_cast<const char*>(data + 1), size - 1);
  // Movement 2 has lines of every kind; the company shows account codes.
  clsFormulaMF f(Demo(), {1, 2, true});
  if (modo <= 1) {
    CheckLectura(f.LeerVisible(texto), texto);
  } else if (modo <= 3) {
    std::string visible = f.AVisible(texto);
    CheckLectura(f.LeerVisible(visible), visible);
  } else {
    if (texto.size() < 2) return 0;
    const int dias = static_cast<uint8_t>(texto[0]) * 256 + static_cast<uint8_t>(texto[1]);
    texto.remove_prefix(2);
    kivmovfrec::suite::FixedClock reloj(kivmovfrec::vb::DateSerial(2026, 1, 1), 0.5);
    // Days from 1900 on: a year back is always inside the calendar.
    kivmovfrec::Date fecha{1.0 + dias};
    std::string out = kivmovfrec::formula::InterpretarFormulaLeyenda(texto, fecha, &reloj);
    if (texto.find("&[") == std::string_view::npos) Check(out == texto);
  }
  return 0;
}
