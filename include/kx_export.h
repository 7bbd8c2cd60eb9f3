// What marks a declaration as part of the plug-in's door to the outside.
#ifndef KX_EXPORT_H
#define KX_EXPORT_H

/// Everything is hidden unless it carries this mark; src/exports.map closes the door on the rest.
#define KX_API __attribute__((visibility("default")))

#endif
