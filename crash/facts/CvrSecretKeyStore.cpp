#include "crash/facts/CvrSecretKeyStore.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>

#include "NEX/NEX/ExitGate.h"
#include "platform/base/Bundle.h"
#include "platform/base/HelperProgram.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds longestWait(3);
constexpr size_t longestAnswer = size_t{64} * 1024;

/// Whether there is a bus to ask on: one is never started for us.
bool hasSessionBus() {
    const char* const address = ::secure_getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address && *address) return true;
    const char* const folder = ::secure_getenv("XDG_RUNTIME_DIR");
    return folder && ::access((std::string(folder) + "/bus").c_str(), F_OK) == 0;
}

/// Ends waiting early when the process exits.
class ExitWatch {
 public:
    ExitWatch()
        : event_(::eventfd(0, EFD_CLOEXEC)),
          ticket_(
              vorla::ExitGate::shared().addWaker([fd = event_.get()] { ::eventfd_write(fd, 1); })) {
    }
    ~ExitWatch() { vorla::ExitGate::shared().removeWaker(ticket_); }
    ExitWatch(const ExitWatch&) = delete;
    ExitWatch& operator=(const ExitWatch&) = delete;
    [[nodiscard]] int get() const { return event_.get(); }

 private:
    const vorla::UniqueFd event_;
    const int ticket_;
};

/// All that is written to the pipe; none unless its other end is closed in time.
std::optional<std::string> readToEnd(int pipe) {
    const ExitWatch exit;
    const auto end = Clock::now() + longestWait;
    std::string answer;
    while (answer.size() < longestAnswer) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd watched[] = {{pipe, POLLIN, 0}, {exit.get(), POLLIN, 0}};
        const int ready = left > 0 ? ::poll(watched, 2, static_cast<int>(left)) : 0;
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0 || watched[1].revents != 0) return std::nullopt;
        char piece[4096];
        const ssize_t count = ::read(pipe, piece, sizeof piece);
        if (count == 0) return answer;
        if (count > 0)
            answer.append(piece, static_cast<size_t>(count));
        else if (errno != EINTR)
            return std::nullopt;
    }
    return std::nullopt;
}

std::string answerOf(const std::string& program, const std::vector<std::string>& arguments,
                     const std::string& input) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return {};
    const vorla::UniqueFd reading(ends[0]);
    vorla::UniqueFd writing(ends[1]);
    const vorla::UniqueFd file = vorla::memoryFile(input);
    pid_t child = 0;
    if (!file || vorla::startHelper(program, arguments, file.get(), writing.get(), child) != 0)
        return {};
    writing.reset();
    const auto answer = readToEnd(reading.get());
    // Where it has not ended, a timer of its own is about to end it: not waited for.
    ::waitpid(child, nullptr, answer ? 0 : WNOHANG);
    return answer.value_or("");
}

bool report(int code, int* error) {
    if (error) *error = code;
    return code == 0;
}

}  // namespace

std::string CvrSecretKeyStore::ask(const char* verb, const std::string& service,
                                   const std::string& account, const std::string& password) {
    if (!answers_ || !hasSessionBus()) return {};
    const std::string program =
        program_.empty() ? vorla::Bundle::pathForHelper("secret-store") : program_;
    const std::string answer =
        program.empty()
            ? std::string()
            : answerOf(program, {verb, vorla::HostIdentity::fileName(), service, account},
                       password);
    if (answer.empty()) answers_ = false;
    return answer;
}

std::optional<std::string> CvrSecretKeyStore::getPasswordForUsername(
    const std::string& username, const std::string& andServiceName, int* error) {
    if (!report(username.empty() || andServiceName.empty() ? errorAbsentArgument : 0, error))
        return std::nullopt;
    const std::string answer = ask("get", andServiceName, username);
    if (answer.starts_with('F')) return answer.substr(1);
    auto kept = otherwise_.getPasswordForUsername(username, andServiceName, error);
    if (kept && answer == "N") ask("set", andServiceName, username, *kept);
    return kept;
}

bool CvrSecretKeyStore::storeUsername(const std::string& username, const std::string& andPassword,
                                      const std::string& forServiceName, bool updateExisting,
                                      int* error) {
    if (username.empty() || andPassword.empty() || forServiceName.empty())
        return report(errorAbsentArgument, error);
    const auto old = getPasswordForUsername(username, forServiceName);
    if (old && !updateExisting) return report(EEXIST, error);
    const bool isStored = ask("set", forServiceName, username, andPassword) == "S";
    // An older value would come back with the service gone.
    if (isStored && !otherwise_.getPasswordForUsername(username, forServiceName))
        return report(0, error);
    return otherwise_.storeUsername(username, andPassword, forServiceName, true, error) ||
           (isStored && report(0, error));
}

bool CvrSecretKeyStore::deleteItemForUsername(const std::string& username,
                                              const std::string& andServiceName, int* error) {
    if (username.empty() || andServiceName.empty()) return report(errorAbsentArgument, error);
    const bool isDeleted = ask("delete", andServiceName, username) == "S";
    return otherwise_.deleteItemForUsername(username, andServiceName, error) ||
           (isDeleted && report(0, error));
}
