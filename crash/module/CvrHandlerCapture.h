#pragma once

#include "crash/module/CvrCrashModule.h"

/// The process's signal and exception handlers.
class CvrHandlerCapture final : public CvrCapture {
 public:
    void prepare(const CvrPreparedCrash& state) override;
    void installHandler() override;
    void uninstallHandler() override;
    bool checkSignalHandler() override;
    bool checkNSExceptionHandler() override;
    void registCrashListerner(CvrCrashListener* listener) override;
    void setExpMergeStrategy(bool merge) override;
    bool isExpMergeUpload() override;
    void setProcName(const std::string& name) override;
};
