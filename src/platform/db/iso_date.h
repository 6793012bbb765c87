// Dates as the adapters store them in text: ISO "yyyy-mm-dd hh:nn:ss".
//
// Kept inside the database layer on purpose: what a column holds is a storage format, read and
// written exactly, not text typed by a person (which platform/vb reads with its own rules).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kivmovfrec/variant.h"

namespace kivmovfrec::db {

// "yyyy-mm-dd hh:nn:ss", the time rounded to the nearest second. Years outside 100..9999 throw
// DbError.
std::string FormatIsoDateTime(Date d);

// Reads "yyyy-mm-dd", "yyyy-mm-dd hh:nn", "yyyy-mm-dd hh:nn:ss" with an optional fraction of
// a second, and the same with "T" between date and time. Nothing for any other text or an
// impossible date (2005-02-30).
std::optional<Date> ParseIsoDateTime(std::string_view text);

}  // namespace kivmovfrec::db
