// frmWMovFrec, the notice form: name, comment, the users who receive it (typed as codes or
// chosen in the user picker), the company flag, then the frequency fields.
#include <string>

#include "resources/msg.h"
#include "ui/user_picker/frm_find_user.h"
#include "ui/wizard/frm_wmovfrec_partes.h"

namespace kivmovfrec::ui {

using namespace controles;

void frmWMovFrec::Estado::CrearAviso() {
  IFormulario& f = *form;
  const int p = kPanelGeneral;
  sin_empresa = &f.CrearCasilla("chSinEmpresa", p);
  sin_empresa->Caption(Texto(msg::kCapSoloEstaEmpresaAsistente));
  nombre = &f.CrearTexto("tNombre", p);
  nombre->Caption(Texto(msg::kCapNombre));
  leyenda = &f.CrearTexto("tMemoAviso", p);
  leyenda->Caption(Texto(msg::kCapComentario));
  usuarios = &f.CrearBoton("hlUsuarios", p, ClaseControl::Enlace);
  usuarios->Caption(Texto(msg::kCapUsuario));
  usuarios->AlPulsar([this] { Atrapar(msg::kErrorSetearPanel, [this] { ElegirUsuarios(); }); });
  ente = &f.CrearTexto("tEnte", p);
  ente->Caption(Texto(msg::kCapPara));
  CrearFrecuencia(p);
}

void frmWMovFrec::Estado::CargarAviso() {
  const clsRegMovimientoFrecuente& m = *mf->MovFrecuente();
  nombre->Text(m.Nombre());
  leyenda->Text(m.Memo());
  sin_empresa->Marcada(m.ID() == 0 || m.Empresa() != 0);
  std::string codigos;
  if (m.ID() > 0) {
    for (auto rs = ctx.cn->OpenReadOnly(
             "Select AvUUsuario From genAvisosUsuarios Where AvUAviso = " + std::to_string(m.ID()) +
             " Order By AvUUsuario");
         !rs->Eof(); rs->MoveNext()) {
      codigos += (codigos.empty() ? "" : ", ") + std::to_string(Entero(rs->Get("AvUUsuario")));
    }
  }
  ente->Text(codigos);
}

void frmWMovFrec::Estado::ElegirUsuarios() {
  frmFindUser picker(*ctx.cn, ctx.servicios, idioma);
  if (const std::optional<EleccionUsuarios> r = picker.Mostrar(ente->Text())) {
    ente->Text(r->codigos);
  }
}

}  // namespace kivmovfrec::ui
