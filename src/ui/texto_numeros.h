// Whole numbers typed or exchanged as text by the dialogs (link orders, movement ids, user
// codes). Plain ASCII digits only: no sign, no grouping, no decimals, blanks around allowed.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kivmovfrec::ui {

// The text without the blanks (spaces and tabs) at either end.
std::string_view RecortarBlancos(std::string_view texto);

// The number written in `texto` when it is 1..maximo; nothing for anything else (empty, 0,
// signs, letters, a value past `maximo`, however many digits).
std::optional<int32_t> LeerEnteroPositivo(std::string_view texto, int32_t maximo);

}  // namespace kivmovfrec::ui
