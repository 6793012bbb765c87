#include <gtest/gtest.h>

#include <charconv>
#include <set>
#include <string>

#include "resources/help_topics.h"
#include "resources/legend_macros.h"
#include "resources/utf8_check.h"

namespace kivmovfrec::resources {
namespace {

constexpr std::string_view kNota = "\n«Se toma 02/08/2005 como referencia para el ejemplo»";

TEST(LegendMacros, CountEntryIsOneShortOfTheRows) {
  const std::string_view cuenta = LegendMacroEntry(0);
  int n = -1;
  ASSERT_EQ(std::from_chars(cuenta.data(), cuenta.data() + cuenta.size(), n).ec, std::errc());
  EXPECT_EQ(n, 14);
  EXPECT_FALSE(LegendMacroEntry(15).empty());
  EXPECT_EQ(LegendMacroEntry(16), "");
  EXPECT_EQ(LegendMacroEntry(-1), "");
}

TEST(LegendMacros, EveryRowIsMacroDescriptionAndNotedExample) {
  std::set<std::string_view> macros;
  for (int i = 1; i < kLegendMacroEntries; ++i) {
    SCOPED_TRACE(i);
    const std::string_view fila = LegendMacroEntry(i);
    EXPECT_TRUE(testing::IsValidUtf8(fila));
    const size_t a = fila.find('|');
    ASSERT_NE(a, std::string_view::npos);
    const size_t b = fila.find('|', a + 1);
    ASSERT_NE(b, std::string_view::npos);
    EXPECT_EQ(fila.find('|', b + 1), std::string_view::npos);

    const std::string_view macro = fila.substr(0, a);
    const std::string_view descripcion = fila.substr(a + 1, b - a - 1);
    const std::string_view ejemplo = fila.substr(b + 1);
    EXPECT_TRUE(macro.starts_with("&[") && macro.ends_with("]")) << macro;
    EXPECT_TRUE(macros.insert(macro).second) << "repeated " << macro;
    EXPECT_TRUE(descripcion.starts_with("Despliega ") && descripcion.ends_with("."));
    EXPECT_TRUE(ejemplo.starts_with("Ejemplo: "));
    EXPECT_TRUE(ejemplo.ends_with(kNota));
    EXPECT_EQ(ejemplo.find('\n'), ejemplo.size() - kNota.size());
  }
}

TEST(LegendMacros, RowsKeepTheirOrderAndText) {
  EXPECT_EQ(LegendMacroEntry(1),
            "&[FechaC]|Despliega la fecha del movimiento en formato corto.|Ejemplo: 02/08/2005" +
                std::string(kNota));
  EXPECT_EQ(LegendMacroEntry(9),
            "&[FUltimoDiaMes-1]|Despliega el último día del mes anterior para la fecha del "
            "movimiento.|Ejemplo: 31/07/2005" +
                std::string(kNota));
  // The two rows that the interpreter never expands are still listed.
  EXPECT_TRUE(LegendMacroEntry(6).starts_with("&[FAño]|"));
  EXPECT_TRUE(LegendMacroEntry(15).starts_with("&[FAño-1]|"));
}

TEST(HelpTopics, KeysMapToContextNumbersMatchedExactly) {
  const std::pair<const char*, int> casos[] = {
      {"checkList", 332},   {"calendario", 330}, {"fxLey", 305}, {"asiAgeFrec", 323},
      {"compAgeFrec", 313}, {"compFreNom", 316}, {"", 0},        {"CheckList", 0},
      {"checklist", 0},     {"checkList ", 0},   {"asiAge", 0},
  };
  for (const auto& [clave, contexto] : casos) EXPECT_EQ(HelpContext(clave), contexto) << clave;
}

}  // namespace
}  // namespace kivmovfrec::resources
