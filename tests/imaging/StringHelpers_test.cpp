#include "imaging/StringHelpers.h"

#include <gtest/gtest.h>

#include <QLocale>

namespace vorla {
namespace {

TEST(StringHelpers, fileNames) {
    const QLocale before;
    QLocale::setDefault(QLocale::c());
    const QDateTime moment(QDate(2015, 6, 12), QTime(8, 30, 15));
    const struct {
        const char* folder;
        int type;
        bool high;
        const char* prefix;
        const char* expected;
    } rows[] = {
        {"~/Desktop", 4, true, "Vorla", "Vorla20150612-083015@2x.png"},
        {"/tmp", 4, false, "Vorla", "Vorla20150612-083015.png"},
        {"/pictures/", 0, true, "Vorla", "Vorla20150612-083015@2x.tiff"},
        {"", 1, false, "", "20150612-083015.bmp"},
        {"relative", 2, false, "my shot ", "my shot 20150612-083015.gif"},
        {"~", 3, false, "截图", "截图20150612-083015.jpg"},
        {"/", 5, true, "a.b", "a.b20150612-083015@2x.jp2"},
        {"/tmp", 6, false, "V", "V20150612-083015.png"},
        {"/tmp", 9, false, "V", "V20150612-083015.png"},
        {"/tmp", -1, false, "V", "V20150612-083015.png"},
        {"/tmp", 4, false, "../../etc/V", "V20150612-083015.png"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(imageFileNameForPath(row.folder, row.type, row.high, row.prefix, moment),
                  row.expected);
    QLocale::setDefault(before);
}

TEST(StringHelpers, typesOfPaths) {
    const struct {
        const char* path;
        int type;
    } rows[] = {
        {"a.png", 4},      {"/x/a.JPG", 3},    {"a.gif", 2},  {"a.bmp", 1}, {"a.Tif", 0},
        {"a.jp2", 5},      {"a.tiff", 4},      {"a.jpeg", 4}, {"a", 4},     {"", 4},
        {"/x.gif/a", 4},   {".gif", 4},        {"a.gif/", 2}, {"a.", 4},    {"a.png.jpg", 3},
        {"/x/.hidden", 4}, {"/x/.dir.bmp", 1},
    };
    for (const auto& row : rows) EXPECT_EQ(getBitmapImageFileType(row.path), row.type) << row.path;
}

TEST(StringHelpers, extensionsAreAddedOnce) {
    const struct {
        const char* path;
        int type;
        const char* expected;
    } rows[] = {
        {"a", 0, "a.tif"},
        {"a.tif", 0, "a.tif.tif"},
        {"a.tiff", 0, "a.tiff.tif"},
        {"a", 1, "a.bmp"},
        {"a.BMP", 1, "a.BMP"},
        {"a.gif", 2, "a.gif"},
        {"a.jpeg", 3, "a.jpeg.jpg"},
        {"a.JpG", 3, "a.JpG"},
        {"a.jpg", 4, "a.jpg.png"},
        {"a", 5, "a.jp2"},
        {"a", 6, "a"},
        {"a", -1, "a"},
        {"", 4, ".png"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(appendPathExtension(row.path, row.type), row.expected) << row.path;
}

}  // namespace
}  // namespace vorla
