#include "platform/db/query_limit.h"

#include <fmt/format.h>

namespace kivmovfrec::sql {

std::string QueryLimitText(std::chrono::milliseconds limit) {
  const long long ms = limit.count();
  std::string text = fmt::format("{}", ms / 1000);
  if (ms % 1000 != 0) {
    std::string decimals = fmt::format("{:03}", ms % 1000);
    while (decimals.back() == '0') decimals.pop_back();
    text += "," + decimals;
  }
  return text + " s";
}

DbError QueryLimitError(std::chrono::milliseconds limit, std::string_view shown) {
  return DbError(fmt::format("La consulta superó el límite de {} (sentencia: {})",
                             QueryLimitText(limit), shown),
                 DbErrorKind::Timeout);
}

}  // namespace kivmovfrec::sql
