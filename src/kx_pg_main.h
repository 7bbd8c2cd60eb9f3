// What the entry point's file needs from the build: the version record.
#ifndef KX_PG_MAIN_H
#define KX_PG_MAIN_H

/// "0.37.28-", the 40 digits of the source revision, a zero; filled at build time.
extern char kxVersionRecord[64];

#endif
