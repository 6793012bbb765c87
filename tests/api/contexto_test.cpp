// Each façade works in its own context: connection, services, clock and database settings. A
// second Connect rebinds all of it, and façades on different databases, used at the same time
// from two threads, see only their own.
#include <barrier>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "fachada_fixture.h"
#include "platform/vb/format.h"
#include "support/db_engines.h"

namespace kivmovfrec::testing {
namespace {

// A fresh demo database of the test's engine, its SQL date format optionally changed.
struct BaseDemo {
  BaseDemo(Engine engine, const std::string& formato_fecha = "") : db(engine), cn(db.Open()) {
    InstallSchema(*cn, {.demo = true});
    if (!formato_fecha.empty()) {
      cn->Execute("Update genParametros Set ParTexto = '" + formato_fecha +
                  "' Where ParNombre = 'defBDDateFormat'");
    }
  }
  TestDatabase db;
  std::shared_ptr<Connection> cn;
};

int32_t Contador(Connection& cn) {
  return vb::CLng(
      Scalar(cn, "Select CntValor From genContadores Where CntTabla = 'genMovimientosFrecuentes'"));
}

class Contexto : public EngineTest {};

TEST_P(Contexto, OtroConnectAtaServiciosYParametrosALaNuevaConexion) {
  BaseDemo uno(engine()), dos(engine(), "yyyy-mm-dd");
  uno.cn->Execute("Update genParametros Set ParTexto = '#' Where ParNombre = 'defBDDateCharSQLs'");
  // Only the clock is given: every other service comes from the defaults of the connection.
  SuiteServices dados;
  dados.clock = std::make_shared<suite::FixedClock>(kHoy, 0.5);
  clsMovFrecuente mf;
  mf.Servicios(dados);
  mf.Empresa(1);

  mf.Connect(uno.cn);
  EXPECT_EQ(mf.Contexto().cn, uno.cn);
  EXPECT_EQ(mf.Contexto().parametros.caracter_fecha, "#");
  EXPECT_EQ(mf.Contexto().parametros.idioma, 1);
  EXPECT_TRUE(mf.Contexto().parametros.multiusuario);
  EXPECT_EQ(mf.Contexto().Reloj().Today(), kHoy);

  mf.Connect(dos.cn);
  EXPECT_EQ(mf.Contexto().cn, dos.cn);
  EXPECT_EQ(mf.Contexto().parametros.caracter_fecha, "'");
  EXPECT_EQ(mf.Contexto().parametros.formato_fecha, "yyyy-mm-dd");
  EXPECT_EQ(mf.Servicios().clock, dados.clock);  // what the host gave is kept
  // The counter service now works on the second database: the key comes from its counter and
  // the first database is not touched.
  const int32_t antes_uno = Contador(*uno.cn);
  AsientoNuevo(mf, "Asiento de la segunda base", {101, 102});
  const int32_t id = mf.SaveMovimientoFrecuente();
  EXPECT_EQ(id, Contador(*dos.cn));
  EXPECT_EQ(Contador(*uno.cn), antes_uno);
  EXPECT_EQ(vb::CDate(Scalar(*dos.cn,
                             "Select MFrFechaEstado From genMovimientosFrecuentes Where "
                             "MFrID = " +
                                 std::to_string(id))),
            Date{kHoy.serial + 0.5});  // the new header is stamped with the context's clock
  EXPECT_EQ(CountRows(*uno.cn,
                      "Select * From genMovimientosFrecuentes Where MFrNombre = "
                      "'Asiento de la segunda base'"),
            0);
}

// A connected façade of company 1 whose "today" is `hoy` at `hora`.
struct FachadaConReloj {
  FachadaConReloj(std::shared_ptr<Connection> cn, Date hoy, double hora) {
    sv = suite::ScriptedServices::Make(cn, hoy);
    SuiteServices bundle = sv.Bundle();
    bundle.clock = std::make_shared<suite::FixedClock>(hoy, hora);
    mf.Servicios(bundle);
    mf.Connect(cn);
    mf.Empresa(1);
  }
  suite::ScriptedServices sv;
  clsMovFrecuente mf;
};

std::string Texto(Date d) {
  return vb::FormatDate(d, "dd/mm/yyyy hh:nn:ss");
}

// What a façade sees in one round: the amounts of movement 4 (rates read at its due date) and
// of movement 5 (index read as of today), then the schedule of weekly notice 22 after marking
// it done and, in the first round, the state and moment left by the last occurrence of 9.
std::vector<std::string> Ronda(clsMovFrecuente& mf, int ronda) {
  std::vector<std::string> visto;
  for (int32_t id : {4, 5}) {
    mf.CleanEstructura();
    std::ostringstream linea;
    linea.precision(12);
    linea << id << ": " << mf.SetCalculoFormulasMF(id, true) << " "
          << Texto(mf.UltimaTrazaFx().fecha);
    const auto& renglones = *mf.EstructuraMovFrec()->Renglones();
    for (int16_t i = 1; i <= renglones.QRenglones(); ++i) {
      linea << " " << renglones.Renglon(i)->ImporteMF();
    }
    visto.push_back(linea.str());
  }
  for (int32_t id : ronda == 0 ? std::vector<int32_t>{22, 9} : std::vector<int32_t>{22}) {
    bool ultima = false;
    const bool hecha = mf.DarRealizadaFechaAgenda(id, ultima);
    mf.LoadMF(id);
    const clsMFTipo& mov = *mf.EstructuraMovFrec();
    visto.push_back(std::to_string(id) + ": " + std::to_string(hecha) + std::to_string(ultima) +
                    " " + mov.Recurrencia()->FechaProxima() + " " +
                    std::to_string(mov.MovFrecuente()->Estado()) + " " +
                    Texto(mov.MovFrecuente()->FechaEstado()));
  }
  return visto;
}

constexpr int kRondas = 3;

// Two databases that differ in their SQL date format (the second without time of day, which on
// SQLite's text dates also changes which rates a "<=" finds) and two clocks.
struct Lado {
  std::string formato;
  Date hoy;
  double hora;
};
const Lado kA{"", suite::SerialOf(2026, 11, 16), 0.25};
const Lado kB{"yyyy-mm-dd", suite::SerialOf(2026, 11, 30), 0.75};

std::vector<std::string> Sola(Engine engine, const Lado& lado) {
  BaseDemo base(engine, lado.formato);
  FachadaConReloj f(base.cn, lado.hoy, lado.hora);
  std::vector<std::string> visto;
  for (int r = 0; r < kRondas; ++r) {
    for (std::string& s : Ronda(f.mf, r)) visto.push_back(std::move(s));
  }
  return visto;
}

TEST_P(Contexto, DosFachadasEnDosHilosVenCadaUnaSuBaseYSuReloj) {
  const std::vector<std::string> sola_a = Sola(engine(), kA);
  const std::vector<std::string> sola_b = Sola(engine(), kB);
  // The two sides must disagree, or mixing them up would go unnoticed.
  ASSERT_NE(sola_a, sola_b);

  // Both façades connected before either computes, then every round run side by side.
  BaseDemo base_a(engine(), kA.formato), base_b(engine(), kB.formato);
  FachadaConReloj a(base_a.cn, kA.hoy, kA.hora);
  FachadaConReloj b(base_b.cn, kB.hoy, kB.hora);
  std::barrier paso(2);
  std::vector<std::string> visto_a, visto_b;
  auto hilo = [&paso](clsMovFrecuente& mf, std::vector<std::string>& visto) {
    for (int r = 0; r < kRondas; ++r) {
      paso.arrive_and_wait();
      for (std::string& s : Ronda(mf, r)) visto.push_back(std::move(s));
    }
  };
  std::thread ta(hilo, std::ref(a.mf), std::ref(visto_a));
  std::thread tb(hilo, std::ref(b.mf), std::ref(visto_b));
  ta.join();
  tb.join();
  EXPECT_EQ(visto_a, sola_a);
  EXPECT_EQ(visto_b, sola_b);
}

KMF_INSTANTIATE_ENGINES(Contexto);

}  // namespace
}  // namespace kivmovfrec::testing
