// clsFxMovFrec: the catalogue of formula functions a line formula can refer to.
//
// A stored formula refers to an entry as "[" id ":" arguments "]" (arguments separated by ";").
// Every entry has an id (the number written in stored formulas), a caption (what the user sees
// and types back), a short code, a parent (0 at the top, else the id of the group it belongs
// to), a help text, the lookup query of its first argument, the lookup query of its second
// argument or a marker word, and the function word (or formula text) it stands for. Group
// entries have no code, lookups nor word: they only gather their children in the editor's tree.
//
// The lookup queries return three columns (id, key, display text) and hold placeholders that
// storage/consulta_lookup.h replaces before they run ([pEmp], [pIDMov], [pPreID], [pCodCta],
// [pFindID], [pFindKey]). They are kept byte for byte as the suite stores them; the doubled
// blank of the two MFrTipo = 1 movement lookups and the lower-case "not" of the scheduled
// voucher lookup are part of the stored text.
//
// The table is static data: every clsFxMovFrec object sees the same 22 entries in the same
// order, and nothing here touches the database or throws.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace kivmovfrec::formula {

// Marker words of the second-argument column that make the argument a line of a movement.
inline constexpr std::string_view kPalabraCuentaMovFrecuente = "[CuentaMovFrecuente]";
inline constexpr std::string_view kPalabraCuentaOtroMov = "[CuentaProyectoCentroCosto]";

// Ids of the entries other parts name directly.
inline constexpr uint8_t kFxCuentaIngresada = 1;  // "CI": a line of the same movement
inline constexpr uint8_t kFxDiferencia = 10;      // "xDif": [RestoCuenta]
inline constexpr uint8_t kFxPedirValor = 11;      // "Valor": [PedirDato]
inline constexpr uint8_t kFxOcurrencia = 12;      // "Ocurr": [CantidadOcurrencia]
inline constexpr uint8_t kFxImporteTotal = 14;    // "ImpTotal": [ImpMov]

struct EntradaFx {
  uint8_t id = 0;
  std::string_view titulo;     // caption
  std::string_view codigo;     // "" for a group entry
  uint8_t padre = 0;           // 0, or the id of the group entry
  std::string_view ayuda;      // help text
  std::string_view consulta1;  // lookup of the first argument; "" = none
  std::string_view consulta2;  // lookup of the second argument or a marker word; "" = none
  std::string_view palabra;    // function word or formula text; "" = none

  bool EsGrupo() const { return codigo.empty(); }
  // The second column is a line marker ([CuentaMovFrecuente] / [CuentaProyectoCentroCosto]).
  bool ArgumentoEsLinea() const {
    return consulta2 == kPalabraCuentaMovFrecuente || consulta2 == kPalabraCuentaOtroMov;
  }
};

// The catalogue of formula functions. Indices run 0..Cantidad()-1 in the table's order; an index
// outside that range gives an empty entry (id 0, empty texts).
class clsFxMovFrec {
 public:
  int Cantidad() const;
  const EntradaFx& Entrada(int indice) const;

  uint8_t Id(int indice) const { return Entrada(indice).id; }
  std::string_view Titulo(int indice) const { return Entrada(indice).titulo; }
  std::string_view Codigo(int indice) const { return Entrada(indice).codigo; }
  uint8_t Padre(int indice) const { return Entrada(indice).padre; }
  std::string_view Ayuda(int indice) const { return Entrada(indice).ayuda; }
  std::string_view Consulta1(int indice) const { return Entrada(indice).consulta1; }
  std::string_view Consulta2(int indice) const { return Entrada(indice).consulta2; }
  std::string_view Palabra(int indice) const { return Entrada(indice).palabra; }

  // Index of the entry with that id, -1 when there is none (group ids are found too).
  int Buscar(int id) const;
  // The entry with that id, or nullptr.
  const EntradaFx* BuscarEntrada(int id) const;
  // Index of the function entry (not a group) whose caption equals `titulo` without regard to
  // case (ASCII and the Spanish accented letters), -1 when none.
  int BuscarTitulo(std::string_view titulo) const;

  // Every entry, in order (static storage).
  static std::span<const EntradaFx> Entradas();
};

}  // namespace kivmovfrec::formula
