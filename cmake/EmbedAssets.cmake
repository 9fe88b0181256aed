# Writes a C++ source holding the page's built files as byte arrays with their content types.
# Run as: cmake -DOUTPUT=assets.cpp -DINPUT_DIR=built-page-folder -P EmbedAssets.cmake
set(FILES "${INPUT_DIR}/index.html" "${INPUT_DIR}/app.js" "${INPUT_DIR}/app.css")
set(entries "")
set(arrays "")
set(index 0)
foreach(file IN LISTS FILES)
    get_filename_component(name "${file}" NAME)
    get_filename_component(extension "${file}" LAST_EXT)
    if(extension STREQUAL ".html")
        set(type "text/html; charset=utf-8")
    elseif(extension STREQUAL ".js")
        set(type "text/javascript; charset=utf-8")
    elseif(extension STREQUAL ".css")
        set(type "text/css; charset=utf-8")
    else()
        set(type "application/octet-stream")
    endif()
    file(READ "${file}" hex HEX)
    file(SIZE "${file}" size)
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${hex}")
    string(APPEND arrays "const char kAsset${index}[] = {${bytes} 0};\n")
    string(APPEND entries "    {\"${name}\", \"${type}\", std::string_view(kAsset${index}, ${size})},\n")
    math(EXPR index "${index} + 1")
endforeach()
file(WRITE "${OUTPUT}.tmp" "// Generated from the built page by cmake/EmbedAssets.cmake; do not edit.
#include \"serve/Assets.h\"

namespace quillon::tool::serve {

namespace {
${arrays}
const Asset kAssets[] = {
${entries}};

} // namespace

const Asset* FindAsset(std::string_view name) {
    for (const Asset& asset : kAssets)
        if (asset.name == name)
            return &asset;
    return nullptr;
}

} // namespace quillon::tool::serve
")
file(RENAME "${OUTPUT}.tmp" "${OUTPUT}")
