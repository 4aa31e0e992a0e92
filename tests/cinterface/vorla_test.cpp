#include <dlfcn.h>
#include <vorla/vorla.h>

#include <QFileDialog>
#include <QTimer>
#include <filesystem>
#include <set>
#include <thread>

#include "tests/capture/SessionTest.h"

namespace {

using vorla::test::runPending;
using vorla::test::waitUntil;

constexpr auto enough = std::string_view("zwölf").size() + 1;

int inThread(const std::function<int()>& call) {
    int error = VORLA_OK;
    std::thread([&] { error = call(); }).join();
    return error;
}

class CInterface : public Session {
 protected:
    ~CInterface() override { vorla_cancel_capture(); }  // is reported to the list below
    struct Heard {
        int kind;
        int error;
        size_t bytes;
        std::string path;
    };
    static void hear(const vorla_outcome* outcome, void* user) {
        size_t bytes = 0;
        const void* picture = vorla_outcome_bytes(outcome, &bytes);
        EXPECT_EQ(picture != nullptr, bytes > 0);
        const char* path = vorla_outcome_path(outcome);
        static_cast<std::vector<Heard>*>(user)->push_back(
            {vorla_outcome_kind(outcome), vorla_outcome_error(outcome), bytes, path ? path : ""});
        EXPECT_EQ(vorla_outcome_free(const_cast<vorla_outcome*>(outcome)), VORLA_ERROR_NOT_OWNED);
        EXPECT_EQ(vorla_is_capturing(), 0);
    }
    int startWith(const vorla_capture_options* options) {
        return vorla_start_capture(options, &hear, &heard_);
    }
    /// A structure of `size` bytes, the last one `last`.
    static std::vector<unsigned char> structure(size_t size, unsigned char last = 0) {
        std::vector<unsigned char> bytes(std::max(size, sizeof size));
        memcpy(bytes.data(), &size, sizeof size);
        if (last) bytes.back() = last;
        return bytes;
    }
    int startWithStructure(const std::vector<unsigned char>& bytes) {
        return startWith(reinterpret_cast<const vorla_capture_options*>(bytes.data()));
    }
    std::vector<Heard> heard_;
};

TEST_F(CInterface, BadInputIsRefusedWithAReason) {
    char text[enough];
    int64_t number = 0;
    vorla_outcome* outcome = nullptr;
    vorla_capture_options two = VORLA_CAPTURE_OPTIONS_INIT;
    two.offer_recorder = 2;
    vorla_crash_options crash = VORLA_CRASH_OPTIONS_INIT;
    vorla_crash_options flagged = VORLA_CRASH_OPTIONS_INIT;
    flagged.app_key = crash.folder = "here";
    flagged.flags = 1U << 31;
    const struct {
        const char* name;
        std::function<int()> call;
        int error;
    } rows[] = {
        {"no handler", [] { return vorla_start_capture(nullptr, nullptr, nullptr); }, 1},
        {"no place for the outcome", [] { return vorla_run_capture(nullptr, nullptr); }, 1},
        {"size 0", [&] { return startWithStructure(structure(0)); }, 2},
        {"half a field", [&] { return startWithStructure(structure(12)); }, 2},
        {"absurd size", [&] { return startWithStructure(structure(size_t{1} << 20)); }, 2},
        {"unknown option", [&] { return startWithStructure(structure(64, 1)); }, 3},
        {"no such value", [&] { return startWith(&two); }, 4},
        {"no crash options", [] { return vorla_crash_install(nullptr); }, 1},
        {"no key", [&] { return vorla_crash_install(&crash); }, 1},
        {"unknown flag", [&] { return vorla_crash_install(&flagged); }, 3},
        {"no such setting", [&] { return vorla_get_number(99, &number); }, 4},
        {"negative setting", [&] { return vorla_set_text(-1, "x"); }, 4},
        {"a text's number", [&] { return vorla_get_number(VORLA_SETTING_CHANNEL, &number); }, 5},
        {"fixed default", [] { return vorla_set_default_text(VORLA_SETTING_THEME_NAME, "x"); }, 5},
        {"file type", [] { return vorla_set_number(VORLA_SETTING_FILE_TYPE, 6); }, 4},
        {"negative number", [] { return vorla_set_number(VORLA_SETTING_PLAY_SOUND, -1); }, 4},
        {"not UTF-8", [] { return vorla_set_text(VORLA_SETTING_CHANNEL, "\xed\xa0\x80"); }, 7},
        {"cut UTF-8", [] { return vorla_set_info("key", "zw\xc3"); }, 7},
        {"no text", [] { return vorla_set_info("key", nullptr); }, 1},
        {"no buffer", [] { return vorla_get_info("key", nullptr, 3, nullptr); }, 1},
        {"no such folder", [] { return vorla_set_resource_folder("/nowhere/at/all"); }, 11},
        {"relative folder", [] { return vorla_set_resource_folder("."); }, 11},
        {"log level", [] { return vorla_set_log_level(4); }, 4},
        {"the framework's event", [] { return vorla_count_event(1017); }, 4},
        {"not installed", [] { return vorla_crash_report("a", "b", nullptr); }, 13},
        {"null outcome", [] { return vorla_outcome_error(nullptr); }, 1},
        {"start", [&] { return inThread([&] { return startWith(nullptr); }); }, 103},
        {"run", [&] { return inThread([&] { return vorla_run_capture(nullptr, &outcome); }); },
         103},
        {"cancel", [] { return inThread(&vorla_cancel_capture); }, 103},
        {"prepare", [] { return inThread(&vorla_prepare); }, 103},
        {"without a display",
         [&] {
             vorla::WindowServer::setShared(nullptr);
             const int error = startWith(nullptr);
             vorla::WindowServer::setShared(server_);
             return error;
         },
         105},
    };
    vorla_crash_uninstall();
    std::set<std::string> reasons;
    for (const auto& row : rows) {
        EXPECT_EQ(row.call(), row.error) << row.name;
        reasons.insert(vorla_error_text(row.error));
    }
    EXPECT_EQ(reasons.size(), 10U) << "a text for each";
    EXPECT_EQ(outcome, nullptr);
    EXPECT_TRUE(heard_.empty());
    EXPECT_FALSE(VLIsCapturing());
    // An older header's structure is well.
    EXPECT_EQ(startWithStructure(structure(sizeof(size_t))), VORLA_OK);
    EXPECT_EQ(startWithStructure(structure(64)), VORLA_ERROR_ALREADY_CAPTURING);

    size_t length = 0;
    EXPECT_EQ(vorla_set_info("key", "zwölf"), VORLA_OK);
    EXPECT_EQ(vorla_get_info("key", nullptr, 0, &length), VORLA_OK);
    EXPECT_EQ(length, enough - 1);
    EXPECT_EQ(vorla_get_info("key", text, enough, nullptr), VORLA_OK);
    EXPECT_STREQ(text, "zwölf");
    EXPECT_EQ(vorla_get_info("key", text, 4, nullptr), VORLA_ERROR_BUFFER_TOO_SMALL);
    EXPECT_STREQ(text, "zw") << "no half character";
}

TEST_F(CInterface, EachOutcomeIsToldOnce) {
    const vorla::test::TemporaryFolder folder;
    std::ofstream(folder / "file") << "x";
    const auto saveTo = [](const std::string& place) {
        vorla_set_text(VORLA_SETTING_SAVE_FOLDER, place.c_str());
        pointer().drag({{10, 10}, {40, 30}});
        vorla::NotificationCenter::defaultCenter().post(NotificationCaptureDidFinish, true);
    };
    const auto closeDialog = [] {
        EXPECT_TRUE(waitUntil([] {
            for (QWidget* widget : QApplication::topLevelWidgets())
                if (auto* dialog = qobject_cast<QFileDialog*>(widget))
                    return dialog->reject(), true;
            return false;
        }));
    };
    const struct {
        const char* name;
        bool asks;
        std::function<void()> end;
        int kind, error;
        bool picture, path;
    } rows[] = {
        {"Esc", false, [] { pointer().key(Qt::Key_Escape); }, VORLA_OUTCOME_CANCELLED, 0, false,
         false},
        {"the host", false, [] { vorla_cancel_capture(); }, VORLA_OUTCOME_CANCELLED_BY_HOST, 0,
         false, false},
        {"the recorder", false, [] { VLCaptureManager::sharedInstance()->changeToRecord(); },
         VORLA_OUTCOME_RECORDER, 0, false, false},
        {"a platform without clipboard", false,
         [] {
             pointer().drag({{10, 10}, {40, 30}}), pointer().key(Qt::Key_Return);
         },
         VORLA_OUTCOME_FAILED, VORLA_ERROR_CLIPBOARD, true, false},
        {"saved", false, [&] { saveTo(folder.path()); }, VORLA_OUTCOME_DELIVERED, 0, true, true},
        {"no folder to save to", false, [&] { saveTo(folder / "file"); }, VORLA_OUTCOME_FAILED,
         VORLA_ERROR_PATH, true, true},
        {"dialog closed", true, [&] { saveTo(folder.path()), closeDialog(); },
         VORLA_OUTCOME_SAVE_DISMISSED, 0, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        vorla_capture_options options = VORLA_CAPTURE_OPTIONS_INIT;
        options.save_without_asking = row.asks ? 0 : 1;
        ASSERT_EQ(startWith(&options), VORLA_OK);
        ASSERT_TRUE(waitUntil([] { return controllers().size() == 1; }));
        runPending();
        row.end();
        EXPECT_TRUE(waitUntil([this] { return !heard_.empty(); }));
        vorla_cancel_capture();
        runPending();
        ASSERT_EQ(heard_.size(), 1U);
        const Heard heard = std::exchange(heard_, {})[0];
        EXPECT_EQ(heard.kind, row.kind);
        EXPECT_EQ(heard.error, row.error);
        EXPECT_EQ(heard.bytes > 0, row.picture);
        EXPECT_EQ(std::filesystem::exists(heard.path), row.path && !row.error);
        EXPECT_EQ(heard.path.starts_with(folder.path()), row.path);
    }
}

TEST_F(CInterface, RunsUntilTheSessionOrTheApplicationEnds) {
    const struct {
        const char* name;
        std::function<void()> end;
        int kind;
    } rows[] = {{"Esc", [] { pointer().key(Qt::Key_Escape); }, VORLA_OUTCOME_CANCELLED},
                {"quit", [] { QApplication::exit(); }, VORLA_OUTCOME_CANCELLED_BY_HOST}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        vorla_outcome* outcome = nullptr;
        int error = -1;
        VLSetPanelsShownHandler([&](int /*screens*/) {
            VLSetPanelsShownHandler({});
            QTimer::singleShot(0, row.end);
        });
        QTimer::singleShot(0, [&] {
            error = vorla_run_capture(nullptr, &outcome);
            QApplication::exit();
        });
        QApplication::exec();
        EXPECT_EQ(error, VORLA_OK);
        EXPECT_EQ(vorla_outcome_kind(outcome), row.kind);
        EXPECT_EQ(vorla_outcome_free(outcome), VORLA_OK);
        expectOver();
    }
}

TEST(Copies, TheSecondInAProcessIsRefused) {
    const vorla::test::TemporaryFolder folder;
    const std::string copy = folder / "copy.so";
    std::filesystem::copy_file(VORLA_SERVICES_LIBRARY, copy);
    const struct {
        std::string path;
        int error;
    } rows[] = {{VORLA_SERVICES_LIBRARY, VORLA_OK}, {copy, VORLA_ERROR_OTHER_COPY}};
    for (const auto& row : rows) {
        void* library = dlopen(row.path.c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        const auto setLevel = reinterpret_cast<int (*)(int)>(dlsym(library, "vorla_set_log_level"));
        ASSERT_NE(setLevel, nullptr);
        EXPECT_EQ(setLevel(VORLA_LOG_OFF), row.error);
    }
}

}  // namespace
