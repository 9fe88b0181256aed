#pragma once

// The page's files, built from web/ and compiled into the tool, so that serve and html need no
// file beside the binary.

#include <string_view>

namespace quillon::tool::serve {

struct Asset {
    std::string_view name;        // "index.html", "app.js", "app.css"
    std::string_view contentType; // "text/html; charset=utf-8", ...
    std::string_view bytes;
};

// The asset of that name, or null.
const Asset* FindAsset(std::string_view name);

} // namespace quillon::tool::serve
