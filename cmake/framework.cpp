// The shared libraries are made of the folders' archives and have no code of their own.
