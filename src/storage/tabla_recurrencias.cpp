#include "storage/tabla_recurrencias.h"

#include <utility>

#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "platform/vb/text.h"
#include "storage/columnas.h"
#include "storage/contador.h"
#include "storage/fila.h"

namespace kivmovfrec::storage {
namespace {

// A date column read back as the text the record keeps.
std::string FechaComoTexto(const Variant& v) {
  return vb::CStr(Variant(AFecha(v)));
}

// The code as six digits when it is a plain number ("7" -> "000007"); other text as it is.
std::string CodigoSeisDigitos(std::string codigo) {
  codigo = vb::Trim(codigo);
  if (codigo.empty() || codigo.size() >= 6) return codigo;
  for (char c : codigo) {
    if (c < '0' || c > '9') return codigo;
  }
  return std::string(6 - codigo.size(), '0') + codigo;
}

bool EsFecha(const std::string& texto) {
  return vb::IsDate(Variant(texto));
}

Date AFechaTexto(const std::string& texto) {
  return vb::CDate(Variant(texto));
}

}  // namespace

std::string SqlRecurrenciaPorID(int32_t id) {
  return "Select * From genRecurrencias Where RecID = " + std::to_string(id);
}

Date FechaSegunFormatoBD(Date d, const ParametrosBD& p) {
  // Either case: only "H" and "S" lower-case to "h" and "s", and no byte of a longer UTF-8
  // sequence is ASCII.
  const std::string& formato = p.formato_fecha;
  const bool horas = formato.find_first_of("hH") != std::string::npos;
  const bool segundos = formato.find_first_of("sS") != std::string::npos;
  vb::DateParts partes = vb::Split(d);
  if (!horas) partes.hour = partes.minute = 0;
  if (!segundos) partes.second = 0;
  return vb::MakeDate(partes);
}

void LeerRecurrencia(const Resultset& rs, clsRegRecurrencia& rec) {
  SiNoNulo(rs, "RecID", ALong, [&](int32_t v) { rec.ID(v); });
  SiNoNulo(rs, "RecNumOcurrencia", ALong, [&](int32_t v) { rec.NumOcurrencia(v); });
  SiNoNulo(rs, "RecFrecuencia", ATexto,
           [&](std::string v) { rec.Frecuencia(CodigoSeisDigitos(std::move(v))); });
  SiNoNulo(rs, "RecFechaInicio", FechaComoTexto,
           [&](std::string v) { rec.FechaInicio(std::move(v)); });
  SiNoNulo(rs, "RecFechaProxima", FechaComoTexto,
           [&](std::string v) { rec.FechaProxima(std::move(v)); });
  SiNoNulo(rs, "RecFechaFinal", FechaComoTexto,
           [&](std::string v) { rec.FechaFinal(std::move(v)); });
  SiNoNulo(rs, "RecPostergado", ASingle, [&](float v) { rec.Postergado(v); });
  SiNoNulo(rs, "RecSinVencimiento", AByte, [&](uint8_t v) { rec.SinVencimiento(v); });
  SiNoNulo(rs, "RecNotificar", ASingle, [&](float v) { rec.NotificarDias(v); });
  SiNoNulo(rs, "RecEraNotificacion", FechaComoTexto,
           [&](std::string v) { rec.EraNotificacion(std::move(v)); });
}

ValoresFila ValoresRecurrencia(clsRegRecurrencia& rec, const ParametrosBD& p) {
  if (!EsFecha(rec.FechaInicio())) rec.FechaInicio(rec.FechaProxima());
  // Every conversion runs before anything is written, so a date that does not read leaves the
  // row untouched.
  const Date inicio = FechaSegunFormatoBD(AFechaTexto(rec.FechaInicio()), p);
  const Date proxima = FechaSegunFormatoBD(AFechaTexto(rec.FechaProxima()), p);
  const Variant final_ = EsFecha(rec.FechaFinal())
                             ? Variant(FechaSegunFormatoBD(AFechaTexto(rec.FechaFinal()), p))
                             : Variant::Null();
  const Variant era = EsFecha(rec.EraNotificacion()) ? Variant(AFechaTexto(rec.EraNotificacion()))
                                                     : Variant::Null();
  return {
      {"RecNumOcurrencia", rec.NumOcurrencia() == 0 ? 1 : rec.NumOcurrencia()},
      {"RecFrecuencia", rec.Frecuencia()},
      {"RecFechaInicio", inicio},
      {"RecFechaProxima", proxima},
      {"RecFechaFinal", final_},
      {"RecPostergado",
       rec.Postergado() > 0 ? Variant(static_cast<double>(rec.Postergado())) : Variant::Null()},
      {"RecSinVencimiento", rec.SinVencimiento()},
      {"RecNotificar", rec.NotificarDias() > 0 ? Variant(static_cast<double>(rec.NotificarDias()))
                                               : Variant::Null()},
      {"RecEraNotificacion", era}};
}

void EscribirRecurrencia(Resultset& rs, clsRegRecurrencia& rec, const ParametrosBD& p) {
  EscribirFila(rs, ValoresRecurrencia(rec, p));
}

bool CargarRecurrencia(Connection& cn, clsRegRecurrencia& rec) {
  auto rs = cn.OpenResultset(SqlRecurrenciaPorID(rec.ID()));
  if (rs->Eof()) {
    rs->Close();
    return false;
  }
  clsRegRecurrencia leida = rec;
  LeerRecurrencia(*rs, leida);
  rs->Close();
  rec = std::move(leida);
  return true;
}

int32_t GuardarRecurrencia(Connection& cn, IDBFncs& dbf, clsRegRecurrencia& rec,
                           const ParametrosBD& p) {
  auto rs = cn.OpenResultset(SqlRecurrenciaPorID(rec.ID()));
  int32_t id = rec.ID();
  if (rs->Eof()) {
    id = NuevoIDRecurrencia(dbf, p.idioma);
    rs->AddNew();
    rs->Set("RecID", id);
  } else {
    rs->Edit();
  }
  EscribirRecurrencia(*rs, rec, p);
  rs->Update();
  rs->Close();
  rec.ID(id);
  return id;
}

DbStatement SentenciaActualizarRecurrencia(clsRegRecurrencia& rec, const ParametrosBD& p) {
  return SentenciaActualizar("genRecurrencias", "RecID", rec.ID(), ValoresRecurrencia(rec, p));
}

void BorrarRecurrencia(Connection& cn, int32_t id) {
  auto rs = cn.OpenResultset(SqlRecurrenciaPorID(id));
  for (; !rs->Eof(); rs->MoveNext()) rs->Delete();
  rs->Close();
}

int32_t NuevoIDRecurrencia(IDBFncs& dbf, int idioma) {
  return NuevoID(dbf, "genRecurrencias", idioma);
}

}  // namespace kivmovfrec::storage
