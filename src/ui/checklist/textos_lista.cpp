#include "ui/checklist/textos_lista.h"

#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "schedule/frequency.h"

namespace kivmovfrec::checklist {
namespace {

std::string DiaYHora(Date d) {
  std::string texto = vb::FormatDate(d, "dd/mm/yyyy");
  const vb::DateParts p = vb::Split(d);
  if (p.hour != 0 || p.minute != 0) texto += " " + vb::FormatDate(d, "hh:nn");
  return texto;
}

}  // namespace

std::vector<EntradaLista> Frecuencias(int idioma) {
  std::vector<EntradaLista> r;
  for (const schedule::FrequencyEntry& e : schedule::FrequencyCatalogue()) {
    r.push_back({schedule::FrequencyCaption(e, idioma), e.code});
  }
  return r;
}

std::vector<EntradaLista> Importancias(int idioma) {
  std::vector<EntradaLista> r;
  for (int16_t v = kImportanciaMinima; v <= kImportanciaMaxima; ++v) {
    r.push_back({std::string(resources::Texto(msg::Importancia(v), idioma)), v});
  }
  return r;
}

std::string EtiquetaProximoVencimiento(const ListaTareas& l, int idioma) {
  if (!l.vencimiento) return "";
  if (l.postergado <= 0) return DiaYHora(*l.vencimiento);
  const double aviso = l.notificar ? l.notificar->serial : vb::DateOnly(*l.vencimiento).serial;
  return std::string(resources::Texto(msg::kPostergado, idioma)) +
         vb::FormatDate(Date{aviso + l.postergado}, "dd/mm/yyyy");
}

std::string EtiquetaUltimoVencimiento(const ListaTareas& l) {
  return l.hasta ? vb::FormatDate(*l.hasta, "dd/mm/yyyy") : "";
}

}  // namespace kivmovfrec::checklist
