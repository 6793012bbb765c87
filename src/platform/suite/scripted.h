// Scripted suite services: no person is asked anything. Answers come from a queue or a default,
// and every message, prompt, help request and notice link is recorded so that a test (or an
// unattended host writing a log) can read it back.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kivmovfrec/db.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec::suite {

class FixedClock;
class MemoryUserRights;

// Messages. A message with only OK is answered OK and takes nothing from the queue; any other
// takes the next queued answer, or the default answer when the queue is empty (No unless
// changed). Queued answers are fitted to the buttons shown: Yes means OK and No means Cancel on
// an OK / Cancel message; Cancel on a Yes / No message means No.
class ScriptedMessages final : public IMessages {
 public:
  struct Shown {
    MessageRequest request;
    int answer = 0;
  };

  // Queues the answer to the next question (kMsgYes, kMsgNo, kMsgOK, kMsgCancel).
  void Answer(int button) { answers_.push_back(button); }
  void DefaultAnswer(int button) { default_answer_ = button; }

  int Show(const MessageRequest& request) override;
  void ShowHelp(int context_id) override { help_.push_back(context_id); }

  const std::vector<Shown>& shown() const { return shown_; }
  const std::vector<int>& help_topics() const { return help_; }
  size_t pending_answers() const { return answers_.size(); }
  void Clear();

 private:
  std::deque<int> answers_;
  int default_answer_ = kMsgNo;
  std::vector<Shown> shown_;
  std::vector<int> help_;
};

// Numeric prompts. Each prompt takes queued answers until one is a number: a typed text is read
// as the console reads it (vb::ReadTypedNumber: "1.500,25"; one that is not a number or could be
// read two ways is recorded as refused and the next one is taken), a queued value is taken as it
// is, a queued std::nullopt cancels. With the queue empty the prompt is cancelled.
class ScriptedInput final : public IInput {
 public:
  struct Asked {
    std::string prompt;
    std::string caption;
    double proposed = 0;
    std::vector<std::string> refused;  // typed answers that were not taken
    std::optional<double> result;
  };

  void Answer(std::optional<std::string> typed);
  void Answer(double value);
  // Queues the answer to the next text prompt (std::nullopt cancels). Text prompts have a queue
  // of their own; with it empty a text prompt is cancelled.
  void AnswerText(std::optional<std::string> text) { texts_.push_back(std::move(text)); }

  std::optional<double> PedirNumero(const std::string& prompt, const std::string& caption,
                                    double proposed) override;
  std::optional<std::string> PedirTexto(const std::string& prompt, const std::string& caption,
                                        const std::string& proposed) override;

  const std::vector<Asked>& asked() const { return asked_; }
  // Text prompts asked: prompt and caption (results are not recorded).
  const std::vector<std::pair<std::string, std::string>>& asked_texts() const {
    return asked_texts_;
  }

 private:
  struct Pending {
    std::optional<std::string> typed;  // neither set: cancel
    std::optional<double> value;
  };
  std::deque<Pending> answers_;
  std::vector<Asked> asked_;
  std::deque<std::optional<std::string>> texts_;
  std::vector<std::pair<std::string, std::string>> asked_texts_;
};

// DBFncs for tests. Counters come from genContadores (so they are atomic and transactional
// exactly like the default service) and settings from genParametros. Help goes to the messages'
// help record. Notice links are recorded and written to genAvisosUsuarios as the default service
// does; they are refused (false) when the default service refuses them.
class ScriptedDBFncs final : public IDBFncs {
 public:
  struct Link {
    int32_t aviso = 0;
    std::string usuarios;
    bool accepted = false;
  };

  // Throws std::invalid_argument when `cn` or `help` is null.
  ScriptedDBFncs(std::shared_ptr<Connection> cn, std::shared_ptr<IMessages> help);

  // Makes every further counter draw fail with -1 (or work again).
  void CountersFail(bool fail) { counters_fail_ = fail; }

  int32_t GetTableCounter(std::string_view table) override;
  int32_t ReserveTableCounter(std::string_view table, int32_t count) override;
  Variant GetSetting(std::string_view name) override;
  void ShowHelp(int context_id) override;
  bool VincularAvisos(int32_t aviso, const std::string& usuarios) override;

  const std::vector<Link>& links() const { return links_; }

 private:
  std::shared_ptr<Connection> cn_;
  std::shared_ptr<IMessages> help_;
  bool counters_fail_ = false;
  std::vector<Link> links_;
};

// A full set of scripted services with typed access to each part.
struct ScriptedServices {
  std::shared_ptr<ScriptedMessages> messages;
  std::shared_ptr<ScriptedInput> input;
  std::shared_ptr<FixedClock> clock;
  std::shared_ptr<MemoryUserRights> rights;
  std::shared_ptr<ScriptedDBFncs> db;
  std::shared_ptr<IAccountBalance> balance;  // the database's

  // Services over `cn` (std::invalid_argument when null). "Today" is `hoy`; the rights belong
  // to `usuario` and start empty.
  static ScriptedServices Make(std::shared_ptr<Connection> cn, Date hoy, int32_t usuario = 1);

  // The bundle for the façade (the date calculator left empty, to be filled by the caller).
  SuiteServices Bundle() const;
};

}  // namespace kivmovfrec::suite
