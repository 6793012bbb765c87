// What the two halves of frmCheckList share: the controls it keeps, the layout of the item grid
// and two readings of typed numbers.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string>

#include "kivmovfrec/controles.h"
#include "ui/checklist/frm_check_list.h"

namespace kivmovfrec::checklist {

// vsItems columns: tick and name on view, the rest hidden.
enum ColumnaItems {
  kTilde,
  kNombre,
  kComentario,
  kImportancia,
  kPrecede,
  kPrecedeNombre,
  kEstado,
  kID
};
inline constexpr int kColumnasItems = 8;

inline constexpr const char* kFormularioElegirLista = "frmElegirLista";

// True for a non-empty text of decimal digits only.
inline bool SoloDigitos(const std::string& s) {
  return !s.empty() &&
         std::all_of(s.begin(), s.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

// The text as a whole number; 0 when it is none or does not fit.
inline int32_t ANumero(const std::string& s) {
  try {
    const long v = std::stol(s);
    return v < INT32_MIN || v > INT32_MAX ? 0 : static_cast<int32_t>(v);
  } catch (const std::exception&) {
    return 0;
  }
}

struct frmCheckList::Controles {
  using ITexto = controles::ITexto;
  using ILista = controles::ILista;
  using ICasilla = controles::ICasilla;
  using IControl = controles::IControl;
  using IBoton = controles::IBoton;
  using IGrilla = controles::IGrilla;
  ITexto* nombre;
  ITexto* memo;
  ILista* frecuencia;
  ITexto* vence;
  ITexto* notificar;
  ITexto* q_ocurre;
  ITexto* hasta;
  ICasilla* sin_empresa;
  IControl* next_vto;
  IControl* last_vto;
  IBoton* hl_ocurre;
  ITexto* nombre_i;
  ITexto* memo_i;
  ILista* importancia;
  ITexto* precede;
  ICasilla* realizado;
  IGrilla* items;
  IBoton* nuevo;
  IBoton* editar;
  IBoton* del_cancel;
  IBoton* ayuda;
  IBoton* finalizar;
  IBoton* cancelar;
};

}  // namespace kivmovfrec::checklist
