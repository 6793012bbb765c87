#include "calculo_salida.h"

#include <cmath>
#include <exception>
#include <ostream>
#include <sstream>
#include <string>

#include "command.h"
#include "kivmovfrec/presentacion.h"
#include "kivmovfrec/vb.h"
#include "output.h"

namespace kivmovfrec::cli {
namespace {

// Where a calculation's errors come from, in the JSON error object.
const std::string kOrigen = "movfrec calcular";

std::string Numero(double v) {
  return vb::NumberToText(v, vb::Locale::Spanish());
}

bool Balanceado(const TrazaCalculoFx& t) {
  return t.ok && std::fabs(t.total_debe - t.total_haber) < 0.005;
}

// The warning for a line whose value comes from the second attempt with "," read as ".".
std::string AvisoReintento(const TrazaLineaFx& l) {
  return "importe obtenido al evaluar de nuevo leyendo cada \",\" como \".\"; tal como está "
         "escrita, la fórmula da " +
         l.reintento_tras_error;
}

int16_t MonedaLinea(const ResultadoCalculo& r, size_t i) {
  const auto& lineas = *r.mf.Renglones();
  if (i >= static_cast<size_t>(lineas.QRenglones())) return 0;
  return lineas.Renglon(static_cast<int16_t>(i + 1))->Moneda();
}

}  // namespace

void ImprimirCalculo(std::ostream& out, const ResultadoCalculo& r, bool traza) {
  const clsPresentacionMF p(r.cn, r.mf);
  const TrazaCalculoFx& t = r.traza;
  const clsRegMovimientoFrecuente& mov = *r.mf.MovFrecuente();
  const int16_t moneda = mov.Moneda();
  out << "Movimiento " << mov.ID() << ": " << mov.Nombre() << '\n';
  out << "Fecha del cálculo: " << FechaTexto(t.fecha) << " (" << t.origen_fecha << ")\n";
  out << "Moneda: " << p.SimboloMoneda(moneda) << '\n';
  if (!t.origen_total.empty()) {
    out << "Importe total: " << p.Importe(t.importe_total, moneda) << " (" << t.origen_total
        << ")\n";
  }
  TextTable tabla{{"Orden", "Cuenta", "Nombre", "D/H", "Importe", "Importe cuenta"},
                  {},
                  {true, false, false, false, true, true}};
  for (size_t i = 0; i < t.lineas.size(); ++i) {
    const TrazaLineaFx& l = t.lineas[i];
    tabla.rows.push_back({std::to_string(l.indice),
                          l.cuenta_codigo.empty() ? std::to_string(l.cuenta) : l.cuenta_codigo,
                          l.cuenta_nombre, l.al_debe ? "Debe" : "Haber",
                          l.ok ? p.Importe(l.importe_mf, moneda) : "Error",
                          l.ok ? p.Importe(l.importe_cta, MonedaLinea(r, i)) : "Error"});
  }
  std::ostringstream texto;
  tabla.Print(texto);
  std::istringstream filas(texto.str());
  for (std::string fila; std::getline(filas, fila);) out << "  " << fila << '\n';
  if (t.ok) {
    out << "Total Debe: " << p.Importe(t.total_debe, moneda)
        << "  Total Haber: " << p.Importe(t.total_haber, moneda) << "  "
        << (Balanceado(t) ? "(balanceado)"
                          : "(diferencia " + p.Importe(t.total_debe - t.total_haber, moneda) + ")")
        << '\n';
  } else {
    out << "Sin resultado: " << t.error << '\n';
  }
  if (!traza) {
    for (const TrazaLineaFx& l : t.lineas) {
      if (l.ok && !l.reintento_tras_error.empty()) {
        out << "Aviso, renglón " << l.indice << ": " << AvisoReintento(l) << '\n';
      }
    }
    return;
  }
  for (size_t i = 0; i < t.lineas.size(); ++i) {
    const TrazaLineaFx& l = t.lineas[i];
    out << "\nRenglón " << l.indice << ": " << l.cuenta_codigo << ' ' << l.cuenta_nombre << " ("
        << (l.al_debe ? "Debe" : "Haber") << ")\n";
    if (l.formula.empty()) {
      out << "  Sin fórmula: importe guardado " << p.Importe(l.importe_mf, moneda) << '\n';
      continue;
    }
    out << "  Fórmula: " << p.FormulaVisible(l.formula) << '\n';
    out << "  Guardada: " << l.formula << '\n';
    for (const TrazaElementoFx& e : l.elementos) {
      out << "  " << e.elemento << " = " << (e.valor ? Numero(*e.valor) : "sin valor") << "  ["
          << NombreOrigenFx(e.origen) << "] " << e.detalle << '\n';
    }
    if (!l.expresion.empty()) out << "  Expresión: " << l.expresion << '\n';
    if (l.ok) {
      out << "  Importe: " << p.Importe(l.importe_mf, moneda) << '\n';
      if (!l.reintento_tras_error.empty()) out << "  Aviso: " << AvisoReintento(l) << '\n';
      if (!l.conversion.empty()) out << "  Conversión: " << l.conversion << '\n';
    } else {
      out << "  Error: " << l.error << '\n';
    }
  }
}

nlohmann::ordered_json CalculoJson(const ResultadoCalculo& r, bool traza) {
  const clsPresentacionMF p(r.cn, r.mf);
  const TrazaCalculoFx& t = r.traza;
  const clsRegMovimientoFrecuente& mov = *r.mf.MovFrecuente();
  nlohmann::ordered_json j;
  j["ID"] = mov.ID();
  j["Nombre"] = mov.Nombre();
  j["Fecha"] = FechaTexto(t.fecha);
  j["OrigenFecha"] = t.origen_fecha;
  j["Moneda"] = mov.Moneda();
  j["ImporteTotal"] = t.importe_total;
  j["OrigenTotal"] = t.origen_total;
  j["Renglones"] = nlohmann::ordered_json::array();
  for (const TrazaLineaFx& l : t.lineas) {
    nlohmann::ordered_json x;
    x["Orden"] = l.indice;
    x["Cuenta"] = l.cuenta;
    x["CuentaCodigo"] = l.cuenta_codigo;
    x["CuentaNombre"] = l.cuenta_nombre;
    x["AlDebe"] = l.al_debe;
    x["Formula"] = l.formula;
    x["FormulaVisible"] = p.FormulaVisible(l.formula);
    x["ImporteMF"] = l.importe_mf;
    x["ImporteCta"] = l.importe_cta;
    x["Ok"] = l.ok;
    x["Error"] = l.ok ? nlohmann::ordered_json(nullptr) : ErrorJson(std::nullopt, kOrigen, l.error);
    x["ReintentoTrasError"] = l.reintento_tras_error;
    if (traza) {
      x["Expresion"] = l.expresion;
      x["Conversion"] = l.conversion;
      x["Elementos"] = nlohmann::ordered_json::array();
      for (const TrazaElementoFx& e : l.elementos) {
        nlohmann::ordered_json y;
        y["Elemento"] = e.elemento;
        y["Origen"] = NombreOrigenFx(e.origen);
        y["Valor"] = e.valor ? nlohmann::ordered_json(*e.valor) : nlohmann::ordered_json(nullptr);
        y["Detalle"] = e.detalle;
        y["Fecha"] = e.fecha ? nlohmann::ordered_json(FechaTexto(*e.fecha))
                             : nlohmann::ordered_json(nullptr);
        y["Documento"] = e.documento;
        y["Linea"] = e.linea;
        x["Elementos"].push_back(std::move(y));
      }
    }
    j["Renglones"].push_back(std::move(x));
  }
  j["TotalDebe"] = t.total_debe;
  j["TotalHaber"] = t.total_haber;
  j["Balanceado"] = Balanceado(t);
  j["Ok"] = t.ok;
  j["Error"] = t.ok ? nlohmann::ordered_json(nullptr) : ErrorJson(std::nullopt, kOrigen, t.error);
  return j;
}

}  // namespace kivmovfrec::cli
