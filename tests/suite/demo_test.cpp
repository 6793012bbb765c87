// The default services over the demo company on every engine: notice users and the bundle the
// options choose.
#include <memory>

#include <gtest/gtest.h>

#include "platform/suite/balance.h"
#include "platform/suite/clock.h"
#include "platform/suite/db_fncs.h"
#include "platform/suite/rights.h"
#include "platform/suite/scripted.h"
#include "suite/suite_db.h"

namespace kivmovfrec {
namespace {

using suite::SerialOf;

class Demo : public testing::EngineTest {
 protected:
  void SetUpDatabase() override { testing::InstallSuiteTables(*cn, /*demo=*/true); }
};

// The demo's own figures are checked with the installer; here only what the services add to them.
TEST_P(Demo, TheSystemUserAndDisabledUsersReceiveNoNotices) {
  suite::DbFncs fncs(cn, std::make_shared<suite::ScriptedMessages>());
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
