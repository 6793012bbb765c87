// The in-memory form acts as a person would, and refuses what a person could not do.
#include "platform/controls/memoria.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace kivmovfrec::controles::memoria {
namespace {

// The controls of the tests' dialog: fields on panels 1 and 2, a list, a grid whose third
// column is hidden, two buttons.
void Controles(Formulario& g) {
  g.CrearTexto("tNombre", 1);
  g.CrearTexto("tOculto", 1).Visible(false);
  g.CrearTexto("tOtro", 2);
  g.CrearLista("cfFrecuencia", 1).Agregar("&Mensual", 200001);
  IGrilla& gr = g.CrearGrilla("vsItems");
  gr.Columnas("|Ítems|>Id");
  gr.ColumnaCasilla(0, true);
  gr.ColumnaEditable(0, true);
  gr.ColumnaEditable(1, true);
  gr.ColumnaOculta(2, true);
  for (const char* n : {"uno", "dos", "tres"}) gr.Celda(gr.AgregarFila(), 1, n);
  g.CrearBoton("bfFinish").Caption("&Aceptar");
  g.CrearBoton("bfNew").Caption("N&uevo");
  g.MostrarPanel(1);
}

// Plays `jugar` on the tests' dialog and returns the result it closed with.
int Jugar(std::function<void(Formulario&)> jugar) {
  Formulario g("frmPrueba", std::move(jugar));
  Controles(g);
  return g.MostrarModal();
}

TEST(FormularioMemoria, ActionsFireEventsAndLogicChangesDoNot) {
  EXPECT_EQ(Jugar({}), 0) << "a form nobody plays closes at once, cancelled";

  Formulario f("frm", [&](Formulario& g) {
    ITexto& t = static_cast<ITexto&>(*g.Buscar("tNombre"));
    int cambios = 0;
    t.AlCambiar([&] { ++cambios; });
    t.Text("puesto por la lógica");
    EXPECT_EQ(cambios, 0);
    g.Escribir("tNombre", "Cañería");
    EXPECT_EQ(cambios, 1);
    EXPECT_EQ(t.Text(), "Cañería");
    EXPECT_EQ(t.SelStart(), 7) << "the caret ends after the last character, not byte";
    EXPECT_EQ(g.Foco(), &t) << "typing into a field gives it the focus";
    g.Cerrar(42);
  });
  f.CrearTexto("tNombre");
  EXPECT_EQ(f.MostrarModal(), 42);
  EXPECT_FALSE(f.Abierto());
  EXPECT_THROW(f.Escribir("tNombre", "x"), std::invalid_argument) << "a closed form takes nothing";
}

TEST(FormularioMemoria, RefusesWhatAPersonCouldNotDoAndChangesNothing) {
  Jugar([](Formulario& h) {
    ITexto& otro = static_cast<ITexto&>(*h.Buscar("tOtro"));
    ITexto& oculto = static_cast<ITexto&>(*h.Buscar("tOculto"));
    IBoton& b = static_cast<IBoton&>(*h.Buscar("bfFinish"));
    h.MostrarPanel(1);
    struct Caso {
      const char* que;
      std::function<void()> accion;
    } casos[] = {
        {"control que no existe", [&] { h.Escribir("tNada", "x"); }},
        {"control de otra clase", [&] { h.Escribir("bfFinish", "x"); }},
        {"control oculto", [&] { h.Escribir("tOculto", "x"); }},
        {"control en otro panel", [&] { h.Escribir("tOtro", "x"); }},
        {"opción inexistente", [&] { h.Elegir("cfFrecuencia", "Anual"); }},
        {"botón deshabilitado", [&] { b.Enabled(false), h.Pulsar("bfFinish"); }},
        {"fila que no se muestra", [&] { h.SeleccionarFila("vsItems", 4); }},
        {"columna oculta", [&] { h.EscribirCelda("vsItems", 1, "Id", "7"); }},
        {"tildar una columna de texto", [&] { h.TildarCelda("vsItems", 1, "Ítems", true); }},
        {"escribir en una columna casilla", [&] { h.EscribirCelda("vsItems", 1, "1", "x"); }},
    };
    for (auto& c : casos) EXPECT_THROW(c.accion(), std::invalid_argument) << c.que;
    EXPECT_EQ(otro.Text(), "");
    EXPECT_EQ(oculto.Text(), "");
    EXPECT_EQ(h.Foco(), nullptr) << "a refused action does not move the focus";
    EXPECT_THROW(otro.SetFocus(), std::logic_error) << "the dialog must show the panel first";
    h.MostrarPanel(2);
    otro.SetFocus();
    EXPECT_EQ(h.Foco(), &otro);
    h.MostrarPanel(1);
    EXPECT_EQ(h.Foco(), nullptr) << "hiding the panel takes the focus away";
    EXPECT_THROW(h.CrearTexto("tNombre"), std::logic_error) << "names are unique in a form";
  });
}

TEST(FormularioMemoria, GridRowsOnViewListCaptionsAndButtonsByCaption) {
  Jugar([](Formulario& h) {
    IGrilla& gr = static_cast<IGrilla&>(*h.Buscar("vsItems"));
    ILista& l = static_cast<ILista&>(*h.Buscar("cfFrecuencia"));
    int filas_cambiadas = 0;
    std::vector<std::pair<int, int>> editadas;
    gr.AlCambiarFila([&] { ++filas_cambiadas; });
    gr.AlEditarCelda([&](int f, int c) { editadas.emplace_back(f, c); });
    gr.FilaOculta(0, true);  // "uno" deleted from view
    EXPECT_EQ(gr.Encabezado(2), "Id") << "the alignment mark is not part of the header";
    EXPECT_EQ(gr.ColumnaAlineacion(2), Alineacion::Derecha);
    h.SeleccionarFila("vsItems", 1);
    EXPECT_EQ(gr.Celda(gr.Fila(), 1), "dos") << "row 1 is the first row on view";
    h.TildarCelda("vsItems", 2, "1", true);  // column by number
    EXPECT_TRUE(gr.Tilde(2, 0));
    h.EscribirCelda("vsItems", 2, "Ítems", "tres bis");
    EXPECT_EQ(gr.Celda(2, 1), "tres bis");
    EXPECT_EQ(filas_cambiadas, 2) << "selecting row 2 once, then staying on it";
    EXPECT_EQ(editadas, (std::vector<std::pair<int, int>>{{2, 0}, {2, 1}}));

    h.Elegir("cfFrecuencia", " Mensual ");
    EXPECT_EQ(l.Dato(l.Indice()), 200001) << "captions compare without '&' and blanks";

    int pulsados = 0;
    static_cast<IBoton&>(*h.Buscar("bfFinish")).AlPulsar([&] { ++pulsados; });
    h.Pulsar("Aceptar");
    h.Pulsar("bfFinish");
    EXPECT_EQ(pulsados, 2);
    static_cast<IBoton&>(*h.Buscar("bfNew")).Caption("&Aceptar");
    EXPECT_THROW(h.Pulsar("Aceptar"), std::invalid_argument) << "two buttons with that caption";
  });
}

TEST(FormularioMemoria, SelectionIsCountedInCharacters) {
  Formulario g("frm", [](Formulario& h) {
    ITexto& t = static_cast<ITexto&>(*h.Buscar("tNombre"));
    h.Escribir("tNombre", "Año próximo");
    t.SetFocus();
    t.SeleccionarTodo();
    EXPECT_EQ(t.SelLength(), 11);
    EXPECT_EQ(h.TextoSeleccionado(), "Año próximo");
    t.Seleccionar(4, 3);
    EXPECT_EQ(h.TextoSeleccionado(), "pró");
    t.MaxLength(5);
    EXPECT_THROW(h.Escribir("tNombre", "seis c"), std::invalid_argument);
    EXPECT_EQ(t.Text(), "Año próximo") << "a refused text leaves the field as it was";
    h.Cerrar(1);
  });
  g.CrearTexto("tNombre");
  EXPECT_EQ(g.MostrarModal(), 1);
}

}  // namespace
}  // namespace kivmovfrec::controles::memoria
