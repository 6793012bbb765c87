#include "platform/suite/balance.h"

#include <chrono>
#include <cmath>
#include <stdexcept>

#include <fmt/format.h>

#include "platform/vb/convert.h"

namespace kivmovfrec::suite {
namespace {

// 'yyyy-mm-dd' of the day after `fecha`. Entries are selected with AsiFecha before that day:
// compared as ISO text (SQLite) or as a timestamp (PostgreSQL) this takes every entry of the
// day itself whatever its time, and also entries stored without a time part.
std::string NextDayLiteral(Date fecha) {
  using namespace std::chrono;
  const sys_days epoch{year{1899} / December / 30};
  const auto day = epoch + days{static_cast<int64_t>(std::floor(fecha.serial)) + 1};
  const year_month_day ymd{day};
  return fmt::format("'{:04}-{:02}-{:02}'", static_cast<int>(ymd.year()),
                     static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()));
}

}  // namespace

std::string BalanceSql(int32_t cuenta, Date fecha) {
  return "Select Sum(Coalesce(ACuDebe, 0) - Coalesce(ACuHaber, 0)) From cceAsientoCuenta, "
         "cceAsientos Where ACuIDAsiento = AsiID And AsiEstado = 1 And ACuCuenta = " +
         std::to_string(cuenta) + " And AsiFecha < " + NextDayLiteral(fecha);
}

DbAccountBalance::DbAccountBalance(std::shared_ptr<Connection> cn) : cn_(std::move(cn)) {
  if (!cn_) throw std::invalid_argument("DbAccountBalance: falta la conexión");
}

double DbAccountBalance::Saldo(int32_t cuenta, Date fecha) {
  auto rs = cn_->OpenResultset(BalanceSql(cuenta, fecha));
  if (rs->Eof()) return 0;
  const Variant sum = rs->Get(0);
  if (sum.IsNull() || sum.IsEmpty()) return 0;
  // Amounts are kept with four decimals; the sum of binary fractions is brought back to them.
  return vb::RoundHalfEven(vb::CDbl(sum), 4);
}

}  // namespace kivmovfrec::suite
