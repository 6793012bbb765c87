#include "core/resumen_recurrencia.h"

#include <optional>

#include "platform/vb/convert.h"
#include "platform/vb/format.h"
#include "resources/catalogue.h"
#include "resources/msg.h"

namespace kivmovfrec::core {
namespace {

std::optional<Date> ComoFecha(const std::string& texto) {
  return vb::ParseDate(texto);
}

// Code 0 ("000000") is once only; any other code repeats.
bool CodigoRepite(const std::string& codigo) {
  return vb::Val(codigo) != 0;
}

}  // namespace

std::string TextoSeInicio(const clsRegRecurrencia& rec, int idioma) {
  const auto inicio = ComoFecha(rec.FechaInicio());
  if (!inicio) return {};
  return std::string(resources::Texto(msg::kSeInicioEl, idioma)) +
         vb::FormatDate(*inicio, "Long Date");
}

std::string TextoYaOcurrio(const clsRegRecurrencia& rec, int idioma) {
  return std::string(resources::Texto(msg::kYaOcurrio, idioma)) +
         std::to_string(static_cast<int64_t>(rec.NumOcurrencia()) - 1) +
         std::string(resources::Texto(msg::kVeces, idioma));
}

bool MostrarYaOcurrio(const clsRegRecurrencia& rec) {
  if (rec.NumOcurrencia() >= 2) return true;
  if (!CodigoRepite(rec.Frecuencia())) return false;
  const auto inicio = ComoFecha(rec.FechaInicio());
  const auto proxima = ComoFecha(rec.FechaProxima());
  return !inicio || !proxima || *inicio != *proxima;
}

}  // namespace kivmovfrec::core
