// The statements the component really issues, recorded while its code paths work on the demo
// company: loading and computing every movement, showing and reading back every formula through
// the catalogue's lookups, the main job, marking occurrences done and the user picker. None may
// fail on either engine, also where the component traps the error and goes on (a lookup that
// fails finds nothing, a rate that fails falls back), which no outcome would reveal.
#include <memory>
#include <string>
#include <vector>

#include "api/ejecucion.h"
#include "fachada_fixture.h"
#include "formula/catalogo_fx.h"
#include "formula/formula_mf.h"
#include "support/recording_connection.h"
#include "ui/user_picker/eleccion_usuarios.h"

namespace kivmovfrec::testing {
namespace {

class Sentencias : public Fachada {};

TEST_P(Sentencias, NingunaFallaEnNingunMotor) {
  auto rec = std::make_shared<RecordingConnection>(cn);
  FachadaPropia propia(rec);
  clsMovFrecuente& f = propia.mf;
  std::vector<int32_t> ids;
  for (auto rs = cn->OpenResultset("Select MFrID From genMovimientosFrecuentes Order By MFrID");
       !rs->Eof(); rs->MoveNext()) {
    ids.push_back(vb::CLng(rs->Get(0)));
  }
  int formulas = 0;
  for (const int32_t id : ids) {
    ASSERT_TRUE(f.LoadMF(id)) << id;
    const auto mov = f.EstructuraMovFrec();
    const formula::clsFormulaMF fm(
        rec, {.empresa = mov->MovFrecuente()->Empresa(), .id_mov = id, .mostrar_codigo_cta = true});
    for (int16_t i = 1; i <= mov->Renglones()->QRenglones(); ++i) {
      const std::string guardada = mov->Renglones()->Renglon(i)->Formula();
      if (guardada.empty()) continue;
      EXPECT_EQ(fm.AGuardada(fm.AVisible(guardada)), guardada) << id;
      ++formulas;
    }
    f.SetCalculoFormulasMF(id, true);  // some cannot compute alone; their statements still run
  }
  EXPECT_GT(formulas, 20);
  const formula::clsFormulaMF fm(rec, {.empresa = 1, .id_mov = 1, .mostrar_codigo_cta = true});
  for (const auto& e : formula::clsFxMovFrec::Entradas()) {
    for (const std::string_view consulta : {e.consulta1, e.consulta2}) {
      if (consulta.empty() || consulta.front() == '[') continue;  // none, or a marker word
      EXPECT_FALSE(fm.BuscarConsulta(consulta, "ninguno así", 1)) << consulta;
    }
  }
  const size_t antes = rec->statements().size();
  const auto corrida = api::EjecutarVencidos(f, *rec, 1, suite::SerialOf(2026, 12, 31));
  EXPECT_TRUE(corrida.completa()) << corrida.detenida;
  // The run reads the company's parameters and the currencies once, and the movement of each
  // member it executes once (the scheduled one's read serves the check and the evaluator).
  size_t parametros = 0, monedas = 0, cargas = 0, miembros = 0;
  for (size_t i = antes; i < rec->statements().size(); ++i) {
    const std::string& sql = rec->statements()[i].sql;
    parametros += sql.find("EmpPrms") != std::string::npos;
    monedas += sql.find("From genMonedas") != std::string::npos;
    cargas += sql.find("genRenglonMovFrecuentes.*") != std::string::npos;
  }
  for (const auto& o : corrida.ocurrencias) {
    ASSERT_EQ(o.estado, EstadoOcurrencia::Ejecutada) << o.movimiento << ": " << o.error;
    miembros += o.documentos.size();
  }
  EXPECT_EQ(parametros, 1u);
  EXPECT_EQ(monedas, 1u);
  EXPECT_EQ(cargas, miembros);
  EXPECT_GT(miembros, corrida.ocurrencias.size());  // a linked group ran too
  for (const int32_t id : {8, 22, 10}) EXPECT_TRUE(f.DarRealizadaFechaAgenda(id)) << id;
  EXPECT_EQ(ui::CargarUsuarios(*rec, "1, 4").size(), 3u);

  ASSERT_GT(rec->statements().size(), 100u);
  for (const auto& s : rec->statements()) {
    EXPECT_EQ(s.error, "") << s.kind << ": " << s.sql
                           << "\n  como se ejecutó: " << cn->Translate(s.sql);
  }
}

KMF_INSTANTIATE_ENGINES(Sentencias);

}  // namespace
}  // namespace kivmovfrec::testing
