#include "NEX/NEX/OzuHTTPSessionManager.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <chrono>
#include <future>
#include <thread>

#include "platform/base/raii.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/TestMainLoop.h"

namespace {

using namespace std::chrono_literals;
using vorla::CompletionQueue;
using vorla::HTTPResult;
using vorla::test::LoopbackServer;

vorla::HTTPLimits shortLimits() {
    vorla::HTTPLimits limits;
    limits.connect = 1s;
    limits.idle = 1s;
    limits.total = 2s;
    return limits;
}

vorla::HTTPRequest requestTo(const std::string& url) {
    vorla::HTTPRequest request;
    request.url = url;
    request.headerFields = {{"Accept-Encoding", "gzip,deflate"}};
    request.body = {'b', 'o', 0, 'd', 'y'};
    return request;
}

std::future<HTTPResult> send(OzuHTTPSessionManager& session, vorla::HTTPRequest request) {
    const auto done = std::make_shared<std::promise<HTTPResult>>();
    session.dataTaskWithRequest(
        std::move(request), {}, {}, [done](const HTTPResult& result) { done->set_value(result); },
        CompletionQueue::Session);
    return done->get_future();
}

// What else a server may do wrong is listed once, where uploads are tested; these take time.
TEST(HTTPSession, ServersThatDoNotEndAreGivenUpInTime) {
    OzuHTTPSessionManager session(shortLimits());
    for (const char* reply : {"silent", "drip", "headers"}) {
        const LoopbackServer server({"--reply", reply});
        const auto start = std::chrono::steady_clock::now();
        const HTTPResult result = send(session, requestTo(server.url())).get();
        EXPECT_LT(std::chrono::steady_clock::now() - start, 5s) << reply;
        EXPECT_TRUE(!result.body && !result.error.empty()) << reply;
    }
}

TEST(HTTPSession, AFullMebibyteArrivesAndNotAByteMore) {
    OzuHTTPSessionManager generous;
    vorla::HTTPLimits limits = shortLimits();
    const LoopbackServer server({"--reply", "garbage"});
    const size_t size = send(generous, requestTo(server.url())).get().body.value().size();
    limits.largestBody = size;
    OzuHTTPSessionManager exact(limits);
    EXPECT_TRUE(send(exact, requestTo(server.url())).get().body);
    limits.largestBody = size - 1;
    OzuHTTPSessionManager tight(limits);
    EXPECT_FALSE(send(tight, requestTo(server.url())).get().body);
    EXPECT_EQ(vorla::HTTPLimits().largestBody, 1048576U);
}

TEST(HTTPSession, UnreachableAddressesFail) {
    OzuHTTPSessionManager session(shortLimits());
    for (const char* url :
         {"http://127.0.0.1:1", "http://no-such-host.invalid", "https://127.0.0.1:1", "",
          "file:///etc/hostname", "ftp://127.0.0.1/x", "not a url", "http://[::1"}) {
        const HTTPResult result = send(session, requestTo(url)).get();
        EXPECT_FALSE(result.body) << url;
        EXPECT_FALSE(result.error.empty()) << url;
    }
    const LoopbackServer server;
    const std::string secure = "https" + server.url().substr(4);
    EXPECT_FALSE(send(session, requestTo(secure)).get().body);
}

TEST(HTTPSession, ANameThatIsNotResolvedIsNotWaitedForLongerThanToldTo) {
    const auto start = std::chrono::steady_clock::now();
    {
        OzuHTTPSessionManager session(shortLimits());
        EXPECT_FALSE(send(session, requestTo("http://a.hang.test")).get().body);
        auto dropped = send(session, requestTo("http://b.hang.test"));
        EXPECT_EQ(dropped.wait_for(100ms), std::future_status::timeout);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
}

// Its signal would end this process.
TEST(HTTPSession, AConnectionThatBreaksWhileItIsWrittenToRaisesNoSignal) {
    const vorla::UniqueFd listening(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* plain = reinterpret_cast<sockaddr*>(&address);
    ASSERT_EQ(::bind(listening.get(), plain, size), 0);
    ASSERT_EQ(::listen(listening.get(), 5), 0);
    ASSERT_EQ(::getsockname(listening.get(), plain, &size), 0);
    const std::string where = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    std::jthread breaking([&] {
        for (int i = 0; i < 2; ++i) {
            const vorla::UniqueFd peer(::accept(listening.get(), nullptr, nullptr));
            const linger reset{1, 0};
            ::setsockopt(peer.get(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
        }
    });
    OzuHTTPSessionManager session(shortLimits());
    for (const char* scheme : {"http://", "https://"}) {
        auto request = requestTo(scheme + where);
        request.body.resize(8U << 20U);
        EXPECT_FALSE(send(session, request).get().body) << scheme;
    }
}

TEST(HTTPSession, EndingASessionDropsWhatIsUnderWay) {
    const LoopbackServer server({"--reply", "silent"});
    const auto start = std::chrono::steady_clock::now();
    auto session = std::make_unique<OzuHTTPSessionManager>();
    std::vector<std::future<HTTPResult>> replies;
    for (int i = 0; i < 5; ++i) replies.push_back(send(*session, requestTo(server.url())));
    EXPECT_EQ(replies[0].wait_for(300ms), std::future_status::timeout);
    session.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    for (auto& reply : replies) EXPECT_THROW((void)reply.get(), std::future_error);
}

TEST(HTTPSession, CompletionsRunOnTheMainLoopIfThereIsOne) {
    const LoopbackServer server;
    OzuHTTPSessionManager session;
    std::atomic<std::thread::id> thread;
    const auto note = [&](const HTTPResult&) { thread = std::this_thread::get_id(); };
    const auto arrived = [&] { return thread.load() != std::thread::id(); };
    {
        vorla::test::TestMainLoop loop;
        session.dataTaskWithRequest(requestTo(server.url()), {}, {}, note);
        EXPECT_TRUE(loop.runUntil(arrived));
        EXPECT_EQ(thread.load(), std::this_thread::get_id());
    }
    thread = std::thread::id();
    session.dataTaskWithRequest(requestTo(server.url()), {}, {}, note);
    for (int i = 0; i < 2000 && !arrived(); ++i) std::this_thread::sleep_for(5ms);
    EXPECT_TRUE(arrived());
    EXPECT_NE(thread.load(), std::this_thread::get_id());
}

TEST(HTTPSession, HeaderFieldsWithLineBreaksAreLeftOut) {
    LoopbackServer server;
    OzuHTTPSessionManager session(shortLimits());
    auto request = requestTo(server.url());
    request.setValue("value\r\nX-Injected: 1", "X-Bad");
    request.setValue("kept", "X-Good");
    EXPECT_TRUE(send(session, request).get().body);
    const std::string headers = server.nextRequest()["headers"].dump();
    EXPECT_EQ(headers.find("X-Injected"), std::string::npos);
    EXPECT_NE(headers.find("X-Good"), std::string::npos);
}

}  // namespace
