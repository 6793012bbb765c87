// A scratch folder for one benchmark process: created on first use under the system's temporary
// folder ("<prefijo>_<pid>") and removed with everything in it when the process ends.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace kmf_bench {

class CarpetaTemporal {
 public:
  explicit CarpetaTemporal(const std::string& prefijo)
      : path_(std::filesystem::temp_directory_path() /
              (prefijo + "_" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(path_);
  }
  ~CarpetaTemporal() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace kmf_bench
