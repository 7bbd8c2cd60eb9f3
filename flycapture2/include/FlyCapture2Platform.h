// What the declarations of the camera library's interface need of the compiler.
#ifndef KX_FLYCAPTURE2_PLATFORM_H
#define KX_FLYCAPTURE2_PLATFORM_H

/// Marks what the library exports, whatever visibility its users build with.
#define FC2_API __attribute__((visibility("default")))

#endif
