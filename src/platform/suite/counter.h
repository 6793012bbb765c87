// Table counters: the suite's source of new keys (genContadores: CntTabla, CntValor).
//
// CntValor holds the last value handed out for the table; drawing increments it and returns the
// new value. The increment is a single UPDATE, so the engine's write lock (SQLite: the
// transaction's reserved lock; PostgreSQL: the row lock) serialises concurrent draws from any
// number of connections and processes.
#pragma once

#include <cstdint>
#include <string_view>

#include "kivmovfrec/db.h"

namespace kivmovfrec::suite {

// Draws the next value of `table`'s counter on `cn`.
//  - Inside cn's open transaction the draw is part of it: rolled back with it, and no other
//    connection can draw until it ends.
//  - Outside a transaction the draw runs in a transaction of its own and is committed.
//  - A table without a counter row gets one. For the component's own keyed tables
//    (genMovimientosFrecuentes, genRecurrencias) the new row starts at the largest key already
//    stored, so a counter created late never hands out a key in use; other tables start at 0.
// Returns -1 when the name is not a plain table name or the value would not fit in 32 bits.
// A database failure throws its DbError (the transaction it opened is rolled back; a caller's
// transaction is left for the caller to roll back).
int32_t DrawTableCounter(Connection& cn, std::string_view table);

// Draws `count` consecutive values of `table`'s counter at once, as DrawTableCounter draws one
// (same transaction rules, same row creation), with a single UPDATE. Returns the first of them;
// the caller owns first .. first + count - 1. -1 when `count` is less than 1, the name is not
// a plain table name or the last value would not fit in 32 bits (nothing is drawn then).
int32_t ReserveTableCounter(Connection& cn, std::string_view table, int32_t count);

}  // namespace kivmovfrec::suite
