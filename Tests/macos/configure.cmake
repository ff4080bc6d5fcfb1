# Stands in for a Mac while the lists of this project are read and nothing is built: the system's name, none of its
# tools, this machine's Qt.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
foreach(language CXX OBJCXX)
    set(CMAKE_${language}_COMPILER $ENV{VELBRIX_COMPILER})
    set(CMAKE_${language}_COMPILER_WORKS TRUE)
endforeach()
set(CMAKE_SIZEOF_VOID_P 8)
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
foreach(tool INSTALL_NAME_TOOL LIPO OTOOL)
    set(CMAKE_${tool} /usr/bin/true)
endforeach()
# Where Debian has Qt.
set(CMAKE_LIBRARY_ARCHITECTURE $ENV{VELBRIX_ARCHITECTURE})
# What Qt looks for in the system.
set(CMAKE_HAVE_LIBC_PTHREAD TRUE CACHE BOOL "")
set(HAVE_STDATOMIC TRUE CACHE BOOL "")
set(OPENGL_INCLUDE_DIR /System/Library/Frameworks/OpenGL.framework CACHE PATH "")
set(OPENGL_gl_LIBRARY /System/Library/Frameworks/OpenGL.framework/OpenGL CACHE FILEPATH "")
# No list may ask for it: a Mac has none.
set(PKG_CONFIG_EXECUTABLE /usr/bin/false CACHE FILEPATH "")
