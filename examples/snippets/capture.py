#!/usr/bin/env python3
"""A capture from Python: blocks until the user is done, and writes the picture to a file."""
import ctypes
import sys

vorla = ctypes.CDLL("libVorla.so.1")
vorla.vorla_error_text.restype = ctypes.c_char_p
vorla.vorla_outcome_bytes.restype = ctypes.c_void_p

outcome, size = ctypes.c_void_p(), ctypes.c_size_t()
error = vorla.vorla_run_capture(None, ctypes.byref(outcome))
if error:
    sys.exit("refused: " + vorla.vorla_error_text(error).decode())
picture = vorla.vorla_outcome_bytes(outcome, ctypes.byref(size))
if picture:
    open(sys.argv[1], "wb").write(ctypes.string_at(picture, size.value))
print("outcome", vorla.vorla_outcome_kind(outcome), size.value, "bytes")
vorla.vorla_outcome_free(outcome)
