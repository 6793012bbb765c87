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

// Increments the table's counter row and reads the new value in one statement (each read of a
// row updated many times in one transaction walks its versions); the values of the rows
// changed (none when there is no row).
std::vector<Variant> Increment(Connection& cn, const DbParams& name) {
  // A counter at the largest 32-bit value is not incremented (PostgreSQL's integer column
  // would refuse it): it gives no value, as a missing row that cannot be made does.
  auto rs = cn.OpenResultset(
      "Update genContadores Set CntValor = CntValor + 1 Where CntTabla = ? And CntValor < "
      "2147483647 Returning CntValor",
      name);
  std::vector<Variant> values;
  for (; !rs->Eof(); rs->MoveNext()) values.push_back(rs->Get(0));
  return values;
}

int64_t Draw(Connection& cn, std::string_view table) {
  const DbParams name = {Variant(std::string(table))};
  std::vector<Variant> values = Increment(cn, name);
  if (values.empty()) {
    // No row yet. Another connection may be creating it at this very moment (PostgreSQL takes
    // no table lock), so the insert yields to an existing row instead of failing.
    const double start = StartValue(cn, table);
    cn.Execute(
        "Insert Into genContadores (CntTabla, CntValor) Values (?, ?) On Conflict Do Nothing",
        {Variant(std::string(table)), Variant(start)});
    values = Increment(cn, name);
  }
  if (values.size() != 1) return -1;  // still none, or duplicated rows: no safe value
  const Variant& value = values.front();
  if (value.IsNull() || value.IsEmpty()) return -1;
  const double v = vb::CDbl(value);
  if (v < 1 || v > std::numeric_limits<int32_t>::max()) return -1;
  return static_cast<int64_t>(v);
}

}  // namespace

int32_t DrawTableCounter(Connection& cn, std::string_view table) {
  if (!IsPlainName(table)) return -1;
  // Inside the caller's transaction the draw is part of it (a failure there is the caller's to
  // roll back); otherwise it gets a transaction of its own, committed only with a value.
  if (cn.InTransaction()) return static_cast<int32_t>(Draw(cn, table));
  Transaccion transaccion(cn);
  const int64_t value = Draw(cn, table);
  if (value < 0) return -1;
  transaccion.Commit();
  return static_cast<int32_t>(value);
}

}  // namespace kivmovfrec::suite
