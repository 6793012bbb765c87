// New keys of the component's keyed tables come from the suite's table counters, never from the
// database's own numbering.
#pragma once

#include <cstdint>
#include <string_view>

#include "kivmovfrec/services.h"

namespace kivmovfrec::storage {

inline constexpr int kErrorContador = 8000;
inline constexpr const char* kFuenteContador = "DBFncs";

// Draws the next key of `tabla` ("genMovimientosFrecuentes", "genRecurrencias") from the
// counter service. When the service answers -1 throws ComponentError{8000, "DBFncs", catalogue
// text 904 in language `idioma`}. Errors of the service itself pass through unchanged.
int32_t NuevoID(IDBFncs& dbf, std::string_view tabla, int idioma);

}  // namespace kivmovfrec::storage
