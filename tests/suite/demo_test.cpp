// The default services over the demo company on every engine: balances, rights, settings,
// counters, users.
#include <memory>

#include <gtest/gtest.h>

#include "platform/suite/balance.h"
#include "platform/suite/clock.h"
#include "platform/suite/db_fncs.h"
#include "platform/suite/rights.h"
#include "platform/suite/scripted.h"
#include "platform/vb/convert.h"
#include "suite/suite_db.h"

namespace kivmovfrec {
namespace {

using suite::SerialOf;

class Demo : public testing::EngineTest {
 protected:
  void SetUpDatabase() override { testing::InstallSuiteTables(*cn, /*demo=*/true); }
};

TEST_P(Demo, BalancesOfPostedEntries) {
  suite::DbAccountBalance balance(cn);
  // Banco Nación: opening, payroll paid on 10-05, rent and social charges on 10-10.
  EXPECT_EQ(balance.Saldo(102, SerialOf(2026, 1, 1)), 0);
  EXPECT_EQ(balance.Saldo(102, SerialOf(2026, 10, 4)), 2500000);
  EXPECT_EQ(balance.Saldo(102, SerialOf(2026, 10, 5)), 1700000);
  EXPECT_EQ(balance.Saldo(102, SerialOf(2026, 10, 9)), 1700000);
  EXPECT_EQ(balance.Saldo(102, SerialOf(2026, 10, 10)), 1050000);
  // Caja: the draft of 11-10 and the annulled entry of 11-12 never count.
  EXPECT_EQ(balance.Saldo(101, SerialOf(2026, 12, 31)), 150000);
  // Sueldos a pagar goes back to zero and up again.
  EXPECT_EQ(balance.Saldo(113, SerialOf(2026, 10, 30)), 0);
  EXPECT_EQ(balance.Saldo(113, SerialOf(2026, 10, 31)), -820000);
  // The dollar account in the accounting currency, not its own.
  EXPECT_EQ(balance.Saldo(103, SerialOf(2026, 11, 30)), 1350000);
  // Company 2.
  EXPECT_EQ(balance.Saldo(202, SerialOf(2026, 10, 14)), 0);
  EXPECT_EQ(balance.Saldo(203, SerialOf(2026, 10, 15)), -300000);
}

TEST_P(Demo, RightsOfTheDemoUsers) {
  EXPECT_EQ(suite::DbUserRights(cn, 1).Letras(2, "comprobantes"), "AMEeTQ");
  suite::DbUserRights carlos(cn, 4);
  EXPECT_EQ(carlos.Letras(1, "PasajeAsientos"), "AM");
  EXPECT_EQ(carlos.Letras(1, "Papelera"), "E");
  EXPECT_EQ(carlos.Letras(1, "Comprobantes"), "");
  EXPECT_EQ(carlos.Letras(2, "PasajeAsientos"), "");
  EXPECT_EQ(suite::DbUserRights(cn, 2).Letras(1, "PasajeAsientos"), "");
}

TEST_P(Demo, SettingsCountersAndNoticeUsers) {
  auto messages = std::make_shared<suite::ScriptedMessages>();
  suite::DbFncs fncs(cn, messages);
  EXPECT_EQ(vb::CLng(fncs.GetSetting("Idioma")), 1);
  EXPECT_EQ(fncs.GetSetting("defBDDateFormat"), Variant("yyyy-mm-dd hh:nn:ss"));
  EXPECT_EQ(fncs.GetSetting("defBDDateCharSQLs"), Variant("'"));

  cn->BeginTrans();
  EXPECT_EQ(fncs.GetTableCounter("genMovimientosFrecuentes"), 101);
  EXPECT_EQ(fncs.GetTableCounter("genRecurrencias"), 101);
  cn->RollbackTrans();

  EXPECT_FALSE(fncs.VincularAvisos(8, "1,3"));  // 3 is disabled
  EXPECT_FALSE(fncs.VincularAvisos(8, "0"));    // the system user is nobody's recipient
  cn->BeginTrans();
  EXPECT_TRUE(fncs.VincularAvisos(8, "1,4"));
  cn->RollbackTrans();
}

TEST_P(Demo, DefaultsFollowTheOptions) {
  EXPECT_THROW(SuiteServices::Defaults(nullptr), std::invalid_argument);

  DefaultServiceOptions options;
  options.respuesta = true;
  options.hoy = SerialOf(2026, 11, 10);
  SuiteServices s = SuiteServices::Defaults(cn, 4, options);
  ASSERT_TRUE(s.db && s.rights && s.messages && s.input && s.clock && s.balance);
  EXPECT_FALSE(s.calendar);
  EXPECT_EQ(s.rights->Usuario(), 4);
  EXPECT_EQ(s.rights->Letras(1, "Papelera"), "E");
  EXPECT_EQ(s.clock->Today(), SerialOf(2026, 11, 10));
  EXPECT_EQ(s.messages->Show({"¿Confirma?", "Prueba", MsgIcon::Question, MsgButtons::YesNo, 2}),
            kMsgYes);
  EXPECT_EQ(s.balance->Saldo(101, s.clock->Today()), 150000);

  options.respuesta = false;
  EXPECT_EQ(SuiteServices::Defaults(cn, 1, options)
                .messages->Show({"¿Confirma?", "Prueba", MsgIcon::Question, MsgButtons::YesNo, 1}),
            kMsgNo);
}

KMF_INSTANTIATE_ENGINES(Demo);

}  // namespace
}  // namespace kivmovfrec
