// Help topics: the dialogs ask for help by a topic key; the key gives the context number that
// the suite's help operation shows.
#pragma once

#include <string_view>

namespace kivmovfrec::resources {

// Context number of a topic key ("checkList" 332, "asiAgeNom" 321, ...). Keys are compared
// exactly, letter case included; an unknown key gives 0.
int HelpContext(std::string_view key);

}  // namespace kivmovfrec::resources
