#include "crash/handler/SignalNames.h"

#include <csignal>

namespace vorla::crash {
namespace {

struct SignalName {
    int signal;
    std::string_view name;
};
constexpr SignalName cvr_signal_names[] = {
    {SIGHUP, "SIGHUP"},   {SIGINT, "SIGINT"},       {SIGQUIT, "SIGQUIT"}, {SIGILL, "SIGILL"},
    {SIGTRAP, "SIGTRAP"}, {SIGABRT, "SIGABRT"},     {SIGIOT, "SIGIOT"},   {SIGFPE, "SIGFPE"},
    {SIGKILL, "SIGKILL"}, {SIGBUS, "SIGBUS"},       {SIGSEGV, "SIGSEGV"}, {SIGSYS, "SIGSYS"},
    {SIGPIPE, "SIGPIPE"}, {SIGALRM, "SIGALRM"},     {SIGTERM, "SIGTERM"}, {SIGURG, "SIGURG"},
    {SIGSTOP, "SIGSTOP"}, {SIGTSTP, "SIGTSTP"},     {SIGCONT, "SIGCONT"}, {SIGCHLD, "SIGCHLD"},
    {SIGTTIN, "SIGTTIN"}, {SIGTTOU, "SIGTTOU"},     {SIGIO, "SIGIO"},     {SIGXCPU, "SIGXCPU"},
    {SIGXFSZ, "SIGXFSZ"}, {SIGVTALRM, "SIGVTALRM"}, {SIGPROF, "SIGPROF"}, {SIGWINCH, "SIGWINCH"},
    {SIGUSR1, "SIGUSR1"}, {SIGUSR2, "SIGUSR2"},
};

struct CodeName {
    int signal;
    int code;
    std::string_view name;
};
constexpr CodeName cvr_signal_codes[] = {
    {SIGILL, 0, "ILL_NOOP"},
    {SIGILL, ILL_ILLOPC, "ILL_ILLOPC"},
    {SIGILL, ILL_ILLTRP, "ILL_ILLTRP"},
    {SIGILL, ILL_PRVOPC, "ILL_PRVOPC"},
    {SIGILL, ILL_ILLOPN, "ILL_ILLOPN"},
    {SIGILL, ILL_ILLADR, "ILL_ILLADR"},
    {SIGILL, ILL_PRVREG, "ILL_PRVREG"},
    {SIGILL, ILL_COPROC, "ILL_COPROC"},
    {SIGILL, ILL_BADSTK, "ILL_BADSTK"},
    {SIGFPE, 0, "FPE_NOOP"},
    {SIGFPE, FPE_FLTDIV, "FPE_FLTDIV"},
    {SIGFPE, FPE_FLTOVF, "FPE_FLTOVF"},
    {SIGFPE, FPE_FLTUND, "FPE_FLTUND"},
    {SIGFPE, FPE_FLTRES, "FPE_FLTRES"},
    {SIGFPE, FPE_FLTINV, "FPE_FLTINV"},
    {SIGFPE, FPE_FLTSUB, "FPE_FLTSUB"},
    {SIGFPE, FPE_INTDIV, "FPE_INTDIV"},
    {SIGFPE, FPE_INTOVF, "FPE_INTOVF"},
    {SIGSEGV, 0, "SEGV_NOOP"},
    {SIGSEGV, SEGV_MAPERR, "SEGV_MAPERR"},
    {SIGSEGV, SEGV_ACCERR, "SEGV_ACCERR"},
    {SIGBUS, 0, "BUS_NOOP"},
    {SIGBUS, BUS_ADRALN, "BUS_ADRALN"},
    {SIGBUS, BUS_ADRERR, "BUS_ADRERR"},
    {SIGBUS, BUS_OBJERR, "BUS_OBJERR"},
    {SIGTRAP, TRAP_BRKPT, "TRAP_BRKPT"},
    {SIGTRAP, TRAP_TRACE, "TRAP_TRACE"},
};

}  // namespace

void cvr_map_sig_name(int signal, int code, TextBuffer& signalText, TextBuffer& codeText) {
    std::string_view name;
    for (const SignalName& row : cvr_signal_names)
        if (name.empty() && row.signal == signal) name = row.name;
    name.empty() ? signalText.decimal(signal) : signalText.text(name);
    name = {};
    for (const CodeName& row : cvr_signal_codes)
        if (name.empty() && row.signal == signal && row.code == code) name = row.name;
    name.empty() ? codeText.decimal(code) : codeText.text(name);
}

}  // namespace vorla::crash
