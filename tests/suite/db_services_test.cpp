// Database-backed services: settings, help, rights, notice recipients, and the default bundle
// the options choose.
#include <memory>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "platform/suite/balance.h"
#include "platform/suite/clock.h"
#include "platform/suite/db_fncs.h"
#include "platform/suite/rights.h"
#include "platform/suite/scripted.h"
#include "platform/vb/convert.h"
#include "support/demo_engine.h"

namespace kivmovfrec {
namespace {

class DbServices : public testing::SuiteTablesTest {
 protected:
  void SetUpDatabase() override {
    SuiteTablesTest::SetUpDatabase();
    messages_ = std::make_shared<suite::ScriptedMessages>();
    fncs_ = std::make_shared<suite::DbFncs>(cn, messages_);
  }

  std::set<int32_t> Recipients(int32_t aviso) {
    std::set<int32_t> users;
    auto rs = cn->OpenResultset("Select AvUUsuario From genAvisosUsuarios Where AvUAviso = " +
                                std::to_string(aviso));
    for (; !rs->Eof(); rs->MoveNext()) users.insert(vb::CLng(rs->Get(0)));
    return users;
  }

  std::shared_ptr<suite::ScriptedMessages> messages_;
  std::shared_ptr<suite::DbFncs> fncs_;
};

TEST_P(DbServices, SettingsMatchTrimmedNameIgnoringCaseAndHelpIsShown) {
  cn->Execute(
      "Insert Into genParametros (ParNombre, ParTexto, ParValor) Values ('  IDIOMA ', "
      "'ignorado', 2), ('defBDDateCharSQLs', '''', Null), ('vacio', Null, Null)");
  const Variant idioma = fncs_->GetSetting("idioma");
  ASSERT_TRUE(vb::IsNumeric(idioma)) << DebugString(idioma);
  EXPECT_EQ(vb::CLng(idioma), 2);
  EXPECT_EQ(vb::CLng(fncs_->GetSetting(" Idioma  ")), 2);
  EXPECT_EQ(fncs_->GetSetting("DEFBDDATECHARSQLS"), Variant("'"));
  EXPECT_TRUE(fncs_->GetSetting("vacio").IsNull());
  for (const char* ausente : {"noExiste", "id'ioma", "idioma' Or '1' = '1", ""}) {
    EXPECT_TRUE(fncs_->GetSetting(ausente).IsEmpty()) << ausente;
  }
  testing::TestDatabase bare(engine());  // without the table
  EXPECT_EQ(
      testing::KindOfFailure([&] { suite::DbFncs(bare.Open(), messages_).GetSetting("Idioma"); }),
      DbErrorKind::MissingTable);
  fncs_->ShowHelp(330);  // help goes to the message service
  EXPECT_EQ(messages_->help_topics(), std::vector<int>{330});
}

TEST_P(DbServices, RightsForCurrentUserCompanyAndOption) {
  cn->Execute(
      "Insert Into admDerechos Values (5, 1, 'PasajeAsientos', ' AME '), (5, 1, 'Papelera', 'e'), "
      "(5, 2, 'Comprobantes', 'A'), (6, 1, 'Comprobantes', 'AM')");
  suite::DbUserRights rights(cn, 5);
  EXPECT_EQ(rights.Usuario(), 5);
  EXPECT_EQ(rights.Letras(1, "PasajeAsientos"), "AME");
  EXPECT_EQ(rights.Letras(1, "pasajeasientos"), "AME");
  EXPECT_EQ(rights.Letras(1, " PAPELERA "), "e");
  EXPECT_EQ(rights.Letras(1, "Comprobantes"), "");  // only user 6 has it in company 1
  EXPECT_EQ(rights.Letras(2, "Comprobantes"), "A");
  EXPECT_EQ(rights.Letras(3, "PasajeAsientos"), "");
  EXPECT_EQ(rights.Letras(1, "Check'List"), "");
  testing::TestDatabase bare(engine());
  EXPECT_EQ(
      testing::KindOfFailure([&] { suite::DbUserRights(bare.Open(), 5).Letras(1, "Papelera"); }),
      DbErrorKind::MissingTable);
}

TEST_P(DbServices, NoticeRecipientsBecomeTheListedUsers) {
  cn->Execute(
      "Insert Into admUsuarios (UsuCodigo, UsuIdentificacion, UsuHabilitado) Values (0, "
      "'sistema', 1), (1, 'ana', 1), (2, 'luis', 1), (3, 'eva', 1), (4, 'baja', 0)");
  EXPECT_TRUE(fncs_->VincularAvisos(12, "1, 2"));
  EXPECT_EQ(Recipients(12), (std::set<int32_t>{1, 2}));
  cn->Execute("Update genAvisosUsuarios Set AvUVisto = 1 Where AvUUsuario = 2");

  EXPECT_TRUE(fncs_->VincularAvisos(12, "2,3"));
  EXPECT_EQ(Recipients(12), (std::set<int32_t>{2, 3}));
  auto seen = cn->OpenResultset(
      "Select AvUVisto From genAvisosUsuarios Where AvUAviso = 12 And AvUUsuario = 2");
  ASSERT_FALSE(seen->Eof());
  EXPECT_EQ(vb::CLng(seen->Get(0)), 1);  // a user kept keeps what he has seen

  // Refused lists change nothing: a disabled or unknown user, the system user (nobody's
  // recipient), a malformed list, no notice.
  for (const char* lista : {"2,4", "2,99", "0,2", "2,,3", "dos"}) {
    EXPECT_FALSE(fncs_->VincularAvisos(12, lista)) << lista;
  }
  EXPECT_FALSE(fncs_->VincularAvisos(0, "2"));
  EXPECT_EQ(Recipients(12), (std::set<int32_t>{2, 3}));

  // Inside the caller's transaction the links follow it.
  cn->BeginTrans();
  EXPECT_TRUE(fncs_->VincularAvisos(12, "1"));
  cn->RollbackTrans();
  EXPECT_EQ(Recipients(12), (std::set<int32_t>{2, 3}));

  EXPECT_TRUE(fncs_->VincularAvisos(12, ""));
  EXPECT_TRUE(Recipients(12).empty());
  EXPECT_FALSE(cn->InTransaction());
}

KMF_INSTANTIATE_ENGINES(DbServices);

using Defaults = testing::DemoEngineTest;

TEST_P(Defaults, FollowTheOptions) {
  EXPECT_THROW(SuiteServices::Defaults(nullptr), std::invalid_argument);

  DefaultServiceOptions options;
  options.respuesta = true;
  options.hoy = suite::SerialOf(2026, 11, 10);
  SuiteServices s = SuiteServices::Defaults(cn, 4, options);
  ASSERT_TRUE(s.db && s.rights && s.messages && s.input && s.clock && s.balance);
  EXPECT_FALSE(s.calendar);
  EXPECT_EQ(s.rights->Usuario(), 4);
  EXPECT_EQ(s.rights->Letras(1, "Papelera"), "E");
  EXPECT_EQ(s.clock->Today(), suite::SerialOf(2026, 11, 10));
  EXPECT_EQ(s.messages->Show({"¿Confirma?", "Prueba", MsgIcon::Question, MsgButtons::YesNo, 2}),
            kMsgYes);
  EXPECT_EQ(s.balance->Saldo(101, s.clock->Today()), 150000);

  options.respuesta = false;
  EXPECT_EQ(SuiteServices::Defaults(cn, 1, options)
                .messages->Show({"¿Confirma?", "Prueba", MsgIcon::Question, MsgButtons::YesNo, 1}),
            kMsgNo);
}

KMF_INSTANTIATE_ENGINES(Defaults);

TEST(UserList, ParsesCodesSeparatedByCommas) {
  EXPECT_EQ(suite::ParseUserList(" 3, 7,12 "), (std::set<int32_t>{3, 7, 12}));
  EXPECT_EQ(suite::ParseUserList("5,5"), (std::set<int32_t>{5}));
  EXPECT_EQ(suite::ParseUserList("  "), std::set<int32_t>{});
  for (const char* mal : {"3,", "3;4", "1.5"}) EXPECT_FALSE(suite::ParseUserList(mal)) << mal;
}

}  // namespace
}  // namespace kivmovfrec
