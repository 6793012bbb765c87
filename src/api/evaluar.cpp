#include "kivmovfrec/evaluar.h"

#include "platform/script/script_host.h"

namespace kivmovfrec {
namespace {

ErrorExpresion Error(const script::ScriptError& e) {
  return {e.number, e.description, e.column};
}

}  // namespace

ResultadoExpresion EvaluarExpresion(Connection* cn, std::string_view expresion,
                                    std::function<Date()> ahora) {
  script::HostOptions opciones;
  opciones.clock = std::move(ahora);
  const script::HostResult r = script::EvaluateScript(cn, expresion, true, opciones);
  ResultadoExpresion out;
  out.ok = r.ok;
  out.texto = r.text;
  out.error = Error(r.error);
  if (r.first_error) out.primer_error = Error(*r.first_error);
  return out;
}

}  // namespace kivmovfrec
