#include "movement_json.h"

#include <cstdlib>
#include <functional>
#include <limits>
#include <regex>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "args.h"
#include "kivmovfrec/records.h"
#include "output.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "schedule/frequency.h"

namespace kivmovfrec::cli {
namespace {

using Json = nlohmann::ordered_json;

// A single-precision value as the number people typed: 2.6f is written 2.6, not
// 2.5999999046325684.
double Corto(float v) {
  return std::strtod(fmt::format("{}", v).c_str(), nullptr);
}

// A date kept as text in a record: its "dd/mm/aaaa[ hh:nn[:ss]]" form, null when empty.
Json FechaDeTexto(const std::string& texto) {
  return FechaJson(texto.empty() ? Variant() : Variant(texto));
}

const char* const kClavesMov[] = {"Estado",      "FechaEstado",    "Vista",
                                  "Detalle",     "Imagen",         "ID",
                                  "Empresa",     "Tipo",           "DelSistema",
                                  "Nombre",      "Memo",           "Ente",
                                  "Modalidad",   "TipoImporte",    "Moneda",
                                  "Recurrencia", "MovVinculado",   "OrdenMovVinculado",
                                  "UsuarioAlta", "UsuarioAutoriza"};
const char* const kClavesRec[] = {"ID",
                                  "NotificarDias",
                                  "Notificar",
                                  "SinVencimiento",
                                  "FechaProxima",
                                  "CantidadVeces",
                                  "CadaCuanto",
                                  "TipoRecurrencia",
                                  "EraNotificacion",
                                  "Postergado",
                                  "Posponer",
                                  "Frecuencia",
                                  "FechaInicio",
                                  "FechaFinal",
                                  "NumOcurrencia"};
const char* const kClavesRenglon[] = {"idMF",
                                      "CuentaCodigo",
                                      "CuentaNombre",
                                      "ProyectoAbreviacion",
                                      "DepartamentoAbreviacion",
                                      "Cuenta",
                                      "Proyecto",
                                      "Departamento",
                                      "Orden",
                                      "AlDebe",
                                      "Formula",
                                      "ImporteCta",
                                      "ImporteMF",
                                      "Moneda",
                                      "TipoCambio",
                                      "ValorTC",
                                      "Detalle",
                                      "FormulaVisible"};
const char* const kClavesRaiz[] = {"MovFrecuente", "Recurrencia", "Renglones"};

// Reads the keys of one JSON object, reporting every problem under the object's path.
class Lector {
 public:
  template <size_t N>
  Lector(const Json& obj, std::string ruta, std::vector<std::string>& errores,
         const char* const (&claves)[N])
      : obj_(obj), ruta_(std::move(ruta)), errores_(errores) {
    if (!obj_.is_object()) {
      Error(ruta_, "se esperaba un objeto JSON");
      valido_ = false;
      return;
    }
    const std::set<std::string> conocidas(std::begin(claves), std::end(claves));
    for (const auto& [clave, valor] : obj_.items()) {
      if (!conocidas.contains(clave)) Error(Ruta(clave), "clave desconocida");
    }
  }

  bool valido() const { return valido_; }
  std::string Ruta(const std::string& clave) const { return ruta_ + "." + clave; }
  const Json* Valor(const char* clave) const {
    if (!valido_) return nullptr;
    const auto it = obj_.find(clave);
    return it == obj_.end() ? nullptr : &*it;
  }
  void Error(const std::string& ruta, const std::string& texto) {
    errores_.push_back(ruta + ": " + texto);
  }

  // A whole number within [min, max].
  void Entero(const char* clave, int64_t min, int64_t max,
              const std::function<void(int64_t)>& poner) {
    const Json* v = Valor(clave);
    if (v == nullptr) return;
    if (!v->is_number_integer()) {
      Error(Ruta(clave), "se esperaba un número entero, no " + Describir(*v));
      return;
    }
    if (v->is_number_unsigned() && v->get<uint64_t>() > static_cast<uint64_t>(max)) {
      Error(Ruta(clave), fmt::format("{} está fuera del rango {} a {}", v->dump(), min, max));
      return;
    }
    const int64_t n = v->get<int64_t>();
    if (n < min || n > max) {
      Error(Ruta(clave), fmt::format("{} está fuera del rango {} a {}", n, min, max));
      return;
    }
    poner(n);
  }

  // An integer property of type T (its whole range).
  template <typename T>
  void EnteroDe(const char* clave, const std::function<void(T)>& poner) {
    Entero(clave, std::numeric_limits<T>::min(), std::numeric_limits<T>::max(),
           [&](int64_t n) { poner(static_cast<T>(n)); });
  }

  // One of the listed values.
  void Uno(const char* clave, std::initializer_list<int64_t> permitidos, const char* nombre,
           const std::function<void(int64_t)>& poner) {
    Entero(clave, std::numeric_limits<int16_t>::min(), std::numeric_limits<int16_t>::max(),
           [&](int64_t n) {
             for (int64_t p : permitidos) {
               if (p == n) return poner(n);
             }
             std::string lista;
             for (int64_t p : permitidos) lista += (lista.empty() ? "" : ", ") + std::to_string(p);
             Error(Ruta(clave),
                   fmt::format("{} desconocido {} (se esperaba {})", nombre, n, lista));
           });
  }

  void Real(const char* clave, const std::function<void(double)>& poner) {
    const Json* v = Valor(clave);
    if (v == nullptr) return;
    if (!v->is_number()) {
      Error(Ruta(clave), "se esperaba un número, no " + Describir(*v));
      return;
    }
    poner(v->get<double>());
  }

  void Simple(const char* clave, const std::function<void(float)>& poner) {
    Real(clave, [&](double d) {
      if (d > std::numeric_limits<float>::max() || d < -std::numeric_limits<float>::max()) {
        Error(Ruta(clave), "número demasiado grande");
        return;
      }
      poner(static_cast<float>(d));
    });
  }

  // Text; null reads as "". `sin_comilla`: a single quote is refused.
  void Texto(const char* clave, bool sin_comilla, const std::function<void(std::string)>& poner) {
    const Json* v = Valor(clave);
    if (v == nullptr) return;
    if (v->is_null()) return poner(std::string());
    if (!v->is_string()) {
      Error(Ruta(clave), "se esperaba un texto, no " + Describir(*v));
      return;
    }
    std::string texto = v->get<std::string>();
    if (sin_comilla && texto.find('\'') != std::string::npos) {
      Error(Ruta(clave), "no puede contener comillas simples (')");
      return;
    }
    poner(std::move(texto));
  }

  // A date; null gives nothing.
  void Fecha(const char* clave, const std::function<void(std::optional<Date>)>& poner) {
    const Json* v = Valor(clave);
    if (v == nullptr) return;
    if (v->is_null()) return poner(std::nullopt);
    if (!v->is_string()) {
      Error(Ruta(clave), "se esperaba una fecha (texto dd/mm/aaaa), no " + Describir(*v));
      return;
    }
    const auto d = LeerFechaJson(v->get<std::string>());
    if (!d) {
      Error(Ruta(clave), fmt::format("«{}» no es una fecha válida (use dd/mm/aaaa o dd/mm/aaaa "
                                     "hh:nn[:ss])",
                                     v->get<std::string>()));
      return;
    }
    poner(d);
  }

  void Booleano(const char* clave, const std::function<void(bool)>& poner) {
    const Json* v = Valor(clave);
    if (v == nullptr) return;
    if (!v->is_boolean()) {
      Error(Ruta(clave), "se esperaba true o false, no " + Describir(*v));
      return;
    }
    poner(v->get<bool>());
  }

  // A byte flag: 0..255, or true / false for 1 / 0.
  void Bandera(const char* clave, const std::function<void(uint8_t)>& poner) {
    const Json* v = Valor(clave);
    if (v != nullptr && v->is_boolean()) return poner(v->get<bool>() ? 1 : 0);
    EnteroDe<uint8_t>(clave, poner);
  }

  // Checks the type only: the value is not used.
  void Ignorado(const char* clave, Json::value_t tipo) {
    const Json* v = Valor(clave);
    if (v == nullptr || v->is_null()) return;
    const bool ok = tipo == Json::value_t::number_integer ? v->is_number_integer()
                    : tipo == Json::value_t::number_float ? v->is_number()
                                                          : v->type() == tipo;
    if (!ok) Error(Ruta(clave), "tipo de valor incorrecto: " + Describir(*v));
  }

  static std::string Describir(const Json& v) {
    if (v.is_null()) return "null";
    if (v.is_boolean()) return "un booleano";
    if (v.is_number_integer()) return "el entero " + v.dump();
    if (v.is_number()) return "el número " + v.dump();
    if (v.is_string()) return "el texto " + v.dump();
    if (v.is_array()) return "una lista";
    return "un objeto";
  }

 private:
  const Json& obj_;
  std::string ruta_;
  std::vector<std::string>& errores_;
  bool valido_ = true;
};

void LeerCabecera(Lector& l, clsRegMovimientoFrecuente& m) {
  l.Uno("Estado", {0, 1, 9}, "estado", [&](int64_t n) { m.Estado(static_cast<uint8_t>(n)); });
  l.Fecha("FechaEstado", [&](std::optional<Date> d) {
    if (d) {
      m.FechaEstado(*d);
    } else {
      l.Error(l.Ruta("FechaEstado"), "la fecha del estado no puede ser null");
    }
  });
  l.EnteroDe<uint8_t>("Vista", [&](uint8_t v) { m.Vista(v); });
  l.Texto("Detalle", false, [&](std::string v) { m.Detalle(std::move(v)); });
  l.EnteroDe<int16_t>("Imagen", [&](int16_t v) { m.Imagen(v); });
  l.Entero("ID", 0, std::numeric_limits<int32_t>::max(),
           [&](int64_t v) { m.ID(static_cast<int32_t>(v)); });
  l.EnteroDe<int16_t>("Empresa", [&](int16_t v) { m.Empresa(v); });
  l.Uno("Tipo", {1, 2, 3, 4, 5, kTipoItemCheckList}, "tipo",
        [&](int64_t n) { m.Tipo(static_cast<enuTipoMovFrec>(n)); });
  l.Uno("DelSistema", {0, 1}, "valor",
        [&](int64_t n) { m.DelSistema(static_cast<enuClasificacionMF>(n)); });
  l.Texto("Nombre", true, [&](std::string v) { m.Nombre(std::move(v)); });
  l.Texto("Memo", true, [&](std::string v) { m.Memo(std::move(v)); });
  l.EnteroDe<int16_t>("Ente", [&](int16_t v) { m.Ente(v); });
  l.EnteroDe<int16_t>("Modalidad", [&](int16_t v) { m.Modalidad(v); });
  l.EnteroDe<int16_t>("TipoImporte", [&](int16_t v) { m.TipoImporte(v); });
  l.EnteroDe<int16_t>("Moneda", [&](int16_t v) { m.Moneda(v); });
  l.Ignorado("Recurrencia", Json::value_t::number_integer);
  l.Entero("MovVinculado", 0, std::numeric_limits<int32_t>::max(),
           [&](int64_t v) { m.MovVinculado(static_cast<int32_t>(v)); });
  l.EnteroDe<uint8_t>("OrdenMovVinculado", [&](uint8_t v) { m.OrdenMovVinculado(v); });
  l.EnteroDe<int16_t>("UsuarioAlta", [&](int16_t v) { m.UsuarioAlta(v); });
  l.EnteroDe<int16_t>("UsuarioAutoriza", [&](int16_t v) { m.UsuarioAutoriza(v); });
  if (l.valido() && l.Valor("Tipo") == nullptr) l.Error(l.Ruta("Tipo"), "falta el tipo");
}

void LeerAgenda(Lector& l, clsRegRecurrencia& r) {
  l.Ignorado("ID", Json::value_t::number_integer);
  l.Simple("NotificarDias", [&](float v) { r.NotificarDias(v); });
  l.Bandera("Notificar", [&](uint8_t v) { r.Notificar(v); });
  l.Bandera("SinVencimiento", [&](uint8_t v) { r.SinVencimiento(v); });
  l.Fecha("FechaProxima", [&](std::optional<Date> d) {
    if (d) r.FechaProxima(FechaTexto(*d));
  });
  if (l.valido() && r.FechaProxima().empty() &&
      (l.Valor("FechaProxima") == nullptr || l.Valor("FechaProxima")->is_null())) {
    l.Error(l.Ruta("FechaProxima"),
            "una agenda necesita la fecha del próximo vencimiento (o Recurrencia null)");
  }
  l.EnteroDe<int16_t>("CantidadVeces", [&](int16_t v) { r.CantidadVeces(v); });
  l.EnteroDe<int16_t>("CadaCuanto", [&](int16_t v) { r.CadaCuanto(v); });
  l.Uno("TipoRecurrencia", {0, 1, 2, 3}, "tipo de recurrencia",
        [&](int64_t n) { r.TipoRecurrencia(static_cast<enuTipoRecurrencia>(n)); });
  l.Fecha("EraNotificacion",
          [&](std::optional<Date> d) { r.EraNotificacion(d ? FechaTexto(*d) : std::string()); });
  l.Simple("Postergado", [&](float v) { r.Postergado(v); });
  l.Ignorado("Posponer", Json::value_t::number_integer);
  if (const Json* f = l.Valor("Frecuencia"); f != nullptr) {
    const auto frecuencia =
        f->is_string() ? schedule::ParseFrequency(f->get<std::string>()) : std::nullopt;
    if (frecuencia && f->get<std::string>().size() == 6) {
      r.Frecuencia(f->get<std::string>());
    } else {
      l.Error(l.Ruta("Frecuencia"),
              "se esperaba un código de frecuencia de seis dígitos (\"000000\" una vez, "
              "\"000007\" semanal, \"200001\" mensual...), no " +
                  Lector::Describir(*f));
    }
  } else if (l.valido()) {
    r.Frecuencia("000000");
  }
  l.Fecha("FechaInicio",
          [&](std::optional<Date> d) { r.FechaInicio(d ? FechaTexto(*d) : std::string()); });
  l.Fecha("FechaFinal",
          [&](std::optional<Date> d) { r.FechaFinal(d ? FechaTexto(*d) : std::string()); });
  l.Entero("NumOcurrencia", 0, std::numeric_limits<int32_t>::max(),
           [&](int64_t v) { r.NumOcurrencia(static_cast<int32_t>(v)); });
}

void LeerRenglon(Lector& l, clsRegRenglonMF& r) {
  l.Ignorado("idMF", Json::value_t::number_integer);
  for (const char* clave :
       {"CuentaCodigo", "CuentaNombre", "ProyectoAbreviacion", "DepartamentoAbreviacion"}) {
    l.Ignorado(clave, Json::value_t::string);
  }
  l.Entero("Cuenta", 0, std::numeric_limits<int32_t>::max(),
           [&](int64_t v) { r.Cuenta(static_cast<int32_t>(v)); });
  l.EnteroDe<int16_t>("Proyecto", [&](int16_t v) { r.Proyecto(v); });
  l.EnteroDe<int16_t>("Departamento", [&](int16_t v) { r.Departamento(v); });
  l.EnteroDe<uint8_t>("Orden", [&](uint8_t v) { r.Orden(v); });
  l.Booleano("AlDebe", [&](bool v) { r.AlDebe(v); });
  l.Texto("Formula", false, [&](std::string v) { r.Formula(std::move(v)); });
  l.Real("ImporteCta", [&](double v) { r.ImporteCta(v); });
  l.Real("ImporteMF", [&](double v) { r.ImporteMF(v); });
  l.Ignorado("Moneda", Json::value_t::number_integer);
  l.EnteroDe<uint8_t>("TipoCambio", [&](uint8_t v) { r.TipoCambio(v); });
  l.Real("ValorTC", [&](double v) { r.ValorTC(v); });
  l.Texto("Detalle", true, [&](std::string v) { r.Detalle(std::move(v)); });
  l.Ignorado("FormulaVisible", Json::value_t::string);  // written by ver / exportar
  if (l.valido() && l.Valor("Cuenta") == nullptr) l.Error(l.Ruta("Cuenta"), "falta la cuenta");
}

}  // namespace

std::optional<Date> LeerFechaJson(const std::string& texto) {
  static const std::regex forma(
      R"((\d{1,2}/\d{1,2}/\d{4}|\d{4}-\d{2}-\d{2})(?:[ T](\d{1,2}):(\d{2})(?::(\d{2}))?)?)");
  std::smatch m;
  if (!std::regex_match(texto, m, forma)) return std::nullopt;
  const auto dia = ParseFecha(m[1].str());
  if (!dia) return std::nullopt;
  if (!m[2].matched) return dia;
  const int h = std::stoi(m[2].str());
  const int n = std::stoi(m[3].str());
  const int s = m[4].matched ? std::stoi(m[4].str()) : 0;
  if (h > 23 || n > 59 || s > 59) return std::nullopt;
  vb::DateParts p = vb::Split(*dia);
  p.hour = h;
  p.minute = n;
  p.second = s;
  return vb::MakeDate(p);
}

nlohmann::ordered_json MovimientoJson(const clsMFTipo& mf) {
  const clsRegMovimientoFrecuente& m = *mf.MovFrecuente();
  Json cab;
  cab["Estado"] = m.Estado();
  cab["FechaEstado"] = FechaTexto(m.FechaEstado());
  cab["Vista"] = m.Vista();
  cab["Detalle"] = m.Detalle();
  cab["Imagen"] = m.Imagen();
  cab["ID"] = m.ID();
  cab["Empresa"] = m.Empresa();
  cab["Tipo"] = ToInt(m.Tipo());
  cab["DelSistema"] = ToInt(m.DelSistema());
  cab["Nombre"] = m.Nombre();
  cab["Memo"] = m.Memo();
  cab["Ente"] = m.Ente();
  cab["Modalidad"] = m.Modalidad();
  cab["TipoImporte"] = m.TipoImporte();
  cab["Moneda"] = m.Moneda();
  cab["Recurrencia"] = m.Recurrencia();
  cab["MovVinculado"] = m.MovVinculado();
  cab["OrdenMovVinculado"] = m.OrdenMovVinculado();
  cab["UsuarioAlta"] = m.UsuarioAlta();
  cab["UsuarioAutoriza"] = m.UsuarioAutoriza();

  Json agenda = nullptr;
  const clsRegRecurrencia& r = *mf.Recurrencia();
  if (r.ID() > 0 || !r.FechaProxima().empty()) {
    agenda = Json::object();
    agenda["ID"] = r.ID();
    agenda["NotificarDias"] = Corto(r.NotificarDias());
    agenda["Notificar"] = r.Notificar();
    agenda["SinVencimiento"] = r.SinVencimiento();
    agenda["FechaProxima"] = FechaDeTexto(r.FechaProxima());
    agenda["CantidadVeces"] = r.CantidadVeces();
    agenda["CadaCuanto"] = r.CadaCuanto();
    agenda["TipoRecurrencia"] = ToInt(r.TipoRecurrencia());
    agenda["EraNotificacion"] = FechaDeTexto(r.EraNotificacion());
    agenda["Postergado"] = Corto(r.Postergado());
    agenda["Posponer"] = r.Posponer();
    agenda["Frecuencia"] = r.Frecuencia();
    agenda["FechaInicio"] = FechaDeTexto(r.FechaInicio());
    agenda["FechaFinal"] = FechaDeTexto(r.FechaFinal());
    agenda["NumOcurrencia"] = r.NumOcurrencia();
  }

  Json renglones = Json::array();
  const clsRenglonesMF& lineas = *mf.Renglones();
  for (int16_t i = 1; i <= lineas.QRenglones(); ++i) {
    const clsRegRenglonMF& l = *lineas.Renglon(i);
    Json j;
    j["idMF"] = l.idMF();
    j["CuentaCodigo"] = l.CuentaCodigo();
    j["CuentaNombre"] = l.CuentaNombre();
    j["ProyectoAbreviacion"] = l.ProyectoAbreviacion();
    j["DepartamentoAbreviacion"] = l.DepartamentoAbreviacion();
    j["Cuenta"] = l.Cuenta();
    j["Proyecto"] = l.Proyecto();
    j["Departamento"] = l.Departamento();
    j["Orden"] = l.Orden();
    j["AlDebe"] = l.AlDebe();
    j["Formula"] = l.Formula();
    j["ImporteCta"] = l.ImporteCta();
    j["ImporteMF"] = l.ImporteMF();
    j["Moneda"] = l.Moneda();
    j["TipoCambio"] = l.TipoCambio();
    j["ValorTC"] = l.ValorTC();
    j["Detalle"] = l.Detalle();
    renglones.push_back(std::move(j));
  }

  Json mov;
  mov["MovFrecuente"] = std::move(cab);
  mov["Recurrencia"] = std::move(agenda);
  mov["Renglones"] = std::move(renglones);
  return mov;
}

MovimientoLeido LeerMovimiento(const nlohmann::ordered_json& j, const std::string& ruta,
                               std::vector<std::string>& errores) {
  MovimientoLeido leido;
  leido.mf = std::make_shared<clsMFTipo>();
  Lector raiz(j, ruta, errores, kClavesRaiz);
  if (!raiz.valido()) return leido;

  if (const Json* cab = raiz.Valor("MovFrecuente"); cab == nullptr) {
    raiz.Error(raiz.Ruta("MovFrecuente"), "falta la cabecera del movimiento");
  } else {
    Lector l(*cab, raiz.Ruta("MovFrecuente"), errores, kClavesMov);
    LeerCabecera(l, *leido.mf->MovFrecuente());
  }

  if (const Json* rec = raiz.Valor("Recurrencia"); rec != nullptr && !rec->is_null()) {
    leido.con_agenda = true;
    Lector l(*rec, raiz.Ruta("Recurrencia"), errores, kClavesRec);
    LeerAgenda(l, *leido.mf->Recurrencia());
  }

  if (const Json* lineas = raiz.Valor("Renglones"); lineas != nullptr && !lineas->is_null()) {
    if (!lineas->is_array()) {
      raiz.Error(raiz.Ruta("Renglones"), "se esperaba una lista de renglones");
    } else if (lineas->size() > static_cast<size_t>(std::numeric_limits<int16_t>::max())) {
      raiz.Error(raiz.Ruta("Renglones"), "demasiados renglones");
    } else {
      for (size_t i = 0; i < lineas->size(); ++i) {
        auto renglon = std::make_shared<clsRegRenglonMF>();
        Lector l((*lineas)[i], fmt::format("{}.Renglones[{}]", ruta, i), errores, kClavesRenglon);
        LeerRenglon(l, *renglon);
        leido.mf->Renglones()->AddRenglon(renglon);
      }
    }
  }
  return leido;
}

std::string TipoTexto(int tipo) {
  switch (tipo) {
    case 1:
      return "Asiento";
    case 2:
      return "Comprobante";
    case 3:
      return "Aviso";
    case 4:
      return "Asiento del sistema";
    case 5:
      return "Lista de tareas";
    case 6:
      return "Tarea";
    default:
      return "";
  }
}

std::string EstadoTexto(int estado) {
  switch (estado) {
    case 0:
      return "En proceso";
    case 1:
      return "Realizado";
    case 9:
      return "Papelera";
    default:
      return "";
  }
}

}  // namespace kivmovfrec::cli
