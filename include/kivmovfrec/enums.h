// The four public enumerations of frequent movements.
//
// Scoped enums with the member names and values of the suite's type library
// (`enuTipoMovFrec::Asiento`, `enuEstadoMF::Papelera`): scoping keeps short Spanish names such
// as `Normal` or `Mensual` from colliding with anything else in the namespace. Each has a fixed
// underlying type, the width of the column it is stored in, so a value read from the database
// that has no member (see kTipoItemCheckList) is still a valid value of the type. ToInt() gives
// the stored number.
#pragma once

#include <cstdint>
#include <type_traits>

namespace kivmovfrec {

// Kind of movement, stored in MFrTipo.
enum class enuTipoMovFrec : int16_t {
  Asiento = 1,         // template of an accounting entry
  Comprobante = 2,     // template of a voucher
  Calendario = 3,      // calendar notice; lines are optional
  AsientoSistema = 4,  // entry template owned by the system
  CheckList = 5,       // header of a task list
};

// MFrTipo also holds 6 for one item of a task list. The enumeration deliberately has no member
// for it: the task-list queries write the literal ("And MFrTipo = 6") and a record carries it
// as `static_cast<enuTipoMovFrec>(kTipoItemCheckList)`. This constant names the literal for C++
// callers; SQL text keeps writing the digit.
inline constexpr int16_t kTipoItemCheckList = 6;

// State of a movement, stored in MFrEstado. The gap between 1 and 9 is intended: live items
// are selected with "MFrEstado <> 9", pending ones with "MFrEstado = 0".
enum class enuEstadoMF : uint8_t {
  EnProceso = 0,  // active / pending; the state of a new record
  Realizado = 1,  // done
  Papelera = 9,   // in the recycle bin
};

// Who owns the movement, stored in MFrDelSistema.
enum class enuClasificacionMF : int16_t {
  Normal = 0,   // made by a user
  Sistema = 1,  // made by the system
};

// Unit of a recurrence step; the first digit of a six-digit frequency code.
enum class enuTipoRecurrencia : int16_t {
  Diaria = 0,
  Semanal = 1,
  Mensual = 2,
  Anual = 3,
};

// The number a value is stored as.
template <typename E>
requires std::is_enum_v<E>
constexpr auto ToInt(E e) noexcept -> std::underlying_type_t<E> {
  return static_cast<std::underlying_type_t<E>>(e);
}

}  // namespace kivmovfrec
