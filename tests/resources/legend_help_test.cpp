#include <gtest/gtest.h>

#include <set>
#include <string>

#include "platform/vb/text.h"
#include "resources/help_topics.h"
#include "resources/legend_macros.h"

namespace kivmovfrec::resources {
namespace {

constexpr std::string_view kNota = "\n«Se toma 02/08/2005 como referencia para el ejemplo»";

// Entry 0 counts the macros the interpreter expands: one short of the rows, which follow it as
// "macro|description|example", each macro once.
TEST(LegendMacros, CountThenOneRowPerMacro) {
  EXPECT_EQ(LegendMacroEntry(0), std::to_string(kLegendMacroEntries - 2));
  EXPECT_EQ(LegendMacroEntry(kLegendMacroEntries), "");
  EXPECT_EQ(LegendMacroEntry(-1), "");
  std::set<std::string_view> macros;
  for (int i = 1; i < kLegendMacroEntries; ++i) {
    SCOPED_TRACE(i);
    const std::string_view fila = LegendMacroEntry(i);
    EXPECT_TRUE(vb::IsValidUtf8(fila));
    const size_t a = fila.find('|');
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
    EXPECT_EQ(ejemplo.find('\n'), ejemplo.size() - kNota.size());
    EXPECT_TRUE(ejemplo.ends_with(kNota));
  }
  // The row the interpreter never expands is the last one.
  EXPECT_TRUE(LegendMacroEntry(kLegendMacroEntries - 1).starts_with("&[FAño-1]|"));
}

TEST(HelpTopics, KeysAreMatchedExactly) {
  EXPECT_NE(HelpContext("checkList"), 0);
  for (const char* otra : {"", "CheckList", "checklist", "checkList ", "check"}) {
    EXPECT_EQ(HelpContext(otra), 0) << otra;
  }
}

}  // namespace
}  // namespace kivmovfrec::resources
