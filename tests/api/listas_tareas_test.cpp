// Task lists on the demo database, every engine: loading a list with its items, the save from
// the editor (name rules, checks before any statement, new / changed / deleted items), the
// precedes search, and the façade's two state operations.
#include <memory>
#include <string>
#include <vector>

#include "fachada_fixture.h"
#include "platform/vb/dates.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "support/faulty_connection.h"
#include "ui/checklist/consultas_lista.h"
#include "ui/checklist/guardar_lista.h"

namespace kivmovfrec::testing {
namespace {

using checklist::CampoLista;
using checklist::RechazoLista;

Date Dia(int a, int m, int d, int h = 0, int mi = 0, int s = 0) {
  return vb::MakeDate({a, m, d, h, mi, s});
}

ItemListaTareas Item(std::string nombre, int16_t importancia, bool realizado = false,
                     int32_t precede = 0, std::string precede_nombre = "") {
  ItemListaTareas it;
  it.nombre = std::move(nombre);
  it.comentario = "comentario de " + it.nombre;
  it.importancia = importancia;
  it.realizado = realizado;
  it.precede = precede;
  it.precede_nombre = std::move(precede_nombre);
  return it;
}

class ListasTareas : public Fachada {
 protected:
  void SetUpDatabase() override {
    Fachada::SetUpDatabase();
    sv.messages->DefaultAnswer(kMsgYes);
    sv.rights->Set(1, "CheckList", "ame");
  }
  ListaTareas Cargar(int32_t id) {
    auto l = checklist::CargarListaTareas(*cn, id);
    EXPECT_TRUE(l) << "lista " << id;
    return l ? *l : ListaTareas{};
  }
  checklist::ResultadoGuardarLista Guardar(ListaTareas& l) {
    return checklist::GuardarListaTareas(mf.Contexto(), l, 1);
  }
  static ListaTareas Nueva(const std::string& nombre, int16_t empresa = 1) {
    ListaTareas l;
    l.nombre = nombre;
    l.empresa = empresa;
    l.frecuencia = 200001;
    l.vencimiento = Dia(2026, 12, 20);
    return l;
  }
};

TEST_P(ListasTareas, LoadsAListWithItemsByNameAndAListWithout) {
  const ListaTareas l = Cargar(10);
  EXPECT_EQ(l.nombre, "Cierre contable mensual");
  EXPECT_EQ(l.frecuencia, 200001);
  EXPECT_EQ(l.vencimiento, Dia(2026, 11, 30, 18));
  EXPECT_EQ(l.notificar, Dia(2026, 11, 29));
  EXPECT_FALSE(l.hasta);
  std::vector<std::string> nombres;
  for (const auto& it : l.items) nombres.push_back(it.nombre);
  EXPECT_EQ(nombres,
            (std::vector<std::string>{"Archivar comprobantes", "Conciliar cuentas bancarias",
                                      "Controlar libro IVA", "Emitir balance de sumas y saldos"}));
  EXPECT_TRUE(l.items[0].en_papelera);
  EXPECT_TRUE(l.items[2].realizado);
  EXPECT_EQ(l.items[3].precede, 15);
  EXPECT_EQ(l.items[3].precede_nombre, "Cierre de ejercicio");
  EXPECT_EQ(l.items[3].importancia, 4);

  EXPECT_TRUE(Cargar(15).items.empty());
  EXPECT_FALSE(checklist::CargarListaTareas(*cn, 1));  // an entry, not a list
}

// A name is taken only by another active list of the same company.
TEST_P(ListasTareas, DuplicateNameOnlyAgainstActiveListsOfTheSameCompany) {
  struct Caso {
    const char* escenario;
    int16_t empresa;
    const char* antes;  // statement run first (on list 10), or nullptr
    bool rechazado;
  };
  const Caso casos[] = {
      {"misma empresa, activa", 1, nullptr, true},
      {"otra empresa", 2, nullptr, false},
      {"la otra está realizada", 1, "Update genMovimientosFrecuentes Set MFrEstado = 1", false},
      {"la otra está en la papelera", 1, "Update genMovimientosFrecuentes Set MFrEstado = 9",
       false},
  };
  for (const Caso& c : casos) {
    cn->BeginTrans();
    if (c.antes) cn->Execute(std::string(c.antes) + " Where MFrID = 10");
    ListaTareas l = Nueva("  Cierre contable mensual ", c.empresa);
    const auto r = Guardar(l);
    const std::optional<RechazoLista> esperado =
        c.rechazado ? std::optional(RechazoLista{msg::kListaDuplicada, CampoLista::Nombre, -1})
                    : std::nullopt;
    EXPECT_EQ(r.rechazo, esperado) << c.escenario;
    EXPECT_EQ(r.id > 0, !c.rechazado) << c.escenario;
    cn->RollbackTrans();
  }
  // A list keeps its own name when it is saved again.
  ListaTareas propia = Cargar(10);
  EXPECT_EQ(Guardar(propia).id, 10);
}

// Values the editor must not store are refused before any statement runs (a connection that
// fails at its first statement is never reached).
TEST_P(ListasTareas, RefusesBeforeAnyStatement) {
  struct Caso {
    const char* escenario;
    void (*cambiar)(ListaTareas&);
    RechazoLista rechazo;
  };
  const Caso casos[] = {
      {"nombre vacío",
       [](ListaTareas& l) { l.nombre = "   "; },
       {msg::kCampoObligatorio, CampoLista::Nombre}},
      {"comilla en el comentario",
       [](ListaTareas& l) { l.comentario = "de l'año"; },
       {msg::kComillaSimple, CampoLista::Comentario}},
      {"frecuencia definida sin código",
       [](ListaTareas& l) { l.frecuencia = -1; },
       {msg::kCampoNoValido, CampoLista::Frecuencia}},
      {"notificación el día del vencimiento",
       [](ListaTareas& l) { l.notificar = Dia(2026, 12, 20); },
       {msg::kNotificacionAntesDeVencimiento, CampoLista::Notificar}},
      {"última fecha antes del vencimiento",
       [](ListaTareas& l) { l.hasta = Dia(2026, 12, 19); },
       {msg::kFechaHastaMenor, CampoLista::Hasta}},
      {"comilla en un ítem",
       [](ListaTareas& l) { l.items[1].nombre = "Llamar a O'Brien"; },
       {msg::kComillaSimple, CampoLista::NombreItem, 1}},
      {"ítem repetido salvo blancos",
       [](ListaTareas& l) { l.items[1].nombre = " Uno  "; },
       {msg::kItemDuplicado, CampoLista::NombreItem, 1}},
  };
  auto falla = std::make_shared<FaultyConnection>(cn, 1);
  ContextoMF ctx = mf.Contexto();
  ctx.cn = falla;
  for (const Caso& c : casos) {
    ListaTareas l = Nueva("Lista nueva");
    l.items = {Item("Uno", 1), Item("Dos", 2)};
    c.cambiar(l);
    EXPECT_EQ(checklist::GuardarListaTareas(ctx, l, 1).rechazo, c.rechazo) << c.escenario;
  }
  EXPECT_EQ(falla->statements(), 0);
}

TEST_P(ListasTareas, SavedListsReloadAsSavedThroughNewChangedAndDeletedItems) {
  ListaTareas l = Nueva("Auditoría anual");
  l.comentario = "Con el estudio";
  l.notificar = Dia(2026, 12, 18);
  l.hasta = Dia(2027, 3, 20);
  l.items = {Item("Enviar balance", 1), Item("Pedir extractos", 2, true),
             Item("Revisar inventario", 4, false, 15, "Cierre de ejercicio")};
  const int32_t id = Guardar(l).id;
  ASSERT_GT(id, 0);
  // A notice date moves the due moment one second past midnight.
  EXPECT_EQ(l.vencimiento, Dia(2026, 12, 20, 0, 0, 1));
  EXPECT_EQ(Cargar(id), l);

  const int32_t borrado = l.items[1].id;
  l.items[0].comentario = "Antes del 20";
  l.items[0].realizado = true;
  l.items[1].eliminado = true;
  l.items.push_back(Item("Tomar inventario físico", 3));
  l.notificar.reset();
  ASSERT_EQ(Guardar(l).id, id);
  EXPECT_EQ(l.items.size(), 3u);
  EXPECT_EQ(l.vencimiento, Dia(2026, 12, 20));
  EXPECT_EQ(Cargar(id), l);
  EXPECT_EQ(CountRows(*cn, "Select * From genMovimientosFrecuentes Where MFrID = " +
                               std::to_string(borrado)),
            0);
}

TEST_P(ListasTareas, PrecedesSearchMatchesWordsInOrderAmongTheUsersActiveLists) {
  const auto ids = [&](const char* texto, int32_t lista, int16_t usuario) {
    std::vector<int32_t> r;
    for (const auto& c : checklist::BuscarListasPorTexto(*cn, 1, texto, lista, usuario))
      r.push_back(c.id);
    return r;
  };
  EXPECT_EQ(ids("cierre mensual", 0, 1), std::vector<int32_t>{10});
  EXPECT_EQ(ids("mensual cierre", 0, 1), std::vector<int32_t>{});
  EXPECT_EQ(ids("cierre", 0, 1), (std::vector<int32_t>{10, 15}));  // the pick list
  EXPECT_EQ(ids("cierre", 10, 1), std::vector<int32_t>{15});       // never the list itself
  EXPECT_EQ(ids("cierre", 0, 2), std::vector<int32_t>{});          // another user's lists
  EXPECT_EQ(checklist::BuscarListaPorID(*cn, 28),
            (checklist::ListaCandidata{28, "Anticipos de ganancias"}));
}

// List 28: monthly, occurrence 5 of 6, due 15/12/2026 09:00.
TEST_P(ListasTareas, MarkingDoneMovesTheDateUntilTheLastOccurrenceEndsTheList) {
  cn->Execute("Update genRecurrencias Set RecPostergado = 1 Where RecID = 12");
  cn->Execute("Update genMovimientosFrecuentes Set MFrEstado = 0 Where MFrID = 30");
  ASSERT_TRUE(mf.CheckListDarPorRealizado(28));
  ListaTareas l = Cargar(28);
  EXPECT_EQ(l.estado, 0);
  EXPECT_EQ(l.vencimiento, Dia(2027, 1, 15, 9));
  EXPECT_EQ(l.num_ocurrencia, 6);
  EXPECT_EQ(l.postergado, 0.0f);
  for (const auto& it : l.items) EXPECT_TRUE(it.realizado) << it.nombre;

  ASSERT_TRUE(mf.CheckListDarPorRealizado(28));
  l = Cargar(28);
  EXPECT_EQ(l.estado, ToInt(enuEstadoMF::Realizado));
  EXPECT_EQ(l.num_ocurrencia, 7);
  EXPECT_FALSE(mf.CheckListDarPorRealizado(28));  // no occurrence left

  // Without an end: the binned item stays in the bin.
  ASSERT_TRUE(mf.CheckListDarPorRealizado(10));
  l = Cargar(10);
  EXPECT_EQ(l.vencimiento, Dia(2026, 12, 31, 18));
  EXPECT_TRUE(l.items[0].en_papelera && !l.items[0].realizado);
}

TEST_P(ListasTareas, BinSendsTheListAndItsLiveItemsAfterQuestionAndRights) {
  const Snapshot antes = Tablas();
  sv.messages->Answer(kMsgNo);
  EXPECT_FALSE(mf.CheckListAPapelera(10));
  sv.rights->Set(1, "CheckList", "AM");
  EXPECT_FALSE(mf.CheckListAPapelera(10));
  sv.rights->Set(1, "CheckList", "E");
  EXPECT_FALSE(mf.CheckListDarPorRealizado(10));
  EXPECT_FALSE(mf.CheckListAPapelera(1));  // an entry is no task list
  EXPECT_EQ(Tablas(), antes);
  const auto& m = Mensajes();
  ASSERT_EQ(m.size(), 6u);
  EXPECT_EQ(m[0].request.text, resources::Texto(msg::kConfirmaEnviarPapelera));
  EXPECT_EQ(m[3].request.text, resources::Texto(msg::kConfirmaCumplirLista));
  for (int i : {2, 4}) {
    EXPECT_EQ(m[i].request.text,
              resources::Lineas({msg::kSinDerechos, msg::kConsulteAdministrador}));
    EXPECT_EQ(m[i].request.caption, resources::Texto(msg::kTituloMovimientosFrecuentes));
  }

  const Variant fecha_binned = Mov(14, "MFrFechaEstado");
  ASSERT_TRUE(mf.CheckListAPapelera(10));
  for (int32_t id : {10, 11, 12, 13, 14}) EXPECT_EQ(Estado(id), 9) << id;
  EXPECT_EQ(Mov(14, "MFrFechaEstado"), fecha_binned);
  EXPECT_EQ(Estado(15), 0);
}

KMF_INSTANTIATE_ENGINES(ListasTareas);

}  // namespace
}  // namespace kivmovfrec::testing
