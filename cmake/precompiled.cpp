// Compiles the precompiled header of cmake/CorvaneRoom.cmake.
