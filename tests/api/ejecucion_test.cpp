// Executing what falls due: documents written with the amounts the evaluator rounded, schedules
// advanced, groups in link order, each occurrence once, and an occurrence that cannot be
// executed leaves nothing behind.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "api/ejecucion.h"
#include "fachada_fixture.h"
#include "support/faulty_connection.h"

namespace kivmovfrec::testing {
namespace {

using api::EjecutarVencidos;
using api::EstadoOcurrencia;
using api::OcurrenciaEjecutada;

Date Dia(int y, int m, int d) {
  return suite::SerialOf(y, m, d);
}

struct LineaNueva {
  int32_t cuenta;
  bool al_debe;
  std::string formula;
  double importe = 0;  // kept when there is no formula
};

class Ejecucion : public Fachada {
 protected:
  std::vector<OcurrenciaEjecutada> Ejecutar(Date hasta) {
    const api::ResultadoEjecucion r = EjecutarVencidos(mf, *cn, 1, hasta);
    EXPECT_TRUE(r.completa()) << r.detenida;
    return r.ocurrencias;
  }
  static const OcurrenciaEjecutada* De(const std::vector<OcurrenciaEjecutada>& r, int32_t mov,
                                       Date fecha) {
    for (const auto& o : r) {
      if (o.movimiento == mov && o.fecha == fecha) return &o;
    }
    ADD_FAILURE() << "el movimiento " << mov << " no se ejecutó el " << vb::CStr(Variant(fecha));
    return nullptr;
  }
  // Documents the job wrote for `mov` (the demo's own stop at key 100, where its counters
  // stand).
  static int Documentos(Connection& c, int32_t mov) {
    const std::string id = std::to_string(mov);
    return CountRows(c,
                     "Select AsiID From cceAsientos Where AsiID > 100 And AsiMovFrecuente = " + id +
                         " Union All Select ComID From cceComprobantes Where ComID > 100 And "
                         "ComMovFrecuente = " +
                         id);
  }
  int Documentos(int32_t mov) { return Documentos(*cn, mov); }
  std::string Proxima(int32_t mov) {
    return vb::CStr(Variant(vb::CDate(Variant(Agenda(mov).FechaProxima()))));
  }
  static Snapshot Todo(Connection& c) {
    std::vector<std::string> tablas = MovementTables();
    for (const char* t :
         {"cceAsientos", "cceAsientoCuenta", "cceComprobantes", "cceComprobanteCuenta"}) {
      tablas.push_back(t);
    }
    return TakeSnapshot(c, tablas);
  }
  // A new movement of company 1: once-only on `vence` ("" = no schedule).
  int32_t Nuevo(enuTipoMovFrec tipo, int16_t moneda, const std::string& vence,
                const std::vector<LineaNueva>& lineas, int32_t grupo = 0, uint8_t orden = 0) {
    mf.CleanEstructura();
    auto e = mf.EstructuraMovFrec();
    e->MovFrecuente()->Empresa(1);
    e->MovFrecuente()->Tipo(tipo);
    e->MovFrecuente()->Nombre("Prueba " + std::to_string(++nuevos_));
    e->MovFrecuente()->Moneda(moneda);
    e->MovFrecuente()->MovVinculado(grupo);
    e->MovFrecuente()->OrdenMovVinculado(orden);
    if (!vence.empty()) {
      e->Recurrencia()->Frecuencia("000000");
      e->Recurrencia()->FechaProxima(vence);
    }
    for (const LineaNueva& l : lineas) {
      auto r = std::make_shared<clsRegRenglonMF>();
      r->Cuenta(l.cuenta);
      r->AlDebe(l.al_debe);
      r->Formula(l.formula);
      r->ImporteMF(l.importe);
      r->ImporteCta(l.importe);
      r->Moneda(moneda);
      e->Renglones()->AddRenglon(r);
    }
    return mf.SaveMovimientoFrecuente();
  }
  // (Debe, Haber) of each line of a document, in order.
  std::vector<std::pair<double, double>> Lineas(const api::DocumentoGenerado& d) {
    const bool comprobante = d.tipo == 2;
    auto rs = cn->OpenResultset(
        comprobante ? "Select CCuDebe, CCuHaber From cceComprobanteCuenta Where "
                      "CCuIDComprobante = " +
                          std::to_string(d.id) + " Order By CCuOrden"
                    : "Select ACuDebe, ACuHaber From cceAsientoCuenta Where ACuIDAsiento = " +
                          std::to_string(d.id) + " Order By ACuOrden");
    std::vector<std::pair<double, double>> out;
    for (; !rs->Eof(); rs->MoveNext()) out.emplace_back(vb::CDbl(rs->Get(0)), vb::CDbl(rs->Get(1)));
    return out;
  }
  int nuevos_ = 0;
};

TEST_P(Ejecucion, EveryDueOccurrenceBecomesOnePostedBalancedDocumentAndItsScheduleAdvances) {
  const auto r = Ejecutar(Dia(2027, 1, 15));
  std::vector<std::string> alquiler;
  for (const auto& o : r) {
    EXPECT_EQ(o.estado, EstadoOcurrencia::Ejecutada) << o.movimiento << ": " << o.error;
    if (o.movimiento == 1) alquiler.push_back(vb::CStr(Variant(o.fecha)));
  }
  for (size_t i = 1; i < r.size(); ++i) EXPECT_LE(r[i - 1].fecha, r[i].fecha);
  EXPECT_EQ(alquiler, (std::vector<std::string>{"10/11/2026", "10/12/2026", "10/01/2027"}));
  EXPECT_EQ(Proxima(1), "10/02/2027");

  // The rent as of its due date, written as the demo computes it, with the memo's legend.
  const OcurrenciaEjecutada* renta = De(r, 1, Dia(2026, 11, 10));
  ASSERT_TRUE(renta != nullptr);
  ASSERT_EQ(renta->documentos.size(), 1u);
  const std::string donde =
      " From cceAsientos Where AsiID = " + std::to_string(renta->documentos[0].id);
  EXPECT_EQ(vb::CLng(Scalar(*cn, "Select AsiMovFrecuente" + donde)), 1);
  EXPECT_EQ(vb::CLng(Scalar(*cn, "Select AsiEstado" + donde)), 1);
  EXPECT_EQ(vb::CDate(Scalar(*cn, "Select AsiFecha" + donde)), Dia(2026, 11, 10));
  EXPECT_EQ(vb::CStr(Scalar(*cn, "Select AsiLeyenda" + donde)), "Alquiler de oficina 11/2026");
  EXPECT_EQ(Lineas(renta->documentos[0]),
            (std::vector<std::pair<double, double>>{{540000, 0}, {0, 540000}}));
  // The VAT settlement had two occurrences left: the second one ends it.
  EXPECT_EQ(Documentos(3), 2);
  EXPECT_EQ(Estado(3), 1);
  // The voucher of the accountants' fees, monthly.
  EXPECT_DOUBLE_EQ(
      vb::CDbl(Scalar(*cn,
                      "Select Sum(CCuDebe) From cceComprobanteCuenta, cceComprobantes Where "
                      "CCuIDComprobante = ComID And ComID > 100 And ComMovFrecuente = 6")),
      2 * 121000.0);

  // A second run finds nothing due: an occurrence is never executed twice.
  const Snapshot despues = Todo(*cn);
  EXPECT_TRUE(Ejecutar(Dia(2027, 1, 15)).empty());
  EXPECT_EQ(Todo(*cn), despues);
}

// Amounts are written as the evaluator rounded them with the movement currency's format, and
// the balance is checked in exact minor units.
TEST_P(Ejecucion, AmountsAreRoundedOnceToTheirCurrencyAndBalanceInMinorUnits) {
  cn->Execute(
      "Insert Into genMonedas (MonID, MonSimbolo, MonNombre, MonTipo, MonRedondeo, "
      "MonFormatoCotizacion) Values (6, 'KD', 'Dinar kuwaití', 1, '#,##0.000', '#,##0.000')");
  cn->Execute(
      "Insert Into genCotizacionesMoneda (CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoFecha, "
      "CMoCompra, CMoVenta) Values (6, 1, 1, '2026-11-02 00:00:00', 3.25, 3.25)");
  using Filas = std::vector<std::pair<double, double>>;
  struct Caso {
    const char* que;
    enuTipoMovFrec tipo;
    int16_t moneda;
    std::vector<LineaNueva> lineas;
    Filas escritas;     // when executed
    const char* error;  // part of the refusal, when refused
    const char* error2;
  };
  const std::vector<Caso> casos = {
      {"medio centavo, hacia afuera; el negativo pasa al otro lado",
       enuTipoMovFrec::Asiento,
       0,
       {{143, true, "10.005"}, {143, true, "-2.345"}, {102, false, "[10:]"}},
       {{10.01, 0}, {0, 2.35}, {0, 7.66}},
       nullptr,
       nullptr},
      {"moneda de tres decimales: sin segundo redondeo a centavos",
       enuTipoMovFrec::Comprobante,
       6,
       {{145, true, "1.2345"}, {111, false, "[10:]"}},
       {{1.235, 0}, {0, 1.235}},
       nullptr,
       nullptr},
      {"cuadra antes de redondear y no después",
       enuTipoMovFrec::Asiento,
       0,
       {{143, true, "10.005"}, {102, false, "5.0025"}, {101, false, "5.0025"}},
       {},
       "Debe 10,01",
       "Haber 10,00"},
      {"la línea de diferencia absorbe el centavo",
       enuTipoMovFrec::Asiento,
       0,
       {{143, true, "10.005"}, {102, false, "5.0025"}, {101, false, "[10:]"}},
       {{10.01, 0}, {0, 5.00}, {0, 5.01}},
       nullptr,
       nullptr},
      {"importe guardado con más decimales que su moneda",
       enuTipoMovFrec::Asiento,
       0,
       {{143, true, "", 10.005}, {102, false, "", 10.005}},
       {},
       "10,005",
       "2 decimales"},
  };
  std::vector<int32_t> ids;
  for (const Caso& c : casos) ids.push_back(Nuevo(c.tipo, c.moneda, "05/11/2026", c.lineas));
  const auto r = Ejecutar(Dia(2026, 11, 5));
  ASSERT_EQ(r.size(), casos.size());
  for (size_t i = 0; i < casos.size(); ++i) {
    const Caso& c = casos[i];
    const OcurrenciaEjecutada* o = De(r, ids[i], Dia(2026, 11, 5));
    ASSERT_TRUE(o != nullptr) << c.que;
    if (c.error != nullptr) {
      EXPECT_EQ(o->estado, EstadoOcurrencia::Fallida) << c.que;
      EXPECT_NE(o->error.find(c.error), std::string::npos) << c.que << ": " << o->error;
      EXPECT_NE(o->error.find(c.error2), std::string::npos) << c.que << ": " << o->error;
      EXPECT_EQ(Documentos(ids[i]), 0) << c.que;
      continue;
    }
    ASSERT_EQ(o->estado, EstadoOcurrencia::Ejecutada) << c.que << ": " << o->error;
    ASSERT_EQ(o->documentos.size(), 1u) << c.que;
    EXPECT_EQ(Lineas(o->documentos[0]), c.escritas) << c.que;
    EXPECT_DOUBLE_EQ(o->documentos[0].total, c.escritas[0].first) << c.que;
  }
}

// A group whose link order is not its ID order: the member that runs second reads the document
// the first one has just written, and the last reads the second's.
TEST_P(Ejecucion, ALinkedGroupRunsInLinkOrderOnTheScheduledMembersDate) {
  const int32_t medio = Nuevo(enuTipoMovFrec::Asiento, 0, "",
                              {{145, true, "[19:25;114;0;0]*0.002"}, {102, false, "[10:]"}},
                              /*grupo=*/25, /*orden=*/2);
  cn->Execute("Update genMovimientosFrecuentes Set MFrMVOrden = 3 Where MFrID = 26");
  cn->Execute("Update genRenglonMovFrecuentes Set RMFFormula = '[19:" + std::to_string(medio) +
              ";145;0;0]*0.5' Where RMFMovimiento = 26 And RMFOrden = 1");
  const auto r = Ejecutar(Dia(2026, 11, 10));
  const OcurrenciaEjecutada* o = De(r, 25, Dia(2026, 11, 10));
  ASSERT_TRUE(o != nullptr);
  ASSERT_EQ(o->estado, EstadoOcurrencia::Ejecutada) << o->error;
  ASSERT_EQ(o->documentos.size(), 3u);
  const std::vector<std::pair<int32_t, double>> esperado = {{25, 205000}, {medio, 410}, {26, 205}};
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(o->documentos[i].movimiento, esperado[i].first);
    EXPECT_DOUBLE_EQ(o->documentos[i].total, esperado[i].second);
    EXPECT_LT(i == 0 ? 0 : o->documentos[i - 1].id, o->documentos[i].id);
  }
  // Only the scheduled member has a schedule to advance.
  EXPECT_EQ(Proxima(25), "10/12/2026");
}

TEST_P(Ejecucion, AnOccurrenceThatCannotBeExecutedWritesNothingAndStaysDue) {
  // The rent's debit line now asks for a typed value, which an unattended run cannot give;
  // the VAT settlement's closing line no longer takes the difference, so it does not balance.
  cn->Execute(
      "Update genRenglonMovFrecuentes Set RMFFormula = '[11:Importe]' Where RMFMovimiento = 1 "
      "And RMFOrden = 1");
  cn->Execute(
      "Update genRenglonMovFrecuentes Set RMFFormula = '1' Where RMFMovimiento = 3 And RMFOrden "
      "= 3");
  const auto r = Ejecutar(Dia(2026, 12, 15));
  int fallidas = 0;
  for (const auto& o : r) {
    if (o.movimiento != 1 && o.movimiento != 3) {
      EXPECT_TRUE(o.ok()) << o.movimiento << ": " << o.error;
      continue;
    }
    ++fallidas;
    EXPECT_EQ(o.estado, EstadoOcurrencia::Fallida);
    EXPECT_TRUE(o.documentos.empty());
    EXPECT_EQ(o.fecha, o.movimiento == 1 ? Dia(2026, 11, 10) : Dia(2026, 11, 20));
    if (o.movimiento == 3) {
      EXPECT_NE(o.error.find("no balancea"), std::string::npos) << o.error;
    }
  }
  // Each failed once: its later occurrences were not attempted.
  EXPECT_EQ(fallidas, 2);
  EXPECT_EQ(Documentos(1), 0);
  EXPECT_EQ(Documentos(3), 0);
  EXPECT_EQ(Proxima(1), "10/11/2026");
  EXPECT_EQ(Proxima(3), "20/11/2026");
  // The others went on: the commission of the linked group each month (the social charges had
  // nothing left to pay in December).
  EXPECT_EQ(Documentos(25), 1);
  EXPECT_EQ(Documentos(26), 2);
  EXPECT_FALSE(cn->InTransaction());
}

// Each occurrence is reported as soon as it finishes, before the next begins; one that somebody
// else did meanwhile is reported as done elsewhere, not as a failure, and the run goes on with
// that movement's next due date.
TEST_P(Ejecucion, EachOccurrenceIsReportedAsItFinishesAndOneDoneElsewhereIsNoFailure) {
  clsMovFrecuente otra;
  otra.Servicios(sv.Bundle());
  otra.Connect(cn);
  otra.Empresa(1);
  std::vector<api::ProgresoEjecucion> avance;
  const api::ResultadoEjecucion r =
      EjecutarVencidos(mf, *cn, 1, Dia(2026, 12, 31),
                       [&](const OcurrenciaEjecutada& o, const api::ProgresoEjecucion& p) {
                         EXPECT_FALSE(cn->InTransaction());
                         EXPECT_TRUE(o.ok()) << o.movimiento << ": " << o.error;
                         avance.push_back(p);
                         // Someone marks the VAT settlement's 20/11 occurrence done.
                         if (p.terminadas == 1) {
                           EXPECT_TRUE(otra.DarRealizadaFechaAgenda(3));
                         }
                       });
  ASSERT_TRUE(r.completa()) << r.detenida;
  ASSERT_EQ(avance.size(), r.ocurrencias.size());
  for (size_t i = 0; i < avance.size(); ++i) {
    EXPECT_EQ(avance[i].terminadas, i + 1);
    EXPECT_GE(avance[i].conocidas, avance[i].terminadas);
  }
  EXPECT_EQ(avance.back().conocidas, avance.size());

  const OcurrenciaEjecutada* noviembre = De(r.ocurrencias, 3, Dia(2026, 11, 20));
  ASSERT_TRUE(noviembre != nullptr);
  EXPECT_EQ(noviembre->estado, EstadoOcurrencia::HechaEnOtraParte);
  EXPECT_TRUE(noviembre->ok());
  EXPECT_EQ(noviembre->nombre, "Liquidación mensual de IVA");
  EXPECT_NE(noviembre->detalle.find("20/12/2026"), std::string::npos) << noviembre->detalle;
  const OcurrenciaEjecutada* diciembre = De(r.ocurrencias, 3, Dia(2026, 12, 20));
  ASSERT_TRUE(diciembre != nullptr);
  EXPECT_EQ(diciembre->estado, EstadoOcurrencia::Ejecutada);
  EXPECT_TRUE(diciembre->terminada);
  EXPECT_EQ(Documentos(3), 1);
}

// A failure at any statement of a linked group's occurrence (commit included) leaves every table
// as it was: the first member's document goes with the second's. A failure the formula engine
// absorbs (a look-up it retries) must still give the right documents. Failed attempts share one
// database (each leaves it as it was); one that completes gets a fresh one.
TEST_P(Ejecucion, AFailureAtAnyStatementOfAGroupLeavesNothingHalfWritten) {
  // Only the group of movement 25 falls due on 10/11: the rent is moved a month on.
  const std::string solo_grupo =
      "Update genRecurrencias Set RecFechaProxima = '2026-12-10 00:00:00' Where RecID = 1";
  int fallidas = 0, absorbidas = 0;
  std::unique_ptr<TestDatabase> base;
  std::shared_ptr<Connection> real;
  Snapshot antes;
  for (int k = 1; k < 600; ++k) {
    if (!real) {
      base = std::make_unique<TestDatabase>(GetParam());
      real = base->Open();
      InstallSchema(*real, {.demo = true});
      real->Execute(solo_grupo);
      antes = Todo(*real);
    }
    auto faulty = std::make_shared<FaultyConnection>(real, 0);
    auto servicios = suite::ScriptedServices::Make(faulty, kHoy);
    clsMovFrecuente otra;
    otra.Servicios(servicios.Bundle());
    otra.Connect(faulty);
    otra.Empresa(1);
    faulty->FailAt(faulty->statements() + k);
    const api::ResultadoEjecucion r = EjecutarVencidos(otra, *faulty, 1, Dia(2026, 11, 10));
    EXPECT_FALSE(real->InTransaction()) << "sentencia " << k;
    const bool hecha =
        r.ocurrencias.size() == 1 && r.ocurrencias[0].estado == EstadoOcurrencia::Ejecutada;
    if (hecha) {
      const auto& docs = r.ocurrencias[0].documentos;
      ASSERT_EQ(docs.size(), 2u) << "sentencia " << k;
      EXPECT_DOUBLE_EQ(docs[0].total, 205000) << "sentencia " << k;
      EXPECT_DOUBLE_EQ(docs[1].total, 205) << "sentencia " << k;
      EXPECT_EQ(Documentos(*real, 25) + Documentos(*real, 26), 2) << "sentencia " << k;
    }
    if (!faulty->failed()) {
      EXPECT_TRUE(hecha);
      EXPECT_GT(fallidas, 20);
      std::printf(
          "[ ejecutar ] %d fallos inyectados en un grupo: %d revertidos (estados comparados, "
          "distintos = 0), %d absorbidos con los documentos correctos\n",
          fallidas + absorbidas, fallidas, absorbidas);
      return;
    }
    if (hecha) {
      ++absorbidas;
      real.reset();
      base.reset();
      continue;
    }
    ++fallidas;
    ASSERT_EQ(Todo(*real), antes) << "sentencia " << k;
  }
  ADD_FAILURE() << "la ejecución nunca se completó";
}

KMF_INSTANTIATE_ENGINES(Ejecucion);

}  // namespace
}  // namespace kivmovfrec::testing
