// DarRealizadaFechaAgenda: advancing and ending schedules, notices, linked chains and the one
// transaction around it all.
#include <algorithm>
#include <memory>
#include <string>

#include "fachada_fixture.h"
#include "platform/vb/dates.h"
#include "schedule/date_calculator.h"

namespace kivmovfrec::testing {
namespace {

// A host's calculator with only the four original operations (ProximaFechaAnclada falls back on
// ProximaFecha): the suite's, counting the calls.
class CalendarioEspia : public IDateCalculator {
 public:
  std::string EditarFrecuencia() override { return real_.EditarFrecuencia(); }
  void CalcularFinal(std::string_view code, Date inicio, int32_t& cantidad, Date& final_) override {
    inicios.push_back(inicio);
    real_.CalcularFinal(code, inicio, cantidad, final_);
  }
  Date ProximaFecha(std::string_view code, Date fecha) override {
    ++proximas;
    return real_.ProximaFecha(code, fecha);
  }
  std::string DescribirFrecuencia(std::string_view code) override {
    return real_.DescribirFrecuencia(code);
  }
  int proximas = 0;
  std::vector<Date> inicios;

 private:
  schedule::DateCalculator real_;
};

class Agendas : public Fachada {
 protected:
  // A new monthly entry that ends on `final_`, saved through the façade.
  int32_t NuevoAgendado(const std::string& inicio, const std::string& final_) {
    AsientoNuevo(mf, "Cuota del préstamo", {117});
    auto rec = mf.EstructuraMovFrec()->Recurrencia();
    rec->Frecuencia("200001");
    rec->FechaProxima(inicio);
    rec->FechaFinal(final_);
    const int32_t id = mf.SaveMovimientoFrecuenteConBloqueo();
    EXPECT_GT(id, 0);
    return id;
  }
  // Marks `veces` occurrences; checks each call succeeded and returns the last bPorUnicaVez.
  bool Realizar(int32_t id, int veces) {
    bool ultima = false;
    for (int i = 0; i < veces; ++i) EXPECT_TRUE(mf.DarRealizadaFechaAgenda(id, ultima)) << i;
    return ultima;
  }
};

// Three occurrences ending on the third, the due dates keeping the start's day of the month.
TEST_P(Agendas, TresOcurrenciasConservanElDiaYTerminanEnRealizado) {
  const char* const casos[][3] = {{"10/01/2027", "10/02/2027", "10/03/2027"},
                                  {"30/01/2024", "29/02/2024", "30/03/2024"},
                                  {"28/01/2023", "28/02/2023", "28/03/2023"}};
  for (const auto& fechas : casos) {
    const int32_t id = NuevoAgendado(fechas[0], std::string(fechas[2]) + " 18:00");
    for (int i = 1; i < 3; ++i) {
      EXPECT_FALSE(Realizar(id, 1));
      EXPECT_EQ(Agenda(id).FechaProxima(), fechas[i]) << fechas[0];
      EXPECT_EQ(Agenda(id).NumOcurrencia(), i + 1);
    }
    EXPECT_TRUE(Realizar(id, 1));  // the third was the last
    EXPECT_EQ(Estado(id), ToInt(enuEstadoMF::Realizado));
    EXPECT_EQ(vb::DateOnly(vb::CDate(Mov(id, "MFrFechaEstado"))), kHoy);
    EXPECT_EQ(Agenda(id).NumOcurrencia(), 3);
    EXPECT_EQ(Agenda(id).FechaProxima(), fechas[2]);
  }
}

TEST_P(Agendas, UltimaFechaEntreOcurrenciasTerminaTrasLaTercera) {
  auto calendario = std::make_shared<CalendarioEspia>();
  auto servicios = sv.Bundle();
  servicios.calendar = calendario;
  mf.Servicios(servicios);
  const int32_t id = NuevoAgendado("10/01/2027 18:30", "25/03/2027");
  Realizar(id, 2);
  EXPECT_EQ(Agenda(id).FechaProxima(), "10/03/2027 18:30:00");  // time of day kept
  EXPECT_EQ(Estado(id), 0);
  EXPECT_TRUE(Realizar(id, 1));
  EXPECT_EQ(Estado(id), ToInt(enuEstadoMF::Realizado));
  EXPECT_EQ(Agenda(id).NumOcurrencia(), 3);
  // The injected calculator did the stepping, and got the start date without its time.
  EXPECT_EQ(calendario->proximas, 3);
  EXPECT_EQ(calendario->inicios.at(0), suite::SerialOf(2027, 1, 10));
}

TEST_P(Agendas, SinVencimientoPostergadoYLoQueNoEstaPendiente) {
  // Demo movement 1: monthly, no end, next 10/11/2026; a last date does not end it.
  cn->Execute("Update genRecurrencias Set RecFechaFinal = RecFechaProxima Where RecID = 1");
  EXPECT_FALSE(Realizar(1, 2));
  EXPECT_EQ(Agenda(1).FechaProxima(), "10/01/2027");
  // Advancing clears a postponement (notice 8, put off one day).
  ASSERT_TRUE(mf.DarRealizadaFechaAgenda(8));
  EXPECT_TRUE(Scalar(*cn, "Select RecPostergado From genRecurrencias Where RecID = 5").IsNull());

  // Without a schedule, already done or missing: nothing changes and nothing is shown.
  const auto antes = Tablas();
  for (int32_t id : {2, 21, 4242}) EXPECT_FALSE(mf.DarRealizadaFechaAgenda(id)) << id;
  EXPECT_EQ(Tablas(), antes);
  EXPECT_TRUE(Mensajes().empty());
}

TEST_P(Agendas, AvisoUnicoTerminaYMarcaVistosLosDeSuModalidad) {
  bool ultima = false;
  ASSERT_TRUE(mf.DarRealizadaFechaAgenda(9, ultima));  // notice, once, modality 1
  EXPECT_TRUE(ultima);
  EXPECT_EQ(Estado(9), ToInt(enuEstadoMF::Realizado));
  EXPECT_EQ(vb::CLng(Mov(8, "MFrVista")), 2);   // pending, modality 1
  EXPECT_EQ(vb::CLng(Mov(22, "MFrVista")), 0);  // modality 2
  EXPECT_EQ(vb::CLng(Mov(9, "MFrVista")), 0);   // itself
}

TEST_P(Agendas, CadenaVinculadaAvanzaEnSuOrdenYElMiembroNoArrastraAlGrupo) {
  // Give member 26 (order 2 in group 25) a weekly schedule of its own.
  ASSERT_TRUE(mf.LoadMF(26));
  mf.EstructuraMovFrec()->Recurrencia()->Frecuencia("000007");
  mf.EstructuraMovFrec()->Recurrencia()->FechaProxima("12/11/2026");
  mf.EstructuraMovFrec()->Recurrencia()->SinVencimiento(1);
  ASSERT_GT(mf.SaveMovimientoFrecuenteConBloqueo(), 0);

  ASSERT_TRUE(mf.DarRealizadaFechaAgenda(25));
  EXPECT_EQ(Agenda(25).FechaProxima(), "10/12/2026");
  EXPECT_EQ(Agenda(26).FechaProxima(), "19/11/2026");

  // Marking the member alone moves only the member.
  ASSERT_TRUE(mf.DarRealizadaFechaAgenda(26));
  EXPECT_EQ(Agenda(25).FechaProxima(), "10/12/2026");
  EXPECT_EQ(Agenda(26).FechaProxima(), "26/11/2026");

  // A member in the bin is skipped.
  cn->Execute("Update genMovimientosFrecuentes Set MFrEstado = 9 Where MFrID = 26");
  ASSERT_TRUE(mf.DarRealizadaFechaAgenda(25));
  EXPECT_EQ(Agenda(25).FechaProxima(), "10/01/2027");
  EXPECT_EQ(Agenda(26).FechaProxima(), "26/11/2026");
}

// The agenda computes its amounts on a movement of its own: the current movement, its schedule
// and the last trace stay as they were. (What is computed is checked through movfrec agenda.)
TEST_P(Agendas, AgendaConImportesNoTocaElMovimientoActual) {
  ASSERT_TRUE(mf.LoadMF(2));
  const auto actual = mf.EstructuraMovFrec();
  const std::string proxima = actual->Recurrencia()->FechaProxima();
  const ResultadoAgenda r =
      mf.Agenda(suite::SerialOf(2026, 11, 1), suite::SerialOf(2027, 1, 31), true);
  ASSERT_TRUE(std::any_of(r.ocurrencias.begin(), r.ocurrencias.end(),
                          [](const OcurrenciaAgenda& o) { return o.importes && o.importes->ok; }));
  EXPECT_EQ(mf.EstructuraMovFrec(), actual);
  EXPECT_EQ(actual->MovFrecuente()->ID(), 2);
  EXPECT_EQ(actual->Recurrencia()->FechaProxima(), proxima);
  EXPECT_TRUE(mf.UltimaTrazaFx().lineas.empty());
}

KMF_INSTANTIATE_ENGINES(Agendas);

}  // namespace
}  // namespace kivmovfrec::testing
