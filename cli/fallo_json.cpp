#include <string>

#include "command.h"

namespace kivmovfrec::cli {

nlohmann::ordered_json ErrorJson(std::optional<int> numero, const std::string& origen,
                                 const std::string& texto) {
  return {{"Numero", numero ? nlohmann::ordered_json(*numero) : nlohmann::ordered_json(nullptr)},
          {"Origen", origen},
          {"Texto", texto}};
}

void Context::FalloJson(std::optional<int> numero, const std::string& origen,
                        const std::string& texto) {
  if (!json() || salida_json_) return;
  PrintJson({{"Ok", false}, {"Error", ErrorJson(numero, origen, texto)}});
}

}  // namespace kivmovfrec::cli
