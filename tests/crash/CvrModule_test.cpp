// The module over days of hand-driven time: what it asks, sends, keeps and switches, and when.
#include "crash/facts/CvrDeviceUtil.h"
#include "tests/crash/ModuleWorld.h"

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using vorla::test::HandDrivenTime;
using vorla::test::ModuleRun;
using vorla::test::ServerInReach;
using vorla::test::TemporaryFolder;

class CvrModule : public testing::Test {
 protected:
    void start(const std::string& version = "1.0") {
        time.forget();
        run_ = std::make_unique<ModuleRun>(folder.path(), time, server, version);
        server.seen.clear();
    }
    void enable() {
        run().module.enableModule();
        time.pass(1s);
    }
    ModuleRun& run() { return *run_; }
    void save(const std::string& hash, const std::string& version = "1.0") {
        CvrExpObj crash;
        crash.hash = hash;
        crash.time = crash.cashTime = time.now;
        crash.valueMap["A23"] = version;
        ASSERT_TRUE(run().store.saveOneCrash(crash));
    }
    std::vector<CvrSummaryInfo> infos() { return run().store.getAllDatas(); }

    TemporaryFolder folder;
    HandDrivenTime time;
    ServerInReach server{time};

 private:
    std::unique_ptr<ModuleRun> run_;
};

TEST_F(CvrModule, FirstStartSendsTheUserRecordWithItsQuery) {
    start();
    server.strategy = ServerInReach::strategyBytes(true, true, true, "https://other/x", {});
    server.serverTime = time.now + 5000;
    enable();
    EXPECT_TRUE(run().capture.installed);
    EXPECT_THAT(server.commands(), ElementsAre(540));
    EXPECT_THAT(infos(), IsEmpty());
    EXPECT_TRUE(run().module.isStarted());
    EXPECT_NEAR(static_cast<double>(run().model.facts().serverTimeDelta), 5000, 10);
    EXPECT_EQ(run().module.queryUrl(), "https://other/x");
    // Once a day, whatever happens.
    time.pass(2s);
    run().module.appResumed();
    run().module.insertUserChangeSm();
    time.pass(1h);
    EXPECT_THAT(server.commands(), ElementsAre(540, 520));
    // What is on disk brings the next start up without the server; the query follows.
    run().model.persistAllKey();
    start();
    server.answers = false;
    enable();
    EXPECT_THAT(server.commands(), IsEmpty());
    time.pass(2s);
    EXPECT_THAT(server.commands(), ElementsAre(510));
    EXPECT_EQ(server.seen[0].url, "https://other/x");
    time.pass(3h);
    EXPECT_EQ(server.seen.size(), 1U);
}

TEST_F(CvrModule, AsksAgainEachHourUntilThereIsAStrategy) {
    start();
    server.answers = false;
    enable();
    time.pass(2h + 30min);
    ASSERT_THAT(server.commands(), ElementsAre(540, 540, 540));
    EXPECT_EQ(server.seen[2].time - server.seen[1].time, 3600000);
    EXPECT_EQ(infos().size(), 1U);
    run().endpoint.clear();
    time.pass(5h);
    EXPECT_EQ(server.seen.size(), 3U);
}

TEST_F(CvrModule, AStrategySwitchesOffAndOn) {
    start();
    enable();
    server.strategy = ServerInReach::strategyBytes(false, true, true, "", {});
    run().module.strategyQueryHandler().startStrategyQuery();
    time.pass(1s);
    EXPECT_FALSE(run().capture.installed);
    EXPECT_FALSE(run().module.creatSummaryInfo(CvrStartTypeDaily, 1));
    start();
    run().module.enableModule();
    EXPECT_TRUE(run().capture.installed);
    time.pass(1s);
    EXPECT_FALSE(run().capture.installed);
    EXPECT_FALSE(run().module.isStarted());
    server.strategy = ServerInReach::strategyBytes(true, true, true, "", {{"isMerge", "true"}});
    time.pass(2s);
    EXPECT_TRUE(run().capture.installed);
    EXPECT_TRUE(run().capture.merges);
    run().module.setUserEnabled(false);
    EXPECT_TRUE(run().module.checkAndEnable());
    EXPECT_FALSE(run().capture.installed);
    EXPECT_FALSE(run().module.checkAndEnable());
}

TEST_F(CvrModule, CrashesGoOutOneEachTwoMinutes) {
    start();
    for (const char* hash : {"A", "B", "C"}) save(hash);
    save("old", "0.9");
    run().module.crashUploadHandler().uploadCrashes();
    time.pass(10min);
    ASSERT_THAT(server.commands(), ElementsAre(530, 530, 530));
    EXPECT_EQ(server.seen[1].time - server.seen[0].time, 120000);
    EXPECT_EQ(server.seen[2].time - server.seen[1].time, 120000);
    EXPECT_EQ(run().store.storedCrashCount(), 0U);
}

TEST_F(CvrModule, WhatTheServerRefusesStays) {
    start();
    save("A");
    server.result = 3;
    for (const bool answers : {true, false}) {
        server.answers = answers;
        run().module.crashUploadHandler().uploadCrashes();
        time.pass(10min);
        EXPECT_FALSE(run().module.crashUploadHandler().isUploading());
        EXPECT_EQ(run().store.storedCrashCount(), 1U);
    }
    EXPECT_EQ(server.seen.size(), 2U);
    run().endpoint.clear();
    run().module.crashUploadHandler().uploadCrashes();
    time.pass(10min);
    EXPECT_EQ(server.seen.size(), 2U);
}

TEST_F(CvrModule, MergedCrashesOfTodayStayAsPartners) {
    start();
    run().capture.merges = true;
    CvrCrashUploadHandler& upload = run().module.crashUploadHandler();
    save("A");
    upload.uploadCrashes();
    time.pass(10min);
    EXPECT_EQ(server.seen.size(), 1U);
    auto kept = run().store.getCrashWithMd5("A");
    ASSERT_TRUE(kept);
    kept->dcount = 2;
    run().store.updateOneCrash(*kept);
    upload.uploadCrashes();
    time.pass(10min);
    EXPECT_EQ(server.seen.size(), 1U);
    time.pass(24h);
    EXPECT_TRUE(upload.expExist());
    upload.uploadCrashes();
    time.pass(10min);
    EXPECT_EQ(server.seen.size(), 2U);
    EXPECT_EQ(run().store.storedCrashCount(), 0U);
}

TEST_F(CvrModule, EachDayAndEachUserMakesARecord) {
    start();
    server.strategy = ServerInReach::strategyBytes(true, true, true, "", {});
    enable();
    server.answers = false;
    time.pass(24h + 700s);
    ASSERT_EQ(infos().size(), 1U);
    EXPECT_EQ(infos()[0].startType, CvrStartTypeDaily);
    const int64_t midnight = CvrDeviceUtil::getTimeOfTodayStart(infos()[0].startTime);
    EXPECT_GE(infos()[0].startTime - midnight, 1000);
    EXPECT_LE(infos()[0].startTime - midnight, 601000);
    time.pass(24h);
    EXPECT_EQ(infos().size(), 2U);
    run().module.insertUserChangeSm();
    time.pass(1ms);
    EXPECT_EQ(infos().back().startType, CvrStartTypeUserChange);
    EXPECT_FALSE(run().capture.prepared.userInfoFileBytes.empty());
    run().module.appEnterBackground();
    time.pass(1ms);
    EXPECT_TRUE(run().capture.prepared.userInfoFileBytes.empty());
    run().module.disableModule();
    time.pass(48h);
    EXPECT_EQ(infos().size(), 3U);
}

TEST_F(CvrModule, ActivationsAreHeardOnceASecond) {
    start();
    enable();
    auto& center = vorla::NotificationCenter::defaultCenter();
    const auto activate = [&] { center.post(vorla::NSApplicationWillBecomeActiveNotification); };
    server.seen.clear();
    run().module.strategyQueryHandler().setQueryInterval(100);
    activate();
    activate();
    time.pass(999ms);
    EXPECT_EQ(run().model.facts().resumeTime, time.now - 999);
    center.post(vorla::NSApplicationDidResignActiveNotification);
    EXPECT_EQ(run().capture.prepared.backGroundTime, time.now);
    // An interval below the shortest counts as a day.
    time.pass(23h);
    activate();
    time.pass(1s);
    EXPECT_EQ(std::ranges::count(server.commands(), 510), 0);
    time.pass(2h);
    activate();
    time.pass(1s);
    EXPECT_EQ(
        std::ranges::count(server.commands(), 510) + std::ranges::count(server.commands(), 540), 1);
}

TEST_F(CvrModule, OfAStrategysAddressesOnlySafeOnesCount) {
    struct Row {
        const char* builtIn;
        const char* wanted;
        bool taken;
    };
    const Row rows[] = {{"https://b/", "https://s/", true},  {"https://b/", "http://s/", false},
                        {"http://b/", "http://s/", true},    {"http://b/", "HTTPS://s/", true},
                        {"http://b/", "file:///etc", false}, {"http://b/", "", false}};
    for (const Row& row : rows) {
        start();
        run().endpoint = row.builtIn;
        auto strategy = std::make_shared<CvrLocalStrategy>();
        strategy->url = row.wanted;
        run().module.processStrategy(strategy);
        EXPECT_EQ(run().module.targetUrl(), row.taken ? row.wanted : row.builtIn) << row.wanted;
        strategy = std::make_shared<CvrLocalStrategy>(*strategy);
        strategy->expUrl = "https://exp/";
        run().module.processStrategy(strategy);
        EXPECT_EQ(run().module.targetUrl(), "https://exp/");
    }
}

TEST_F(CvrModule, KeysThatAreTooShortChangeNothing) {
    CvrReqDataPackage package;
    CvrError error;
    EXPECT_FALSE(package.createReqData(error));
    EXPECT_EQ(error.errnoVal, CvrError::NoPackage);
    package.encKey = "short";
    CvrUserInfoPackage body;
    EXPECT_FALSE(body.setDataToBuffer(nullptr));
    package.requestPackage = CvrRequestPackage({}, 520, std::make_shared<CvrUserInfoPackage>(body));
    EXPECT_FALSE(package.createReqData(error));
    EXPECT_EQ(error.errnoVal, CvrError::Packing);
    CvrLocalStrategy strategy;
    strategy.encKey = "kept key";
    // A field short, and a key that is too short.
    EXPECT_FALSE(
        strategy.initLocalObjWithNexBuffer(vorla::asBytes(std::string_view("\x1C\x2C", 2))));
    analyticspak::PakOutputStream stream;
    for (uint8_t tag = 0; tag < 3; ++tag) stream.write(true, tag);
    stream.writeHead(PAK_TYPE_STRUCT_S, 5);
    stream.write("short", 0);
    stream.write("longer than 8", 1);
    stream.writeHead(PAK_TYPE_STRUCT_E, 0);
    EXPECT_TRUE(strategy.initLocalObjWithNexBuffer(stream.bytes()));
    EXPECT_EQ(strategy.encKey, "kept key");
    EXPECT_EQ(strategy.encPubKey, "longer than 8");
    EXPECT_TRUE(strategy.queryEnable);
}

}  // namespace
