// The movfrec-qt program: it refuses what it cannot open with a clear message and exit status 1,
// and --captura draws the main window into a PNG without a display.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QImage>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "kivmovfrec/db.h"
#include "kivmovfrec/install.h"

namespace kivmovfrec::testing {
namespace {

struct Salida {
  int status = -1;
  std::string err;
};

Salida MovfrecQt(const std::string& argumentos) {
  const std::string base = ::testing::TempDir() + "movfrec_qt_" + std::to_string(::getpid());
  const std::string cmd = "env -u MOVFREC_DB QT_QPA_PLATFORM=offscreen " +
                          std::string(KMF_BINARY_DIR) + "/qt/principal/movfrec-qt " + argumentos +
                          " < /dev/null > /dev/null 2> " + base + ".err";
  const int raw = std::system(cmd.c_str());
  std::ifstream in(base + ".err");
  std::ostringstream err;
  err << in.rdbuf();
  std::remove((base + ".err").c_str());
  return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, err.str()};
}

TEST(MovfrecQt, RefusesWhatItCannotOpenAndDrawsTheWindow) {
  const std::string dir = ::testing::TempDir() + "movfrec_qt_" + std::to_string(::getpid());
  const std::string vacia = dir + "_vacia.db", demo = dir + "_demo.db", png = dir + ".png";
  InstallSchema(*OpenConnection("sqlite:" + demo), {.demo = true});
  struct Caso {
    std::string argumentos;
    int status;
    std::string mensaje;
  };
  for (const Caso& c : {
           Caso{"--db sqlite:" + vacia, 1, "cree las tablas con «movfrec init»"},
           Caso{"--db sqlite:" + dir + "_no_existe/x.db", 1, "No se pudo abrir la base de datos"},
           Caso{"--db sqlite:" + demo + " --empresa 7", 1, "La empresa 7 no existe"},
           Caso{"--db sqlite:" + demo + " --hoy 31/02/2026", 2, "no es una fecha válida"},
       }) {
    SCOPED_TRACE(c.argumentos);
    const Salida s = MovfrecQt(c.argumentos + " --captura " + png);
    EXPECT_EQ(s.status, c.status);
    EXPECT_NE(s.err.find(c.mensaje), std::string::npos) << s.err;
    EXPECT_FALSE(std::ifstream(png).good());
  }
  const Salida s = MovfrecQt("--db sqlite:" + demo + " --hoy 2026-11-10 --captura " + png);
  ASSERT_EQ(s.status, 0) << s.err;
  const QImage imagen(QString::fromStdString(png));
  EXPECT_GE(imagen.width(), 800);
  EXPECT_GE(imagen.height(), 400);
  for (const std::string& f : {vacia, demo, png}) std::remove(f.c_str());
}

}  // namespace
}  // namespace kivmovfrec::testing
