#include "tests/session/HostProgram.h"

#include <QFile>
#include <QJsonDocument>
#include <chrono>
#include <filesystem>

namespace vorla::test {
namespace {

/// Under sanitizers, or with several programs at work, everything takes longer.
constexpr int panelsPatience = 20000;

std::vector<std::string> commandLine(const std::vector<std::string>& prefix,
                                     const std::vector<std::string>& options,
                                     const TemporaryFolder& folder) {
    std::vector<std::string> words = prefix;
    if (!prefix.empty()) words.push_back(builtProgram("vorla-host"));
    words.insert(words.end(), options.begin(), options.end());
    for (const std::string& word : {std::string("--commands"), std::string("--state-dir"),
                                    folder.path(), std::string("--out"), folder / "out.png"})
        words.push_back(word);
    if (!prefix.empty()) words.erase(words.begin());
    return words;
}

}  // namespace

std::string builtProgram(const std::string& name) {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
}

HostProgram::HostProgram(const std::vector<std::string>& options,
                         const std::vector<std::string>& prefix)
    : program_(commandLine(prefix, options, folder_),
               prefix.empty() ? builtProgram("vorla-host") : prefix.front(), path("log")) {}

std::string HostProgram::log() const {
    QFile file(QString::fromStdString(path("log")));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

std::optional<QJsonObject> HostProgram::hear(std::string_view event, int milliseconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        std::string line;
        if (left.count() <= 0 || !program_.waitForLine("", &line, static_cast<int>(left.count())))
            return std::nullopt;
        const QJsonObject object =
            QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
        if (object["event"].toString().toStdString() == event) return object;
    }
}

int HostProgram::capture() {
    send("capture");
    const auto panels = hear("panels", panelsPatience);
    return panels ? (*panels)["screens"].toInt() : 0;
}

bool HostProgram::obey(std::string_view command) {
    send(command);
    send("state");
    return hear("state").has_value();
}

bool HostProgram::isCapturing() {
    send("state");
    const auto state = hear("state");
    return state && (*state)["capturing"].toBool();
}

std::string HostProgram::heardUntilNow() {
    send("state");
    std::string names;
    std::string line;
    while (program_.waitForLine("", &line)) {
        const QJsonObject object =
            QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
        const std::string name = object["event"].toString().toStdString();
        if (name == "state") return names;
        if (!names.empty()) names += ' ';
        names += name;
    }
    return names + " (no answer)";
}

QImage HostProgram::delivered(int milliseconds) {
    if (!hear("finished", milliseconds)) return {};
    return QImage(QString::fromStdString(path("out.png")), "PNG");
}

}  // namespace vorla::test
