// New keys of the component's keyed tables come from the suite's table counters, never from the
// database's own numbering.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "kivmovfrec/services.h"

namespace kivmovfrec::storage {

inline constexpr int kErrorContador = 8000;
inline constexpr const char* kFuenteContador = "DBFncs";

// Draws the next key of `tabla` ("genMovimientosFrecuentes", "genRecurrencias") from the
// counter service. When the service answers -1 throws ComponentError{8000, "DBFncs", catalogue
// text 904 in language `idioma`}. Errors of the service itself pass through unchanged.
int32_t NuevoID(IDBFncs& dbf, std::string_view tabla, int idioma);

// The counter service of a run of saves, with keys drawn beforehand in blocks: Reservar draws
// `cantidad` keys of a table in one counter update (IDBFncs::ReserveTableCounter), and
// GetTableCounter hands them out in order; a table without a block, or whose block is used up,
// draws from the service as usual. Everything else goes to the service.
//
// The block belongs to the transaction that drew it: whoever reserves inside a transaction level
// stops using this object when that level ends, since a rollback gives the keys back to the
// counter. Keys of a block left unused are lost (a gap in the numbering, never a key twice).
class ClavesReservadas final : public IDBFncs {
 public:
  explicit ClavesReservadas(IDBFncs& servicio) : servicio_(servicio) {}

  // Draws a block of `cantidad` keys of `tabla` (nothing when `cantidad` is less than 1 or the
  // service draws no blocks). Database errors of the service pass through.
  void Reservar(std::string_view tabla, int32_t cantidad);

  int32_t GetTableCounter(std::string_view table) override;
  int32_t ReserveTableCounter(std::string_view table, int32_t count) override {
    return servicio_.ReserveTableCounter(table, count);
  }
  Variant GetSetting(std::string_view name) override { return servicio_.GetSetting(name); }
  void ShowHelp(int context_id) override { servicio_.ShowHelp(context_id); }
  bool VincularAvisos(int32_t aviso, const std::string& usuarios) override {
    return servicio_.VincularAvisos(aviso, usuarios);
  }

 private:
  struct Bloque {
    int32_t siguiente;
    int32_t ultimo;
  };
  IDBFncs& servicio_;
  std::map<std::string, Bloque> bloques_;  // by table name in lower case
};

}  // namespace kivmovfrec::storage
