// The style sheet and the script of the page, as tool/html/page.css and page.js have them.
#pragma once

#include <string>
#include <string_view>

namespace textio::tool {

extern const std::string_view kPageStyle;
extern const std::string_view kPageScript;

// Their SHA-256, in hexadecimal digits.
extern const std::string_view kPageStyleDigest;
extern const std::string_view kPageScriptDigest;

// "sha256-" and a digest in base64, as a Content-Security-Policy wants it.
std::string policy_source(std::string_view hexadecimal_digest);

}  // namespace textio::tool
