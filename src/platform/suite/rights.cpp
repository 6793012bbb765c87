#include "platform/suite/rights.h"

#include <stdexcept>

#include "platform/vb/convert.h"
#include "platform/vb/text.h"

namespace kivmovfrec::suite {
namespace {

std::string FoldOption(std::string_view opcion) {
  return vb::LCase(vb::Trim(opcion));
}

}  // namespace

DbUserRights::DbUserRights(std::shared_ptr<Connection> cn, int32_t usuario)
    : cn_(std::move(cn)), usuario_(usuario) {
  if (!cn_) throw std::invalid_argument("DbUserRights: falta la conexión");
}

std::string DbUserRights::Letras(int32_t empresa, std::string_view opcion) {
  const std::string wanted = FoldOption(opcion);
  if (wanted.empty()) return "";
  // Rights of one user in one company are a handful of rows: the option is matched here, so
  // case folding covers accented letters the same way on every engine.
  auto rs = cn_->OpenResultset(
      "Select DerOpcion, DerLetras From admDerechos Where DerUsuario = ? And DerEmpresa = ?",
      {Variant(usuario_), Variant(empresa)});
  for (; !rs->Eof(); rs->MoveNext()) {
    const Variant option = rs->Get("DerOpcion");
    if (option.IsNull() || FoldOption(vb::CStr(option)) != wanted) continue;
    const Variant letters = rs->Get("DerLetras");
    return letters.IsNull() ? std::string() : vb::Trim(vb::CStr(letters));
  }
  return "";
}

void MemoryUserRights::Set(int32_t empresa, std::string_view opcion, std::string letras) {
  letras_[{empresa, FoldOption(opcion)}] = std::move(letras);
}

std::string MemoryUserRights::Letras(int32_t empresa, std::string_view opcion) {
  const auto it = letras_.find({empresa, FoldOption(opcion)});
  return it == letras_.end() ? std::string() : vb::Trim(it->second);
}

}  // namespace kivmovfrec::suite
