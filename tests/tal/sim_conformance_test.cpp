#include "tests/tal/conformance.h"

namespace tal::test {
namespace {

INSTANTIATE_TEST_SUITE_P(Simulated, Conformance,
                         testing::Values(EngineUnderTest{"Demo",
                                                         [] {
                                                           return Target{"sim:demo", "", ""};
                                                         }}),
                         nameOf);

}  // namespace
}  // namespace tal::test
