# 32-bit x86 on a 64-bit host, with the compiler of g++-12-multilib (gcc-multilib, which would set the include paths,
# excludes the cross compilers). SSE arithmetic rounds doubles as every other platform does.
set(CMAKE_CXX_COMPILER g++-12)
set(CMAKE_CXX_FLAGS_INIT "-m32 -msse2 -mfpmath=sse -idirafter /usr/include/x86_64-linux-gnu")
