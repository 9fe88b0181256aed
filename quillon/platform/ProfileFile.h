#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon {

// A settings file of "[section]" headers and "key=value" lines, held in memory line by line.
//
// Lookups follow the platform's profile-file rules: section and key names match without regard to
// ASCII case and to surrounding blanks, the first matching section and the first matching key in
// it win, and lines starting with ';' are comments. Edits touch only the lines they concern, so
// every other section, key, comment, blank line and the order of all lines survive a Save. Each
// line keeps its own line ending; added lines take the ending of the file's first line.
class CProfileFile {
public:
    explicit CProfileFile(std::string path);

    const std::string& GetPath() const { return m_path; }

    // Reads the file, replacing the lines held. A missing file reads as empty and succeeds; false
    // when the file exists but cannot be read (nothing is held then).
    bool Load();

    // Writes the lines to a temporary file beside the target, unique to this process, syncs it to
    // the disk and renames it over the target, so that a crash or a second writer at any moment
    // leaves either the old file or the new one whole, never a mix. Creates a missing file; keeps
    // the permissions of an existing one. False, with the target byte for byte as it was, when the
    // target exists but is not writable, its folder cannot take a new file, or the write fails.
    bool Save() const;

    // The value of key in section, without surrounding blanks and without one pair of enclosing
    // quotes ('' or ""); defaultValue when the section or the key is missing.
    std::string GetString(std::string_view section, std::string_view key,
                          std::string_view defaultValue) const;

    // Sets key in section to value. An existing key line is rewritten in place; a new key goes
    // after the last key of the section (right after its header when it has none); a missing
    // section is added at the end of the file.
    void WriteString(std::string_view section, std::string_view key, std::string_view value);

    // Every key of section with its value (as GetString gives it), in file order; empty when the
    // section is missing. One pass over the file, however many keys the section holds.
    std::vector<std::pair<std::string, std::string>>
    GetSectionValues(std::string_view section) const;

    // Replaces the body of section (keys and comments alike) with the given lines, written as they
    // are ("key=value"). With no lines the section stays as an empty header. The blank lines that
    // end the section, and comments after them, stay; a missing section is added at the end.
    void ReplaceSection(std::string_view section, const std::vector<std::string>& lines);

private:
    struct Line {
        std::string text;   // without the line ending
        std::string ending; // "\n", "\r\n", or "" for a last line without one
    };

    std::string_view Content(size_t index) const;
    size_t FindSection(std::string_view section) const;
    size_t SectionEnd(size_t header) const;
    size_t FindKey(size_t header, std::string_view key) const;
    size_t AppendSection(std::string_view section);
    void InsertLine(size_t index, std::string text);

    std::string m_path;
    std::vector<Line> m_lines;
};

} // namespace quillon
