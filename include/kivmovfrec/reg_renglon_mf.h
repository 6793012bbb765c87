// clsRegRenglonMF: one line of a frequent movement, one row of genRenglonMovFrecuentes.
//
// A plain value holder with no construction logic: every field starts at 0 / "" / false.
// The five display fields (CuentaCodigo … DepartamentoAbreviacion) and Moneda come from the
// joined account, project and department when a movement is loaded and are never written.
// Formula, Detalle, TipoCambio and ValorTC are stored as NULL when empty / 0.
#pragma once

#include <cstdint>
#include <string>

#include "kivmovfrec/export.h"

namespace kivmovfrec {

class KMF_API clsRegRenglonMF {
 public:
  // RMFMovimiento: ID of the owning movement.
  int32_t idMF() const { return id_mf_; }
  void idMF(int32_t v) { id_mf_ = v; }
  // CueCodigo of the account (display only).
  const std::string& CuentaCodigo() const { return cuenta_codigo_; }
  void CuentaCodigo(std::string v) { cuenta_codigo_ = std::move(v); }
  // CueNombre of the account (display only).
  const std::string& CuentaNombre() const { return cuenta_nombre_; }
  void CuentaNombre(std::string v) { cuenta_nombre_ = std::move(v); }
  // ProAbreviacion of the project (display only).
  const std::string& ProyectoAbreviacion() const { return proyecto_abreviacion_; }
  void ProyectoAbreviacion(std::string v) { proyecto_abreviacion_ = std::move(v); }
  // DepAbreviacion of the department (display only).
  const std::string& DepartamentoAbreviacion() const { return departamento_abreviacion_; }
  void DepartamentoAbreviacion(std::string v) { departamento_abreviacion_ = std::move(v); }

  // RMFCuenta: account key (CueID).
  int32_t Cuenta() const { return cuenta_; }
  void Cuenta(int32_t v) { cuenta_ = v; }
  // RMFIDProyecto: project code, 0 = none.
  int16_t Proyecto() const { return proyecto_; }
  void Proyecto(int16_t v) { proyecto_ = v; }
  // RMFIDDepartamento: department code, 0 = none.
  int16_t Departamento() const { return departamento_; }
  void Departamento(int16_t v) { departamento_ = v; }
  // RMFOrden: 1-based position; 0 = not numbered yet (the save numbers it by position).
  uint8_t Orden() const { return orden_; }
  void Orden(uint8_t v) { orden_ = v; }
  // RMFAlDebe (1 / 0): true = debit side.
  bool AlDebe() const { return al_debe_; }
  void AlDebe(bool v) { al_debe_ = v; }
  // RMFFormula: formula of the amount in stored form; "" = none.
  const std::string& Formula() const { return formula_; }
  void Formula(std::string v) { formula_ = std::move(v); }
  // RMFValor: amount in the account's currency.
  double ImporteCta() const { return importe_cta_; }
  void ImporteCta(double v) { importe_cta_ = v; }
  // RMFValorMonMov: amount in the movement's currency.
  double ImporteMF() const { return importe_mf_; }
  void ImporteMF(double v) { importe_mf_ = v; }
  // CueMoneda: currency of the account (display only).
  int16_t Moneda() const { return moneda_; }
  void Moneda(int16_t v) { moneda_ = v; }
  // RMFFTipoCambio: kind of exchange rate to apply; 0 = none.
  uint8_t TipoCambio() const { return tipo_cambio_; }
  void TipoCambio(uint8_t v) { tipo_cambio_ = v; }
  // RMFValorTC: fixed exchange-rate value; 0 = none.
  double ValorTC() const { return valor_tc_; }
  void ValorTC(double v) { valor_tc_ = v; }
  // RMFDetalle: line text.
  const std::string& Detalle() const { return detalle_; }
  void Detalle(std::string v) { detalle_ = std::move(v); }

 private:
  int32_t id_mf_ = 0;
  std::string cuenta_codigo_;
  std::string cuenta_nombre_;
  std::string proyecto_abreviacion_;
  std::string departamento_abreviacion_;
  int32_t cuenta_ = 0;
  int16_t proyecto_ = 0;
  int16_t departamento_ = 0;
  uint8_t orden_ = 0;
  bool al_debe_ = false;
  std::string formula_;
  double importe_cta_ = 0.0;
  double importe_mf_ = 0.0;
  int16_t moneda_ = 0;
  uint8_t tipo_cambio_ = 0;
  double valor_tc_ = 0.0;
  std::string detalle_;
};

}  // namespace kivmovfrec
