#pragma once

#include <functional>
#include <string>

namespace quillon::tool {

// Replaces the target file as one step: write fills a new temporary file of the target's name in a
// directory of its own (unique to this process) beside the target; the file is flushed to disk
// and renamed over the target. When write throws or any step fails, the temporary file is removed,
// the target is left as it was, and ToolError says why ("cannot write 'out.txt': No space left on
// device").
void SaveAtomically(const std::string& target,
                    const std::function<void(const std::string& temporaryPath)>& write);

} // namespace quillon::tool
