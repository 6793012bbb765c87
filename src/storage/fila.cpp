#include "storage/fila.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>

namespace kivmovfrec::storage {
namespace {

// Bound values per statement: well under SQLite's oldest limit (999).
constexpr size_t kMaxValores = 900;

}  // namespace

void EscribirFila(Resultset& rs, const ValoresFila& valores) {
  for (const auto& [columna, valor] : valores) rs.Set(columna, valor);
}

DbStatement SentenciaActualizar(std::string_view tabla, std::string_view clave, int32_t id,
                                const ValoresFila& valores) {
  DbStatement st;
  st.sql = "Update " + std::string(tabla) + " Set ";
  st.params.reserve(valores.size() + 1);
  for (const auto& [columna, valor] : valores) {
    st.sql += (st.params.empty() ? "" : ", ") + std::string(columna) + " = ?";
    st.params.push_back(valor);
  }
  st.sql += " Where " + std::string(clave) + " = ?";
  st.params.emplace_back(id);
  return st;
}

std::vector<DbStatement> SentenciasInsertar(std::string_view tabla,
                                            const std::vector<ValoresFila>& filas) {
  std::vector<DbStatement> out;
  if (filas.empty()) return out;
  const ValoresFila& primera = filas.front();
  if (primera.empty()) throw std::invalid_argument("SentenciasInsertar: fila sin columnas");
  for (const ValoresFila& f : filas) {
    const bool mismas = f.size() == primera.size() &&
                        std::equal(f.begin(), f.end(), primera.begin(), [](auto& a, auto& b) {
                          return std::strcmp(a.first, b.first) == 0;
                        });
    if (!mismas) throw std::invalid_argument("SentenciasInsertar: filas con columnas distintas");
  }
  std::string columnas, marcas;
  for (const auto& par : primera) {
    columnas += (columnas.empty() ? "" : ", ") + std::string(par.first);
    marcas += marcas.empty() ? "(?" : ", ?";
  }
  marcas += ")";
  const size_t por_sentencia = std::max<size_t>(1, kMaxValores / primera.size());
  for (size_t desde = 0; desde < filas.size(); desde += por_sentencia) {
    const size_t hasta = std::min(filas.size(), desde + por_sentencia);
    DbStatement st;
    st.sql = "Insert Into " + std::string(tabla) + " (" + columnas + ") Values ";
    st.params.reserve((hasta - desde) * primera.size());
    for (size_t i = desde; i < hasta; ++i) {
      st.sql += (i == desde ? "" : ", ") + marcas;
      for (const auto& par : filas[i]) st.params.push_back(par.second);
    }
    out.push_back(std::move(st));
  }
  return out;
}

ListaIds ListaDeIds(const std::vector<int32_t>& ids, size_t desde, size_t cuantos) {
  ListaIds out;
  for (size_t i = desde; i < std::min(ids.size(), desde + cuantos); ++i) {
    out.marcadores += out.marcadores.empty() ? "?" : ", ?";
    out.valores.emplace_back(ids[i]);
  }
  return out;
}

}  // namespace kivmovfrec::storage
