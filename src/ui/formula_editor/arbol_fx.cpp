#include "ui/formula_editor/arbol_fx.h"

#include "formula/catalogo_fx.h"
#include "platform/vb/text.h"
#include "resources/catalogue.h"
#include "resources/legend_macros.h"
#include "resources/msg.h"

namespace kivmovfrec::ui::fx {

std::vector<NodoFx> Nivel(bool leyendas, int padre, int idioma) {
  std::vector<NodoFx> out;
  if (leyendas) {
    if (padre == 0) {
      out.push_back({NodoFx::Tipo::Grupo, kGrupoLeyendas,
                     std::string(resources::Texto(msg::kFormulasDeLeyendas, idioma)), "", ""});
    } else if (padre == kGrupoLeyendas) {
      for (int i = 1; i < resources::kLegendMacroEntries; ++i) {
        const auto campos = vb::Split(resources::LegendMacroEntry(i), "|");
        out.push_back({NodoFx::Tipo::Macro, i, vb::Trim(campos[0]),
                       campos.size() > 1 ? campos[1] : "", campos.size() > 2 ? campos[2] : ""});
      }
    }
    return out;
  }
  if (padre < 0) return out;
  for (const formula::EntradaFx& e : formula::clsFxMovFrec::Entradas()) {
    if (e.padre != padre) continue;
    out.push_back({e.EsGrupo() ? NodoFx::Tipo::Grupo : NodoFx::Tipo::Funcion, e.id,
                   std::string(e.titulo), std::string(e.ayuda), ""});
  }
  return out;
}

std::string DoblarAmpersand(std::string_view caption) {
  return vb::Replace(caption, "&", "&&");
}

std::string RestaurarAmpersand(std::string_view celda) {
  return vb::Replace(celda, "&&", "&");
}

std::string Referencia(int id, const std::vector<std::string>& argumentos) {
  std::string out = "[" + std::to_string(id) + ":";
  for (size_t i = 0; i < argumentos.size(); ++i) out += (i ? ";" : "") + argumentos[i];
  return out + "]";
}

}  // namespace kivmovfrec::ui::fx
