// The encoding compared with two independent serializers, in one run: times and their ratios.

#include <cstdio>
#include <map>

#include "bench/bench_pak_records.h"

namespace vorla::bench {
namespace {

/// Keeps the fastest repetition of each benchmark and prints the ratios at the end: what a machine
/// with other work on it does least to.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const double time = run.GetAdjustedCPUTime();
            const auto [place, first] = fastest_.try_emplace(run.run_name.function_name, time);
            if (!first) place->second = std::min(place->second, time);
        }
    }

    void Finalize() override {
        for (const char* what : {"record/encode", "record/decode", "map/encode", "map/decode",
                                 "list/encode", "list/decode", "packet/encode", "packet/decode"}) {
            const auto time = [&](const char* codec) {
                return fastest_[std::string(what) + "/" + codec];
            };
            const double compact = time("compact");
            std::printf(
                "%-14s compact %7.0f ns   protobuf/compact %5.2f   msgpack/compact %5.2f   "
                "object/compact %5.2f\n",
                what, compact, time("protobuf") / compact, time("msgpack") / compact,
                time("object") / compact);
        }
    }

 private:
    std::map<std::string, double> fastest_;
};

}  // namespace
}  // namespace vorla::bench

int main(int argc, char** argv) {
    using namespace vorla::bench;
    benchmark::Initialize(&argc, argv);
    registerCompact();
    registerObject();
    registerProtobuf();
    registerMsgpack();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
