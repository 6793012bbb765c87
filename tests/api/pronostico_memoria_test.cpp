// The forecast worked out in memory against the dry run of the main job: every period of every
// account, and the refused occurrences, come out the same; a formula that reads the database
// sends the whole forecast to the dry run.
#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "api/pronostico.h"
#include "fachada_fixture.h"

namespace kivmovfrec::testing {
namespace {

Date Dia(int y, int m, int d) {
  return suite::SerialOf(y, m, d);
}

class PronosticoEnMemoria : public Fachada {
 protected:
  ResultadoPronostico Pronostico(api::MotorPronostico motor, PeriodoPronostico por, Date hasta) {
    SolicitudPronostico s{{}, kHoy, hasta, por};
    return api::Pronosticar(mf, *cn, 1, s, motor);
  }

  // Every figure of every period of every account, and the refused occurrences, one row each.
  static std::vector<std::string> Filas(const ResultadoPronostico& p) {
    std::vector<std::string> out;
    for (const CuentaPronostico& c : p.cuentas) {
      for (const SaldoPeriodo& x : c.periodos) {
        std::ostringstream o;
        o << std::setprecision(17) << c.cuenta << " " << x.desde.serial << "-" << x.hasta.serial
          << " " << x.apertura << " " << x.entradas << " " << x.salidas << " " << x.cierre;
        out.push_back(o.str());
      }
    }
    for (const OcurrenciaEjecutada& o : p.fallidas) {
      out.push_back(std::to_string(o.movimiento) + " " + vb::CStr(Variant(o.fecha)) + " " +
                    o.error);
    }
    return out;
  }

  // Both ways over the same request: the in-memory one must not have fallen back, and must give
  // exactly the dry run's figures and refusals.
  void ComoLaSimulacion(PeriodoPronostico por, Date hasta) {
    const ResultadoPronostico memoria = Pronostico(api::MotorPronostico::Automatico, por, hasta);
    const ResultadoPronostico simulado = Pronostico(api::MotorPronostico::Simulacion, por, hasta);
    ASSERT_TRUE(memoria.ok() && simulado.ok()) << memoria.detenida << simulado.detenida;
    EXPECT_EQ(memoria.por_simulacion, "");
    ASSERT_GT(memoria.cuentas.size(), 3u);
    EXPECT_EQ(Filas(memoria), Filas(simulado));
  }

  // The demo's formulas that only the dry run can follow (the occurrence count, another
  // movement's document, query and script blocks) become ones the in-memory run follows.
  void SoloFormulasEnMemoria() {
    cn->Execute(
        "Update genRenglonMovFrecuentes Set RMFFormula = '450000*1.02' Where RMFMovimiento = 1 "
        "And RMFCuenta = 143");
    // After the first member clears account 114 the second reads its balance: 0, so it writes
    // nothing unless it sees that entry.
    cn->Execute(
        "Update genRenglonMovFrecuentes Set RMFFormula = '[5:114]*-0.001' Where RMFMovimiento "
        "= 26 And RMFCuenta = 145");
    cn->Execute("Update genMovimientosFrecuentes Set MFrEstado = 9 Where MFrID In (17, 27)");
  }

  // A scheduled entry of company 1 with its lines: account, debit side, formula.
  void Agendado(int32_t id, const std::string& frecuencia, const std::string& proxima,
                const std::string& final, int32_t vinculado, int32_t orden,
                const std::vector<std::tuple<int32_t, int, std::string>>& lineas) {
    const std::string n = std::to_string(id);
    if (!frecuencia.empty()) {
      cn->Execute(
          "Insert Into genRecurrencias (RecID, RecFechaInicio, RecFechaProxima, RecFrecuencia, "
          "RecFechaFinal, RecNumOcurrencia, RecPostergado, RecSinVencimiento, RecNotificar, "
          "RecEraNotificacion) Values (" +
          n + ", '" + proxima + "', '" + proxima + "', '" + frecuencia + "', " +
          (final.empty() ? "Null" : "'" + final + "'") + ", 1, Null, " +
          (final.empty() ? "1" : "0") + ", Null, Null)");
    }
    cn->Execute(
        "Insert Into genMovimientosFrecuentes (MFrID, MFrEmpresa, MFrTipo, MFrDelSistema, "
        "MFrNombre, MFrMemo, MFrEnte, MFrModalidad, MFrTipoImporte, MFrMoneda, MFrRecurrencia, "
        "MFrMovVinculado, MFrMVOrden, MFrUsuarioAlta, MFrUsuarioAutoriza, MFrEstado, "
        "MFrFechaEstado, MFrVista, MFrIcono) Values (" +
        n + ", 1, 1, 0, 'Generado " + n + "', '', 0, 1, 3, 1, " +
        (frecuencia.empty() ? "Null" : n) + ", " +
        (vinculado == 0 ? "Null" : std::to_string(vinculado)) + ", " + std::to_string(orden) +
        ", 1, 1, 0, '2026-11-01 09:00:00', 0, 2)");
    int orden_linea = 0;
    for (const auto& [cuenta, al_debe, formula] : lineas) {
      cn->Execute(
          "Insert Into genRenglonMovFrecuentes (RMFMovimiento, RMFCuenta, RMFIDProyecto, "
          "RMFIDDepartamento, RMFOrden, RMFAlDebe, RMFFormula, RMFValor, RMFValorMonMov, "
          "RMFFTipoCambio, RMFValorTC, RMFDetalle) Values (" +
          n + ", " + std::to_string(cuenta) + ", 0, 0, " + std::to_string(++orden_linea) + ", " +
          std::to_string(al_debe) + ", '" + formula + "', 0, 0, Null, Null, Null)");
    }
  }
};

// The demo as delivered: the rent's formula reads the occurrence count with a query, so the
// forecast is the dry run's and says why.
TEST_P(PronosticoEnMemoria, AFormulaThatRunsAQueryTakesTheDryRun) {
  const ResultadoPronostico p =
      Pronostico(api::MotorPronostico::Automatico, PeriodoPronostico::Mes, Dia(2027, 2, 28));
  ASSERT_TRUE(p.ok()) << p.rechazo << p.detenida;
  EXPECT_NE(p.por_simulacion.find("movimiento 1 "), std::string::npos) << p.por_simulacion;
  EXPECT_NE(p.por_simulacion.find("[12:]"), std::string::npos) << p.por_simulacion;

  SoloFormulasEnMemoria();
  cn->Execute(
      "Update genRenglonMovFrecuentes Set RMFFormula = '[query]Select 5[/query]*2' Where "
      "RMFMovimiento = 6 And RMFCuenta = 105");
  const ResultadoPronostico q =
      Pronostico(api::MotorPronostico::Automatico, PeriodoPronostico::Mes, Dia(2027, 2, 28));
  EXPECT_NE(q.por_simulacion.find("movimiento 6 "), std::string::npos) << q.por_simulacion;
}

// Six months of the demo by week: the VAT settlement reads balances the earlier occurrences
// moved, the linked group's second member reads what the first posted in the same occurrence,
// the settlement's schedule ends in December.
TEST_P(PronosticoEnMemoria, TheDemoGivesTheDryRunsFigures) {
  SoloFormulasEnMemoria();
  ComoLaSimulacion(PeriodoPronostico::Semana, Dia(2027, 5, 10));
}

// A generated set by day: a schedule that ends, a balance read of the account the earlier
// schedule credits on the same day, a linked group whose member reads its head's account, and a
// group whose second member is refused (a line on a folder): the head's entry goes with it and
// the later occurrences are not attempted.
TEST_P(PronosticoEnMemoria, AGeneratedSetGivesTheDryRunsFigures) {
  SoloFormulasEnMemoria();
  Agendado(101, "200001", "2026-11-15 00:00:00", "2027-01-15 00:00:00", 0, 0,
           {{145, 1, "1045*1.21"}, {111, 0, "[10:]"}});
  Agendado(102, "200001", "2026-11-15 00:00:00", "", 0, 0,
           {{111, 1, "[5:111]*-0.1"}, {102, 0, "[10:]"}});
  Agendado(103, "000007", "2026-11-12 00:00:00", "", 103, 1,
           {{145, 1, "333.33/3"}, {102, 0, "[10:]"}});
  Agendado(104, "", "", "", 103, 2, {{145, 1, "[5:145]*0.001"}, {102, 0, "[10:]"}});
  Agendado(105, "200001", "2026-12-05 00:00:00", "", 105, 1, {{145, 1, "500"}, {102, 0, "[10:]"}});
  Agendado(106, "", "", "", 105, 2, {{100, 1, "[5:145]"}, {102, 0, "[10:]"}});
  ComoLaSimulacion(PeriodoPronostico::Dia, Dia(2027, 3, 31));

  const ResultadoPronostico p =
      Pronostico(api::MotorPronostico::Automatico, PeriodoPronostico::Mes, Dia(2027, 3, 31));
  ASSERT_EQ(p.fallidas.size(), 1u);
  EXPECT_EQ(p.fallidas[0].movimiento, 105);
  EXPECT_EQ(p.fallidas[0].fecha, Dia(2026, 12, 5));
}

KMF_INSTANTIATE_ENGINES(PronosticoEnMemoria);

}  // namespace
}  // namespace kivmovfrec::testing
