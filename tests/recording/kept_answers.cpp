// A library to preload, in front of any engine library. It keeps every answer of the engine in the
// file that KEPT_ANSWERS names. A call that has an answer there gets it, the first such call the
// first answer and so on; other calls go to the engine. So two programs can see the same moment of
// a server that never stands still.
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <map>
#include <string>

#include "tests/support/fake_engine/call.h"

namespace {

using fake_engine::Call;
using fake_engine::Next;

struct Answer {
  std::int16_t status = 0;
  std::int32_t number = 0;
  std::uint32_t count = 0;
  std::string bytes = {};
};

Answer taken(const Call& call, const Next& next) {
  Answer answer{.status = next()};
  if (call.number != nullptr) answer.number = *call.number;
  if (call.count != nullptr) answer.count = *call.count;
  const auto filled = fake_engine::filledBytes(call);
  answer.bytes.assign(filled.begin(), filled.end());
  return answer;
}

std::int16_t give(const Answer& answer, const Call& call) {
  if (call.number != nullptr) *call.number = answer.number;
  if (call.count != nullptr) *call.count = answer.count;
  const auto filled = fake_engine::filledBytes(call);
  if (!filled.empty()) std::memcpy(filled.data(), answer.bytes.data(), filled.size());
  return answer.status;
}

class KeptAnswers {
 public:
  explicit KeptAnswers(const std::string& path) {
    std::ifstream in(path);
    std::string call;
    for (Answer each; in >> std::quoted(call) >> each.status >> each.number >> each.count >>
                      std::quoted(each.bytes);) {
      kept_[call] = each;
    }
    out_.open(path, std::ios::app);
  }

  std::int16_t answer(const Call& call, const Next& next) {
    const std::string text = fake_engine::textOf(call);
    const std::string key = text + " " + std::to_string(++asked_[text]);
    const auto found = kept_.find(key);
    if (found != kept_.end()) return give(found->second, call);
    const Answer answer = taken(call, next);
    out_ << std::quoted(key) << ' ' << answer.status << ' ' << answer.number << ' ' << answer.count
         << ' ' << std::quoted(answer.bytes) << std::endl;
    return answer.status;
  }

 private:
  std::map<std::string, Answer> kept_;
  std::map<std::string, int> asked_;
  std::ofstream out_;
};

}  // namespace

std::int16_t fake_engine::serve(const Call& call, const Next& next) {
  static KeptAnswers answers(std::getenv("KEPT_ANSWERS"));
  return answers.answer(call, next);
}
