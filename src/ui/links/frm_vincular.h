// frmVincular: choosing the movements to link with the one being edited, then their execution
// order. Titled "Vincular movimientos"; the exchange with the wizard is the link text
// (texto_vinculos.h).
//
// Step 1, choosing (panel 1): the grid vsGrid ("|^Orden||Nombre|Empresa": tick, order, kind,
// name, company; hidden: id, group, company id) lists the candidates (SqlCandidatos) with the
// linked ones ticked. cfMovimientos "&Movimientos:" filters by kind, chTodas "Ver los de
// &todas mis empresas" widens to the companies where the user holds "T" or "Q"; either reloads
// the grid keeping what is ticked. Ticking the head of a group ticks the members on view and
// says so (665); ticking a member of another group is refused (666). bfContinuar "&Continuar"
// goes to step 2; with nothing ticked it hands back the empty link text (no links).
//
// Step 2, ordering (panel 2, frame fraOrden): the ticked movements, the members tied to them
// (SqlMiembros) and the row "«Mi Movimiento»"; only the order column is editable, prefilled from
// the given link text, else from MFrMVOrden. bfContinuar, now "&Aceptar", checks that every row
// has an order and no two share one (667 / 668, the first offending row selected) and hands back
// the pairs in grid order, the edited movement's pair with its id (0 while it has none).
//
// bfCancel "&Cancelar" (either step) and the close box hand nothing back; bfHelp "A&yuda" shows
// the topic "vincMov".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/db.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec::ui {

// Kinds offered by cfMovimientos, in list order.
enum class FiltroVincular { Todos, Asientos, Comprobantes };

// The candidates: active, unscheduled, non-system movements of the given kinds and companies
// (`empresas` holds the ids; empty offers none), other than `movimiento`, that are not members of
// a group holding a scheduled movement; plus the active movements of `vinculados` whatever they
// are; by name. The same movement can come twice (as candidate and as linked).
std::string SqlCandidatos(int32_t movimiento, FiltroVincular filtro, bool todas_las_empresas,
                          const std::vector<int32_t>& empresas,
                          const std::vector<int32_t>& vinculados);

// The active, non-system movements tied to the groups headed by `elegidos`.
std::string SqlMiembros(const std::vector<int32_t>& elegidos);

class frmVincular {
 public:
  // `movimiento` is the edited movement (0 while new) of company `empresa`; `opcion` is the
  // rights option whose "T" or "Q" letters open a company to chTodas. `servicios` gives the form
  // factory (required), messages, help and rights; cn and servicios outlive the dialog.
  frmVincular(Connection& cn, const SuiteServices& servicios, int idioma, int32_t empresa,
              int32_t movimiento, std::string opcion);

  // Shows the dialog with the links of `vinculos` (a link text; an unreadable one counts as
  // none). Returns the new link text on accept, nothing when cancelled. Throws DbError when
  // the movements cannot be read, std::logic_error without a form factory.
  std::optional<std::string> Mostrar(std::string_view vinculos);

 private:
  Connection& cn_;
  const SuiteServices& servicios_;
  int idioma_;
  int32_t empresa_;
  int32_t movimiento_;
  std::string opcion_;
};

}  // namespace kivmovfrec::ui
