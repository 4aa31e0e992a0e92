#include "NEX/NEX+PAK/RMIModelNEX/NexAgent.h"

#include <gtest/gtest.h>

#include <random>

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/ZenAttributeValues.h"
#include "tests/support/LogRecorder.h"

namespace {

class PatientAgent : public NexAgent {
 public:
    explicit PatientAgent(unsigned retries) : NexAgent("patient"), retries_(retries) {}
    [[nodiscard]] unsigned retryTimesForEachServer() const override { return retries_; }

 private:
    unsigned retries_;
};

PakData replyBytes() {
    ZenPacket packet;
    ZenAttributeValues::setInt(-3, packet.attributes(), "");
    ZenAttributeValues::setInAttributes(PakValue("some text"), packet.attributes(), "text");
    packet.setContext({{PakValue("key"), PakValue("value")}});
    return packet.toData();
}

TEST(NexAgent, AddressesAreRepeatedAsOftenAsTheyMayBeTried) {
    using Urls = std::vector<std::string>;
    EXPECT_EQ(PatientAgent(0).generateRequestURLsSequence({"a", "b"}), (Urls{"a", "b"}));
    EXPECT_EQ(NexAgent("x").generateRequestURLsSequence({"a", "b"}), (Urls{"a", "a", "b", "b"}));
    EXPECT_EQ(PatientAgent(2).generateRequestURLsSequence({"a"}), (Urls{"a", "a", "a"}));
    EXPECT_EQ(PatientAgent(2).generateRequestURLsSequence({}), Urls{});
}

TEST(NexAgent, FramesAreTestedBeforeTheyAreRead) {
    const vorla::test::LogRecorder log;
    const NexAgent agent("x");
    const PakData good = replyBytes();
    PakData longer = good;
    longer.push_back(0);
    PakData wrong = good;
    ++wrong[3];
    const struct {
        const char* name;
        PakData bytes;
        bool read, logged;
    } rows[] = {
        {"good", good, true, false},
        {"empty", {}, false, false},
        {"three bytes", {0, 0, 3}, false, true},
        {"four bytes that say three", {0, 0, 0, 3}, false, true},
        {"four bytes that say four", {0, 0, 0, 4}, false, true},
        {"one byte more", longer, false, true},
        {"length one too much", wrong, false, true},
        {"high bit in the length", {0x80, 0, 0, 4}, false, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto before = log.count("NEX Response Data Invalid");
        const auto packet = agent.handleResponseData(row.bytes, {}, nullptr);
        EXPECT_EQ(packet != nullptr, row.read);
        EXPECT_EQ(log.count("NEX Response Data Invalid") - before, row.logged ? 1 : 0);
    }
    EXPECT_EQ(agent.handleResponseData(good, {}, nullptr)->getReturnCode(), -3);
}

// Whatever a peer sends within a good frame: read or refused, never an end of the process.
TEST(NexAgent, DamagedRepliesAreRefused) {
    const vorla::test::LogRecorder log;
    const NexAgent agent("x");
    const PakData good = replyBytes();
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        PakData bytes = good;
        if (round % 3 == 0) bytes.resize(5 + random() % (bytes.size() - 4));
        for (unsigned hits = random() % 4; hits > 0; --hits)
            bytes[4 + random() % (bytes.size() - 4)] = static_cast<uint8_t>(random());
        for (size_t i = 0; i < 4; ++i)
            bytes[i] = static_cast<uint8_t>(bytes.size() >> (24 - 8 * i));
        if (const auto packet = agent.handleResponseData(bytes, {}, nullptr)) {
            try {
                const vorla::PakFailuresRaise untrusted;
                (void)packet->getReturnCode();
            } catch (const PakInconsistencyException&) {
            }
        }
    }
}

}  // namespace
