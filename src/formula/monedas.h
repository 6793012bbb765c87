// clsMonedas: the company's currencies with their display formats, and the exchange-rate
// service (what is currency A worth in currency B, of rate type T, on date D).
//
// One instance per connection. Load() reads "Select * From genMonedas" into an array in the
// order the rows arrive; DatosMoneda answers from it and remembers the last currency found, so
// asking again for the same one does not scan the array (Escaneos() counts the scans).
//
// Rates come from genCotizacionesMoneda (buying rate CMoCompra only) and are handled as
// four-decimal fixed-point values (Currency) throughout. Effective rate of A in B, type T, date D:
//   1. D = 01/01/1900 (the suite's empty date) means today, from the clock.
//   2. The direct look-up (SqlCotizacionDirecta): the latest quotation of A in B on or before D
//      and the latest of B in A, inverted by the database; the later of the two wins, the direct
//      one on equal dates. Found: that rate, at four decimals, with its date.
//   3. Otherwise one hop through the currency C that A is quoted in (MonCotizaEn, read with
//      kSqlCotizaEn and kept as "|id:cotizaEn" items): the rate of A in C times the rate of C
//      in B, both by the direct look-up, so the result is A expressed in B. Its date is the
//      older of the two rates' dates. Only this one hop is tried, never a longer chain.
//   4. Nothing found: 1, dated D.
//   On the paths of 3 and 4 the answer is formatted "#.000" (Spanish: decimal comma) and read
//   back, so it carries three decimals (3.1416 -> 3.142); a direct rate keeps its four.
// Database errors inside the look-ups are swallowed: the look-up counts as not found.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/services.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec::formula {

// The statement of the hop's pairs, exactly as sent.
extern const char* const kSqlCotizaEn;

struct MonedaFx {
  int16_t id = 0;
  std::string simbolo;                           // MonSimbolo, trimmed
  int16_t cotiza_en = 0;                         // MonCotizaEn, 0 = not set
  std::string formato_importe = "#,##0.00";      // MonRedondeo, trimmed
  std::string formato_cotizacion = "#,##0.000";  // MonFormatoCotizacion, trimmed
};

// Field numbers of DatosMoneda.
enum class CampoMoneda : int {
  Id = 1,
  Simbolo = 2,
  CotizaEn = 3,
  FormatoImporte = 4,
  FormatoCotizacion = 5
};

// One direct look-up.
struct CotizacionDirecta {
  bool encontrada = false;
  Currency tasa{};  // A in B
  Date fecha{};     // date of the quotation used
};

// The effective rate with where it came from (for traces).
struct CotizacionUsada {
  Currency tasa{};
  Date fecha{};                  // date of the rate used (the requested date on fall-back)
  bool directa = false;          // step 2 found it
  bool por_escala = false;       // step 3 found it
  int16_t intermedia = 0;        // the currency of the hop (when por_escala)
  Currency tasa_a_intermedia{};  // A in C (when por_escala)
  Currency tasa_intermedia_b{};  // C in B (when por_escala)
  bool por_defecto = false;      // nothing found: 1
};

class clsMonedas {
 public:
  // `reloj` gives today for the empty date; null: the machine's clock. `parametros`: the
  // settings of the database the rates are read from (the accounting
  // currency until MonedaContabilidad or Empresa sets one); copied.
  clsMonedas(std::shared_ptr<IClock> reloj, const ParametrosBD& parametros);

  // Keeps the connection (shared).
  void Connect(std::shared_ptr<Connection> cn);
  // The accounting currency that currency id 0 stands for. Until set, the one of the
  // parameters given at construction.
  void MonedaContabilidad(int16_t id) { moneda_contabilidad_ = id; }
  void Empresa(const clsEmpresa& empresa) { moneda_contabilidad_ = empresa.MonedaContabilidad(); }
  int16_t MonedaContabilidad() const;

  // Reads the currencies. Returns false (and leaves the array empty) when there is no
  // connection or the statement fails.
  bool Load();
  const std::vector<MonedaFx>& Monedas() const { return monedas_; }
  // Takes the currencies as another instance read them from the same database (Monedas()),
  // instead of reading them again.
  void Usar(std::vector<MonedaFx> monedas);

  // The currency with that id (0 = the accounting currency); nullptr when it is not loaded.
  // Scans the array unless the id is the one found last.
  const MonedaFx* Moneda(int16_t id);
  // One field of a currency (CampoMoneda numbering: Integer for 1 and 3, String for 2, 4, 5);
  // Empty for an unknown currency or field.
  Variant DatosMoneda(int16_t id, int campo);
  // Number of array scans made so far.
  int Escaneos() const { return escaneos_; }

  // One database look-up of A in B (see above). Never throws.
  CotizacionDirecta BuscarCotizacionDirecta(int16_t moneda, int16_t cotiza_en, int32_t tipo,
                                            Date fecha);
  // The effective rate with its provenance. Never throws.
  CotizacionUsada Cotizacion(int16_t moneda, int16_t cotiza_en, int32_t tipo, Date fecha);
  // The effective rate: returns it, also leaves it in `tasa`, and leaves the date of the rate
  // used in `fecha`. Never throws.
  Currency Cotizacion(int16_t moneda, int16_t cotiza_en, int32_t tipo, Date& fecha, Currency& tasa);

  // The direct look-up statement for A in B. The date D is a bound value, marked "?" in each
  // of the two branches, so it is bound twice.
  static std::string SqlCotizacionDirecta(int16_t moneda, int16_t cotiza_en, int32_t tipo);

 private:
  Date Hoy() const;

  std::shared_ptr<IClock> reloj_;
  ParametrosBD parametros_;
  std::shared_ptr<Connection> cn_;
  std::optional<int16_t> moneda_contabilidad_;
  std::vector<MonedaFx> monedas_;
  int16_t ultima_id_ = 0;
  int ultima_pos_ = -1;
  int escaneos_ = 0;
};

// 01/01/1900, the suite's empty date.
Date FechaVaciaCotizacion();

}  // namespace kivmovfrec::formula
