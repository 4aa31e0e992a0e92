// The shared library is made of the folders' archives and has no code of its own.
