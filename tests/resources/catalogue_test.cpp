#include "resources/catalogue.h"

#include <gtest/gtest.h>

#include <climits>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "platform/vb/text.h"
#include "resources/msg.h"

namespace kivmovfrec::resources {
namespace {

TEST(Catalogue, AskedNumberIsOffsetByLanguageWithZeroCountingAsOneAndSpanishAsFallBack) {
  const std::string_view espanol = Entrada(1007);
  EXPECT_EQ(espanol, "Movimientos Frecuentes");
  EXPECT_EQ(Texto(msg::kTituloMovimientosFrecuentes), espanol);
  EXPECT_EQ(Texto(msg::kTituloMovimientosFrecuentes, 0), espanol);
  EXPECT_EQ(Texto(msg::kTituloMovimientosFrecuentes, 1), espanol);
  EXPECT_EQ(Texto(msg::kTituloMovimientosFrecuentes, -4), espanol);
  EXPECT_EQ(NumeroEntrada(870, 0), 1870);
  EXPECT_EQ(NumeroEntrada(870, 3), 3870);
  // A language without the text falls back to Spanish.
  EXPECT_EQ(Entrada(2870), "");
  EXPECT_EQ(Texto(msg::kSinDerechos, 2), Entrada(1870));
  EXPECT_EQ(Texto(msg::kSinDerechos, 9), Entrada(1870));
  // A language number so large that the entry number leaves the int range still falls back.
  EXPECT_EQ(Texto(msg::kSinDerechos, INT_MAX), Entrada(1870));
  EXPECT_EQ(Texto(msg::kTasaDeCambioPara, 2, "U$S"), "Tasa de cambio para U$S");
}

TEST(Catalogue, UnknownNumbersGiveEmptyText) {
  EXPECT_EQ(Texto(6), "");  // a hole between numbered texts
  EXPECT_EQ(Texto(999), "");
  EXPECT_EQ(Texto(-1), "");
  EXPECT_EQ(Texto(INT_MIN), "");
  EXPECT_EQ(Texto(1870), "");  // entry numbers are not asked numbers
  EXPECT_EQ(Entrada(870), "");
  EXPECT_EQ(Entrada(INT_MAX), "");
}

TEST(Catalogue, PlaceholderIsReplacedEverywhereAndNotRescanned) {
  EXPECT_EQ(Texto(msg::kCapTCa, 1, "Dólares"), "&TC a Dólares:");
  EXPECT_EQ(Texto(msg::kTasaDeCambioPara, 1, "[p][p]"), "Tasa de cambio para [p][p]");
  EXPECT_EQ(Texto(msg::kTasaDeCambioPara, 1, ""), "Tasa de cambio para ");
  EXPECT_EQ(Texto(msg::kSinDerechos, 1, "x"), Texto(msg::kSinDerechos));

  // A multi-line text with the name at its start.
  const std::string contacto = Texto(msg::kContactoPrivado, 1, "Juan Pérez");
  EXPECT_TRUE(contacto.starts_with("“Juan Pérez” es un contacto privado.\n")) << contacto;
  EXPECT_EQ(contacto.find("[p]"), std::string::npos);
}

TEST(Catalogue, MultiLineMessagesJoinWithOneLineBreak) {
  const std::string a(Texto(msg::kSinDerechos)), b(Texto(msg::kConsulteAdministrador));
  EXPECT_EQ(Lineas({msg::kSinDerechos, msg::kConsulteAdministrador}), a + "\n" + b);
  // An unknown line keeps its place, so the other lines stay where the caller put them.
  EXPECT_EQ(Lineas({999, msg::kConsulteAdministrador}), "\n" + b);
  EXPECT_EQ(Lineas({}), "");
}

TEST(Catalogue, NumberHelpersReachTheirTexts) {
  EXPECT_EQ(Texto(msg::TituloDeTipo(2)), "Asistente de Comprobantes");
  EXPECT_EQ(Texto(msg::TituloDeTipo(3)), "Avisos");
  EXPECT_EQ(Texto(msg::TituloDeTipo(6)), "Lista de tareas");
  EXPECT_TRUE(Texto(msg::ConfirmaGrabarDeTipo(2)).ends_with("para el comprobante?"));
  for (int valor = 1; valor <= 5; ++valor) {
    EXPECT_EQ(Texto(msg::Importancia(valor)).substr(0, 4), std::to_string(valor) + " - ");
  }
}

// Sorted, unique, inside the Spanish block, each text found by its number and well formed.
TEST(Catalogue, EveryEntryIsWellFormed) {
  int anterior = 999;
  for (const auto& e : Entradas()) {
    SCOPED_TRACE(e.entrada);
    EXPECT_LT(anterior, e.entrada);
    EXPECT_LE(e.entrada, 1999);
    anterior = e.entrada;
    EXPECT_EQ(Entrada(e.entrada), e.texto);
    const std::string_view t = e.texto;
    ASSERT_FALSE(t.empty());
    EXPECT_TRUE(vb::IsValidUtf8(t));
    EXPECT_EQ(t.find_first_of("\r\t"), std::string_view::npos);
    EXPECT_EQ(t.find("  "), std::string_view::npos);
    // Blanks at either end only where the text is marked as concatenated with others.
    const bool borde = t.front() == ' ' || t.back() == ' ';
    EXPECT_EQ(borde, e.bordes);
    // Each line of a multi-line text is a clean sentence.
    std::istringstream lineas{std::string(t)};
    for (std::string linea; std::getline(lineas, linea);) {
      EXPECT_FALSE(linea.empty());
      if (t.find('\n') != std::string_view::npos) {
        EXPECT_NE(linea.front(), ' ');
        EXPECT_NE(linea.back(), ' ');
      }
    }
    // An access key is one "&" followed by the key letter.
    const size_t amp = t.find('&');
    if (amp != std::string_view::npos) {
      EXPECT_EQ(t.find('&', amp + 1), std::string_view::npos);
      ASSERT_LT(amp + 1, t.size());
      EXPECT_NE(t[amp + 1], ' ');
    }
    // Placeholders are written exactly "[p]".
    const size_t corchete = t.find('[');
    if (corchete != std::string_view::npos) {
      EXPECT_EQ(t.substr(corchete, 3), "[p]");
    }
  }
}

// Every constant of msg.h names exactly one entry, and every entry is named by a constant, so
// callers never need a bare number and no text is unreachable.
TEST(Catalogue, ConstantsAndEntriesCorrespondOneToOne) {
  std::ifstream in(std::string(KMF_SOURCE_DIR) + "/src/resources/msg.h");
  ASSERT_TRUE(in) << "msg.h not found";
  std::stringstream buffer;
  buffer << in.rdbuf();
  const std::string header = buffer.str();

  const std::regex constante(R"(inline constexpr int (k\w+) = (-?\d+);)");
  std::map<int, std::string> porNumero;
  for (auto it = std::sregex_iterator(header.begin(), header.end(), constante);
       it != std::sregex_iterator(); ++it) {
    const std::string nombre = (*it)[1];
    const int numero = std::stoi((*it)[2]);
    const auto [pos, nuevo] = porNumero.emplace(numero, nombre);
    EXPECT_TRUE(nuevo) << nombre << " repeats the number of " << pos->second;
    EXPECT_FALSE(Texto(numero).empty()) << nombre << " = " << numero << " has no text";
  }
  EXPECT_GT(porNumero.size(), 100u);

  std::set<int> conNombre;
  for (const auto& [numero, nombre] : porNumero) conNombre.insert(numero + 1000);
  for (const auto& e : Entradas()) {
    EXPECT_TRUE(conNombre.count(e.entrada)) << "entry " << e.entrada << " has no constant";
  }
}

}  // namespace
}  // namespace kivmovfrec::resources
