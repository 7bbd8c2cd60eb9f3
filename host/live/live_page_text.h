// The live page as text.
#ifndef KXHOST_LIVE_PAGE_TEXT_H
#define KXHOST_LIVE_PAGE_TEXT_H

namespace kxhost {

/// live_page.html, which the build puts into the program. NONCE stands for a number that only the
/// server and this page know.
extern const char* const kLivePageText;

} // namespace kxhost

#endif
