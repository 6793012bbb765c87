// Each façade works in its own context: connection, services, clock and database settings. A
// second Connect rebinds all of it, and façades on different databases, used at the same time
// from two threads, see only their own.
#include <barrier>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "fachada_fixture.h"
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

class Contexto : public EngineTest {};

// A second Connect rebinds the services completed from the defaults, the settings and the
// company context to the new connection; what the host gave (here only the clock) is kept.
TEST_P(Contexto, OtroConnectAtaServiciosYParametrosALaNuevaConexion) {
  BaseDemo uno(engine()), dos(engine(), "yyyy-mm-dd");
  uno.cn->Execute("Update genParametros Set ParTexto = '#' Where ParNombre = 'defBDDateCharSQLs'");
  SuiteServices dados;
  dados.clock = std::make_shared<suite::FixedClock>(kHoy, 0.5);
  clsMovFrecuente mf;
  mf.Servicios(dados);
  mf.Empresa(1);
  mf.Connect(uno.cn);
  const ContextoMF& ctx = mf.Contexto();
  EXPECT_EQ(std::tuple(ctx.parametros.caracter_fecha, ctx.parametros.idioma,
                       ctx.parametros.multiusuario, ctx.Reloj().Today()),
            std::tuple("#", 1, true, kHoy));

  mf.Connect(dos.cn);
  EXPECT_EQ(std::tuple(ctx.cn, ctx.parametros.caracter_fecha, ctx.parametros.formato_fecha,
                       ctx.servicios.clock),
            std::tuple(dos.cn, "'", "yyyy-mm-dd", dados.clock));
  // The key comes from the second database's counter, and the header is stamped by the clock.
  const std::string contador =
      "Select CntValor From genContadores Where CntTabla = 'genMovimientosFrecuentes'";
  const Variant antes_uno = Scalar(*uno.cn, contador);
  AsientoNuevo(mf, "Asiento de la segunda base", {101, 102});
  const int32_t id = mf.SaveMovimientoFrecuente();
  EXPECT_EQ(id, vb::CLng(Scalar(*dos.cn, contador)));
  EXPECT_EQ(Scalar(*uno.cn, contador), antes_uno);
  EXPECT_EQ(vb::CDate(Scalar(*dos.cn,
                             "Select MFrFechaEstado From genMovimientosFrecuentes Where "
                             "MFrID = " +
                                 std::to_string(id))),
            Date{kHoy.serial + 0.5});
}

// One side of the two-façade test: a database with its SQL date format (the second one without
// time of day, which on SQLite's text dates also changes which rates a "<=" finds) and a clock.
struct Lado {
  std::string formato;
  Date hoy;
  double hora;
};
const Lado kA{"", suite::SerialOf(2026, 11, 16), 0.25};
const Lado kB{"yyyy-mm-dd", suite::SerialOf(2026, 11, 30), 0.75};
constexpr int kRondas = 3;

struct FachadaDeLado {
  FachadaDeLado(Engine engine, const Lado& lado) : base(engine, lado.formato) {
    sv = suite::ScriptedServices::Make(base.cn, lado.hoy);
    SuiteServices bundle = sv.Bundle();
    bundle.clock = std::make_shared<suite::FixedClock>(lado.hoy, lado.hora);
    mf.Servicios(bundle);
    mf.Connect(base.cn);
    mf.Empresa(1);
  }
  BaseDemo base;
  suite::ScriptedServices sv;
  clsMovFrecuente mf;
};

// What a façade sees in round `r`: the amounts of movement 4 (rates at its due date) and 5
// (index as of today), then the schedule and state of weekly notice 22 after marking it done
// and, in the first round, of once-only notice 9, ended at the clock's moment.
void Ronda(clsMovFrecuente& mf, int r, std::vector<std::string>& visto) {
  std::ostringstream o;
  o.precision(12);
  for (int32_t id : {4, 5}) {
    mf.CleanEstructura();
    o << id << ": " << mf.SetCalculoFormulasMF(id, true) << " " << mf.UltimaTrazaFx().fecha.serial;
    const auto& renglones = *mf.EstructuraMovFrec()->Renglones();
    for (int16_t i = 1; i <= renglones.QRenglones(); ++i)
      o << " " << renglones.Renglon(i)->ImporteMF();
    o << "\n";
  }
  for (int32_t id : r == 0 ? std::vector<int32_t>{22, 9} : std::vector<int32_t>{22}) {
    o << id << ": " << mf.DarRealizadaFechaAgenda(id) << mf.LoadMF(id) << " "
      << mf.EstructuraMovFrec()->Recurrencia()->FechaProxima() << " "
      << int{mf.EstructuraMovFrec()->MovFrecuente()->Estado()} << " "
      << mf.EstructuraMovFrec()->MovFrecuente()->FechaEstado().serial << "\n";
  }
  visto.push_back(o.str());
}

std::vector<std::string> Sola(Engine engine, const Lado& lado) {
  FachadaDeLado f(engine, lado);
  std::vector<std::string> visto;
  for (int r = 0; r < kRondas; ++r) Ronda(f.mf, r, visto);
  return visto;
}

// Two façades on two databases, connected before either computes and then used side by side
// from two threads, round after round, see what each sees alone.
TEST_P(Contexto, DosFachadasEnDosHilosVenCadaUnaSuBaseYSuReloj) {
  const std::vector<std::string> sola_a = Sola(engine(), kA), sola_b = Sola(engine(), kB);
  ASSERT_NE(sola_a, sola_b);  // otherwise mixing them up would go unnoticed

  FachadaDeLado a(engine(), kA), b(engine(), kB);
  std::barrier paso(2);
  std::vector<std::string> visto_a, visto_b;
  auto hilo = [&paso](clsMovFrecuente& mf, std::vector<std::string>& visto) {
    for (int r = 0; r < kRondas; ++r) {
      paso.arrive_and_wait();
      Ronda(mf, r, visto);
    }
  };
  std::thread ta(hilo, std::ref(a.mf), std::ref(visto_a)),
      tb(hilo, std::ref(b.mf), std::ref(visto_b));
  ta.join();
  tb.join();
  EXPECT_EQ(visto_a, sola_a);
  EXPECT_EQ(visto_b, sola_b);
}

KMF_INSTANTIATE_ENGINES(Contexto);

}  // namespace
}  // namespace kivmovfrec::testing
