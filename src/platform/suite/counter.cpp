#include "platform/suite/counter.h"

#include <limits>
#include <string>
#include <vector>

#include "platform/suite/sql_text.h"
#include "platform/vb/convert.h"

namespace kivmovfrec::suite {
namespace {

// Key column of the tables whose keys the component draws from counters.
std::string_view KeyColumnOf(std::string_view table) {
  const std::string lower = AsciiLower(table);
  if (lower == "genmovimientosfrecuentes") return "MFrID";
  if (lower == "genrecurrencias") return "RecID";
  return {};
}

// Value of the first column of the first row, or Null when there is none.
Variant FirstValue(Connection& cn, const std::string& sql, const DbParams& params = {}) {
  auto rs = cn.OpenResultset(sql, params);
  if (rs->Eof()) return Variant::Null();
  return rs->Get(0);
}

double StartValue(Connection& cn, std::string_view table) {
  const std::string_view key = KeyColumnOf(table);
  if (key.empty()) return 0;
  // The table name is SQL syntax here; DrawTableCounter only lets plain names through.
  const Variant max =
      FirstValue(cn, "Select Max(" + std::string(key) + ") From " + std::string(table));
  return max.IsNull() || max.IsEmpty() ? 0 : vb::CDbl(max);
}

// Adds `count` to the table's counter row and reads the new value in one statement (each read
// of a row updated many times in one transaction walks its versions); the values of the rows
// changed (none when there is no row).
std::vector<Variant> Increment(Connection& cn, const DbParams& name, int32_t count) {
  // A counter that would pass the largest 32-bit value is not incremented (PostgreSQL's
  // integer column would refuse it): it gives no value, as a missing row that cannot be made
  // does. `count` is a positive number from this code, not from people: it goes in the text.
  const std::string n = std::to_string(count);
  auto rs = cn.OpenResultset("Update genContadores Set CntValor = CntValor + " + n +
                                 " Where CntTabla = ? And CntValor <= 2147483647 - " + n +
                                 " Returning CntValor",
                             name);
  std::vector<Variant> values;
  for (; !rs->Eof(); rs->MoveNext()) values.push_back(rs->Get(0));
  return values;
}

// The last value of a block of `count` values: the counter after the increment.
int64_t Draw(Connection& cn, std::string_view table, int32_t count) {
  const DbParams name = {Variant(std::string(table))};
  std::vector<Variant> values = Increment(cn, name, count);
  if (values.empty()) {
    // No row yet. Another connection may be creating it at this very moment (PostgreSQL takes
    // no table lock), so the insert yields to an existing row instead of failing.
    const double start = StartValue(cn, table);
    cn.Execute(
        "Insert Into genContadores (CntTabla, CntValor) Values (?, ?) On Conflict Do Nothing",
        {Variant(std::string(table)), Variant(start)});
    values = Increment(cn, name, count);
  }
  if (values.size() != 1) return -1;  // still none, or duplicated rows: no safe value
  const Variant& value = values.front();
  if (value.IsNull() || value.IsEmpty()) return -1;
  const double v = vb::CDbl(value);
  if (v < count || v > std::numeric_limits<int32_t>::max()) return -1;
  return static_cast<int64_t>(v);
}

}  // namespace

int32_t ReserveTableCounter(Connection& cn, std::string_view table, int32_t count) {
  if (!IsPlainName(table) || count < 1) return -1;
  // Inside the caller's transaction the draw is part of it (a failure there is the caller's to
  // roll back); otherwise it gets a transaction of its own, committed only with a value.
  if (cn.InTransaction()) {
    const int64_t last = Draw(cn, table, count);
    return last < 0 ? -1 : static_cast<int32_t>(last - count + 1);
  }
  Transaccion transaccion(cn);
  const int64_t last = Draw(cn, table, count);
  if (last < 0) return -1;
  transaccion.Commit();
  return static_cast<int32_t>(last - count + 1);
}

int32_t DrawTableCounter(Connection& cn, std::string_view table) {
  return ReserveTableCounter(cn, table, 1);
}

}  // namespace kivmovfrec::suite
