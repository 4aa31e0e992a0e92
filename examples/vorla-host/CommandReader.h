#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <functional>

/// Hands the lines of standard input to the program while its main loop runs, and the word "quit"
/// at their end, so that the program does not outlive whoever drives it.
class CommandReader {
 public:
    explicit CommandReader(std::function<void(const QByteArray& line)> obey);

 private:
    void read();

    std::function<void(const QByteArray&)> obey_;
    QSocketNotifier notifier_;
    QByteArray pending_;
};
