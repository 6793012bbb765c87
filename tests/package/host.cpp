// Opens an in-memory database with the demo company, loads a movement through the façade, runs
// the main job up to 31/12/2026 and checks what it posted by reading the documents back. Only
// the installed public headers are used. Exits non-zero on any failure.
#include <kivmovfrec/kivmovfrec.h>

#include <exception>
#include <iostream>
#include <string>

namespace {

int Fallo(const std::string& texto) {
  std::cerr << "host: " << texto << "\n";
  return 1;
}

// The first column of the first row of `sql`, as a whole number.
long Contar(kivmovfrec::Connection& cn, const std::string& sql) {
  auto rs = cn.OpenResultset(sql);
  return rs->Eof() ? -1 : kivmovfrec::vb::CLng(rs->Get(0));
}

}  // namespace

int main() {
  using namespace kivmovfrec;
  try {
    auto cn = OpenConnection("sqlite::memory:");
    InstallSchema(*cn, {.demo = true});
    clsMovFrecuente mf;
    mf.Servicios(SuiteServices::Defaults(cn));
    mf.Connect(cn);
    mf.Empresa(1);
    if (!mf.LoadMF(1)) return Fallo("movement 1 not found");
    const auto& header = *mf.EstructuraMovFrec()->MovFrecuente();
    if (header.ID() != 1 || mf.EstructuraMovFrec()->Renglones()->QRenglones() == 0) {
      return Fallo("movement 1 read wrongly");
    }

    // Worked out from the demo data: November's rent, social charges with their bank fee, VAT
    // and exchange difference; December's rent and VAT (December's social charges and their fee
    // are 0); the accountants' fees voucher.
    const std::string asientos = "Select Count(*) From cceAsientos Where AsiMovFrecuente > 0";
    const std::string comprobantes =
        "Select Count(*) From cceComprobantes Where ComMovFrecuente > 0";
    const long asientos_antes = Contar(*cn, asientos);
    const long comprobantes_antes = Contar(*cn, comprobantes);
    const Date hasta = *vb::ParseDate("31/12/2026");
    size_t avisadas = 0;
    const ResultadoEjecucion r = mf.EjecutarVencidos(
        hasta,
        [&](const OcurrenciaEjecutada&, const ProgresoEjecucion& p) { avisadas = p.terminadas; });
    if (!r.completa()) return Fallo("the main job stopped: " + r.detenida);
    if (avisadas != r.ocurrencias.size()) return Fallo("not every occurrence was reported");
    int escritos = 0;
    for (const OcurrenciaEjecutada& o : r.ocurrencias) {
      if (o.estado != EstadoOcurrencia::Ejecutada) {
        return Fallo("occurrence of movement " + std::to_string(o.movimiento) +
                     " not executed: " + o.error);
      }
      for (const DocumentoGenerado& d : o.documentos) escritos += d.id != 0;
    }
    if (Contar(*cn, asientos) - asientos_antes != 7 ||
        Contar(*cn, comprobantes) - comprobantes_antes != 1 || escritos != 8) {
      return Fallo("expected 7 entries and 1 voucher, reported " + std::to_string(escritos));
    }
    const long desbalanceados = Contar(*cn,
                                       "Select Count(*) From (Select ACuIDAsiento From "
                                       "cceAsientoCuenta Group By ACuIDAsiento Having "
                                       "Abs(Sum(ACuDebe) - Sum(ACuHaber)) >= 0.005) x");
    if (desbalanceados != 0) return Fallo("an entry does not balance");
    if (!mf.EjecutarVencidos(hasta).ocurrencias.empty()) return Fallo("a second run posted again");

    std::cout << "host: movement " << header.ID() << " \"" << header.Nombre() << "\"; the main job "
              << "posted " << escritos << " documents in " << r.ocurrencias.size()
              << " occurrences\n";
    return 0;
  } catch (const std::exception& e) {
    return Fallo(e.what());
  }
}
