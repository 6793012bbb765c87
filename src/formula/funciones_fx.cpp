#include "formula/funciones_fx.h"

#include <charconv>
#include <cmath>
#include <exception>
#include <utility>

#include "core/clock.h"
#include "formula/elementos.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "platform/vb/decimal.h"
#include "platform/vb/format.h"
#include "platform/vb/text.h"

namespace kivmovfrec::formula {

const char* const kSqlTipoIndice =
    "Select TCMCodigo From genTipoCotizacionMoneda Where TCMIndice = 1";
const char* const kSqlEsCarpeta = "Select CueEsCarpeta from cceCuentas Where CueID = ";
const char* const kSqlRenglonesOtro =
    "Select * from genRenglonMovFrecuentes Where RMFMovimiento = ";

namespace {

std::optional<int32_t> Entero(std::string_view s) {
  std::string t = vb::Trim(s);
  if (t.empty()) return std::nullopt;
  int32_t v = 0;
  const char* b = t.data();
  const char* e = t.data() + t.size();
  if (*b == '+') ++b;
  auto [p, ec] = std::from_chars(b, e, v);
  if (ec != std::errc() || p != e) return std::nullopt;
  return v;
}

// A column that may be Null, as a whole number (Null = 0).
int32_t EnteroColumna(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? 0 : vb::CLng(v);
}

// A number for people: Spanish decimal comma, up to 15 significant digits.
std::string Mostrar(double v) {
  return vb::NumberToText(v, vb::Locale::Spanish());
}

std::string MostrarTasa(Currency c) {
  return Mostrar(c.ToDouble());
}

// A database value that should be a number: numeric subtypes and numeric text.
std::optional<double> NumeroDe(const Variant& v) {
  if (v.IsNull() || v.IsEmpty()) return std::nullopt;
  if (v.type() == VarType::Boolean) return std::nullopt;
  if (v.IsNumericType()) return vb::CDbl(v);
  if (v.IsString()) return LeerNumero(v.AsString());
  return std::nullopt;
}

// The block's body without its opening and closing tags (tags in any letter case).
std::string CuerpoBloque(std::string_view bloque, std::string_view abre, std::string_view cierra) {
  std::string t(bloque);
  if (vb::StartsWithIgnoreCase(t, abre)) t.erase(0, abre.size());
  if (t.size() >= cierra.size() &&
      vb::EqualsIgnoreCase(std::string_view(t).substr(t.size() - cierra.size()), cierra)) {
    t.erase(t.size() - cierra.size());
  }
  return t;
}

TrazaElementoFx SinValor(TrazaElementoFx t, std::string detalle) {
  t.valor.reset();
  t.detalle = std::move(detalle);
  return t;
}

const char* const kNombresDia[] = {"al día del cálculo", "al día anterior",
                                   "al último día del mes anterior"};

Date FechaSegun(int cual, Date d) {
  const Date dia = vb::DateOnly(d);
  if (cual == 1) return vb::DateAdd("d", -1, dia);
  if (cual == 2) return UltimoDiaMesAnterior(dia);
  return dia;
}

}  // namespace

std::string NumeroInvariante(double v) {
  if (v == 0) return "0";  // also -0
  const std::string t = vb::NumberToText(std::fabs(v), vb::Locale::Invariant());
  return v < 0 ? "(-" + t + ")" : t;
}

std::optional<double> LeerNumero(std::string_view texto) {
  return vb::ParseNumber(texto);
}

int DecimalesFormato(std::string_view formato) {
  const size_t fin = formato.find(';');
  const std::string_view seccion = formato.substr(0, fin);
  const size_t punto = seccion.find('.');
  if (punto == std::string_view::npos) return 0;
  int n = 0;
  for (char c : seccion.substr(punto + 1)) {
    if (c == '0' || c == '#') ++n;
  }
  return n;
}

double RedondearFormato(double v, std::string_view formato) {
  const int dec = DecimalesFormato(formato);
  if (dec >= 0 && dec < 10 && std::fabs(v) < 1e9) {
    // A value that already is a whole number of the units (n / 10^dec reads back as v, n well
    // below 2^51): the shortest decimal that stands for v lies within one unit in the last place
    // of n / 10^dec, far from any half, so the rounding below would give v back.
    static constexpr double kPotencias[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    const double escala = kPotencias[dec];
    const double x = v * escala;
    const double n = std::nearbyint(x);
    if (n == x && std::fabs(n) < 1e15 && n / escala == v) return v == 0 ? 0.0 : v;
  }
  if (std::isfinite(v) && std::fabs(v) < 1e300) {
    // The rounding Format applies to "0.00…" (the decimal the double stands for, halves away
    // from zero), read back as the nearest double, without writing and reading the text.
    const double r = vb::ToDouble(vb::RoundDecimal(v, dec, vb::HalfRule::AwayFromZero));
    return r == 0 ? 0.0 : r;
  }
  std::string patron = "0";
  if (dec > 0) patron += "." + std::string(static_cast<size_t>(dec), '0');
  const std::string t = vb::FormatNumberPattern(v, patron, vb::Locale::Invariant());
  double r = 0;
  auto [p, ec] = std::from_chars(t.data(), t.data() + t.size(), r);
  if (ec != std::errc() || p != t.data() + t.size()) return v;
  return r == 0 ? 0.0 : r;
}

Date UltimoDiaMesAnterior(Date d) {
  return vb::DateAdd("d", -1, vb::DateSerial(vb::Year(d), vb::Month(d), 1));
}

std::string FechaCorta(Date d) {
  return vb::FormatDate(d, "dd/mm/yyyy");
}

clsFuncionesFx::clsFuncionesFx(std::shared_ptr<Connection> cn, ServiciosFx servicios,
                               const ParametrosBD& parametros)
    : cn_(std::move(cn)),
      servicios_(std::move(servicios)),
      parametros_(parametros),
      monedas_(servicios_.clock, parametros_) {
  monedas_.Connect(cn_);
}

void clsFuncionesFx::Empresa(const clsEmpresa& empresa) {
  empresa_ = empresa;
  monedas_.Empresa(empresa_);
  prms_.clear();
  if (!cn_) return;
  auto rs = cn_->OpenResultset("Select EmpPrms From cceEmpresas Where EmpID = " +
                               std::to_string(empresa_.ID()));
  if (rs->Eof()) return;
  const Variant v = rs->Get(0);
  if (v.IsNull()) return;
  for (const std::string& item : vb::Split(vb::CStr(v), "|")) {
    const size_t dos = item.find(':');
    if (dos == std::string::npos) continue;
    std::string nombre = vb::Trim(std::string_view(item).substr(0, dos));
    if (nombre.empty()) continue;
    prms_.emplace_back(std::move(nombre), vb::Trim(std::string_view(item).substr(dos + 1)));
  }
}

void clsFuncionesFx::Empresa(const ContextoEmpresaFx& contexto) {
  empresa_ = contexto.empresa;
  monedas_.Empresa(empresa_);
  prms_ = contexto.prms;
  monedas_cargadas_ = contexto.monedas.has_value();
  if (monedas_cargadas_) monedas_.Usar(*contexto.monedas);
  if (contexto.piezas) piezas_ = contexto.piezas;
  if (contexto.aritmetica) aritmetica_ = contexto.aritmetica;
}

ContextoEmpresaFx clsFuncionesFx::Contexto() const {
  ContextoEmpresaFx c{empresa_, prms_, std::nullopt, piezas_, aritmetica_};
  if (monedas_cargadas_) c.monedas = monedas_.Monedas();
  return c;
}

const std::vector<ElementoFx>& clsFuncionesFx::Piezas(const std::string& formula) {
  return Dividida(formula).piezas;
}

FormulaDividida& clsFuncionesFx::Dividida(const std::string& formula) {
  auto p = piezas_->find(formula);
  if (p == piezas_->end()) {
    FormulaDividida nueva;
    nueva.piezas = DividirFormula(formula);
    p = piezas_->emplace(formula, std::move(nueva)).first;
  }
  return p->second;
}

const FormulaDividida::Fija* clsFuncionesFx::Fija(FormulaDividida& f) const {
  if (!f.fija_vista) {
    f.fija_vista = true;
    std::string expresion;
    for (const ElementoFx& p : f.piezas) {
      if (p.tipo != ElementoFx::Tipo::Texto || p.texto.find_first_of("[]") != std::string::npos) {
        return nullptr;
      }
      expresion += p.texto;
    }
    f.fija.emplace();
    f.fija->expresion = vb::Trim(expresion);
    f.fija->numero_expresion = LeerNumero(f.fija->expresion);
  }
  if (!f.fija) return nullptr;
  if (f.fija->numero_expresion) return &*f.fija;
  // Reduced by the script host once; an evaluator with an installed evaluator asks it each time.
  if (evaluador_) return nullptr;
  if (!f.fija->reducida) {
    const ResultadoAritmetica* r = Aritmetica(f.fija->expresion);
    if (r == nullptr) return nullptr;
    f.fija->aritmetica = *r;
    f.fija->reducida = true;
  }
  return &*f.fija;
}

bool clsFuncionesFx::CargarEmpresa(int16_t id) {
  if (!cn_) return false;
  clsEmpresa e;
  if (!e.Load(id, *cn_)) return false;
  Empresa(e);
  return true;
}

Date clsFuncionesFx::Ahora() const {
  return core::RelojOSistema(servicios_.clock.get()).Now();
}

Date clsFuncionesFx::Hoy() const {
  return core::RelojOSistema(servicios_.clock.get()).Today();
}

namespace {

constexpr size_t kMaxAritmetica = 100000;

bool SoloAritmetica(std::string_view expresion) {
  return !expresion.empty() &&
         expresion.find_first_not_of("0123456789.+-*/\\^() ") == std::string_view::npos;
}

}  // namespace

script::HostResult clsFuncionesFx::Evaluar(std::string_view expresion, bool exponer) const {
  try {
    if (evaluador_) return evaluador_(cn_.get(), expresion, exponer);
    const bool aritmetica = !exponer && SoloAritmetica(expresion);
    if (aritmetica) {
      if (const auto r = aritmetica_->find(expresion); r != aritmetica_->end()) {
        return r->second.resultado;
      }
    }
    script::HostOptions opciones;
    auto reloj = servicios_.clock;
    opciones.clock = [reloj] { return core::RelojOSistema(reloj.get()).Now(); };
    script::HostResult r = script::EvaluateScript(cn_.get(), expresion, exponer, opciones);
    if (aritmetica) {
      if (aritmetica_->size() >= kMaxAritmetica) aritmetica_->clear();
      aritmetica_->emplace(std::string(expresion),
                           ResultadoAritmetica{r, LeerNumero(expresion), LeerNumero(r.text)});
    }
    return r;
  } catch (const std::exception& e) {
    script::HostResult r;
    r.error.description = e.what();
    return r;
  }
}

const ResultadoAritmetica* clsFuncionesFx::Aritmetica(std::string_view expresion) const {
  if (evaluador_ || !SoloAritmetica(expresion)) return nullptr;
  if (const auto r = aritmetica_->find(expresion); r != aritmetica_->end()) return &r->second;
  if (LeerNumero(expresion)) return nullptr;
  try {
    script::HostOptions opciones;
    auto reloj = servicios_.clock;
    opciones.clock = [reloj] { return core::RelojOSistema(reloj.get()).Now(); };
    script::HostResult r = script::EvaluateScript(cn_.get(), expresion, false, opciones);
    if (aritmetica_->size() >= kMaxAritmetica) aritmetica_->clear();
    const std::optional<double> numero = LeerNumero(r.text);
    return &aritmetica_
                ->emplace(std::string(expresion),
                          ResultadoAritmetica{std::move(r), std::nullopt, numero})
                .first->second;
  } catch (const std::exception&) {
    return nullptr;
  }
}

std::string TextoReintento(const script::ScriptError& primero) {
  return "error " + std::to_string(primero.number) + ": " + primero.description;
}

std::string clsFuncionesFx::Marcadores(std::string t, int32_t id_mov) const {
  const ParametrosBD& p = parametros_;
  t = vb::Replace(t, "[pIDMov]", std::to_string(id_mov), true);
  t = vb::Replace(t, "[pEmp]", std::to_string(empresa_.ID()), true);
  t = vb::Replace(t, "[prmBDDateCharSQLs]", p.caracter_fecha, true);
  t = vb::Replace(t, "[prmMonedaContabilidad]", std::to_string(MonedaContabilidad()), true);
  for (const auto& [nombre, valor] : prms_) {
    t = vb::Replace(t, "[prm" + nombre + "]", valor, true);
  }
  return t;
}

std::optional<int32_t> clsFuncionesFx::TipoIndice(std::string& error) {
  if (tipo_indice_leido_) return tipo_indice_;
  if (!cn_) {
    error = "no hay conexión";
    return std::nullopt;
  }
  try {
    auto rs = cn_->OpenResultset(kSqlTipoIndice);
    tipo_indice_ = rs->Eof() || rs->Get(0).IsNull() ? std::nullopt
                                                    : std::optional<int32_t>(vb::CLng(rs->Get(0)));
    tipo_indice_leido_ = true;
  } catch (const std::exception& e) {
    error = e.what();
    return std::nullopt;
  }
  if (!tipo_indice_) error = "no hay un tipo de cotización de índices (TCMIndice = 1)";
  return tipo_indice_;
}

template <class F>
TrazaElementoFx clsFuncionesFx::EnNivelPropio(F&& leer) {
  if (!cn_ || cn_->TransactionDepth() == 0) return leer();
  Transaccion nivel(*cn_);
  TrazaElementoFx t = leer();
  nivel.Rollback();
  return t;
}

TrazaElementoFx clsFuncionesFx::Palabra(std::string_view palabra,
                                        const std::vector<std::string>& args, Date d,
                                        int32_t id_mov, std::string_view elemento) {
  return EnNivelPropio([&] { return PalabraEnNivel(palabra, args, d, id_mov, elemento); });
}

TrazaElementoFx clsFuncionesFx::OtroMovimiento(bool es_comprobante,
                                               const std::vector<std::string>& args,
                                               std::string_view elemento) {
  return EnNivelPropio([&] { return OtroMovimientoEnNivel(es_comprobante, args, elemento); });
}

TrazaElementoFx clsFuncionesFx::PalabraEnNivel(std::string_view palabra,
                                               const std::vector<std::string>& args, Date d,
                                               int32_t id_mov, std::string_view elemento) {
  TrazaElementoFx t;
  t.elemento = std::string(elemento);
  try {
    const std::string w = vb::LCase(vb::Trim(palabra));
    if (vb::StartsWithIgnoreCase(w, "[codescript]")) return Script(palabra, id_mov, t);
    if (vb::StartsWithIgnoreCase(w, "[query]")) return Consulta(palabra, id_mov, t);
    if (w == "[saldoctadia]") return Saldo(0, args, d, t);
    if (w == "[saldoctadiaanterior]") return Saldo(1, args, d, t);
    if (w == "[saldoctamesanterior]") return Saldo(2, args, d, t);
    if (w == "[indicehoy]") return Indice(0, args, d, t);
    if (w == "[indiceayer]") return Indice(1, args, d, t);
    if (w == "[indicemes]") return Indice(2, args, d, t);
    if (w == "[cotizacionmonedahoy]") return Cotizacion(0, args, d, t);
    if (w == "[cotizacionmonedaayer]") return Cotizacion(1, args, d, t);
    if (w == "[cotizacionmonedamesanterior]") return Cotizacion(2, args, d, t);
    return SinValor(t, "función desconocida: " + std::string(palabra));
  } catch (const std::exception& e) {
    return SinValor(t, std::string("error: ") + e.what());
  }
}

TrazaElementoFx clsFuncionesFx::Saldo(int cual, const std::vector<std::string>& args, Date d,
                                      TrazaElementoFx t) {
  t.origen = enuOrigenFx::Saldo;
  const auto cuenta = args.empty() ? std::nullopt : Entero(args[0]);
  if (!cuenta) return SinValor(t, "saldo: falta la cuenta o no es un número");
  auto rs = cn_->OpenResultset(kSqlEsCarpeta + std::to_string(*cuenta));
  if (rs->Eof()) return SinValor(t, "saldo: no existe la cuenta " + std::to_string(*cuenta));
  if (EnteroColumna(rs->Get(0)) != 0) {
    return SinValor(t, "saldo: la cuenta " + std::to_string(*cuenta) + " es una carpeta");
  }
  rs->Close();
  if (!servicios_.balance) return SinValor(t, "saldo: no hay servicio de saldos");
  const Date f = FechaSegun(cual, d);
  const double saldo = servicios_.balance->Saldo(*cuenta, f);
  t.valor = saldo;
  t.fecha = f;
  t.detalle = "saldo de la cuenta " + std::to_string(*cuenta) + " " + kNombresDia[cual] + " (" +
              FechaCorta(f) + "), en moneda de contabilidad: " + Mostrar(saldo);
  return t;
}

TrazaElementoFx clsFuncionesFx::Indice(int cual, const std::vector<std::string>& args, Date d,
                                       TrazaElementoFx t) {
  t.origen = enuOrigenFx::Indice;
  const auto indice = args.empty() ? std::nullopt : Entero(args[0]);
  if (!indice) return SinValor(t, "índice: falta el índice o no es un número");
  std::string error;
  const auto tipo = TipoIndice(error);
  if (!tipo) return SinValor(t, "índice: " + error);
  const Date f = FechaSegun(cual, d);
  const int16_t en = monedas_.MonedaContabilidad();
  const CotizacionUsada u = monedas_.Cotizacion(static_cast<int16_t>(*indice), en, *tipo, f);
  t.valor = u.tasa.ToDouble();
  t.fecha = u.fecha;
  t.detalle = "índice " + std::to_string(*indice) + " (tipo " + std::to_string(*tipo) + ") " +
              kNombresDia[cual] + " (" + FechaCorta(f) + "): " + MostrarTasa(u.tasa);
  if (u.por_defecto) {
    t.detalle += ", sin valores a esa fecha: se usa 1";
  } else {
    t.detalle += " del " + FechaCorta(u.fecha) + (u.por_escala ? " (por moneda intermedia)" : "");
  }
  return t;
}

TrazaElementoFx clsFuncionesFx::Cotizacion(int cual, const std::vector<std::string>& args, Date d,
                                           TrazaElementoFx t) {
  t.origen = enuOrigenFx::Cotizacion;
  const auto tipo = args.size() < 2 ? std::nullopt : Entero(args[0]);
  const auto moneda = args.size() < 2 ? std::nullopt : Entero(args[1]);
  if (!tipo || !moneda) return SinValor(t, "cotización: faltan el tipo o la moneda");
  const Date f = FechaSegun(cual, d);
  const int16_t en = monedas_.MonedaContabilidad();
  const int16_t a = static_cast<int16_t>(*moneda);
  const CotizacionUsada u = monedas_.Cotizacion(a, en, *tipo, f);
  auto simbolo = [this](int16_t id) {
    const MonedaFx* m = Monedas().Moneda(id);
    return m != nullptr ? m->simbolo : std::to_string(id);
  };
  t.valor = u.tasa.ToDouble();
  t.fecha = u.fecha;
  t.detalle = "cotización de " + simbolo(a) + " en " + simbolo(en) + " (tipo " +
              std::to_string(*tipo) + ") " + kNombresDia[cual] + " (" + FechaCorta(f) +
              "): " + MostrarTasa(u.tasa);
  if (u.directa) {
    t.detalle += " del " + FechaCorta(u.fecha);
  } else if (u.por_escala) {
    t.detalle += " del " + FechaCorta(u.fecha) + ", por " + simbolo(u.intermedia) + " (" +
                 MostrarTasa(u.tasa_a_intermedia) + " × " + MostrarTasa(u.tasa_intermedia_b) +
                 ", a tres decimales)";
  } else {
    t.detalle += ", sin cotización a esa fecha: se usa 1";
  }
  return t;
}

TrazaElementoFx clsFuncionesFx::Consulta(std::string_view bloque, int32_t id_mov,
                                         TrazaElementoFx t) {
  t.origen = enuOrigenFx::Consulta;
  const std::string sql = vb::Trim(Marcadores(CuerpoBloque(bloque, "[query]", "[/query]"), id_mov));
  if (!cn_) return SinValor(t, "consulta sin conexión");
  std::optional<double> v;
  Variant crudo;
  try {
    auto rs = cn_->OpenReadOnlyRows(sql, 1);
    if (rs->Eof()) return SinValor(t, "la consulta no devolvió filas: " + sql);
    crudo = rs->Get(0);
    v = NumeroDe(crudo);
  } catch (const std::exception& e) {
    return SinValor(t, "la consulta falló (" + std::string(e.what()) + "): " + sql);
  }
  if (!v) {
    return SinValor(t, std::string("la consulta devolvió ") +
                           (crudo.IsNull() ? "Null" : "un valor que no es un número") + ": " + sql);
  }
  t.valor = *v;
  t.detalle = "consulta: " + sql + " = " + Mostrar(*v);
  return t;
}

TrazaElementoFx clsFuncionesFx::Script(std::string_view bloque, int32_t id_mov, TrazaElementoFx t) {
  t.origen = enuOrigenFx::Script;
  const std::string texto =
      vb::Trim(Marcadores(CuerpoBloque(bloque, "[codescript]", "[/codescript]"), id_mov));
  const script::HostResult r = Evaluar(texto, true);
  if (!r.ok) {
    return SinValor(t, "el script falló: " + r.error.description + " (columna " +
                           std::to_string(r.error.column) + "): " + texto);
  }
  const auto v = LeerNumero(r.text);
  if (!v) return SinValor(t, "el script no devolvió un número (" + r.text + "): " + texto);
  t.valor = *v;
  t.detalle = "script: " + texto + " = " + Mostrar(*v);
  if (r.first_error) {
    t.reintento_tras_error = TextoReintento(*r.first_error);
    t.detalle += " (solo al leer cada \",\" como \".\"; tal como está escrito da " +
                 t.reintento_tras_error + ")";
  }
  return t;
}

std::string clsFuncionesFx::SqlDocumentos(bool es_comprobante, int32_t id) const {
  const std::string fecha = "?";
  if (!es_comprobante) {
    return std::string(
               "Select ACuIDAsiento as ID, ACuCuenta as IDCuenta, ACuProyecto as IDProyecto, "
               "ACuDepartamento as IDDepartamento,") +
           std::to_string(MonedaContabilidad()) +
           " as Moneda, ACuImporteMC as ImporteCuenta, ACuDebe as Debe, ACuHaber as Haber" +
           " From cceAsientos, cceAsientoCuenta " +
           " Where AsiID = ACuIDAsiento And AsiEstado = 1 And AsiFechaModificado >= " + fecha +
           " And (AsiMovFrecuente = -2 OR AsiMovFrecuente = " + std::to_string(id) + ")" +
           " Order by AsiID DESC";
  }
  return std::string(
             "Select CCuIDComprobante as ID, CCuIDCuenta as IDCuenta, CCuIDProyecto as "
             "IDProyecto, CCuIDDepartamento as IDDepartamento,") +
         " CCuMoneda as Moneda, CCuImporteCuenta as ImporteCuenta, CCuDebe as Debe, CCuHaber "
         "as Haber" +
         " From cceComprobantes, cceComprobanteCuenta " + " Where ComID = CCuIDComprobante" +
         " And ComFechaModificacion >= " + fecha +
         " And (ComMovFrecuente = -2 OR ComMovFrecuente = " + std::to_string(id) + ")" +
         " Order by ComID DESC";
}

TrazaElementoFx clsFuncionesFx::OtroMovimientoEnNivel(bool es_comprobante,
                                                      const std::vector<std::string>& args,
                                                      std::string_view elemento) {
  TrazaElementoFx t;
  t.elemento = std::string(elemento);
  t.origen = enuOrigenFx::OtroMovimiento;
  try {
    const auto mov = args.empty() ? std::nullopt : Entero(args[0]);
    const auto clave = LeerClaveLinea(args, 1);
    if (!mov || !clave) return SinValor(t, "otro movimiento: argumentos no válidos");
    if (!cn_) return SinValor(t, "otro movimiento: no hay conexión");
    const std::string linea = "cuenta " + std::to_string(clave->cuenta) + ", proyecto " +
                              std::to_string(clave->proyecto) + ", departamento " +
                              std::to_string(clave->departamento);
    std::optional<bool> al_debe;
    for (auto rs = cn_->OpenResultset(kSqlRenglonesOtro + std::to_string(*mov)); !rs->Eof();
         rs->MoveNext()) {
      if (EnteroColumna(rs->Get("RMFCuenta")) == clave->cuenta &&
          EnteroColumna(rs->Get("RMFIDProyecto")) == clave->proyecto &&
          EnteroColumna(rs->Get("RMFIDDepartamento")) == clave->departamento) {
        al_debe = EnteroColumna(rs->Get("RMFAlDebe")) != 0;
        break;
      }
    }
    if (!al_debe) {
      return SinValor(
          t, "el movimiento " + std::to_string(*mov) + " no tiene la línea (" + linea + ")");
    }
    const std::string doc = es_comprobante ? "comprobante" : "asiento";
    std::optional<int32_t> propio;  // the document generated in the occurrence being executed
    if (ocurrencia_) {
      propio = ocurrencia_(*mov);
      if (!propio) {
        return SinValor(t, "el movimiento " + std::to_string(*mov) +
                               " no se ejecutó antes en esta ocurrencia: su " + doc +
                               " no se puede tomar de otra");
      }
      if (*propio == 0) {
        t.valor = 0.0;
        t.detalle = "el movimiento " + std::to_string(*mov) +
                    " no generó documento en esta ocurrencia (todos sus importes son 0)";
        return t;
      }
    }
    const Date desde = vb::DateAdd("n", -2, Ahora());
    std::optional<int32_t> documento;
    std::optional<double> debe, haber, importe_cuenta;
    int filas = 0;
    for (auto rs = cn_->OpenResultset(SqlDocumentos(es_comprobante, *mov), {Variant(desde)});
         !rs->Eof(); rs->MoveNext()) {
      const int32_t id = EnteroColumna(rs->Get("ID"));
      if (!documento) documento = id;
      if (id != *documento) break;  // only the newest document counts
      if (EnteroColumna(rs->Get("IDCuenta")) != clave->cuenta ||
          EnteroColumna(rs->Get("IDProyecto")) != clave->proyecto ||
          EnteroColumna(rs->Get("IDDepartamento")) != clave->departamento) {
        continue;
      }
      ++filas;
      auto sumar = [](std::optional<double>& a, const Variant& v) {
        if (auto n = NumeroDe(v)) a = a.value_or(0) + *n;
      };
      sumar(debe, rs->Get("Debe"));
      sumar(haber, rs->Get("Haber"));
      sumar(importe_cuenta, rs->Get("ImporteCuenta"));
    }
    const std::string ventana = "desde el " + vb::FormatDate(desde, "dd/mm/yyyy hh:nn:ss");
    if (!documento) {
      return SinValor(t, "no hay un " + doc + " generado por el movimiento " +
                             std::to_string(*mov) + " en los últimos dos minutos (" + ventana +
                             ")");
    }
    t.documento = *documento;
    if (propio && *documento != *propio) {
      return SinValor(t, "el " + doc + " más reciente del movimiento " + std::to_string(*mov) +
                             " es el " + std::to_string(*documento) + ", no el " +
                             std::to_string(*propio) + " generado en esta ocurrencia");
    }
    if (filas == 0) {
      return SinValor(t, "el " + doc + " " + std::to_string(*documento) +
                             " (el último del movimiento " + std::to_string(*mov) +
                             ") no tiene la línea (" + linea + ")");
    }
    if (!debe && !haber) {
      return SinValor(t, "el " + doc + " " + std::to_string(*documento) +
                             " no tiene importes en Debe ni Haber para la línea (" + linea + ")");
    }
    const double v =
        *al_debe ? debe.value_or(0) - haber.value_or(0) : haber.value_or(0) - debe.value_or(0);
    t.valor = v;
    t.detalle = "línea (" + linea + ") del " + doc + " " + std::to_string(*documento) +
                " generado por el movimiento " + std::to_string(*mov) + " " + ventana + ": " +
                (*al_debe ? "Debe − Haber" : "Haber − Debe") + " = " + Mostrar(v);
    if (importe_cuenta)
      t.detalle += " (importe en moneda de la cuenta: " + Mostrar(*importe_cuenta) + ")";
    return t;
  } catch (const std::exception& e) {
    return SinValor(t, std::string("otro movimiento: error: ") + e.what());
  }
}

}  // namespace kivmovfrec::formula
