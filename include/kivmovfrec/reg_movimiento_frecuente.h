// clsRegMovimientoFrecuente: the header of one frequent movement, one row of
// genMovimientosFrecuentes.
//
// A plain value holder. Every field is an accessor pair named after the property; setters store
// what they are given without validating or converting. Reading and writing the row is done by
// the storage layer (load by ID, save, next link order), not by the record.
#pragma once

#include <cstdint>
#include <string>

#include "kivmovfrec/enums.h"
#include "kivmovfrec/export.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec {

class IClock;

class KMF_API clsRegMovimientoFrecuente {
 public:
  // Runs Class_Initialize: state EnProceso, FechaEstado = now, Vista 0; everything else 0 / "".
  // "Now" is the machine's clock; code that has a clock service at hand (the façade, the main
  // job) passes it instead, so a fixed "today" reaches the records it creates.
  clsRegMovimientoFrecuente() { Class_Initialize(); }
  explicit clsRegMovimientoFrecuente(IClock& reloj) { Class_Initialize(reloj); }

  // The construction routine, public as in the suite's type library: resets Estado to
  // EnProceso, FechaEstado to the current moment and Vista to 0, and leaves every other field
  // as it is. Without an argument "now" is the machine's clock; otherwise reloj.Now().
  void Class_Initialize();
  void Class_Initialize(IClock& reloj);

  // MFrEstado: an enuEstadoMF value (0, 1, 9); any other byte is kept as given.
  uint8_t Estado() const { return estado_; }
  void Estado(uint8_t v) { estado_ = v; }
  void Estado(enuEstadoMF v) { estado_ = ToInt(v); }
  // MFrFechaEstado: moment of the last state change; set at construction, not at save.
  Date FechaEstado() const { return fecha_estado_; }
  void FechaEstado(Date v) { fecha_estado_ = v; }
  // MFrVista: how a notice was last seen (2 = marked as seen when another one was completed).
  uint8_t Vista() const { return vista_; }
  void Vista(uint8_t v) { vista_ = v; }
  // Free text carried in memory only; not stored in this table.
  const std::string& Detalle() const { return detalle_; }
  void Detalle(std::string v) { detalle_ = std::move(v); }
  // MFrIcono: icon number.
  int16_t Imagen() const { return imagen_; }
  void Imagen(int16_t v) { imagen_ = v; }

  // MFrID: 0 until the row is first saved; the save stores the drawn key back here.
  int32_t ID() const { return id_; }
  void ID(int32_t v) { id_ = v; }
  // MFrEmpresa: company number.
  int16_t Empresa() const { return empresa_; }
  void Empresa(int16_t v) { empresa_ = v; }
  // MFrTipo: 0 (no kind yet), an enuTipoMovFrec member, or kTipoItemCheckList (6).
  enuTipoMovFrec Tipo() const { return tipo_; }
  void Tipo(enuTipoMovFrec v) { tipo_ = v; }
  // MFrDelSistema.
  enuClasificacionMF DelSistema() const { return del_sistema_; }
  void DelSistema(enuClasificacionMF v) { del_sistema_ = v; }
  // MFrNombre.
  const std::string& Nombre() const { return nombre_; }
  void Nombre(std::string v) { nombre_ = std::move(v); }
  // MFrMemo.
  const std::string& Memo() const { return memo_; }
  void Memo(std::string v) { memo_ = std::move(v); }
  // MFrEnte: owning entity; for a task-list item the ID of its list.
  int16_t Ente() const { return ente_; }
  void Ente(int16_t v) { ente_ = v; }
  // MFrModalidad: journal of an entry, modality of a notice, importance of a task-list item.
  int16_t Modalidad() const { return modalidad_; }
  void Modalidad(int16_t v) { modalidad_ = v; }
  // MFrTipoImporte.
  int16_t TipoImporte() const { return tipo_importe_; }
  void TipoImporte(int16_t v) { tipo_importe_ = v; }
  // MFrMoneda: currency of the movement.
  int16_t Moneda() const { return moneda_; }
  void Moneda(int16_t v) { moneda_ = v; }
  // MFrRecurrencia: key of the schedule row; 0 = none (stored as NULL).
  int32_t Recurrencia() const { return recurrencia_; }
  void Recurrencia(int32_t v) { recurrencia_ = v; }
  // MFrMovVinculado: the movement this one is linked to; 0 = none (stored as NULL).
  int32_t MovVinculado() const { return mov_vinculado_; }
  void MovVinculado(int32_t v) { mov_vinculado_ = v; }
  // MFrMVOrden: position in the linked chain; 0 = not placed yet.
  uint8_t OrdenMovVinculado() const { return orden_mov_vinculado_; }
  void OrdenMovVinculado(uint8_t v) { orden_mov_vinculado_ = v; }
  // MFrUsuarioAlta: user who created it.
  int16_t UsuarioAlta() const { return usuario_alta_; }
  void UsuarioAlta(int16_t v) { usuario_alta_ = v; }
  // MFrUsuarioAutoriza: user who authorises it.
  int16_t UsuarioAutoriza() const { return usuario_autoriza_; }
  void UsuarioAutoriza(int16_t v) { usuario_autoriza_ = v; }

 private:
  uint8_t estado_ = 0;
  Date fecha_estado_{};
  uint8_t vista_ = 0;
  std::string detalle_;
  int16_t imagen_ = 0;
  int32_t id_ = 0;
  int16_t empresa_ = 0;
  enuTipoMovFrec tipo_ = static_cast<enuTipoMovFrec>(0);
  enuClasificacionMF del_sistema_ = enuClasificacionMF::Normal;
  std::string nombre_;
  std::string memo_;
  int16_t ente_ = 0;
  int16_t modalidad_ = 0;
  int16_t tipo_importe_ = 0;
  int16_t moneda_ = 0;
  int32_t recurrencia_ = 0;
  int32_t mov_vinculado_ = 0;
  uint8_t orden_mov_vinculado_ = 0;
  int16_t usuario_alta_ = 0;
  int16_t usuario_autoriza_ = 0;
};

}  // namespace kivmovfrec
