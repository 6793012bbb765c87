#include "platform/suite/console.h"

#include <unistd.h>

#include <istream>
#include <ostream>
#include <string>

#include "platform/vb/convert.h"
#include "platform/vb/text.h"
#include "platform/vb/typed_number.h"

namespace kivmovfrec::suite {
namespace {

bool HasChoice(MsgButtons buttons) {
  return buttons != MsgButtons::OK;
}

void WriteMessage(std::ostream& err, const MessageRequest& request) {
  if (!request.caption.empty()) err << '[' << request.caption << "] ";
  err << request.text << '\n';
}

std::string Hint(MsgButtons buttons) {
  switch (buttons) {
    case MsgButtons::OKCancel:
      return "(s = Aceptar / n = Cancelar)";
    case MsgButtons::YesNoCancel:
      return "(s/n/c)";
    default:
      return "(s/n)";
  }
}

// The button the request's default button number stands for.
int DefaultButton(const MessageRequest& request) {
  const bool second = request.default_button == 2;
  const bool third = request.default_button == 3;
  switch (request.buttons) {
    case MsgButtons::OKCancel:
      return second ? kMsgCancel : kMsgOK;
    case MsgButtons::YesNoCancel:
      return third ? kMsgCancel : second ? kMsgNo : kMsgYes;
    case MsgButtons::YesNo:
      return second ? kMsgNo : kMsgYes;
    default:
      return kMsgOK;
  }
}

}  // namespace

bool StdinIsTerminal() {
  return isatty(STDIN_FILENO) == 1;
}

int AnswerFor(MsgButtons buttons, bool yes) {
  switch (buttons) {
    case MsgButtons::OK:
      return kMsgOK;
    case MsgButtons::OKCancel:
      return yes ? kMsgOK : kMsgCancel;
    default:
      return yes ? kMsgYes : kMsgNo;
  }
}

ConsoleMessages::ConsoleMessages(std::ostream& err, std::istream& in, ConsoleOptions options)
    : err_(err), in_(in), options_(options) {}

int ConsoleMessages::Show(const MessageRequest& request) {
  WriteMessage(err_, request);
  if (!HasChoice(request.buttons)) return kMsgOK;
  if (options_.respuesta) return AnswerFor(request.buttons, *options_.respuesta);
  if (!options_.interactive) return AnswerFor(request.buttons, false);
  return Ask(request);
}

int ConsoleMessages::Ask(const MessageRequest& request) {
  const bool cancel_offered = request.buttons == MsgButtons::YesNoCancel;
  std::string line;
  while (true) {
    err_ << Hint(request.buttons) << ": " << std::flush;
    if (!std::getline(in_, line)) {
      err_ << '\n';
      return AnswerFor(request.buttons, false);
    }
    const std::string answer = vb::LCase(vb::Trim(line));
    if (answer.empty()) return DefaultButton(request);
    if (answer == "s" || answer == "si" || answer == "sí" || answer == "y" || answer == "yes") {
      return AnswerFor(request.buttons, true);
    }
    if (answer == "n" || answer == "no") return AnswerFor(request.buttons, false);
    if (cancel_offered && (answer == "c" || answer == "cancelar")) return kMsgCancel;
    err_ << "Responda s (sí) o n (no).\n";
  }
}

void ConsoleMessages::ShowHelp(int context_id) {
  err_ << "Ayuda: tema " << context_id << '\n';
}

ConsoleInput::ConsoleInput(std::ostream& err, std::istream& in, bool interactive)
    : err_(err), in_(in), interactive_(interactive) {}

std::optional<double> ConsoleInput::PedirNumero(const std::string& prompt,
                                                const std::string& caption, double proposed) {
  const std::string proposed_text = vb::CStr(Variant(proposed));
  if (!caption.empty()) err_ << '[' << caption << "] ";
  err_ << prompt << " [" << proposed_text << "]";
  if (!interactive_) {
    err_ << ": (sin terminal: cancelado)\n";
    return std::nullopt;
  }
  std::string line;
  while (true) {
    err_ << ": " << std::flush;
    if (!std::getline(in_, line)) {
      err_ << '\n';
      return std::nullopt;
    }
    const std::string answer = vb::Trim(line);
    if (answer.empty()) return proposed;
    const vb::TypedNumber number = vb::ReadTypedNumber(answer);
    if (number.status == vb::TypedNumber::kNumber) return number.value;
    err_ << number.explanation << "\nIngrese el número";
  }
}

std::optional<std::string> ConsoleInput::PedirTexto(const std::string& prompt,
                                                    const std::string& caption,
                                                    const std::string& proposed) {
  if (!caption.empty()) err_ << '[' << caption << "] ";
  err_ << prompt << " [" << proposed << "]";
  if (!interactive_) {
    err_ << ": (sin terminal: cancelado)\n";
    return std::nullopt;
  }
  err_ << ": " << std::flush;
  std::string line;
  if (!std::getline(in_, line)) {
    err_ << '\n';
    return std::nullopt;
  }
  const std::string answer = vb::Trim(line);
  return answer.empty() ? proposed : answer;
}

}  // namespace kivmovfrec::suite
