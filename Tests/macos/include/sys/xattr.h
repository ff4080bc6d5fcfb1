#pragma once

enum { XATTR_NOFOLLOW = 0x0001 };

extern "C" int removexattr(const char *path, const char *name, int options);
