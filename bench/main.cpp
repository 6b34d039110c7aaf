// Runs the benchmarks, and says on standard error which missed what was meant or did not run.
#include <cstdio>
#include <memory>

#include "ratio.h"

namespace hyetex::bench {
namespace {

class Reporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override { return shown_->ReportContext(context); }
  void ReportRuns(const std::vector<Run>& runs) override {
    shown_->ReportRuns(runs);
    for (const Run& run : runs) {
      const std::string name = run.benchmark_name();
      if (run.error_occurred) std::fprintf(stderr, "%s: %s\n", name.c_str(), run.error_message.c_str());
      for (const auto& [figure, value] : run.counters)
        if (const auto most = run.counters.find(figure + AtMost);
            most != run.counters.end() && value > most->second)
          std::fprintf(stderr, "%s misses its target: %s is %.3g, at most %.3g is meant\n", name.c_str(),
                       figure.c_str(), value.value, most->second.value);
    }
  }
  void Finalize() override { shown_->Finalize(); }

 private:
  std::unique_ptr<BenchmarkReporter> shown_{benchmark::CreateDefaultDisplayReporter()};
};

}  // namespace
}  // namespace hyetex::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  hyetex::bench::Reporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
}
