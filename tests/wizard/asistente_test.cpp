// The movement wizard frmWMovFrec played by step scripts on the demo company of every engine:
// entries saved and read back, the frequency fields kept in step by the date calculator, every
// refusal with its message, panel and focus (and nothing written), notices with their users, a
// private contact made public, and the link checks.
//
// Demo data used: accounts 101 "1.1.01 Caja", 102 "1.1.02 Banco Nación cuenta corriente", 131
// "4.1.01 Ventas"; movement 1 is a scheduled entry (schedule 1), 2 and 3 plain entries; voucher
// type 1 "Factura A" has obligatory numbering; contact 2 "Transportes Martínez" is private.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kivmovfrec/guion.h"
#include "kivmovfrec/vb.h"
#include "platform/controls/memoria.h"
#include "platform/suite/clock.h"
#include "platform/suite/scripted.h"
#include "platform/vb/format.h"
#include "resources/msg.h"
#include "schedule/date_calculator.h"
#include "support/db_snapshot.h"
#include "support/demo_engine.h"
#include "ui/wizard/frm_wmovfrec.h"

namespace kivmovfrec::ui {
namespace {

using controles::IControl;

const Date kHoy = suite::SerialOf(2026, 11, 10);

std::vector<int> Numeros(const InformeGuion& i) {
  std::vector<int> r;
  for (const MensajeGuion& m : i.mensajes) r.push_back(m.numero);
  return r;
}

// A new entry's general panel filled, then the lines Caja 1000 on the debit side and the
// difference line typed on the credit side of Ventas, then `resto`.
std::string AsientoConLineas(const std::string& agendado, const std::string& resto) {
  return R"([{"escribir": "tNombre", "texto": "Venta mensual"},
    {"escribir": "tLeyenda", "texto": "Venta del mes"},
    {"elegir": "cfLibro", "opcion": "Diario de Ventas"},
    {"elegir": "cfAgendado", "opcion": ")" +
         agendado + R"("},
    {"pulsar": "bfSiguiente"},
    {"escribir": "tEditCta", "texto": "1.1.01"}, {"escribir": "ocEditD", "texto": "1000"},
    {"pulsar": "bfEditOK"},
    {"escribir": "tEditCta", "texto": "1.1.02"}, {"escribir": "ocEditD", "texto": "210"},
    {"pulsar": "bfEditOK"},
    {"escribir": "tEditCta", "texto": "4.1.01"}, {"escribir": "ocEditH", "texto": "0"},
    {"pulsar": "hlFormula"},
    {"pulsar": "bfEditOK"}, )" +
         resto + "]";
}

class Asistente : public testing::DemoEngineTest {
 protected:
  void SetUpDatabase() override {
    DemoEngineTest::SetUpDatabase();
    sv = suite::ScriptedServices::Make(cn, kHoy);
  }

  // Plays `pasos` on the wizard over `mf` (Tipo `tipo`; a stored movement when `id` > 0).
  InformeGuion Correr(const std::string& pasos, int tipo = 1, int32_t id = 0) {
    auto guion = GuionDialogos::Leer(pasos);
    ctx.servicios = sv.Bundle();
    guion->Instalar(ctx.servicios);
    const int32_t r = Mostrar(tipo, id);
    InformeGuion i = guion->Informe();
    EXPECT_EQ(i.resultado, r);
    return i;
  }
  // The wizard played by `persona` on an in-memory form (to read what a report does not show).
  int32_t Jugar(const std::function<void(controles::memoria::Formulario&)>& persona, int tipo,
                int32_t id = 0) {
    ctx.servicios = sv.Bundle();
    ctx.servicios.formularios = std::make_shared<controles::memoria::Fabrica>(persona);
    return Mostrar(tipo, id);
  }
  int32_t Mostrar(int tipo, int32_t id) {
    mf = clsMFTipo(sv.clock);
    if (id > 0) {
      EXPECT_TRUE(mf.Load(*cn, id));
    }
    mf.MovFrecuente()->Tipo(static_cast<enuTipoMovFrec>(tipo));
    ctx.cn = cn;
    DependenciasWizard dep;
    dep.calendario = &calendario;
    dep.reportar = [this](int accion, const std::exception& e) {
      errores.push_back(std::to_string(accion) + ": " + e.what());
    };
    dep.guardar = [this](clsMFTipo& m) { return m.Save(*cn, *sv.db, 1, ctx.parametros); };
    dep.editar_formula = [this](int, const std::string&) { return formula; };
    frmWMovFrec wizard(ctx, 1, std::move(dep));
    const int32_t r = wizard.Mostrar(mf, 1);
    EXPECT_TRUE(errores.empty()) << errores.front();
    return r;
  }
  // One value of the database.
  std::string Valor(const std::string& sql) {
    auto rs = cn->OpenReadOnly(sql);
    if (rs->Eof()) return "(ninguna fila)";
    const Variant v = rs->Get(0);
    return v.IsNull() ? "Null" : vb::CStr(v);
  }
  testing::Snapshot Tablas() {
    return testing::TakeSnapshot(*cn, {"genMovimientosFrecuentes", "genRenglonMovFrecuentes",
                                       "genRecurrencias", "genEntes", "genAvisosUsuarios"});
  }

  suite::ScriptedServices sv;
  // Its frequency editor answers with `compuesta` (nothing: cancelled).
  struct Editor : schedule::IFrequencyEditor {
    std::optional<schedule::Frequency> respuesta;
    std::optional<schedule::Frequency> Edit(const schedule::Frequency&) override {
      return respuesta;
    }
  };
  std::shared_ptr<Editor> editor = std::make_shared<Editor>();
  schedule::DateCalculator calendario{editor};
  ContextoMF ctx;
  clsMFTipo mf;
  std::string formula = "[10:]";  // what the formula editor hands back
  std::vector<std::string> errores;
};

TEST_P(Asistente, AFrequentEntryWithADifferenceLineIsSavedAndReadBackTheSame) {
  const InformeGuion i = Correr(AsientoConLineas("Frecuente", R"(
    {"pulsar": "bfAyuda"}, {"pulsar": "bfAnterior"}, {"pulsar": "bfAyuda"},
    {"pulsar": "bfFinalizar"}, {"responder": "si"})"));
  ASSERT_EQ(i.error, "");
  ASSERT_GT(i.resultado, 0);
  EXPECT_EQ(i.formulario, "frmWMovFrec");
  EXPECT_EQ(Numeros(i), std::vector<int>{msg::kConfirmaGrabarAsiento});
  EXPECT_EQ(i.mensajes[0].titulo, "Asistente de Asientos");
  EXPECT_EQ(i.ayuda, (std::vector<int>{327, 326})) << "asiFreCta, then asiFreNom";

  clsMFTipo leido;
  ASSERT_TRUE(leido.Load(*cn, i.resultado));
  const clsRegMovimientoFrecuente& m = *leido.MovFrecuente();
  EXPECT_EQ(m.Nombre(), "Venta mensual");
  EXPECT_EQ(m.Memo(), "Venta del mes");
  EXPECT_EQ(m.Modalidad(), 2);
  EXPECT_EQ(m.TipoImporte(), 1);
  EXPECT_EQ(m.UsuarioAutoriza(), 1);
  EXPECT_EQ(m.UsuarioAlta(), 1);
  EXPECT_EQ(m.Empresa(), 1);
  EXPECT_EQ(m.Recurrencia(), 0);
  const clsRenglonesMF& l = *leido.Renglones();
  ASSERT_EQ(l.QRenglones(), 3);
  const std::vector<std::tuple<int32_t, bool, std::string>> esperado = {
      {101, true, ""}, {102, true, ""}, {131, false, "[10:]"}};
  for (int16_t n = 1; n <= 3; ++n) {
    const clsRegRenglonMF& r = *l.Renglon(n);
    EXPECT_EQ(std::tuple(r.Cuenta(), r.AlDebe(), r.Formula()), esperado[n - 1]) << n;
  }
  EXPECT_DOUBLE_EQ(l.Renglon(2)->ImporteMF(), 210);

  // Opened again and finished unchanged, it stays the same movement with the same lines.
  const InformeGuion otra =
      Correr(R"([{"pulsar": "bfFinalizar"}, {"responder": "si"}])", 1, i.resultado);
  ASSERT_EQ(otra.error, "");
  EXPECT_EQ(otra.resultado, i.resultado);
  clsMFTipo de_nuevo;
  ASSERT_TRUE(de_nuevo.Load(*cn, i.resultado));
  EXPECT_EQ(de_nuevo.Renglones()->QRenglones(), 3);
  EXPECT_EQ(de_nuevo.Renglones()->Renglon(3)->Formula(), "[10:]");
  EXPECT_EQ(de_nuevo.MovFrecuente()->Modalidad(), 2);
}

TEST_P(Asistente, AScheduledEntryTakesItsLastDateFromTheCountAndSavesItsSchedule) {
  std::string vence_caption, hasta;
  const InformeGuion i = Correr(AsientoConLineas("Agendado", R"(
    {"pulsar": "bfSiguiente"},
    {"elegir": "cfFrecuencia", "opcion": "Sólo esta vez"},
    {"escribir": "dtVence", "texto": "10/12/2026"},
    {"elegir": "cfFrecuencia", "opcion": "Mensual"},
    {"escribir": "tHora", "texto": "09:30"},
    {"escribir": "tQOcurre", "texto": "12"},
    {"pulsar": "bfAyuda"},
    {"pulsar": "bfFinalizar"}, {"responder": "si"})"));
  ASSERT_EQ(i.error, "");
  ASSERT_GT(i.resultado, 0);
  EXPECT_EQ(i.panel, 3);
  EXPECT_EQ(i.ayuda, std::vector<int>{323}) << "asiAgeFrec";

  clsMFTipo leido;
  ASSERT_TRUE(leido.Load(*cn, i.resultado));
  const clsRegRecurrencia& rec = *leido.Recurrencia();
  EXPECT_GT(leido.MovFrecuente()->Recurrencia(), 0);
  EXPECT_EQ(rec.Frecuencia(), "200001");
  EXPECT_EQ(rec.SinVencimiento(), 0);
  EXPECT_EQ(vb::FormatDate(*vb::ParseDate(rec.FechaProxima()), "dd/mm/yyyy hh:nn"),
            "10/12/2026 09:30");
  EXPECT_EQ(vb::FormatDate(*vb::ParseDate(rec.FechaFinal()), "dd/mm/yyyy"), "10/11/2027")
      << "twelve monthly due dates from 10/12/2026";
  EXPECT_EQ(rec.NumOcurrencia(), 1);
  EXPECT_FLOAT_EQ(rec.NotificarDias(), 0);
}

// An entry's general panel as given, then the lines `debe` on Caja and `haber` on Ventas (a
// blank amount leaves the line out), then `resto`.
std::string Asiento(const std::string& general, const std::string& debe, const std::string& haber,
                    const std::string& resto) {
  std::string s = "[" + general + R"(, {"pulsar": "bfSiguiente"})";
  if (!debe.empty())
    s += R"(, {"escribir": "tEditCta", "texto": "1.1.01"}, {"escribir": "ocEditD", "texto": ")" +
         debe + R"("}, {"pulsar": "bfEditOK"})";
  if (!haber.empty())
    s += R"(, {"escribir": "tEditCta", "texto": "4.1.01"}, {"escribir": "ocEditH", "texto": ")" +
         haber + R"("}, {"pulsar": "bfEditOK"})";
  return s + ", " + resto + R"(, {"pulsar": "bfFinalizar"}, {"responder": "aceptar"}])";
}

// Each refusal is shown on the panel holding the field at fault, with the focus on it, and
// nothing is written.
TEST_P(Asistente, EachRefusalShowsItsPanelAndFieldAndWritesNothing) {
  const std::string nombre = R"({"escribir": "tNombre", "texto": "Prueba"})";
  const std::string agendado = nombre + R"(, {"elegir": "cfAgendado", "opcion": "Agendado"})";
  const std::string fijo = agendado + R"(, {"elegir": "cfTipoImporte", "opcion": "Fijo"})";
  const std::string frecuencia = R"({"pulsar": "bfSiguiente"},
      {"elegir": "cfFrecuencia", "opcion": "Mensual"},
      {"escribir": "dtVence", "texto": "10/12/2026"}, {"escribir": "tHora", "texto": "09:00"})";
  struct Caso {
    const char* nombre;
    std::string pasos;
    int mensaje;
    int panel;
    const char* foco;
    int tipo = 1;
  };
  const std::vector<Caso> casos = {
      {"sin nombre",
       Asiento(R"({"escribir": "tLeyenda", "texto": "x"})", "10", "10",
               R"({"pulsar": "bfAnterior"})"),
       msg::kCampoNoValido, 1, "tNombre"},
      {"comilla en la leyenda",
       Asiento(nombre + R"(, {"escribir": "tLeyenda", "texto": "O'Brien"})", "10", "10",
               R"({"pulsar": "bfAnterior"})"),
       msg::kCampoNoValido, 1, "tLeyenda"},
      {"sólo al debe", Asiento(nombre, "10", "", R"({"pulsar": "bfAnterior"})"),
       msg::kCuentaDebeYHaber, 2, "vsCuentas"},
      {"totales distintos", Asiento(nombre, "1000", "900", R"({"pulsar": "bfAnterior"})"),
       msg::kSumatoriaNoCoincide, 2, "vsCuentas"},
      {"sin frecuencia", Asiento(agendado, "10", "10", R"({"pulsar": "bfSiguiente"})"),
       msg::kCampoNoValido, 3, "cfFrecuencia"},
      {"hora que no es hora",
       Asiento(agendado, "10", "10", frecuencia + R"(, {"escribir": "tHora", "texto": "25:00"})"),
       msg::kCampoNoValido, 3, "tHora"},
      {"aviso de un importe fijo",
       Asiento(fijo, "10", "10",
               frecuencia + R"(, {"escribir": "dtNotificar", "texto": "05/12/2026"})"),
       msg::kNotificacionImporteFijo, 3, "dtNotificar"},
      {"aviso después del vencimiento", Asiento(agendado, "10", "10", frecuencia + R"(,
          {"escribir": "dtNotificar", "texto": "10/12/2026"},
          {"escribir": "tHoraNot", "texto": "09:00"})"),
       msg::kNotificacionAntesDeVencimiento, 3, "dtNotificar"},
      {"última fecha antes del vencimiento", Asiento(agendado, "10", "10", frecuencia + R"(,
          {"escribir": "dtHasta", "texto": "01/12/2026"}, {"responder": "aceptar"},
          {"escribir": "dtHasta", "texto": "xx"})"),
       msg::kCampoNoValido, 3, "dtHasta"},
      {"factura A automática", R"js([{"escribir": "tNombre", "texto": "Factura"},
          {"escribir": "tEnte", "texto": "1"},
          {"elegir": "cfTipoComprobante", "opcion": "Factura A"},
          {"elegir": "cfTipoImporte", "opcion": "Automático"},
          {"elegir": "cfMoneda", "opcion": "Peso argentino ($)"},
          {"pulsar": "bfFinalizar"}, {"responder": "aceptar"}])js",
       msg::kTipoImporteNumeracion, 1, "cfTipoImporte", 2},
  };
  const testing::Snapshot antes = Tablas();
  for (const Caso& c : casos) {
    SCOPED_TRACE(c.nombre);
    const InformeGuion i = Correr(c.pasos, c.tipo);
    EXPECT_EQ(i.error, "");
    ASSERT_FALSE(i.mensajes.empty());
    EXPECT_EQ(i.mensajes.back().numero, c.mensaje);
    EXPECT_EQ(i.mensajes.back().icono, "exclamacion");
    EXPECT_EQ(i.panel, c.panel);
    EXPECT_EQ(i.foco, c.foco);
    EXPECT_EQ(i.resultado, 0);
  }
  EXPECT_EQ(Tablas(), antes);
}

// A last date before the first due date and a notice too far ahead are refused as they are
// typed; an unreadable count is refused when finishing.
TEST_P(Asistente, TheFrequencyFieldsRefuseWhatIsTyped) {
  const InformeGuion hasta = Correr(Asiento(R"({"escribir": "tNombre", "texto": "Prueba"},
      {"elegir": "cfAgendado", "opcion": "Agendado"})",
                                            "10", "10", R"({"pulsar": "bfSiguiente"},
      {"elegir": "cfFrecuencia", "opcion": "Mensual"},
      {"escribir": "dtVence", "texto": "10/12/2026"}, {"escribir": "tQOcurre", "texto": "3"},
      {"escribir": "dtHasta", "texto": "01/12/2026"}, {"responder": "aceptar"},
      {"escribir": "dtNotificar", "texto": "01/01/2026"}, {"responder": "aceptar"},
      {"escribir": "dtNotificar", "texto": "01/12/2026"},
      {"escribir": "tQOcurre", "texto": "x"})"));
  EXPECT_EQ(hasta.error, "");
  EXPECT_EQ(Numeros(hasta), (std::vector<int>{msg::kFechaHastaMenor, msg::kDiferenciaNotificar,
                                              msg::kCampoNoValido}));
  EXPECT_EQ(hasta.foco, "tQOcurre");
}

TEST_P(Asistente, ANoticeForTwoUsersIsLinkedToThemAndTheSameUserTwiceIsRefused) {
  const std::string aviso = R"([
    {"escribir": "tNombre", "texto": "Pagar monotributo"},
    {"escribir": "tMemoAviso", "texto": "Cuota del mes"},
    {"marcar": "chSinEmpresa", "valor": false},
    {"elegir": "cfFrecuencia", "opcion": "Mensual"},
    {"escribir": "dtVence", "texto": "20/12/2026"}, {"escribir": "tHora", "texto": "10:00"},
    {"escribir": "dtNotificar", "texto": "18/12/2026"},
    {"escribir": "tHoraNot", "texto": "08:00"}, )";
  const InformeGuion dos = Correr(aviso + R"(
    {"escribir": "tEnte", "texto": "2, 2"}, {"pulsar": "bfFinalizar"}, {"responder": "aceptar"}])",
                                  3);
  EXPECT_EQ(Numeros(dos), std::vector<int>{msg::kUsuariosDuplicados});
  EXPECT_EQ(dos.mensajes[0].titulo, "Avisos");
  EXPECT_EQ(dos.foco, "tEnte");
  EXPECT_EQ(dos.resultado, 0);

  // The picker's rows: admin (1), cfernandez (4), jperez (2).
  const InformeGuion i = Correr(aviso + R"(
    {"pulsar": "hlUsuarios"},
    {"tildar": "vsGrid", "fila": 1, "columna": "Para"},
    {"tildar": "vsGrid", "fila": 3, "columna": "Para"}, {"pulsar": "&Aceptar"},
    {"pulsar": "bfAyuda"}, {"pulsar": "bfFinalizar"}, {"responder": "si"}])",
                                3);
  ASSERT_EQ(i.error, "");
  ASSERT_GT(i.resultado, 0);
  EXPECT_EQ(Numeros(i), std::vector<int>{msg::kConfirmaGrabarAviso});
  EXPECT_EQ(i.ayuda, std::vector<int>{330});
  ASSERT_EQ(sv.db->links().size(), 1u);
  EXPECT_EQ(sv.db->links()[0].aviso, i.resultado);
  EXPECT_EQ(sv.db->links()[0].usuarios, "1,2");
  const std::string id = std::to_string(i.resultado);
  EXPECT_EQ(Valor("Select Count(*) From genAvisosUsuarios Where AvUAviso = " + id +
                  " And AvUUsuario In (1, 2)"),
            "2");
  EXPECT_EQ(Valor("Select MFrEmpresa From genMovimientosFrecuentes Where MFrID = " + id), "0");

  clsMFTipo leido;
  ASSERT_TRUE(leido.Load(*cn, i.resultado));
  EXPECT_EQ(leido.MovFrecuente()->Memo(), "Cuota del mes");
  // Notified two days and two hours before the due moment.
  EXPECT_NEAR(leido.Recurrencia()->NotificarDias(), 2 + 2.0 / 24, 1e-5);
  EXPECT_EQ(leido.Recurrencia()->SinVencimiento(), 1);
}

TEST_P(Asistente, APrivateContactBecomesPublicOnlyWhenTheVoucherIsSavedAfterYes) {
  const auto comprobante = [](const char* respuesta, const char* fin) {
    return std::string(R"js([
      {"escribir": "tNombre", "texto": "Flete mensual"},
      {"escribir": "tEnte", "texto": "Transportes Martínez"}, {"responder": ")js") +
           respuesta + R"js("},
      {"elegir": "cfTipoComprobante", "opcion": "Factura de proveedor"},
      {"elegir": "cfMoneda", "opcion": "Peso argentino ($)"},
      {"pulsar": "bfSiguiente"},
      {"escribir": "tEditCta", "texto": "1.1.01"}, {"escribir": "ocEditD", "texto": "100"},
      {"pulsar": "bfEditOK"},
      {"escribir": "tEditCta", "texto": "4.1.01"}, {"escribir": "ocEditH", "texto": "100"},
      {"pulsar": "bfEditOK"}, )js" +
           fin + "]";
  };
  const std::string owner = "Select EntOwner From genEntes Where EntID = 2";
  const InformeGuion cancelado = Correr(comprobante("si", R"({"pulsar": "bfCancelar"})"), 2);
  EXPECT_EQ(cancelado.error, "");
  ASSERT_FALSE(cancelado.mensajes.empty());
  EXPECT_EQ(cancelado.mensajes[0].numero, msg::kContactoPrivado);
  EXPECT_EQ(
      cancelado.mensajes[0].texto.rfind("“Transportes Martínez” es un contacto privado.\n", 0), 0u);
  EXPECT_EQ(Valor(owner), "1") << "nothing is written until the voucher is saved";

  const InformeGuion si =
      Correr(comprobante("si", R"({"pulsar": "bfFinalizar"}, {"responder": "si"})"), 2);
  ASSERT_GT(si.resultado, 0);
  EXPECT_EQ(Numeros(si),
            (std::vector<int>{msg::kContactoPrivado, msg::kConfirmaGrabarComprobante}));
  EXPECT_EQ(Valor(owner), "Null");
  EXPECT_EQ(Valor("Select MFrEnte From genMovimientosFrecuentes Where MFrID = " +
                  std::to_string(si.resultado)),
            "2");
}

// Movement 1 is scheduled; 2 and 3 are not.
TEST_P(Asistente, TheLinkChecksRefuseTheSaveAndTheGroupIsRewrittenFromItsLinks) {
  const std::string agendar = R"([{"elegir": "cfAgendado", "opcion": "Agendado"},
    {"pulsar": "bfSiguiente"}, {"pulsar": "bfSiguiente"},
    {"elegir": "cfFrecuencia", "opcion": "Mensual"},
    {"escribir": "dtVence", "texto": "10/12/2026"},
    {"pulsar": "bfFinalizar"}, {"responder": "si"}, {"responder": "aceptar"}])";
  cn->Execute(
      "Update genMovimientosFrecuentes Set MFrMovVinculado = 2, MFrMVOrden = 1 "
      "Where MFrID In (1, 2)");
  cn->Execute("Update genMovimientosFrecuentes Set MFrMVOrden = 2 Where MFrID = 1");
  const testing::Snapshot antes = Tablas();
  const InformeGuion dos_agendados = Correr(agendar, 1, 2);
  EXPECT_EQ(dos_agendados.error, "");
  EXPECT_EQ(Numeros(dos_agendados),
            (std::vector<int>{msg::kConfirmaGrabarAsiento, msg::kMasDeUnAgendado}));
  EXPECT_EQ(dos_agendados.panel, 1);
  EXPECT_EQ(dos_agendados.foco, "hlVincular");
  EXPECT_EQ(Tablas(), antes);

  // 3 heads a group with 2 without carrying the group itself; 3 is sent to the bin meanwhile.
  cn->Execute(
      "Update genMovimientosFrecuentes Set MFrMovVinculado = Null, MFrMVOrden = Null "
      "Where MFrID = 1");
  cn->Execute(
      "Update genMovimientosFrecuentes Set MFrMovVinculado = 3, MFrMVOrden = 2 "
      "Where MFrID = 2");
  cn->Execute("Update genMovimientosFrecuentes Set MFrMVOrden = 1, MFrEstado = 9 Where MFrID = 3");
  const std::string guardar = R"([{"pulsar": "bfFinalizar"}, {"responder": "si"},
                                  {"responder": "aceptar"}])";
  const InformeGuion eliminado = Correr(guardar, 1, 2);
  EXPECT_EQ(Numeros(eliminado),
            (std::vector<int>{msg::kConfirmaGrabarAsiento, msg::kVinculadoEliminado}));
  EXPECT_EQ(eliminado.resultado, 0);

  cn->Execute("Update genMovimientosFrecuentes Set MFrEstado = 0 Where MFrID = 3");
  const InformeGuion ok = Correr(R"([{"pulsar": "bfFinalizar"}, {"responder": "si"}])", 1, 2);
  ASSERT_EQ(ok.resultado, 2);
  EXPECT_EQ(Valor("Select MFrMovVinculado From genMovimientosFrecuentes Where MFrID = 3"), "3")
      << "the head now carries its group";
  EXPECT_EQ(Valor("Select MFrMovVinculado From genMovimientosFrecuentes Where MFrID = 2"), "3");
  EXPECT_EQ(Valor("Select MFrMVOrden From genMovimientosFrecuentes Where MFrID = 2"), "2");
  EXPECT_EQ(mf.MovFrecuente()->MovVinculado(), 3);
}

// Movement 1 is scheduled; a linked movement with the same schedule loses it with 1's when the
// person agrees.
TEST_P(Asistente, RemovingAScheduleOffersToRemoveTheLinkedOnesThatWereTheSame) {
  const auto copiar_agenda = [&](const char* de, const char* a) {
    const std::string columnas =
        "RecFechaInicio, RecFechaProxima, RecFrecuencia, RecFechaFinal, RecNumOcurrencia, "
        "RecPostergado, RecSinVencimiento, RecNotificar, RecEraNotificacion";
    cn->Execute("Insert Into genRecurrencias (RecID, " + columnas + ") Select " + a + ", " +
                columnas + " From genRecurrencias Where RecID = " + de);
  };
  copiar_agenda("1", "900");
  cn->Execute(
      "Update genMovimientosFrecuentes Set MFrMovVinculado = 1, MFrMVOrden = 1 "
      "Where MFrID = 1");
  cn->Execute(
      "Update genMovimientosFrecuentes Set MFrMovVinculado = 1, MFrMVOrden = 2, "
      "MFrRecurrencia = 900 Where MFrID = 2");
  const std::string frecuente = R"([{"elegir": "cfAgendado", "opcion": "Frecuente"},
    {"pulsar": "bfFinalizar"}, {"responder": "si"}, {"responder": ")";
  const InformeGuion no = Correr(frecuente + R"(no"}])", 1, 1);
  ASSERT_EQ(no.resultado, 1);
  EXPECT_EQ(Numeros(no), (std::vector<int>{msg::kConfirmaGrabarAsiento, msg::kSeEliminoAgenda}));
  EXPECT_EQ(Valor("Select MFrRecurrencia From genMovimientosFrecuentes Where MFrID = 1"), "Null");
  EXPECT_EQ(Valor("Select MFrRecurrencia From genMovimientosFrecuentes Where MFrID = 2"), "900");

  // Scheduled again like 2, then removed once more with Yes.
  cn->Execute("Update genMovimientosFrecuentes Set MFrRecurrencia = 1 Where MFrID = 1");
  copiar_agenda("900", "1");
  const InformeGuion si = Correr(frecuente + R"(si"}])", 1, 1);
  ASSERT_EQ(si.resultado, 1);
  EXPECT_EQ(Valor("Select MFrRecurrencia From genMovimientosFrecuentes Where MFrID = 2"), "Null");
  EXPECT_EQ(Valor("Select Count(*) From genRecurrencias Where RecID In (1, 900)"), "0");
  EXPECT_EQ(Valor("Select MFrMovVinculado From genMovimientosFrecuentes Where MFrID = 2"), "1");
}

// Notice 8: due 20/11/2026 10:00 monthly since 20/07/2026, occurrence 5, notified 3 days ahead
// and put off 1 day.
TEST_P(Asistente, TheScheduleLabelsAndTheFrequencyCaptionsFollowWhatIsChosen) {
  std::map<std::string, std::string> visto;
  auto leer = [&](controles::memoria::Formulario& f, const std::string& clave, const char* c) {
    IControl& control = *f.Buscar(c);
    auto* t = dynamic_cast<controles::ITexto*>(&control);
    visto[clave] = control.Caption() + (t ? "|" + t->Text() : "");
  };
  Jugar(
      [&](controles::memoria::Formulario& f) {
        for (const char* c : {"lbInicio", "lbYaOcurrio", "lPostergado", "hlOcurre", "dtVence",
                              "tHora", "dtNotificar", "tHoraNot", "dtHasta"})
          leer(f, c, c);
        f.Elegir("cfFrecuencia", "Sólo esta vez");
        leer(f, "una vez", "dtVence");
        f.Elegir("cfFrecuencia", "Definido ...");  // the editor is cancelled
        leer(f, "cancelado", "dtVence");
        f.Elegir("cfFrecuencia", "Quincenal");
        leer(f, "quincenal", "hlOcurre");
        f.Pulsar("bfCancelar");
      },
      3, 8);
  const std::map<std::string, std::string> esperado = {
      {"lbInicio", "Se inició el Lunes, 20 de Julio de 2026"},
      {"lbYaOcurrio", "Ya ocurrió 4 veces."},
      {"lPostergado", "Postergado 18/11/2026"},
      {"hlOcurre", "Todos los meses"},
      {"dtVence", "Primer &vencimiento:|20/11/2026"},
      {"tHora", "&Hora:|10:00"},
      {"dtNotificar", "No&tificar:|17/11/2026"},
      {"tHoraNot", "|10:00"},
      {"dtHasta", "Ú&ltima fecha:|"},
      {"una vez", "&Vencimiento|20/11/2026"},
      {"cancelado", "&Vencimiento|20/11/2026"},
      {"quincenal", "Cada 15 días"},
  };
  EXPECT_EQ(visto, esperado);
  EXPECT_TRUE(sv.messages->shown().empty());
}

// cfTipo shows who owns the entry and cannot be changed.
TEST_P(Asistente, TheEntrysOwnerIsShownAndNotEditable) {
  std::vector<std::string> visto;
  const auto persona = [&](controles::memoria::Formulario& f) {
    auto& tipo = static_cast<controles::ILista&>(*f.Buscar("cfTipo"));
    visto.push_back(tipo.Caption() + "|" + tipo.Item(tipo.Indice()) + "|" +
                    (tipo.Enabled() ? "editable" : "fijo"));
    f.Pulsar("bfCancelar");
  };
  Jugar(persona, 1, 2);
  cn->Execute("Update genMovimientosFrecuentes Set MFrDelSistema = 1 Where MFrID = 2");
  Jugar(persona, 1, 2);
  EXPECT_EQ(visto,
            (std::vector<std::string>{"Ti&po:|Del usuario|fijo", "Ti&po:|Del sistema|fijo"}));
}

// "Definido ...": a cancelled editor leaves a list without a frequency and says so; a rule
// composed there falls due on its first date on or after the day typed.
TEST_P(Asistente, AComposedRuleIsKeptAndItsFirstDueDateMovedOntoTheRule) {
  const std::string aviso = R"([{"escribir": "tNombre", "texto": "Reunión mensual"},
    {"escribir": "tEnte", "texto": "1"},
    {"elegir": "cfFrecuencia", "opcion": "Definido ..."}, )";
  const InformeGuion cancelado = Correr(aviso + R"({"responder": "aceptar"}])", 3);
  EXPECT_EQ(Numeros(cancelado), std::vector<int>{msg::kEditeFrecuencia});
  EXPECT_EQ(cancelado.foco, "cfFrecuencia");

  editor->respuesta = schedule::Frequency{schedule::FrequencyUnit::WeekdayOfMonth, 1, 2, 1};
  const InformeGuion i = Correr(aviso + R"(
    {"escribir": "dtVence", "texto": "01/12/2026"}, {"escribir": "tQOcurre", "texto": "2"},
    {"pulsar": "bfFinalizar"}, {"responder": "si"}])",
                                3);
  ASSERT_GT(i.resultado, 0);
  clsMFTipo leido;
  ASSERT_TRUE(leido.Load(*cn, i.resultado));
  const clsRegRecurrencia& rec = *leido.Recurrencia();
  EXPECT_EQ(rec.Frecuencia(), "421001");
  EXPECT_EQ(vb::FormatDate(*vb::ParseDate(rec.FechaProxima()), "dd/mm/yyyy"), "14/12/2026")
      << "the second Monday of December";
  EXPECT_EQ(vb::FormatDate(*vb::ParseDate(rec.FechaFinal()), "dd/mm/yyyy"), "11/01/2027");
}

KMF_INSTANTIATE_ENGINES(Asistente);

}  // namespace
}  // namespace kivmovfrec::ui
