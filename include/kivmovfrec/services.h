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

#include "kivmovfrec/controles.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/export.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec {

// ---- Messages ---------------------------------------------------------------------------

// Icon and button codes as the VB MsgBox constants number them.
enum class MsgIcon : int {
  None = 0,
  Critical = 16,
  Question = 32,
  Exclamation = 48,
  Information = 64
};
enum class MsgButtons : int { OK = 0, OKCancel = 1, YesNoCancel = 3, YesNo = 4 };
// Buttons pressed, as MsgBox returns them.
inline constexpr int kMsgOK = 1;
inline constexpr int kMsgCancel = 2;
inline constexpr int kMsgYes = 6;
inline constexpr int kMsgNo = 7;

struct KMF_API MessageRequest {
  std::string text;
  std::string caption;
  MsgIcon icon = MsgIcon::None;
  MsgButtons buttons = MsgButtons::OK;
  int default_button = 1;  // 1 = first button, 2 = second
  // Catalogue number of the text (of its first line when it has several); -1 for a text that
  // is not one catalogue entry.
  int numero = -1;
};

// Where the component's messages and help requests go. Messages are shown to a person (console,
// Qt) or recorded and answered from a script (tests, unattended hosts).
class KMF_API IMessages {
 public:
  virtual ~IMessages() = default;
  // Shows the message and returns the button pressed (kMsgOK, kMsgYes, kMsgNo, ...). The answer
  // is always one of the request's buttons; a message with only OK returns kMsgOK.
  virtual int Show(const MessageRequest& request) = 0;
  // Shows the help topic with the given context number. By default it is shown as an
  // information message "Ayuda: tema N"; hosts with a help viewer override it.
  virtual void ShowHelp(int context_id) {
    Show({"Ayuda: tema " + std::to_string(context_id), "Ayuda", MsgIcon::Information,
          MsgButtons::OK, 1});
  }
};

// ---- Input ------------------------------------------------------------------------------

class KMF_API IInput {
 public:
  virtual ~IInput() = default;
  // Asks for a number. `prompt` is shown to the user, `proposed` is the value offered. Returns
  // nothing when the user cancels; an answer that is not numeric is never returned.
  virtual std::optional<double> PedirNumero(const std::string& prompt, const std::string& caption,
                                            double proposed) = 0;
  // Asks for a line of text (an input box). `proposed` is the text offered. Returns nothing when
  // the user cancels. A service that cannot ask anyone keeps this default, which cancels.
  virtual std::optional<std::string> PedirTexto(const std::string& /*prompt*/,
                                                const std::string& /*caption*/,
                                                const std::string& /*proposed*/) {
    return std::nullopt;
  }
};

// ---- Database functions (DBFncs) ----------------------------------------------------------

class KMF_API IDBFncs {
 public:
  virtual ~IDBFncs() = default;
  // Next value of the named table's counter (genContadores), or -1 when none can be drawn
  // (a name that is not a plain table name, a value past 32 bits). A database failure (lost
  // connection, read-only database, missing table) throws its DbError, so the caller can say
  // what happened. Atomic across connections and processes: two callers never get the same
  // value. Inside the connection's open transaction the draw belongs to that transaction (a
  // rollback gives the value back); outside one it commits on its own.
  virtual int32_t GetTableCounter(std::string_view table) = 0;
  // Draws `count` consecutive values of the table's counter at once, under the same rules as
  // GetTableCounter, and returns the first; the caller then hands out first .. first+count-1
  // itself (saving many rows costs one counter update instead of one per row). -1 when no block
  // can be drawn; this default says so, and callers then draw one value at a time.
  virtual int32_t ReserveTableCounter(std::string_view /*table*/, int32_t /*count*/) { return -1; }
  // Value of a named suite setting: the genParametros row whose ParNombre equals `name`
  // trimmed and without regard to case. ParValor when it is not Null, else ParTexto (Null when
  // both are). Empty when there is no such row; a database failure throws its DbError.
  virtual Variant GetSetting(std::string_view name) = 0;
  // Shows the help topic with the given context number (command 15) through the message
  // service's help operation.
  virtual void ShowHelp(int context_id) = 0;
  // Runs the routine that links a notice to the users who receive it. `usuarios` holds user
  // codes separated by ",". Returns false, linking nothing, when the list is malformed or names
  // a user who does not exist or is disabled; throws nothing.
  virtual bool VincularAvisos(int32_t aviso, const std::string& usuarios) = 0;
};

// ---- User rights ------------------------------------------------------------------------

class KMF_API IUserRights {
 public:
  virtual ~IUserRights() = default;
  // Permission letters of the current user for `opcion` in company `empresa`, trimmed; the
  // option is compared without regard to case. "" when the user has no rights there; a
  // database failure throws its DbError (never read as "no rights").
  virtual std::string Letras(int32_t empresa, std::string_view opcion) = 0;
  // Code of the current user.
  virtual int32_t Usuario() const = 0;
};

// ---- Clock ------------------------------------------------------------------------------

class KMF_API IClock {
 public:
  virtual ~IClock() = default;
  // Current local date and time.
  virtual Date Now() = 0;
  // Current local date at midnight (always the date part of Now()).
  virtual Date Today() = 0;
};

// ---- Account balance --------------------------------------------------------------------

class KMF_API IAccountBalance {
 public:
  virtual ~IAccountBalance() = default;
  // Balance (debit minus credit) of account `cuenta` in the accounting currency, counting the
  // posted entries dated on or before `fecha` (the whole day; its time of day is ignored).
  // Rounded to four decimals. Database failures throw DbError.
  virtual double Saldo(int32_t cuenta, Date fecha) = 0;
};

// ---- Date calculator ----------------------------------------------------------------------

// Every calendar step of a schedule. Codes are six-digit frequency codes (unit digit and a
// five-digit step); code 0 means once.
class KMF_API IDateCalculator {
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
  // The due date that follows `fecha` under `code`, a month or year step keeping the day of
  // `fecha` (the last day of a shorter month).
  virtual Date ProximaFecha(std::string_view code, Date fecha) = 0;
  // The due date that follows `fecha` in a schedule that started on `inicio`: a month or year
  // step lands on the start's day of the month (the last day of a shorter month) while `fecha`
  // is on that day, so a schedule started on the 30th does not drift to the 29th after
  // February. A calculator without that notion steps from `fecha` alone, which is the default.
  virtual Date ProximaFechaAnclada(std::string_view code, Date /*inicio*/, Date fecha) {
    return ProximaFecha(code, fecha);
  }
  // The frequency in words ("Todos los meses", "Cada 15 días", ...).
  virtual std::string DescribirFrecuencia(std::string_view code) = 0;
};

// ---- The bundle handed to the façade -------------------------------------------------------

// How the default services behave where a person would otherwise be asked.
struct KMF_API DefaultServiceOptions {
  // Answer to every question (true = Yes / OK, false = No / Cancel). Without it questions are
  // asked on the terminal when standard input is one, and answered No otherwise.
  std::optional<bool> respuesta;
  // Fixes "today" for the clock; the time of day stays the real one.
  std::optional<Date> hoy;
};

struct KMF_API SuiteServices {
  std::shared_ptr<IDBFncs> db;
  std::shared_ptr<IUserRights> rights;
  std::shared_ptr<IMessages> messages;
  std::shared_ptr<IInput> input;
  std::shared_ptr<IClock> clock;
  std::shared_ptr<IAccountBalance> balance;
  std::shared_ptr<IDateCalculator> calendar;
  // Where the dialogs get their forms (real windows, or a step script). Without one a dialog
  // cannot be shown: the member that opens it says so and returns its zero value.
  std::shared_ptr<controles::IFabricaFormularios> formularios;

  // Database-backed services over `cn` for user `usuario` (counters, settings, rights, balance),
  // console messages and input on stderr / stdin, the system clock (or a fixed "today"). The
  // date calculator is left empty: it is supplied by the scheduling part. Throws
  // std::invalid_argument when `cn` is null.
  static SuiteServices Defaults(std::shared_ptr<Connection> cn, int32_t usuario = 1,
                                const DefaultServiceOptions& options = {});
};

}  // namespace kivmovfrec
