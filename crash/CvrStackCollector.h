#pragma once

#include <string>

#include "platform/base/raii.h"

/// How the frames of a report are named. Any thread.
class CvrStackCollector {
 public:
    static CvrStackCollector& sharedInstance();

    CvrStackCollector(const CvrStackCollector&) = delete;
    CvrStackCollector& operator=(const CvrStackCollector&) = delete;

    /// Whether the program's own frames get symbols; true at first. Without, they stay offsets, to
    /// be symbolised elsewhere. Frames of other images keep theirs once the process's name is set.
    void setNeedSymbol(bool need);
    [[nodiscard]] bool needSymbol() const;
    void setProcName(const std::string& name);

 private:
    CvrStackCollector() = default;
    template <typename T>
    friend class vorla::NoDestructor;
};
