#include "movimientos_empresa.h"

#include <QString>
#include <variant>

#include "kivmovfrec/enums.h"
#include "kivmovfrec/nombres.h"
#include "kivmovfrec/vb.h"

namespace kivmovfrec::qt {
namespace {

int32_t Numero(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? 0 : vb::CLng(v);
}

}  // namespace

std::vector<FilaMovimiento> LeerMovimientos(Connection& cn, int32_t empresa) {
  auto rs = cn.OpenReadOnly(
      "Select MFrID, MFrTipo, MFrNombre, MFrTipoImporte, MFrEstado, MFrMovVinculado, "
      "RecFechaProxima From genMovimientosFrecuentes Left Join genRecurrencias On RecID = "
      "MFrRecurrencia Where MFrEmpresa = " +
      std::to_string(empresa) + " And MFrTipo <> " + std::to_string(kTipoItemCheckList) +
      " Order By MFrID");
  std::vector<FilaMovimiento> filas;
  for (; !rs->Eof(); rs->MoveNext()) {
    FilaMovimiento f;
    f.id = Numero(rs->Get("MFrID"));
    f.tipo = static_cast<int16_t>(Numero(rs->Get("MFrTipo")));
    const Variant nombre = rs->Get("MFrNombre");
    f.nombre = nombre.IsNull() ? "" : vb::Trim(vb::CStr(nombre));
    f.tipo_importe = static_cast<int16_t>(Numero(rs->Get("MFrTipoImporte")));
    f.estado = static_cast<int16_t>(Numero(rs->Get("MFrEstado")));
    f.vinculado = Numero(rs->Get("MFrMovVinculado"));
    const Variant proxima = rs->Get("RecFechaProxima");
    if (!proxima.IsNull() && !proxima.IsEmpty()) {
      // A date, or its text on a connection that hands dates over as text.
      if (std::holds_alternative<Date>(proxima.storage()))
        f.proxima = proxima.AsDate();
      else if (const auto d = vb::ParseDate(vb::CStr(proxima)))
        f.proxima = *d;
    }
    filas.push_back(std::move(f));
  }
  return filas;
}

bool Cumple(const FilaMovimiento& fila, const FiltroMovimientos& filtro) {
  if (filtro.tipo != 0 && fila.tipo != filtro.tipo) return false;
  if (filtro.estado >= 0 && fila.estado != filtro.estado) return false;
  const QString texto = QString::fromStdString(filtro.texto).trimmed();
  return texto.isEmpty() ||
         QString::fromStdString(fila.nombre).contains(texto, Qt::CaseInsensitive);
}

std::string TipoTexto(int tipo) {
  const std::string n = NombreTipoMovFrec(tipo);
  return n.empty() ? std::to_string(tipo) : n;
}

std::string EstadoTexto(int estado) {
  const std::string n = NombreEstadoMF(estado);
  return n.empty() ? std::to_string(estado) : n;
}

std::string FechaTexto(Date fecha) {
  const vb::DateParts p = vb::Split(fecha);
  return vb::Format(Variant(fecha),
                    p.hour == 0 && p.minute == 0 ? "dd/mm/yyyy" : "dd/mm/yyyy hh:nn");
}

}  // namespace kivmovfrec::qt
