// The query limit's shared pieces: how the limit is written for people and the error a cancelled
// statement becomes. Internal to the database layer; the contract is Connection::SetQueryLimit.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "kivmovfrec/db.h"

namespace kivmovfrec::sql {

// The limit in seconds with a decimal comma when needed: "10 s", "0,2 s", "1,25 s".
std::string QueryLimitText(std::chrono::milliseconds limit);

// DbError of kind Timeout: "La consulta superó el límite de 10 s (sentencia: <shown>)".
DbError QueryLimitError(std::chrono::milliseconds limit, std::string_view shown);

}  // namespace kivmovfrec::sql
