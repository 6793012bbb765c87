// Reading task lists: the list with its items, the name check before a save, the lookup of the
// list an item precedes, and the live items the state operations walk.
//
// Lists are rows of genMovimientosFrecuentes with MFrTipo 5, items rows with MFrTipo 6 whose
// MFrEnte is their list. Only active lists (MFrEstado 0) take part in the name check and in the
// precedes search, so a name can be used again once the older list is done or in the bin.
// Typed texts (a name, a search text) are bound as parameters; ids are written as numbers.
// Database errors (DbError) propagate; nothing here writes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/db.h"
#include "kivmovfrec/lista_tareas.h"

namespace kivmovfrec::checklist {

// The list with its items and schedule: one row per item, by item name; a list without items
// gives one row whose item columns are NULL. List and schedule columns come from the first row.
std::string SqlCargarLista(int32_t lista);

// Reads list `lista` (it must have a schedule row: inner join). Items come by name, binned ones
// included (en_papelera). Each item's precedes name is looked up by id (SqlListaPorID); an id
// that finds no row leaves the name empty. Nothing when there is no such list.
std::optional<ListaTareas> CargarListaTareas(Connection& cn, int32_t lista);

// The company's lists that are not in the bin, by id, each as CargarListaTareas reads it.
std::vector<ListaTareas> ListasDeEmpresa(Connection& cn, int32_t empresa);

// True when another active list of company `empresa` (any but `lista`, 0 for a new one) has the
// name `nombre` once trimmed.
bool NombreListaDuplicado(Connection& cn, int32_t lista, std::string_view nombre, int32_t empresa);

// A list an item can precede.
struct ListaCandidata {
  int32_t id = 0;
  std::string nombre;
  friend bool operator==(const ListaCandidata&, const ListaCandidata&) = default;
};

// "Select MFrID, MFrNombre  From genMovimientosFrecuentes Where MFrID = " + id
std::string SqlListaPorID(int32_t id);
std::optional<ListaCandidata> BuscarListaPorID(Connection& cn, int32_t id);

// The pattern of a precedes search: "%" + text with every blank replaced by "%" + "%", so the
// words must appear in that order with anything between them ("fin mes" -> "%fin%mes%").
std::string PatronPrecede(std::string_view texto);

// The active lists of company `empresa` created by user `usuario` whose name matches
// PatronPrecede(texto) (without regard to case), except list `lista` itself, by name. One
// candidate resolves the field; several are offered in the pick list titled "Lista de tareas"
//; none refuses the typed text.
std::vector<ListaCandidata> BuscarListasPorTexto(Connection& cn, int32_t empresa,
                                                 std::string_view texto, int32_t lista,
                                                 int16_t usuario);

// The items of list `lista` that are not in the bin, as an updatable set:
// "Select * From genMovimientosFrecuentes Where MFrEnte = " + lista +
// " And MFrTipo = 6 And MFrEstado <> 9"
std::string SqlItemsVivos(int32_t lista);

}  // namespace kivmovfrec::checklist
