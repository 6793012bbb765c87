#include "formula/monedas.h"

#include <algorithm>
#include <cstdint>
#include <exception>

#include "core/clock.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "platform/vb/text.h"

namespace kivmovfrec::formula {

const char* const kSqlCotizaEn =
    "Select MonID, MonCotizaEn From genMonedas  Where MonTipo = 1 And MonCotizaEn Is Not Null";

namespace {

std::string TextoDe(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? std::string() : vb::Trim(vb::CStr(v));
}

// The "#.000" round trip of the fall-back path: three decimals, read back in the locale that
// wrote them (Spanish: "3,142").
Currency TresDecimales(Currency c) {
  std::string t = vb::Format(Variant(c), "#.000");
  if (!t.empty() && (t[0] == ',' || t[0] == '.')) t.insert(0, "0");
  if (t.size() > 1 && t[0] == '-' && (t[1] == ',' || t[1] == '.')) t.insert(1, "0");
  return vb::CCur(Variant(t));
}

// a × b exactly, rounded half to even at the fourth decimal. Throws VbError(6) on overflow.
Currency Producto(Currency a, Currency b) {
  __extension__ typedef __int128 Ancho;
  const Ancho p = static_cast<Ancho>(a.units) * b.units;
  Ancho q = p / Currency::kScale;
  Ancho r = p % Currency::kScale;
  if (r < 0) r = -r;
  const int signo = p < 0 ? -1 : 1;
  if (r * 2 > Currency::kScale || (r * 2 == Currency::kScale && (q % 2) != 0)) q += signo;
  if (q > INT64_MAX || q < INT64_MIN) throw VbError(6);
  return Currency::FromUnits(static_cast<int64_t>(q));
}

}  // namespace

Date FechaVaciaCotizacion() {
  return vb::DateSerial(1900, 1, 1);
}

clsMonedas::clsMonedas(std::shared_ptr<IClock> reloj, const ParametrosBD& parametros)
    : reloj_(std::move(reloj)), parametros_(parametros) {}

void clsMonedas::Connect(std::shared_ptr<Connection> cn) {
  cn_ = std::move(cn);
}

int16_t clsMonedas::MonedaContabilidad() const {
  return moneda_contabilidad_ ? *moneda_contabilidad_ : parametros_.moneda_contabilidad;
}

Date clsMonedas::Hoy() const {
  return core::RelojOSistema(reloj_.get()).Today();
}

bool clsMonedas::Load() {
  monedas_.clear();
  ultima_pos_ = -1;
  if (!cn_) return false;
  std::vector<MonedaFx> leidas;
  try {
    for (auto rs = cn_->OpenResultset("Select * From genMonedas"); !rs->Eof(); rs->MoveNext()) {
      MonedaFx m;
      m.id = vb::CInt(rs->Get("MonID"));
      m.simbolo = TextoDe(rs->Get("MonSimbolo"));
      Variant cot = rs->Get("MonCotizaEn");
      m.cotiza_en = cot.IsNull() ? 0 : vb::CInt(cot);
      Variant red = rs->Get("MonRedondeo");
      if (!red.IsNull()) m.formato_importe = TextoDe(red);
      Variant fc = rs->Get("MonFormatoCotizacion");
      if (!fc.IsNull()) m.formato_cotizacion = TextoDe(fc);
      leidas.push_back(std::move(m));
    }
  } catch (const std::exception&) {
    return false;
  }
  monedas_ = std::move(leidas);
  return true;
}

void clsMonedas::Usar(std::vector<MonedaFx> monedas) {
  monedas_ = std::move(monedas);
  ultima_pos_ = -1;
}

const MonedaFx* clsMonedas::Moneda(int16_t id) {
  if (id == 0) id = MonedaContabilidad();
  if (ultima_pos_ >= 0 && ultima_id_ == id) return &monedas_[static_cast<size_t>(ultima_pos_)];
  ++escaneos_;
  for (size_t i = 0; i < monedas_.size(); ++i) {
    if (monedas_[i].id == id) {
      ultima_id_ = id;
      ultima_pos_ = static_cast<int>(i);
      return &monedas_[i];
    }
  }
  return nullptr;
}

Variant clsMonedas::DatosMoneda(int16_t id, int campo) {
  const MonedaFx* m = Moneda(id);
  if (m == nullptr) return {};
  switch (static_cast<CampoMoneda>(campo)) {
    case CampoMoneda::Id:
      return Variant(m->id);
    case CampoMoneda::Simbolo:
      return Variant(m->simbolo);
    case CampoMoneda::CotizaEn:
      return Variant(m->cotiza_en);
    case CampoMoneda::FormatoImporte:
      return Variant(m->formato_importe);
    case CampoMoneda::FormatoCotizacion:
      return Variant(m->formato_cotizacion);
  }
  return {};
}

std::string clsMonedas::SqlCotizacionDirecta(int16_t a, int16_t b, int32_t t) {
  const std::string d = "?";
  auto resto = [&](int16_t x, int16_t y) {
    return std::string(" From genCotizacionesMoneda ") +
           " Where CMoFecha IN (Select MAX(CMoFecha) from genCotizacionesMoneda " +
           " Where CMoFecha <= " + d + " And CMoMoneda = " + std::to_string(x) +
           " And CMoCotizaEn = " + std::to_string(y) +
           " And CMoTipoCotizacion = " + std::to_string(t) + ")" +
           " And CMoMoneda = " + std::to_string(x) + " And CMoCotizaEn = " + std::to_string(y) +
           " And CMoTipoCotizacion = " + std::to_string(t);
  };
  return "Select Top 1 CMoFecha, CMoCompra, CMoVenta " + resto(a, b) + " UNION ALL " +
         "Select Top 1 CMoFecha, 1/CMoCompra, 1/CMoVenta " + resto(b, a);
}

CotizacionDirecta clsMonedas::BuscarCotizacionDirecta(int16_t a, int16_t b, int32_t t, Date fecha) {
  CotizacionDirecta r;
  if (!cn_) return r;
  try {
    auto rs = cn_->OpenResultset(SqlCotizacionDirecta(a, b, t), {Variant(fecha), Variant(fecha)});
    if (rs->Eof()) return r;
    // Column 1 is named differently in the two branches: read it by position.
    Currency tasa = vb::CCur(rs->Get(1));
    Date f = vb::CDate(rs->Get(0));
    rs->MoveNext();
    if (!rs->Eof()) {
      Date f2 = vb::CDate(rs->Get(0));
      if (f < f2) {
        tasa = vb::CCur(rs->Get(1));
        f = f2;
      }
    }
    rs->Close();
    r.encontrada = true;
    r.tasa = tasa;
    r.fecha = f;
  } catch (const std::exception&) {
    return CotizacionDirecta{};
  }
  return r;
}

CotizacionUsada clsMonedas::Cotizacion(int16_t a, int16_t b, int32_t t, Date fecha) {
  if (fecha == FechaVaciaCotizacion()) fecha = Hoy();
  CotizacionUsada u;
  CotizacionDirecta d = BuscarCotizacionDirecta(a, b, t, fecha);
  if (d.encontrada) {
    u.tasa = d.tasa;
    u.fecha = d.fecha;
    u.directa = true;
    return u;
  }
  Currency producto = Currency::FromUnits(Currency::kScale);
  bool encontrada = false;
  try {
    if (cn_) {
      std::string pares;
      for (auto rs = cn_->OpenResultset(kSqlCotizaEn); !rs->Eof(); rs->MoveNext()) {
        pares += "|" + TextoDe(rs->Get(0)) + ":" + TextoDe(rs->Get(1));
      }
      const std::string clave = "|" + std::to_string(a) + ":";
      size_t p = pares.find(clave);
      if (p != std::string::npos) {
        size_t desde = p + clave.size();
        size_t hasta = pares.find('|', desde);
        int16_t c = vb::CInt(Variant(pares.substr(desde, hasta - desde)));
        if (c != a && c != b) {
          CotizacionDirecta ac = BuscarCotizacionDirecta(a, c, t, fecha);
          CotizacionDirecta cb =
              ac.encontrada ? BuscarCotizacionDirecta(c, b, t, fecha) : CotizacionDirecta{};
          if (ac.encontrada && cb.encontrada) {
            producto = Producto(ac.tasa, cb.tasa);
            encontrada = true;
            u.por_escala = true;
            u.intermedia = c;
            u.tasa_a_intermedia = ac.tasa;
            u.tasa_intermedia_b = cb.tasa;
            u.fecha = std::min(ac.fecha, cb.fecha);
          }
        }
      }
    }
  } catch (const std::exception&) {
    encontrada = false;
    u = CotizacionUsada{};
    producto = Currency::FromUnits(Currency::kScale);
  }
  if (!encontrada) {
    u.por_defecto = true;
    u.fecha = fecha;
    producto = Currency::FromUnits(Currency::kScale);
  }
  try {
    u.tasa = TresDecimales(producto);
  } catch (const std::exception&) {
    u.tasa = producto;
  }
  return u;
}

Currency clsMonedas::Cotizacion(int16_t a, int16_t b, int32_t t, Date& fecha, Currency& tasa) {
  CotizacionUsada u = Cotizacion(a, b, t, fecha);
  fecha = u.fecha;
  tasa = u.tasa;
  return u.tasa;
}

}  // namespace kivmovfrec::formula
