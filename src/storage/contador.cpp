#include "storage/contador.h"

#include <cctype>
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

namespace {

std::string Minusculas(std::string_view tabla) {
  std::string s(tabla);
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

}  // namespace

void ClavesReservadas::Reservar(std::string_view tabla, int32_t cantidad) {
  if (cantidad < 1) return;
  const int32_t primera = servicio_.ReserveTableCounter(tabla, cantidad);
  if (primera < 1) return;
  bloques_[Minusculas(tabla)] = {primera, primera + (cantidad - 1)};
}

int32_t ClavesReservadas::GetTableCounter(std::string_view table) {
  const auto it = bloques_.find(Minusculas(table));
  if (it == bloques_.end() || it->second.siguiente > it->second.ultimo) {
    return servicio_.GetTableCounter(table);
  }
  return it->second.siguiente++;
}

}  // namespace kivmovfrec::storage
