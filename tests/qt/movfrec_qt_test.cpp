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
#include "kivmovfrec/vb.h"

namespace kivmovfrec::testing {
namespace {

struct Salida {
  int status = -1;
  std::string err;
};

// Runs movfrec-qt off screen, or under `delante` (e.g. a virtual X display) when given.
Salida MovfrecQt(const std::string& argumentos, const std::string& delante = "") {
  const std::string base = ::testing::TempDir() + "movfrec_qt_" + std::to_string(::getpid());
  const std::string entorno =
      delante.empty() ? "env -u MOVFREC_DB QT_QPA_PLATFORM=offscreen "
                      : delante + " env -u MOVFREC_DB -u QT_QPA_PLATFORM QT_QPA_PLATFORM=xcb ";
  const std::string cmd = entorno + std::string(KMF_BINARY_DIR) + "/qt/principal/movfrec-qt " +
                          argumentos + " < /dev/null > /dev/null 2> " + base + ".err";
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
           Caso{"--db sqlite:" + demo + " --abrir calcular:", 2, "no es calcular:ID"},
           Caso{"--db sqlite:" + demo + " --abrir calcular:8", 1, "no se aplica al movimiento 8"},
           Caso{"--db sqlite:" + demo + " --abrir calcular:999", 1, "999 no está en la lista"},
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
  // A computation window opened at start is drawn instead of the main window, and the run's
  // window is closed from its review: nothing is posted.
  const auto asientos = [&demo] {
    return vb::CLng(OpenConnection("sqlite:" + demo)
                        ->OpenResultset("Select Count(*) From cceAsientos")
                        ->Get(0));
  };
  const int32_t antes = asientos();
  const Salida e =
      MovfrecQt("--db sqlite:" + demo + " --hoy 2026-11-20 --abrir ejecutar --captura " + png);
  ASSERT_EQ(e.status, 0) << e.err;
  EXPECT_NE(QImage(QString::fromStdString(png)).size(), imagen.size());
  EXPECT_EQ(asientos(), antes) << "the review posts nothing";
  for (const std::string& f : {vacia, demo, png}) std::remove(f.c_str());
}

// On a real X display (a virtual one) the window opens and the screen shows the demo company's
// movements: the picture is the screen, not the window drawn by itself.
TEST(MovfrecQt, OpensOnARealDisplay) {
  if (std::system("command -v xvfb-run > /dev/null 2>&1") != 0)
    GTEST_SKIP() << "xvfb-run no está instalado (scripts/deps.sh lo instala)";
  const std::string dir = ::testing::TempDir() + "movfrec_qt_x_" + std::to_string(::getpid());
  const std::string demo = dir + "_demo.db", png = dir + ".png";
  InstallSchema(*OpenConnection("sqlite:" + demo), {.demo = true});
  // The X client libraries keep allocations for the life of the process.
  const Salida s = MovfrecQt("--db sqlite:" + demo + " --hoy 2026-11-10 --foto-pantalla " + png,
                             "ASAN_OPTIONS=detect_leaks=0 xvfb-run -a -s '-screen 0 1280x800x24'");
  ASSERT_EQ(s.status, 0) << s.err;
  const QImage pantalla(QString::fromStdString(png));
  ASSERT_EQ(pantalla.size(), QSize(1280, 800));
  // Xvfb's screen starts black: the window must have painted a good part of it in light colours.
  int claros = 0;
  for (int y = 0; y < 400; y += 10)
    for (int x = 0; x < 600; x += 10) claros += qGray(pantalla.pixel(x, y)) > 200;
  EXPECT_GT(claros, 60 * 40 / 2) << "the screen shows no window";
  for (const std::string& f : {demo, png}) std::remove(f.c_str());
}

}  // namespace
}  // namespace kivmovfrec::testing
