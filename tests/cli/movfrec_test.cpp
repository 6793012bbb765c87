// The movfrec binary, run as a person or a script would run it.
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli_db.h"

namespace {

using kmf_cli::Result;

// Each test runs on a fresh database of each engine (a second one, `otra`, on demand).
class Movfrec : public kmf_cli::MotorTest {
 protected:
  // Another empty database of the same engine.
  std::string Otra() {
    otra_ = std::make_unique<kivmovfrec::testing::TestDatabase>(engine());
    return otra_->uri();
  }

  // Runs movfrec with `args`, MOVFREC_DB as given ("" = unset).
  Result Run(const std::vector<std::string>& args, const std::string& env_db = "") {
    return kmf_cli::RunMovfrec(base_, args, env_db);
  }

  nlohmann::ordered_json Listar(const std::vector<std::string>& filters) {
    std::vector<std::string> args = {"--db", uri_, "--json", "listar"};
    args.insert(args.end(), filters.begin(), filters.end());
    const Result r = Run(args);
    EXPECT_EQ(r.status, 0) << r.err;
    return nlohmann::ordered_json::parse(r.out);
  }

  std::unique_ptr<kivmovfrec::testing::TestDatabase> otra_;
};

// Movements in ID order, each with the same members, a date or null as FechaProxima, task-list
// items only when asked for; filters.
TEST_P(Movfrec, InitDemoThenListAsJson) {
  ASSERT_EQ(Run({"--db", uri_, "init", "--demo"}).status, 0);
  const std::regex date(R"(\d\d/\d\d/\d{4}( \d\d:\d\d(:\d\d)?)?)");
  int previous = 0;
  size_t dates = 0;
  for (const auto& m : Listar({})) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : m.items()) keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<std::string>{"ID", "Tipo", "Nombre", "Estado", "FechaProxima"}));
    EXPECT_GT(m["ID"].get<int>(), std::exchange(previous, m["ID"].get<int>()));
    EXPECT_NE(m["Tipo"], 6);
    dates += m["FechaProxima"].is_string();
    EXPECT_TRUE(m["FechaProxima"].is_null() ||
                std::regex_match(m["FechaProxima"].get<std::string>(), date))
        << m;
  }
  EXPECT_GT(dates, 0u);
  for (const auto& filtros :
       std::vector<std::vector<std::string>>{{"--tipo", "3", "--estado", "0"}, {"--tipo", "6"}}) {
    const auto lista = Listar(filtros);
    EXPECT_FALSE(lista.empty());
    for (const auto& m : lista) {
      EXPECT_EQ(m["Tipo"], std::stoi(filtros[1]));
      EXPECT_TRUE(filtros.size() == 2 || m["Estado"] == 0);
    }
  }
}

TEST_P(Movfrec, TextTableAndDatabaseFromTheEnvironment) {
  ASSERT_EQ(Run({"init", "--demo"}, uri_).status, 0);
  const Result r = Run({"listar", "--tipo", "1"}, uri_);
  ASSERT_EQ(r.status, 0) << r.err;
  std::istringstream lines(r.out);
  std::string header;
  std::getline(lines, header);
  EXPECT_EQ(header.rfind("ID  Tipo", 0), 0u) << header;
  EXPECT_NE(r.out.find("1 Asiento"), std::string::npos) << r.out;
  EXPECT_EQ(r.out.find("2 Comprobante"), std::string::npos) << r.out;

  // --db wins over MOVFREC_DB: the other database has no company at all.
  const std::string other = Otra();
  ASSERT_EQ(Run({"--db", other, "init"}, uri_).status, 0);
  const Result empty = Run({"--db", other, "--json", "listar"}, uri_);
  EXPECT_EQ(empty.status, 1);
  EXPECT_EQ(empty.err, "movfrec listar: la empresa 1 no existe (revise --empresa)\n");
}

TEST_P(Movfrec, UsageErrorsExitTwoInSpanish) {
  struct Case {
    std::vector<std::string> args;
    std::string message;
  };
  const std::vector<Case> cases = {
      {{}, "falta el comando"},
      {{"volar"}, "comando desconocido: volar"},
      {{"--empresa", "uno", "listar"}, "--empresa: se esperaba un número entero"},
      {{"--hoy", "2024-02-30", "listar"}, "no es una fecha válida"},
      {{"--responder", "quizás", "listar"}, "se esperaba «si» o «no»"},
      {{"listar", "--tipo", "7"}, "fuera del rango 1 a 6"},
      {{"listar", "--estado", "3"}, "el estado debe ser 0"},
      {{"listar", "sobra"}, "argumento no esperado: sobra"},
  };
  for (const Case& c : cases) {
    std::vector<std::string> args = {"--db", uri_};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const Result r = Run(args);
    EXPECT_EQ(r.status, 2) << c.message << "\n" << r.err;
    EXPECT_TRUE(kmf_cli::Has(r.err, c.message)) << r.err;
    EXPECT_TRUE(r.out.empty()) << r.out;
  }
  const Result help = Run({"listar", "--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("--estado"), std::string::npos);
}

// Database errors exit 1; with --json every failure (database, command line, refusal) also
// writes the one error object on stdout, with no result before it.
TEST_P(Movfrec, FailuresExitNonZeroAndWriteTheErrorObjectAsJson) {
  // A database that cannot be reached: a folder that does not exist, a server that is not there.
  const std::string unreachable =
      !postgres() ? "sqlite:/no/existe/movfrec.db" : "postgresql://postgres@127.0.0.1:1/kmf_test";
  const Result missing = Run({"--db", unreachable, "listar"});
  EXPECT_EQ(missing.status, 1);
  // Told once, in one wording: the cause when it has a name, then the message.
  EXPECT_EQ(missing.err.find(postgres() ? "movfrec: se perdió la conexión con la base de datos "
                                          "(No se pudo conectar con el servidor PostgreSQL: "
                                        : "movfrec: No existe la carpeta de la base de datos: "),
            0u)
      << missing.err;
  EXPECT_EQ(missing.out, "");

  const Result no_tables = Run({"--db", uri_, "listar"});
  EXPECT_EQ(no_tables.status, 1);
  EXPECT_NE(no_tables.err.find("movfrec init"), std::string::npos) << no_tables.err;

  struct Case {
    std::vector<std::string> args;
    int status;
    std::string origen, texto;
  };
  // The first two on the empty database, the others on the demo company.
  const std::vector<Case> cases = {
      {{"listar"}, 1, "base de datos", ""},
      {{"--empresa", "uno", "listar"}, 2, "movfrec", "se esperaba un número entero"},
      {{"ver", "999"}, 1, "movfrec ver", "no existe el movimiento frecuente 999"},
      {{"agenda", "--desde", "2026-02-01", "--hasta", "2026-01-01"},
       2,
       "movfrec agenda",
       "es anterior a --desde"},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    const Case& c = cases[i];
    if (i == 2) {
      ASSERT_EQ(Run({"--db", uri_, "init", "--demo"}).status, 0);
    }
    std::vector<std::string> args = {"--db", uri_, "--json"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const Result r = Run(args);
    EXPECT_EQ(r.status, c.status) << c.origen << "\n" << r.err;
    const auto j = nlohmann::ordered_json::parse(r.out, nullptr, false);
    ASSERT_TRUE(j.is_object()) << r.out;
    EXPECT_EQ(j["Ok"], false);
    EXPECT_TRUE(j["Error"]["Numero"].is_null());
    EXPECT_EQ(j["Error"]["Origen"], c.origen);
    EXPECT_TRUE(kmf_cli::Has(j["Error"]["Texto"].get<std::string>(), c.texto)) << r.out;
  }
}

KMF_INSTANTIATE_ENGINES(Movfrec);

}  // namespace
