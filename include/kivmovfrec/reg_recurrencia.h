// clsRegRecurrencia: the schedule of a movement, one row of genRecurrencias (pointed at by the
// header's MFrRecurrencia).
//
// A value holder like the other records. Reading and writing its row, drawing its key and every
// calendar step belong to the scheduling code; this header only carries the fields.
#pragma once

#include <cstdint>
#include <string>

#include "kivmovfrec/enums.h"
#include "kivmovfrec/export.h"

namespace kivmovfrec {

class KMF_API clsRegRecurrencia {
 public:
  // RecID: 0 for a schedule not stored yet.
  int32_t ID() const { return id_; }
  void ID(int32_t v) { id_ = v; }
  // RecNotificar: days before the due date on which the user is notified; 0 = no notice.
  float NotificarDias() const { return notificar_dias_; }
  void NotificarDias(float v) { notificar_dias_ = v; }
  // Notification switch.
  uint8_t Notificar() const { return notificar_; }
  void Notificar(uint8_t v) { notificar_ = v; }
  // RecSinVencimiento: 1 = never ends; 0 = ends by a count or a last date.
  uint8_t SinVencimiento() const { return sin_vencimiento_; }
  void SinVencimiento(uint8_t v) { sin_vencimiento_ = v; }
  // RecFechaProxima: next due date, as text ("" = no schedule to store).
  const std::string& FechaProxima() const { return fecha_proxima_; }
  void FechaProxima(std::string v) { fecha_proxima_ = std::move(v); }
  // Number of times the recurrence is to happen.
  int16_t CantidadVeces() const { return cantidad_veces_; }
  void CantidadVeces(int16_t v) { cantidad_veces_ = v; }
  // The step: due every N units.
  int16_t CadaCuanto() const { return cada_cuanto_; }
  void CadaCuanto(int16_t v) { cada_cuanto_ = v; }
  // Unit of the step.
  enuTipoRecurrencia TipoRecurrencia() const { return tipo_recurrencia_; }
  void TipoRecurrencia(enuTipoRecurrencia v) { tipo_recurrencia_ = v; }
  // RecEraNotificacion: an earlier notification date, as text, or "".
  const std::string& EraNotificacion() const { return era_notificacion_; }
  void EraNotificacion(std::string v) { era_notificacion_ = std::move(v); }
  // RecPostergado: days the notice has been put off; 0 = not postponed.
  void Postergado(float v) { postergado_ = v; }
  float Postergado() const { return postergado_; }
  // Postergado as a whole number. Setting n stores n as Postergado; reading rounds Postergado to
  // the nearest whole number, halves to even as VB's integer conversion does (2.6 -> 3,
  // 2.5 -> 2). Reading a Postergado outside the 16-bit range throws VbError(6), overflow.
  void Posponer(int16_t n) { postergado_ = static_cast<float>(n); }
  int16_t Posponer() const;

  // ---- Component-internal members ------------------------------------------------------
  // Not part of the type library the host programs against; the scheduling code and the
  // command-line host's JSON (Frecuencia, FechaInicio, FechaFinal, NumOcurrencia) use them.

  // RecFrecuencia: six-digit frequency code ("000000" = once, "200001" = every month).
  const std::string& Frecuencia() const { return frecuencia_; }
  void Frecuencia(std::string v) { frecuencia_ = std::move(v); }
  // RecFechaInicio: first due date, as text.
  const std::string& FechaInicio() const { return fecha_inicio_; }
  void FechaInicio(std::string v) { fecha_inicio_ = std::move(v); }
  // RecFechaFinal: last date, as text; "" when there is none.
  const std::string& FechaFinal() const { return fecha_final_; }
  void FechaFinal(std::string v) { fecha_final_ = std::move(v); }
  // RecNumOcurrencia: how many times it has fallen due, counting the current one.
  int32_t NumOcurrencia() const { return num_ocurrencia_; }
  void NumOcurrencia(int32_t v) { num_ocurrencia_ = v; }

 private:
  int32_t id_ = 0;
  float notificar_dias_ = 0.0f;
  uint8_t notificar_ = 0;
  uint8_t sin_vencimiento_ = 0;
  std::string fecha_proxima_;
  int16_t cantidad_veces_ = 0;
  int16_t cada_cuanto_ = 0;
  enuTipoRecurrencia tipo_recurrencia_ = enuTipoRecurrencia::Diaria;
  std::string era_notificacion_;
  float postergado_ = 0.0f;
  std::string frecuencia_;
  std::string fecha_inicio_;
  std::string fecha_final_;
  int32_t num_ocurrencia_ = 0;
};

}  // namespace kivmovfrec
