#include "resources/help_topics.h"

#include <array>
#include <utility>

namespace kivmovfrec::resources {

namespace {

constexpr std::array<std::pair<std::string_view, int>, 15> kTemas{{
    {"checkList", 332},    // task-list editor
    {"calendario", 330},   // notice form
    {"fxCta", 306},        // formula editor, line formulas
    {"fxLey", 305},        // formula editor, legends
    {"vincMov", 308},      // linking dialog
    {"compFreNom", 316},   // frequent voucher: general data
    {"compFreCta", 317},   // frequent voucher: accounts
    {"asiFreNom", 326},    // frequent entry: general data
    {"asiFreCta", 327},    // frequent entry: accounts
    {"asiAgeNom", 321},    // scheduled entry: general data
    {"asiAgeCta", 322},    // scheduled entry: accounts
    {"asiAgeFrec", 323},   // scheduled entry: frequency
    {"compAgeNom", 311},   // scheduled voucher: general data
    {"compAgeCta", 312},   // scheduled voucher: accounts
    {"compAgeFrec", 313},  // scheduled voucher: frequency
}};

}  // namespace

int HelpContext(std::string_view key) {
  for (const auto& [clave, contexto] : kTemas) {
    if (clave == key) return contexto;
  }
  return 0;
}

}  // namespace kivmovfrec::resources
