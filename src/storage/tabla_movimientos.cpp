#include "storage/tabla_movimientos.h"

#include <limits>

#include "storage/columnas.h"
#include "storage/contador.h"
#include "storage/fila.h"
#include "storage/sql_texto.h"

namespace kivmovfrec::storage {

std::string SqlMovimientoPorID(int32_t id) {
  return "Select * from genMovimientosFrecuentes Where MFrID = " + std::to_string(id);
}

void LeerMovimiento(const Resultset& rs, clsRegMovimientoFrecuente& mf) {
  SiNoNulo(rs, "MFrID", ALong, [&](int32_t v) { mf.ID(v); });
  SiNoNulo(rs, "MFrEmpresa", AInteger, [&](int16_t v) { mf.Empresa(v); });
  SiNoNulo(rs, "MFrTipo", AInteger, [&](int16_t v) { mf.Tipo(static_cast<enuTipoMovFrec>(v)); });
  SiNoNulo(rs, "MFrDelSistema", AInteger,
           [&](int16_t v) { mf.DelSistema(static_cast<enuClasificacionMF>(v)); });
  SiNoNulo(rs, "MFrNombre", ATexto, [&](std::string v) { mf.Nombre(std::move(v)); });
  SiNoNulo(rs, "MFrMemo", ATexto, [&](std::string v) { mf.Memo(std::move(v)); });
  SiNoNulo(rs, "MFrEnte", AInteger, [&](int16_t v) { mf.Ente(v); });
  SiNoNulo(rs, "MFrModalidad", AInteger, [&](int16_t v) { mf.Modalidad(v); });
  SiNoNulo(rs, "MFrTipoImporte", AInteger, [&](int16_t v) { mf.TipoImporte(v); });
  SiNoNulo(rs, "MFrMoneda", AInteger, [&](int16_t v) { mf.Moneda(v); });
  SiNoNulo(rs, "MFrRecurrencia", ALong, [&](int32_t v) { mf.Recurrencia(v); });
  SiNoNulo(rs, "MFrMovVinculado", ALong, [&](int32_t v) { mf.MovVinculado(v); });
  SiNoNulo(rs, "MFrMVOrden", AByte, [&](uint8_t v) { mf.OrdenMovVinculado(v); });
  SiNoNulo(rs, "MFrUsuarioAlta", AInteger, [&](int16_t v) { mf.UsuarioAlta(v); });
  SiNoNulo(rs, "MFrUsuarioAutoriza", AInteger, [&](int16_t v) { mf.UsuarioAutoriza(v); });
  SiNoNulo(rs, "MFrEstado", AByte, [&](uint8_t v) { mf.Estado(v); });
  SiNoNulo(rs, "MFrFechaEstado", AFecha, [&](Date v) { mf.FechaEstado(v); });
  SiNoNulo(rs, "MFrVista", AByte, [&](uint8_t v) { mf.Vista(v); });
  SiNoNulo(rs, "MFrIcono", AInteger, [&](int16_t v) { mf.Imagen(v); });
}

ValoresFila ValoresMovimiento(const clsRegMovimientoFrecuente& mf) {
  return {{"MFrEmpresa", mf.Empresa()},
          {"MFrTipo", ToInt(mf.Tipo())},
          {"MFrDelSistema", ToInt(mf.DelSistema())},
          {"MFrNombre", mf.Nombre()},
          {"MFrMemo", mf.Memo()},
          {"MFrEnte", mf.Ente()},
          {"MFrModalidad", mf.Modalidad()},
          {"MFrTipoImporte", mf.TipoImporte()},
          {"MFrMoneda", mf.Moneda()},
          {"MFrRecurrencia", NuloSiCero(mf.Recurrencia())},
          {"MFrMovVinculado", NuloSiCero(mf.MovVinculado())},
          {"MFrMVOrden", mf.OrdenMovVinculado()},
          {"MFrUsuarioAlta", mf.UsuarioAlta()},
          {"MFrUsuarioAutoriza", mf.UsuarioAutoriza()},
          {"MFrEstado", mf.Estado()},
          {"MFrFechaEstado", mf.FechaEstado()},
          {"MFrVista", mf.Vista()},
          {"MFrIcono", mf.Imagen()}};
}

void EscribirMovimiento(Resultset& rs, const clsRegMovimientoFrecuente& mf) {
  EscribirFila(rs, ValoresMovimiento(mf));
}

bool CargarMovimiento(Connection& cn, int32_t id, clsRegMovimientoFrecuente& mf) {
  auto rs = cn.OpenResultset(SqlMovimientoPorID(id));
  if (rs->Eof()) {
    rs->Close();
    return false;
  }
  clsRegMovimientoFrecuente leido = mf;
  LeerMovimiento(*rs, leido);
  rs->Close();
  mf = std::move(leido);
  return true;
}

void RechazarTextosMovimiento(const clsRegMovimientoFrecuente& mf) {
  RechazarComilla(mf.Nombre(), "Nombre");
  RechazarComilla(mf.Memo(), "Memo");
  RechazarTextoNoAlmacenable(mf.Nombre(), "Nombre", kLargoNombre);
  RechazarTextoNoAlmacenable(mf.Memo(), "Memo");
}

int32_t GuardarMovimiento(Connection& cn, IDBFncs& dbf, clsRegMovimientoFrecuente& mf,
                          const ParametrosBD& p) {
  RechazarTextosMovimiento(mf);
  auto rs = cn.OpenResultset(SqlMovimientoPorID(mf.ID()));
  int32_t id = mf.ID();
  if (rs->Eof()) {
    id = NuevoID(dbf, "genMovimientosFrecuentes", p.idioma);
    rs->AddNew();
    rs->Set("MFrID", id);
  } else {
    rs->Edit();
  }
  EscribirMovimiento(*rs, mf);
  rs->Update();
  rs->Close();
  mf.ID(id);
  return id;
}

DbStatement SentenciaActualizarMovimiento(const clsRegMovimientoFrecuente& mf) {
  RechazarTextosMovimiento(mf);
  return SentenciaActualizar("genMovimientosFrecuentes", "MFrID", mf.ID(), ValoresMovimiento(mf));
}

std::string SqlMaxOrdenVinculo(int32_t mov_vinculado) {
  return "Select Max(MFrMVOrden) From genMovimientosFrecuentes Where MFrMovVinculado = " +
         std::to_string(mov_vinculado);
}

uint8_t SiguienteOrdenVinculo(Connection& cn, int32_t mov_vinculado) {
  auto rs = cn.OpenResultset(SqlMaxOrdenVinculo(mov_vinculado));
  int32_t maximo = 0;
  if (!rs->Eof()) maximo = ALong(rs->Get(0));
  rs->Close();
  if (maximo < 0 || maximo >= std::numeric_limits<uint8_t>::max()) throw VbError(6);
  return static_cast<uint8_t>(maximo + 1);
}

void AsignarOrdenVinculo(Connection& cn, clsRegMovimientoFrecuente& mf) {
  if (mf.MovVinculado() >= 1 && mf.OrdenMovVinculado() == 0 && ToInt(mf.Tipo()) < 4) {
    mf.OrdenMovVinculado(SiguienteOrdenVinculo(cn, mf.MovVinculado()));
  }
}

}  // namespace kivmovfrec::storage
