#include "formula/formula_mf.h"

#include <algorithm>
#include <cmath>
#include <exception>

#include "platform/vb/convert.h"
#include "platform/vb/text.h"
#include "storage/consulta_lookup.h"
#include "storage/sql_texto.h"

namespace kivmovfrec::formula {
namespace {

constexpr std::string_view kDelimitadores = " ()+-*/\\";

bool EsDelimitador(char c) {
  return kDelimitadores.find(c) != std::string_view::npos;
}

// One parameter of a catalogue entry, in the order its arguments are stored.
struct Parametro {
  enum class Tipo { Consulta, Linea, Libre } tipo;
  std::string_view consulta;
};

std::vector<Parametro> ParametrosDe(const EntradaFx& e) {
  std::vector<Parametro> p;
  if (!e.consulta1.empty()) p.push_back({Parametro::Tipo::Consulta, e.consulta1});
  if (e.ArgumentoEsLinea()) {
    p.push_back({Parametro::Tipo::Linea, {}});
  } else if (vb::StartsWithIgnoreCase(e.consulta2, "Select")) {
    p.push_back({Parametro::Tipo::Consulta, e.consulta2});
  } else if (!e.consulta2.empty()) {
    p.push_back({Parametro::Tipo::Libre, {}});
  }
  return p;
}

std::string Entrecomillar(std::string_view texto) {
  return "\"" + vb::Replace(texto, "\"", "\"\"") + "\"";
}

std::optional<int64_t> EnteroDe(std::string_view s) {
  auto v = vb::ParseNumber(vb::Trim(s), vb::Locale::Invariant());
  // Only whole numbers well inside the 64-bit range convert (a longer run of digits is not a key).
  if (!v || !(std::fabs(*v) < 9.0e18) || *v != std::trunc(*v)) return std::nullopt;
  if (vb::Trim(s).find_first_not_of("+-0123456789") != std::string::npos) return std::nullopt;
  return static_cast<int64_t>(*v);
}

std::string TextoDe(const Variant& v) {
  if (v.IsNull() || v.IsEmpty()) return "";
  return vb::Trim(vb::CStr(v));
}

// 1-based position in characters of byte offset `off`.
int Posicion(std::string_view s, size_t off) {
  return static_cast<int>(vb::Len(s.substr(0, std::min(off, s.size())))) + 1;
}

bool MismoTexto(std::string_view a, std::string_view b) {
  return vb::EqualsIgnoreCase(vb::Trim(a), vb::Trim(b));
}

}  // namespace

ContextoFormula ContextoFormula::De(const clsEmpresa& empresa, int32_t id_mov) {
  return {empresa.ID(), id_mov, empresa.MostrarCodigoCta() != 0};
}

std::string LineaVisible::Texto() const {
  std::string t = vb::Trim(codigo);
  auto agregar = [&t](std::string_view parte) {
    std::string p = vb::Trim(parte);
    if (p.empty()) return;
    if (!t.empty()) t += ' ';
    t += p;
  };
  agregar(nombre);
  agregar(proyecto);
  agregar(departamento);
  return t;
}

clsFormulaMF::clsFormulaMF(std::shared_ptr<Connection> cn, ContextoFormula ctx)
    : cn_(std::move(cn)), ctx_(ctx) {}

std::string clsFormulaMF::SqlTextoLinea(int32_t cuenta, int32_t movimiento, int32_t proyecto,
                                        int32_t departamento) {
  return "Select 1, CueCodigo, rTrim(CueNombre) From cceCuentas, genRenglonMovFrecuentes " +
         std::string(" Where CueID = ") + std::to_string(cuenta) +
         " And RMFCuenta = CueID And RMFMovimiento = " + std::to_string(movimiento) +
         " Union All " + "Select 2, 0, ProAbreviacion From cceProyectos Where ProCodigo = " +
         std::to_string(proyecto) + " Union All " +
         "Select 3, 0, DepAbreviacion From cceDepartamentos Where DepCodigo = " +
         std::to_string(departamento);
}

// ---- Lookups -------------------------------------------------------------------------------

std::optional<std::string> clsFormulaMF::TextoConsulta(std::string_view consulta, int64_t id,
                                                       int32_t pre_id) const {
  if (!cn_) return std::nullopt;
  storage::ContextoLookup c{ctx_.empresa, ctx_.id_mov, pre_id, ctx_.mostrar_codigo_cta};
  try {
    const auto busqueda = storage::PrepararBusquedaPorID(consulta, c, id);
    auto rs = cn_->OpenResultset(busqueda.sql, busqueda.valores);
    if (rs->Eof()) return std::nullopt;
    return TextoDe(rs->Get(2));
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

std::optional<int64_t> clsFormulaMF::BuscarConsulta(std::string_view consulta,
                                                    std::string_view texto, int32_t pre_id) const {
  if (!cn_ || storage::TieneComilla(texto)) return std::nullopt;
  storage::ContextoLookup c{ctx_.empresa, ctx_.id_mov, pre_id, ctx_.mostrar_codigo_cta};
  try {
    const auto busqueda = storage::PrepararBusquedaPorClave(consulta, c, vb::Trim(texto));
    auto rs = cn_->OpenResultset(busqueda.sql, busqueda.valores);
    if (!rs->Eof()) return vb::CLng(rs->Get(0));
    rs->Close();
    // Every row the query offers, compared by its key and its display text.
    const auto todas = storage::PrepararTodas(consulta, c);
    for (auto filas = cn_->OpenResultset(todas.sql, todas.valores); !filas->Eof();
         filas->MoveNext()) {
      if (MismoTexto(TextoDe(filas->Get(1)), texto) || MismoTexto(TextoDe(filas->Get(2)), texto))
        return vb::CLng(filas->Get(0));
    }
  } catch (const std::exception&) {
  }
  return std::nullopt;
}

std::optional<std::string> clsFormulaMF::TextoLinea(int32_t movimiento,
                                                    const ClaveLinea& linea) const {
  std::optional<std::string> texto;
  if (cn_) {
    try {
      LineaVisible v;
      bool hay_cuenta = false;
      auto rs = cn_->OpenResultset(
          SqlTextoLinea(linea.cuenta, movimiento, linea.proyecto, linea.departamento));
      for (; !rs->Eof(); rs->MoveNext()) {
        switch (vb::CLng(rs->Get(0))) {
          case 1:
            if (!hay_cuenta) {
              v.codigo = TextoDe(rs->Get(1));
              v.nombre = TextoDe(rs->Get(2));
              hay_cuenta = true;
            }
            break;
          case 2:
            v.proyecto = TextoDe(rs->Get(2));
            break;
          case 3:
            v.departamento = TextoDe(rs->Get(2));
            break;
          default:
            break;
        }
      }
      if (hay_cuenta) texto = v.Texto();
    } catch (const std::exception&) {
    }
  }
  if (!texto && movimiento == ctx_.id_mov) {
    for (const LineaVisible& l : lineas_) {
      if (l.clave == linea) return l.Texto();
    }
  }
  return texto;
}

std::optional<std::vector<ClaveLinea>> clsFormulaMF::LineasGuardadas(int32_t movimiento) const {
  if (!cn_) return std::nullopt;
  std::vector<ClaveLinea> guardadas;
  try {
    auto rs = cn_->OpenResultset(
        "Select RMFCuenta, RMFIDProyecto, RMFIDDepartamento From genRenglonMovFrecuentes "
        "Where RMFMovimiento = " +
        std::to_string(movimiento) + " Order by RMFOrden");
    for (; !rs->Eof(); rs->MoveNext()) {
      auto num = [&](int i) { return rs->Get(i).IsNull() ? 0 : vb::CLng(rs->Get(i)); };
      guardadas.push_back({num(0), num(1), num(2)});
    }
  } catch (const std::exception&) {
    return std::nullopt;
  }
  return guardadas;
}

std::optional<ClaveLinea> clsFormulaMF::BuscarLinea(int32_t movimiento,
                                                    std::string_view texto) const {
  if (movimiento == ctx_.id_mov) {
    for (const LineaVisible& l : lineas_) {
      if (MismoTexto(l.Texto(), texto)) return l.clave;
    }
  }
  auto guardadas = LineasGuardadas(movimiento);
  if (!guardadas) return std::nullopt;
  for (const ClaveLinea& c : *guardadas) {
    auto t = TextoLinea(movimiento, c);
    if (t && MismoTexto(*t, texto)) return c;
  }
  return std::nullopt;
}

bool clsFormulaMF::LineaExiste(int32_t movimiento, const ClaveLinea& linea) const {
  if (movimiento == ctx_.id_mov && !lineas_.empty()) {
    return std::any_of(lineas_.begin(), lineas_.end(),
                       [&](const LineaVisible& l) { return l.clave == linea; });
  }
  auto guardadas = LineasGuardadas(movimiento);
  return guardadas && std::find(guardadas->begin(), guardadas->end(), linea) != guardadas->end();
}

// ---- Stored -> display -----------------------------------------------------------------------

std::string clsFormulaMF::MostrarReferencia(const EntradaFx& e,
                                            const std::vector<std::string>& args) const {
  std::vector<std::string> vistos;
  size_t k = 0;
  int32_t pre_id = 0;
  for (const Parametro& p : ParametrosDe(e)) {
    if (k >= args.size()) break;
    switch (p.tipo) {
      case Parametro::Tipo::Consulta: {
        const std::string& arg = args[k++];
        auto id = EnteroDe(arg);
        std::optional<std::string> t;
        if (id) t = TextoConsulta(p.consulta, *id);
        if (id && e.ArgumentoEsLinea()) pre_id = static_cast<int32_t>(*id);
        vistos.push_back(t ? *t : arg);
        break;
      }
      case Parametro::Tipo::Linea: {
        size_t n = std::min<size_t>(3, args.size() - k);
        std::vector<std::string> partes(args.begin() + static_cast<long>(k),
                                        args.begin() + static_cast<long>(k + n));
        k += n;
        auto clave = LeerClaveLinea(partes);
        int32_t mov = e.id == kFxCuentaIngresada ? ctx_.id_mov : pre_id;
        std::optional<std::string> t;
        if (clave) t = TextoLinea(mov, *clave);
        std::string crudo;
        for (size_t i = 0; i < partes.size(); ++i) crudo += (i ? ";" : "") + partes[i];
        vistos.push_back(t ? *t : crudo);
        break;
      }
      case Parametro::Tipo::Libre:
        while (k < args.size()) vistos.push_back(args[k++]);
        break;
    }
  }
  while (k < args.size()) vistos.push_back(args[k++]);
  std::string out(e.titulo);
  out += '(';
  for (size_t i = 0; i < vistos.size(); ++i) {
    if (i) out += "; ";
    out += Entrecomillar(vistos[i]);
  }
  out += ')';
  return out;
}

std::string clsFormulaMF::AVisible(std::string_view guardada) const {
  std::string out;
  for (const ElementoFx& el : DividirFormula(guardada)) {
    const EntradaFx* e =
        el.tipo == ElementoFx::Tipo::Referencia ? catalogo_.BuscarEntrada(el.id) : nullptr;
    if (e == nullptr || e->EsGrupo()) {
      out += el.texto;
    } else {
      out += MostrarReferencia(*e, SepararArgumentos(el.argumentos));
    }
  }
  return out;
}

// ---- Display -> stored -----------------------------------------------------------------------

namespace {

struct ArgumentoVisto {
  std::string texto;
  size_t inicio = 0;  // byte offset of its first character (after the opening quote)
};

struct Lector {
  std::string_view s;
  size_t i = 0;
  LecturaFormula fallo;

  bool Fallar(size_t off, std::string error) {
    fallo.ok = false;
    fallo.posicion = Posicion(s, off);
    fallo.error = std::move(error);
    return false;
  }
  void Blancos() {
    while (i < s.size() && s[i] == ' ') ++i;
  }
  // After "(": quoted arguments separated by ";" up to ")".
  bool Argumentos(std::vector<ArgumentoVisto>& out) {
    Blancos();
    if (i < s.size() && s[i] == ')') {
      ++i;
      return true;
    }
    for (;;) {
      Blancos();
      if (i >= s.size()) return Fallar(i, "Falta cerrar la lista de argumentos con \")\".");
      if (s[i] != '"') return Fallar(i, "Se esperaba un argumento entre comillas dobles.");
      size_t abre = i++;
      ArgumentoVisto a;
      a.inicio = i;
      bool cerrado = false;
      while (i < s.size()) {
        if (s[i] == '"') {
          if (i + 1 < s.size() && s[i + 1] == '"') {
            a.texto += '"';
            i += 2;
            continue;
          }
          ++i;
          cerrado = true;
          break;
        }
        a.texto += s[i++];
      }
      if (!cerrado) return Fallar(abre, "Faltan las comillas que cierran el argumento.");
      out.push_back(std::move(a));
      Blancos();
      if (i < s.size() && s[i] == ';') {
        ++i;
        continue;
      }
      if (i < s.size() && s[i] == ')') {
        ++i;
        return true;
      }
      return Fallar(i, "Se esperaba \";\" o \")\" después del argumento.");
    }
  }
};

constexpr std::string_view kBloques[][2] = {{"[query]", "[/query]"},
                                            {"[codescript]", "[/codescript]"}};

// Byte offset of the first character that no one can type: a NUL or bytes that are not UTF-8.
// npos when there is none.
size_t PrimerCaracterInvalido(std::string_view s) {
  for (size_t i = 0; i < s.size();) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (c == 0) return i;
    const size_t n = c < 0x80 ? 1 : c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : 2;
    if (i + n > s.size() || !vb::IsValidUtf8(s.substr(i, n))) return i;
    i += n;
  }
  return std::string_view::npos;
}

}  // namespace

LecturaFormula clsFormulaMF::LeerVisible(std::string_view visible) const {
  Lector r{visible, 0, {}};
  std::string out;
  const std::string_view s = visible;
  if (const size_t malo = PrimerCaracterInvalido(s); malo != std::string_view::npos) {
    r.Fallar(malo, "La fórmula contiene un carácter que no es válido.");
    return r.fallo;
  }
  while (r.i < s.size()) {
    const char c = s[r.i];
    if (c == '[') {
      bool bloque = false;
      for (const auto& b : kBloques) {
        if (!vb::StartsWithIgnoreCase(s.substr(r.i), b[0])) continue;
        size_t fin = vb::InStr(s, b[1], r.i + b[0].size() + 1, true);
        size_t hasta = fin == 0 ? s.size() : fin - 1 + b[1].size();
        out.append(s.substr(r.i, hasta - r.i));
        r.i = hasta;
        bloque = true;
        break;
      }
      if (bloque) continue;
      r.Fallar(r.i, "El elemento entre corchetes no es una función de la lista.");
      return r.fallo;
    }
    if (c == '"') {
      r.Fallar(r.i, "Texto entre comillas fuera de una función.");
      return r.fallo;
    }
    if (EsDelimitador(c) || (r.i > 0 && !EsDelimitador(s[r.i - 1]))) {
      out += c;
      ++r.i;
      continue;
    }
    // Start of an element: the longest caption that ends at a separator.
    const EntradaFx* entrada = nullptr;
    for (const EntradaFx& e : clsFxMovFrec::Entradas()) {
      if (e.EsGrupo() || !vb::StartsWithIgnoreCase(s.substr(r.i), e.titulo)) continue;
      // Case folding keeps byte lengths for the letters captions use.
      size_t fin = r.i + e.titulo.size();
      if (fin < s.size() && !EsDelimitador(s[fin])) continue;
      if (entrada == nullptr || e.titulo.size() > entrada->titulo.size()) entrada = &e;
    }
    if (entrada == nullptr) {
      out += c;
      ++r.i;
      continue;
    }
    r.i += entrada->titulo.size();
    r.Blancos();
    if (r.i >= s.size() || s[r.i] != '(') {
      r.Fallar(r.i, "Falta \"(\" después de \"" + std::string(entrada->titulo) + "\".");
      return r.fallo;
    }
    ++r.i;
    std::vector<ArgumentoVisto> args;
    if (!r.Argumentos(args)) return r.fallo;
    const size_t cierre = r.i - 1;

    std::vector<std::string> guardados;
    size_t k = 0;
    int32_t pre_id = 0;
    for (const Parametro& p : ParametrosDe(*entrada)) {
      if (p.tipo == Parametro::Tipo::Libre) {
        for (; k < args.size(); ++k) {
          if (args[k].texto.find_first_of("[];") != std::string::npos) {
            r.Fallar(args[k].inicio, "El texto no puede contener \"[\", \"]\" ni \";\".");
            return r.fallo;
          }
          guardados.push_back(args[k].texto);
        }
        continue;
      }
      if (k >= args.size()) {
        r.Fallar(cierre, "Faltan argumentos para \"" + std::string(entrada->titulo) + "\".");
        return r.fallo;
      }
      const ArgumentoVisto& a = args[k++];
      if (p.tipo == Parametro::Tipo::Consulta) {
        if (storage::TieneComilla(a.texto)) {
          r.Fallar(a.inicio, "El texto buscado no puede contener comillas simples (').");
          return r.fallo;
        }
        auto id = BuscarConsulta(p.consulta, a.texto);
        if (!id) {
          r.Fallar(a.inicio, "No se encontró \"" + a.texto + "\".");
          return r.fallo;
        }
        if (entrada->ArgumentoEsLinea()) pre_id = static_cast<int32_t>(*id);
        guardados.push_back(std::to_string(*id));
      } else {
        int32_t mov = entrada->id == kFxCuentaIngresada ? ctx_.id_mov : pre_id;
        auto linea = BuscarLinea(mov, a.texto);
        if (!linea) {
          r.Fallar(a.inicio, "El movimiento no tiene la cuenta \"" + a.texto + "\".");
          return r.fallo;
        }
        guardados.push_back(linea->Texto());
      }
    }
    if (k < args.size()) {
      r.Fallar(args[k].inicio, "Sobran argumentos para \"" + std::string(entrada->titulo) + "\".");
      return r.fallo;
    }
    out += "[" + std::to_string(entrada->id) + ":";
    for (size_t j = 0; j < guardados.size(); ++j) out += (j ? ";" : "") + guardados[j];
    out += "]";
  }
  LecturaFormula ok;
  ok.ok = true;
  ok.formula = std::move(out);
  return ok;
}

// ---- Validation ------------------------------------------------------------------------------

bool clsFormulaMF::ArgumentosValidos(std::string_view guardada) const {
  for (const ElementoFx& el : DividirFormula(guardada)) {
    if (el.tipo != ElementoFx::Tipo::Referencia) continue;
    const EntradaFx* e = catalogo_.BuscarEntrada(el.id);
    if (e == nullptr || e->EsGrupo()) return false;
    auto args = SepararArgumentos(el.argumentos);
    size_t k = 0;
    int32_t pre_id = 0;
    for (const Parametro& p : ParametrosDe(*e)) {
      if (p.tipo == Parametro::Tipo::Libre) {
        k = args.size();
        continue;
      }
      if (k >= args.size()) return false;
      if (p.tipo == Parametro::Tipo::Consulta) {
        auto id = EnteroDe(args[k++]);
        if (!id || !TextoConsulta(p.consulta, *id)) return false;
        if (e->ArgumentoEsLinea()) pre_id = static_cast<int32_t>(*id);
      } else {
        size_t n = std::min<size_t>(3, args.size() - k);
        auto clave = LeerClaveLinea(std::vector<std::string>(
            args.begin() + static_cast<long>(k), args.begin() + static_cast<long>(k + n)));
        k += n;
        if (!clave) return false;
        int32_t mov = e->id == kFxCuentaIngresada ? ctx_.id_mov : pre_id;
        if (!LineaExiste(mov, *clave)) return false;
      }
    }
    if (k < args.size()) return false;
  }
  return true;
}

}  // namespace kivmovfrec::formula

namespace kivmovfrec {

std::string LecturaFormulaVisible::Resultado() const {
  return ok ? formula : ":e:" + std::to_string(posicion);
}

}  // namespace kivmovfrec
