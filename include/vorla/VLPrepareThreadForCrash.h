#pragma once

#include <vorla/export.h>

/// @file
/// What a thread does so that its own end is reported too.

/// Gives the calling thread a stack of its own for crash handling, so that even a thread that has
/// used up its ordinary stack dies with a report. Without it such a thread ends the process with no
/// word of ours. Needs 100 KiB; it is returned when the thread ends. A thread that has an alternate
/// stack already keeps it. Returns whether the thread has one afterwards.
VL_EXPORT bool VLPrepareThreadForCrash();
