// genRenglonMovFrecuentes: the line rows of a movement. Lines have no key of their own; a save
// deletes a movement's rows and inserts the lines again in list order.
//
// Row mapping (column <- field):
//   RMFMovimiento idMF, RMFCuenta Cuenta, RMFIDProyecto Proyecto, RMFIDDepartamento
//   Departamento, RMFOrden Orden, RMFAlDebe AlDebe (1 / 0), RMFFormula Formula (NULL when ""),
//   RMFValor ImporteCta, RMFValorMonMov ImporteMF, RMFFTipoCambio TipoCambio (NULL when 0),
//   RMFValorTC ValorTC (NULL when 0), RMFDetalle Detalle (NULL when "").
// The display fields come from joined tables when present in the row: CueCodigo CuentaCodigo,
// CueNombre CuentaNombre, CueMoneda Moneda, ProAbreviacion ProyectoAbreviacion, DepAbreviacion
// DepartamentoAbreviacion. Reading, a NULL column leaves the field as it is (0 / "" / false on
// a new line).
//
// Database errors (DbError) and conversion errors of stored values (VbError) propagate.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "kivmovfrec/db.h"
#include "kivmovfrec/records.h"

namespace kivmovfrec::storage {

// "Select * From genRenglonMovFrecuentes Where RMFMovimiento = " + id: the updatable set of a
// movement's lines.
std::string SqlRenglonesDe(int32_t id_mf);

// Copies the line columns (and the joined display columns present in the row) into `r`.
void LeerRenglon(const Resultset& rs, clsRegRenglonMF& r);

// RMFDetalle's width, in characters.
inline constexpr size_t kLargoDetalle = 255;

// Refuses (TextoRechazado) a line Detalle holding a single quote or longer than kLargoDetalle,
// and a Detalle or Formula holding a NUL or bytes that are not UTF-8. The save of a movement
// runs it on every line before any statement is built.
void RechazarTextosRenglon(const clsRegRenglonMF& r);

// Adds line `r` as a new row of `rs` (a set opened with SqlRenglonesDe) for movement `id_mf`
// at list position `posicion` (1-based): a line whose Orden is 0 is first numbered with
// `posicion`; a non-zero Orden is kept. r.idMF becomes id_mf. Every column is written, the
// optional ones as NULL when empty / 0.
void AgregarRenglon(Resultset& rs, clsRegRenglonMF& r, int32_t id_mf, uint8_t posicion);

// Deletes every line row of movement `id_mf` through SqlRenglonesDe; returns how many.
int BorrarRenglones(Connection& cn, int32_t id_mf);

}  // namespace kivmovfrec::storage
