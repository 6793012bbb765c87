// Result sets of the PostgreSQL adapter. Internal to the adapter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kivmovfrec/db.h"
#include "platform/db/materialised_resultset.h"
#include "platform/db/postgres/pg_session.h"

namespace kivmovfrec::postgres {

// Name of the hidden column that carries each row's ctid in an updatable set of a table without
// a primary key.
inline constexpr const char* kCtidAlias = "kmf_ctid__";

// The table behind an updatable set.
//
// Rows are identified by the table's primary key when it has one: the key's values as read
// (exact server text) go into the WHERE of UPDATE and DELETE, so a set keeps working when other
// statements of the same connection change the row's other columns. A table without a primary
// key (genRenglonMovFrecuentes has none) is identified by the row version's ctid instead; a
// ctid changes whenever the row is updated, so when anything else updated or deleted the row
// after the set read it, Update and Delete find nothing and throw DbError, writing nothing.
struct WriteTarget : sql::TableColumns {
  std::string qualified;    // schema-qualified and quoted, for the statements written
  std::vector<size_t> key;  // positions of the primary key columns; empty = ctid
};

// Reads the rows of `result` at once, at most `max_rows` of them. With a ctid target, the
// result's first column is the ctid (kCtidAlias), hidden from the reader.
std::unique_ptr<Resultset> MakeResultset(std::shared_ptr<Session> session, const PGresult* result,
                                         std::optional<WriteTarget> target,
                                         size_t max_rows = SIZE_MAX);

}  // namespace kivmovfrec::postgres
