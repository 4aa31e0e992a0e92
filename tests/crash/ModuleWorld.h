#pragma once

#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <set>

#include "NEX/NEX+PAK/SerializationPAK/compact/ZenPacket.h"
#include "crash/facts/CvrDeviceUtil.h"
#include "crash/facts/CvrFileKeyStore.h"
#include "crash/module/CvrCrashModule.h"
#include "crash/upload/CvrEncryptUtil.h"
#include "crash/upload/CvrZipUtil.h"
#include "tests/support/TemporaryFolder.h"

namespace vorla::test {

/// Time that passes when the test says so; tasks run in its order, on the test's thread.
class HandDrivenTime final : public CvrScheduler {
 public:
    /// Ten in the morning of some day.
    int64_t now = CvrDeviceUtil::getTimeOfTodayStart(1700000000000) + 36000000;

    void async(Task task) override { asyncAfter({}, std::move(task)); }
    void asyncAfter(std::chrono::milliseconds delay, Task task) override {
        tasks_.emplace(now + delay.count(), std::move(task));
    }
    /// The process that had handed tasks over has ended.
    void forget() { tasks_.clear(); }
    void pass(std::chrono::milliseconds time) {
        const int64_t end = now + time.count();
        while (!tasks_.empty() && tasks_.begin()->first <= end) {
            now = std::max(now, tasks_.begin()->first);
            const Task task = tasks_.extract(tasks_.begin()).mapped();
            task();
        }
        now = end;
    }

 private:
    std::multimap<int64_t, Task> tasks_;
};

/// One request as the server has read it, and when it came.
struct SeenRequest {
    int32_t cmd = 0;
    std::string url;
    int64_t time = 0;
    size_t bodyBytes = 0;
};

/// A server in the same thread. It answers with a result, and a strategy where one is asked for.
class ServerInReach final : public CvrTransport {
 public:
    explicit ServerInReach(HandDrivenTime& time) : time_(time) {}

    std::vector<SeenRequest> seen;
    bool answers = true;
    int8_t result = 0;
    int64_t serverTime = 0;
    std::string encKey = CvrLocalStrategy::defaultEncKey;
    /// Empty for an answer without a strategy.
    PakData strategy;

    void send(HTTPRequest request, Completion completion) override {
        analyticsnex::ZenPacket packet;
        packet.decode(request.body.data(), request.body.size());
        Request read;
        packet.attributes().get("detail", read);
        if (!read.body.empty()) {
            const auto zipped = DESCvrEncryptUtil::deCryptDES(read.body, encKey);
            read.body = GZipCvrZipUtil().unzip(zipped.value()).value();
        }
        seen.push_back({read.cmd, request.url, time_.now, read.body.size()});
        time_.async([this, cmd = read.cmd, completion] { completion(reply(cmd)); });
    }

    [[nodiscard]] std::vector<int32_t> commands() const {
        std::vector<int32_t> commands;
        for (const SeenRequest& one : seen) commands.push_back(one.cmd);
        return commands;
    }

    static PakData strategyBytes(bool enable, bool userInfo, bool query, const std::string& url,
                                 const std::map<std::string, std::string>& values) {
        analyticspak::PakOutputStream stream;
        stream.write(enable, 0);
        stream.write(userInfo, 1);
        stream.write(query, 2);
        stream.write(url, 3);
        stream.write(values, 6);
        return {stream.bytes().begin(), stream.bytes().end()};
    }

 private:
    struct Request {
        static constexpr const char* structName = "cvr.RequestPkg";
        int32_t cmd = 0;
        PakData body;
        void readFrom(analyticspak::PakInputStream& stream) {
            stream.read(cmd, 6);
            stream.read(body, 7);
        }
    };
    struct Reply {
        static constexpr const char* structName = "cvr.ResponsePkg";
        int8_t result;
        int32_t cmd;
        PakData body;
        int64_t time;
        void writeTo(analyticspak::PakOutputStream& stream) const {
            stream.write(result, 0);
            stream.write(cmd, 1);
            stream.write(body, 2);
            stream.write(time, 4);
        }
    };

    HTTPResult reply(int32_t cmd) {
        HTTPResult answer;
        if (!answers) {
            answer.error = "no answer";
            return answer;
        }
        const bool asked = cmd == CvrCommandQueryStrategy || cmd == CvrCommandQueryWithUserInfo;
        Reply record{result, asked ? int32_t{CvrCommandQueryStrategy} : cmd, {}, serverTime};
        if (asked && !strategy.empty())
            record.body = *DESCvrEncryptUtil::enCryptDES(*GZipCvrZipUtil().zip(strategy),
                                                         CvrLocalStrategy::defaultEncPubKey);
        analyticsnex::ZenPacket packet;
        packet.sServantName = packet.sFuncName = "any";
        packet.attributes().put("detail", record);
        const std::string bytes = packet.encode();
        answer.body.emplace(bytes.begin(), bytes.end());
        answer.response.statusCode = 200;
        answer.response.allHeaderFields = {{"content-length", std::to_string(bytes.size())}};
        return answer;
    }

    HandDrivenTime& time_;
};

/// Handlers that note whether they are in place; real ones would catch the test's own crashes.
class NotedCapture final : public CvrCapture {
 public:
    bool installed = false;
    bool merges = false;
    CvrPreparedCrash prepared;

    void prepare(const CvrPreparedCrash& state) override { prepared = state; }
    void installHandler() override { installed = true; }
    void uninstallHandler() override { installed = false; }
    bool checkSignalHandler() override { return installed; }
    bool checkNSExceptionHandler() override { return installed; }
    void registCrashListerner(CvrCrashListener*) override {}
    void setExpMergeStrategy(bool merge) override { merges = merge; }
    bool isExpMergeUpload() override { return merges; }
    void setProcName(const std::string&) override {}
};

/// One run of a program with crash reporting. `folder`, `time` and `server` outlive it.
struct ModuleRun {
    ModuleRun(const std::string& folder, HandDrivenTime& time, ServerInReach& server,
              const std::string& version = "1.0")
        : model(folder, [&time] { return time.now; }),
          store(folder, model),
          keys(folder),
          module({model, store, capture, time, server, keys, [this] { return endpoint; },
                  [] { return true; }}) {
        model.change([&](CvrModelBase::Facts& facts) { facts.appVersion = version; });
        model.checkVer();
    }

    std::string endpoint = "https://built.in/analytics/cvrsync";
    NotedCapture capture;
    CvrModelBase model;
    CvrFilePersistHandler store;
    CvrFileKeyStore keys;
    CvrCrashModule module;
};

}  // namespace vorla::test
