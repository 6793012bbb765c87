#include "movement_json.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <regex>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "args.h"
#include "kivmovfrec/frecuencia.h"
#include "kivmovfrec/records.h"
#include "kivmovfrec/vb.h"
#include "output.h"

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
      if (!conocidas.contains(clave)) {
        Error(Ruta(vb::ShortForMessage(clave)), "clave desconocida");
      }
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
                                     vb::ShortForMessage(v->get<std::string>())));
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
    if (v.is_string()) return "el texto " + vb::ShortForMessage(v.dump());
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

// The first date of the schedule, from which CantidadVeces counts: FechaInicio, or FechaProxima
// when there is none (the save does the same).
std::optional<Date> Inicio(const clsRegRecurrencia& r) {
  if (auto d = vb::ParseDate(r.FechaInicio())) return d;
  return vb::ParseDate(r.FechaProxima());
}

// CantidadVeces has no column: a count becomes the last date, worked out by the date calculator
// as the screens do. A count that a given last date, SinVencimiento or a once-only code
// contradicts would be lost, and is refused.
void CantidadComoFechaFinal(Lector& l, clsRegRecurrencia& r, int32_t veces,
                            IDateCalculator& calendario) {
  const std::string ruta = l.Ruta("CantidadVeces");
  if (r.SinVencimiento() != 0) {
    l.Error(ruta, "una agenda sin vencimiento (SinVencimiento 1) no termina: use 0");
    return;
  }
  const auto inicio = Inicio(r);
  if (!inicio) return;  // FechaProxima is already reported
  const auto final_dado = vb::ParseDate(r.FechaFinal());
  int32_t cantidad = final_dado ? 0 : veces;
  Date final_ = final_dado.value_or(*inicio);
  try {
    calendario.CalcularFinal(r.Frecuencia(), vb::DateOnly(*inicio), cantidad, final_);
  } catch (const std::exception& e) {
    l.Error(ruta, std::string("no se pudo calcular la última fecha: ") + e.what());
    return;
  }
  if (cantidad != veces && final_dado) {
    l.Error(ruta, fmt::format("{} no coincide con la FechaFinal {}: desde el {} la frecuencia {} "
                              "ocurre {} {} hasta esa fecha",
                              veces, FechaTexto(*final_dado), FechaTexto(vb::DateOnly(*inicio)),
                              r.Frecuencia(), cantidad, cantidad == 1 ? "vez" : "veces"));
    return;
  }
  if (cantidad != veces) {
    l.Error(ruta, fmt::format("{} no coincide con la frecuencia {}, que ocurre {} {}", veces,
                              r.Frecuencia(), cantidad, cantidad == 1 ? "vez" : "veces"));
    return;
  }
  if (!final_dado) r.FechaFinal(FechaTexto(final_));
}

void LeerAgenda(Lector& l, clsRegRecurrencia& r, IDateCalculator& calendario) {
  l.Ignorado("ID", Json::value_t::number_integer);
  l.Simple("NotificarDias", [&](float v) { r.NotificarDias(v); });
  std::optional<uint8_t> notificar;
  l.Bandera("Notificar", [&](uint8_t v) { notificar = v; });
  l.Bandera("SinVencimiento", [&](uint8_t v) { r.SinVencimiento(v); });
  l.Fecha("FechaProxima", [&](std::optional<Date> d) {
    if (d) r.FechaProxima(FechaTexto(*d));
  });
  if (l.valido() && r.FechaProxima().empty() &&
      (l.Valor("FechaProxima") == nullptr || l.Valor("FechaProxima")->is_null())) {
    l.Error(l.Ruta("FechaProxima"),
            "una agenda necesita la fecha del próximo vencimiento (o Recurrencia null)");
  }
  std::optional<int32_t> veces, cada, unidad, posponer;
  l.EnteroDe<int16_t>("CantidadVeces", [&](int16_t v) {
    if (v < 0) return l.Error(l.Ruta("CantidadVeces"), "no puede ser negativa");
    veces = v;
  });
  l.Entero("CadaCuanto", 0, schedule::kMaxStep, [&](int64_t v) { cada = static_cast<int32_t>(v); });
  l.Uno("TipoRecurrencia", {0, 1, 2, 3}, "tipo de recurrencia",
        [&](int64_t n) { unidad = static_cast<int32_t>(n); });
  l.Fecha("EraNotificacion",
          [&](std::optional<Date> d) { r.EraNotificacion(d ? FechaTexto(*d) : std::string()); });
  l.Simple("Postergado", [&](float v) { r.Postergado(v); });
  l.EnteroDe<int16_t>("Posponer", [&](int16_t v) { posponer = v; });
  std::optional<schedule::Frequency> frecuencia;
  if (const Json* f = l.Valor("Frecuencia"); f != nullptr) {
    if (f->is_string() && f->get<std::string>().size() == 6) {
      frecuencia = schedule::ParseFrequency(f->get<std::string>());
    }
    if (!frecuencia) {
      l.Error(l.Ruta("Frecuencia"),
              "se esperaba un código de frecuencia de seis dígitos (\"000000\" una vez, "
              "\"000007\" semanal, \"200001\" mensual, \"421001\" el segundo lunes de cada "
              "mes...), no " +
                  Lector::Describir(*f));
    }
  } else if (l.valido()) {
    // Without a code, the unit and the step make it.
    frecuencia = schedule::FrequencyFromCode(unidad.value_or(0) * 100000 + cada.value_or(0));
  }
  l.Fecha("FechaInicio",
          [&](std::optional<Date> d) { r.FechaInicio(d ? FechaTexto(*d) : std::string()); });
  l.Fecha("FechaFinal",
          [&](std::optional<Date> d) { r.FechaFinal(d ? FechaTexto(*d) : std::string()); });
  l.Entero("NumOcurrencia", 0, std::numeric_limits<int32_t>::max(),
           [&](int64_t v) { r.NumOcurrencia(static_cast<int32_t>(v)); });

  // Members without a column of their own are kept through the ones stored: a value that
  // disagrees with them would be lost, and is refused.
  if (frecuencia) {
    r.Frecuencia(schedule::FormatFrequencyCode(frecuencia->code()));
    const int32_t u = frecuencia->recordUnit();
    if (unidad && *unidad != u) {
      l.Error(l.Ruta("TipoRecurrencia"),
              fmt::format("{} no coincide con la Frecuencia {} (unidad {})", *unidad,
                          r.Frecuencia(), u));
    }
    if (cada && *cada != frecuencia->step) {
      l.Error(l.Ruta("CadaCuanto"), fmt::format("{} no coincide con la Frecuencia {} (cada {})",
                                                *cada, r.Frecuencia(), frecuencia->step));
    }
    r.TipoRecurrencia(static_cast<enuTipoRecurrencia>(u));
    // The record's field is 16 bits wide; a larger step is still stored whole in the code.
    r.CadaCuanto(static_cast<int16_t>(std::min(frecuencia->step, 32767)));
  }
  if (notificar) {
    if ((*notificar != 0) != (r.NotificarDias() > 0)) {
      l.Error(l.Ruta("Notificar"),
              fmt::format("{} no coincide con NotificarDias {} (se avisa cuando hay días de "
                          "anticipación)",
                          *notificar, Corto(r.NotificarDias())));
    }
    r.Notificar(*notificar);
  }
  if (posponer) {
    if (l.Valor("Postergado") == nullptr) {
      r.Posponer(static_cast<int16_t>(*posponer));
    } else if (*posponer != r.Posponer()) {
      l.Error(l.Ruta("Posponer"),
              fmt::format("{} no coincide con Postergado {} (Posponer es Postergado redondeado)",
                          *posponer, Corto(r.Postergado())));
    }
  }
  // A schedule that starts on its due date must start on a date its code falls due on: with a
  // rule or a move off the weekend the count and the last date are worked out from the first
  // date the code gives, which would then not be the first occurrence.
  const auto proxima = vb::ParseDate(r.FechaProxima());
  const auto inicio = vb::ParseDate(r.FechaInicio());
  if (frecuencia && proxima && (!inicio || vb::DateOnly(*inicio) == vb::DateOnly(*proxima))) {
    const Date primera = schedule::FirstDueDate(*frecuencia, *proxima);
    if (vb::DateOnly(primera) != vb::DateOnly(*proxima)) {
      l.Error(l.Ruta("FechaProxima"),
              fmt::format("el {} no es un vencimiento de la frecuencia {} ({}): el primero desde "
                          "esa fecha es el {}",
                          FechaTexto(vb::DateOnly(*proxima)), r.Frecuencia(),
                          calendario.DescribirFrecuencia(r.Frecuencia()),
                          FechaTexto(vb::DateOnly(primera))));
    }
  }
  if (veces && *veces > 0 && frecuencia) {
    r.CantidadVeces(static_cast<int16_t>(*veces));
    CantidadComoFechaFinal(l, r, *veces, calendario);
  }
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

nlohmann::ordered_json ParseSinClavesRepetidas(const std::string& texto,
                                               std::vector<std::string>& errores) {
  // One entry per open object or list: the path to it, and its keys or the index of the element
  // being read.
  struct Abierto {
    std::string ruta;
    bool lista = false;
    size_t indice = 0;
    std::string clave;
    std::set<std::string> claves;
  };
  std::vector<Abierto> abiertos;
  // Path of the value being read inside the innermost open object or list.
  auto ruta_hijo = [&]() -> std::string {
    if (abiertos.empty()) return "$";
    const Abierto& a = abiertos.back();
    return a.lista ? fmt::format("{}[{}]", a.ruta, a.indice)
                   : a.ruta + "." + vb::ShortForMessage(a.clave);
  };
  auto terminado = [&] {
    if (!abiertos.empty() && abiertos.back().lista) ++abiertos.back().indice;
  };
  using Evento = Json::parse_event_t;
  return Json::parse(texto, [&](int, Evento evento, Json& valor) {
    switch (evento) {
      case Evento::object_start:
      case Evento::array_start:
        abiertos.push_back({ruta_hijo(), evento == Evento::array_start, 0, {}, {}});
        break;
      case Evento::object_end:
      case Evento::array_end:
        abiertos.pop_back();
        terminado();
        break;
      case Evento::key:
        abiertos.back().clave = valor.get<std::string>();
        if (!abiertos.back().claves.insert(abiertos.back().clave).second) {
          errores.push_back(ruta_hijo() + ": clave repetida");
        }
        break;
      case Evento::value:
        terminado();
        break;
    }
    return true;
  });
}

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
    agenda["Notificar"] = r.NotificarDias() > 0 ? 1 : 0;
    agenda["SinVencimiento"] = r.SinVencimiento();
    agenda["FechaProxima"] = FechaDeTexto(r.FechaProxima());
    const auto frecuencia = schedule::ParseFrequency(r.Frecuencia());
    agenda["CantidadVeces"] = r.CantidadVeces();
    agenda["CadaCuanto"] = frecuencia ? frecuencia->step : r.CadaCuanto();
    agenda["TipoRecurrencia"] = frecuencia ? frecuencia->recordUnit() : ToInt(r.TipoRecurrencia());
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
                               IDateCalculator& calendario, std::shared_ptr<IClock> reloj,
                               std::vector<std::string>& errores) {
  MovimientoLeido leido;
  leido.mf = std::make_shared<clsMFTipo>(std::move(reloj));
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
    LeerAgenda(l, *leido.mf->Recurrencia(), calendario);
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

}  // namespace kivmovfrec::cli
