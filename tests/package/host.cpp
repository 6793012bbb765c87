// Opens an in-memory database with the demo company, loads a movement through the façade and
// checks what it read. Exits non-zero on any failure.
#include <kivmovfrec/kivmovfrec.h>

#include <exception>
#include <iostream>

int main() {
  try {
    auto cn = kivmovfrec::OpenConnection("sqlite::memory:");
    kivmovfrec::InstallSchema(*cn, {.demo = true});
    kivmovfrec::clsMovFrecuente mf;
    mf.Servicios(kivmovfrec::SuiteServices::Defaults(cn));
    mf.Connect(cn);
    mf.Empresa(1);
    if (!mf.LoadMF(1)) {
      std::cerr << "movement 1 not found\n";
      return 1;
    }
    const auto& header = *mf.EstructuraMovFrec()->MovFrecuente();
    if (header.ID() != 1 || mf.EstructuraMovFrec()->Renglones()->QRenglones() == 0) {
      std::cerr << "movement 1 read wrongly\n";
      return 1;
    }
    std::cout << "host: movement " << header.ID() << " \"" << header.Nombre() << "\" with "
              << mf.EstructuraMovFrec()->Renglones()->QRenglones() << " lines\n";
    return 0;
  } catch (const std::exception& e) {
    std::cerr << "host: " << e.what() << "\n";
    return 1;
  }
}
