// Facts about the demo company that the rest of the work relies on, on every engine.

#include <map>
#include <regex>
#include <set>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "install/demo_db.h"
#include "kivmovfrec/install.h"
#include "platform/vb/convert.h"
#include "support/db_engines.h"

namespace kivmovfrec::testing {
namespace {

class DemoFacts : public EngineTest {
 protected:
  void SetUpDatabase() override {
    InstallSchema(*cn, {.demo = true});
    cn_ = cn;
  }

  // Debit minus credit of the account's lines in posted entries dated on or before `date`.
  double Balance(int account, const std::string& date) {
    const Variant v =
        Scalar(*cn_,
               "Select Sum(ACuDebe - ACuHaber) From cceAsientoCuenta, cceAsientos Where "
               "ACuIDAsiento = AsiID And AsiEstado = 1 And ACuCuenta = " +
                   std::to_string(account) + " And AsiFecha <= '" + date + " 23:59:59'");
    return v.IsNull() ? 0.0 : vb::CDbl(v);
  }

  std::string Text(const std::string& sql) { return vb::CStr(Scalar(*cn_, sql)); }

  std::shared_ptr<Connection> cn_;
};

TEST_P(DemoFacts, BalancesOnKnownDates) {
  struct Case {
    int account;
    const char* date;
    double balance;
  };
  const Case cases[] = {
      {101, "2026-01-01", 0},       {101, "2026-01-02", 150000},   {101, "2026-12-31", 150000},
      {102, "2026-10-04", 2500000}, {102, "2026-10-05", 1700000},  {102, "2026-10-10", 1050000},
      {103, "2026-11-30", 1350000}, {104, "2026-08-30", 0},        {104, "2026-08-31", 121000},
      {112, "2026-09-15", -21000},  {113, "2026-09-30", -800000},  {113, "2026-10-05", 0},
      {113, "2026-10-31", -820000}, {114, "2026-10-09", -200000},  {114, "2026-10-10", 0},
      {114, "2026-10-31", -205000}, {120, "2026-11-30", -4000000}, {131, "2026-12-31", -100000},
      {141, "2026-10-30", 800000},  {141, "2026-10-31", 1620000},  {142, "2026-10-31", 405000},
      {143, "2026-10-10", 450000},  {145, "2026-11-04", 0},        {145, "2026-11-05", 50000},
      {105, "2026-11-05", 10500},   {111, "2026-11-05", -60500},   {202, "2026-10-15", 300000},
      {205, "2026-02-01", -500000},
  };
  for (const auto& c : cases) {
    EXPECT_DOUBLE_EQ(Balance(c.account, c.date), c.balance) << c.account << " at " << c.date;
  }
}

TEST_P(DemoFacts, EveryEntryBalancesAndOnlyPostedOnesCount) {
  EXPECT_EQ(CountRows(*cn_,
                      "Select ACuIDAsiento From cceAsientoCuenta Group By ACuIDAsiento "
                      "Having Abs(Sum(ACuDebe) - Sum(ACuHaber)) > 0.001"),
            0);
  // Caja carries a draft and an annulled entry that the balance must leave out.
  EXPECT_EQ(CountRows(*cn_,
                      "Select AsiID From cceAsientos, cceAsientoCuenta Where AsiID = ACuIDAsiento "
                      "And ACuCuenta = 101 And AsiEstado <> 1"),
            2);
}

TEST_P(DemoFacts, RatePairKeptOnlyInverselyAndOneHopPath) {
  EXPECT_EQ(
      CountRows(*cn_,
                "Select * From genCotizacionesMoneda Where CMoMoneda = 4 And CMoCotizaEn = 1"),
      0);
  EXPECT_EQ(CountRows(*cn_,
                      "Select * From genCotizacionesMoneda Where CMoMoneda = 1 And CMoCotizaEn = 4 "
                      "And CMoTipoCotizacion = 1"),
            2);
  // The database inverts it as a float division.
  EXPECT_DOUBLE_EQ(vb::CDbl(Scalar(*cn_,
                                   "Select 1/CMoCompra From genCotizacionesMoneda Where CMoMoneda "
                                   "= 1 And CMoCotizaEn = 4 And CMoFecha = '2026-11-02 00:00:00'")),
                   312.5);
  // Euro has no rate in pesos, only in dollars, and dollars have rates in pesos.
  EXPECT_EQ(CountRows(*cn_,
                      "Select * From genCotizacionesMoneda Where CMoMoneda = 3 And "
                      "CMoCotizaEn = 1"),
            0);
  EXPECT_EQ(vb::CLng(Scalar(*cn_, "Select MonCotizaEn From genMonedas Where MonID = 3")), 2);
  EXPECT_GT(CountRows(*cn_,
                      "Select * From genCotizacionesMoneda Where CMoMoneda = 3 And "
                      "CMoCotizaEn = 2 And CMoTipoCotizacion = 1"),
            0);
}

TEST_P(DemoFacts, CountersStartAboveTheDemoKeys) {
  const std::map<std::string, std::string> keys = {{"genMovimientosFrecuentes", "MFrID"},
                                                   {"genRecurrencias", "RecID"},
                                                   {"cceAsientos", "AsiID"},
                                                   {"cceComprobantes", "ComID"},
                                                   {"genEntes", "EntID"}};
  for (const auto& [table, key] : keys) {
    SCOPED_TRACE(table);
    const Variant counter =
        Scalar(*cn_, "Select CntValor From genContadores Where CntTabla = '" + table + "'");
    ASSERT_FALSE(counter.IsNull());
    const double max_key = vb::CDbl(Scalar(*cn_, "Select Max(" + key + ") From " + table));
    EXPECT_GT(max_key, 0);
    EXPECT_GT(vb::CDbl(counter), max_key);
  }
}

TEST_P(DemoFacts, SettingsAndRights) {
  EXPECT_EQ(Text("Select ParTexto From genParametros Where ParNombre = 'defBDDateCharSQLs'"), "'");
  EXPECT_EQ(Text("Select ParTexto From genParametros Where ParNombre = 'defBDDateFormat'"),
            "yyyy-mm-dd hh:nn:ss");
  EXPECT_EQ(vb::CLng(Scalar(*cn_, "Select ParValor From genParametros Where ParNombre = 'Idioma'")),
            1);
  EXPECT_EQ(CountRows(*cn_, "Select * From genParametros Where ParNombre = 'sis_Multiusuario'"), 1);

  for (const char* option : {"PasajeAsientos", "Comprobantes", "CheckList", "Papelera"}) {
    const std::string letters = Text(
        std::string("Select DerLetras From admDerechos Where DerUsuario = 1 And DerEmpresa = 1 "
                    "And DerOpcion = '") +
        option + "'");
    for (char letter : std::string("AMEeTQ")) {
      EXPECT_NE(letters.find(letter), std::string::npos) << option << " lacks " << letter;
    }
  }
  EXPECT_EQ(CountRows(*cn_, "Select * From admDerechos Where DerUsuario = 2"), 0);
  EXPECT_EQ(CountRows(*cn_, "Select * From admUsuarios Where UsuCodigo = 0"), 1);
  EXPECT_EQ(CountRows(*cn_, "Select * From admUsuarios Where UsuHabilitado = 0"), 1);
}

// Every stored formula names catalogue ids only, and every line it points at exists: a line of
// the same movement for id 1, a line of a frequent (2, 9) or scheduled (19, 20) entry (2, 19)
// or voucher (9, 20) of the same company for the others. Line accounts are accounts of the
// movement's company that are not folders.
TEST_P(DemoFacts, FormulasPointAtLinesThatExist) {
  using LineKey = std::tuple<long, long, long, long>;  // movement, account, project, department
  std::set<LineKey> lines;
  struct Line {
    LineKey key;
    std::string formula;
  };
  std::vector<Line> with_formula;
  auto rs = cn_->OpenResultset(
      "Select RMFMovimiento, RMFCuenta, RMFIDProyecto, RMFIDDepartamento, RMFFormula, MFrEmpresa, "
      "CueIDEmpresa, CueEsCarpeta From genRenglonMovFrecuentes, genMovimientosFrecuentes, "
      "cceCuentas Where RMFMovimiento = MFrID And RMFCuenta = CueID");
  int count = 0;
  for (; !rs->Eof(); rs->MoveNext(), ++count) {
    const LineKey key{vb::CLng(rs->Get(0)), vb::CLng(rs->Get(1)), vb::CLng(rs->Get(2)),
                      vb::CLng(rs->Get(3))};
    lines.insert(key);
    EXPECT_EQ(vb::CLng(rs->Get(5)), vb::CLng(rs->Get(6))) << "movement " << std::get<0>(key);
    EXPECT_EQ(vb::CLng(rs->Get(7)), 0) << "movement " << std::get<0>(key);
    if (!rs->Get(4).IsNull()) with_formula.push_back({key, vb::CStr(rs->Get(4))});
  }
  EXPECT_EQ(count, CountRows(*cn_, "Select * From genRenglonMovFrecuentes"));
  ASSERT_GE(with_formula.size(), 10u);

  std::map<long, std::pair<long, bool>> movements;  // id -> type, scheduled
  auto mv =
      cn_->OpenResultset("Select MFrID, MFrTipo, MFrRecurrencia From genMovimientosFrecuentes");
  for (; !mv->Eof(); mv->MoveNext())
    movements[vb::CLng(mv->Get(0))] = {vb::CLng(mv->Get(1)), !mv->Get(2).IsNull()};

  const std::regex element(R"(\[(\d+):([^\]]*)\])");
  for (const auto& [key, formula] : with_formula) {
    SCOPED_TRACE(formula);
    for (std::sregex_iterator it(formula.begin(), formula.end(), element), end; it != end; ++it) {
      const int id = std::stoi((*it)[1]);
      EXPECT_TRUE(id >= 1 && id <= 22);
      std::vector<long> args;
      const std::string text = (*it)[2];
      for (size_t from = 0; !text.empty() && from <= text.size();) {
        const size_t semi = std::min(text.find(';', from), text.size());
        const std::string arg = text.substr(from, semi - from);
        if (id != 11 && !arg.empty()) args.push_back(std::stol(arg));
        from = semi + 1;
      }
      if (id == 1) {
        ASSERT_EQ(args.size(), 3u);
        const LineKey target{std::get<0>(key), args[0], args[1], args[2]};
        EXPECT_TRUE(lines.count(target));
        EXPECT_NE(target, key) << "a line may not refer to itself";
      } else if (id == 2 || id == 9 || id == 19 || id == 20) {
        ASSERT_EQ(args.size(), 4u);
        EXPECT_TRUE(lines.count(LineKey{args[0], args[1], args[2], args[3]}));
        const auto [type, scheduled] = movements.at(args[0]);
        EXPECT_EQ(type, (id == 2 || id == 19) ? 1 : 2);
        EXPECT_EQ(scheduled, id >= 19);
      }
    }
  }
}

TEST_P(DemoFacts, MovementsOfEveryKind) {
  for (int type = 1; type <= 6; ++type) {
    EXPECT_GT(CountRows(*cn_, "Select * From genMovimientosFrecuentes Where MFrTipo = " +
                                  std::to_string(type)),
              0)
        << "type " << type;
  }
  // Pending scheduled movements fall due at the end of 2026.
  EXPECT_EQ(CountRows(*cn_,
                      "Select * From genMovimientosFrecuentes, genRecurrencias Where "
                      "MFrRecurrencia = RecID And MFrEstado = 0 And (RecFechaProxima < "
                      "'2026-11-01 00:00:00' Or RecFechaProxima > '2026-12-31 23:59:59')"),
            0);
  // Every schedule belongs to exactly one movement, and every movement's schedule exists.
  EXPECT_EQ(CountRows(*cn_, "Select * From genRecurrencias"),
            CountRows(*cn_,
                      "Select * From genMovimientosFrecuentes Where MFrRecurrencia Is Not "
                      "Null"));
  EXPECT_EQ(CountRows(*cn_,
                      "Select * From genMovimientosFrecuentes Where MFrRecurrencia Is Not Null And "
                      "MFrRecurrencia Not In (Select RecID From genRecurrencias)"),
            0);
  // A linked group and a task list with items.
  EXPECT_EQ(CountRows(*cn_, "Select * From genMovimientosFrecuentes Where MFrMovVinculado = 16"),
            2);
  EXPECT_GT(CountRows(*cn_,
                      "Select * From genMovimientosFrecuentes Where MFrTipo = 6 And "
                      "MFrEnte = 10"),
            0);
}

KMF_INSTANTIATE_ENGINES(DemoFacts);

}  // namespace
}  // namespace kivmovfrec::testing
