#include <QFileDialog>
#include <QLineEdit>
#include <filesystem>

#include "platform/base/files.h"
#include "tests/capture/SessionTest.h"

namespace {

using vorla::test::denseScreen;
using vorla::test::firstScreen;
using vorla::test::waitUntil;

class Output : public Session {
 protected:
    Output() {
        VLCaptureSetting::sharedInstance().setLastSavePath(folder_.path());
        VLCaptureSetting::sharedInstance().setFileType(VLBitmapFileTypePNG);
        VLCaptureSetting::sharedInstance().setHighResolution(true);
        request_->setNeedSelectSavePath(false);
    }
    /// A region of 30 x 20 points, saved.
    void save() {
        start();
        pointer().drag({{10, 10}, {40, 30}});
        vorla::NotificationCenter::defaultCenter().post(NotificationCaptureDidFinish, true);
        expectOver();
    }
    [[nodiscard]] bool hostHears() const {
        return waitUntil([this] { return !host_->delivered.empty(); });
    }
    vorla::test::TemporaryFolder folder_;
};

TEST_F(Output, SavesTheChosenTypeWithTheScaleRule) {
    VLCaptureSetting::sharedInstance().setFileType(VLBitmapFileTypeGIF);
    for (const auto& screen : {firstScreen, denseScreen}) {
        for (const bool wanted : {true, false}) {
            SCOPED_TRACE(testing::Message() << screen.second << wanted);
            host_->delivered.clear();
            server_->setDisplays({screen});
            VLCaptureSetting::sharedInstance().setHighResolution(wanted);
            save();
            ASSERT_TRUE(hostHears());
            const bool full = screen.second > 1.0 && wanted;
            const auto path = std::filesystem::path(host_->delivered[0].path.value());
            EXPECT_EQ(path.parent_path(), folder_.path());
            const std::string ending = full ? "@2x.gif" : ".gif";
            const std::string name = path.filename();
            EXPECT_TRUE(name.starts_with("Vorla20") && name.ends_with(ending)) << name;
            EXPECT_EQ(name.size(), 20 + ending.size());
            EXPECT_TRUE(vorla::readFile(path).value_or("").starts_with("GIF8"));
            EXPECT_EQ(host_->delivered[0].image.size(), full ? QSize(60, 40) : QSize(30, 20));
        }
    }
}

TEST_F(Output, AFileThatCannotBeWrittenIsStillTold) {
    const std::string file = folder_ / "file";
    std::ofstream(file) << "x";
    VLCaptureSetting::sharedInstance().setLastSavePath(file + "/below");
    save();
    ASSERT_TRUE(hostHears());
    EXPECT_TRUE(host_->delivered[0].path->starts_with(file + "/below/Vorla"));
    EXPECT_EQ(host_->delivered[0].image.size(), QSize(30, 20));
    EXPECT_EQ(log_.count("writeToFile failed with error"), 1);
    EXPECT_EQ(VLLastCaptureError(), VLCaptureErrorPath);
}

TEST_F(Output, IsHandedOutOnlyWhenTheSessionIsOver) {
    save();
    EXPECT_TRUE(host_->delivered.empty());  // later, from the main loop
    // The next session is not disturbed by what the last one still has to do.
    ASSERT_TRUE(VLStartCapture(request_));
    ASSERT_TRUE(hostHears());
    EXPECT_TRUE(VLIsCapturing());
}

TEST_F(Output, NobodyNeedsToListen) {
    request_->setDelegate({});
    save();
    vorla::test::runPending();
    EXPECT_FALSE(std::filesystem::is_empty(folder_.path()));
}

TEST_F(Output, TheSavePanelOutlivesTheSession) {
    const auto dialog = [] {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* found = qobject_cast<QFileDialog*>(widget); found && found->isVisible())
                return found;
        return static_cast<QFileDialog*>(nullptr);
    };
    request_->setNeedSelectSavePath(true);
    save();
    ASSERT_TRUE(waitUntil([&] { return dialog() != nullptr; }));
    dialog()->reject();
    vorla::test::runPending();
    EXPECT_TRUE(host_->delivered.empty());
    EXPECT_EQ(VLCaptureSetting::sharedInstance().lastSavePath(), folder_.path());

    const std::string elsewhere = folder_ / "elsewhere";
    std::filesystem::create_directory(elsewhere);
    save();
    ASSERT_TRUE(waitUntil([&] { return dialog() != nullptr; }));
    EXPECT_EQ(dialog()->defaultSuffix(), "png");
    dialog()->setDirectory(QString::fromStdString(elsewhere));
    dialog()
        ->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
        ->setText(QStringLiteral("mine"));
    static_cast<QDialog*>(dialog())->accept();
    ASSERT_TRUE(hostHears());
    EXPECT_EQ(host_->delivered[0].path, elsewhere + "/mine.png");
    EXPECT_TRUE(std::filesystem::exists(elsewhere + "/mine.png"));
    EXPECT_EQ(VLCaptureSetting::sharedInstance().lastSavePath(), elsewhere);
}

TEST_F(Output, AMissingSoundIsNoHindrance) {
    VLCaptureSetting::sharedInstance().setPlaySound(true);
    save();
    EXPECT_TRUE(hostHears());
}

}  // namespace
