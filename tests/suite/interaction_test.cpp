// Messages, numeric prompts and clocks: console and scripted implementations.
#include <cmath>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/suite/clock.h"
#include "platform/suite/console.h"
#include "platform/suite/scripted.h"
#include "platform/vb/convert.h"
#include "platform/vb/typed_number.h"

namespace kivmovfrec {
namespace {

using suite::ConsoleMessages;
using suite::ConsoleOptions;

MessageRequest Question(std::string text, int default_button = 1) {
  return {std::move(text), "Movimientos Frecuentes", MsgIcon::Question, MsgButtons::YesNo,
          default_button};
}

MessageRequest Notice(std::string text) {
  return {std::move(text), "Asistente de Asientos", MsgIcon::Exclamation, MsgButtons::OK, 1};
}

TEST(ConsoleMessages, WithoutTerminalOrWithAFixedAnswerNothingIsRead) {
  std::ostringstream err;
  std::istringstream in("s\n");
  const MessageRequest ok_cancel{"¿Seguir?", "", MsgIcon::Question, MsgButtons::OKCancel, 1};
  ConsoleMessages unattended(err, in, ConsoleOptions{std::nullopt, false});
  EXPECT_EQ(unattended.Show(Question("¿Confirma eliminar el registro?")), kMsgNo);
  EXPECT_EQ(unattended.Show(ok_cancel), kMsgCancel);
  EXPECT_EQ(unattended.Show(Notice("Fórmula sin resultado")), kMsgOK);
  unattended.ShowHelp(327);
  EXPECT_EQ(err.str(),
            "[Movimientos Frecuentes] ¿Confirma eliminar el registro?\n¿Seguir?\n"
            "[Asistente de Asientos] Fórmula sin resultado\nAyuda: tema 327\n");
  // A fixed answer wins over the terminal.
  ConsoleMessages yes(err, in, ConsoleOptions{true, true});
  EXPECT_EQ(yes.Show(Question("¿Confirma?")), kMsgYes);
  EXPECT_EQ(yes.Show(ok_cancel), kMsgOK);
  ConsoleMessages no(err, in, ConsoleOptions{false, true});
  EXPECT_EQ(no.Show(Question("¿Confirma?")), kMsgNo);
  EXPECT_EQ(no.Show(Notice("Listo")), kMsgOK);
}

TEST(ConsoleMessages, TerminalAnswersAreReadUntilOneIsValid) {
  std::ostringstream err;
  std::istringstream in("quizás\n  SÍ \nno\n\n\nc\nc\ns\n");
  ConsoleMessages messages(err, in, ConsoleOptions{std::nullopt, true});
  EXPECT_EQ(messages.Show(Question("¿Uno?")), kMsgYes);
  EXPECT_NE(err.str().find("Responda s (sí) o n (no)."), std::string::npos);
  EXPECT_EQ(messages.Show(Question("¿Dos?")), kMsgNo);
  // An empty line takes the default button.
  EXPECT_EQ(messages.Show(Question("¿Tres?", 2)), kMsgNo);
  EXPECT_EQ(messages.Show(Question("¿Cuatro?", 1)), kMsgYes);
  // Cancel only when offered: "c", then "c" refused and "s".
  EXPECT_EQ(messages.Show({"¿Guardar?", "", MsgIcon::Question, MsgButtons::YesNoCancel, 1}),
            kMsgCancel);
  EXPECT_EQ(messages.Show(Question("¿Otra?")), kMsgYes);
  // End of input answers No.
  EXPECT_EQ(messages.Show(Question("¿Cinco?", 1)), kMsgNo);
}

// Typed numbers are read the Spanish way; what could be read two ways is never a number.
TEST(TypedNumber, SpanishGroupingAndDecimalsOnlyWhenUnambiguous) {
  // "= value", or the explanation shown before asking again (a part of it).
  auto leido = [](std::string_view texto) {
    const vb::TypedNumber n = vb::ReadTypedNumber(texto);
    return n.status == vb::TypedNumber::kNumber ? "= " + vb::NumberToText(n.value) : n.explanation;
  };
  for (const auto& [texto, esperado] : std::vector<std::pair<std::string, std::string>>{
           {"1.500", "= 1500"},
           {" 1.500,25 ", "= 1500.25"},
           {"-1.234.567,8", "= -1234567.8"},
           {"+1234,567", "= 1234.567"},
           {"0,500", "= 0.5"},
           {",5", "= 0.5"},
           {"1.50.000", "«1.50.000» no es un número."},
           {"12 pesos", "no es un número"},
           {"", "Ingrese un número."},
           {"1.5", "(el punto separa los miles y la coma los decimales): escriba 1,5."},
           {"1,500.25", "escriba 1.500,25."},
           {"1,500", "de dos maneras: escriba 1.500 si son miles o 1,5 si son decimales."},
           {"-12,345", "escriba -12.345 si son miles o -12,3450 si son decimales."},
       }) {
    const std::string r = leido(texto);
    if (esperado.starts_with("= ")) {
      EXPECT_EQ(r, esperado) << texto;
    } else {
      EXPECT_NE(r.find(esperado), std::string::npos) << texto << ": " << r;
    }
  }
  // A pasted megabyte is not echoed whole.
  EXPECT_EQ(leido(std::string(1 << 20, 'x')),
            "«" + std::string(60, 'x') + "… (1048576 caracteres)» no es un número.");
}

TEST(ConsoleInput, AsksAgainUntilTheAnswerIsANumber) {
  std::ostringstream err;
  std::istringstream in("doce\n1,500\n1.500,5\n\n");
  suite::ConsoleInput input(err, in, true);
  EXPECT_EQ(input.PedirNumero("kivcalculator: Importe", "Pedir dato", 3), 1500.5);
  EXPECT_NE(err.str().find("«doce» no es un número."), std::string::npos) << err.str();
  EXPECT_NE(err.str().find("«1,500» puede leerse de dos maneras"), std::string::npos);
  EXPECT_EQ(input.PedirNumero("Tasa", "", 1.25), 1.25);          // Enter takes the proposed value
  EXPECT_EQ(input.PedirNumero("Tasa", "", 1.25), std::nullopt);  // end of input cancels
  std::istringstream typed("7\n");
  suite::ConsoleInput unattended(err, typed, false);
  EXPECT_EQ(unattended.PedirNumero("Tasa", "", 1), std::nullopt);
}

// Text prompts: the trimmed line, Enter for the proposed text; the scripted input keeps text
// answers apart from numeric ones.
TEST(ConsoleInput, TextPromptsTakeTheTrimmedLineOrTheProposedText) {
  std::ostringstream err;
  std::istringstream in("  Horas extra \n\n");
  suite::ConsoleInput input(err, in, true);
  EXPECT_EQ(input.PedirTexto("Ingrese", "Pedir dato", ""), "Horas extra");
  EXPECT_EQ(input.PedirTexto("Ingrese", "", "Propuesto"), "Propuesto");
  EXPECT_EQ(input.PedirTexto("Ingrese", "", "x"), std::nullopt);  // end of input cancels
  std::istringstream typed("y\n");
  EXPECT_EQ(suite::ConsoleInput(err, typed, false).PedirTexto("Ingrese", "", "x"), std::nullopt);

  suite::ScriptedInput scripted;
  scripted.Answer(5.0);
  scripted.AnswerText("uno");
  scripted.AnswerText(std::nullopt);
  EXPECT_EQ(scripted.PedirTexto("a", "b", ""), "uno");
  EXPECT_EQ(scripted.PedirTexto("a", "b", ""), std::nullopt);
  EXPECT_EQ(scripted.PedirTexto("a", "b", ""), std::nullopt);  // nothing queued
  EXPECT_EQ(scripted.PedirNumero("n", "", 0), 5.0);
  EXPECT_EQ(scripted.asked_texts().size(), 3u);
}

// The scripted messages other tests answer with: queued answers fitted to the buttons shown.
TEST(ScriptedMessages, AnswersFitTheButtonsShown) {
  suite::ScriptedMessages messages;
  messages.Answer(kMsgYes);
  messages.Answer(kMsgYes);
  messages.Answer(kMsgCancel);
  EXPECT_EQ(messages.Show(Notice("Aviso")), kMsgOK);  // takes no answer
  EXPECT_EQ(messages.Show({"¿B?", "c", MsgIcon::Question, MsgButtons::OKCancel, 1}), kMsgOK);
  EXPECT_EQ(messages.Show(Question("¿A?", 2)), kMsgYes);
  EXPECT_EQ(messages.Show(Question("¿E?")), kMsgNo);  // Cancel is not a Yes / No button
  EXPECT_EQ(messages.Show(Question("¿C?")), kMsgNo);  // queue empty: default No
  messages.DefaultAnswer(kMsgYes);
  EXPECT_EQ(messages.Show(Question("¿D?")), kMsgYes);
  ASSERT_EQ(messages.shown().size(), 6u);
  EXPECT_EQ(messages.shown()[2].request.text, "¿A?");
}

TEST(Clock, FixedAndSystemTodayAreTheDateOfNow) {
  const Date day = suite::SerialOf(2005, 8, 2);
  EXPECT_EQ(day.serial, 38566);
  suite::FixedClock at_noon(Date{day.serial + 0.7}, 0.5);
  EXPECT_EQ(at_noon.Today().serial, 38566);
  EXPECT_EQ(at_noon.Now().serial, 38566.5);
  const double running = suite::FixedClock(day).Now().serial;
  EXPECT_TRUE(running >= 38566 && running < 38567) << running;

  suite::SystemClock clock;
  const double now = clock.Now().serial;
  const double today = clock.Today().serial;
  EXPECT_GT(today, suite::SerialOf(2020, 1, 1).serial);
  // Midnight may pass between the two calls.
  EXPECT_TRUE(today == std::floor(now) || today == std::floor(now) + 1) << now << " " << today;
}

}  // namespace
}  // namespace kivmovfrec
