#pragma once

// <xcb/xkb.h> is C and names a struct field `explicit`, a C++ keyword. Rename it while the header
// is read; nothing here touches that field.
#include <xcb/xcb.h>
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
