// Suite services: what the component asks of the host suite. Each is an interface with a
// database-backed or console default (platform/suite) and a scripted implementation for tests
// and unattended hosts. A host may replace any of them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/db.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec {

// ---- Messages ---------------------------------------------------------------------------

// Icon and button codes as the VB MsgBox constants number them.
enum class MsgIcon : int { None = 0, Critical = 16, Question = 32, Exclamation = 48, Information = 64 };
enum class MsgButtons : int { OK = 0, OKCancel = 1, YesNoCancel = 3, YesNo = 4 };
// Buttons pressed, as MsgBox returns them.
inline constexpr int kMsgOK = 1;
inline constexpr int kMsgCancel = 2;
inline constexpr int kMsgYes = 6;
inline constexpr int kMsgNo = 7;

struct MessageRequest {
  std::string text;
  std::string caption;
  MsgIcon icon = MsgIcon::None;
  MsgButtons buttons = MsgButtons::OK;
  int default_button = 1;  // 1 = first button, 2 = second
};

class IMessages {
 public:
  virtual ~IMessages() = default;
  // Shows the message and returns the button pressed (kMsgOK, kMsgYes, kMsgNo, ...).
  virtual int Show(const MessageRequest& request) = 0;
};

// ---- Input ------------------------------------------------------------------------------

class IInput {
 public:
  virtual ~IInput() = default;
  // Asks for a number. `prompt` is shown to the user, `proposed` is the value offered. Returns
  // nothing when the user cancels; an answer that is not numeric is never returned.
  virtual std::optional<double> PedirNumero(const std::string& prompt, const std::string& caption,
                                            double proposed) = 0;
};

// ---- Database functions (DBFncs) ----------------------------------------------------------

class IDBFncs {
 public:
  virtual ~IDBFncs() = default;
  // Next value of the named table's counter, or -1 when none can be drawn. Atomic across
  // connections and processes; inside an open transaction the draw belongs to it.
  virtual int32_t GetTableCounter(std::string_view table) = 0;
  // Value of a named suite setting (a genParametros row); Empty when absent.
  virtual Variant GetSetting(std::string_view name) = 0;
  // Shows the help topic with the given context number (command 15).
  virtual void ShowHelp(int context_id) = 0;
  // Runs the stored routine that links a notice to the users who receive it. `usuarios` holds
  // user codes separated by ",".
  virtual void VincularAvisos(int32_t aviso, const std::string& usuarios) = 0;
};

// ---- User rights ------------------------------------------------------------------------

class IUserRights {
 public:
  virtual ~IUserRights() = default;
  // Permission letters of the current user for `opcion` in company `empresa` ("" for none).
  virtual std::string Letras(int32_t empresa, std::string_view opcion) = 0;
  virtual int32_t Usuario() const = 0;
};

// ---- Clock ------------------------------------------------------------------------------

class IClock {
 public:
  virtual ~IClock() = default;
  // Current date and time.
  virtual Date Now() = 0;
  // Current date at midnight.
  virtual Date Today() = 0;
};

// ---- Account balance --------------------------------------------------------------------

class IAccountBalance {
 public:
  virtual ~IAccountBalance() = default;
  // Balance (debit minus credit) of account `cuenta` in the accounting currency, counting the
  // posted entries dated on or before `fecha` (the whole day).
  virtual double Saldo(int32_t cuenta, Date fecha) = 0;
};

// ---- Date calculator ----------------------------------------------------------------------

// Every calendar step of a schedule. Codes are six-digit frequency codes (unit digit and a
// five-digit step); code 0 means once.
class IDateCalculator {
 public:
  virtual ~IDateCalculator() = default;
  // Lets the user compose a frequency; returns text whose first six characters are the code,
  // or "" when cancelled.
  virtual std::string EditarFrecuencia() = 0;
  // Given the first due date and either a count (count > 0) or a last date (count <= 0, last
  // date set), fills in the other: the date of the last occurrence, or the number of
  // occurrences on or before the last date.
  virtual void CalcularFinal(std::string_view code, Date inicio, int32_t& cantidad,
                             Date& final_) = 0;
  // The due date that follows `fecha` under `code`.
  virtual Date ProximaFecha(std::string_view code, Date fecha) = 0;
  // The frequency in words ("Todos los meses", "Cada 15 días", ...).
  virtual std::string DescribirFrecuencia(std::string_view code) = 0;
};

// ---- The bundle handed to the façade -------------------------------------------------------

struct SuiteServices {
  std::shared_ptr<IDBFncs> db;
  std::shared_ptr<IUserRights> rights;
  std::shared_ptr<IMessages> messages;
  std::shared_ptr<IInput> input;
  std::shared_ptr<IClock> clock;
  std::shared_ptr<IAccountBalance> balance;
  std::shared_ptr<IDateCalculator> calendar;

  // Database-backed services over `cn` for user `usuario`, console messages and input, the
  // system clock.
  static SuiteServices Defaults(std::shared_ptr<Connection> cn, int32_t usuario = 1);
};

}  // namespace kivmovfrec
