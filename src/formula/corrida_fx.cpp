#include "formula/corrida_fx.h"

#include <cmath>
#include <exception>
#include <utility>

#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "platform/vb/text.h"
#include "resources/catalogue.h"
#include "resources/msg.h"

namespace kivmovfrec::formula {
namespace {

constexpr std::string_view kMarcaCalculadora = "kivcalculator:";

std::string Mostrar(double v) {
  return vb::NumberToText(v, vb::Locale::Spanish());
}

bool TieneReferencia(const std::vector<ElementoFx>& piezas, int id) {
  for (const ElementoFx& e : piezas) {
    if (e.tipo == ElementoFx::Tipo::Referencia && e.id == id) return true;
  }
  return false;
}

TrazaElementoFx SinValor(TrazaElementoFx t, std::string detalle) {
  t.valor.reset();
  t.detalle = std::move(detalle);
  return t;
}

std::string DescribirLinea(const clsRegRenglonMF& r) {
  std::string d = vb::Trim(r.CuentaCodigo() + " " + r.CuentaNombre());
  if (d.empty()) d = "cuenta " + std::to_string(r.Cuenta());
  return d;
}

}  // namespace

ParConversion ParDeConversion(int16_t m, int16_t a, int16_t c) {
  if (a == c) return {m, c, false};  // movement in a foreign currency, account in C
  if (m == c) return {a, c, true};   // movement in C, account in a foreign currency
  return {m, a, false};
}

CorridaFx::CorridaFx(clsFuncionesFx& fx, std::vector<std::shared_ptr<clsRegRenglonMF>> lineas,
                     const OpcionesCorrida& op, TrazaCalculoFx& traza)
    : fx_(fx), op_(op), traza_(traza), total_(op.total) {
  traza_.lineas.clear();
  traza_.lineas.reserve(lineas.size());
  lineas_.reserve(lineas.size());
  int16_t indice = 0;
  for (auto& r : lineas) {
    Linea l;
    l.formula = vb::Trim(r->Formula());
    l.dividida = &fx_.Dividida(l.formula);
    l.piezas = &l.dividida->piezas;
    l.diferencia = TieneReferencia(*l.piezas, kFxDiferencia);
    l.r = std::move(r);
    TrazaLineaFx t;
    t.indice = ++indice;
    t.cuenta = l.r->Cuenta();
    t.proyecto = l.r->Proyecto();
    t.departamento = l.r->Departamento();
    t.cuenta_codigo = l.r->CuentaCodigo();
    t.cuenta_nombre = l.r->CuentaNombre();
    t.al_debe = l.r->AlDebe();
    t.formula = l.formula;
    t.importe_mf = l.r->ImporteMF();
    t.importe_cta = l.r->ImporteCta();
    traza_.lineas.push_back(std::move(t));
    lineas_.push_back(std::move(l));
  }
}

std::string CorridaFx::Texto(int n) const {
  return std::string(resources::Texto(n, fx_.Parametros().idioma));
}

int16_t CorridaFx::Resolver(int16_t moneda) const {
  return moneda == 0 ? fx_.MonedaContabilidad() : moneda;
}

std::string CorridaFx::Simbolo(int16_t moneda) {
  const MonedaFx* m = fx_.Monedas().Moneda(Resolver(moneda));
  return m != nullptr ? m->simbolo : "moneda " + std::to_string(moneda);
}

std::string CorridaFx::FormatoImporte(int16_t moneda) {
  const MonedaFx* m = fx_.Monedas().Moneda(Resolver(moneda));
  return m != nullptr ? m->formato_importe : MonedaFx{}.formato_importe;
}

void CorridaFx::Fallar(size_t i, const std::string& error) {
  lineas_[i].estado = Estado::Fallida;
  TrazaLineaFx& t = traza_.lineas[i];
  t.ok = false;
  if (t.error.empty()) t.error = error;
}

void CorridaFx::Terminar(size_t i) {
  Linea& l = lineas_[i];
  l.estado = Estado::Hecha;
  traza_.lineas[i].importe_mf = l.mf;
  traza_.lineas[i].importe_cta = l.cta;
}

bool CorridaFx::PedirTotal() {
  bool usa_total = false;
  for (const Linea& l : lineas_)
    usa_total = usa_total || TieneReferencia(*l.piezas, kFxImporteTotal);
  traza_.importe_total = total_;
  if (!usa_total) return true;
  if (total_ != 0) {
    traza_.origen_total = "indicado por quien pidió el cálculo";
    return true;
  }
  if (!op_.pedir_datos) {
    traza_.origen_total = "no se pidió (sin pedir datos): se calcula con 0";
    return true;
  }
  std::optional<double> v;
  if (const auto& input = fx_.Servicios().input) {
    v = input->PedirNumero(std::string(kMarcaCalculadora) + Texto(msg::kPedirImporteTotal),
                           Texto(msg::kTituloMovimientosFrecuentes), 0);
  }
  if (!v) {
    traza_.origen_total = "no se ingresó";
    traza_.error = "no se ingresó el importe total del movimiento";
    return false;
  }
  total_ = *v;
  traza_.importe_total = total_;
  traza_.origen_total = "ingresado por el usuario";
  return true;
}

bool CorridaFx::Calcular() {
  traza_.ok = false;
  traza_.moneda = op_.moneda;
  if (!PedirTotal()) {
    for (size_t i = 0; i < lineas_.size(); ++i) {
      if (!lineas_[i].formula.empty()) Fallar(i, traza_.error);
    }
    return false;
  }
  for (size_t i = 0; i < lineas_.size(); ++i) {
    if (!lineas_[i].diferencia) Evaluar(i);
  }
  std::vector<size_t> diferencias;
  for (size_t i = 0; i < lineas_.size(); ++i) {
    if (lineas_[i].diferencia) diferencias.push_back(i);
  }
  if (diferencias.size() > 1) {
    for (size_t i : diferencias) Fallar(i, Texto(msg::kFxRestoEnVariasCuentas));
  } else if (diferencias.size() == 1) {
    Diferencia(diferencias[0]);
  }
  bool ok = true;
  traza_.total_debe = traza_.total_haber = 0;
  for (size_t i = 0; i < lineas_.size(); ++i) {
    if (lineas_[i].estado != Estado::Hecha) {
      ok = false;
      if (traza_.error.empty()) {
        traza_.error = "línea " + std::to_string(i + 1) + ": " + traza_.lineas[i].error;
      }
      continue;
    }
    (lineas_[i].r->AlDebe() ? traza_.total_debe : traza_.total_haber) += lineas_[i].mf;
  }
  traza_.ok = ok;
  return ok;
}

void CorridaFx::Aplicar() const {
  for (const Linea& l : lineas_) {
    if (l.formula.empty() || l.estado != Estado::Hecha) continue;
    l.r->ImporteMF(l.mf);
    l.r->ImporteCta(l.cta);
  }
}

std::optional<double> CorridaFx::Evaluar(size_t i) {
  Linea& l = lineas_[i];
  switch (l.estado) {
    case Estado::Hecha:
      return l.mf;
    case Estado::Fallida:
    case Estado::EnCurso:
      return std::nullopt;
    case Estado::Pendiente:
      break;
  }
  if (l.formula.empty()) {
    l.mf = l.r->ImporteMF();
    l.cta = l.r->ImporteCta();
    Terminar(i);
    return l.mf;
  }
  if (l.diferencia) return std::nullopt;  // worked out last, by Diferencia
  l.estado = Estado::EnCurso;
  std::optional<double> v;
  try {
    v = Formula(i);
  } catch (const std::exception& e) {
    Fallar(i, std::string("error: ") + e.what());
    return std::nullopt;
  }
  if (!v) {
    Fallar(i, "la fórmula no tiene resultado");
    return std::nullopt;
  }
  l.mf = RedondearFormato(*v, FormatoImporte(op_.moneda));
  if (!Convertir(i)) return std::nullopt;
  Terminar(i);
  return l.mf;
}

std::optional<double> CorridaFx::Formula(size_t i) {
  TrazaLineaFx& tl = traza_.lineas[i];
  // A formula of plain text is the same expression on every run, worked out once.
  if (const FormulaDividida::Fija* fija = fx_.Fija(*lineas_[i].dividida)) {
    tl.expresion = fija->expresion;
    if (fija->numero_expresion) return fija->numero_expresion;
    return Resultado(tl, i, fija->expresion, fija->aritmetica.resultado, fija->aritmetica.numero);
  }
  const std::vector<ElementoFx>& piezas = *lineas_[i].piezas;
  const bool sola = piezas.size() == 1;
  std::string expresion;
  for (const ElementoFx& p : piezas) {
    if (p.tipo == ElementoFx::Tipo::Texto) {
      if (p.texto.find_first_of("[]") != std::string::npos) {
        TrazaElementoFx t;
        t.elemento = p.texto;
        t.detalle = "elemento no reconocido";
        tl.elementos.push_back(t);
        Fallar(i, "elemento no reconocido: " + vb::Trim(p.texto));
        return std::nullopt;
      }
      expresion += p.texto;
      continue;
    }
    TrazaElementoFx t = p.tipo == ElementoFx::Tipo::Bloque
                            ? fx_.Palabra(p.texto, {}, op_.fecha, op_.id_mov, p.texto)
                            : Referencia(i, p, sola);
    const std::optional<double> valor = t.valor;
    const std::string detalle = t.detalle;
    if (tl.reintento_tras_error.empty()) tl.reintento_tras_error = t.reintento_tras_error;
    tl.elementos.push_back(std::move(t));
    if (!valor) {
      Fallar(i, detalle);
      return std::nullopt;
    }
    expresion += NumeroInvariante(*valor);
  }
  expresion = vb::Trim(expresion);
  tl.expresion = expresion;
  // An arithmetic expression is reduced once per text (and read as a number once).
  if (const ResultadoAritmetica* kept = fx_.Aritmetica(expresion)) {
    if (kept->numero_expresion) return kept->numero_expresion;
    return Resultado(tl, i, expresion, kept->resultado, kept->numero);
  }
  if (auto n = LeerNumero(expresion)) return n;
  const script::HostResult r = fx_.Evaluar(expresion, false);
  return Resultado(tl, i, expresion, r, LeerNumero(r.text));
}

std::optional<double> CorridaFx::Resultado(TrazaLineaFx& tl, size_t i, const std::string& expresion,
                                           const script::HostResult& r, std::optional<double> v) {
  if (!r.ok) {
    Fallar(i, "la expresión " + expresion + " no se pudo evaluar: " + r.error.description +
                  " (columna " + std::to_string(r.error.column) + ")");
    return std::nullopt;
  }
  if (!v || !std::isfinite(*v)) {
    Fallar(i, "la expresión " + expresion + " no dio un número: " + r.text);
    return std::nullopt;
  }
  if (r.first_error && tl.reintento_tras_error.empty()) {
    tl.reintento_tras_error = TextoReintento(*r.first_error);
  }
  return v;
}

TrazaElementoFx CorridaFx::Referencia(size_t i, const ElementoFx& e, bool sola) {
  TrazaElementoFx t;
  t.elemento = e.texto;
  const EntradaFx* entrada = catalogo_.BuscarEntrada(e.id);
  if (entrada == nullptr || entrada->EsGrupo()) {
    return SinValor(t, "el elemento " + e.texto + " no está en el catálogo de fórmulas");
  }
  const std::vector<std::string> args = SepararArgumentos(e.argumentos);
  if (entrada->consulta2 == kPalabraCuentaMovFrecuente) return ReferenciaLinea(i, args, t);
  if (entrada->consulta2 == kPalabraCuentaOtroMov) {
    const bool comprobante = entrada->id == 9 || entrada->id == 20;
    return fx_.OtroMovimiento(comprobante, args, e.texto);
  }
  if (entrada->id == kFxDiferencia) {
    t.origen = enuOrigenFx::Diferencia;
    return SinValor(t, Texto(msg::kFxDiferenciaConOtros));
  }
  const std::string palabra = vb::LCase(entrada->palabra);
  if (palabra == "[impmov]") {
    t.origen = enuOrigenFx::ImporteTotal;
    t.valor = total_;
    t.detalle = "importe total del movimiento (" + traza_.origen_total + "): " + Mostrar(total_);
    return t;
  }
  if (palabra == "[pedirdato]") return PedirDato(i, e.argumentos, t, sola);
  const std::string w = vb::Replace(entrada->palabra, "[pIDMov]", std::to_string(op_.id_mov), true);
  return fx_.Palabra(w, args, op_.fecha, op_.id_mov, e.texto);
}

TrazaElementoFx CorridaFx::ReferenciaLinea(size_t i, const std::vector<std::string>& args,
                                           TrazaElementoFx t) {
  t.origen = enuOrigenFx::Linea;
  const auto clave = LeerClaveLinea(args);
  if (!clave) return SinValor(t, "el argumento no nombra una línea");
  size_t j = lineas_.size();
  for (size_t k = 0; k < lineas_.size(); ++k) {
    const clsRegRenglonMF& r = *lineas_[k].r;
    if (r.Cuenta() == clave->cuenta && r.Proyecto() == clave->proyecto &&
        r.Departamento() == clave->departamento) {
      j = k;
      break;
    }
  }
  if (j == lineas_.size()) {
    return SinValor(t, "el movimiento no tiene la línea " + clave->Texto());
  }
  t.linea = static_cast<int16_t>(j + 1);
  const std::string nombre =
      "línea " + std::to_string(j + 1) + " (" + DescribirLinea(*lineas_[j].r) + ")";
  if (j == i) return SinValor(t, Texto(msg::kFxMismaCuenta));
  if (lineas_[j].diferencia) {
    return SinValor(
        t, "la " + nombre + " tiene la fórmula de diferencia y no puede usarse en otra fórmula");
  }
  if (lineas_[j].estado == Estado::EnCurso) {
    return SinValor(t, "referencia circular: la " + nombre + " depende a su vez de esta línea");
  }
  const auto v = Evaluar(j);
  if (!v) return SinValor(t, "la " + nombre + " no tiene resultado");
  t.valor = *v;
  t.detalle =
      nombre +
      (lineas_[j].formula.empty() ? ", importe guardado: " : ", calculada por su fórmula: ") +
      Mostrar(*v);
  return t;
}

TrazaElementoFx CorridaFx::PedirDato(size_t i, const std::string& texto, TrazaElementoFx t,
                                     bool sola) {
  t.origen = enuOrigenFx::PedirDato;
  const double actual = lineas_[i].r->ImporteMF();
  if (!op_.pedir_datos) {
    t.valor = sola ? actual : 0.0;
    t.detalle = "dato «" + texto + "» no pedido (sin pedir datos): " +
                (sola ? "se conserva el importe actual de la línea, " : "se usa ") +
                Mostrar(*t.valor);
    return t;
  }
  std::optional<double> v;
  if (const auto& input = fx_.Servicios().input) {
    v = input->PedirNumero(std::string(kMarcaCalculadora) + texto, texto, actual);
  }
  if (!v) return SinValor(t, "no se ingresó el dato «" + texto + "»");
  t.valor = *v;
  t.detalle = "dato «" + texto + "» ingresado por el usuario: " + Mostrar(*v);
  return t;
}

void CorridaFx::Diferencia(size_t i) {
  Linea& l = lineas_[i];
  TrazaLineaFx& tl = traza_.lineas[i];
  const std::vector<ElementoFx>& piezas = *l.piezas;
  TrazaElementoFx t;
  t.origen = enuOrigenFx::Diferencia;
  t.elemento = l.formula;
  if (piezas.size() != 1 || piezas[0].tipo != ElementoFx::Tipo::Referencia ||
      piezas[0].id != kFxDiferencia) {
    t.detalle = Texto(msg::kFxDiferenciaConOtros);
    tl.elementos.push_back(t);
    Fallar(i, t.detalle);
    return;
  }
  double debe = 0;
  double haber = 0;
  for (size_t j = 0; j < lineas_.size(); ++j) {
    if (j == i) continue;
    if (lineas_[j].estado != Estado::Hecha) {
      t.detalle = "no se calcula: la línea " + std::to_string(j + 1) + " no tiene resultado";
      tl.elementos.push_back(t);
      Fallar(i, t.detalle);
      return;
    }
    (lineas_[j].r->AlDebe() ? debe : haber) += lineas_[j].mf;
  }
  const std::string formato = FormatoImporte(op_.moneda);
  debe = RedondearFormato(debe, formato);
  haber = RedondearFormato(haber, formato);
  l.mf = RedondearFormato(l.r->AlDebe() ? haber - debe : debe - haber, formato);
  t.valor = l.mf;
  t.detalle = std::string("diferencia entre ") +
              (l.r->AlDebe() ? "el Haber (" + Mostrar(haber) + ") y el Debe (" + Mostrar(debe)
                             : "el Debe (" + Mostrar(debe) + ") y el Haber (" + Mostrar(haber)) +
              ") de las demás líneas: " + Mostrar(l.mf);
  tl.elementos.push_back(t);
  tl.expresion = NumeroInvariante(l.mf);
  if (!Convertir(i)) return;
  Terminar(i);
}

bool CorridaFx::Convertir(size_t i) {
  Linea& l = lineas_[i];
  TrazaLineaFx& tl = traza_.lineas[i];
  const int16_t c = fx_.MonedaContabilidad();
  const int16_t m = Resolver(op_.moneda);
  const int16_t a = Resolver(l.r->Moneda());
  if (m == a) {
    l.cta = l.mf;
    tl.conversion.clear();
    return true;
  }
  const auto [x, y, dividir] = ParDeConversion(m, a, c);
  double tasa = 0;
  std::string origen;
  if (l.r->ValorTC() != 0) {
    tasa = l.r->ValorTC();
    origen = "tasa fija de la línea " + Mostrar(tasa);
  } else {
    int32_t tipo = l.r->TipoCambio();
    std::string de_tipo = "tipo de cotización de la línea";
    if (tipo == 0) {
      tipo = fx_.Empresa().TipoTCComprobantes();
      de_tipo = "tipo de cotización de la empresa";
    }
    if (tipo == 0) {
      Fallar(i, "la línea está en " + Simbolo(a) + " y el movimiento en " + Simbolo(m) +
                    ", pero no tiene tasa ni tipo de cotización");
      return false;
    }
    const Date f = vb::DateOnly(op_.fecha);
    const CotizacionUsada u = fx_.Monedas().Cotizacion(x, y, tipo, f);
    if (u.por_defecto) {
      Fallar(i, "no hay cotización de " + Simbolo(x) + " en " + Simbolo(y) + " (tipo " +
                    std::to_string(tipo) + ") al " + FechaCorta(f));
      return false;
    }
    tasa = u.tasa.ToDouble();
    origen = "cotización " + Mostrar(tasa) + " de " + Simbolo(x) + " en " + Simbolo(y) + " (" +
             de_tipo + " " + std::to_string(tipo) + ") del " + FechaCorta(u.fecha) +
             (u.por_escala ? ", por " + Simbolo(u.intermedia) : "");
  }
  if (!(tasa > 0)) {
    Fallar(i, "la tasa de cambio de la línea no es positiva");
    return false;
  }
  const double bruto = dividir ? l.mf / tasa : l.mf * tasa;
  l.cta = RedondearFormato(bruto, FormatoImporte(a));
  tl.conversion = Mostrar(l.mf) + " " + Simbolo(m) + (dividir ? " ÷ " : " × ") + origen + " = " +
                  Mostrar(l.cta) + " " + Simbolo(a);
  return true;
}

}  // namespace kivmovfrec::formula
