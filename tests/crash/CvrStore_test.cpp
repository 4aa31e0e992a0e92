// The store on a real disk: what it keeps, how, and what it makes of things that others have put
// there.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "crash/facts/CvrDeviceUtil.h"
#include "crash/facts/CvrFileKeyStore.h"
#include "crash/facts/CvrSecretKeyStore.h"
#include "crash/store/CvrFilePersistHandler.h"
#include "platform/base/files.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using vorla::test::ChildProcess;
using vorla::test::TemporaryFolder;

constexpr int64_t day = 86400000;

/// One process's view of a store; another object is the next start.
struct Store {
    explicit Store(const std::string& folder, int64_t at = 1700000000000)
        : now(at), model(folder, [this] { return now; }), files(folder, model) {}

    int64_t now;
    CvrModelBase model;
    CvrFilePersistHandler files;
};

CvrExpObj crash(const std::string& hash, int64_t time) {
    CvrExpObj crash;
    crash.hash = hash;
    crash.time = crash.cashTime = time;
    return crash;
}

std::vector<std::string> hashes(const std::vector<CvrExpObj>& crashes) {
    std::vector<std::string> result;
    for (const CvrExpObj& one : crashes) result.push_back(one.hash);
    return result;
}

std::vector<std::string> names(const std::string& folder) {
    std::vector<std::string> result;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().filename() != ".lock") result.push_back(entry.path().filename());
    return result;
}

mode_t modeOf(const std::string& path) {
    struct stat facts = {};
    ::lstat(path.c_str(), &facts);
    return facts.st_mode & 07777;
}

void put(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

TEST(CvrStore, KeepsCrashesOfOneSecondForTheNextStart) {
    const TemporaryFolder home;
    const std::string folder = home / "a/b";
    {
        Store store(folder);
        EXPECT_TRUE(store.files.saveOneCrash(crash("A", store.now)));
        EXPECT_TRUE(store.files.saveOneCrash(crash("B", store.now + 1)));
        EXPECT_FALSE(store.files.saveOneCrash(crash("", store.now)));
    }
    const std::string name = ".crash_" + CvrDeviceUtil::getFullTimeFileStrBy(1700000000) + ".data";
    EXPECT_EQ(modeOf(folder), 0700U);
    for (const std::string& file : names(folder)) EXPECT_EQ(modeOf(folder + "/" + file), 0600U);
    put(folder + "/.tmp-99999999-1", "half");
    put(folder + "/.crash_orphan.data", "x");
    Store next(folder);
    next.files.loadAllDatas();
    next.files.deleteAllInvalidCrashes();
    EXPECT_THAT(names(folder),
                UnorderedElementsAre(name, name.substr(0, name.size() - 5) + "-1.data",
                                     ".crash_meta.data"));
    EXPECT_THAT(hashes(next.files.getAllCrashed(9)), ElementsAre("A", "B"));
    EXPECT_EQ(next.files.getLatestCrash()->hash, "B");
    EXPECT_TRUE(next.files.deleteCrashes(next.files.getAllCrashed(9)));
    EXPECT_FALSE(next.files.deleteCrash(crash("A", 0)));
    EXPECT_FALSE(next.files.hasCrash());
    EXPECT_THAT(names(folder), ElementsAre(".crash_meta.data"));
}

TEST(CvrStore, DecidesByDayAndNewsWhatIsSentAndDeleted) {
    struct Row {
        const char* hash;
        int64_t age;
        int32_t dcount;
        bool uplaoded;
        bool sent;
        bool deleted;
    };
    const Row rows[] = {{"never sent", 0, 0, false, true, false},
                        {"sent today", 0, 0, true, false, false},
                        {"sent today, again", 0, 1, true, false, false},
                        {"sent yesterday", day, 0, true, false, true},
                        {"sent yesterday, again", day, 2, true, true, false},
                        {"old and never sent", day, 0, false, true, true}};
    const TemporaryFolder folder;
    Store store(folder.path());
    for (const Row& row : rows) {
        CvrExpObj one = crash(row.hash, store.now - row.age);
        ASSERT_TRUE(store.files.saveOneCrash(one));
        one.dcount = row.dcount;
        ASSERT_TRUE(store.files.updateOneCrash(one, row.uplaoded));
        EXPECT_TRUE(store.files.updateOneCrash(one));
    }
    EXPECT_THAT(store.files.getCrashesNeedUpload(0), IsEmpty());
    const auto sent = hashes(store.files.getCrashesNeedUpload(1));
    const auto deleted = hashes(store.files.getCrashesNeedDel());
    for (const Row& row : rows) {
        EXPECT_EQ(std::ranges::count(sent, row.hash), row.sent) << row.hash;
        EXPECT_EQ(std::ranges::count(deleted, row.hash), row.deleted) << row.hash;
    }
    EXPECT_FALSE(store.files.updateOneCrash(crash("unknown", 1), true));
}

TEST(CvrStore, SetsAsideWhatIsNotItsOwnWithoutLosingTheRest) {
    const TemporaryFolder folder;
    const TemporaryFolder other;
    put(other / "secret", "secret");
    {
        Store store(folder.path());
        for (const char* hash : {"good", "garbage", "link", "pipe", "huge", "gone"})
            ASSERT_TRUE(store.files.saveOneCrash(crash(hash, store.now)));
        const auto entries = vorla::crash_index::read(
            *vorla::StoreFolder::open(folder.path(), vorla::StoreFolder::Origin::Default));
        for (const auto& [hash, meta] : entries) {
            const std::string path = folder / meta.file;
            if (hash != "good") ::unlink(path.c_str());
            if (hash == "garbage") put(path, "\xBF\x61");
            if (hash == "link") ::symlink((other / "secret").c_str(), path.c_str());
            if (hash == "pipe") ::mkfifo(path.c_str(), 0600);
            if (hash == "huge" && ::truncate((put(path, ""), path.c_str()), 1 << 30) != 0) FAIL();
        }
        auto outside = entries;
        outside["out"] = {.md5 = "out", .file = ".crash_/../" + other.path() + ".data"};
        outside["wrong key"] = {.md5 = "other key", .file = ".crash_x.data"};
        ASSERT_TRUE(vorla::crash_index::write(
            *vorla::StoreFolder::open(folder.path(), vorla::StoreFolder::Origin::Default),
            outside));
    }
    Store next(folder.path());
    next.files.loadAllDatas();
    EXPECT_THAT(hashes(next.files.getCrashesNeedUpload(1)), ElementsAre("good"));
    EXPECT_THAT(hashes(next.files.getAllCrashed(9)), ElementsAre("good"));
    EXPECT_EQ(vorla::readFile(other / "secret"), "secret");
    // A broken index is made anew from the files.
    put(folder / ".crash_meta.data", std::string(1000, '\x9F'));
    put(folder / ".user_info.data", "\xFF");
    put(folder / ".new_strategy.data",
        "\xBF\x66"
        "enable\x01\xFF");
    put(folder / ".cvrios.plist", "nonsense");
    Store again(folder.path());
    again.files.loadAllDatas();
    EXPECT_THAT(hashes(again.files.getAllCrashed(9)), ElementsAre("good"));
    EXPECT_EQ(again.files.loadCommonStrategyFile(), nullptr);
    EXPECT_EQ(again.files.getCurrSize(), 0U);
    again.model.checkVer();
    EXPECT_TRUE(again.model.isVersionChanged());
}

TEST(CvrStore, StartsAnewAfterAVersionChange) {
    const TemporaryFolder folder;
    const auto start = [&](const std::string& version) {
        auto store = std::make_unique<Store>(folder.path());
        store->model.change([&](CvrModelBase::Facts& facts) { facts.appVersion = version; });
        store->model.checkVer();
        store->files.loadAllDatas();
        return store;
    };
    auto first = start("1");
    first->files.saveOneCrash(crash("A", first->now));
    first->files.saveOneData({});
    first->files.persistAllUserInfoDatas();
    first->model.persistLastCrashNeedReport(true);
    first->model.persistLastCrashTime(7);
    auto same = start("1");
    EXPECT_FALSE(same->model.isVersionChanged());
    EXPECT_EQ(same->model.getLastCrashTime(), 7);
    EXPECT_TRUE(same->model.isLastCloseByCrash());
    EXPECT_TRUE(same->model.isLastCloseByCrash());
    EXPECT_TRUE(same->files.hasCrash());
    EXPECT_EQ(same->files.getCurrSize(), 1U);
    EXPECT_FALSE(start("1")->model.isLastCloseByCrash());
    same->model.persistLastCrashNeedReport(true);
    auto other = start("2");
    EXPECT_TRUE(other->model.isVersionChanged());
    EXPECT_FALSE(other->model.isLastCloseByCrash());
    EXPECT_EQ(other->model.getLastCrashTime(), 0);
    EXPECT_THAT(names(folder.path()), ElementsAre(".cvrios.plist"));
}

TEST(CvrStore, KeepsItsBounds) {
    const TemporaryFolder folder;
    {
        Store store(folder.path());
        for (int i = 0; i < 105; ++i)
            store.files.saveOneCrash(crash(std::to_string(i), store.now + i * 1000));
        CvrExpObj large = crash("large", 1);
        large.callStack.assign(vorla::crash_index::largestRecord, 'x');
        EXPECT_FALSE(store.files.saveOneCrash(large));
    }
    Store next(folder.path());
    next.files.loadAllDatas();
    const auto kept = hashes(next.files.getAllCrashed(1000));
    EXPECT_EQ(kept.size(), 100U);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(std::ranges::count(kept, std::to_string(i)), 0);
}

TEST(CvrStore, RefusesAGivenFolderThatOthersControl) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkdir((folder / "open").c_str(), 0700), 0);
    ASSERT_EQ(::chmod((folder / "open").c_str(), 0777), 0);
    ASSERT_EQ(::symlink(".", (folder / "link").c_str()), 0);
    put(folder / "file", "");
    Store store(folder / "home");
    for (const char* name : {"open", "link", "file", "file/below", ""}) {
        EXPECT_FALSE(store.files.changeDbPath(name[0] ? folder / name : "")) << name;
        store.model.resetBundlePath(name[0] ? folder / name : "");
        EXPECT_EQ(store.model.bundleFilePath(), folder / "home/.cvrios.plist") << name;
    }
    EXPECT_TRUE(store.files.changeDbPath(folder / "new/place"));
    EXPECT_TRUE(store.files.saveOneCrash(crash("A", store.now)));
    EXPECT_EQ(modeOf(folder / "new/place"), 0700U);
    EXPECT_FALSE(std::filesystem::exists(folder / "home"));
}

TEST(CvrStore, ServesSeveralProcessesAtOnce) {
    const TemporaryFolder folder;
    const auto work = [&](int who) {
        Store store(folder.path());
        for (int i = 0; i < 20; ++i) {
            const std::string mine = std::to_string(who) + "-" + std::to_string(i);
            CvrSummaryInfo info;
            info.proc = mine;
            if (!store.files.saveOneCrash(crash(mine, store.now)) || !store.files.saveOneData(info))
                return 1;
            store.files.persistAllUserInfoDatas();
            store.model.persistKey(mine, true);
        }
        return 0;
    };
    {
        ChildProcess one([&] { return work(1); });
        ChildProcess two([&] { return work(2); });
        EXPECT_EQ(work(3) + one.wait() + two.wait(), 0);
    }
    Store next(folder.path());
    next.files.loadAllDatas();
    EXPECT_EQ(next.files.getAllCrashed(1000).size(), 60U);
    EXPECT_EQ(next.files.getCurrSize(), 60U);
    for (int who = 1; who <= 3; ++who) EXPECT_TRUE(next.model.getKey(std::to_string(who) + "-0"));
    const auto mine = next.files.claim(CvrFilePersistHandler::crashClaim);
    EXPECT_TRUE(mine);
    ChildProcess other([&] {
        return Store(folder.path()).files.claim(CvrFilePersistHandler::crashClaim) ? 1 : 0;
    });
    EXPECT_EQ(other.wait(), 0);
}

TEST(CvrStore, SurvivesAKillAtAnyMoment) {
    const TemporaryFolder folder;
    unsigned seed = 7;
    for (int round = 0; round < 60; ++round) {
        ChildProcess writer([&] {
            Store store(folder.path());
            store.files.loadAllDatas();
            store.files.deleteAllInvalidCrashes();
            for (int i = 0;; ++i) {
                CvrExpObj one = crash(std::to_string(i % 7), store.now + i);
                one.callStack.assign(100000, 'x');
                store.files.saveOneCrash(one);
                one.dcount = 1;
                store.files.updateOneCrash(one, true);
                store.files.saveOneData({});
                store.files.persistAllUserInfoDatas();
                store.model.persistKey("key", int64_t{i});
                if (i % 5 == 0) store.files.deleteCrash(one);
            }
            return 0;
        });
        ::usleep(500 + rand_r(&seed) % 20000);
        writer.kill(SIGKILL);
        writer.wait();
        const auto whole =
            *vorla::StoreFolder::open(folder.path(), vorla::StoreFolder::Origin::Default);
        for (const auto& file : whole.list()) {
            if (file.name.starts_with(".tmp-") || file.name.ends_with(".lock")) continue;
            const auto bytes = whole.read(file.name, 1 << 24);
            ASSERT_TRUE(bytes) << file.name;
            vorla::ArchiveReader reader(vorla::asBytes(*bytes));
            EXPECT_TRUE(reader.takeValue() && reader.position() == bytes->size()) << file.name;
        }
    }
    Store next(folder.path());
    next.files.loadAllDatas();
    next.files.deleteAllInvalidCrashes();
    EXPECT_EQ(next.files.getAllCrashed(100).size() + 1, [&] {
        const auto left = names(folder.path());
        return std::ranges::count_if(left, [](auto& name) { return name.starts_with(".crash"); });
    }());
}

TEST(CvrFileKeyStore, KeepsItemsForTheUserAlone) {
    const TemporaryFolder folder;
    CvrFileKeyStore keys(folder / "keys");
    int error = -1;
    EXPECT_TRUE(keys.storeUsername("account", "one", "service", false, &error));
    EXPECT_EQ(error, 0);
    EXPECT_FALSE(keys.storeUsername("account", "two", "service", false, &error));
    EXPECT_EQ(error, EEXIST);
    EXPECT_TRUE(keys.storeUsername("account", "two", "service", true));
    EXPECT_EQ(CvrFileKeyStore(folder / "keys").getPasswordForUsername("account", "service"), "two");
    EXPECT_EQ(keys.getPasswordForUsername("account", "", &error), std::nullopt);
    EXPECT_EQ(error, CvrKeyStore::errorAbsentArgument);
    EXPECT_EQ(modeOf(folder / "keys/.cvr_keys.data"), 0600U);
    EXPECT_TRUE(keys.deleteItemForUsername("account", "service"));
    EXPECT_EQ(keys.getPasswordForUsername("account", "service"), std::nullopt);
}

TEST(CvrSecretKeyStore, FallsBackToTheFileAndCarriesItsKeysOver) {
    const TemporaryFolder folder;
    const vorla::test::ScopedEnvironment bus({{"DBUS_SESSION_BUS_ADDRESS", folder.path()}});
    CvrFileKeyStore file(folder.path());
    const auto service = [&](const std::string& does) {
        const std::string program = folder / "service";
        std::ofstream(program) << "#!/bin/sh\ncd " << folder.path() << "\n" << does << "\n";
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        return CvrSecretKeyStore(file, program);
    };
    const std::string works =
        "case $1 in get) [ -e S ] && printf F && cat S || printf N;;"
        "set) cat > S; printf S;; esac";
    for (const char* broken : {"exit 1", "kill -9 $$", "sleep 4", "head -c 100000 /dev/zero"}) {
        CvrSecretKeyStore keys = service(broken);
        EXPECT_TRUE(keys.storeUsername("account", broken, "service", true)) << broken;
        EXPECT_EQ(keys.getPasswordForUsername("account", "service"), broken);
    }
    CvrSecretKeyStore keys = service(works);
    EXPECT_TRUE(keys.getPasswordForUsername("account", "service"));
    EXPECT_EQ(vorla::readFile(folder / "S"), "head -c 100000 /dev/zero");
    EXPECT_TRUE(keys.storeUsername("account", "new", "service", true));
    EXPECT_TRUE(keys.storeUsername("other", "secret", "service", true));
    EXPECT_EQ(file.getPasswordForUsername("account", "service"), "new");
    EXPECT_EQ(file.getPasswordForUsername("other", "service"), std::nullopt);
}

}  // namespace
