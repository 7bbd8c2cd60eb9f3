/** @file What the declarations of the camera library's interface need of the compiler. */
#pragma once

/** Marks what the library exports, whatever visibility its users build with. */
#define FC2_API __attribute__((visibility("default")))
