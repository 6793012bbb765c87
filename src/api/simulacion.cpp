#include "api/simulacion.h"

#include <string>
#include <utility>

#include "api/ejecucion.h"
#include "platform/db/error_text.h"
#include "storage/columnas.h"

namespace kivmovfrec::api {
namespace {

// The columns of the two kinds of document, in the order both statements select them.
struct Columnas {
  const char* cabecera;
  const char* lineas;
};

const Columnas kAsiento = {
    "Select AsiFecha, AsiLibro, AsiLeyenda, AsiEstado, 0, Null From cceAsientos Where AsiID = ?",
    "Select ACuCuenta, CueCodigo, CueNombre, ACuProyecto, ACuDepartamento, ACuDebe, ACuHaber, "
    "ACuImporteMC, ACuDetalle From cceAsientoCuenta Left Join cceCuentas On CueID = ACuCuenta "
    "Where ACuIDAsiento = ? Order By ACuOrden"};

const Columnas kComprobante = {
    "Select ComFecha, ComTipoComprobante, ComDetalle, ComEstado, ComMoneda, ComEnte From "
    "cceComprobantes Where ComID = ?",
    "Select CCuIDCuenta, CueCodigo, CueNombre, CCuIDProyecto, CCuIDDepartamento, CCuDebe, "
    "CCuHaber, CCuImporteCuenta, Null From cceComprobanteCuenta Left Join cceCuentas On CueID = "
    "CCuIDCuenta Where CCuIDComprobante = ? Order By CCuOrden"};

}  // namespace

std::optional<DocumentoSimulado> LeerDocumento(Connection& cn, int16_t tipo, int32_t id) {
  const Columnas& c = tipo == 2 ? kComprobante : kAsiento;
  auto cab = cn.OpenResultset(c.cabecera, {Variant(id)});
  if (cab->Eof()) return std::nullopt;
  DocumentoSimulado d;
  d.tipo = tipo;
  d.id = id;
  d.fecha = storage::AFecha(cab->Get(0));
  d.modalidad = storage::ALong(cab->Get(1));
  d.leyenda = storage::ATexto(cab->Get(2));
  d.estado = storage::AInteger(cab->Get(3));
  d.moneda = storage::AInteger(cab->Get(4));
  d.ente = storage::ALong(cab->Get(5));
  for (auto rs = cn.OpenResultset(c.lineas, {Variant(id)}); !rs->Eof(); rs->MoveNext()) {
    LineaDocumento l;
    l.cuenta = storage::ALong(rs->Get(0));
    l.codigo = storage::ATexto(rs->Get(1));
    l.nombre_cuenta = storage::ATexto(rs->Get(2));
    l.proyecto = storage::ALong(rs->Get(3));
    l.departamento = storage::ALong(rs->Get(4));
    l.debe = storage::ADouble(rs->Get(5));
    l.haber = storage::ADouble(rs->Get(6));
    l.importe_cuenta = storage::ADouble(rs->Get(7));
    l.detalle = storage::ATexto(rs->Get(8));
    d.debe += l.debe;
    d.haber += l.haber;
    d.lineas.push_back(std::move(l));
  }
  return d;
}

ResultadoSimulacion SimularVencidos(clsMovFrecuente& mf, Connection& cn, int32_t empresa,
                                    Date hasta, const AlFinalSimulacion& al_final) {
  ResultadoSimulacion out;
  if (!mf.Conectado() || !mf.Servicios().db) return out;
  // Inside a caller's transaction the rollback below would be only a savepoint's, and the
  // caller could still commit what was simulated.
  if (cn.InTransaction()) {
    out.detenida = "la simulación no puede hacerse dentro de una transacción abierta";
    return out;
  }
  try {
    Transaccion transaccion(cn);
    const int nivel = cn.TransactionDepth();
    // What each occurrence wrote, read back while it is still there.
    const auto leer = [&](const OcurrenciaEjecutada& o, const ProgresoEjecucion&) {
      OcurrenciaSimulada s{o, {}};
      for (const DocumentoGenerado& g : o.documentos) {
        if (g.id == 0) continue;
        std::optional<DocumentoSimulado> d = LeerDocumento(cn, g.tipo, g.id);
        if (!d) continue;
        d->movimiento = g.movimiento;
        d->tipo = g.tipo;
        s.documentos.push_back(std::move(*d));
      }
      out.ocurrencias.push_back(std::move(s));
    };
    const ResultadoEjecucion r = EjecutarVencidos(mf, cn, empresa, hasta, leer, nivel);
    out.detenida = r.detenida;
    if (cn.TransactionDepth() != nivel) {
      if (out.detenida.empty()) out.detenida = "la transacción de la simulación terminó antes";
    } else if (al_final) {
      al_final(out);
    }
    transaccion.Rollback();
  } catch (const DbError& e) {
    // The guard rolls back whatever is left of the transaction.
    const std::string motivo = "la simulación se detuvo (" + sql::DescribirErrorDb(e) + ")";
    out.detenida = out.detenida.empty() ? motivo : out.detenida + "; " + motivo;
  }
  return out;
}

}  // namespace kivmovfrec::api
