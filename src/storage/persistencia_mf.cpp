// clsMFTipo's database side: Load, Save and Delete, on the tables of storage. The in-memory
// part of the class lives with the records in core.
#include "kivmovfrec/mf_tipo.h"

#include <algorithm>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/clock.h"
#include "storage/columnas.h"
#include "storage/fila.h"
#include "storage/tabla_movimientos.h"
#include "storage/tabla_recurrencias.h"
#include "storage/tabla_renglones.h"

namespace kivmovfrec {
namespace {

// The one query that reads a movement with its lines (and their account, project and
// department) and its schedule; the movement's ID is bound.
constexpr const char* kSqlCargaCompleta =
    "Select genMovimientosFrecuentes.*, genRenglonMovFrecuentes.*, genRecurrencias.*, "
    "CueID, CueCodigo, CueNombre, CueMoneda, ProAbreviacion, DepAbreviacion "
    "From (((((genMovimientosFrecuentes LEFT JOIN genRenglonMovFrecuentes ON "
    "genMovimientosFrecuentes.MFrID = genRenglonMovFrecuentes.RMFMovimiento) "
    "LEFT JOIN cceCuentas ON genRenglonMovFrecuentes.RMFCuenta = cceCuentas.CueID) "
    "LEFT JOIN cceProyectos ON genRenglonMovFrecuentes.RMFIDProyecto = "
    "cceProyectos.ProCodigo) "
    "LEFT JOIN cceDepartamentos ON genRenglonMovFrecuentes.RMFIDDepartamento = "
    "cceDepartamentos.DepCodigo) "
    "LEFT JOIN genRecurrencias ON genMovimientosFrecuentes.MFrRecurrencia = "
    "genRecurrencias.RecID) "
    "Where MFrID = ? Order By RMFOrden";

// Reads the movement of the current row of a kSqlCargaCompleta-shaped result and its lines, up
// to the first row of another movement (or the end).
void LeerCompleto(Resultset& rs, IClock& reloj, clsMFTipo& out) {
  auto mov = std::make_shared<clsRegMovimientoFrecuente>(reloj);
  auto rec = std::make_shared<clsRegRecurrencia>();
  auto renglones = std::make_shared<clsRenglonesMF>();
  storage::LeerMovimiento(rs, *mov);
  if (!storage::EsNulo(rs.Get("RecID"))) storage::LeerRecurrencia(rs, *rec);
  for (; !rs.Eof() && storage::ALong(rs.Get("MFrID")) == mov->ID(); rs.MoveNext()) {
    // A movement without lines still yields one row, with every line column NULL.
    if (storage::EsNulo(rs.Get("RMFMovimiento"))) continue;
    auto r = std::make_shared<clsRegRenglonMF>();
    storage::LeerRenglon(rs, *r);
    renglones->AddRenglon(std::move(r));
  }
  out.MovFrecuente(std::move(mov));
  out.Recurrencia(std::move(rec));
  out.Renglones(std::move(renglones));
}

}  // namespace

namespace storage {

std::map<int32_t, clsMFTipo> CargarMovimientos(Connection& cn, const std::vector<int32_t>& ids,
                                               const std::shared_ptr<IClock>& reloj) {
  // The joins of kSqlCargaCompleta, in two statements so that the header and schedule columns
  // are not repeated on every line's row.
  constexpr size_t kPorLectura = 500;
  std::map<int32_t, clsMFTipo> out;
  for (size_t desde = 0; desde < ids.size(); desde += kPorLectura) {
    const auto [lista, params] = ListaDeIds(ids, desde, kPorLectura);
    auto rs = cn.OpenResultset(
        "Select genMovimientosFrecuentes.*, genRecurrencias.* From genMovimientosFrecuentes "
        "LEFT JOIN genRecurrencias ON genMovimientosFrecuentes.MFrRecurrencia = "
        "genRecurrencias.RecID Where MFrID In (" +
            lista + ")",
        params);
    for (; !rs->Eof(); rs->MoveNext()) {
      auto mov = std::make_shared<clsRegMovimientoFrecuente>(core::RelojOSistema(reloj.get()));
      auto rec = std::make_shared<clsRegRecurrencia>();
      LeerMovimiento(*rs, *mov);
      if (!EsNulo(rs->Get("RecID"))) LeerRecurrencia(*rs, *rec);
      clsMFTipo& mf = out.try_emplace(mov->ID(), reloj).first->second;
      mf.MovFrecuente(std::move(mov));
      mf.Recurrencia(std::move(rec));
    }
    rs = cn.OpenResultset(
        "Select genRenglonMovFrecuentes.*, CueID, CueCodigo, CueNombre, CueMoneda, "
        "ProAbreviacion, DepAbreviacion From (((genRenglonMovFrecuentes LEFT JOIN cceCuentas ON "
        "genRenglonMovFrecuentes.RMFCuenta = cceCuentas.CueID) LEFT JOIN cceProyectos ON "
        "genRenglonMovFrecuentes.RMFIDProyecto = cceProyectos.ProCodigo) LEFT JOIN "
        "cceDepartamentos ON genRenglonMovFrecuentes.RMFIDDepartamento = "
        "cceDepartamentos.DepCodigo) Where RMFMovimiento In (" +
            lista + ") Order By RMFMovimiento, RMFOrden",
        params);
    for (; !rs->Eof(); rs->MoveNext()) {
      const auto mf = out.find(ALong(rs->Get("RMFMovimiento")));
      if (mf == out.end()) continue;
      auto r = std::make_shared<clsRegRenglonMF>();
      LeerRenglon(*rs, *r);
      mf->second.Renglones()->AddRenglon(std::move(r));
    }
  }
  return out;
}

}  // namespace storage

bool clsMFTipo::Load(Connection& cn, int32_t id) {
  return Load(cn, id, core::RelojOSistema(reloj_.get()));
}

bool clsMFTipo::Load(Connection& cn, int32_t id, IClock& reloj) {
  auto rs = cn.OpenResultset(kSqlCargaCompleta, {Variant(id)});
  if (rs->Eof()) {
    rs->Close();
    return false;
  }
  LeerCompleto(*rs, reloj, *this);
  rs->Close();
  return true;
}

int32_t clsMFTipo::Save(Connection& cn, IDBFncs& dbf, int16_t libro, const ParametrosBD& p) {
  clsRegMovimientoFrecuente& mov = *mov_;
  clsRegRecurrencia& rec = *rec_;
  clsRenglonesMF& renglones = *renglones_;

  storage::RechazarTextosMovimiento(mov);
  for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
    storage::RechazarTextosRenglon(*renglones.Renglon(i));
  }

  // 1. Schedule.
  if (mov.Recurrencia() == 0 && rec.ID() > 0) {
    storage::BorrarRecurrencia(cn, rec.ID());
    // The record no longer has a row: a schedule given to it later is stored as a new one.
    rec.ID(0);
  } else if (!rec.FechaProxima().empty()) {
    mov.Recurrencia(storage::GuardarRecurrencia(cn, dbf, rec, p));
  }

  // 2. Link order.
  storage::AsignarOrdenVinculo(cn, mov);

  // 3. Default journal of an entry.
  if (mov.Tipo() == enuTipoMovFrec::Asiento && mov.Modalidad() == 0) mov.Modalidad(libro);

  // 4. Header.
  const int32_t id = storage::GuardarMovimiento(cn, dbf, mov, p);

  // 5. Lines: the stored set is replaced by the one in memory.
  auto rs = cn.OpenResultset(storage::SqlRenglonesDe(id));
  for (; !rs->Eof(); rs->MoveNext()) rs->Delete();
  for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
    clsRegRenglonMF& r = *renglones.Renglon(i);
    if (r.Orden() == 0 && i > std::numeric_limits<uint8_t>::max()) throw VbError(6);
    storage::AgregarRenglon(*rs, r, id, static_cast<uint8_t>(i > 255 ? 0 : i));
  }
  rs->Close();
  return id;
}

void clsMFTipo::Delete(Connection& cn, int32_t id) {
  storage::BorrarRenglones(cn, id);
  auto rs = cn.OpenResultset(storage::SqlMovimientoPorID(id));
  if (!rs->Eof()) {
    const Variant rec = rs->Get("MFrRecurrencia");
    if (!storage::EsNulo(rec)) storage::BorrarRecurrencia(cn, storage::ALong(rec));
    rs->Delete();
  }
  rs->Close();
}

}  // namespace kivmovfrec
