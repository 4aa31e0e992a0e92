// The delivered picture can be pasted into another program: at once, during the next session, and
// after the host's end.

#include <QFile>
#include <QProcess>

#include "tests/session/SessionTest.h"

namespace vorla::test {
namespace {

class Clipboard : public SessionTest {
 protected:
    static QByteArray paste(const QString& target) {
        QProcess reader;
        reader.start("timeout", {"10", "xclip", "-selection", "clipboard", "-o", "-t", target});
        reader.waitForFinished(15000);
        return reader.readAllStandardOutput();
    }
    static QByteArray fileBytes(const std::string& path) {
        QFile file(QString::fromStdString(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QByteArray deliver(HostProgram& program) {
        EXPECT_EQ(begin(program), 1);
        driver->drag({300, 200}, {1500, 900}, 4);
        driver->key("Return");
        EXPECT_FALSE(program.delivered().isNull());
        return fileBytes(program.path("out.png"));
    }
};

TEST_F(Clipboard, HoldsTheDeliveredPng) {
    openWallpaper();
    const QByteArray png = deliver(host());
    EXPECT_EQ(paste("image/png"), png);
    const QImage picture = QImage::fromData(png);
    EXPECT_TRUE(samePixels(QImage::fromData(paste("image/bmp")), picture));
    EXPECT_EQ(QImage::fromData(paste("image/jpeg")).size(), picture.size());
    EXPECT_TRUE(paste("TARGETS").contains("image/png"));
    ASSERT_EQ(begin(), 1);
    EXPECT_EQ(paste("image/png"), png) << "during a session";
    driver->moveTo(300, 300);
    driver->press();
    driver->moveTo(500, 500);
    EXPECT_EQ(paste("image/png"), png) << "during a drag";
    driver->release();
    driver->key("Escape");
    EXPECT_TRUE(host().hear("cancelled"));
    EXPECT_EQ(paste("image/png"), png) << "after a cancelled session";
}

TEST_F(Clipboard, OutlivesTheHostWithAndWithoutAManager) {
    openWallpaper();
    for (const bool managed : {false, true}) {
        std::optional<TestProgram> manager;
        if (managed) {
            manager.emplace(std::vector<std::string>(), builtProgram("vorla-test-clipboard"));
            ASSERT_TRUE(manager->waitForLine("ready"));
        }
        HostProgram other;
        ASSERT_TRUE(other.start());
        const QByteArray png = deliver(other);
        other.send("quit");
        EXPECT_EQ(other.program().waitForExit(20000), 0);
        EXPECT_EQ(paste("image/png"), png) << managed;
        EXPECT_EQ(paste("image/png"), png) << managed << ", pasted again";
    }
}

}  // namespace
}  // namespace vorla::test
