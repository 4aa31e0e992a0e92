#pragma once

#include <QColor>
#include <cstdint>

/// What a toolbar asks of the editor. Main thread.
class VLToolbarWindowControllerDelegate {
 public:
    virtual ~VLToolbarWindowControllerDelegate() = default;
    /// Another tool was chosen: a VLEditGraphType.
    virtual void graphTypeDidChange(int64_t /*graphType*/) {}
    virtual void colorDidChange(const QColor& /*color*/) {}
    /// In points; for text the size of the font.
    virtual void widthDidChange(uint64_t /*width*/) {}
    virtual void undo() {}
};
