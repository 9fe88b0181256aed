#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>

namespace quillon::testing {

// The whole file's bytes ("" when it cannot be read).
inline std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

// A file in a fresh temporary folder, removed with the folder when the object goes.
class TempFile {
public:
    explicit TempFile(const std::string& name = "file.txt") {
        std::random_device random;
        m_folder = std::filesystem::temp_directory_path() /
                   ("quillon-test-" + std::to_string(::getpid()) + "-" + std::to_string(random()));
        std::filesystem::create_directories(m_folder);
        m_path = m_folder / name;
    }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;
    ~TempFile() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    std::string Path() const { return m_path.string(); }
    const char* c_str() const {
        m_text = m_path.string();
        return m_text.c_str();
    }
    std::filesystem::path Folder() const { return m_folder; }

    // Writes the bytes as they are (no line-end translation).
    void Write(const std::string& bytes) const {
        std::ofstream out(m_path, std::ios::binary | std::ios::trunc);
        out << bytes;
    }
    // Reads the whole file's bytes.
    std::string Read() const { return ReadBytes(m_path); }

private:
    std::filesystem::path m_folder;
    std::filesystem::path m_path;
    mutable std::string m_text;
};

} // namespace quillon::testing
