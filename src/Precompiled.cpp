// Gives the precompiled header a translation unit of its own to be built in.
