#include "NEX/NEX+PAK/RMIModelNEX/NexAgent.h"

#include <gtest/gtest.h>

namespace {

class PatientAgent : public NexAgent {
 public:
    explicit PatientAgent(unsigned retries) : NexAgent("patient"), retries_(retries) {}
    [[nodiscard]] unsigned retryTimesForEachServer() const override { return retries_; }

 private:
    unsigned retries_;
};

TEST(NexAgent, AddressesAreRepeatedAsOftenAsTheyMayBeTried) {
    using Urls = std::vector<std::string>;
    EXPECT_EQ(PatientAgent(0).generateRequestURLsSequence({"a", "b"}), (Urls{"a", "b"}));
    EXPECT_EQ(NexAgent("x").generateRequestURLsSequence({"a", "b"}), (Urls{"a", "a", "b", "b"}));
    EXPECT_EQ(PatientAgent(2).generateRequestURLsSequence({"a"}), (Urls{"a", "a", "a"}));
    EXPECT_EQ(PatientAgent(2).generateRequestURLsSequence({}), Urls{});
}

}  // namespace
