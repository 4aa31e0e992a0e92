#pragma once

/// Marks what the shared library shows to its host; everything else stays hidden.
#define VL_EXPORT __attribute__((visibility("default")))
