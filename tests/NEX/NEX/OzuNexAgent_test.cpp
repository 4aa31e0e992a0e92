#include "NEX/NEX/OzuNexAgent.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX/OzuNexEnvironment.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/TestMainLoop.h"

namespace {

using nlohmann::json;
using vorla::test::LoopbackServer;
using vorla::test::TestMainLoop;
using Packet = std::shared_ptr<ZenPacket>;

constexpr const char* deadAddress = "http://127.0.0.1:1";

class TestAgent : public OzuNexAgent {
 public:
    explicit TestAgent(std::vector<std::string> urls,
                       std::optional<std::string> servant = "servant")
        : OzuNexAgent(std::move(servant)), urls_(std::move(urls)) {}
    [[nodiscard]] std::vector<std::string> serverURLs() const override { return urls_; }

 private:
    std::vector<std::string> urls_;
};

/// Runs a call to its end on a main loop. The outer value is empty when no callback came.
std::optional<Packet> call(TestAgent& agent,
                           std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    TestMainLoop loop;
    const auto reply = std::make_shared<std::optional<Packet>>();
    agent.invocation("func", ZenPacket::packet(), [reply](Packet packet) { *reply = packet; });
    loop.runUntil([&] { return reply->has_value(); }, limit);
    return *reply;
}

std::string header(const json& request, const std::string& name) {
    for (const auto& field : request["headers"])
        if (field[0] == name) return field[1];
    return "absent";
}

TEST(OzuNexAgent, RequestCarriesThePacketAndSaysWhoWeAre) {
    LoopbackServer server;
    const auto agent = std::make_shared<TestAgent>(std::vector{server.url()});
    ASSERT_TRUE(call(*agent).value());
    const json request = server.nextRequest();
    EXPECT_EQ(request["method"], "POST");
    EXPECT_EQ(request["path"], "/");
    EXPECT_EQ(header(request, "Content-Type"), "application/multipart-formdata");
    EXPECT_EQ(header(request, "Accept"), "*/*");
    EXPECT_EQ(header(request, "Accept-Encoding"), "gzip,deflate");
    EXPECT_EQ(header(request, "Z-UA"), OzuNexEnvironment::zUA());
    EXPECT_EQ(header(request, "Z-Guid"), OzuNexEnvironment::zGuid());
    EXPECT_EQ(header(request, "User-Agent"), "absent");
    EXPECT_EQ(header(request, "Expect"), "absent");
    EXPECT_EQ(agent->preferredURL(), server.url());
    EXPECT_FALSE(agent->haveRetryRequest());
}

TEST(OzuNexAgent, TheNextAddressGetsTheSameBytesWhenOneGivesNoBody) {
    LoopbackServer closing({"--reply", "close"});
    LoopbackServer refusing({"--status", "500"});
    LoopbackServer unused;
    const auto agent =
        std::make_shared<TestAgent>(std::vector{closing.url(), refusing.url(), unused.url()});
    EXPECT_TRUE(call(*agent).value());
    const json first = closing.nextRequest();
    EXPECT_EQ(first["body_sha"], refusing.nextRequest()["body_sha"]);
    EXPECT_TRUE(closing.nextRequest(100).empty());
    EXPECT_TRUE(unused.nextRequest(100).empty());
    EXPECT_EQ(agent->preferredURL(), refusing.url());
}

TEST(OzuNexAgent, DeadAddressesAreTriedOnceEach) {
    const auto one = std::make_shared<TestAgent>(std::vector<std::string>{deadAddress});
    const auto two =
        std::make_shared<TestAgent>(std::vector<std::string>{deadAddress, deadAddress});
    EXPECT_EQ(call(*one).value(), nullptr);
    EXPECT_EQ(call(*two).value(), nullptr);
    EXPECT_EQ(one->preferredURL(), "");
    const auto none = std::make_shared<TestAgent>(std::vector<std::string>{});
    EXPECT_EQ(call(*none).value(), nullptr);
}

TEST(OzuNexAgent, MissingPartsOfACallAreRaised) {
    TestAgent agent({deadAddress});
    TestAgent nameless({deadAddress}, std::nullopt);
    const auto textOf = [](auto&& action) -> std::string {
        try {
            action();
        } catch (const PakInconsistencyException& raised) {
            return raised.what();
        }
        return "nothing raised";
    };
    EXPECT_EQ(textOf([&] { agent.invocation(std::nullopt, ZenPacket::packet(), {}); }),
              "Invalid parameter not satisfying: funcName");
    EXPECT_EQ(textOf([&] { agent.invocation("f", Packet(), {}); }),
              "Invalid parameter not satisfying: zenPacket");
    EXPECT_EQ(textOf([&] { nameless.invocation("f", ZenPacket::packet(), {}); }),
              "The servant must be set!");
    EXPECT_EQ(agent.nexHttpRequestInfoWithfuncName("", ZenPacket::packet(), {}), nullptr);
    EXPECT_EQ(agent.nexHttpRequestInfoWithfuncName("f", nullptr, {}), nullptr);
    EXPECT_EQ(agent.nexRequestWithInfo(nullptr), std::nullopt);
    bool called = false;
    agent.invocation("", ZenPacket::packet(), [&](const Packet& reply) { called = !reply; });
    EXPECT_TRUE(called);
}

TEST(OzuNexAgent, BlockingCallReturnsTheReplyAlsoToTheMainThread) {
    const TestMainLoop loop;
    const LoopbackServer server({"--return-code", "12"});
    const auto agent =
        std::make_shared<TestAgent>(std::vector<std::string>{deadAddress, server.url()});
    const Packet reply = agent->invocation("f", ZenPacket::packet());
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->getReturnCode(), 12);
    const auto dead = std::make_shared<TestAgent>(std::vector<std::string>{deadAddress});
    EXPECT_EQ(dead->invocation("f", ZenPacket::packet()), nullptr);
}

TEST(OzuNexAgent, AReleasedAgentTriesNoFurtherAddress) {
    TestMainLoop loop;
    LoopbackServer closing({"--reply", "close", "--delay", "0.3"});
    LoopbackServer unused;
    auto agent = std::make_shared<TestAgent>(std::vector{closing.url(), unused.url()});
    const auto called = std::make_shared<bool>(false);
    agent->invocation("f", ZenPacket::packet(), [called](const Packet&) { *called = true; });
    EXPECT_FALSE(closing.nextRequest().empty());
    agent.reset();
    EXPECT_TRUE(unused.nextRequest(800).empty());
    loop.runUntil([&] { return *called; }, std::chrono::milliseconds(100));
    EXPECT_FALSE(*called);
}

}  // namespace
