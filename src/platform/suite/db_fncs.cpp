#include "platform/suite/db_fncs.h"

#include <charconv>
#include <stdexcept>

#include "platform/suite/counter.h"
#include "platform/suite/sql_text.h"
#include "platform/vb/convert.h"

namespace kivmovfrec::suite {

std::optional<std::set<int32_t>> ParseUserList(std::string_view usuarios) {
  std::set<int32_t> codes;
  if (TrimBlanks(usuarios).empty()) return codes;
  size_t start = 0;
  while (true) {
    const size_t comma = usuarios.find(',', start);
    const std::string item = TrimBlanks(usuarios.substr(
        start, comma == std::string_view::npos ? std::string_view::npos : comma - start));
    int32_t code = 0;
    const auto [end, ec] = std::from_chars(item.data(), item.data() + item.size(), code);
    if (item.empty() || ec != std::errc() || end != item.data() + item.size()) {
      return std::nullopt;
    }
    codes.insert(code);
    if (comma == std::string_view::npos) break;
    start = comma + 1;
  }
  return codes;
}

Variant ReadSetting(Connection& cn, std::string_view name) {
  const std::string key = AsciiLower(TrimBlanks(name));
  if (key.empty()) return Variant();
  auto rs = cn.OpenResultset(
      "Select ParValor, ParTexto From genParametros Where Lower(Trim(ParNombre)) = ?",
      {Variant(key)});
  if (rs->Eof()) return Variant();
  Variant value = rs->Get("ParValor");
  if (!value.IsNull()) return value;
  return rs->Get("ParTexto");
}

std::optional<std::set<int32_t>> CheckNoticeUsers(Connection& cn, int32_t aviso,
                                                  const std::string& usuarios) {
  if (aviso <= 0) return std::nullopt;
  auto codes = ParseUserList(usuarios);
  if (!codes || codes->empty()) return codes;
  std::string list;
  for (int32_t code : *codes) {
    if (code <= 0) return std::nullopt;
    if (!list.empty()) list += ", ";
    list += std::to_string(code);
  }
  try {
    auto rs = cn.OpenResultset("Select UsuCodigo From admUsuarios Where UsuCodigo In (" + list +
                               ") And UsuHabilitado <> 0");
    std::set<int32_t> found;
    for (; !rs->Eof(); rs->MoveNext()) found.insert(vb::CLng(rs->Get(0)));
    if (found != *codes) return std::nullopt;
  } catch (...) {
    return std::nullopt;
  }
  return codes;
}

namespace {

void ReplaceRecipients(Connection& cn, int32_t aviso, const std::set<int32_t>& codes) {
  const std::string notice = std::to_string(aviso);
  std::string list;
  for (int32_t code : codes) {
    if (!list.empty()) list += ", ";
    list += std::to_string(code);
  }
  std::string remove = "Delete From genAvisosUsuarios Where AvUAviso = " + notice;
  if (!list.empty()) remove += " And AvUUsuario Not In (" + list + ")";
  cn.Execute(remove);
  for (int32_t code : codes) {
    cn.Execute("Insert Into genAvisosUsuarios (AvUAviso, AvUUsuario, AvUVisto) Values (" + notice +
               ", " + std::to_string(code) + ", 0) On Conflict Do Nothing");
  }
}

}  // namespace

bool LinkNoticeUsers(Connection& cn, int32_t aviso, const std::string& usuarios) {
  try {
    // A level of the caller's transaction (its failure undoes only this link, the check's
    // reads included), or a transaction of its own.
    Transaccion transaccion(cn);
    const auto codes = CheckNoticeUsers(cn, aviso, usuarios);
    if (!codes) return false;
    ReplaceRecipients(cn, aviso, *codes);
    transaccion.Commit();
    return true;
  } catch (...) {
    return false;
  }
}

DbFncs::DbFncs(std::shared_ptr<Connection> cn, std::shared_ptr<IMessages> help)
    : cn_(std::move(cn)), help_(std::move(help)) {
  if (!cn_ || !help_) throw std::invalid_argument("DbFncs: falta la conexión o los mensajes");
}

int32_t DbFncs::GetTableCounter(std::string_view table) {
  return DrawTableCounter(*cn_, table);
}

int32_t DbFncs::ReserveTableCounter(std::string_view table, int32_t count) {
  return suite::ReserveTableCounter(*cn_, table, count);
}

Variant DbFncs::GetSetting(std::string_view name) {
  return ReadSetting(*cn_, name);
}

void DbFncs::ShowHelp(int context_id) {
  help_->ShowHelp(context_id);
}

bool DbFncs::VincularAvisos(int32_t aviso, const std::string& usuarios) {
  return LinkNoticeUsers(*cn_, aviso, usuarios);
}

}  // namespace kivmovfrec::suite
