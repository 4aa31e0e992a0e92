#include "capture/VLCaptureManager.h"

#include <QClipboard>
#include <QMimeData>
#include <QProcess>
#include <QTimer>

#include "platform/view/PanelStack.h"
#include "platform/view/VLEventTracker.h"
#include "tests/capture/SessionTest.h"

namespace {

using vorla::NotificationCenter;
using vorla::test::denseScreen;
using vorla::test::firstScreen;
using vorla::test::negativeScreen;
using vorla::test::runPending;

void post(const char* name, std::any object = {}) {
    NotificationCenter::defaultCenter().post(name, std::move(object));
}

TEST_F(Session, TellsWhoCancelled) {
    struct Case {
        const char* name;
        std::function<void()> act;
        int heard;
        std::vector<int> events;
    };
    const std::vector<Case> cases = {
        {"Esc", [] { pointer().key(Qt::Key_Escape); }, 1, {1011}},
        {"right button",
         [] {
             pointer().click({5, 5}, 1, Qt::RightButton);
         },
         1,
         {1012}},
        {"Esc while editing",
         [] {
             pointer().click({5, 5});
             pointer().key(Qt::Key_Escape);
         },
         1,
         {1011}},
        {"Esc in a drag",
         [] {
             auto p = pointer();
             p.drag({{5, 5}, {50, 50}}, [&] {
                 p.key(Qt::Key_Escape);
                 EXPECT_TRUE(VLIsCapturing());  // only when the drag is over
             });
         },
         1,
         {1011}},
        {"the button", [] { post(NotificationCaptureDidCancel, false); }, 1, {}},
        {"another program", [] { post(vorla::NSApplicationWillResignActiveNotification); }, 1, {}},
        {"hiding", [] { post(vorla::NSApplicationWillHideNotification); }, 1, {}},
        {"another workspace", [this] { server_->fireActiveSpaceChanged(); }, 1, {}},
        {"the host", [] { EXPECT_TRUE(VLCancelCapture()); }, 0, {}},
    };
    for (const auto& screens :
         {std::vector{firstScreen}, std::vector{firstScreen, negativeScreen}}) {
        server_->setDisplays(screens);
        for (const Case& c : cases) {
            SCOPED_TRACE(c.name);
            start();
            EXPECT_TRUE(VLIsCapturing());
            c.act();
            runPending();
            EXPECT_EQ(std::exchange(host_->cancelled, 0), c.heard);
            EXPECT_EQ(events_, c.events);
            expectOver();
        }
    }
    EXPECT_TRUE(host_->delivered.empty());
}

TEST_F(Session, EndsWhenTheHostsLastWindowIsMinimised) {
    QWidget first;
    QWidget second;
    first.show();
    second.show();
    start();
    first.showMinimized();
    runPending();
    EXPECT_TRUE(VLIsCapturing());
    second.showMinimized();
    runPending();
    EXPECT_EQ(std::exchange(host_->cancelled, 0), 1);
    first.hide();
    second.hide();
    expectOver();
}

TEST_F(Session, ASecondStartIsRefusedAndStillCounted) {
    start();
    const auto before = panel();
    EXPECT_FALSE(VLStartCapture(std::make_shared<VLCaptureRequest>()));
    EXPECT_EQ(events_, std::vector<int>({1017}));
    runPending();
    EXPECT_EQ(controllers().size(), 1U);
    EXPECT_EQ(panel(), before);
    pointer().key(Qt::Key_Escape);
    EXPECT_EQ(host_->cancelled, 1);  // still the first one's
}

TEST_F(Session, DoesNotStartWithoutARequestOrAWindowServer) {
    EXPECT_FALSE(VLStartCapture(nullptr));
    EXPECT_EQ(VLLastCaptureError(), VLCaptureErrorNoRequest);
    EXPECT_FALSE(VLIsCapturing());
    EXPECT_EQ(events_, std::vector<int>({1017}));
}

TEST_F(Session, ACancelBeforeThePanelsOpensNothing) {
    ASSERT_TRUE(VLStartCapture(request_));
    EXPECT_TRUE(controllers().empty());  // never in line
    VLCancelCapture();
    runPending();
    expectOver();
    EXPECT_EQ(server_->displayGrabs, 0);
    // A start right after it has its own panels only.
    ASSERT_TRUE(VLStartCapture(request_));
    VLCancelCapture();
    start();
    EXPECT_EQ(controllers().size(), 1U);
}

/// The host's delegate may do as it likes while it hears: by then nothing of the session is left.
TEST_F(Session, TheHostMayDoAnythingInItsCallbacks) {
    struct Eager : Host {
        std::shared_ptr<VLCaptureRequest> next;
        void captureRequestDidCancel(VLCaptureRequest& request) override {
            Host::captureRequestDidCancel(request);
            act();
        }
        void captureRequest(VLCaptureRequest& request, std::span<const std::byte> data,
                            const std::optional<std::string>& path,
                            const std::optional<std::string>& error) override {
            Host::captureRequest(request, data, path, error);
            act();
        }
        void act() const {
            for (const QWidget* widget : QApplication::topLevelWidgets())
                EXPECT_FALSE(widget->isVisible()) << "a panel covers the host's message box";
            post(NotificationCaptureDidCancel, false);
            post(vorla::NSApplicationWillResignActiveNotification);
            runPending();
            VLCancelCapture();
            EXPECT_TRUE(!next || VLStartCapture(next));
        }
    };
    const auto eager = std::make_shared<Eager>();
    request_->setDelegate(eager);
    for (const bool startsNext : {false, true}) {
        start();
        if (startsNext) eager->next = std::make_shared<VLCaptureRequest>();
        pointer().key(Qt::Key_Escape);
        EXPECT_EQ(std::exchange(eager->cancelled, 0), 1);
        if (!startsNext) start();
        EXPECT_TRUE(vorla::test::waitUntil([] { return controllers().size() == 1; }));
        runPending();
        VLCancelCapture();
        runPending();
        expectOver();
        start();
        pointer().drag({{10, 10}, {50, 50}});
        pointer().key(Qt::Key_Return);
        EXPECT_EQ(std::exchange(eager->delivered, {}).size(), 1U);
        EXPECT_EQ(VLIsCapturing(), startsNext);
        VLCancelCapture();
        runPending();
        expectOver();
        EXPECT_EQ(eager->cancelled, 0);
    }
}

/// Each broadcast of a session may be what makes somebody end it.
TEST_F(Session, MayEndInsideAnyOfItsBroadcasts) {
    for (const char* name : {VLNotificationSelectDidBegin, VLNotificationCaptureDidConfirmSelection,
                             NotificationEditDidBegin}) {
        for (const bool dragged : {false, true}) {
            SCOPED_TRACE(name);
            start();
            vorla::NotificationObservers observers;
            observers.observe(name, [](const auto&) { VLCancelCapture(); });
            pointer().drag(dragged ? std::vector<QPoint>{{10, 10}, {60, 60}}
                                   : std::vector<QPoint>{{10, 10}});
            runPending();
            if (VLIsCapturing()) VLCancelCapture();  // a drag does not begin editing
            runPending();
            expectOver();
        }
    }
}

TEST_F(Session, MayEndInMidDragAgainAndAgain) {
    for (int i = 0; i < 20; ++i) {
        start();
        auto hand = pointer();
        QTimer::singleShot(i % 4, [i] {
            i % 2 ? static_cast<void>(VLCancelCapture())
                  : post(NotificationCaptureDidCancel, false);
        });
        std::vector<QPoint> path;
        for (int step = 0; step < 20; ++step) path.emplace_back(10 + 20 * step, 10 + 15 * step);
        hand.drag(path);
        vorla::test::waitUntil([] { return !VLIsCapturing(); });
        EXPECT_FALSE(VLEventTracker::isTracking());
        expectOver();
    }
    EXPECT_EQ(host_->cancelled, 10);
    runPending();
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
}

TEST_F(Session, DeliversOnReturnOnlyOnceConfirmed) {
    start();
    pointer().key(Qt::Key_Return);
    EXPECT_TRUE(VLIsCapturing());
    EXPECT_EQ(events_, std::vector<int>());
    pointer().drag({{100, 200}, {164, 248}});
    const QImage frozen = server_->imageOfDisplay(1, {100, 552, 64, 48});
    pointer().key(Qt::Key_Return);
    EXPECT_EQ(events_, std::vector<int>({1014}));
    expectOver();
    ASSERT_EQ(host_->delivered.size(), 1U);
    EXPECT_FALSE(host_->delivered[0].path);
    EXPECT_EQ(host_->delivered[0].image.convertToFormat(QImage::Format_RGB32), frozen);
    const QMimeData* clip = QGuiApplication::clipboard()->mimeData();
    EXPECT_EQ(QImage::fromData(clip->data(QStringLiteral("image/png"))), host_->delivered[0].image);
}

TEST_F(Session, DeliversOnDoubleClick) {
    for (const auto& screen : {firstScreen, denseScreen}) {
        server_->setDisplays({screen});
        server_->setWindows(std::vector{serverWindow(3, {screen.first.x + 100, 100, 200, 100})});
        start();
        pointer().drag({{100, 200}, {164, 248}});
        pointer().click({120, 220}, 2);
        EXPECT_EQ(events_, std::vector<int>({1013}));
        EXPECT_EQ(std::exchange(host_->delivered, {}).size(), 1U);
        // A clicked window is in editing at once: its second click is the canvas's.
        start();
        pointer().click(QPoint(int(150 / screen.second), int(150 / screen.second)), 2);
        EXPECT_EQ(events_, std::vector<int>({1013}));
        ASSERT_EQ(host_->delivered.size(), 1U);
        EXPECT_EQ(std::exchange(host_->delivered, {})[0].image.pixel(5, 5), 0xff000003U);
        expectOver();
    }
}

TEST_F(Session, OneScreenGoesOnAndReturnWorksOnAll) {
    server_->setDisplays({firstScreen, denseScreen, negativeScreen});
    start();
    EXPECT_EQ(panel(2)->geometry(), QRect(-640, -100, 640, 480));
    pointer(1).drag({{10, 20}, {110, 70}});
    for (const size_t out : {0U, 2U}) {
        pointer(out).drag({{10, 20}, {110, 70}});
        pointer(out).click({50, 50}, 3);
        EXPECT_TRUE(surface(out).selectedRect().isZero());
    }
    pointer(2).key(Qt::Key_Return);
    ASSERT_EQ(host_->delivered.size(), 1U);
    const QImage& image = host_->delivered[0].image;
    EXPECT_EQ(image.size(), QSize(200, 100));
    EXPECT_EQ(image.pixel(0, 0), vorla::MemoryWindowServer::desktopPixel(1280 + 20, 40));
    expectOver();
}

TEST_F(Session, EndsWhenTheNumberOfScreensChanges) {
    server_->setDisplays({firstScreen, denseScreen});
    start();
    server_->setDisplays({denseScreen, firstScreen});
    server_->fireDisplaysChanged();
    EXPECT_TRUE(VLIsCapturing());
    server_->setDisplays({firstScreen});
    server_->fireDisplaysChanged();
    EXPECT_EQ(host_->cancelled, 1);
    expectOver();
    // The number is that of the manager's making.
    EXPECT_FALSE(VLIsCapturing());
    server_->setDisplays({firstScreen, denseScreen});
    start();
    server_->fireDisplaysChanged();
    EXPECT_EQ(host_->cancelled, 2);
}

TEST_F(Session, GoesOnWithoutPicturesWindowsOrALook) {
    std::filesystem::remove(resources_.theme() + "/themeConfigue.json");
    start();
    pointer().moveTo({50, 50});
    pointer().drag({{10, 10}, {60, 60}});
    pointer().key(Qt::Key_Return);
    EXPECT_EQ(host_->delivered.size(), 1U);
    server_->setWindows(std::nullopt);
    start();
    EXPECT_TRUE(controllers()[0]->windowInfoArray().empty());
    pointer().click({50, 50});
    pointer().key(Qt::Key_Return);
    EXPECT_EQ(log_.count("截图出现错误"), 1);  // nothing is selected
    pointer().key(Qt::Key_Escape);
    EXPECT_EQ(host_->cancelled, 1);
    // A kept panel must not show the screen of the session before.
    VLPrepareCapture();
    start();
    VLCancelCapture();
    runPending();
    server_->setPicturesFail(true);
    start();
    const QImage shown = panel()->screen()->grabWindow(panel()->winId()).toImage();
    EXPECT_EQ(shown.pixelColor(600, 400), Qt::black);
    EXPECT_FALSE(controllers()[0]->captureViewController());
    pointer().drag({{10, 10}, {60, 60}});
    pointer().key(Qt::Key_Escape);
    EXPECT_EQ(host_->cancelled, 2);
    expectOver();
}

TEST_F(Session, TellsWhenAllPanelsArePainted) {
    std::vector<int> told;
    VLSetPanelsShownHandler([&told](int screens) { told.push_back(screens); });
    VLPrepareCapture();
    server_->setDisplays({firstScreen, denseScreen});
    for (int i = 0; i < 2; ++i) {
        start();
        EXPECT_TRUE(vorla::test::waitUntil([&] { return !told.empty(); }));
        EXPECT_EQ(std::exchange(told, {}), std::vector<int>({2}));
        pointer().key(Qt::Key_Return);  // what was confirmed in the last session is forgotten
        EXPECT_TRUE(VLIsCapturing());
        pointer().drag({{10, 10}, {60, 60}});
        VLCancelCapture();
    }
    VLSetPanelsShownHandler({});
}

TEST_F(Session, ReadsTheThemeAgainWhenItChanges) {
    start();
    EXPECT_EQ(surface().selectedItem().borderWidth, 2.0);
    resources_.writeTheme(R"({"VLCaptureView_SelectRect_BorderWidth": 5})", "Tern-theme");
    VLCaptureThemeManager::sharedInstance().changeThemeTo("Tern-theme");
    EXPECT_EQ(surface().selectedItem().borderWidth, 5.0);
}

/// Run by the test below in a process of its own: the host ends while a session is up.
TEST_F(Session, DISABLED_HostEndsDuringASession) {
    start();
    pointer().drag({{10, 10}, {60, 60}});
    std::exit(0);  // NOLINT: with the application object still alive, as many hosts do
}
TEST_F(Session, DISABLED_ApplicationEndsDuringASession) {
    start();
    qApp->~QApplication();
    std::exit(0);
}

TEST(SessionExit, IsCleanWhenTheHostEndsMeanwhile) {
    for (const char* name : {"HostEndsDuringASession", "ApplicationEndsDuringASession"}) {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QCoreApplication::applicationFilePath(),
                      {QStringLiteral("--gtest_also_run_disabled_tests"),
                       QStringLiteral("--gtest_filter=*") + QLatin1String(name)});
        ASSERT_TRUE(process.waitForFinished(30000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << name;
        EXPECT_EQ(process.exitCode(), 0) << name;
    }
}

}  // namespace
