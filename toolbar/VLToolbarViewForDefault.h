#pragma once

#include "toolbar/VLToolbarView.h"

/// The toolbar with all tools and functions. There is nothing to undo at first.
class VLToolbarViewForDefault : public VLToolbarView {
 public:
    explicit VLToolbarViewForDefault(const VLRect& frame);
};
