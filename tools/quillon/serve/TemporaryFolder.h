#pragma once

#include <string>

namespace quillon::tool::serve {

// A folder of its own under the system's temporary folder, removed with everything in it when the
// object goes: TemporaryFolder("quillon-serve") makes /tmp/quillon-serve-Ab12Cd.
class TemporaryFolder {
public:
    // Throws ToolError with the system's reason when the folder cannot be made.
    explicit TemporaryFolder(const std::string& prefix);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

} // namespace quillon::tool::serve
