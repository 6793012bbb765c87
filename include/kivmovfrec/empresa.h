// clsEmpresa: the company in whose books the movements are kept.
//
// The façade creates one on first need and loads it with the company number; the save takes
// the default journal (Libro) from it and the formula members hand it to the evaluator, whose
// currency conversions need the accounting currency. The meaning of MostrarCodigoCta,
// ValoresUsuarioYAutoriza, TipoTCComprobantes and Clase is the host suite's; the component only
// carries them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kivmovfrec/db.h"
#include "kivmovfrec/export.h"

namespace kivmovfrec {

class KMF_API clsEmpresa {
 public:
  // Reads "Select * from cceEmpresas Where EmpID = " + empresa. When there is no such company
  // returns false and changes nothing. Otherwise sets ID, copies every non-NULL column into its
  // field (a NULL column keeps the field's previous value; EmpNombre and
  // EmpValoresUsuarioYAuroriza are trimmed), applies EmpPrms (AplicarPrms) and returns true.
  // Database errors (DbError) and stored values that do not fit their field (VbError) propagate;
  // the fields are then left as they were.
  bool Load(int32_t empresa, Connection& cn);

  // Applies the company parameter text EmpPrms: items separated by "|"; an item beginning with
  // "lib:" (any case) has every "lib:" removed (any case) and, when the rest is numeric, sets
  // Libro; likewise "tcom:" sets TipoComprobante. Other items, and values that are not numeric
  // or do not fit a 16-bit integer, are ignored; a later item of a kind overrides an earlier one.
  void AplicarPrms(std::string_view prms);

  // EmpID.
  int16_t ID() const { return id_; }
  void ID(int16_t v) { id_ = v; }
  // EmpNombre, trimmed.
  const std::string& Nombre() const { return nombre_; }
  void Nombre(std::string v) { nombre_ = std::move(v); }
  // EmpMostrarCodigoCta: whether account codes are shown beside names.
  int32_t MostrarCodigoCta() const { return mostrar_codigo_cta_; }
  void MostrarCodigoCta(int32_t v) { mostrar_codigo_cta_ = v; }
  // EmpValoresUsuarioYAuroriza, trimmed.
  const std::string& ValoresUsuarioYAutoriza() const { return valores_usuario_y_autoriza_; }
  void ValoresUsuarioYAutoriza(std::string v) { valores_usuario_y_autoriza_ = std::move(v); }
  // EmpMonedaContabilidad: the accounting currency (a genMonedas number).
  int16_t MonedaContabilidad() const { return moneda_contabilidad_; }
  void MonedaContabilidad(int16_t v) { moneda_contabilidad_ = v; }
  // EmpTipoTCComprobantes: kind of exchange rate used for vouchers.
  int32_t TipoTCComprobantes() const { return tipo_tc_comprobantes_; }
  void TipoTCComprobantes(int32_t v) { tipo_tc_comprobantes_ = v; }
  // EmpClase.
  int32_t Clase() const { return clase_; }
  void Clase(int32_t v) { clase_ = v; }
  // Default journal ("lib:" in EmpPrms): the default Modalidad of entries.
  int16_t Libro() const { return libro_; }
  void Libro(int16_t v) { libro_ = v; }
  // Default voucher type ("tcom:" in EmpPrms).
  int16_t TipoComprobante() const { return tipo_comprobante_; }
  void TipoComprobante(int16_t v) { tipo_comprobante_ = v; }

 private:
  int16_t id_ = 0;
  std::string nombre_;
  int32_t mostrar_codigo_cta_ = 0;
  std::string valores_usuario_y_autoriza_;
  int16_t moneda_contabilidad_ = 0;
  int32_t tipo_tc_comprobantes_ = 0;
  int32_t clase_ = 0;
  int16_t libro_ = 0;
  int16_t tipo_comprobante_ = 0;
};

}  // namespace kivmovfrec
