#pragma once

/// Marks what a shared library of ours shows to its host; everything else stays hidden.
#define VL_EXPORT __attribute__((visibility("default")))
