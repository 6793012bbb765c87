#include "schedule/date_calculator.h"

#include <gtest/gtest.h>

#include "platform/vb/dates.h"

namespace kivmovfrec::schedule {
namespace {

Date D(int y, int m, int d, int hh = 0, int nn = 0) {
  return vb::MakeDate(vb::DateParts{y, m, d, hh, nn, 0});
}

// Without a start date the month step anchors on the date it is given; the time of day stays.
TEST(ProximaFecha, AnchorsOnTheDateGivenAndKeepsTheTime) {
  DateCalculator calc;
  EXPECT_EQ(calc.ProximaFecha("200001", D(2024, 1, 31, 10, 30)), D(2024, 2, 29, 10, 30));
  EXPECT_EQ(calc.ProximaFecha("200001", D(2024, 2, 29)), D(2024, 3, 29));
  EXPECT_EQ(calc.ProximaFechaAnclada("200001", D(2024, 1, 31), D(2024, 2, 29)), D(2024, 3, 31));
  EXPECT_EQ(calc.ProximaFecha("000001", D(2024, 2, 28, 23, 59)), D(2024, 2, 29, 23, 59));
  EXPECT_EQ(calc.ProximaFecha("000000", D(2024, 5, 5)), D(2024, 5, 5));  // once: no next date
  for (const char* code : {"", "-1", "abc", "400001", "12x"}) {
    EXPECT_THROW(calc.ProximaFecha(code, D(2024, 1, 1)), VbError) << code;
  }
}

// CalcularFinal both ways: the last date of `n` occurrences, and the occurrences on or before a
// last date.
Date UltimaDe(std::string_view code, Date start, int32_t n) {
  Date last{};
  int32_t count = n;
  DateCalculator().CalcularFinal(code, start, count, last);
  EXPECT_EQ(count, n);  // the count asked is kept
  return last;
}
int32_t OcurrenciasHasta(std::string_view code, Date start, Date last) {
  int32_t n = 0;
  DateCalculator().CalcularFinal(code, start, n, last);
  return n;
}

TEST(CalcularFinal, CountGivesLastDateAndBack) {
  EXPECT_EQ(UltimaDe("200001", D(2024, 1, 30), 3), D(2024, 3, 30));  // anchored on the 30th
  // The last date need not be an occurrence.
  EXPECT_EQ(OcurrenciasHasta("200001", D(2024, 1, 31), D(2024, 4, 29)), 3);
  EXPECT_EQ(OcurrenciasHasta("200001", D(2024, 1, 31), D(2024, 4, 30)), 4);
  // A start date at 18:30 counts as that day at midnight.
  EXPECT_EQ(UltimaDe("000001", D(2024, 3, 1, 18, 30), 2), D(2024, 3, 2));
  // A last date before the start holds no occurrence; one on the start date itself holds one.
  EXPECT_EQ(OcurrenciasHasta("000007", D(2024, 3, 1), D(2024, 2, 1)), 0);
  EXPECT_EQ(OcurrenciasHasta("000007", D(2024, 3, 1), D(2024, 3, 1, 9, 0)), 1);
  // Once only: one occurrence, on the start date.
  int32_t n = 5;
  Date last{};
  DateCalculator().CalcularFinal("000000", D(2024, 3, 1, 18, 30), n, last);
  EXPECT_EQ(n, 1);
  EXPECT_EQ(last, D(2024, 3, 1));
}

TEST(DescribirFrecuencia, SpanishSentences) {
  DateCalculator calc;
  const std::pair<const char*, const char*> cases[] = {
      {"000000", "Una sola vez"},      {"000001", "Todos los días"},
      {"000014", "Cada 2 semanas"},    {"000015", "Cada 15 días"},
      {"100001", "Todas las semanas"}, {"200002", "Cada 2 meses"},
      {"300001", "Todos los años"},    {"xyz", ""},
  };
  for (const auto& [code, text] : cases) EXPECT_EQ(calc.DescribirFrecuencia(code), text) << code;
}

class ScriptedEditor : public IFrequencyEditor {
 public:
  std::optional<Frequency> answer;
  Frequency seen{};
  std::optional<Frequency> Edit(const Frequency& initial) override {
    seen = initial;
    return answer;
  }
};

TEST(EditarFrecuencia, ReturnsCodeThenDescriptionOrEmptyOnCancel) {
  auto editor = std::make_shared<ScriptedEditor>();
  DateCalculator calc(editor);
  editor->answer = Frequency{FrequencyUnit::Months, 2};
  EXPECT_EQ(calc.EditarFrecuencia(), "200002 Cada 2 meses");
  // The next edit starts from the last choice.
  editor->answer.reset();
  EXPECT_EQ(calc.EditarFrecuencia(), "");
  EXPECT_EQ(editor->seen, (Frequency{FrequencyUnit::Months, 2}));
  EXPECT_EQ(DateCalculator().EditarFrecuencia(), "");
}

TEST(FrequencyCatalogue, CodesAreReadAndFound) {
  EXPECT_EQ(FrequencyCaption(FrequencyCatalogue()[3]), "Quincenal");
  EXPECT_EQ(FindFrequencyEntry(200003), 6u);
  EXPECT_FALSE(FindFrequencyEntry(200005).has_value());
  EXPECT_EQ(FormatFrequencyCode(7), "000007");
  EXPECT_EQ(ParseFrequency(" 200003 "), (Frequency{FrequencyUnit::Months, 3}));
  EXPECT_EQ(ParseFrequency("200002 Cada 2 meses"), (Frequency{FrequencyUnit::Months, 2}));
}

}  // namespace
}  // namespace kivmovfrec::schedule
