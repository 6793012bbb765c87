// SuiteServices::Defaults: the services a host gets when it brings none of its own.
#include <iostream>
#include <stdexcept>

#include "kivmovfrec/services.h"
#include "platform/suite/balance.h"
#include "platform/suite/clock.h"
#include "platform/suite/console.h"
#include "platform/suite/db_fncs.h"
#include "platform/suite/rights.h"

namespace kivmovfrec {

SuiteServices SuiteServices::Defaults(std::shared_ptr<Connection> cn, int32_t usuario,
                                      const DefaultServiceOptions& options) {
  if (!cn) throw std::invalid_argument("SuiteServices::Defaults: falta la conexión");
  const bool terminal = suite::StdinIsTerminal();
  SuiteServices s;
  s.messages = std::make_shared<suite::ConsoleMessages>(
      std::cerr, std::cin, suite::ConsoleOptions{options.respuesta, terminal});
  s.input = std::make_shared<suite::ConsoleInput>(std::cerr, std::cin, terminal);
  s.db = std::make_shared<suite::DbFncs>(cn, s.messages);
  s.rights = std::make_shared<suite::DbUserRights>(cn, usuario);
  s.balance = std::make_shared<suite::DbAccountBalance>(cn);
  if (options.hoy) {
    s.clock = std::make_shared<suite::FixedClock>(*options.hoy);
  } else {
    s.clock = std::make_shared<suite::SystemClock>();
  }
  // s.calendar stays empty: the date calculator belongs to the scheduling part.
  return s;
}

}  // namespace kivmovfrec
