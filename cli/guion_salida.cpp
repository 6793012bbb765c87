#include "guion_salida.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "fachada.h"
#include "kivmovfrec/guion.h"

namespace kivmovfrec::cli {
namespace {

using Json = nlohmann::ordered_json;

std::string LeerGuion(const std::string& archivo) {
  std::error_code ec;
  if (std::filesystem::is_directory(archivo, ec))
    throw UsageError(archivo + " es una carpeta, no un guion");
  std::ifstream in(archivo, std::ios::binary);
  if (!in) throw UsageError("no se puede leer el guion " + archivo);
  std::ostringstream texto;
  texto << in.rdbuf();
  return texto.str();
}

Json InformeJson(const InformeGuion& i, const std::optional<std::string>& valor) {
  Json mensajes = Json::array();
  for (const MensajeGuion& m : i.mensajes) {
    mensajes.push_back({{"Numero", m.numero < 0 ? Json(nullptr) : Json(m.numero)},
                        {"Texto", m.texto},
                        {"Titulo", m.titulo},
                        {"Icono", m.icono},
                        {"Respuesta", m.respuesta}});
  }
  return {{"Mensajes", std::move(mensajes)},
          {"Ayuda", i.ayuda},
          {"Formulario", i.formulario},
          {"Panel", i.panel},
          {"Foco", i.foco},
          {"Seleccion", i.seleccion},
          {"Resultado", i.resultado},
          {"Valor", valor ? Json(*valor) : Json(nullptr)},
          {"Pasos", i.pasos},
          {"PasosEjecutados", i.pasos_ejecutados},
          {"Error", i.error.empty() ? Json(nullptr) : Json(i.error)}};
}

void ImprimirInforme(std::ostream& out, const InformeGuion& i,
                     const std::optional<std::string>& valor) {
  for (const MensajeGuion& m : i.mensajes) {
    std::string texto = m.texto;
    for (size_t p = texto.find('\n'); p != std::string::npos; p = texto.find('\n', p))
      texto.replace(p, 1, " / ");
    out << "Mensaje " << (m.numero < 0 ? std::string("-") : std::to_string(m.numero)) << " ["
        << (m.icono.empty() ? "sin icono" : m.icono) << "] " << texto << " -> " << m.respuesta
        << "\n";
  }
  for (int tema : i.ayuda) out << "Ayuda: tema " << tema << "\n";
  out << "Formulario: " << (i.formulario.empty() ? "(no se mostró)" : i.formulario) << ", panel "
      << i.panel << ", foco en " << (i.foco.empty() ? "(ninguno)" : i.foco);
  if (!i.seleccion.empty()) out << ", texto seleccionado «" << i.seleccion << "»";
  out << "\n";
  out << "Pasos: " << i.pasos_ejecutados << " de " << i.pasos << "\n";
  if (!i.error.empty()) out << "Error del guion: " << i.error << "\n";
  if (valor)
    out << "Valor: " << *valor << "\n";
  else
    out << "Resultado: " << i.resultado << "\n";
}

}  // namespace

int CorrerGuion(Context& ctx, const std::string& comando, const std::string& archivo,
                const std::function<ResultadoDialogo(clsMovFrecuente&)>& mostrar) {
  std::shared_ptr<GuionDialogos> guion;
  try {
    guion = GuionDialogos::Leer(LeerGuion(archivo));
  } catch (const std::invalid_argument& e) {
    throw UsageError(archivo + ": " + e.what());
  }
  guion->Instalar(ctx.services());
  auto fachada = AbrirFachada(ctx);
  const ResultadoDialogo r = mostrar(*fachada);
  InformeGuion informe = guion->Informe();
  informe.resultado = r.resultado;
  if (r.rechazo && informe.formulario.empty() && informe.mensajes.empty())
    return Rechazo(ctx, comando, *r.rechazo);
  if (ctx.json()) {
    Json j = InformeJson(informe, r.valor);
    j.update(r.extra);
    ctx.PrintJson(j);
  } else {
    ImprimirInforme(ctx.out(), informe, r.valor);
    ctx.out() << r.lineas_extra;
  }
  if (!fachada->UltimoError().empty())
    ctx.err() << "movfrec " << comando << ": " << fachada->UltimoError() << "\n";
  if (r.rechazo) {
    ctx.err() << "movfrec " << comando << ": " << *r.rechazo << "\n";
    return kExitFailed;
  }
  return informe.error.empty() && (r.resultado != 0 || r.valor) ? kExitOk : kExitFailed;
}

}  // namespace kivmovfrec::cli
