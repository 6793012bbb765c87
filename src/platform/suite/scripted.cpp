#include "platform/suite/scripted.h"

#include <cmath>
#include <iterator>
#include <stdexcept>

#include "platform/suite/balance.h"
#include "platform/suite/clock.h"
#include "platform/suite/counter.h"
#include "platform/suite/db_fncs.h"
#include "platform/suite/rights.h"
#include "platform/suite/sql_text.h"
#include "platform/vb/typed_number.h"

namespace kivmovfrec::suite {
namespace {

// Fits a scripted answer to the buttons actually shown.
int Fit(MsgButtons buttons, int answer) {
  switch (buttons) {
    case MsgButtons::OK:
      return kMsgOK;
    case MsgButtons::OKCancel:
      return answer == kMsgOK || answer == kMsgYes ? kMsgOK : kMsgCancel;
    case MsgButtons::YesNo:
      return answer == kMsgYes || answer == kMsgOK ? kMsgYes : kMsgNo;
    case MsgButtons::YesNoCancel:
      if (answer == kMsgCancel) return kMsgCancel;
      return answer == kMsgYes || answer == kMsgOK ? kMsgYes : kMsgNo;
  }
  return kMsgOK;
}

}  // namespace

// ---- ScriptedMessages -----------------------------------------------------------------------

int ScriptedMessages::Show(const MessageRequest& request) {
  int answer = kMsgOK;
  if (request.buttons != MsgButtons::OK) {
    int wanted = default_answer_;
    if (!answers_.empty()) {
      wanted = answers_.front();
      answers_.pop_front();
    }
    answer = Fit(request.buttons, wanted);
  }
  shown_.push_back({request, answer});
  return answer;
}

void ScriptedMessages::Clear() {
  answers_.clear();
  shown_.clear();
  help_.clear();
}

// ---- ScriptedInput --------------------------------------------------------------------------

void ScriptedInput::Answer(std::optional<std::string> typed) {
  answers_.push_back({std::move(typed), std::nullopt});
}

void ScriptedInput::Answer(double value) {
  answers_.push_back({std::nullopt, value});
}

std::optional<double> ScriptedInput::PedirNumero(const std::string& prompt,
                                                 const std::string& caption, double proposed) {
  Asked asked{prompt, caption, proposed, {}, std::nullopt};
  while (true) {
    if (answers_.empty()) break;
    const Pending next = answers_.front();
    answers_.pop_front();
    if (next.value) {
      asked.result = next.value;
      break;
    }
    if (!next.typed) break;  // cancelled
    const vb::TypedNumber number = vb::ReadTypedNumber(*next.typed);
    if (number.status == vb::TypedNumber::kNumber) {
      asked.result = number.value;
      break;
    }
    asked.refused.push_back(*next.typed);
  }
  asked_.push_back(asked);
  return asked.result;
}

std::optional<std::string> ScriptedInput::PedirTexto(const std::string& prompt,
                                                     const std::string& caption,
                                                     const std::string&) {
  asked_texts_.emplace_back(prompt, caption);
  if (texts_.empty()) return std::nullopt;
  std::optional<std::string> next = std::move(texts_.front());
  texts_.pop_front();
  return next;
}

// ---- ScriptedDBFncs -------------------------------------------------------------------------

ScriptedDBFncs::ScriptedDBFncs(std::shared_ptr<Connection> cn, std::shared_ptr<IMessages> help)
    : cn_(std::move(cn)), help_(std::move(help)) {
  if (!cn_ || !help_)
    throw std::invalid_argument("ScriptedDBFncs: faltan la conexión o los mensajes");
}

int32_t ScriptedDBFncs::GetTableCounter(std::string_view table) {
  if (counters_fail_ || !IsPlainName(table)) return -1;
  return DrawTableCounter(*cn_, table);
}

int32_t ScriptedDBFncs::ReserveTableCounter(std::string_view table, int32_t count) {
  if (counters_fail_ || !IsPlainName(table)) return -1;
  return suite::ReserveTableCounter(*cn_, table, count);
}

Variant ScriptedDBFncs::GetSetting(std::string_view name) {
  return ReadSetting(*cn_, name);
}

void ScriptedDBFncs::ShowHelp(int context_id) {
  help_->ShowHelp(context_id);
}

bool ScriptedDBFncs::VincularAvisos(int32_t aviso, const std::string& usuarios) {
  const bool accepted = LinkNoticeUsers(*cn_, aviso, usuarios);
  links_.push_back({aviso, usuarios, accepted});
  return accepted;
}

// ---- ScriptedServices -----------------------------------------------------------------------

ScriptedServices ScriptedServices::Make(std::shared_ptr<Connection> cn, Date hoy, int32_t usuario) {
  ScriptedServices s;
  s.messages = std::make_shared<ScriptedMessages>();
  s.input = std::make_shared<ScriptedInput>();
  s.clock = std::make_shared<FixedClock>(hoy);
  s.rights = std::make_shared<MemoryUserRights>(usuario);
  s.db = std::make_shared<ScriptedDBFncs>(cn, s.messages);
  s.balance = std::make_shared<DbAccountBalance>(cn);
  return s;
}

SuiteServices ScriptedServices::Bundle() const {
  SuiteServices bundle;
  bundle.db = db;
  bundle.rights = rights;
  bundle.messages = messages;
  bundle.input = input;
  bundle.clock = clock;
  bundle.balance = balance;
  return bundle;
}

}  // namespace kivmovfrec::suite
