// The task-list editor through ShowCheckList, played by step scripts on the demo database of
// every engine: a new list saved and reopened unchanged, the item and save refusals with the
// focus on the field at fault, deletion, the precedes pick list, rights, and a failed save.
#include <memory>
#include <string>
#include <vector>

#include "fachada_fixture.h"
#include "kivmovfrec/guion.h"
#include "kivmovfrec/vb.h"
#include "platform/controls/memoria.h"
#include "platform/vb/dates.h"
#include "resources/msg.h"
#include "support/faulty_connection.h"
#include "ui/checklist/consultas_lista.h"

namespace kivmovfrec::testing {
namespace {

std::vector<int> Numeros(const InformeGuion& i) {
  std::vector<int> r;
  for (const MensajeGuion& m : i.mensajes) r.push_back(m.numero);
  return r;
}

// A new list's header, due 20/12/2026, then `resto`.
std::string ListaNueva(const std::string& resto, const std::string& nombre = "Compras del mes") {
  return R"([{"escribir": "tNombreC", "texto": ")" + nombre + R"("},
             {"escribir": "dtVence", "texto": "20/12/2026"})" +
         (resto.empty() ? "" : ", " + resto) + "]";
}

class EditorListas : public Fachada {
 protected:
  void SetUpDatabase() override {
    Fachada::SetUpDatabase();
    sv.rights->Set(1, "CheckList", "AM");
  }
  InformeGuion Correr(clsMovFrecuente& f, const suite::ScriptedServices& s, int32_t lista,
                      const std::string& pasos, bool nuevo_item = false) {
    auto guion = GuionDialogos::Leer(pasos);
    SuiteServices servicios = s.Bundle();
    guion->Instalar(servicios);
    f.Servicios(servicios);
    const int32_t r = f.ShowCheckList(lista, 1, nuevo_item);
    InformeGuion i = guion->Informe();
    EXPECT_EQ(i.resultado, r) << "the report gives what ShowCheckList returned";
    return i;
  }
  InformeGuion Correr(int32_t lista, const std::string& pasos, bool nuevo_item = false) {
    return Correr(mf, sv, lista, pasos, nuevo_item);
  }
  ListaTareas Cargar(int32_t id) {
    auto l = checklist::CargarListaTareas(*cn, id);
    EXPECT_TRUE(l) << "lista " << id;
    return l ? *l : ListaTareas{};
  }
};

TEST_P(EditorListas, ANewListWithThreeItemsIsSavedAndReopensUnchanged) {
  const InformeGuion ok = Correr(0, R"([
    {"escribir": "tNombreC", "texto": "Compras del mes"},
    {"escribir": "tMemoC", "texto": "Proveedores habituales"},
    {"elegir": "cfFrecuencia", "opcion": "Mensual"},
    {"elegir": "cfFrecuencia", "opcion": "Definido ..."},
    {"escribir": "tCada", "texto": "2", "en": "frmFrecuencia"}, {"pulsar": "bfCancel"},
    {"escribir": "dtVence", "texto": "20/12/2026"},
    {"escribir": "dtNotificar", "texto": "18/12/2026"},
    {"escribir": "tNombreI", "texto": "Pedir presupuestos"},
    {"escribir": "tMemoI", "texto": "Tres como mínimo"},
    {"elegir": "cfImportancia", "opcion": "2 - Muy importante"},
    {"pulsar": "bfEdit"},
    {"pulsar": "Nuevo"}, {"escribir": "tNombreI", "texto": "Comparar precios"},
    {"marcar": "chRealizado"}, {"pulsar": "bfEdit"},
    {"pulsar": "bfNew"}, {"escribir": "tNombreI", "texto": "  Emitir la orden "},
    {"pulsar": "bfEdit"},
    {"pulsar": "bfHelp"},
    {"pulsar": "bfFinish"}, {"responder": "no"},
    {"pulsar": "bfFinish"}, {"responder": "si"}
  ])",
                                 true);
  ASSERT_EQ(ok.error, "");
  ASSERT_GT(ok.resultado, 0);
  EXPECT_EQ(ok.formulario, "frmCheckList");
  EXPECT_EQ(ok.ayuda, std::vector<int>{332});
  EXPECT_EQ(Numeros(ok), (std::vector<int>{msg::kConfirmaGrabarLista, msg::kConfirmaGrabarLista}));
  EXPECT_EQ(ok.mensajes[0].titulo, "Lista de tareas");
  EXPECT_EQ(ok.mensajes[0].icono, "pregunta");

  const ListaTareas l = Cargar(ok.resultado);
  EXPECT_EQ(l.nombre, "Compras del mes");
  EXPECT_EQ(l.comentario, "Proveedores habituales");
  EXPECT_EQ(l.empresa, 1);
  EXPECT_EQ(l.frecuencia, 200001) << "a cancelled \"Definido ...\" keeps the earlier choice";
  EXPECT_EQ(l.vencimiento, vb::MakeDate({2026, 12, 20, 0, 0, 1}));
  EXPECT_EQ(l.notificar, vb::MakeDate({2026, 12, 18, 0, 0, 0}));
  ASSERT_EQ(l.items.size(), 3u);
  EXPECT_EQ(l.items[0].nombre, "Comparar precios");
  EXPECT_TRUE(l.items[0].realizado);
  EXPECT_EQ(l.items[1].nombre, "Emitir la orden") << "stored trimmed";
  EXPECT_FALSE(l.items[1].realizado);
  EXPECT_EQ(l.items[1].importancia, kImportanciaInicial);
  EXPECT_EQ(l.items[2].nombre, "Pedir presupuestos");
  EXPECT_EQ(l.items[2].comentario, "Tres como mínimo");
  EXPECT_EQ(l.items[2].importancia, 2);
  EXPECT_EQ(Mov(ok.resultado, "MFrUsuarioAlta"), Mov(l.items[0].id, "MFrUsuarioAlta"));

  // Opened again and accepted as it stands: the same list, the same items.
  const InformeGuion otra =
      Correr(ok.resultado, R"([{"pulsar": "bfFinish"}, {"responder": "si"}])");
  EXPECT_EQ(otra.resultado, ok.resultado);
  EXPECT_EQ(Cargar(ok.resultado), l);
}

TEST_P(EditorListas, ItemRefusalsFocusTheFieldWithItsTextSelected) {
  // List 10 shows Archivar comprobantes, Conciliar cuentas bancarias, Controlar libro IVA and
  // Emitir balance de sumas y saldos.
  struct Caso {
    const char* pasos;
    int mensaje;
    const char* foco;
    const char* seleccion;
  } casos[] = {
      {R"({"pulsar": "bfNew"}, {"escribir": "tNombreI", "texto": " Conciliar cuentas bancarias "})",
       msg::kItemDuplicado, "tNombreI", " Conciliar cuentas bancarias "},
      {R"({"pulsar": "bfNew"}, {"escribir": "tNombreI", "texto": "   "})", msg::kCampoObligatorio,
       "tNombreI", "   "},
      {R"({"pulsar": "bfNew"}, {"escribir": "tNombreI", "texto": "Pagar"},
          {"escribir": "tMemoI", "texto": "a l'estudio"})",
       msg::kComillaSimple, "tMemoI", "a l'estudio"},
      {R"({"pulsar": "bfNew"}, {"escribir": "tNombreI", "texto": "Pagar"},
          {"escribir": "tPrecede", "texto": "ninguna lista"})",
       msg::kCampoNoValido, "tPrecede", "ninguna lista"},
      // Editing a row may keep its own name, not take another's.
      {R"({"seleccionar": "vsItems", "fila": 3}, {"pulsar": "bfEdit"},
          {"escribir": "tNombreI", "texto": "Emitir balance de sumas y saldos"})",
       msg::kItemDuplicado, "tNombreI", "Emitir balance de sumas y saldos"},
  };
  const Snapshot antes = Tablas();
  for (const Caso& c : casos) {
    const InformeGuion i = Correr(10, std::string("[") + c.pasos + R"(, {"pulsar": "bfEdit"}])");
    EXPECT_EQ(i.error, "") << c.pasos;
    EXPECT_EQ(Numeros(i), std::vector<int>{c.mensaje}) << c.pasos;
    EXPECT_EQ(i.foco, c.foco) << c.pasos;
    EXPECT_EQ(i.seleccion, c.seleccion) << c.pasos;
    EXPECT_EQ(i.resultado, 0);
  }
  EXPECT_EQ(Tablas(), antes);
  // A row edited under its own name is accepted and the list saves.
  const InformeGuion propio = Correr(10, R"([{"seleccionar": "vsItems", "fila": 3},
      {"pulsar": "bfEdit"}, {"escribir": "tMemoI", "texto": "Antes del día 5"},
      {"pulsar": "bfEdit"}, {"pulsar": "bfFinish"}, {"responder": "si"}])");
  EXPECT_EQ(propio.resultado, 10) << propio.error;
  EXPECT_EQ(vb::CStr(Mov(12, "MFrMemo")), "Antes del día 5");
  EXPECT_EQ(vb::CStr(Mov(11, "MFrMemo")), "Banco Nación y Banco Galicia.");
}

TEST_P(EditorListas, SaveRefusalsComeInFieldOrderAndWriteNothing) {
  struct Caso {
    std::string guion;
    int mensaje;
    const char* foco;
    const char* seleccion;
  } casos[] = {
      {ListaNueva(R"({"escribir": "dtNotificar", "texto": "20/12/2026"})"),
       msg::kNotificacionAntesDeVencimiento, "dtNotificar", "20/12/2026"},
      {ListaNueva(R"({"escribir": "dtVence", "texto": "31/02/2026"},
                     {"escribir": "tQOcurre", "texto": "dos"})"),
       msg::kCampoNoValido, "dtVence", "31/02/2026"},
      {ListaNueva(R"({"escribir": "tQOcurre", "texto": "dos"},
                     {"escribir": "dtHasta", "texto": "01/01/2026"})"),
       msg::kCampoNoValido, "tQOcurre", "dos"},
      {ListaNueva(R"({"escribir": "dtHasta", "texto": "19/12/2026"})"), msg::kFechaHastaMenor,
       "dtHasta", "19/12/2026"},
      {ListaNueva(R"({"escribir": "tMemoC", "texto": "l'orden"},
                     {"escribir": "dtVence", "texto": "x"})"),
       msg::kComillaSimple, "tMemoC", "l'orden"},
      {ListaNueva("", "  "), msg::kCampoObligatorio, "tNombreC", "  "},
      // Another active list of the company: refused after every field check.
      {ListaNueva("", " Cierre de ejercicio"), msg::kListaDuplicada, "tNombreC",
       " Cierre de ejercicio"},
  };
  const Snapshot antes = Tablas();
  for (Caso& c : casos) {
    c.guion.insert(c.guion.size() - 1, R"(, {"pulsar": "bfFinish"}, {"responder": "si"})");
    const InformeGuion i = Correr(0, c.guion);
    EXPECT_EQ(i.error, "") << c.guion;
    EXPECT_EQ(Numeros(i), (std::vector<int>{msg::kConfirmaGrabarLista, c.mensaje})) << c.guion;
    EXPECT_EQ(i.foco, c.foco) << c.guion;
    EXPECT_EQ(i.seleccion, c.seleccion) << c.guion;
    EXPECT_EQ(i.resultado, 0);
  }
  EXPECT_EQ(Tablas(), antes);
}

TEST_P(EditorListas, DeletedItemsGoOnlyWhenTheListIsSaved) {
  // Row 2 of list 10 is item 11. Deleting it and cancelling the dialog leaves it stored.
  const std::string borrar = R"({"seleccionar": "vsItems", "fila": 2}, {"pulsar": "bfDelCancel"},
                                {"responder": "si"})";
  const Snapshot antes = Tablas();
  const InformeGuion cancelado = Correr(10, "[" + borrar + R"(, {"pulsar": "bfCancel"}])");
  EXPECT_EQ(cancelado.error, "");
  EXPECT_EQ(cancelado.resultado, 0);
  EXPECT_EQ(Numeros(cancelado), std::vector<int>{msg::kConfirmaEliminarItem});
  EXPECT_EQ(Tablas(), antes);

  // Answered No, nothing goes; answered Yes and saved, item 11 goes. A new item deleted before
  // the save never reaches the table.
  const InformeGuion guardado = Correr(10, "[" + borrar + R"(,
      {"seleccionar": "vsItems", "fila": 1}, {"pulsar": "bfDelCancel"}, {"responder": "no"},
      {"pulsar": "bfNew"}, {"escribir": "tNombreI", "texto": "Borrador"}, {"pulsar": "bfEdit"},
      {"pulsar": "bfDelCancel"}, {"responder": "si"},
      {"pulsar": "bfFinish"}, {"responder": "si"}])");
  ASSERT_EQ(guardado.error, "");
  EXPECT_EQ(guardado.resultado, 10);
  std::vector<int32_t> ids;
  for (const ItemListaTareas& it : Cargar(10).items) ids.push_back(it.id);
  EXPECT_EQ(ids, (std::vector<int32_t>{14, 12, 13}));
}

TEST_P(EditorListas, PrecedesTextWithSeveralMatchesOpensThePickList) {
  const std::string item = R"({"pulsar": "bfNew"}, {"escribir": "tNombreI", "texto": "Revisar"},
                              {"escribir": "tPrecede", "texto": "cierre"}, {"pulsar": "bfEdit"})";
  const InformeGuion i = Correr(0, ListaNueva(item + R"(,
      {"seleccionar": "vsListas", "fila": 2, "en": "frmElegirLista"}, {"pulsar": "bfOK"},
      {"pulsar": "bfFinish", "en": "frmCheckList"}, {"responder": "si"})"));
  ASSERT_EQ(i.error, "");
  ASSERT_GT(i.resultado, 0);
  const ListaTareas l = Cargar(i.resultado);
  ASSERT_EQ(l.items.size(), 1u);
  EXPECT_EQ(l.items[0].precede, 15);
  EXPECT_EQ(l.items[0].precede_nombre, "Cierre de ejercicio");

  // Cancelling the pick list keeps the item open on the precedes text; a list id resolves alone.
  const InformeGuion cancelada = Correr(0, ListaNueva(item + R"(, {"pulsar": "bfCancel"},
      {"escribir": "tPrecede", "texto": "28"}, {"pulsar": "bfEdit"},
      {"pulsar": "bfFinish"}, {"responder": "si"})",
                                                      "Otra lista"));
  ASSERT_EQ(cancelada.error, "");
  EXPECT_EQ(Numeros(cancelada), std::vector<int>{msg::kConfirmaGrabarLista});
  EXPECT_EQ(Cargar(cancelada.resultado).items.at(0).precede, 28);
}

TEST_P(EditorListas, RightsAndAMissingFormFactoryKeepTheEditorClosed) {
  sv.rights->Set(1, "CheckList", "M");
  const InformeGuion nueva = Correr(0, R"([{"pulsar": "bfCancel"}])");
  EXPECT_EQ(nueva.formulario, "") << "the editor was not opened";
  ASSERT_EQ(Numeros(nueva), std::vector<int>{msg::kSinDerechos});
  EXPECT_EQ(nueva.mensajes[0].titulo, "Lista de tareas");
  EXPECT_EQ(Correr(10, R"([{"pulsar": "bfCancel"}])").formulario, "frmCheckList");

  sv.rights->Set(1, "CheckList", "A");
  EXPECT_EQ(Numeros(Correr(10, "[]")), std::vector<int>{msg::kSinDerechos});

  SuiteServices sin_formularios = sv.Bundle();
  mf.Servicios(sin_formularios);
  EXPECT_EQ(mf.ShowCheckList(0, 1), 0);
  EXPECT_NE(mf.UltimoError(), "");
  ASSERT_FALSE(sv.messages->shown().empty());
  EXPECT_EQ(sv.messages->shown().back().request.caption, "Lista de tareas");
}

TEST_P(EditorListas, AFailedSaveIsReportedAndTheDialogStaysOpen) {
  const std::string guardar = R"(, {"pulsar": "bfFinish"}, {"responder": "si"})";
  const std::string guion = ListaNueva(R"({"pulsar": "bfNew"},
      {"escribir": "tNombreI", "texto": "Uno"}, {"pulsar": "bfEdit"})" +
                                       guardar);
  // Counts the statements up to the save's commit, then fails there and saves again.
  auto contador = std::make_shared<FaultyConnection>(cn, 0);
  FachadaPropia una(contador);
  una.sv.rights->Set(1, "CheckList", "A");
  const int32_t primera = Correr(una.mf, una.sv, 0, guion).resultado;
  ASSERT_GT(primera, 0);
  cn->Execute("Delete From genMovimientosFrecuentes Where MFrID >= " + std::to_string(primera));

  auto falla = std::make_shared<FaultyConnection>(cn, contador->statements());
  FachadaPropia otra(falla);
  otra.sv.rights->Set(1, "CheckList", "A");
  std::string dos = guion;
  dos.insert(dos.size() - 1, guardar);
  const InformeGuion i = Correr(otra.mf, otra.sv, 0, dos);
  ASSERT_TRUE(falla->failed());
  EXPECT_EQ(i.error, "");
  EXPECT_EQ(Numeros(i), (std::vector<int>{msg::kConfirmaGrabarLista, msg::kErrorGrabarMovimiento,
                                          msg::kConfirmaGrabarLista}));
  EXPECT_EQ(i.mensajes[1].icono, "critico");
  ASSERT_GT(i.resultado, 0);
  EXPECT_EQ(Cargar(i.resultado).items.size(), 1u) << "the second save wrote the list once";
}

TEST_P(EditorListas, ColoursComeFromTheSchemeAndAnUnreadableOneKeepsTheToolkits) {
  cn->Execute(
      "Update genParametros Set ParDescripcion = '16777215| 12632256 |azul|255' Where ParNombre = "
      "'sis_colores_1' And ParTexto = 'checklist'");
  std::vector<int32_t> vistos;
  SuiteServices servicios = sv.Bundle();
  servicios.formularios =
      std::make_shared<controles::memoria::Fabrica>([&](controles::memoria::Formulario& f) {
        vistos = {f.Buscar("tNombreC")->ColorFondo(), f.Buscar("tNombreI")->ColorFondo(),
                  f.Buscar("vsItems")->ColorFondo(),  f.Buscar("dtVence")->ColorTexto(),
                  f.Buscar("tMemoC")->ColorTexto(),   f.Buscar("lNextVto")->ColorTexto()};
      });
  mf.Servicios(servicios);
  EXPECT_EQ(mf.ShowCheckList(10, 1), 0);
  EXPECT_EQ(vistos, (std::vector<int32_t>{16777215, 12632256, -1, 255, -1, -1}));
}

KMF_INSTANTIATE_ENGINES(EditorListas);

}  // namespace
}  // namespace kivmovfrec::testing
