// A task list ("Lista de tareas") as the task-list editor and the hosts see it: the list's
// header, its schedule and its items, as plain values.
//
// A list is a row of genMovimientosFrecuentes with MFrTipo 5 and a schedule row of
// genRecurrencias; each item is a row of the same table with MFrTipo 6 whose MFrEnte is the
// list's MFrID. Reading and writing them is the task-list code's job (ui/checklist); this header
// only carries the values, so the editor, the façade and the command-line host share one shape.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kivmovfrec/variant.h"

namespace kivmovfrec {

// Importance of an item (MFrModalidad), 1 = "1 - Obligatorio" ... 5 = "5 - Prescindible".
inline constexpr int16_t kImportanciaMinima = 1;
inline constexpr int16_t kImportanciaMaxima = 5;
// The importance a new item starts with ("4 - Normal").
inline constexpr int16_t kImportanciaInicial = 4;

// One item of a list (one row of the editor's grid).
struct ItemListaTareas {
  int32_t id = 0;                             // MFrID; 0 for an item not stored yet
  std::string nombre;                         // MFrNombre, unique within the list (trimmed)
  std::string comentario;                     // MFrMemo
  int16_t importancia = kImportanciaInicial;  // MFrModalidad, 1..5
  int32_t precede = 0;         // MFrMovVinculado: the list this item precedes; 0 none
  std::string precede_nombre;  // that list's name ("" when none or not found)
  bool realizado = false;      // MFrEstado 1 (ticked)
  bool en_papelera = false;    // MFrEstado 9: sent to the bin with its list
  bool eliminado = false;      // deleted in the editor: removed when the list is saved
  friend bool operator==(const ItemListaTareas&, const ItemListaTareas&) = default;
};

// A list with its schedule and its items.
struct ListaTareas {
  int32_t id = 0;          // MFrID; 0 for a new list
  std::string nombre;      // MFrNombre, unique among the company's active lists
  std::string comentario;  // MFrMemo
  int16_t empresa = 0;     // MFrEmpresa
  uint8_t estado = 0;      // MFrEstado: 0 en proceso, 1 realizada, 9 en la papelera
  uint8_t vista = 0;       // MFrVista, read and kept

  // Schedule (genRecurrencias).
  int32_t frecuencia = 0;           // frequency code (200001 = monthly, 0 = once)
  std::optional<Date> vencimiento;  // next due moment (RecFechaProxima)
  std::optional<Date> notificar;    // notice day: due day - RecNotificar days; none = no notice
  int32_t cantidad = 0;             // number of times; 0 = not given
  std::optional<Date> hasta;        // last date (RecFechaFinal); none = no end date
  float postergado = 0.0f;          // RecPostergado: days the notice was put off
  int32_t num_ocurrencia = 1;       // RecNumOcurrencia: the current occurrence
  std::optional<Date> inicio;       // RecFechaInicio: first due date

  std::vector<ItemListaTareas> items;  // by name, as loaded; in grid order when saved
  friend bool operator==(const ListaTareas&, const ListaTareas&) = default;
};

}  // namespace kivmovfrec
