#include "crash/handler/LocalTime.h"

#include <chrono>
#include <ctime>

namespace vorla::crash {
namespace {

constexpr int64_t daySeconds = 86400;

int32_t askOffset(int64_t seconds) {
    const auto time = static_cast<time_t>(seconds);
    tm fields{};
    ::localtime_r(&time, &fields);
    return static_cast<int32_t>(fields.tm_gmtoff);
}

int64_t floorDivide(int64_t value, int64_t by) {
    return value / by - (value % by < 0 ? 1 : 0);
}

}  // namespace

struct LocalTime::Fields {
    int64_t year, month, day, hour, minute, second, milliseconds, offset;
};

LocalTime::LocalTime(int64_t nowSeconds) {
    ::tzset();
    changes_.push_back({INT64_MIN, askOffset(nowSeconds)});
    constexpr int64_t step = 7 * daySeconds;
    for (int64_t week = nowSeconds; week < nowSeconds + 730 * daySeconds; week += step) {
        const int32_t later = askOffset(week + step);
        if (later == changes_.back().offset) continue;
        int64_t low = week;
        int64_t high = week + step;
        while (high - low > 1) {
            const int64_t middle = low + (high - low) / 2;
            (askOffset(middle) == later ? high : low) = middle;
        }
        changes_.push_back({high, later});
    }
}

int32_t LocalTime::offsetAt(int64_t seconds) const {
    int32_t offset = 0;
    for (const Change& change : changes_)
        if (change.from <= seconds) offset = change.offset;
    return offset;
}

LocalTime::Fields LocalTime::fieldsOf(int64_t time) const {
    const int64_t seconds = floorDivide(time, 1000);
    const int64_t offset = offsetAt(seconds);
    const int64_t local = seconds + offset;
    const int64_t days = floorDivide(local, daySeconds);
    const int64_t inDay = local - days * daySeconds;
    const std::chrono::year_month_day date{
        std::chrono::sys_days(std::chrono::days(static_cast<int>(days)))};
    return {.year = static_cast<int>(date.year()),
            .month = static_cast<unsigned>(date.month()),
            .day = static_cast<unsigned>(date.day()),
            .hour = inDay / 3600,
            .minute = inDay / 60 % 60,
            .second = inDay % 60,
            .milliseconds = time - seconds * 1000,
            .offset = offset};
}

void LocalTime::writeFull(int64_t time, TextBuffer& to) const {
    writeSeconds(time, to);
    const Fields fields = fieldsOf(time);
    const int64_t offset = fields.offset < 0 ? -fields.offset : fields.offset;
    to.text(".").digits(fields.milliseconds, 3).text(fields.offset < 0 ? " -" : " +");
    to.digits(offset / 3600, 2).digits(offset / 60 % 60, 2);
}

void LocalTime::writeSeconds(int64_t time, TextBuffer& to) const {
    const Fields fields = fieldsOf(time);
    to.decimal(fields.year).text("-").digits(fields.month, 2).text("-").digits(fields.day, 2);
    to.text(" ").digits(fields.hour, 2).text(":").digits(fields.minute, 2).text(":");
    to.digits(fields.second, 2);
}

void LocalTime::writeForFileName(int64_t time, TextBuffer& to) const {
    const Fields fields = fieldsOf(time);
    to.decimal(fields.year);
    for (const int64_t part : {fields.month, fields.day, fields.hour, fields.minute, fields.second})
        to.text("-").digits(part, 2);
}

}  // namespace vorla::crash
