#pragma once

namespace vorla {

/// The rows of a picture that somebody else is still writing, from the top down. Whoever reads the
/// picture's pixels before they are complete asks for its rows first. Any thread.
class ArrivingRows {
 public:
    virtual ~ArrivingRows() = default;
    /// Waits until the first `count` rows are there.
    virtual void await(int count) = 0;
};

}  // namespace vorla
