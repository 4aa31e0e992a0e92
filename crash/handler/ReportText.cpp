#include "crash/handler/ReportText.h"

#include <unistd.h>

namespace vorla::crash {
namespace {

void writeHead(const CrashEvent& event, const CvrPreparedCrash& prepared, const LocalTime& time,
               TextBuffer& to) {
    to.text("Handler: ").text(event.handler).text("\n\n");
    to.text("Hardware Model: ").text(prepared.hardwareModel).text("\n");
    to.text("Process: ").text(prepared.processName).text(" [").decimal(::getpid()).text("]\n");
    to.text("Path: ").text(prepared.resourcePath).text("\n");
    to.text("Identifier: ").text(prepared.bundleId).text("\n");
    to.text("Version: ").text(prepared.appVersion).text("\n");
    to.text("Code Type: X86_64\n");
    to.text("Parent Process: ").text(prepared.parentProcName).text(" [").decimal(::getppid());
    to.text("]\n\nDate/Time: ");
    time.writeFull(event.time, to);
    to.text("\nOS Version: ").text(prepared.osVer).text("\nReport Version: 11\n\n");
}

void writeSession(const CrashEvent& event, const CvrPreparedCrash& prepared,
                  const LocalTime& localTime, TextBuffer& to) {
    const auto moment = [&](std::string_view label, int64_t time) {
        if (time <= 0) return;
        to.text(label);
        localTime.writeSeconds(time, to);
        to.text("\n");
    };
    const auto fact = [&](std::string_view label, std::string_view value) {
        if (!value.empty()) to.text(label).text(value).text("\n");
    };
    moment("SDK start time: ", prepared.startTime);
    moment("SDK enter background time: ", prepared.backGroundTime);
    moment("SDK resume time: ", prepared.resumeTime);
    if (prepared.serverTimeDelta != 0)
        to.text("SDK server time delta: ").decimal(prepared.serverTimeDelta / 1000).text(" s\n");
    const int64_t last = prepared.lastRecordTime > 0 ? prepared.lastRecordTime : prepared.startTime;
    to.text("last record time delta : ").decimal(event.time - last).text(" ms\n");
    fact("SBK SDK Version: ", prepared.sdkVersion);
    fact("SBK Registed Uin : ", prepared.userid);
    fact("SBK DeviceId: ", prepared.openudid);
    fact("SBK CI UUID: ", prepared.pIdentity);
    to.text("SBK APP KEY: ").text(prepared.appId).text("\n\n");
}

/// What the first attempt knew, when this is the second.
void writeFirstAttempt(const CrashEvent& event, TextBuffer& to) {
    to.text("Last Exception :\n");
    to.text("Exception Type: ").text(event.firstType).text("\nException Codes: ");
    to.text(event.firstError).text(" at ").text(event.firstAddress).text("\n");
    const CollectedCrash* const first = event.firstAttempt;
    for (const CrashThread& thread : first ? first->threads() : std::span<const CrashThread>()) {
        if (thread.crashed) to.text("Highlighted Thread: ").decimal(thread.index).text("\n");
        to.text("\nThread ").decimal(thread.index).text(" name: ").text(thread.name);
        to.text("\nThread ").decimal(thread.index).text(":\n");
        writeStack(thread.frames, to);
    }
    to.text("\n------\n\n");
}

void writeThreads(const CollectedCrash& crash, TextBuffer& to) {
    for (const CrashThread& thread : crash.threads()) {
        if (!thread.name.empty()) {
            to.text("Thread ").decimal(thread.index).text(" Name: ").text(thread.name).text("\n");
        }
        to.text("Thread ").decimal(thread.index).text(thread.crashed ? " Crashed" : "");
        to.text(": \n");
        writeStack(thread.frames, to);
        to.text("\n");
    }
}

void writeRegisters(int32_t thread, const Registers& registers, TextBuffer& to) {
    const auto value = [&](int name) { return static_cast<uint64_t>(registers.values[name]); };
    struct Column {
        std::string_view label;
        uint64_t value;
    };
    // The kernel packs three 16-bit segment registers into one word: cs, gs, fs from the lowest.
    const uint64_t segments = value(REG_CSGSFS);
    const Column columns[5][4] = {
        {{"   rax", value(REG_RAX)},
         {"   rbx", value(REG_RBX)},
         {"   rcx", value(REG_RCX)},
         {"   rdx", value(REG_RDX)}},
        {{"   rsi", value(REG_RSI)},
         {"   rdi", value(REG_RDI)},
         {"   rbp", value(REG_RBP)},
         {"   rsp", value(REG_RSP)}},
        {{"    r8", value(REG_R8)},
         {"    r9", value(REG_R9)},
         {"   r10", value(REG_R10)},
         {"   r11", value(REG_R11)}},
        {{"   r12", value(REG_R12)},
         {"   r13", value(REG_R13)},
         {"   r14", value(REG_R14)},
         {"   r15", value(REG_R15)}},
        {{"rflags", value(REG_EFL)},
         {"    cs", segments & 0xFFFF},
         {"    fs", segments >> 32 & 0xFFFF},
         {"    gs", segments >> 16 & 0xFFFF}},
    };
    to.text("\nThread ").decimal(thread).text(" crashed with X86_64 Thread State:\n");
    for (const auto& line : columns) {
        for (const Column& column : line) {
            if (&column != line) to.text(" ");
            to.text(column.label).text(": ").address(column.value);
        }
        to.text("\n");
    }
    to.text("\n");
}

void writeImages(const CollectedCrash& crash, TextBuffer& to) {
    to.text("Binary Images:\n");
    for (size_t i = 0; i < crash.images().count(); ++i) {
        const LoadedImage& image = crash.images().at(i);
        if (!crash.isOnStacks(image)) continue;
        to.shortAddress(image.base).text(" - ").shortAddress(image.base + image.size - 1);
        to.text(image.isProgram ? " +" : "  ").text(image.shortName).text(" x86_64 <");
        to.text({image.uuid, sizeof image.uuid - 1}).text("> ").text(image.path).text("\n");
    }
}

}  // namespace

void writeStack(std::span<const CrashFrame> frames, TextBuffer& to) {
    for (const CrashFrame& frame : frames) {
        frame.writeLine(to);
        to.text("\n");
    }
}

void writeReport(const CrashEvent& event, const CollectedCrash& crash,
                 const CvrPreparedCrash& prepared, const LocalTime& localTime, TextBuffer& to) {
    writeHead(event, prepared, localTime, to);
    writeSession(event, prepared, localTime, to);
    if (event.onceMore) writeFirstAttempt(event, to);
    if (crash.hasExceptionStack()) {
        to.text("Last Exception Backtrace :\n");
        writeStack(crash.exceptionStack(), to);
        to.text("\n");
    }
    to.text("Exception Type: ").text(event.type).text("\nException Codes: ").text(event.error);
    to.text(" at ").text(event.address).text("\n");
    const CrashThread* const crashed = crash.crashedThread();
    if (crashed) to.text("Crashed Thread: ").decimal(crashed->index).text("\n\n");
    writeThreads(crash, to);
    if (crashed) writeRegisters(crashed->index, crash.registers, to);
    writeImages(crash, to);
}

}  // namespace vorla::crash
