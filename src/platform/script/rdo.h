// Script objects over a database connection, shaped like the Remote Data Objects scripts use:
//
//   rdoCBase.OpenResultset(sql)          -> result set (read-only: Connection::OpenReadOnly)
//   rs(0), rs("MonID")                   -> value of a field of the current row, by 0-based index
//                                           or name (case-insensitive)
//   rs.Fields(i).Value, rs.Fields("x")   -> field object (default member Value; also Name)
//   rs.Fields.Count, rs.rdoColumns       -> the field collection
//   rs.EOF, rs.MoveNext, rs.RowCount, rs.Close
//
// Bounds: every statement runs under the connection's query limit (Connection::QueryLimit); a
// cancelled one is kDatabaseError with the limit named. A set holds at most kMaxScriptRows rows:
// the statement is stopped there (OpenReadOnlyRows), and a query with more rows is
// kDatabaseError "la consulta devuelve más de 100.000 filas...", so a query that yields rows
// without end neither fills memory nor gives a silently cut set. RowCount reads under the same
// bounds.
//
// Errors (VbError): a statement that would write, or SQL the database rejects, surfaces as
// kDatabaseError with the database's message (nothing is written); an unknown field name 3265;
// an index out of range 9; reading a field past the last row 3021; anything on a closed set
// kDatabaseError; Execute (writing) is refused with kDatabaseError; an unknown member 438.
//
// The objects keep the connection alive through the shared_ptr they were given.
#pragma once

#include <cstddef>
#include <memory>

#include "kivmovfrec/db.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec::script {

// Most rows a result set opened by a script may have.
inline constexpr size_t kMaxScriptRows = 100000;

std::shared_ptr<Object> MakeRdoConnection(std::shared_ptr<Connection> connection);

}  // namespace kivmovfrec::script
