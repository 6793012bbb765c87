// frmFindUser: the user picker, a modal dialog titled "Selección de usuarios" in which the users a
// notice is addressed to are ticked.
//
// The grid vsGrid ("Para|Identificación|Nombre") lists the enabled users (CargarUsuarios) with the
// given choice ticked; only the "Para" column can be ticked, and each row keeps its user's code
// in a hidden column. bfFinish "&Aceptar" hands the ticked rows back (Elegidos), bfCancel
// "&Cancelar" and the close box hand nothing back, bfHelp "A&yuda" shows the notices' help topic.
#pragma once

#include <optional>
#include <string_view>

#include "kivmovfrec/db.h"
#include "kivmovfrec/services.h"
#include "ui/user_picker/eleccion_usuarios.h"

namespace kivmovfrec::ui {

class frmFindUser {
 public:
  // `servicios` gives the form factory (required) and the help; both outlive the dialog.
  frmFindUser(Connection& cn, const SuiteServices& servicios, int idioma);

  // Shows the picker with the users of `codigos` ticked. Returns the new choice on Aceptar
  // (empty texts when nothing is ticked), nothing when the person cancels. Throws DbError when
  // the users cannot be read and std::logic_error when the services have no form factory.
  std::optional<EleccionUsuarios> Mostrar(std::string_view codigos);

 private:
  Connection& cn_;
  const SuiteServices& servicios_;
  int idioma_;
};

}  // namespace kivmovfrec::ui
