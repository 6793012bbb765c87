// The scripted bundle: with and without a database.
#include <gtest/gtest.h>

#include "platform/suite/clock.h"
#include "platform/suite/rights.h"
#include "platform/suite/scripted.h"
#include "platform/vb/convert.h"
#include "suite/suite_db.h"

namespace kivmovfrec {
namespace {

using suite::ScriptedServices;
using suite::SerialOf;

TEST(ScriptedServices, WithoutDatabaseEverythingIsInMemory) {
  ScriptedServices s = ScriptedServices::Make(nullptr, SerialOf(2024, 3, 15), 7);
  SuiteServices bundle = s.Bundle();
  ASSERT_TRUE(bundle.db && bundle.rights && bundle.messages && bundle.input && bundle.clock &&
              bundle.balance);
  EXPECT_FALSE(bundle.calendar);

  EXPECT_EQ(bundle.clock->Today(), SerialOf(2024, 3, 15));
  EXPECT_EQ(bundle.rights->Usuario(), 7);
  EXPECT_EQ(bundle.rights->Letras(1, "PasajeAsientos"), "");
  s.rights->Set(1, "PasajeAsientos", "AM");
  EXPECT_EQ(bundle.rights->Letras(1, "pasajeAsientos"), "AM");

  EXPECT_EQ(bundle.db->GetTableCounter("genRecurrencias"), 1);
  EXPECT_EQ(bundle.db->GetTableCounter("genRecurrencias"), 2);
  EXPECT_EQ(bundle.db->GetTableCounter("genMovimientosFrecuentes"), 1);
  s.db->CountersFail(true);
  EXPECT_EQ(bundle.db->GetTableCounter("genRecurrencias"), -1);

  s.db->SetSetting(" IDIOMA", 1.0);
  EXPECT_EQ(bundle.db->GetSetting("idioma"), Variant(1.0));

  EXPECT_TRUE(bundle.db->VincularAvisos(4, "1,2"));
  EXPECT_FALSE(bundle.db->VincularAvisos(4, "1;2"));
  s.db->LinksFail(true);
  EXPECT_FALSE(bundle.db->VincularAvisos(4, "1"));
  ASSERT_EQ(s.db->links().size(), 3u);
  EXPECT_EQ(s.db->links()[0].usuarios, "1,2");

  ASSERT_TRUE(s.scripted_balance);
  s.scripted_balance->Set(120, SerialOf(2024, 2, 1), 500);
  s.scripted_balance->Set(120, SerialOf(2024, 3, 1), 800);
  EXPECT_EQ(bundle.balance->Saldo(120, SerialOf(2024, 1, 31)), 0);
  EXPECT_EQ(bundle.balance->Saldo(120, SerialOf(2024, 2, 29)), 500);
  EXPECT_EQ(bundle.balance->Saldo(120, Date{SerialOf(2024, 3, 1).serial + 0.9}), 800);
  EXPECT_EQ(s.scripted_balance->asked().size(), 3u);
}

using ScriptedServicesOnDatabase = testing::SuiteTablesTest;

TEST_P(ScriptedServicesOnDatabase, CountersAndSettingsComeFromIt) {
  cn->Execute("Insert Into genContadores Values ('genRecurrencias', 30)");
  cn->Execute("Insert Into genParametros (ParNombre, ParValor) Values ('Idioma', 1)");
  cn->Execute(
      "Insert Into genParametros (ParNombre, ParTexto) Values ('defBDDateFormat', "
      "'yyyy-mm-dd hh:nn:ss')");
  cn->Execute("Insert Into admUsuarios (UsuCodigo, UsuIdentificacion) Values (1, 'ana')");

  ScriptedServices s = ScriptedServices::Make(cn, SerialOf(2024, 3, 15));
  EXPECT_FALSE(s.scripted_balance);
  EXPECT_EQ(s.db->GetTableCounter("genRecurrencias"), 31);
  auto other = OpenAnother();
  EXPECT_EQ(
      ScriptedServices::Make(other, SerialOf(2024, 3, 15)).db->GetTableCounter("genRecurrencias"),
      32);

  EXPECT_EQ(vb::CLng(s.db->GetSetting("idioma")), 1);
  s.db->SetSetting("defBDDateFormat", "dd/mm/yyyy");
  EXPECT_EQ(s.db->GetSetting("DEFBDDATEFORMAT"), Variant("dd/mm/yyyy"));

  EXPECT_TRUE(s.db->VincularAvisos(9, "1"));
  EXPECT_FALSE(s.db->VincularAvisos(9, "2"));  // no such user
  auto rs = cn->OpenResultset("Select Count(*) From genAvisosUsuarios Where AvUAviso = 9");
  EXPECT_EQ(vb::CLng(rs->Get(0)), 1);
  EXPECT_EQ(s.balance->Saldo(120, SerialOf(2024, 3, 15)), 0);
}

KMF_INSTANTIATE_ENGINES(ScriptedServicesOnDatabase);

}  // namespace
}  // namespace kivmovfrec
