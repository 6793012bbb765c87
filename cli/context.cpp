#include <ostream>

#include "command.h"
#include "kivmovfrec/empresa.h"

namespace kivmovfrec::cli {

Context::Context(GlobalOptions options, std::ostream& out, std::ostream& err)
    : options_(std::move(options)), out_(out), err_(err) {}

Context::~Context() = default;

std::shared_ptr<Connection> Context::connection() {
  if (!cn_) {
    cn_ = OpenConnection(options_.db);
    cn_->SetQueryLimit(options_.limite_consultas);
    clsEmpresa empresa;
    if (require_company_ && !empresa.Load(options_.empresa, *cn_)) {
      throw Refused("la empresa " + std::to_string(options_.empresa) +
                    " no existe (revise --empresa)");
    }
  }
  return cn_;
}

SuiteServices& Context::services() {
  if (!services_) {
    DefaultServiceOptions opts;
    opts.respuesta = options_.responder;
    opts.hoy = options_.hoy;
    services_ = std::make_unique<SuiteServices>(
        SuiteServices::Defaults(connection(), options_.usuario, opts));
  }
  return *services_;
}

void Context::PrintJson(const nlohmann::ordered_json& value) {
  salida_json_ = true;
  out_ << value.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

}  // namespace kivmovfrec::cli
