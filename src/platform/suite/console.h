// Messages and numeric prompts on a terminal, for the command-line host.
//
// Every message is written to the error stream as "[caption] text" (a message without caption
// as "text"), so standard output stays free for results. A question is answered by the fixed
// answer when there is one; otherwise, when the input is a terminal, by asking "(s/n)" until
// the person types one of s, si, sí, y, yes, n, no (case ignored; an empty line takes the
// message's default button; "c" cancels when Cancel is offered); with no terminal, or at end of
// input, the answer is No (Cancel for OK / Cancel).
#pragma once

#include <iosfwd>
#include <optional>

#include "kivmovfrec/services.h"

namespace kivmovfrec::suite {

struct ConsoleOptions {
  std::optional<bool> respuesta;  // fixed answer to every question (true = Yes / OK)
  bool interactive = false;       // the input stream is a terminal a person types on
};

// True when standard input is a terminal.
bool StdinIsTerminal();

// The button an answer stands for among `buttons`: yes -> Yes (or OK), no -> No (or Cancel;
// for OK alone, OK).
int AnswerFor(MsgButtons buttons, bool yes);

class ConsoleMessages final : public IMessages {
 public:
  // The streams must outlive the object.
  ConsoleMessages(std::ostream& err, std::istream& in, ConsoleOptions options);
  int Show(const MessageRequest& request) override;
  // Writes "Ayuda: tema N".
  void ShowHelp(int context_id) override;

 private:
  int Ask(const MessageRequest& request);
  std::ostream& err_;
  std::istream& in_;
  ConsoleOptions options_;
};

// Numeric prompts: "[caption] prompt [proposed]: ". Enter accepts the proposed value; an answer
// is read by vb::ReadTypedNumber (Spanish: "1.500,25"), and one that is not a number or could be
// read two ways ("1.5", "1,500") is refused with that rule's explanation and asked again.
// Without a terminal, or at end of input, the prompt is cancelled (no value).
// Text prompts: "[caption] prompt [proposed]: "; the line typed, trimmed, is the answer and an
// empty line accepts the proposed text. Cancelled without a terminal or at end of input.
class ConsoleInput final : public IInput {
 public:
  ConsoleInput(std::ostream& err, std::istream& in, bool interactive);
  std::optional<double> PedirNumero(const std::string& prompt, const std::string& caption,
                                    double proposed) override;
  std::optional<std::string> PedirTexto(const std::string& prompt, const std::string& caption,
                                        const std::string& proposed) override;

 private:
  std::ostream& err_;
  std::istream& in_;
  bool interactive_;
};

}  // namespace kivmovfrec::suite
