// Text for HTML: what comes from outside must not be taken for markup.
#ifndef KXHOST_HTML_ESCAPE_H
#define KXHOST_HTML_ESCAPE_H

#include <string>
#include <string_view>

namespace kxhost {

/// The text as the content of an element or of an attribute in quotes of either kind: & < > " and '
/// become references. What is no UTF-8, and control characters other than tab and newline, become
/// U+FFFD, one for each byte. Not for scripts, styles and addresses. Thread-safe.
std::string htmlEscape(std::string_view text);

} // namespace kxhost

#endif
