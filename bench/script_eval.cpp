// Fresh parse + evaluate of formula-like expressions: the script engine against muparser's
// SetExpr + Eval, measured side by side in one run.
//
// Each iteration evaluates every expression of a set once, from its text, as the script host
// does for each line of a movement (a new Engine per call). muparser keeps one parser object
// (its construction is left out, in its favour) and gets SetExpr + Eval per expression, which
// recompiles its bytecode. The comparison uses the arithmetic subset both can express;
// the full set (with \, Mod, Round, Int, text conversion) is measured for the engine alone.
#include <benchmark/benchmark.h>
#include <muParser.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "platform/script/engine.h"

namespace {

struct Expr {
  const char* vb;  // script engine text
  const char* mu;  // the same in muparser syntax, or nullptr when it cannot express it
};

const std::vector<Expr>& Corpus() {
  static const std::vector<Expr> corpus = {
      {"1234.56*0.22+(3-1)\\2", nullptr},
      {"Round(1500.5*1.0825, 2)", nullptr},
      {"(100000-25000.5)/12", "(100000-25000.5)/12"},
      {"Int(7/2)*3.5", nullptr},
      {"15230.75*0.21", "15230.75*0.21"},
      {"(4500+1200.5)*1.16", "(4500+1200.5)*1.16"},
      {"125000/12", "125000/12"},
      {"2500.5+1320.25+980.1", "2500.5+1320.25+980.1"},
      {"(350000-120000)*0.35-15000", "(350000-120000)*0.35-15000"},
      {"1000*(1+0.05)^12", "1000*(1+0.05)^12"},
      {"48200.33-48200.33*0.105", "48200.33-48200.33*0.105"},
      {"(1520.4+310.6)/2", "(1520.4+310.6)/2"},
      {"-1250.75+3000", "-1250.75+3000"},
      {"12*(850.5-50.25)", "12*(850.5-50.25)"},
      {"((2000*1.21)-(2000*0.015))/3", "((2000*1.21)-(2000*0.015))/3"},
      {"7500*0.0075*30/365", "7500*0.0075*30/365"},
      {"100000*0.18/12", "100000*0.18/12"},
      {"(75000.5-25000.25)*(1-0.35)", "(75000.5-25000.25)*(1-0.35)"},
      {"3.5*42+0.5^2", "3.5*42+0.5^2"},
      {"Abs(-1500.75)*2", "abs(-1500.75)*2"},
      {"Sqr(144)+1", "sqrt(144)+1"},
      {"(1+2)*(3+4)*(5+6)/(7+8)", "(1+2)*(3+4)*(5+6)/(7+8)"},
      {"1234.56 Mod 100", nullptr},
      {"Round(98765.4321*0.16, 2)+1.5", nullptr},
      {"CDbl(\"1234,5\")*2", nullptr},
  };
  return corpus;
}

std::vector<const Expr*> Subset(bool arithmetic_only) {
  std::vector<const Expr*> out;
  for (const auto& e : Corpus()) {
    if (!arithmetic_only || e.mu) out.push_back(&e);
  }
  return out;
}

double EngineValue(const kivmovfrec::script::EvalResult& r) {
  const auto& v = r.value;
  switch (v.type()) {
    case kivmovfrec::VarType::Integer:
      return v.AsInteger();
    case kivmovfrec::VarType::Long:
      return v.AsLong();
    case kivmovfrec::VarType::Double:
      return v.AsDouble();
    default:
      return NAN;
  }
}

// Both evaluators must agree before their speed is compared.
bool SameResults() {
  mu::Parser parser;
  kivmovfrec::script::Engine engine;
  bool ok = true;
  for (const Expr* e : Subset(true)) {
    parser.SetExpr(e->mu);
    const double theirs = parser.Eval();
    const auto r = engine.Eval(e->vb);
    const double ours = r.ok ? EngineValue(r) : NAN;
    if (!(std::fabs(theirs - ours) <= 1e-9 * std::fmax(1.0, std::fabs(theirs)))) {
      std::fprintf(stderr, "results differ for %s: engine %.17g, muparser %.17g\n", e->vb, ours,
                   theirs);
      ok = false;
    }
  }
  for (const Expr* e : Subset(false)) {
    if (!engine.Eval(e->vb).ok) {
      std::fprintf(stderr, "engine failed on %s\n", e->vb);
      ok = false;
    }
  }
  return ok;
}

void RunEngine(benchmark::State& state, bool arithmetic_only) {
  const auto exprs = Subset(arithmetic_only);
  for (auto _ : state) {
    for (const Expr* e : exprs) {
      kivmovfrec::script::Engine engine;  // one engine per call, as the script host does
      auto r = engine.Eval(e->vb);
      benchmark::DoNotOptimize(r);
    }
  }
  state.counters["exprs"] = static_cast<double>(exprs.size());
}

void BM_Engine_Arithmetic(benchmark::State& state) {
  RunEngine(state, true);
}
void BM_Engine_FullCorpus(benchmark::State& state) {
  RunEngine(state, false);
}

void BM_MuParser_Arithmetic(benchmark::State& state) {
  const auto exprs = Subset(true);
  mu::Parser parser;
  for (auto _ : state) {
    for (const Expr* e : exprs) {
      parser.SetExpr(e->mu);
      double v = parser.Eval();
      benchmark::DoNotOptimize(v);
    }
  }
  state.counters["exprs"] = static_cast<double>(exprs.size());
}

BENCHMARK(BM_Engine_Arithmetic);
BENCHMARK(BM_Engine_FullCorpus);
BENCHMARK(BM_MuParser_Arithmetic);

// Console output plus a summary: nanoseconds per evaluation and the ratio. Both wall-clock and
// CPU time are shown; on a loaded machine the CPU figures are the steadier ones.
class SummaryReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const auto& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      const double to_ns = benchmark::GetTimeUnitMultiplier(benchmark::kNanosecond) /
                           benchmark::GetTimeUnitMultiplier(run.time_unit);
      const auto it = run.counters.find("exprs");
      const double exprs = it == run.counters.end() ? 1.0 : it->second.value;
      real_ns_[run.benchmark_name()] = run.GetAdjustedRealTime() * to_ns / exprs;
      cpu_ns_[run.benchmark_name()] = run.GetAdjustedCPUTime() * to_ns / exprs;
    }
  }

  void Summary() const {
    std::printf("\nper evaluation (fresh parse + evaluate)     real ns      cpu ns\n");
    for (const auto& [name, ns] : real_ns_) {
      std::printf("  %-36s %10.1f  %10.1f\n", name.c_str(), ns, cpu_ns_.at(name));
    }
    const std::string ours = "BM_Engine_Arithmetic", theirs = "BM_MuParser_Arithmetic";
    if (real_ns_.count(ours) && real_ns_.count(theirs) && real_ns_.at(ours) > 0 &&
        cpu_ns_.at(ours) > 0) {
      std::printf(
          "muparser SetExpr+Eval / script engine, arithmetic subset: %.1fx real, %.1fx cpu\n",
          real_ns_.at(theirs) / real_ns_.at(ours), cpu_ns_.at(theirs) / cpu_ns_.at(ours));
    }
  }

 private:
  std::map<std::string, double> real_ns_;
  std::map<std::string, double> cpu_ns_;
};

}  // namespace

int main(int argc, char** argv) {
  if (!SameResults()) return 1;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.Summary();
  benchmark::Shutdown();
  return 0;
}
