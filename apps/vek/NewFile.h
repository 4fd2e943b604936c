#pragma once

#include <string>

namespace tool
{

/// The new file beside the one that it becomes, with that one's permissions; gone again unless it took that one's
/// place. A link is followed: it stays, and leads to the new file.
class NewFile
{
public:
    explicit NewFile(std::wstring const & target);
    ~NewFile();
    NewFile(NewFile const &) = delete;
    NewFile & operator=(NewFile const &) = delete;

    std::wstring const & Path() const { return m_path; }
    /// Takes the place, and the attributes; false, after telling the user why, when that fails.
    bool Place();

private:
    std::wstring m_given;
    std::wstring m_target;
    std::wstring m_path;
    bool m_placed = false;
};

/// Whether the path can be written to, as far as that can be told beforehand; the user is told why not.
bool IsWritable(std::wstring const & path);

} // namespace tool
