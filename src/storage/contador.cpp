#include "storage/contador.h"

#include <string>

#include "kivmovfrec/errors.h"
#include "resources/catalogue.h"
#include "resources/msg.h"

namespace kivmovfrec::storage {

int32_t NuevoID(IDBFncs& dbf, std::string_view tabla, int idioma) {
  const int32_t id = dbf.GetTableCounter(tabla);
  if (id == -1) {
    throw ComponentError(kErrorContador, kFuenteContador,
                         std::string(resources::Texto(msg::kContadorTablaFallido, idioma)));
  }
  return id;
}

}  // namespace kivmovfrec::storage
