#include "platform/suite/counter.h"

#include <limits>
#include <string>

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
Variant FirstValue(Connection& cn, const std::string& sql) {
  auto rs = cn.OpenResultset(sql);
  if (rs->Eof()) return Variant::Null();
  return rs->Get(0);
}

double StartValue(Connection& cn, std::string_view table) {
  const std::string_view key = KeyColumnOf(table);
  if (key.empty()) return 0;
  const Variant max =
      FirstValue(cn, "Select Max(" + std::string(key) + ") From " + std::string(table));
  return max.IsNull() || max.IsEmpty() ? 0 : vb::CDbl(max);
}

int64_t DrawInsideTransaction(Connection& cn, std::string_view table) {
  const std::string name = QuoteLiteral(table);
  const std::string increment =
      "Update genContadores Set CntValor = CntValor + 1 Where CntTabla = " + name;
  int64_t changed = cn.Execute(increment);
  if (changed == 0) {
    // No row yet. Another connection may be creating it at this very moment (PostgreSQL takes
    // no table lock), so the insert yields to an existing row instead of failing.
    const double start = StartValue(cn, table);
    cn.Execute("Insert Into genContadores (CntTabla, CntValor) Values (" + name + ", " +
               vb::NumberToText(start) + ") On Conflict Do Nothing");
    changed = cn.Execute(increment);
  }
  if (changed != 1) return -1;  // still none, or duplicated rows: no safe value
  const Variant value =
      FirstValue(cn, "Select CntValor From genContadores Where CntTabla = " + name);
  if (value.IsNull() || value.IsEmpty()) return -1;
  const double v = vb::CDbl(value);
  if (v < 1 || v > std::numeric_limits<int32_t>::max()) return -1;
  return static_cast<int64_t>(v);
}

}  // namespace

int32_t DrawTableCounter(Connection& cn, std::string_view table) {
  if (!IsPlainName(table)) return -1;
  try {
    if (cn.InTransaction()) return static_cast<int32_t>(DrawInsideTransaction(cn, table));
  } catch (...) {
    return -1;
  }
  try {
    cn.BeginTrans();
  } catch (...) {
    return -1;
  }
  try {
    const int64_t value = DrawInsideTransaction(cn, table);
    if (value < 0) {
      cn.RollbackTrans();
      return -1;
    }
    cn.CommitTrans();
    return static_cast<int32_t>(value);
  } catch (...) {
    try {
      if (cn.InTransaction()) cn.RollbackTrans();
    } catch (...) {
    }
    return -1;
  }
}

}  // namespace kivmovfrec::suite
