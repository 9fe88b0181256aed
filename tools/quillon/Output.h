#pragma once

// Where a subcommand writes: standard output, or a file that is replaced atomically once all of
// it has been written, so that a failed or interrupted run leaves the old file whole.

#include <quillon/platform/AtomicFile.h>

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace quillon::tool {

class Output {
public:
    // path "" or "-": standard output. Otherwise the file is written beside its target and
    // replaces it at Close; throws ToolError when it cannot be started.
    explicit Output(const std::string& path);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output();

    // Buffered: text is passed on in blocks of about 1 MiB, never held whole.
    void Write(std::string_view text);
    // Writes what is buffered and replaces the target. Throws ToolError on any failure (a full
    // disk, a closed pipe); the target is then left as it was.
    void Close();

private:
    void Flush();
    // Hands text to the stream unbuffered; a failure is remembered for Close.
    void Put(std::string_view text);

    std::string m_path;
    std::unique_ptr<CAtomicFile> m_file;
    std::FILE* m_stream = nullptr;
    std::string m_buffer;
    bool m_failed = false;
};

} // namespace quillon::tool
