#include "Output.h"

#include "Tool.h"

#include <cerrno>
#include <cstring>

namespace quillon::tool {

namespace {

constexpr size_t kBlock = 1 << 20;

} // namespace

Output::Output(const std::string& path) : m_path(path) {
    m_buffer.reserve(kBlock + 4096);
    if (path.empty() || path == "-") {
        m_stream = stdout;
        return;
    }
    try {
        m_file = std::make_unique<CAtomicFile>(path);
    } catch (const CException& exception) {
        throw ToolError(LibraryMessage(exception));
    }
    m_stream = std::fopen(m_file->GetPath().c_str(), "wb");
    if (m_stream == nullptr)
        throw ToolError("cannot write '" + path + "': " + std::strerror(errno));
}

Output::~Output() {
    if (m_file && m_stream != nullptr)
        std::fclose(m_stream);
}

void Output::Write(std::string_view text) {
    if (text.size() >= kBlock / 2) {
        // Large enough to go out as it is, after what is buffered: no copy through the buffer.
        Flush();
        Put(text);
        return;
    }
    m_buffer.append(text);
    if (m_buffer.size() >= kBlock)
        Flush();
}

void Output::Put(std::string_view text) {
    if (!text.empty() && std::fwrite(text.data(), 1, text.size(), m_stream) != text.size())
        m_failed = true;
}

void Output::Flush() {
    Put(m_buffer);
    m_buffer.clear();
}

void Output::Close() {
    Flush();
    const bool flushed = std::fflush(m_stream) == 0 && !std::ferror(m_stream);
    const int error = errno;
    if (!m_file) {
        if (m_failed || !flushed)
            throw ToolError(std::string("cannot write standard output: ") + std::strerror(error));
        return;
    }
    const bool closed = std::fclose(m_stream) == 0;
    m_stream = nullptr;
    if (m_failed || !flushed || !closed)
        throw ToolError("cannot write '" + m_path + "': " + std::strerror(error));
    try {
        m_file->Commit();
    } catch (const CException& exception) {
        throw ToolError(LibraryMessage(exception));
    }
    m_file.reset();
}

} // namespace quillon::tool
