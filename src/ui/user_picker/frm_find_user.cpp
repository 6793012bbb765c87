#include "ui/user_picker/frm_find_user.h"

#include <stdexcept>
#include <string>

#include "resources/catalogue.h"
#include "resources/help_topics.h"
#include "resources/msg.h"

namespace kivmovfrec::ui {

namespace {
constexpr int kPara = 0;
constexpr int kIdentificacion = 1;
constexpr int kNombre = 2;
constexpr int kCodigo = 3;  // hidden
}  // namespace

frmFindUser::frmFindUser(Connection& cn, const SuiteServices& servicios, int idioma)
    : cn_(cn), servicios_(servicios), idioma_(idioma) {}

std::optional<EleccionUsuarios> frmFindUser::Mostrar(std::string_view codigos) {
  if (!servicios_.formularios)
    throw std::logic_error("no hay dónde mostrar el selector de usuarios");
  std::vector<FilaUsuario> filas = CargarUsuarios(cn_, codigos);
  const auto texto = [&](int n) { return std::string(resources::Texto(n, idioma_)); };

  auto f = servicios_.formularios->Crear("frmFindUser");
  f->Titulo(texto(msg::kTituloSeleccionUsuarios));
  controles::IGrilla& grilla = f->CrearGrilla("vsGrid");
  grilla.Columnas(texto(msg::kEncabezadoUsuarios) + "|");
  grilla.ColumnaCasilla(kPara, true);
  grilla.ColumnaEditable(kPara, true);
  grilla.ColumnaOculta(kCodigo, true);
  for (const FilaUsuario& u : filas) {
    const int r = grilla.AgregarFila();
    grilla.Tilde(r, kPara, u.para);
    grilla.Celda(r, kIdentificacion, u.identificacion);
    grilla.Celda(r, kNombre, u.nombre);
    grilla.Celda(r, kCodigo, std::to_string(u.codigo));
  }
  if (!filas.empty()) grilla.Fila(0);

  controles::IBoton& aceptar = f->CrearBoton("bfFinish");
  aceptar.Caption(texto(msg::kCapAceptar));
  aceptar.PorDefecto(true);
  aceptar.AlPulsar([&] {
    for (size_t r = 0; r < filas.size(); ++r)
      filas[r].para = grilla.Tilde(static_cast<int>(r), kPara);
    f->Cerrar(1);
  });
  controles::IBoton& cancelar = f->CrearBoton("bfCancel");
  cancelar.Caption(texto(msg::kCapCancelar));
  cancelar.Cancela(true);
  cancelar.AlPulsar([&] { f->Cerrar(0); });
  controles::IBoton& ayuda = f->CrearBoton("bfHelp");
  ayuda.Caption(texto(msg::kBotonAyuda));
  ayuda.AlPulsar([&] {
    // The suite shows help through the message service (DBFncs hands it there too).
    if (servicios_.messages) servicios_.messages->ShowHelp(resources::HelpContext("calendario"));
  });
  f->AlPedirCierre([&] { f->Cerrar(0); });

  grilla.SetFocus();
  if (f->MostrarModal() != 1) return std::nullopt;
  return Elegidos(filas);
}

}  // namespace kivmovfrec::ui
