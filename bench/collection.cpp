// What collecting costs, without a line written: the engine library's simulated engine into the
// program's records.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "engine/VXAMonitorHelper.h"

namespace {

constexpr int kHandlesPerFile = 100;

// A scenario of so many handles, and a helper connected to it.
class Collection {
 public:
  explicit Collection(long handles)
      : path_(std::filesystem::temp_directory_path() /
              ("zelk-collection-" + std::to_string(getpid()) + ".toml")) {
    const std::string count = std::to_string(handles / kHandlesPerFile);
    const std::string each = std::to_string(kHandlesPerFile);
    std::ofstream(path_) << "[[file]]\nname = '/data/{n}'\ncount = " << count
                         << "\n[[file.handle]]\nclient = 'app01@shop'\ncount = " << each
                         << "\n[[client]]\nid = '{n}'\ncount = " << count
                         << "\n[[client.handle]]\nfile = '/data/{n}'\ncount = " << each
                         << "\n[[sql_connection]]\nuser_name = 'app{n}'\ncount = " << handles
                         << "\n";
    helper_.connect(orv::String("sim:") + path_.c_str(), "", "");
  }
  Collection(const Collection&) = delete;
  Collection& operator=(const Collection&) = delete;
  ~Collection() {
    helper_.disconnect();
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }

  VXAMonitorHelper& helper() { return helper_; }

 private:
  std::filesystem::path path_;
  VXAMonitorHelper helper_;
};

template <class Collect>
void collectPerItem(benchmark::State& state, Collect collect) {
  Collection collection(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(collect(collection.helper()));
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}

void fileHandles(benchmark::State& state) {
  collectPerItem(state,
                 [](VXAMonitorHelper& helper) { return helper.getActiveFileInfoList(true); });
}

void sessionHandles(benchmark::State& state) {
  collectPerItem(state,
                 [](VXAMonitorHelper& helper) { return helper.getActiveSessionInfoList(true); });
}

void connections(benchmark::State& state) {
  collectPerItem(state, [](VXAMonitorHelper& helper) { return helper.getConnInfoList(); });
}

constexpr long kFewest = 10'000;
constexpr long kMost = 1'000'000;

BENCHMARK(fileHandles)->RangeMultiplier(10)->Range(kFewest, kMost)->Complexity();
BENCHMARK(sessionHandles)->RangeMultiplier(10)->Range(kFewest, kMost)->Complexity();
BENCHMARK(connections)->RangeMultiplier(10)->Range(kFewest, kMost)->Complexity();

}  // namespace

BENCHMARK_MAIN();
