// Executing what falls due: documents written with the amounts the evaluator rounded, schedules
// advanced, groups in link order, each occurrence once, and a refused or failed one leaves nothing.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fachada_fixture.h"
#include "support/faulty_connection.h"

namespace kivmovfrec::testing {
namespace {

Date Dia(int y, int m, int d) {
  return suite::SerialOf(y, m, d);
}

using Filas = std::vector<std::pair<double, double>>;  // (Debe, Haber) of each line

struct LineaNueva {
  int32_t cuenta;
  bool al_debe;
  std::string formula;
  double importe = 0;  // kept when there is no formula
};

class Ejecucion : public Fachada {
 protected:
  // The occurrence of `mov` due on `fecha` in a run's result (an empty one when missing).
  static OcurrenciaEjecutada De(const std::vector<OcurrenciaEjecutada>& r, int32_t mov,
                                Date fecha) {
    for (const auto& o : r) {
      if (o.movimiento == mov && o.fecha == fecha) return o;
    }
    ADD_FAILURE() << "el movimiento " << mov << " no se ejecutó el " << vb::CStr(Variant(fecha));
    return {};
  }
  // Documents the job wrote for `mov` (the demo's own stop at key 100).
  int Documentos(int32_t mov) {
    const std::string id = std::to_string(mov);
    return CountRows(*cn, "Select AsiID From cceAsientos Where AsiID > 100 And AsiMovFrecuente = " +
                              id + " Union All Select ComID From cceComprobantes Where ComID > " +
                              "100 And ComMovFrecuente = " + id);
  }
  // A new movement of company 1, once-only on `vence`.
  int32_t Nuevo(enuTipoMovFrec tipo, int16_t moneda, const std::string& vence,
                const std::vector<LineaNueva>& lineas) {
    mf.CleanEstructura();
    auto e = mf.EstructuraMovFrec();
    auto& cab = *e->MovFrecuente();
    cab.Empresa(1);
    cab.Tipo(tipo);
    cab.Moneda(moneda);
    e->Recurrencia()->Frecuencia("000000");
    e->Recurrencia()->FechaProxima(vence);
    for (const LineaNueva& l : lineas) {
      auto r = std::make_shared<clsRegRenglonMF>();
      r->Cuenta(l.cuenta);
      r->AlDebe(l.al_debe);
      r->Formula(l.formula);
      r->ImporteMF(l.importe);
      r->Moneda(moneda);
      e->Renglones()->AddRenglon(r);
    }
    return mf.SaveMovimientoFrecuente();
  }
  Filas Lineas(const DocumentoGenerado& d) {
    const std::string p = d.tipo == 2 ? "CCu" : "ACu";
    auto rs = cn->OpenResultset("Select " + p + "Debe, " + p + "Haber From " +
                                (d.tipo == 2 ? "cceComprobanteCuenta Where CCuIDComprobante = "
                                             : "cceAsientoCuenta Where ACuIDAsiento = ") +
                                std::to_string(d.id) + " Order By " + p + "Orden");
    Filas out;
    for (; !rs->Eof(); rs->MoveNext()) out.emplace_back(vb::CDbl(rs->Get(0)), vb::CDbl(rs->Get(1)));
    return out;
  }
};

// Every occurrence due becomes its documents in due-date order and is reported as soon as it
// finishes, before the next begins. One that somebody else did meanwhile is reported as done
// elsewhere, not as a failure, and the run goes on with that movement's next due date.
TEST_P(Ejecucion, EveryDueOccurrenceIsPostedOnceAndReportedAsItFinishes) {
  FachadaPropia otra(cn);
  std::vector<ProgresoEjecucion> avance;
  const auto al_terminar = [&](const OcurrenciaEjecutada& o, const ProgresoEjecucion& p) {
    EXPECT_FALSE(cn->InTransaction());
    EXPECT_EQ(o.estado, o.movimiento == 3 && o.fecha == Dia(2026, 11, 20)
                            ? EstadoOcurrencia::HechaEnOtraParte
                            : EstadoOcurrencia::Ejecutada)
        << o.movimiento << ": " << o.error;
    avance.push_back(p);
    // After the first one, someone marks the VAT settlement's 20/11 occurrence done.
    EXPECT_TRUE(p.terminadas != 1 || otra.mf.DarRealizadaFechaAgenda(3));
  };
  const auto r = mf.EjecutarVencidos(Dia(2027, 1, 15), al_terminar).ocurrencias;
  ASSERT_EQ(avance.size(), r.size());
  for (size_t i = 0; i < r.size(); ++i) {
    EXPECT_LE(r[i == 0 ? 0 : i - 1].fecha, r[i].fecha);
    EXPECT_EQ(avance[i].terminadas, i + 1);
    EXPECT_GE(avance[i].conocidas, avance[i].terminadas);
  }
  EXPECT_EQ(avance.back().conocidas, avance.size());
  EXPECT_EQ(Documentos(1), 3);
  EXPECT_EQ(Agenda(1).FechaProxima(), "10/02/2027");
  // The bank fee (26) is 0,1 % of what the social charges (25) paid in the same occurrence.
  // They pay nothing after November, so neither does the fee, although November's payment was
  // written moments before by this same run.
  EXPECT_EQ(Documentos(25), 1);
  EXPECT_EQ(Documentos(26), 1);
  for (const auto& d : De(r, 25, Dia(2026, 12, 10)).documentos) EXPECT_EQ(d.id, 0);

  // The rent as of its due date, written as the demo computes it, with the memo's legend.
  const auto renta = De(r, 1, Dia(2026, 11, 10)).documentos;
  ASSERT_EQ(renta.size(), 1u);
  const std::string donde = " From cceAsientos Where AsiID = " + std::to_string(renta[0].id);
  EXPECT_EQ(vb::CLng(Scalar(*cn, "Select AsiEstado" + donde)), 1);
  EXPECT_EQ(vb::CDate(Scalar(*cn, "Select AsiFecha" + donde)), Dia(2026, 11, 10));
  EXPECT_EQ(vb::CStr(Scalar(*cn, "Select AsiLeyenda" + donde)), "Alquiler de oficina 11/2026");
  EXPECT_EQ(Lineas(renta[0]), (Filas{{540000, 0}, {0, 540000}}));
  // The voucher of the accountants' fees, monthly.
  EXPECT_EQ(Lineas(De(r, 6, Dia(2026, 12, 1)).documentos.at(0)),
            (Filas{{100000, 0}, {21000, 0}, {0, 121000}}));
  // The VAT settlement done elsewhere on 20/11: the run did its last occurrence, 20/12.
  const OcurrenciaEjecutada noviembre = De(r, 3, Dia(2026, 11, 20));
  EXPECT_EQ(noviembre.nombre, "Liquidación mensual de IVA");
  EXPECT_NE(noviembre.detalle.find("20/12/2026"), std::string::npos) << noviembre.detalle;
  EXPECT_TRUE(De(r, 3, Dia(2026, 12, 20)).terminada);
  EXPECT_EQ(Documentos(3), 1);
  EXPECT_EQ(Estado(3), 1);
}

// Amounts are written as the evaluator rounded them with the movement currency's format, and
// the balance is checked in exact minor units. A three-decimal currency (quoted in pesos) for
// the vouchers below.
TEST_P(Ejecucion, AmountsAreRoundedOnceToTheirCurrencyAndBalanceInMinorUnits) {
  cn->Execute(
      "Insert Into genMonedas (MonID, MonSimbolo, MonNombre, MonTipo, MonRedondeo, "
      "MonFormatoCotizacion) Values (6, 'KD', 'Dinar kuwaití', 1, '#,##0.000', '#,##0.000')");
  cn->Execute(
      "Insert Into genCotizacionesMoneda (CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoFecha, "
      "CMoCompra, CMoVenta) Values (6, 1, 1, '2026-11-02 00:00:00', 3.25, 3.25)");
  struct Caso {
    const char* que;
    enuTipoMovFrec tipo;
    int16_t moneda;
    std::vector<LineaNueva> lineas;
    Filas escritas;                    // when executed
    std::vector<std::string> rechazo;  // parts of the refusal, when refused
  };
  const auto asiento = enuTipoMovFrec::Asiento;
  // clang-format off
  const std::vector<Caso> casos = {
      {"medio centavo, hacia afuera; el negativo pasa al otro lado", asiento, 0,
       {{143, true, "10.005"}, {143, true, "-2.345"}, {102, false, "[10:]"}},
       {{10.01, 0}, {0, 2.35}, {0, 7.66}}, {}},
      {"moneda de tres decimales: sin segundo redondeo a centavos", enuTipoMovFrec::Comprobante, 6,
       {{145, true, "1.2345"}, {111, false, "[10:]"}}, {{1.235, 0}, {0, 1.235}}, {}},
      {"cuadra antes de redondear y no después", asiento, 0,
       {{143, true, "10.005"}, {102, false, "5.0025"}, {101, false, "5.0025"}}, {},
       {"Debe 10,01", "Haber 10,00"}},
      {"la línea de diferencia absorbe el centavo", asiento, 0,
       {{143, true, "10.005"}, {102, false, "5.0025"}, {101, false, "[10:]"}},
       {{10.01, 0}, {0, 5.00}, {0, 5.01}}, {}},
      {"línea en una carpeta del plan de cuentas", asiento, 0,
       {{100, true, "10"}, {102, false, "[10:]"}}, {}, {"línea 1: la cuenta 100 es una carpeta"}},
      {"importe guardado con más decimales que su moneda", asiento, 0,
       {{143, true, "", 10.005}, {102, false, "", 10.005}}, {}, {"10,005", "2 decimales"}},
      {"valor rescatado leyendo \",\" como \".\" tras un error de ejecución", asiento, 0,
       {{143, true, "Round(12000/0,2)"}, {102, false, "[10:]"}}, {},
       {"la línea 1 (cuenta 143)", "error 11: División por cero"}},
  };
  // clang-format on
  std::vector<int32_t> ids;
  for (const Caso& c : casos) ids.push_back(Nuevo(c.tipo, c.moneda, "05/11/2026", c.lineas));
  const auto r = mf.EjecutarVencidos(Dia(2026, 11, 5)).ocurrencias;
  for (size_t i = 0; i < casos.size(); ++i) {
    const Caso& c = casos[i];
    const OcurrenciaEjecutada o = De(r, ids[i], Dia(2026, 11, 5));
    EXPECT_EQ(o.ok(), c.rechazo.empty()) << c.que << ": " << o.error;
    for (const std::string& parte : c.rechazo) {
      EXPECT_NE(o.error.find(parte), std::string::npos) << c.que << ": " << o.error;
    }
    EXPECT_EQ(Documentos(ids[i]), c.rechazo.empty() ? 1 : 0) << c.que;
    if (o.documentos.size() != 1) continue;
    EXPECT_EQ(Lineas(o.documentos[0]), c.escritas) << c.que;
  }
}

// A linked group whose link order is not its ID order runs in link order: movement 90 joins the
// group of 25 between its two members and reads the document 25 has just written; 26 reads 90's.
// A failure at any statement of the occurrence (commit included) leaves every table as it was:
// the first members' documents go with the next one's. A failure the formula engine absorbs (a
// look-up it retries) must still give the right documents. Failed attempts share one database
// (each leaves it as it was); one that completes gets a fresh one.
TEST_P(Ejecucion, ALinkedGroupRunsInLinkOrderAndAFailureAnywhereLeavesNothingHalfWritten) {
  const std::vector<std::string> grupo_de_tres = {
      "Insert Into genMovimientosFrecuentes (MFrID, MFrEmpresa, MFrTipo, MFrNombre, MFrModalidad, "
      "MFrMoneda, MFrMovVinculado, MFrMVOrden, MFrEstado) Values (90, 1, 1, 'Intermedio', 1, 1, "
      "25, 2, 0)",
      "Insert Into genRenglonMovFrecuentes (RMFMovimiento, RMFCuenta, RMFIDProyecto, "
      "RMFIDDepartamento, RMFOrden, RMFAlDebe, RMFFormula) Values (90, 145, 0, 0, 1, 1, "
      "'[19:25;114;0;0]*0.002'), (90, 102, 0, 0, 2, 0, '[10:]')",
      "Update genMovimientosFrecuentes Set MFrMVOrden = 3 Where MFrID = 26",
      "Update genRenglonMovFrecuentes Set RMFFormula = '[19:90;145;0;0]*0.5' Where RMFMovimiento "
      "= 26 And RMFOrden = 1",
      // Only the group falls due on 10/11: the rent is moved a month on.
      "Update genRecurrencias Set RecFechaProxima = '2026-12-10 00:00:00' Where RecID = 1"};
  const std::vector<std::pair<int32_t, double>> esperado = {{25, 205000}, {90, 410}, {26, 205}};
  std::vector<std::string> tablas = MovementTables();
  tablas.insert(tablas.end(),
                {"cceAsientos", "cceAsientoCuenta", "cceComprobantes", "cceComprobanteCuenta"});
  int fallidas = 0;
  std::unique_ptr<TestDatabase> base;
  std::shared_ptr<Connection> real;
  Snapshot antes;
  for (int k = 1; k < 600; ++k) {
    if (!real) {
      base = std::make_unique<TestDatabase>(GetParam());
      real = base->Open();
      InstallSchema(*real, {.demo = true});
      for (const std::string& sql : grupo_de_tres) real->Execute(sql);
      antes = TakeSnapshot(*real, tablas);
    }
    auto faulty = std::make_shared<FaultyConnection>(real, 0);
    FachadaPropia otra(faulty);
    faulty->FailAt(faulty->statements() + k);
    const auto r = otra.mf.EjecutarVencidos(Dia(2026, 11, 10)).ocurrencias;
    EXPECT_FALSE(real->InTransaction()) << "sentencia " << k;
    const bool hecha = r.size() == 1 && r[0].estado == EstadoOcurrencia::Ejecutada;
    std::vector<std::pair<int32_t, double>> hechos;  // in the order written: ascending ids
    for (size_t i = 0; hecha && i < r[0].documentos.size(); ++i) {
      const auto& d = r[0].documentos[i];
      hechos.emplace_back(d.movimiento, d.total);
      EXPECT_LT(i == 0 ? 0 : r[0].documentos[i - 1].id, d.id) << "sentencia " << k;
    }
    EXPECT_TRUE(!hecha || hechos == esperado) << "sentencia " << k;
    if (!faulty->failed()) {
      EXPECT_TRUE(hecha) << (r.empty() ? "" : r[0].error);
      EXPECT_GT(fallidas, 20);
      return;
    }
    if (hecha) {
      real.reset();
      base.reset();
      continue;
    }
    ++fallidas;
    ASSERT_EQ(TakeSnapshot(*real, tablas), antes) << "sentencia " << k;
  }
  ADD_FAILURE() << "la ejecución nunca se completó";
}

KMF_INSTANTIATE_ENGINES(Ejecucion);

}  // namespace
}  // namespace kivmovfrec::testing
