// The function catalogue: searches, and what its lookups offer when run.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "formula/catalogo_fx.h"
#include "formula_db.h"
#include "platform/vb/convert.h"
#include "platform/vb/text.h"
#include "storage/consulta_lookup.h"

namespace kivmovfrec::formula {
namespace {

TEST(CatalogoFx, SearchesByIdAndByCaption) {
  clsFxMovFrec c;
  EXPECT_EQ(c.Id(c.Buscar(13)), 13);
  EXPECT_EQ(c.Buscar(99), -1);
  EXPECT_EQ(c.BuscarEntrada(0), nullptr);
  EXPECT_EQ(c.Id(c.Cantidad()), 0);  // outside the table: an empty entry
  EXPECT_EQ(c.BuscarTitulo("SALDO AL DÍA DE HOY"), c.Buscar(5));
  EXPECT_EQ(c.BuscarTitulo("saldo de una cuenta"), -1);  // a group is not a function
}

// Every id a lookup offers when it is run over all its rows.
std::set<int> Ofrecidos(Connection& cn, std::string_view consulta, int empresa, int id_mov) {
  const auto todas = storage::PrepararTodas(consulta, {empresa, id_mov, 0, true});
  std::set<int> ids;
  for (auto rs = cn.OpenResultset(todas.sql, todas.valores); !rs->Eof(); rs->MoveNext())
    ids.insert(vb::CLng(rs->Get(0)));
  return ids;
}

class CatalogoBD : public testing::DemoEngineTest {};

TEST_P(CatalogoBD, MovementLookupsOfferOnlyActiveMovementsOfTheCompanyButNotTheOneEdited) {
  clsFxMovFrec c;
  // Frequent entries of company 1: 2, 5, 16, 17, 18, 26; 20 is in the bin, 19 is a system entry
  // and 23 belongs to company 2.
  EXPECT_EQ(Ofrecidos(*cn, c.Consulta1(c.Buscar(2)), 1, 0), (std::set<int>{2, 5, 16, 17, 18, 26}));
  // Editing 16: it is never offered to itself.
  EXPECT_EQ(Ofrecidos(*cn, c.Consulta1(c.Buscar(2)), 1, 16), (std::set<int>{2, 5, 17, 18, 26}));
  EXPECT_EQ(Ofrecidos(*cn, c.Consulta1(c.Buscar(2)), 2, 0), (std::set<int>{23}));
  EXPECT_EQ(Ofrecidos(*cn, c.Consulta1(c.Buscar(9)), 1, 0), (std::set<int>{7, 24}));
  EXPECT_EQ(Ofrecidos(*cn, c.Consulta1(c.Buscar(19)), 1, 3), (std::set<int>{1, 4, 25}));
  EXPECT_EQ(Ofrecidos(*cn, c.Consulta1(c.Buscar(20)), 1, 0), (std::set<int>{6}));
}

TEST_P(CatalogoBD, OtherLookupsLeaveOutIndexTypesFoldersAndOtherCompanies) {
  clsFxMovFrec c;
  EXPECT_EQ(Ofrecidos(*cn, c.Consulta1(c.Buscar(13)), 1, 0), (std::set<int>{1, 2}));
  EXPECT_EQ(Ofrecidos(*cn, c.Consulta2(c.Buscar(13)), 1, 0), (std::set<int>{1, 2, 3, 4}));
  EXPECT_EQ(Ofrecidos(*cn, c.Consulta2(c.Buscar(6)), 1, 0), (std::set<int>{5}));
  EXPECT_EQ(Ofrecidos(*cn, c.Consulta2(c.Buscar(5)), 2, 0),
            (std::set<int>{201, 202, 203, 204, 205}));
}

KMF_INSTANTIATE_ENGINES(CatalogoBD);

}  // namespace
}  // namespace kivmovfrec::formula
