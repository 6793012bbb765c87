// The fixed entries and labels the task-list editor shows: the frequency list, the importance
// list and the captions of the next and last due dates. Texts come from the message catalogue
// in language `idioma`.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kivmovfrec/lista_tareas.h"

namespace kivmovfrec::checklist {

// An entry of a list with item data.
struct EntradaLista {
  std::string texto;
  int32_t dato = 0;
  friend bool operator==(const EntradaLista&, const EntradaLista&) = default;
};

// The eleven frequencies in list order ("Sólo esta vez" 0 ... "Anual" 300001, "Definido ..."
// -1); the same list the movement wizard offers.
std::vector<EntradaLista> Frecuencias(int idioma = 1);

// The five importances, "1 - Obligatorio" (1) ... "5 - Prescindible" (5).
std::vector<EntradaLista> Importancias(int idioma = 1);

// The next due date label: "dd/mm/yyyy" (with " hh:nn" when it has a time of day); when the
// notice was put off, "Postergado " and the day the user is next notified (due day - notice days
// + days put off). "" without a due date.
std::string EtiquetaProximoVencimiento(const ListaTareas& l, int idioma = 1);

// The last due date label: the last date as "dd/mm/yyyy", "" when the list has none.
std::string EtiquetaUltimoVencimiento(const ListaTareas& l);

}  // namespace kivmovfrec::checklist
