// The style sheets and the script of the page, as tool/html/layout.css, page.css and page.js have them.
#pragma once

#include <string>
#include <string_view>

namespace textio::tool {

// Of the answer, the picture and the columns, within an element of the class "vltext". It is the first part of kPageStyle.
extern const std::string_view kLayoutStyle;
extern const std::string_view kPageStyle;
extern const std::string_view kPageScript;

// SHA-256 of the latter two, in hexadecimal digits.
extern const std::string_view kPageStyleDigest;
extern const std::string_view kPageScriptDigest;

// "sha256-" and a digest in base64, as a Content-Security-Policy wants it.
std::string policy_source(std::string_view hexadecimal_digest);

}  // namespace textio::tool
